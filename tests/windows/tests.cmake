# The tests as 32-bit Windows programs. `tests` is the list of them.

# Not here: what reads ELF files or the kernel's own lists, maps one memory at several addresses, or drives the program
# through a shell and its signals; nor, left out where they are defined, the observed calls, which take signals.
list(FILTER tests EXCLUDE REGEX "^library/(companion|shared_object|large_counts)_test|^stats/mean_count_test|^tools/")
message(STATUS "lumcv: the tests of ELF files, of twice mapped memory, of observed calls and of the program in a shell are not of this build")

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
