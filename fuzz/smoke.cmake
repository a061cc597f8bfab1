# A fuzzer in the tests: the small corpus of the tree, then inputs of its own for ten seconds, beginning with the same each time.
if(NOT EXISTS ${PROGRAM})
  message("skipped: this machine lacks a library that the fuzzer takes")
  return()
endif()
file(REMOVE_RECURSE ${FOUND})
file(MAKE_DIRECTORY ${FOUND})
execute_process(COMMAND ${PROGRAM} ${OPTIONS} -seed=1 -max_total_time=10 -timeout=60 -print_final_stats=1
  -artifact_prefix=${FOUND}/ ${FOUND} ${CORPUS} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the input that failed is in ${FOUND}")
endif()
