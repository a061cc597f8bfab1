# Ten seconds of a fuzzer, from the small corpus of the tree on. The seed is fixed, and so is the most that it does on a fast machine:
# what it finds does not change from run to run.
if(NOT EXISTS ${PROGRAM})
  message("skipped: this machine lacks a library that the fuzzer takes")
  return()
endif()
file(REMOVE_RECURSE ${FOUND})
file(MAKE_DIRECTORY ${FOUND})
execute_process(COMMAND ${PROGRAM} ${OPTIONS} -max_total_time=10 -runs=20000 -timeout=60 -seed=1 -print_final_stats=1
  -artifact_prefix=${FOUND}/ ${FOUND} ${CORPUS} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "the input that failed is in ${FOUND}")
endif()
