# Libraries, headers, a pkg-config file and a CMake package.
include(CMakePackageConfigHelpers)

install(TARGETS lumcv lumcore EXPORT lumcv LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(EXPORT lumcv NAMESPACE lumcv:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/lumcv FILE lumcv-config.cmake)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/lumcv-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/lumcv-config-version.cmake
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/lumcv)
# The installed copy may be moved: the file tells where it is from where it lies.
file(RELATIVE_PATH path_to_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/lumcv.pc.in ${CMAKE_BINARY_DIR}/lumcv.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/lumcv.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
