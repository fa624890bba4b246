# Exit codes and what the tool says on bad usage: 0 every input accepted, 1
# some refused, 2 bad usage (one line naming the word that was not understood),
# 3 reading or writing failed (the run stops at the first failure).

# ui_core_shell_test(name EXIT <code> [ERR <regex>] [LINES <n>] COMMAND <sh command>)
# Runs the command through `sh -c` (see scripts/shell_case.cmake), with $TOOL
# the ui-core executable and $DIR a scratch folder holding $DIR/lines.txt of
# LINES lines "a/b".
function(ui_core_shell_test name)
  cmake_parse_arguments(PARSE_ARGV 1 T "" "EXIT;ERR;LINES;COMMAND" "")
  string(REPLACE ";" "__UI_SEMI__" command "${T_COMMAND}")
  add_test(NAME tool.${name}
           COMMAND ${CMAKE_COMMAND} "-DTOOL=$<TARGET_FILE:ui-core>"
                   "-DDIR=${CMAKE_CURRENT_BINARY_DIR}/shell/${name}" "-DCOMMAND=${command}"
                   "-DEXIT=${T_EXIT}" "-DERR=${T_ERR}" "-DLINES=${T_LINES}"
                   -P ${PROJECT_SOURCE_DIR}/tools/ui-core/tests/scripts/shell_case.cmake)
  set_tests_properties(tool.${name} PROPERTIES LABELS tool TIMEOUT 120)
endfunction()

# --- An unknown subcommand or option: one line with the closest valid word.
ui_core_tool_test(usage_unknown_subcommand_names_the_closest EXIT 2
  ERR "^error: unknown subcommand 'bogus' \\(did you mean '[a-z-]+'\\?\\)\n$" OUT "^$"
  ARGS bogus)
ui_core_tool_test(usage_help_as_a_subcommand_points_at_the_option EXIT 2
  ERR "^error: unknown subcommand 'help' \\(did you mean '--help'\\?\\)\n$" ARGS help)
ui_core_tool_test(usage_misspelt_version_option EXIT 2
  ERR "^error: unknown option '--versio' \\(did you mean '--version'\\?\\)\n$" ARGS --versio)
ui_core_tool_test(usage_misspelt_subcommand EXIT 2
  ERR "^error: unknown subcommand 'node-paht' \\(did you mean 'node-path'\\?\\)\n$"
  ARGS node-paht a)
ui_core_tool_test(usage_misspelt_subcommand_option EXIT 2
  ERR "^error: node-path has no option '--josn' \\(did you mean '--json'\\?\\)\n$" OUT "^$"
  ARGS node-path --josn a)
ui_core_tool_test(usage_misspelt_option_with_a_value EXIT 2
  ERR "^error: unit has no option '--too' \\(did you mean '--to'\\?\\)\n$" ARGS unit --too=m km)
ui_core_tool_test(usage_extra_argument_is_named EXIT 2
  ERR "^error: unexpected argument 'b' to batch\n$" ARGS batch a b)

# --- An option value the library refuses is bad usage, before any input is read.
ui_core_tool_test(usage_invalid_relative_to_base EXIT 2 OUT "^$"
  ERR "^error: --relative-to: kalder:common:ui:core:kernel:path:InvalidNodePath: '/bad' is not a valid node path\\.\n"
  ENV "LC_ALL=C" ARGS node-path --relative-to /bad a)
ui_core_tool_test(usage_invalid_relative_to_base_reads_no_input EXIT 2 OUT "^$"
  STDIN ${CMAKE_CURRENT_LIST_DIR}/data/object_path_line.txt ARGS node-path --relative-to /bad)
ui_core_tool_test(usage_invalid_unit_target EXIT 2 OUT "^$"
  ERR "^error: --to: units2:core:UnknownUnit: 'furlong' names the unknown unit 'furlong'\\.\n"
  ENV "LC_ALL=C" ARGS unit km --to furlong)

# --- Failed reads and writes: exit 3, and the run stops there.
ui_core_shell_test(io_version_into_a_full_device EXIT 3
  ERR "^error: cannot write standard output: " COMMAND "\"$TOOL\" --version > /dev/full")
ui_core_shell_test(io_help_into_a_full_device EXIT 3
  ERR "^error: cannot write standard output: " COMMAND "\"$TOOL\" --help > /dev/full")
ui_core_shell_test(io_subcommand_help_into_a_full_device EXIT 3
  COMMAND "\"$TOOL\" node-path --help > /dev/full")
ui_core_shell_test(io_results_into_a_full_device EXIT 3
  ERR "^error: cannot write standard output: No space left on device\n$"
  COMMAND "\"$TOOL\" node-path a/b > /dev/full")
ui_core_shell_test(io_line_results_into_a_full_device EXIT 3
  ERR "^error: cannot write standard output: " LINES 10000
  COMMAND "\"$TOOL\" node-path --file \"$DIR/lines.txt\" > /dev/full")
ui_core_shell_test(io_escaped_stream_into_a_full_device EXIT 3
  ERR "^error: cannot write standard output: " COMMAND "printf 'a<b' | \"$TOOL\" escape-xml > /dev/full")
ui_core_shell_test(io_identifier_list_into_a_full_device EXIT 3
  COMMAND "\"$TOOL\" explain --list > /dev/full")
ui_core_shell_test(io_batch_into_a_full_device EXIT 3
  COMMAND "printf 'node-path a\\n' | \"$TOOL\" batch > /dev/full")
ui_core_shell_test(io_closed_standard_output EXIT 3
  ERR "^error: cannot write standard output: " COMMAND "\"$TOOL\" node-path a/b >&-")
ui_core_shell_test(io_refusal_into_a_full_standard_error EXIT 3
  COMMAND "\"$TOOL\" node-path /mass 2> /dev/full")
ui_core_shell_test(io_closed_standard_input EXIT 3
  ERR "^error: cannot read standard input: " COMMAND "\"$TOOL\" node-path <&-")
ui_core_shell_test(io_closed_standard_input_of_a_batch EXIT 3
  ERR "^error: cannot read standard input: " COMMAND "\"$TOOL\" batch <&-")
# Writing stops the run at the first failed write: the tool exits long before
# it has read a million lines, so `cat` cannot deliver them all.
ui_core_shell_test(io_stops_reading_at_the_first_failed_write EXIT 3 LINES 1000000
  COMMAND "(cat \"$DIR/lines.txt\" && touch \"$DIR/all-read\") | \"$TOOL\" node-path > /dev/full; code=$?; test ! -e \"$DIR/all-read\" || exit 99; exit $code")
