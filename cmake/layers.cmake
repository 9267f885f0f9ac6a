# The layers of the project: each folder and the folders whose headers it may include. The same list
# makes the link lines (vessora_layer) and feeds the test that reads every #include, because a link
# line alone does not stop a header from being included.
#
#   folder | folders it may use
set(VESSORA_LAYERS
  "platform|"
  "schema|platform"
  "epanet|platform"
  "cad/api|platform"
  "cad/drawing|cad/api,cad/dxf,platform"
  "cad/dxf|cad/api,platform"
  "cad/shape|cad/api,cad/drawing,cad/dxf,platform"
  "cad/ui|platform"
  "cad/editor|cad/api,cad/drawing,cad/shape,cad/dxf,cad/ui,platform"
  "cad/family|schema,cad/api,cad/ui,cad/drawing,cad/dxf,cad/editor,platform"
  "cad/view|cad/api,cad/drawing,cad/shape,cad/dxf,platform"
  "module/host|cad/api,cad/ui,cad/family,schema,platform"
  "module/network|module/host,schema,epanet,platform"
  "module/grid|module/host,module/network,cad/ui,platform"
  "module/dialogs|module/host,module/network,module/grid,cad/ui,schema,platform"
  "module/inp|module/host,module/network,module/dialogs,schema,epanet,platform"
  "module/results|module/host,module/network,module/grid,module/dialogs,module/inp,schema,epanet,platform"
  "module/editing|module/host,module/network,module/grid,module/dialogs,module/inp,schema,epanet,platform"
  "module|schema,epanet,cad/api,module/host,module/network,module/dialogs,module/inp,module/results,module/editing,platform"
  "apps/program|module,epanet,cad/api,cad/drawing,cad/dxf,cad/ui,cad/editor,cad/family,platform"
  "apps/cli|apps/program,module,epanet,cad/api,cad/drawing,cad/shape,cad/dxf,cad/ui,cad/editor,cad/family,cad/view,platform"
  "apps/desktop|apps/program,module,schema,epanet,cad/api,cad/drawing,cad/shape,cad/dxf,cad/ui,cad/editor,cad/family,cad/view,platform"
)

# vessora_layer(folder target sources...): one folder, one static library, linked to those that the
# list allows it. Headers alone (cad/api) need no link line, and modules get the host from whoever
# loads them.
function(vessora_layer folder target)
  add_library(${target} STATIC ${ARGN})
  target_link_libraries(${target} PUBLIC vessora_options)
  foreach(row IN LISTS VESSORA_LAYERS)
    if(NOT row MATCHES "^${folder}\\|(.*)$")
      continue()
    endif()
    string(REPLACE "," ";" allowed "${CMAKE_MATCH_1}")
    foreach(other IN LISTS allowed)
      if(other STREQUAL "cad/api" OR (folder MATCHES "^module/" AND other MATCHES "^cad/"))
        continue()
      endif()
      string(REPLACE "/" "_" library ${other})
      if(TARGET ${library})  # a folder may have no sources yet; lower ones are always there by now
        target_link_libraries(${target} PUBLIC ${library})
      endif()
    endforeach()
  endforeach()
endfunction()
