# What a Debian package has beyond what is installed: its copyright and its changelog; pages are compressed. Run by CPack over
# the staged components.
cmake_minimum_required(VERSION 3.25)
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} name)
  set(package ${CPACK_DEBIAN_${name}_PACKAGE_NAME})
  set(staged ${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share)
  set(docs ${staged}/doc/${package})
  file(WRITE ${docs}/copyright "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/
Upstream-Name: lumCV

Files: *
Copyright: 2026 lumCV maintainers
License: Apache-2.0
 On Debian systems, the text of this license is in
 /usr/share/common-licenses/Apache-2.0.
")
  file(WRITE ${docs}/changelog "lumcv (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n  * Version ${CPACK_PACKAGE_VERSION}.\n
 -- ${CPACK_PACKAGE_CONTACT}  ${CPACK_LUMCV_DATE}\n")
  # The system has the text of the license.
  file(REMOVE ${staged}/doc/lumcv/LICENSE)
  file(GLOB pages ${staged}/man/man1/*.1)
  execute_process(COMMAND gzip -9n ${docs}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB left ${staged}/doc/lumcv/*)
  if(NOT left)
    file(REMOVE_RECURSE ${staged}/doc/lumcv)
  endif()
endforeach()
