# vkpch(EXPECTED_RC OUT_VAR ARGS...): runs the tool (under the emulator when
# cross-built), checks its exit status and returns stdout + stderr. A caller
# may set STDIN to extra execute_process arguments (INPUT_FILE ...).
function(vkpch expected_rc out_var)
  execute_process(COMMAND ${EMULATOR} ${VKPCH} ${ARGN} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err
    ${STDIN})
  string(REPLACE "\r" "" out "${out}")
  string(REPLACE "\r" "" err "${err}")
  if(NOT rc EQUAL expected_rc)
    message(FATAL_ERROR "vkpch ${ARGN}: exit ${rc}, expected ${expected_rc}\n${out}${err}")
  endif()
  set(${out_var} "${out}${err}" PARENT_SCOPE)
endfunction()

# expect_output(WHAT GOT EXPECTED): fails the test when the output differs.
function(expect_output what got expected)
  if(NOT got STREQUAL expected)
    message(FATAL_ERROR "${what} printed:\n${got}\nexpected:\n${expected}")
  endif()
endfunction()
