# Debian packages, made by scripts/package: libraries, development files, data, programs and documentation. Run-time
# dependencies are read from the binaries.
set(VEK_MAINTAINER "Vek.Chart.Library maintainers <maintainers@example.org>" CACHE STRING "Maintainer of the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vek-chart-library)
# Nothing has been released: a tilde sorts before the release.
set(debian_version ${PROJECT_VERSION}~dev)
set(CPACK_PACKAGE_VERSION ${debian_version})
set(CPACK_PACKAGE_CONTACT ${VEK_MAINTAINER})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "building blocks for 3-D charts and scientific images")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_COMPONENTS_ALL runtime widgets development data programs documentation)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)

set(runtime libvek-chart-library${PROJECT_VERSION_MAJOR})
file(WRITE ${PROJECT_BINARY_DIR}/triggers "activate-noawait ldconfig\n")
set(widgets libvek-chart-widgets${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/triggers)
set(CPACK_DEBIAN_WIDGETS_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/triggers)

# Debian's changelog, which each package has; the project's own is CHANGELOG.md.
set(changelog ${PROJECT_BINARY_DIR}/changelog)
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${changelog} "${CPACK_PACKAGE_NAME} (${debian_version}) unstable; urgency=medium\n
  * Version ${debian_version}.\n
 -- ${VEK_MAINTAINER}  ${date}\n")
execute_process(COMMAND gzip -9nf ${changelog} COMMAND_ERROR_IS_FATAL ANY)

set(version "(= ${debian_version})")
if(VEK_QT EQUAL 5)
  set(qt_dev qtbase5-dev)
else()
  set(qt_dev qt6-base-dev)
endif()
# The licence, and what comes from others.
set(copyright ${PROJECT_BINARY_DIR}/copyright)
file(READ LICENSE license)
file(READ CREDITS.md credits)
file(WRITE ${copyright} "${license}\n${credits}")

# component, package, section, dependencies in addition to those of the binaries, description
function(vek_debian_package component name section depends description)
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_COMPONENT_${key}_DESCRIPTION "${description}" PARENT_SCOPE)
  install(FILES ${copyright} DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
  install(FILES ${changelog}.gz DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} COMPONENT ${component})
endfunction()
vek_debian_package(runtime ${runtime} libs ""
  "The shared libraries.\n Colours, glyphs, models, volumes and cuts, ready to be drawn with OpenGL.")
vek_debian_package(widgets ${widgets} libs "${runtime} ${version}"
  "The shared library of Qt widgets.\n Charts in windows, to be rotated, panned and zoomed.")
vek_debian_package(development libvek-chart-dev libdevel
  "${runtime} ${version}, ${widgets} ${version}, vek-chart-data ${version}, ${qt_dev}, libboost-dev"
  "Development files.\n Headers and the package files for CMake and pkg-config.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libvek-chart-doc)
vek_debian_package(data vek-chart-data science ""
  "Models and data.\n Models of the built-in glyphs, point sprites, and the gallery's data sets.")
vek_debian_package(programs vek-chart-apps science "${runtime} ${version}, ${widgets} ${version}, vek-chart-data ${version}, libegl-mesa0"
  "Gallery and viewer.\n Programs that draw charts of data off-screen or in a window.")
# The name of the package before.
foreach(relation REPLACES CONFLICTS)
  set(CPACK_DEBIAN_PROGRAMS_PACKAGE_${relation} vek-chart-examples)
endforeach()
vek_debian_package(documentation libvek-chart-doc doc ""
  "Documentation.\n The reference of all public names, with examples and pictures.")
list(APPEND CPACK_COMPONENTS_ALL testing)
vek_debian_package(testing libvek-chart-testing-dev libdevel "libvek-chart-dev ${version}"
  "Test support.\n A recording GL, and fixtures for tests of programs that draw with the libraries.")
set(CPACK_DEBIAN_TESTING_PACKAGE_SUGGESTS libgtest-dev)
if(TARGET vek-chart-parallel)
  list(APPEND CPACK_COMPONENTS_ALL parallel)
  vek_debian_package(parallel vek-chart-parallel science "${runtime} ${version}, openmpi-bin"
    "One chart by several processes.\n The library and the program vek-parallel, which draw over MPI.")
  set(CPACK_DEBIAN_PARALLEL_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/triggers)
  list(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS vek-chart-parallel libopenmpi-dev)
  list(JOIN CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS ", " CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS)
endif()
foreach(component DATA DOCUMENTATION)
  set(CPACK_DEBIAN_${component}_PACKAGE_ARCHITECTURE all)
  set(CPACK_DEBIAN_${component}_PACKAGE_SHLIBDEPS OFF)
endforeach()
include(CPack)
