# The tests as 32-bit Windows programs. `tests` is the list of them.

# Not here: what reads ELF files or the kernel's own lists, maps one memory at several addresses, drives the program
# through a shell, a terminal and signals, or observes calls by means of signals. ctest lists each of them as disabled.
set(left_out ${tests})
list(FILTER left_out INCLUDE REGEX "^library/(companion|shared_object|large_counts|large_families)_test|^stats/mean_count_test|^tools/(cli|gallery|manual|output_file)_test")
list(REMOVE_ITEM tests ${left_out})
file(GLOB observers CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR}/library ${CMAKE_CURRENT_SOURCE_DIR}/library/contract/*_test.cpp)
foreach(test IN LISTS left_out observers)
  string(REGEX REPLACE "_test.cpp$" "" name ${test})
  string(REPLACE "/" "." name ${name})
  add_test(NAME ${name} COMMAND ${name}_test)
  set_tests_properties(${name} PROPERTIES DISABLED TRUE)
endforeach()

# Programs run under Wine: tests/windows/wine.sh. The DLL that is tested does not lie beside them.
if(CMAKE_CROSSCOMPILING)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine.sh)
endif()
set(test_environment "WINEPATH=${CMAKE_BINARY_DIR}")

# The files of the DLLs, read without running them.
add_test(NAME windows.dll_files COMMAND /usr/bin/python3 ${CMAKE_CURRENT_LIST_DIR}/dll_files_test.py
  ${CMAKE_BINARY_DIR} ${PROJECT_SOURCE_DIR}/src/entry/exports.inc)

# An installed copy and hosts that know nothing of this tree.
add_test(NAME windows.installed_copy COMMAND ${CMAKE_COMMAND}
  -DBUILD=${CMAKE_BINARY_DIR} -DTREE=${PROJECT_SOURCE_DIR} -DWORK=${CMAKE_CURRENT_BINARY_DIR}/installed
  -DTOOLCHAIN=${CMAKE_TOOLCHAIN_FILE} -DC_COMPILER=${CMAKE_C_COMPILER} -DDLLTOOL=${CMAKE_DLLTOOL}
  -DWINE=${CMAKE_CROSSCOMPILING_EMULATOR} -P ${CMAKE_CURRENT_LIST_DIR}/installed_copy.cmake)
