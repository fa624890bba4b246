# Checks the progress line of `ui-core node-path --file`. The input is a named
# pipe that gets its first line at once and its second after a second, so the
# run outlasts the quarter of a second before the first redraw.
#   TOOL    the ui-core executable
#   TTY     ON: standard error is a terminal (the run goes through `script`),
#           which must show "<file>: 4 B, 2 lines" and erase it at the end;
#           OFF: standard error is a pipe, which must receive nothing
#   DIR     a scratch folder
#   SCRIPT  the `script` program (util-linux)
file(REMOVE_RECURSE "${DIR}")
file(MAKE_DIRECTORY "${DIR}")
set(fifo "${DIR}/lines.fifo")
execute_process(COMMAND mkfifo "${fifo}" RESULT_VARIABLE code)
if(NOT code EQUAL 0)
  message(FATAL_ERROR "mkfifo failed")
endif()
set(shell_command
    "(printf 'a\\n'; sleep 1; printf 'b\\n') > '${fifo}' & '${TOOL}' node-path --file '${fifo}' > '${DIR}/out.txt'; status=$?; wait; exit $status")
if(TTY)
  # Whatever reaches the terminal comes out of `script` on its standard output.
  execute_process(COMMAND "${SCRIPT}" -qec "${shell_command}" /dev/null
                  INPUT_FILE /dev/null RESULT_VARIABLE code OUTPUT_VARIABLE terminal
                  ERROR_VARIABLE terminal_err)
else()
  execute_process(COMMAND sh -c "${shell_command}" INPUT_FILE /dev/null
                  RESULT_VARIABLE code OUTPUT_VARIABLE terminal ERROR_VARIABLE terminal)
endif()
file(READ "${DIR}/out.txt" out)
file(REMOVE_RECURSE "${DIR}")
if(NOT code EQUAL 0)
  message(FATAL_ERROR "exit code ${code}\n${terminal}")
endif()
if(NOT out STREQUAL "a\t1 identifier: 'a'\nb\t1 identifier: 'b'\n")
  message(FATAL_ERROR "unexpected output:\n${out}")
endif()
string(ASCII 27 esc)
if(TTY)
  # Drawn once (after the second line came), then erased: "\r...\e[K\r\e[K".
  if(NOT terminal MATCHES "^\r[^\n]*lines\\.fifo: 4 B, 2 lines${esc}\\[K\r${esc}\\[K$")
    message(FATAL_ERROR "no progress line, or not erased: '${terminal}'")
  endif()
elseif(NOT terminal STREQUAL "")
  message(FATAL_ERROR "standard error is not a terminal, yet received: '${terminal}'")
endif()
message(STATUS "ok")
