# Where things are installed. Debian's folders of libraries are per architecture, so that builds for several of them are
# installed side by side.
if(PROJECT_IS_TOP_LEVEL AND CMAKE_SYSTEM_NAME STREQUAL "Linux" AND EXISTS /etc/debian_version AND NOT DEFINED CMAKE_INSTALL_LIBDIR)
  separate_arguments(flags UNIX_COMMAND "${CMAKE_C_FLAGS}")
  execute_process(COMMAND ${CMAKE_C_COMPILER} ${flags} -print-multiarch
    OUTPUT_VARIABLE multiarch OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  if(multiarch)
    set(CMAKE_INSTALL_LIBDIR lib/${multiarch} CACHE PATH "Libraries")
  endif()
endif()
include(GNUInstallDirs)
