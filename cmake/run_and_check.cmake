# Runs PROGRAM, under EMULATOR if there is one, with ARGUMENTS and no input. Fails unless it ends with EXIT_CODE and what it printed,
# on either stream, matches OUTPUT.
execute_process(
  COMMAND ${EMULATOR} ${PROGRAM} ${ARGUMENTS}
  INPUT_FILE /dev/null
  RESULT_VARIABLE exit_code
  OUTPUT_VARIABLE output
  ERROR_VARIABLE output)
message(STATUS "${output}")
if(NOT exit_code STREQUAL EXIT_CODE)
  message(FATAL_ERROR "ended with ${exit_code}, expected ${EXIT_CODE}")
endif()
if(NOT output MATCHES "${OUTPUT}")
  message(FATAL_ERROR "the output does not match ${OUTPUT}")
endif()
