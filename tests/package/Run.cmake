# Installs the build in BUILD_DIR below WORK_DIR, and builds and runs a program against what was installed.
file(REMOVE_RECURSE ${WORK_DIR})
function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/installed)
# Moved, so that no path of the installation may be fixed.
file(RENAME ${WORK_DIR}/installed ${WORK_DIR}/moved)
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK_DIR}/build -G ${GENERATOR}
  -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_BUILD_TYPE=${BUILD_TYPE} -DCMAKE_PREFIX_PATH=${WORK_DIR}/moved)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
execute_process(COMMAND ${WORK_DIR}/build/consumer OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
if(NOT output STREQUAL "1 #ff0000\n")
  message(FATAL_ERROR "the program printed: ${output}")
endif()
file(GLOB_RECURSE hidden ${WORK_DIR}/moved/*/private/*)
if(hidden)
  message(FATAL_ERROR "private files are installed: ${hidden}")
endif()
