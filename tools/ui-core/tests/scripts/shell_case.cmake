# Runs the ui-core tool through `sh -c`, for what execute_process cannot set up
# by itself: a closed standard input or output, output to /dev/full, and
# pipelines. Checks the exit code of the shell command and its standard error.
#   TOOL    the ui-core executable, $TOOL in the command
#   DIR     a scratch folder, $DIR in the command (made empty first)
#   COMMAND the shell command; a ";" in it arrives as "__UI_SEMI__"
#   EXIT    the exit code the command must end with
#   ERR     a regular expression standard error must match (optional)
#   LINES   when set, $DIR/lines.txt is written first: that many lines "a/b"
include(${CMAKE_CURRENT_LIST_DIR}/../../../../cmake/tool_result_checks.cmake)

file(REMOVE_RECURSE "${DIR}")
file(MAKE_DIRECTORY "${DIR}")
if(LINES)
  # Written in pieces of 10,000 lines, so the script never holds more.
  string(REPEAT "a/b\n" 10000 piece)
  file(WRITE "${DIR}/lines.txt" "")
  math(EXPR pieces "${LINES} / 10000")
  foreach(i RANGE 1 ${pieces})
    file(APPEND "${DIR}/lines.txt" "${piece}")
  endforeach()
endif()
string(REPLACE "__UI_SEMI__" ";" COMMAND "${COMMAND}")
set(ENV{TOOL} "${TOOL}")
set(ENV{DIR} "${DIR}")
execute_process(COMMAND sh -c "${COMMAND}" INPUT_FILE /dev/null
                RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE err)
file(REMOVE_RECURSE "${DIR}")
set(report "--- command ---\n${COMMAND}\n--- standard output ---\n${out}--- standard error ---\n${err}")
ui_core_check_exit_and_error("${code}" "${EXIT}" "${err}" "${ERR}" "${report}")
message(STATUS "ok\n${report}")
