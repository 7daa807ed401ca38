# Installs the build in BUILD_DIR below WORK_DIR, moves the installation, checks it, and builds and runs a program against
# it with CMake and with pkg-config, without optimisation. Installed programs run from another folder.
file(REMOVE_RECURSE ${WORK_DIR})
file(MAKE_DIRECTORY ${WORK_DIR}/make)
set(prefix ${WORK_DIR}/moved)
function(run)
  execute_process(COMMAND ${ARGV} COMMAND_ERROR_IS_FATAL ANY)
endfunction()
function(check_output program expected)
  execute_process(COMMAND ${program} ${ARGN} WORKING_DIRECTORY / OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${program} printed: ${output}")
  endif()
endfunction()
if(SANITIZE) # what links to sanitized libraries is sanitized as well
  set(ENV{CXXFLAGS} "-fsanitize=address,undefined")
  set(ENV{LDFLAGS} "-fsanitize=address,undefined")
  set(ENV{ASAN_OPTIONS} "detect_leaks=0")
endif()
set(drawn "^1 #ff0000 #0000ff\n$") # the version, and the colours of the glyph and of the background

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/installed)
file(RENAME ${WORK_DIR}/installed ${prefix})

# Installed files, and files that must not be.
foreach(file bin/vek-gallery share/man/man1/vek-gallery.1.gz
    share/applications/vek-viewer.desktop share/icons/hicolor/scalable/apps/vek-viewer.svg
    ${LIB_DIR}/libvek-platform.so.1 ${LIB_DIR}/libvek-chart-library.so.1
    include/vek-chart/library/ColorMap.h include/vek-chart/algorithms/Array.h include/vek-chart/testing/RecordingGl.h share/vek-chart-library/symbols/Cone.obj
    share/vek-chart-library/sprites/symbol_star.png share/vek-chart-library/data/README.md
    share/doc/vek-chart-library/LICENSE share/doc/vek-chart-library/docs/images/wind.png
    share/doc/vek-chart-library/html/index.html)
  if(NOT EXISTS ${prefix}/${file} AND (APPS OR NOT file MATCHES "vek-gallery|vek-viewer"))
    message(SEND_ERROR "not installed: ${file}")
  endif()
endforeach()
file(GLOB_RECURSE hidden ${prefix}/*/private/*)
# The test support installs alone, and nothing of it with the other components.
run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/testing --component testing)
file(GLOB_RECURSE testing RELATIVE ${WORK_DIR}/testing ${WORK_DIR}/testing/*)
foreach(file IN LISTS testing)
  if(NOT file MATCHES "[Tt]esting")
    message(SEND_ERROR "installed with the test support: ${file}")
  endif()
endforeach()
foreach(component runtime development)
  run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK_DIR}/shipped --component ${component})
endforeach()
file(GLOB_RECURSE shipped RELATIVE ${WORK_DIR}/shipped ${WORK_DIR}/shipped/*)
list(FILTER shipped INCLUDE REGEX "[Tt]esting")
if(shipped)
  message(SEND_ERROR "test support in the other packages: ${shipped}")
endif()
if(hidden)
  message(SEND_ERROR "private files are installed: ${hidden}")
endif()
execute_process(COMMAND grep -rlF -e ${SOURCE_DIR} -e ${BUILD_DIR} -e ${WORK_DIR}/installed ${prefix}
  RESULT_VARIABLE none OUTPUT_VARIABLE files)
if(NOT none EQUAL 1 AND NOT SANITIZE) # which names the lines of its findings
  message(SEND_ERROR "files with a path of the build machine:\n${files}")
endif()

# Links of pages lead to installed files.
file(GLOB_RECURSE pages ${prefix}/share/doc/vek-chart-library/*.md)
foreach(page IN LISTS pages)
  get_filename_component(folder ${page} DIRECTORY)
  execute_process(COMMAND grep -oE "\\]\\([A-Za-z0-9_./-]+[)#]" ${page} COMMAND sed "s/^..//;s/.$//"
    OUTPUT_VARIABLE links)
  string(REGEX MATCHALL "[^\n]+" links "${links}")
  foreach(link IN LISTS links)
    if(NOT EXISTS ${folder}/${link})
      message(SEND_ERROR "${page} links to ${link}, which is not installed")
    endif()
  endforeach()
endforeach()

# The libraries export the project's names, without hidden state, and the exceptions that callers catch; nothing else.
set(libraries vek-platform vek-chart-library vek-chart-io vek-chart-scene)
if(WIDGETS)
  list(APPEND libraries vek-chart-widgets)
endif()
if(SANITIZE) # which adds names
  set(libraries)
endif()
foreach(library IN LISTS libraries)
  execute_process(COMMAND nm -DC --defined-only ${prefix}/${LIB_DIR}/lib${library}.so COMMAND cut -c20-
    OUTPUT_VARIABLE exported COMMAND_ERROR_IS_FATAL ANY)
  file(WRITE ${WORK_DIR}/exported "${exported}")
  string(APPEND all "${exported}")
  execute_process(COMMAND grep -Ev
    "^([A-Za-z-]+ )*(Vek|vekdebug|vekfile)::|^typeinfo (name )?for boost::(bad_|exception|wrapexcept)" ${WORK_DIR}/exported
    OUTPUT_VARIABLE strays)
  execute_process(COMMAND grep -E "^[^(]*::(State|Private)::" ${WORK_DIR}/exported OUTPUT_VARIABLE hidden)
  if(NOT "${strays}${hidden}" STREQUAL "")
    message(SEND_ERROR "${library} exports what is not meant for others:\n${strays}${hidden}")
  endif()
endforeach()
if(all MATCHES "Vek::Chart::Testing|Recording")
  message(SEND_ERROR "a shared library has test code")
endif()
foreach(name "vtable for vekdebug::sink" "typeinfo for vekdebug::sink" "typeinfo for boost::bad_lexical_cast")
  string(FIND "${all}" "${name}\n" found)
  if(found LESS 0 AND NOT SANITIZE)
    message(SEND_ERROR "not exported: ${name}")
  endif()
endforeach()

file(MAKE_DIRECTORY ${WORK_DIR}/tests)
file(CREATE_LINK ${SOURCE_DIR}/tests ${WORK_DIR}/tests/tests SYMBOLIC)
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${WORK_DIR}/build -G ${GENERATOR} -DQT=${QT} -DWIDGETS=${WIDGETS}
  -DSOURCE_DIR=${SOURCE_DIR} -DTESTS=${WORK_DIR}/tests
  -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_PREFIX_PATH=${prefix})
set(programs consumer host-checks)
if(WIDGETS)
  list(APPEND programs window)
endif()
if(NOT SANITIZE)
  set(programs all)
endif()
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build --target ${programs})
check_output(${WORK_DIR}/build/consumer "${drawn}")
check_output(${WORK_DIR}/build/host-checks "2 tests")
if(NOT SANITIZE)
  check_output(${WORK_DIR}/build/snippets "PASSED")
endif()
if(WIDGETS)
  check_output(${WORK_DIR}/build/window "^1\n$")
endif()

set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIB_DIR}/pkgconfig)
check_output(pkg-config "^${QT}\n$" --variable=qt vek-chart-library)
run(make -s -C ${CMAKE_CURRENT_LIST_DIR} CXX=${COMPILER} OUT=${WORK_DIR}/make)
check_output(${WORK_DIR}/make/consumer "${drawn}")
check_output(${WORK_DIR}/make/host-checks "2 tests")

if(WIDGETS)
  run(make -s -C ${CMAKE_CURRENT_LIST_DIR} CXX=${COMPILER} OUT=${WORK_DIR}/make ${WORK_DIR}/make/window)
  check_output(${WORK_DIR}/make/window "^1\n$")
endif()

# All examples at once, as a stranger has them: copied out of the tree, with the package and nothing else.
if(NOT SANITIZE)
  file(GLOB examples ${SOURCE_DIR}/examples/*)
  file(COPY ${examples} DESTINATION ${WORK_DIR}/examples)
  run(${CMAKE_COMMAND} -S ${WORK_DIR}/examples -B ${WORK_DIR}/examples/build -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_PREFIX_PATH=${prefix})
  run(${CMAKE_COMMAND} --build ${WORK_DIR}/examples/build)
  if(WIDGETS)
    set(grab ${WORK_DIR}/build/examples/libgrab-window.so)
  endif()
  run(${CMAKE_COMMAND} -DSOURCE_DIR=${SOURCE_DIR} -DPROGRAMS=${WORK_DIR}/examples/build -DOUT=${WORK_DIR}/examples/images
    -DLOOK=${WORK_DIR}/build/examples/look-at-images -DGRAB=${grab} -P ${CMAKE_CURRENT_LIST_DIR}/examples/Run.cmake)
endif()

if(APPS)
  # A manual page names each option of its program.
  foreach(program vek-gallery vek-viewer)
    execute_process(COMMAND ${CMAKE_COMMAND} -E env QT_QPA_PLATFORM=offscreen ${prefix}/bin/${program} --help
      OUTPUT_VARIABLE help COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND gzip -dc ${prefix}/share/man/man1/${program}.1.gz COMMAND tr -d "\\\\" OUTPUT_VARIABLE page)
    string(REGEX MATCHALL "\n  --[a-z]+" options "${help}")
    foreach(option IN LISTS options ITEMS "--help")
      string(STRIP "${option}" option)
      if(NOT page MATCHES "${option}[ \n]")
        message(SEND_ERROR "${program}(1) does not mention ${option}")
      endif()
    endforeach()
  endforeach()
  check_output(${prefix}/bin/vek-gallery "symbols +\\.\\.\\. [0-9.]+ s" --only symbols --size 64x40 --out ${WORK_DIR}/out)
endif()
