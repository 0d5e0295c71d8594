# Installation: headers, both shared libraries with their SONAMEs, a CMake
# package (find_package(OrvaneImage) gives OrvaneImage::Image and
# OrvaneImage::Buffer) and pkg-config files.
include(CMakePackageConfigHelpers)

set(ORV_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/OrvaneImage)

install(TARGETS orvanebuffer orvaneimage EXPORT OrvaneImageTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT OrvaneImageTargets NAMESPACE OrvaneImage::
  DESTINATION ${ORV_CMAKE_DIR})

configure_package_config_file(cmake/OrvaneImageConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/OrvaneImageConfig.cmake
  INSTALL_DESTINATION ${ORV_CMAKE_DIR})
write_basic_package_version_file(
  ${CMAKE_CURRENT_BINARY_DIR}/OrvaneImageConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/OrvaneImageConfig.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/OrvaneImageConfigVersion.cmake
  DESTINATION ${ORV_CMAKE_DIR})

foreach(pc orvanebuffer orvaneimage)
  configure_file(cmake/${pc}.pc.in ${CMAKE_CURRENT_BINARY_DIR}/${pc}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${pc}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
