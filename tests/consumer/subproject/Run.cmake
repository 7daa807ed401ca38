# Builds and runs a project with SOURCE_DIR as a sub-directory, and installs it without any file of the library. Without
# a build type, and so without optimisation: it compiles libraries once more.
file(REMOVE_RECURSE ${WORK_DIR})
function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK_DIR}/build -G ${GENERATOR} -DLIBRARY=${SOURCE_DIR}
  -DVEK_QT=${QT} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER}
  -DVEK_WARNINGS_AS_ERRORS=${WARNINGS_AS_ERRORS})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build --target parent)
execute_process(COMMAND ${WORK_DIR}/build/parent OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
if(NOT output STREQUAL "1 #ff0000 #0000ff\n")
  message(FATAL_ERROR "the program printed: ${output}")
endif()
run(${CMAKE_COMMAND} --install ${WORK_DIR}/build --prefix ${WORK_DIR}/installed)
file(GLOB_RECURSE files RELATIVE ${WORK_DIR}/installed ${WORK_DIR}/installed/*)
if(NOT files STREQUAL "CMakeLists.txt")
  message(FATAL_ERROR "installed: ${files}")
endif()
