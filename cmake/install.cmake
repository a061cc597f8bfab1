# What is installed, in three components: `runtime` is what a host needs to run, `dev` what it needs to be built, `tools` the
# program.
include(CMakePackageConfigHelpers)

# The libraries.
install(TARGETS lumcv lumcore EXPORT lumcv
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
foreach(level IN LISTS LUMCV_LEVELS)
  install(TARGETS lumcv_${level}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/glibc-hwcaps/${level} COMPONENT runtime NAMELINK_SKIP)
endforeach()
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)

# What hosts are built with.
install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev FILES_MATCHING PATTERN "*.h")
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/lumcv)
install(EXPORT lumcv NAMESPACE lumcv:: DESTINATION ${package_folder} FILE lumcv-config.cmake COMPONENT dev)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/lumcv-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/lumcv-config-version.cmake DESTINATION ${package_folder} COMPONENT dev)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT dev FILES_MATCHING PATTERN "*.md" PATTERN images EXCLUDE)

# The program's own folder says where its files go; its page and its completion go where the system looks for them.
if(LUMCV_TOOLS)
  file(GLOB pages share/man/*.1)
  install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES share/completion/lumcv.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME lumcv
    COMPONENT tools OPTIONAL)
  install(FILES share/completion/_lumcv DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT tools OPTIONAL)
endif()

# The prefix is known for certain only when it is installed: `cmake --install --prefix` may name another one.
configure_file(cmake/at_install.cmake.in ${PROJECT_BINARY_DIR}/at_install.cmake @ONLY)
foreach(component IN ITEMS runtime dev tools)
  install(CODE "set(lumcv_component ${component})\ninclude(\"${PROJECT_BINARY_DIR}/at_install.cmake\")" COMPONENT ${component})
endforeach()

if(PROJECT_IS_TOP_LEVEL)
  add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -DBUILD=${PROJECT_BINARY_DIR} -P ${PROJECT_SOURCE_DIR}/cmake/uninstall.cmake)
endif()
