# The dynamic symbols that vessora.arx defines must be exactly these.
set(wanted
  ImportaRpt ScriviInp acrxEntryPoint acrxGetApiVersion epaProf epacalc epapiezo epascale epatables
  expinp hnaddepa hnmatepa hnmodepa hnpzzpmod hnsetmat hnsetpat impinp imprpt netvis
  odrxCreateModuleObject odrxGetAPIVersion)
execute_process(COMMAND ${NM} -D --defined-only ${MODULE} OUTPUT_VARIABLE lines RESULT_VARIABLE failed)
if(failed)
  message(FATAL_ERROR "nm cannot read ${MODULE}")
endif()
set(found)
string(REPLACE "\n" ";" lines "${lines}")
foreach(line IN LISTS lines)
  if(line MATCHES " ([^ ]+)$")
    list(APPEND found ${CMAKE_MATCH_1})
  endif()
endforeach()
list(SORT found)
list(SORT wanted)
if(NOT "${found}" STREQUAL "${wanted}")
  message(FATAL_ERROR "exports differ\nwanted: ${wanted}\nfound:  ${found}")
endif()
