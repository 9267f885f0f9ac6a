# For modules: the host's library and the headers that a module may see.
#   find_package(vessora-cad REQUIRED)
#   vessora_module(name sources...)      # name.arx
get_filename_component(VESSORA_CAD_ROOT "${CMAKE_CURRENT_LIST_DIR}/../../.." ABSOLUTE)
set(VESSORA_CAD_INCLUDE "${VESSORA_CAD_ROOT}/include/vessora")
if(NOT TARGET vessora::cad)
  add_library(vessora::cad SHARED IMPORTED)
  set_target_properties(vessora::cad PROPERTIES
    IMPORTED_LOCATION "${VESSORA_CAD_ROOT}/lib/libvessora-cad.so"
    IMPORTED_SONAME libvessora-cad.so
    INTERFACE_INCLUDE_DIRECTORIES "${VESSORA_CAD_INCLUDE}"
    INTERFACE_COMPILE_FEATURES cxx_std_20)
endif()

# The module finds the host's library in the process that loads it; it shows its entry points alone.
function(vessora_module name)
  add_library(${name} MODULE ${ARGN})
  target_link_libraries(${name} PRIVATE vessora::cad)
  target_link_options(${name} PRIVATE -Wl,--no-undefined)
  set_target_properties(${name} PROPERTIES PREFIX "" SUFFIX ".arx" CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON SKIP_BUILD_RPATH ON)
endfunction()
