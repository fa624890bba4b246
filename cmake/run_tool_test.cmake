# Runs the ui-core tool once and checks its exit code and output.
# TOOL: the executable; ARGS: its arguments joined by "@@"; EXIT: the expected
# exit code; EXPECT: a regular expression the combined stdout+stderr must match
# (optional); ENV: one NAME=VALUE to set (optional); STDIN: a file to feed as
# standard input (optional).
if(ARGS STREQUAL "")
  set(args "")
else()
  string(REPLACE "@@" ";" args "${ARGS}")
endif()
# A ";" inside an argument or the pattern arrives as "__UI_SEMI__"; as an argument it
# is restored below when the command line is built.
string(REPLACE "__UI_SEMI__" ";" EXPECT "${EXPECT}")
if(NOT ENV STREQUAL "")
  string(FIND "${ENV}" "=" eq)
  string(SUBSTRING "${ENV}" 0 ${eq} env_name)
  math(EXPR value_start "${eq} + 1")
  string(SUBSTRING "${ENV}" ${value_start} -1 env_value)
  set(ENV{${env_name}} "${env_value}")
endif()
set(input_args "")
if(NOT STDIN STREQUAL "")
  set(input_args INPUT_FILE "${STDIN}")
endif()
set(command "${TOOL}")
foreach(a IN LISTS args)
  string(REPLACE "__UI_SEMI__" "\\;" a "${a}")
  list(APPEND command "${a}")
endforeach()
execute_process(COMMAND ${command} ${input_args}
                RESULT_VARIABLE code OUTPUT_VARIABLE out ERROR_VARIABLE err)
set(all "${out}${err}")
if(NOT code STREQUAL "${EXIT}")
  message(FATAL_ERROR "exit code ${code}, expected ${EXIT}\n--- output ---\n${all}")
endif()
if(NOT EXPECT STREQUAL "" AND NOT all MATCHES "${EXPECT}")
  message(FATAL_ERROR "output does not match '${EXPECT}'\n--- output ---\n${all}")
endif()
message(STATUS "ok\n${all}")
