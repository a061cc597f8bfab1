# What every export writes for fixed inputs is the same in every build: tests/digest/<family>_rows.cpp says what is run,
# <family>.tsv what comes out. `lumcv_digests --write tests/digest` writes the lists anew.
file(GLOB digest_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/digest/*.cpp)
list(FILTER digest_sources EXCLUDE REGEX "/main.cpp$")
add_library(digest_rows OBJECT ${digest_sources} support/pages.cpp)
target_link_libraries(digest_rows PRIVATE lumcv_flags)
target_include_directories(digest_rows PUBLIC
  ${CMAKE_CURRENT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
if(LUMCV_SANITIZE)
  target_compile_options(digest_rows PRIVATE -O0)
else()
  target_compile_options(digest_rows PRIVATE -O1)
endif()
add_executable(lumcv_digests digest/main.cpp)
add_dependencies(lumcv_digests lumcore_substitute lumcv)
target_link_libraries(lumcv_digests PRIVATE
  digest_rows $<TARGET_LINKER_FILE:lumcore_substitute> $<TARGET_LINKER_FILE:lumcv> lumcv_flags)
set_target_properties(lumcv_digests PROPERTIES BUILD_RPATH "${CMAKE_CURRENT_BINARY_DIR}/substitute;${CMAKE_BINARY_DIR}")
list(APPEND tests_of_the_whole lumcv_digests)
add_test(NAME library.digests COMMAND lumcv_digests --check ${CMAKE_CURRENT_SOURCE_DIR}/digest)
set_tests_properties(library.digests PROPERTIES ENVIRONMENT "${test_environment}")

# The same with a stack that is aligned to four bytes: in 32 bits a host may have no other.
if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND NOT LUMCV_SANITIZE)
  add_executable(lumcv_digests_unaligned_stack digest/main.cpp digest/unaligned_stack.S)
  target_link_libraries(lumcv_digests_unaligned_stack PRIVATE digest_rows test_support)
  set_target_properties(lumcv_digests_unaligned_stack PROPERTIES
    BUILD_RPATH "${CMAKE_CURRENT_BINARY_DIR}/substitute;${CMAKE_BINARY_DIR}")
  list(APPEND tests_of_the_whole lumcv_digests_unaligned_stack)
  add_test(NAME library.digests_unaligned_stack
    COMMAND lumcv_digests_unaligned_stack --check ${CMAKE_CURRENT_SOURCE_DIR}/digest)
  set_tests_properties(library.digests_unaligned_stack PROPERTIES ENVIRONMENT "${test_environment}")
endif()

# The same rows under an observer: a program whose exported names are stubs of its own, which show each call before the
# shared object carries it out.
if(NOT WIN32)
  add_library(observed_calls OBJECT ${PROJECT_SOURCE_DIR}/src/entry/stubs.S
    library/contract/calls.cpp library/contract/prototypes.cpp library/contract/checks.cpp)
  target_link_libraries(observed_calls PUBLIC digest_rows lumcv_flags)
  target_compile_options(observed_calls PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-O0>)
  # By name, so that the programs also run with another build's library; a sanitizer loads it in the program's place, and does not
  # know where that looks.
  set(library $<TARGET_SONAME_FILE_NAME:lumcv>)
  if(LUMCV_SANITIZE)
    set(library $<TARGET_FILE:lumcv>)
  endif()
  target_compile_definitions(observed_calls PRIVATE LUMCV_LIBRARY="${library}"
    LUMCV_HEADERS="${PROJECT_SOURCE_DIR}/include/lumcv" LUMCV_CONTRACTS="${CMAKE_CURRENT_SOURCE_DIR}/library/contract")
  foreach(test IN LISTS observers)
    string(REGEX REPLACE ".*/(.*)_test.cpp$" "contract.\\1" name ${test})
    add_executable(${name}_test ${test})
    add_dependencies(${name}_test lumcv)
    target_link_libraries(${name}_test PRIVATE
      observed_calls digest_rows $<TARGET_FILE:lumcore_substitute> gtest gtest_main ${CMAKE_DL_LIBS})
    set_target_properties(${name}_test PROPERTIES BUILD_RPATH "${CMAKE_CURRENT_BINARY_DIR}/substitute;${CMAKE_BINARY_DIR}")
    list(APPEND tests_of_the_whole ${name}_test)
    add_test(NAME ${name} COMMAND ${name}_test)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${test_seconds})
  endforeach()
endif()
