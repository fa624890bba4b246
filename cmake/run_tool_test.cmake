# Runs the ui-core tool once and checks its exit code and output.
# TOOL: the executable; ARGS: its arguments joined by "@@"; EXIT: the expected
# exit code; EXPECT: a regular expression the combined stdout+stderr must match
# (optional); OUT / ERR: regular expressions standard output / standard error
# alone must match (optional); ENV: one NAME=VALUE to set (optional); STDIN: a
# file to feed as standard input (optional; otherwise /dev/null, so that a
# command that reads standard input never waits for a terminal).
# JSON_RECORDS: the number of lines standard output must have, each a JSON
# object (optional). JSON_CHECKS: checks of single values, joined by "@@",
# each "<line>|<member path>|<expected>": the line counts from 0, the member
# path names members and array positions joined by "." ("error.arguments.0");
# the expected value is compared with the text CMake's string(JSON GET) gives
# (booleans read ON/OFF, null reads as empty), or "#<n>" for an array or
# object of n elements, or "type:<TYPE>" (NULL, NUMBER, STRING, BOOLEAN,
# ARRAY, OBJECT).
include(${CMAKE_CURRENT_LIST_DIR}/tool_result_checks.cmake)

if(ARGS STREQUAL "")
  set(args "")
else()
  string(REPLACE "@@" ";" args "${ARGS}")
endif()
# A ";" inside an argument or the pattern arrives as "__UI_SEMI__"; as an argument it
# is restored below when the command line is built.
foreach(pattern EXPECT OUT ERR)
  string(REPLACE "__UI_SEMI__" ";" ${pattern} "${${pattern}}")
endforeach()
if(NOT ENV STREQUAL "")
  string(FIND "${ENV}" "=" eq)
  string(SUBSTRING "${ENV}" 0 ${eq} env_name)
  math(EXPR value_start "${eq} + 1")
  string(SUBSTRING "${ENV}" ${value_start} -1 env_value)
  set(ENV{${env_name}} "${env_value}")
endif()
if(STDIN STREQUAL "")
  set(STDIN /dev/null)
endif()
set(command "${TOOL}")
foreach(a IN LISTS args)
  string(REPLACE "__UI_SEMI__" "\\;" a "${a}")
  list(APPEND command "${a}")
endforeach()
execute_process(COMMAND ${command} INPUT_FILE "${STDIN}"
                RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE err)
set(all "${out}${err}")
set(report "--- standard output ---\n${out}--- standard error ---\n${err}")
ui_core_check_exit_and_error("${code}" "${EXIT}" "${err}" "${ERR}" "${report}")
if(NOT EXPECT STREQUAL "" AND NOT all MATCHES "${EXPECT}")
  message(FATAL_ERROR "output does not match '${EXPECT}'\n${report}")
endif()
if(NOT OUT STREQUAL "" AND NOT out MATCHES "${OUT}")
  message(FATAL_ERROR "standard output does not match '${OUT}'\n${report}")
endif()

if(NOT JSON_RECORDS STREQUAL "" OR NOT JSON_CHECKS STREQUAL "")
  # The output's lines, taken apart by position: a list would break at a ";"
  # inside a record.
  set(records 0)
  set(rest "${out}")
  while(NOT rest STREQUAL "")
    string(FIND "${rest}" "\n" nl)
    if(nl EQUAL -1)
      message(FATAL_ERROR "record ${records} does not end with a line feed\n${report}")
    endif()
    string(SUBSTRING "${rest}" 0 ${nl} record_${records})
    math(EXPR next "${nl} + 1")
    string(SUBSTRING "${rest}" ${next} -1 rest)
    string(JSON type ERROR_VARIABLE json_error TYPE "${record_${records}}")
    if(json_error OR NOT type STREQUAL "OBJECT")
      message(FATAL_ERROR "line ${records} is not a JSON object (${json_error}): "
                          "${record_${records}}\n${report}")
    endif()
    math(EXPR records "${records} + 1")
  endwhile()
  if(NOT JSON_RECORDS STREQUAL "" AND NOT records EQUAL JSON_RECORDS)
    message(FATAL_ERROR "${records} JSON records, expected ${JSON_RECORDS}\n${report}")
  endif()
  string(REPLACE "@@" ";" checks "${JSON_CHECKS}")
  foreach(check IN LISTS checks)
    string(REPLACE "|" ";" parts "${check}")
    list(LENGTH parts parts_count)
    if(NOT parts_count EQUAL 3)
      message(FATAL_ERROR "malformed JSON check '${check}'")
    endif()
    list(GET parts 0 line)
    list(GET parts 1 path)
    list(GET parts 2 expected)
    if(line GREATER_EQUAL records)
      message(FATAL_ERROR "JSON check '${check}': there are only ${records} records\n${report}")
    endif()
    string(REPLACE "." ";" members "${path}")
    if(expected MATCHES "^#([0-9]+)$")
      set(want "${CMAKE_MATCH_1}")
      string(JSON got ERROR_VARIABLE json_error LENGTH "${record_${line}}" ${members})
    elseif(expected MATCHES "^type:(.*)$")
      set(want "${CMAKE_MATCH_1}")
      string(JSON got ERROR_VARIABLE json_error TYPE "${record_${line}}" ${members})
    else()
      set(want "${expected}")
      string(JSON got ERROR_VARIABLE json_error GET "${record_${line}}" ${members})
    endif()
    if(json_error)
      message(FATAL_ERROR "JSON check '${check}': ${json_error}\nrecord: ${record_${line}}")
    endif()
    if(NOT got STREQUAL want)
      message(FATAL_ERROR "JSON check '${check}': got '${got}'\nrecord: ${record_${line}}")
    endif()
  endforeach()
endif()
message(STATUS "ok\n${all}")
