# Bad and extreme input to the ui-core tool: every case ends with the exit code
# and message its subcommand promises, never with a crash or a hang (each has
# a time limit). Invalid UTF-8 arguments, empty input, lines of 100 MB, binary
# data, and arguments near the system's limit of 128 kB.
set(reliability_dir ${CMAKE_CURRENT_BINARY_DIR}/reliability)
set(reliability_scripts ${PROJECT_SOURCE_DIR}/tests/reliability)

function(ui_core_reliability_limits)
  foreach(name IN LISTS ARGN)
    set_tests_properties(tool.${name} PROPERTIES TIMEOUT 120 LABELS "tool;reliability")
  endforeach()
endfunction()

# --- Invalid UTF-8 in arguments: refused with a message naming the encoding.
# The bytes: a lone continuation byte, an overlong "/" and a byte that never
# occurs in UTF-8, each inside otherwise valid text.
string(ASCII 128 utf8_continuation)
string(ASCII 192 utf8_overlong_lead)
string(ASCII 175 utf8_overlong_tail)
string(ASCII 255 utf8_never)
set(bad_name "Body${utf8_never}Frame")
set(bad_path "Body${utf8_overlong_lead}${utf8_overlong_tail}mass")
set(bad_tail "mass${utf8_continuation}")
set(utf8_cases
    node_path "node-path@${bad_path}"
    object_path "object-path@a///1/${bad_name}"
    subscript "subscript@//2,${utf8_never}3"
    block_name "block-name@model/${bad_tail}"
    access "access@internal${utf8_continuation}"
    unit_conversion_type "unit-conversion-type@${bad_name}"
    unit "unit@k${utf8_never}g"
    lang_path "lang-path@${bad_path}"
    source_block "source@--block@${bad_name}"
    explain_argument "explain@kalder:common:ui:core:kernel:path:InvalidNodePath@${bad_path}")
set(utf8_names "")
while(utf8_cases)
  list(POP_FRONT utf8_cases name args)
  string(REPLACE "@" ";" args "${args}")
  ui_core_tool_test(reliability_invalid_utf8_${name}_is_refused
    EXIT 1 EXPECT "UTF-8" ARGS ${args})
  list(APPEND utf8_names reliability_invalid_utf8_${name}_is_refused)
endwhile()
ui_core_reliability_limits(${utf8_names})

# --- Arguments near the 128 kB a single argument may have.
string(REPEAT "a/" 40000 long_node_path)            # 40,001 identifiers
string(REPEAT "a///1/" 15000 long_object_path)      # 30,001 elements
string(REPEAT "(" 40000 deep_open)
string(REPEAT ")" 40000 deep_close)
string(REPEAT "m*" 40000 long_product)
ui_core_tool_test(reliability_node_path_of_40001_identifiers
  EXPECT "with 40001 identifiers" ARGS node-path "${long_node_path}a")
ui_core_tool_test(reliability_object_path_of_30001_elements
  EXPECT "elements: 30001" ARGS object-path "${long_object_path}b")
ui_core_tool_test(reliability_unit_nested_40000_deep_is_refused EXIT 1
  EXPECT "error: " ARGS unit "${deep_open}m${deep_close}")
ui_core_tool_test(reliability_unit_product_of_40001_factors
  EXPECT "m\\^40001" ARGS unit "${long_product}m")
ui_core_reliability_limits(
  reliability_node_path_of_40001_identifiers
  reliability_object_path_of_30001_elements
  reliability_unit_nested_40000_deep_is_refused
  reliability_unit_product_of_40001_factors)

# --- Inputs made at test time (100 MB each; see make_tool_inputs.cmake).
add_test(NAME tool.reliability_make_inputs
         COMMAND ${CMAKE_COMMAND} -DDIR=${reliability_dir}
                 -P ${reliability_scripts}/make_tool_inputs.cmake)
add_test(NAME tool.reliability_remove_inputs
         COMMAND ${CMAKE_COMMAND} -DDIR=${reliability_dir} -DCLEAN=1
                 -P ${reliability_scripts}/make_tool_inputs.cmake)
set_tests_properties(tool.reliability_make_inputs PROPERTIES
  FIXTURES_SETUP ui_core_reliability_inputs LABELS "tool;reliability")
set_tests_properties(tool.reliability_remove_inputs PROPERTIES
  FIXTURES_CLEANUP ui_core_reliability_inputs LABELS "tool;reliability")

# ui_core_checked_tool_test(name EXIT <code|refused> [INPUTS] [STDIN file]
#                           [STDERR regex] [EMPTY_STDERR] [OUTPUT_SIZE n] [OUTPUT_MIN n]
#                           [OUTPUT_TAIL regex] [OUTPUT_EQUALS file] ARGS ...)
# Runs tests/reliability/run_tool_checked.cmake: the output goes to a file, so
# it may be large or binary, and empty arguments are passed on. INPUTS: the
# test reads the files that make_tool_inputs.cmake writes.
function(ui_core_checked_tool_test name)
  cmake_parse_arguments(PARSE_ARGV 1 T "EMPTY_STDERR;INPUTS"
                        "EXIT;STDIN;STDERR;OUTPUT_SIZE;OUTPUT_MIN;OUTPUT_TAIL;OUTPUT_EQUALS" "ARGS")
  list(JOIN T_ARGS "@@" joined)
  add_test(NAME tool.${name}
           COMMAND ${CMAKE_COMMAND} "-DTOOL=$<TARGET_FILE:ui-core>" "-DARGS=${joined}"
                   "-DSTDIN=${T_STDIN}" "-DOUT=${reliability_dir}/${name}.out" "-DEXIT=${T_EXIT}"
                   "-DSTDERR=${T_STDERR}" "-DEMPTY_STDERR=${T_EMPTY_STDERR}"
                   "-DOUTPUT_SIZE=${T_OUTPUT_SIZE}" "-DOUTPUT_MIN=${T_OUTPUT_MIN}"
                   "-DOUTPUT_TAIL=${T_OUTPUT_TAIL}" "-DOUTPUT_EQUALS=${T_OUTPUT_EQUALS}"
                   -P ${reliability_scripts}/run_tool_checked.cmake)
  # Messages in English, whatever the environment of the test run.
  set_tests_properties(tool.${name} PROPERTIES TIMEOUT 300 LABELS "tool;reliability"
                                               ENVIRONMENT "LC_ALL=C")
  if(T_INPUTS)
    set_tests_properties(tool.${name} PROPERTIES FIXTURES_REQUIRED ui_core_reliability_inputs)
  endif()
endfunction()

# --- Empty input: what each subcommand's contract says about the empty text.
ui_core_checked_tool_test(reliability_empty_node_path_is_the_empty_path
  EXIT 0 OUTPUT_TAIL "^'' is a valid node path with 0 identifiers\n" ARGS node-path "")
ui_core_checked_tool_test(reliability_empty_object_path_has_no_elements
  EXIT 0 OUTPUT_TAIL "elements: 0\n" ARGS object-path "")
ui_core_checked_tool_test(reliability_empty_subscript_is_refused
  EXIT 1 STDERR "InvalidObjectPathSubscriptString" ARGS subscript "")
ui_core_checked_tool_test(reliability_empty_access_is_refused
  EXIT 1 STDERR "InvalidAccess" ARGS access "")
ui_core_checked_tool_test(reliability_empty_unit_conversion_type_is_unknown
  EXIT 0 OUTPUT_TAIL "^unknown" ARGS unit-conversion-type "")
ui_core_checked_tool_test(reliability_empty_unit_is_refused
  EXIT 1 STDERR "^error: " ARGS unit "")
ui_core_checked_tool_test(reliability_empty_lang_path_is_refused
  EXIT 1 STDERR "InvalidNodePath1" ARGS lang-path "")
ui_core_checked_tool_test(reliability_empty_block_path_gives_an_empty_name
  EXIT 0 OUTPUT_SIZE 1 EMPTY_STDERR ARGS block-name "")
ui_core_checked_tool_test(reliability_empty_explain_identifier_is_bad_usage
  EXIT 2 ARGS explain "")
ui_core_checked_tool_test(reliability_empty_size_is_bad_usage
  EXIT 2 STDERR "size" ARGS ind2sub 7 "")

ui_core_checked_tool_test(reliability_escape_xml_of_no_input_is_empty
  EXIT 0 INPUTS STDIN ${reliability_dir}/empty.txt OUTPUT_SIZE 0 EMPTY_STDERR ARGS escape-xml)
ui_core_checked_tool_test(reliability_batch_of_no_lines_runs_nothing
  EXIT 0 INPUTS OUTPUT_TAIL "^0 command\\(s\\) run, 0 refused their input\n$"
  ARGS batch ${reliability_dir}/empty.txt)
# 100 MB in one line: escaped as a stream; each ten bytes "abcdefghi<" become
# the thirteen "abcdefghi&lt;".
ui_core_checked_tool_test(reliability_escape_xml_of_a_100mb_line
  EXIT 0 INPUTS STDIN ${reliability_dir}/huge_line.txt OUTPUT_SIZE 130000000
  OUTPUT_TAIL "abcdefghi&lt;$" EMPTY_STDERR ARGS escape-xml)
# A command line of 100 MB: the commands of a batch run in its own process,
# so no limit of the system on arguments applies; the line is echoed whole
# ("$ ui-core " and 100,000,021 bytes), then the command's one line of output.
ui_core_checked_tool_test(reliability_batch_line_of_100mb_runs
  EXIT 0 INPUTS EMPTY_STDERR OUTPUT_SIZE 100000086
  OUTPUT_TAIL "aaaa\nunknown \\(-1\\)\n\n1 command\\(s\\) run, 0 refused their input\n$"
  ARGS batch ${reliability_dir}/huge_batch.txt)
# Binary data: the tool's own executable. Escaping replaces invalid UTF-8 and
# keeps every other byte, NUL included, so nothing is lost; as a batch file it
# is refused at its first line.
ui_core_checked_tool_test(reliability_escape_xml_of_binary_data
  EXIT 0 STDIN $<TARGET_FILE:ui-core> OUTPUT_MIN 1000000 EMPTY_STDERR ARGS escape-xml)
ui_core_checked_tool_test(reliability_batch_of_binary_data_is_refused
  EXIT refused STDERR "error: " ARGS batch $<TARGET_FILE:ui-core>)
# Commands of a batch run in its process with a parser built once: 20,000
# lines take a second or two, where a process per line took about a minute.
string(REPEAT "block-name model/sub/Gain\n" 20000 batch_20000_lines)
file(WRITE ${reliability_dir}/batch_20000_lines.txt "${batch_20000_lines}")
ui_core_checked_tool_test(reliability_batch_of_20000_lines_runs_in_one_process
  EXIT 0 EMPTY_STDERR OUTPUT_TAIL "\nGain\n\n20000 command\\(s\\) run, 0 refused their input\n$"
  ARGS batch ${reliability_dir}/batch_20000_lines.txt)
set_tests_properties(tool.reliability_batch_of_20000_lines_runs_in_one_process PROPERTIES
  TIMEOUT 40)
# A small binary file whose escaped form is known: NUL, an overlong form, a
# stray byte, a UTF-8 encoded surrogate and a sequence cut off by the end of
# the input each come out as the Unicode rules say, however the input is cut
# into chunks.
foreach(chunk 1 3 65536)
  ui_core_checked_tool_test(reliability_escape_xml_of_mixed_binary_in_chunks_of_${chunk}
    EXIT 0 STDIN ${reliability_scripts}/data/binary.in
    OUTPUT_EQUALS ${reliability_scripts}/data/binary.expected.xml
    ARGS escape-xml --chunk-size ${chunk})
endforeach()
