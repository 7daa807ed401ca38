# Finds IceT, the compositor of images over MPI: on its own, or that of ParaView, which Debian's paraview-dev has.
#
#   IceT_FOUND, and the target IceT::MPI, which brings the core. IceT_ROOT is searched first.
set(folders "")
foreach(prefix IN LISTS IceT_ROOT CMAKE_PREFIX_PATH CMAKE_SYSTEM_PREFIX_PATH)
  file(GLOB found ${prefix}/include/paraview-*/vtkicet/src/include)
  list(APPEND folders ${found})
endforeach()
find_path(IceT_INCLUDE_DIR IceTMPI.h HINTS ${folders})
set(names "")
if(IceT_INCLUDE_DIR MATCHES "/paraview-([0-9.]+)/")
  set(names -pv${CMAKE_MATCH_1})
endif()
find_library(IceT_CORE_LIBRARY NAMES IceTCore vtkIceTCore${names})
find_library(IceT_MPI_LIBRARY NAMES IceTMPI vtkIceTMPI${names})
mark_as_advanced(IceT_INCLUDE_DIR IceT_CORE_LIBRARY IceT_MPI_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(IceT REQUIRED_VARS IceT_MPI_LIBRARY IceT_CORE_LIBRARY IceT_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "on Debian it comes with paraview-dev")
if(IceT_FOUND AND NOT TARGET IceT::MPI)
  add_library(IceT::MPI INTERFACE IMPORTED)
  set_target_properties(IceT::MPI PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES ${IceT_INCLUDE_DIR}
    INTERFACE_LINK_LIBRARIES "${IceT_MPI_LIBRARY};${IceT_CORE_LIBRARY}")
endif()
