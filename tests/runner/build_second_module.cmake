# Installs the product to a folder of the build tree and builds the module of tests/module2 from what
# lies there.
set(installed ${BUILD}/tests/installed)
file(REMOVE_RECURSE ${installed})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${installed}
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${BUILD}/tests/module2 -G ${GENERATOR}
  -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_BUILD_TYPE=Release -DCMAKE_PREFIX_PATH=${installed}
  "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Werror"
  COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${BUILD}/tests/module2 COMMAND_ERROR_IS_FATAL ANY)
