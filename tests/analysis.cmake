# The source read by clang-tidy and cppcheck: any finding fails. What each leaves out, and why, is said in .clang-tidy, src/.clang-tidy
# and analysis/cppcheck.sh.
find_program(LUMCV_CLANG_TIDY clang-tidy)
if(LUMCV_CLANG_TIDY AND LUMCV_TOOLS)
  # The program's sources as two, so that the headers that all of them include are read twice and not fifty times. Names of the second
  # list are also names of the first.
  get_target_property(first lumcv_toolkit SOURCES)
  list(FILTER first INCLUDE REGEX "\\.cpp$")
  set(second ${first})
  set(namesakes "/(cascade|picture_file|tracker|codecs/png|gallery/(cascade|distance|integral|stats)_panels)\\.cpp$")
  list(FILTER first EXCLUDE REGEX ${namesakes})
  list(FILTER second INCLUDE REGEX ${namesakes})
  list(APPEND first ${PROJECT_SOURCE_DIR}/tools/main.cpp)
  foreach(part IN ITEMS first second)
    add_library(tools_read_${part} OBJECT EXCLUDE_FROM_ALL ${${part}})
    set_target_properties(tools_read_${part} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
    target_include_directories(tools_read_${part} PRIVATE $<TARGET_PROPERTY:lumcv_toolkit,INCLUDE_DIRECTORIES>)
    target_compile_definitions(tools_read_${part} PRIVATE $<TARGET_PROPERTY:lumcv_toolkit,COMPILE_DEFINITIONS>)
  endforeach()
  add_test(NAME library.clang_tidy COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/analysis/clang_tidy.sh ${LUMCV_CLANG_TIDY}
    ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
else()
  add_test(NAME library.clang_tidy COMMAND ${CMAKE_COMMAND} -E echo "skipped: clang-tidy is not installed, or the program not built")
endif()

find_program(LUMCV_CPPCHECK cppcheck)
if(LUMCV_CPPCHECK)
  add_test(NAME library.cppcheck COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/analysis/cppcheck.sh ${LUMCV_CPPCHECK}
    ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_BINARY_DIR}/cppcheck)
else()
  add_test(NAME library.cppcheck COMMAND ${CMAKE_COMMAND} -E echo "skipped: cppcheck is not installed")
endif()
set_tests_properties(library.clang_tidy library.cppcheck PROPERTIES
  LABELS analysis PROCESSORS 2 TIMEOUT 1500 SKIP_REGULAR_EXPRESSION "^skipped")
