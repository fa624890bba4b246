# The checks every ui-core tool test script applies to what a run gave: the
# exit code, then standard error against a regular expression. Included by the
# scripts that run the tool (cmake -P); `report` is what a failure prints.
function(ui_core_check_exit_and_error code expected_exit err err_pattern report)
  if(NOT code STREQUAL "${expected_exit}")
    message(FATAL_ERROR "exit code ${code}, expected ${expected_exit}\n${report}")
  endif()
  if(NOT err_pattern STREQUAL "" AND NOT err MATCHES "${err_pattern}")
    message(FATAL_ERROR "standard error does not match '${err_pattern}'\n${report}")
  endif()
endfunction()
