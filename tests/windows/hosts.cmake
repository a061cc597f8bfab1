# Running the example hosts, and what they print.
set(differences "   0   5  10   0\n   0  30   0  80\n")

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY OUTPUT_VARIABLE output)
  string(REPLACE "\r\n" "\n" output "${output}")
  set(output "${output}" PARENT_SCOPE)
endfunction()

function(expect_output expected)
  run(${ARGN})
  if(NOT output MATCHES "${expected}")
    message(FATAL_ERROR "${ARGN} printed:\n${output}\nand not:\n${expected}")
  endif()
endfunction()
