# The installed package: libraries, public headers with their folders, symbol models and sprites, and what
# find_package(VekChartLibrary) needs.

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VekChartLibrary)
set(share_dir ${CMAKE_INSTALL_DATADIR}/vek-chart)

# The two libraries lie side by side.
set_target_properties(vek-platform vek-chart-library PROPERTIES INSTALL_RPATH $ORIGIN)
install(TARGETS vek-platform vek-chart-library EXPORT VekChartLibraryTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(DIRECTORY platform algorithms library DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vek-chart
  FILES_MATCHING PATTERN "*.h" PATTERN private EXCLUDE)
install(DIRECTORY symbols sprites DESTINATION ${share_dir} OPTIONAL FILES_MATCHING PATTERN "*.obj" PATTERN "*.png")
install(FILES LICENSE DESTINATION ${share_dir})

install(EXPORT VekChartLibraryTargets NAMESPACE Vek:: DESTINATION ${package_dir})
configure_package_config_file(cmake/VekChartLibraryConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/VekChartLibraryConfig.cmake
  INSTALL_DESTINATION ${package_dir} PATH_VARS share_dir)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VekChartLibraryConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/VekChartLibraryConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/VekChartLibraryConfigVersion.cmake
  DESTINATION ${package_dir})
