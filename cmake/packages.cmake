# Debian packages, `cpack --config build/<preset>/CPackConfig.cmake`: one for each component, for the architecture of the build.
if(NOT PROJECT_IS_TOP_LEVEL OR NOT CMAKE_SYSTEM_NAME STREQUAL "Linux")
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_VENDOR lumCV)
set(CPACK_PACKAGE_CONTACT "lumCV maintainers <maintainers@lumcv.example>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
# Staged below DESTDIR, so that what is installed sees the prefix that it will have.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL runtime dev)
if(LUMCV_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE i386)
endif()

# What they depend on is read from the files; a machine that only compiles for 32 bits has no 32-bit packages to read it from.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
set(reads_dependencies ON)
set(library_depends "")
set(tools_depends "")
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND NOT EXISTS /lib/i386-linux-gnu/libc.so.6)
  set(reads_dependencies OFF)
  set(library_depends "libc6 (>= 2.29)")
  set(tools_depends ", libc6 (>= 2.36), libgcc-s1, libstdc++6 (>= 12)")
endif()

set(about "lumCV is a shared library of computer-vision primitives: plain C functions
on rectangular regions of images that stay in the caller's memory. It
allocates nothing, keeps no state and starts no threads, and its results are
defined to the last bit.

")
set(library_package liblumcv${PROJECT_VERSION_MAJOR})
set(same_version "${library_package} (= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ${reads_dependencies})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "${library_depends}")
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "${about}This package has what programs need to run.")
# The loader's list is brought up to date, and what is built against the library depends on this package.
file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
file(WRITE ${PROJECT_BINARY_DIR}/debian/shlibs "liblumcore ${PROJECT_VERSION_MAJOR} ${library_package} (>= ${PROJECT_VERSION})
liblumcv ${PROJECT_VERSION_MAJOR} ${library_package} (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_BINARY_DIR}/debian/triggers;${PROJECT_BINARY_DIR}/debian/shlibs")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_DEV_PACKAGE_NAME liblumcv-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_DEV_DESCRIPTION "${about}This package has what programs are built with: headers, examples and the guide.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME lumcv-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ${reads_dependencies})
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_version}${tools_depends}")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION "${about}This package has the command-line program that runs them on pictures.")

set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian_files.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian_control.cmake)
# One date for all architectures, whose packages share these files.
file(TIMESTAMP include/lumcv/version.h CPACK_LUMCV_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
include(CPack)
