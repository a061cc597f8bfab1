# Each fuzzer runs over its corpus and for ten seconds in the test suite. They are a build of their own, with clang and its sanitizers;
# where those are missing, one test says so.
find_program(LUMCV_CLANG clang++)
set(has_fuzzer FALSE)
if(LUMCV_CLANG)
  file(WRITE ${CMAKE_BINARY_DIR}/fuzz_probe.cpp
    "extern \"C\" int LLVMFuzzerTestOneInput(const unsigned char*, unsigned long) { return 0; }\n")
  execute_process(COMMAND ${LUMCV_CLANG} -fsanitize=fuzzer,address ${CMAKE_BINARY_DIR}/fuzz_probe.cpp -o ${CMAKE_BINARY_DIR}/fuzz_probe
    RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
  if(result EQUAL 0)
    set(has_fuzzer TRUE)
  endif()
endif()
if(NOT has_fuzzer)
  add_test(NAME fuzz.all COMMAND ${CMAKE_COMMAND} -E echo "skipped: clang++ with libFuzzer's runtime is not installed")
  set_tests_properties(fuzz.all PROPERTIES SKIP_REGULAR_EXPRESSION "^skipped" LABELS fuzz)
  return()
endif()

add_library(fuzz_rows STATIC $<TARGET_OBJECTS:digest_rows> $<TARGET_OBJECTS:observed_calls>)
set_target_properties(fuzz_rows PROPERTIES LINKER_LANGUAGE CXX)
function(add_fuzz_build target all folder)
  add_custom_target(${target} ${all}
    COMMAND ${CMAKE_COMMAND} -S ${PROJECT_SOURCE_DIR} -B ${folder} -G ${CMAKE_GENERATOR}
      -DCMAKE_TOOLCHAIN_FILE=${PROJECT_SOURCE_DIR}/cmake/fuzz.cmake -DLUMCV_FUZZ=ON -DLUMCV_TOOLS=ON
      -DLUMCV_FUZZ_ROWS=$<TARGET_FILE:fuzz_rows> ${ARGN}
      -DCMAKE_C_COMPILER_LAUNCHER=${CMAKE_C_COMPILER_LAUNCHER} -DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}
    COMMAND ${CMAKE_COMMAND} --build ${folder} --target all_fuzzers
    DEPENDS fuzz_rows VERBATIM)
  # After the library, which is the longer one, so that the two builds do not run side by side.
  add_dependencies(${target} fuzz_rows lumcv lumcore_substitute)
endfunction()
# To fuzz, with a library that counts what runs, which takes minutes to compile; and for the tests, which need no counts, with that of
# this build.
add_fuzz_build(fuzzers "" ${PROJECT_BINARY_DIR}/fuzz)
set(fuzz_build ${PROJECT_BINARY_DIR}/fuzz-tests)
add_fuzz_build(fuzz_tests ALL ${fuzz_build} -DLUMCV_FUZZ_LIBRARY=$<TARGET_FILE_DIR:lumcv>)

function(add_fuzz_test name program)
  add_test(NAME fuzz.${name} COMMAND ${CMAKE_COMMAND}
    -DPROGRAM=${fuzz_build}/fuzz/${program} "-DOPTIONS=${ARGN}" -DCORPUS=${PROJECT_SOURCE_DIR}/fuzz/corpus/${name}
    -DFOUND=${fuzz_build}/found/${name} -P ${PROJECT_SOURCE_DIR}/fuzz/smoke.cmake)
  set_tests_properties(fuzz.${name} PROPERTIES
    LABELS fuzz TIMEOUT 120 SKIP_REGULAR_EXPRESSION "^skipped|\nskipped")
endfunction()
foreach(family IN ITEMS difference stats integral filter morph feature pyramid motion distance segment geometry)
  add_fuzz_test(${family} library_fuzzer --family=${family} -max_len=300)
endforeach()
add_fuzz_test(picture picture_fuzzer -dict=${PROJECT_SOURCE_DIR}/fuzz/picture.dict -max_len=70000)
add_fuzz_test(cascade cascade_fuzzer -max_len=5000)
add_fuzz_test(xml_cascade xml_cascade_fuzzer -max_len=5000)
