# Installs the libraries with the files for find_package(VekChartLibrary) and pkg-config, the models, sprites and data
# sets, the programs, and the documentation. No installed file contains an absolute path.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VekChartLibrary)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(header_dir ${CMAKE_INSTALL_INCLUDEDIR}/vek-chart)
set(share_dir ${CMAKE_INSTALL_DATADIR}/vek-chart-library)
set(doc_dir ${CMAKE_INSTALL_DATADIR}/doc/vek-chart-library)

# Libraries lie side by side; programs find them relative to their own folder.
set(lib_from_bin /${CMAKE_INSTALL_LIBDIR})
cmake_path(RELATIVE_PATH lib_from_bin BASE_DIRECTORY /${CMAKE_INSTALL_BINDIR})
set(libraries vek-platform vek-chart-library vek-chart-io vek-chart-scene)
if(TARGET vek-chart-widgets)
  set(widgets vek-chart-widgets)
endif()
set_target_properties(${libraries} ${widgets} PROPERTIES INSTALL_RPATH $ORIGIN)
foreach(target IN LISTS libraries widgets)
  target_include_directories(${target} INTERFACE $<INSTALL_INTERFACE:${header_dir}>)
endforeach()
install(TARGETS ${libraries} EXPORT VekChartLibraryTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
foreach(program vek-gallery vek-viewer vek-parallel)
  if(TARGET ${program})
    set(component programs)
    if(program STREQUAL vek-parallel)
      set(component parallel)
    endif()
    set_target_properties(${program} PROPERTIES INSTALL_RPATH $ORIGIN/${lib_from_bin})
    install(TARGETS ${program} DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT ${component})
    set(page ${CMAKE_CURRENT_BINARY_DIR}/${program}.1)
    configure_file(docs/man/${program}.1 ${page} COPYONLY)
    execute_process(COMMAND gzip -9nkf ${page} COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${component})
  endif()
endforeach()

if(TARGET vek-viewer) # in menus of desktops
  install(FILES apps/viewer/vek-viewer.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications COMPONENT programs)
  install(FILES apps/viewer/vek-viewer.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps
    COMPONENT programs)
endif()

install(DIRECTORY platform algorithms library io scene DESTINATION ${header_dir} COMPONENT development
  FILES_MATCHING PATTERN "*.h" PATTERN private EXCLUDE)
if(TARGET vek-gallery) # its page shows them
  install(DIRECTORY apps/gallery/pictures DESTINATION ${share_dir}/apps/gallery COMPONENT programs)
endif()
install(DIRECTORY data symbols sprites DESTINATION ${share_dir} COMPONENT data)
install(FILES README.md CONTRIBUTING.md CHANGELOG.md CREDITS.md LICENSE DESTINATION ${doc_dir} COMPONENT documentation)
install(DIRECTORY docs DESTINATION ${doc_dir} COMPONENT documentation FILES_MATCHING PATTERN "*.md" PATTERN "*.png"
  PATTERN "*.jpg" PATTERN man EXCLUDE PATTERN snippets EXCLUDE)
install(DIRECTORY examples DESTINATION ${doc_dir} COMPONENT documentation)
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html DESTINATION ${doc_dir} COMPONENT documentation
  OPTIONAL) # made by the target vek-docs or the test Docs.Reference

install(EXPORT VekChartLibraryTargets NAMESPACE Vek:: DESTINATION ${package_dir} COMPONENT development)
list(TRANSFORM VEK_QT_WINDOW PREPEND Qt${VEK_QT} OUTPUT_VARIABLE widgets_qt_modules)
list(JOIN widgets_qt_modules ", " widgets_qt_modules)
list(JOIN VEK_QT_WINDOW " " VEK_QT_WINDOW) # for the package's configuration
configure_package_config_file(cmake/VekChartLibraryConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/VekChartLibraryConfig.cmake
  INSTALL_DESTINATION ${package_dir} PATH_VARS share_dir)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VekChartLibraryConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/VekChartLibraryConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/VekChartLibraryConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT development)

set(prefix_from_pkgconfig /)
cmake_path(RELATIVE_PATH prefix_from_pkgconfig BASE_DIRECTORY /${pkgconfig_dir})
foreach(module IN LISTS libraries widgets)
  configure_file(cmake/${module}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${module}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${module}.pc DESTINATION ${pkgconfig_dir} COMPONENT development)
endforeach()

# The widgets have a run-time component of their own, since programs without windows need no Qt Widgets, and targets in a
# file of their own: VekChartLibraryConfig.cmake reads it where the widgets are requested.
if(TARGET vek-chart-widgets)
  install(TARGETS vek-chart-widgets EXPORT VekChartWidgetsTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT widgets NAMELINK_COMPONENT development)
  install(DIRECTORY widgets DESTINATION ${header_dir} COMPONENT development FILES_MATCHING PATTERN "*.h")
  install(EXPORT VekChartWidgetsTargets NAMESPACE Vek:: DESTINATION ${package_dir} COMPONENT development)
endif()

# The library for several processes has a component of its own with its program, since it needs MPI and IceT, and targets
# in a file of its own.
if(TARGET vek-chart-parallel)
  set_target_properties(vek-chart-parallel PROPERTIES INSTALL_RPATH $ORIGIN)
  target_include_directories(vek-chart-parallel INTERFACE $<INSTALL_INTERFACE:${header_dir}>)
  install(TARGETS vek-chart-parallel EXPORT VekChartParallelTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT parallel NAMELINK_COMPONENT development)
  install(DIRECTORY parallel DESTINATION ${header_dir} COMPONENT development
    FILES_MATCHING PATTERN "*.h" PATTERN private EXCLUDE)
  install(EXPORT VekChartParallelTargets NAMESPACE Vek:: DESTINATION ${package_dir} COMPONENT development)
  configure_file(cmake/vek-chart-parallel.pc.in ${CMAKE_CURRENT_BINARY_DIR}/vek-chart-parallel.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vek-chart-parallel.pc DESTINATION ${pkgconfig_dir} COMPONENT development)
endif()

# The test support is a component of its own, with targets in a file of its own: VekChartLibraryConfig.cmake reads it where
# it is installed.
target_include_directories(vek-chart-testing INTERFACE $<INSTALL_INTERFACE:${header_dir}>)
install(TARGETS vek-chart-testing EXPORT VekChartTestingTargets
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT testing)
install(DIRECTORY testing DESTINATION ${header_dir} COMPONENT testing
  FILES_MATCHING PATTERN "*.h" PATTERN private EXCLUDE)
install(EXPORT VekChartTestingTargets NAMESPACE Vek:: DESTINATION ${package_dir} COMPONENT testing)
configure_file(cmake/vek-chart-testing.pc.in ${CMAKE_CURRENT_BINARY_DIR}/vek-chart-testing.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/vek-chart-testing.pc DESTINATION ${pkgconfig_dir} COMPONENT testing)
