# Inputs from arguments, --file and standard input; the line and JSON Lines
# output; --locale; exit codes; CRLF and invalid UTF-8 in input lines; lines
# longer than the read buffer; the progress line; and the examples in --help.
# The input files are written at configure time, so that the bytes in them
# (carriage returns, invalid UTF-8) are exactly those written here.
set(stream_dir ${CMAKE_CURRENT_BINARY_DIR}/streaming)
string(ASCII 13 cr)
string(ASCII 255 byte_ff)
string(ASCII 192 byte_c0)
string(ASCII 175 byte_af)
file(WRITE ${stream_dir}/paths.txt "Body//Frame/mass\n/mass\na///b\nx\n")
file(WRITE ${stream_dir}/paths_valid.txt "a/b\nBody//Frame/mass\n")
file(WRITE ${stream_dir}/paths_crlf.txt "Body//Frame/mass${cr}\n/mass${cr}\nx${cr}\n")
file(WRITE ${stream_dir}/paths_bad_utf8.txt
     "a/b\nBody${byte_ff}Frame\nm${byte_c0}${byte_af}\nc\n")
file(WRITE ${stream_dir}/blocks_no_final_newline.txt "a/b\nc/d")
file(WRITE ${stream_dir}/object_paths.txt "a///1, 2/b\na///b\n//1///2\n")
file(WRITE ${stream_dir}/subscripts.txt "// 2 ,3\n//0\n")
file(WRITE ${stream_dir}/sub2ind.txt "//2, 3 3x4\n4 1x5\n2,3\n 2,3   3x4  \n7 3y4\n")
file(WRITE ${stream_dir}/sub2ind_crlf.txt "//2, 3 3x4${cr}\n2,3 3x4${cr}\n")
file(WRITE ${stream_dir}/explain.txt
     "kalder:common:ui:core:kernel:path:InvalidNodeId\ta//${cr}\n"
     "kalder:common:ui:core:kernel:data_struct:InvalidArrayArguments\t5\t2x3\n"
     "nocolon\n")
file(WRITE ${stream_dir}/markup.txt "<a>\n&\n")
file(WRITE ${stream_dir}/batch.txt "node-path\nnode-path a\n")
file(WRITE ${stream_dir}/units_bad_utf8.txt "km\nk${byte_ff}m\n")
# One line of 3,000,001 bytes: longer than the 1 MiB read buffer, so the
# buffer has to grow twice.
string(REPEAT "ab/" 1000000 long_block_path)
file(WRITE ${stream_dir}/long_line.txt "${long_block_path}z\n")

# --- The same input from --file, from standard input, and from "-".
set(paths_lines
    "^Body//Frame/mass\t2 identifiers: 'Body//Frame' 'mass'\n/mass\terror: kalder:common:ui:core:kernel:path:InvalidNodePath: '/mass' is not a valid node path\\.\na///b\terror: kalder:common:ui:core:kernel:path:InvalidNodeId: 'a//' is not a valid node identifier\\.\nx\t1 identifier: 'x'\n$")
ui_core_tool_test(streaming_file_gives_one_line_per_input EXIT 1
  OUT "${paths_lines}" ERR "^ui-core: 2 of 4 inputs refused\n$" ENV "LC_ALL=C"
  ARGS node-path --file ${stream_dir}/paths.txt)
ui_core_tool_test(streaming_short_file_option EXIT 1
  OUT "${paths_lines}" ENV "LC_ALL=C" ARGS node-path -f ${stream_dir}/paths.txt)
ui_core_tool_test(streaming_standard_input_without_arguments EXIT 1
  OUT "${paths_lines}" ERR "^ui-core: 2 of 4 inputs refused\n$" ENV "LC_ALL=C"
  STDIN ${stream_dir}/paths.txt ARGS node-path)
ui_core_tool_test(streaming_standard_input_from_a_dash EXIT 1
  OUT "${paths_lines}" ENV "LC_ALL=C" STDIN ${stream_dir}/paths.txt ARGS node-path -)
ui_core_tool_test(streaming_standard_input_from_file_dash EXIT 1
  OUT "${paths_lines}" ENV "LC_ALL=C" STDIN ${stream_dir}/paths.txt ARGS node-path --file -)
ui_core_tool_test(streaming_last_line_needs_no_line_end
  OUT "^a/b\tb\nc/d\td\n$" ERR "^$" ARGS block-name --file ${stream_dir}/blocks_no_final_newline.txt)
ui_core_tool_test(streaming_relative_to_in_lines
  OUT "^a/b\t2 identifiers: 'a' 'b'\trelative: 'b'\nBody//Frame/mass\t2 identifiers: 'Body//Frame' 'mass'\trelative: not a prefix\n$"
  ARGS node-path --relative-to a --file ${stream_dir}/paths_valid.txt)

# --- Several arguments to subcommands that used to take one.
ui_core_tool_test(streaming_sub2ind_arguments_with_size OUT "^7\n0\n$"
  ARGS sub2ind --size 3x4 2,3 1,1)
ui_core_tool_test(streaming_ind2sub_argument_pairs OUT "^//2, 3\n//4, 1\n$"
  ARGS ind2sub 7 3x4 3 5x1)
ui_core_tool_test(streaming_access_refusal_in_the_middle EXIT 1
  OUT "^internal\nexternal\n$" ERR "^error: [^\n]*InvalidAccess: 'bogus' is not a valid access"
  ENV "LC_ALL=C" ARGS access internal bogus external)
ui_core_tool_test(streaming_block_names_of_arguments OUT "^b\nd\n$" ARGS block-name a/b c/d)
ui_core_tool_test(streaming_subscripts_get_headings
  OUT "^input: //1\ncount: 1\nvalues: 1\n.*input: //2\ncount: 1\nvalues: 2\n"
  ARGS subscript //1 //2)
ui_core_tool_test(streaming_units_get_headings
  OUT "^input: km\n.*factor: 1000\n.*input: cm\n.*factor: 1/100 \\(0\\.01\\)\n"
  ARGS unit --to m km cm)
ui_core_tool_test(streaming_sources_of_blocks OUT "^block a\nblock b\n$"
  ARGS source --kind block a b)
ui_core_tool_test(streaming_sub2ind_lines
  EXIT 1 ENV "LC_ALL=C"
  OUT "^//2, 3 3x4\t7\n4 1x5\terror: [^\n]*InsufficientSubscriptDimensions: [^\n]*\n2,3\terror: ui-core:MissingSize: '2,3' has no array size after the subscript \\(or give --size\\)\n 2,3   3x4  \t7\n7 3y4\terror: ui-core:InvalidSize: the size '3y4' is not dimensions joined by 'x', such as 3x4\n$"
  STDIN ${stream_dir}/sub2ind.txt ARGS sub2ind)

# --- JSON Lines: each line one object; the structure of each subcommand.
ui_core_tool_test(streaming_json_node_paths EXIT 1 ENV "LC_ALL=C"
  OUT "^{\"input\":\"Body//Frame/mass\",\"ok\":true,\"ids\":\\[\"Body//Frame\",\"mass\"\\],\"text\":\"Body//Frame/mass\"}\n{\"input\":\"/mass\",\"ok\":false,\"error\":{\"catalogue\":\"kalder:common:ui:core:kernel:path\",\"key\":\"InvalidNodePath\",\"arguments\":\\[\"/mass\"\\],\"message\":\"'/mass' is not a valid node path\\.\"}}\n"
  JSON_RECORDS 4
  JSON_CHECKS "0|ok|ON" "0|ids|#2" "0|ids.0|Body//Frame" "0|ids.1|mass"
              "1|ok|OFF" "1|input|/mass" "1|error.catalogue|kalder:common:ui:core:kernel:path"
              "1|error.key|InvalidNodePath" "1|error.arguments|#1" "1|error.arguments.0|/mass"
              "1|error.message|'/mass' is not a valid node path."
              "2|error.key|InvalidNodeId" "2|error.arguments.0|a//"
              "3|input|x" "3|ids|#1" "3|text|x"
  ARGS node-path --json --file ${stream_dir}/paths.txt)
ui_core_tool_test(streaming_json_relative_paths
  JSON_RECORDS 2 JSON_CHECKS "0|relative|b" "1|relative|type:NULL"
  ARGS node-path --json --relative-to a a/b x)
ui_core_tool_test(streaming_json_object_paths EXIT 1
  JSON_RECORDS 3
  JSON_CHECKS "0|elements|#3" "0|elements.0.kind|name" "0|elements.0.name|a"
              "0|elements.1.kind|subscript" "0|elements.1.values|#2"
              "0|elements.1.values.0|1" "0|elements.1.values.1|2" "0|elements.1.text|//1, 2"
              "0|elements.2.name|b" "0|rest|type:STRING" "0|text|a///1, 2/b"
              "1|elements|#1" "1|rest|//b"
              "2|ok|OFF" "2|error.key|InvalidObjectPath" "2|error.arguments.0|//1///2"
  ARGS object-path --json --partial --file ${stream_dir}/object_paths.txt)
ui_core_tool_test(streaming_json_subscripts EXIT 1
  JSON_RECORDS 2
  JSON_CHECKS "0|values|#2" "0|values.0|2" "0|values.1|3" "0|text|//2, 3"
              "1|error.key|InvalidObjectPathSubscriptString"
  STDIN ${stream_dir}/subscripts.txt ARGS subscript --json)
ui_core_tool_test(streaming_json_sub2ind EXIT 1
  JSON_RECORDS 5
  JSON_CHECKS "0|index|7" "0|subscript.0|2" "0|subscript.1|3" "0|size.0|3" "0|size.1|4"
              "1|error.key|InsufficientSubscriptDimensions"
              "2|error.catalogue|ui-core" "2|error.key|MissingSize" "2|error.arguments.0|2,3"
              "3|index|7" "4|error.key|InvalidSize" "4|error.arguments.0|3y4"
  STDIN ${stream_dir}/sub2ind.txt ARGS sub2ind --json)
ui_core_tool_test(streaming_json_ind2sub
  OUT "^{\"input\":\"7\",\"ok\":true,\"index\":7,\"size\":\\[3,4\\],\"subscript\":\\[2,3\\],\"text\":\"//2, 3\"}\n"
  JSON_RECORDS 2
  JSON_CHECKS "1|index|11" "1|subscript.0|3" "1|subscript.1|4" "1|text|//3, 4"
  ARGS ind2sub --json --size 3x4 7 11)
ui_core_tool_test(streaming_json_lang_path
  JSON_RECORDS 1
  JSON_CHECKS "0|container|Body//Frame.mass" "0|head|Body//Frame" "0|tail|mass"
              "0|node_path|Body//Frame/mass"
  ARGS lang-path --json Body//Frame/mass)
ui_core_tool_test(streaming_json_block_names
  JSON_RECORDS 2 JSON_CHECKS "0|name|Gain" "1|name|//b"
  ARGS block-name --json model/sub/Gain a///b)
ui_core_tool_test(streaming_json_block_path_without_model
  JSON_RECORDS 1 JSON_CHECKS "0|path|sub/Gain"
  ARGS block-path-without-model --json model/sub/Gain)
ui_core_tool_test(streaming_json_access EXIT 1 ENV "LC_ALL=C"
  JSON_RECORDS 2
  JSON_CHECKS "0|access|internal" "1|error.catalogue|kalder:common:ui:core:kernel:access"
              "1|error.key|InvalidAccess" "1|error.arguments.0|bogus"
  ARGS access --json internal bogus)
ui_core_tool_test(streaming_json_unit_conversion_type
  JSON_RECORDS 2 JSON_CHECKS "0|type|relative" "0|value|1" "1|type|unknown" "1|value|-1"
  ENV "LC_ALL=C" ARGS unit-conversion-type --json relative Relative)
ui_core_tool_test(streaming_json_unit
  JSON_RECORDS 2
  JSON_CHECKS "0|text|degF" "0|affine|ON" "0|scale|5/9" "0|base|K" "0|zero|45967/180"
              "0|to.text|degC" "0|to.mode|affine" "0|to.factor|5/9" "0|to.offset|-160/9"
              "0|display|degF" "1|affine|ON" "1|zero|5463/20" "1|to.factor|1"
  ARGS unit --json --to degC degF degC)
ui_core_tool_test(streaming_json_source
  JSON_RECORDS 2
  JSON_CHECKS "0|kind|dialog" "0|source|dialog of block m/G" "1|source|dialog of block m/H"
  ARGS source --json --kind dialog m/G m/H)
ui_core_tool_test(streaming_json_explain EXIT 1 ENV "LC_ALL=C"
  JSON_RECORDS 3
  JSON_CHECKS "0|identifier|kalder:common:ui:core:kernel:path:InvalidNodeId"
              "0|arguments|#1" "0|arguments.0|a//"
              "0|message|'a//' is not a valid node identifier."
              "1|arguments|#2" "1|message|5 elements do not fill an array of size 2x3."
              "2|error.key|InvalidIdentifier"
  ARGS explain --json --file ${stream_dir}/explain.txt)
ui_core_tool_test(streaming_json_escape_xml
  OUT "^{\"input\":\"<a>\",\"ok\":true,\"escaped\":\"&lt;a&gt;\"}\n{\"input\":\"&\",\"ok\":true,\"escaped\":\"&amp;\"}\n$"
  STDIN ${stream_dir}/markup.txt ARGS escape-xml --json)
ui_core_tool_test(streaming_escape_xml_arguments OUT "^a&lt;b\nit&apos;s\n$"
  ARGS escape-xml "a<b" "it's")
ui_core_tool_test(streaming_escape_xml_file_is_copied_as_a_stream OUT "^&lt;a&gt;\n&amp;\n$"
  ARGS escape-xml --file ${stream_dir}/markup.txt)

# --- --locale picks the language of the messages, whatever the environment.
ui_core_tool_test(streaming_locale_german_json EXIT 1 ENV "LC_ALL=C"
  JSON_CHECKS "0|error.message|'a/' ist kein gültiger Knotenpfad."
  ARGS node-path --json --locale de_DE.UTF-8 a/)
ui_core_tool_test(streaming_locale_english_over_german_environment EXIT 1
  ENV "LC_ALL=de_DE.UTF-8"
  JSON_CHECKS "0|error.message|'a/' is not a valid node path."
  ARGS node-path --json --locale en_US.UTF-8 a/)
ui_core_tool_test(streaming_environment_german_without_locale EXIT 1
  ENV "LC_ALL=de_DE.UTF-8"
  JSON_CHECKS "0|error.message|'a/' ist kein gültiger Knotenpfad."
  ARGS node-path --json a/)
ui_core_tool_test(streaming_locale_language_name_only EXIT 1 ENV "LC_ALL=C"
  ERR "InvalidNodePath: 'a/' ist kein gültiger Knotenpfad\\.\n$"
  ARGS node-path --locale de a/)
ui_core_tool_test(streaming_locale_german_lines EXIT 1 ENV "LC_ALL=C"
  OUT "\n/mass\terror: kalder:common:ui:core:kernel:path:InvalidNodePath: '/mass' ist kein gültiger Knotenpfad\\.\n"
  ERR "^ui-core: 2 von 4 Eingaben abgelehnt\n$"
  ARGS node-path --locale de_DE.UTF-8 --file ${stream_dir}/paths.txt)
ui_core_tool_test(streaming_locale_unknown_conversion_type ENV "LC_ALL=C"
  OUT "^unbekannt \\(-1\\)\n$" ARGS unit-conversion-type --locale de Relative)
ui_core_tool_test(streaming_locale_english_access EXIT 1 ENV "LC_ALL=de_DE.UTF-8"
  ERR "'intern' is not a valid access" ARGS access --locale en_US.UTF-8 intern)
ui_core_tool_test(streaming_locale_german_unit EXIT 1 ENV "LC_ALL=C"
  ERR "nennt die unbekannte Einheit 'furlong'" ARGS unit --locale de_DE.UTF-8 furlong)
ui_core_tool_test(streaming_locale_german_tool_message EXIT 1 ENV "LC_ALL=C"
  JSON_CHECKS "2|error.message|'2,3' hat keine Feldgröße (oder --size angeben)"
  STDIN ${stream_dir}/sub2ind.txt ARGS sub2ind --json --locale de)

# --- Exit codes: 0 all accepted, 1 some refused (the rest still processed), 2 bad usage.
ui_core_tool_test(streaming_exit_0_when_all_accepted EXIT 0 ERR "^$"
  ARGS node-path --file ${stream_dir}/paths_valid.txt)
ui_core_tool_test(streaming_exit_1_keeps_processing EXIT 1 OUT "\nx\t1 identifier: 'x'\n$"
  ARGS node-path --file ${stream_dir}/paths.txt)
ui_core_tool_test(streaming_exit_2_for_file_and_arguments EXIT 2 ERR "not both"
  ARGS node-path --file ${stream_dir}/paths.txt a/b)
ui_core_tool_test(streaming_exit_2_for_a_missing_file EXIT 2 ERR "cannot open"
  ARGS node-path --file ${stream_dir}/no-such-file.txt)
ui_core_tool_test(streaming_exit_2_for_a_directory EXIT 2 ERR "is a directory"
  ARGS node-path --file ${stream_dir})
ui_core_tool_test(streaming_exit_2_for_unpaired_arguments EXIT 2 ERR "pairs"
  ARGS sub2ind 1 3x4 2)
ui_core_tool_test(streaming_exit_2_for_a_bad_size_option EXIT 2 EXPECT "--size"
  ARGS ind2sub --size 3y4 7)
ui_core_tool_test(streaming_exit_2_for_an_unknown_option EXIT 2 ARGS node-path --bogus a)
ui_core_tool_test(streaming_exit_2_for_an_unknown_kind EXIT 2 ARGS source --kind file a)

# --- CRLF line ends: the "\r" is not part of the input.
ui_core_tool_test(streaming_crlf_lines EXIT 1 ENV "LC_ALL=C"
  OUT "^Body//Frame/mass\t2 identifiers: 'Body//Frame' 'mass'\n/mass\terror: kalder:common:ui:core:kernel:path:InvalidNodePath: '/mass' is not a valid node path\\.\nx\t1 identifier: 'x'\n$"
  ARGS node-path --file ${stream_dir}/paths_crlf.txt)
ui_core_tool_test(streaming_crlf_json EXIT 1
  JSON_RECORDS 3
  JSON_CHECKS "0|input|Body//Frame/mass" "0|ids.1|mass" "1|error.arguments.0|/mass" "2|text|x"
  STDIN ${stream_dir}/paths_crlf.txt ARGS node-path --json)
ui_core_tool_test(streaming_crlf_size_is_read OUT "^//2, 3 3x4\t7\n2,3 3x4\t7\n$"
  ARGS sub2ind --file ${stream_dir}/sub2ind_crlf.txt)
ui_core_tool_test(streaming_crlf_last_explain_argument EXIT 1
  JSON_CHECKS "0|arguments.0|a//" ARGS explain --json --file ${stream_dir}/explain.txt)

# --- Invalid UTF-8: the line is refused, shown with \x escapes; the rest goes on.
ui_core_tool_test(streaming_invalid_utf8_lines EXIT 1 ENV "LC_ALL=C"
  OUT "^a/b\t2 identifiers: 'a' 'b'\nBody\\\\xffFrame\terror: ui-core:InvalidUtf8: 'Body\\\\xffFrame' is not valid UTF-8 \\(at byte 4\\)\nm\\\\xc0\\\\xaf\terror: ui-core:InvalidUtf8: 'm\\\\xc0\\\\xaf' is not valid UTF-8 \\(at byte 1\\)\nc\t1 identifier: 'c'\n$"
  ERR "^ui-core: 2 of 4 inputs refused\n$"
  ARGS node-path --file ${stream_dir}/paths_bad_utf8.txt)
ui_core_tool_test(streaming_invalid_utf8_json EXIT 1 ENV "LC_ALL=C"
  JSON_RECORDS 4
  JSON_CHECKS "0|ok|ON" "1|ok|OFF" "1|input|Body�Frame" "1|error.catalogue|ui-core"
              "1|error.key|InvalidUtf8" "1|error.arguments.0|Body\\xffFrame"
              "1|error.arguments.1|4" "2|error.arguments.1|1" "3|ids.0|c"
  STDIN ${stream_dir}/paths_bad_utf8.txt ARGS node-path --json)
ui_core_tool_test(streaming_invalid_utf8_unit EXIT 1
  JSON_RECORDS 2 JSON_CHECKS "0|text|km" "1|error.key|InvalidUtf8"
  STDIN ${stream_dir}/units_bad_utf8.txt ARGS unit --json)

# --- A line longer than the read buffer.
ui_core_checked_tool_test(streaming_line_longer_than_the_buffer
  EXIT 0 OUTPUT_SIZE 3000004 OUTPUT_TAIL "ab/z\tz\n$" EMPTY_STDERR
  ARGS block-name --file ${stream_dir}/long_line.txt)

# --- batch reads standard input too; its commands do not read it.
ui_core_tool_test(streaming_batch_from_standard_input
  EXPECT "\\$ ui-core node-path\n\n\\$ ui-core node-path a\n'a' is a valid node path.*2 command\\(s\\) run, 0 refused their input"
  STDIN ${stream_dir}/batch.txt ARGS batch)

# --- Every subcommand's --help shows examples.
foreach(sub node-path object-path subscript sub2ind ind2sub lang-path block-name
            block-path-without-model escape-xml access unit-conversion-type unit source explain
            batch)
  ui_core_tool_test(help_examples_${sub} EXPECT "\nExamples:\n.*ui-core ${sub}" ARGS ${sub} --help)
endforeach()
ui_core_tool_test(help_examples_main EXPECT "\nExamples:\n  ui-core " ARGS --help)

# --- The progress line: drawn on a terminal (standard error), cleared at the
# end, and never written when standard error is not a terminal. A pipe that
# delivers its second line after a second makes the run last long enough.
find_program(UI_CORE_SCRIPT_PROGRAM script)
find_program(UI_CORE_MKFIFO_PROGRAM mkfifo)
if(UI_CORE_SCRIPT_PROGRAM AND UI_CORE_MKFIFO_PROGRAM)
  foreach(tty ON OFF)
    add_test(NAME tool.streaming_progress_line_tty_${tty}
             COMMAND ${CMAKE_COMMAND} "-DTOOL=$<TARGET_FILE:ui-core>" -DTTY=${tty}
                     -DDIR=${stream_dir}/progress_${tty} -DSCRIPT=${UI_CORE_SCRIPT_PROGRAM}
                     -P ${CMAKE_CURRENT_LIST_DIR}/scripts/progress.cmake)
    set_tests_properties(tool.streaming_progress_line_tty_${tty} PROPERTIES LABELS tool
                                                                             TIMEOUT 60)
  endforeach()
endif()

# --- Line output: a TAB, CR, LF or NUL never reaches the output raw, so each
# output line has the input as its first TAB-separated field and the result
# after it. The echoed input also writes a backslash as \\.
ui_core_tool_test(streaming_line_escapes_controls_in_input_and_result
  OUT "^tab\\\\there/x\tx\nnul\\\\0here/a\\\\rb\ta\\\\rb\nback\\\\\\\\slash/y\ty\ncrlf/z\tz\n$"
  ERR "^$" ARGS block-name --file ${CMAKE_CURRENT_LIST_DIR}/data/line_controls.txt)
string(ASCII 9 tab)
file(WRITE ${stream_dir}/access_tab.txt "inter${tab}nal\n")
ui_core_tool_test(streaming_line_escapes_controls_in_messages EXIT 1 ENV "LC_ALL=C"
  OUT "^inter\\\\tnal\terror: kalder:common:ui:core:kernel:access:InvalidAccess: 'inter\\\\tnal' is not a valid access; use 'internal' or 'external'\\.\n$"
  ARGS access --file ${stream_dir}/access_tab.txt)
ui_core_tool_test(streaming_json_input_keeps_controls
  JSON_RECORDS 4 JSON_CHECKS "0|input|tab${tab}here/x" "0|name|x" "2|input|back\\slash/y"
  STDIN ${CMAKE_CURRENT_LIST_DIR}/data/line_controls.txt ARGS block-name --json)

# --- JSON integers: numbers up to 2^53 - 1, strings of digits above (where a
# double, as in jq and JavaScript, would round them).
ui_core_tool_test(streaming_json_large_subscript_values_are_strings
  JSON_RECORDS 2
  JSON_CHECKS "0|values.0|type:STRING" "0|values.0|18446744073709551615"
              "1|values.0|type:NUMBER" "1|values.0|9007199254740991"
  ARGS subscript --json //18446744073709551615 //9007199254740991)
ui_core_tool_test(streaming_json_large_index_and_size_are_strings
  JSON_RECORDS 2
  JSON_CHECKS "0|index|type:STRING" "0|index|18446744073709551614"
              "0|size.0|type:STRING" "0|size.0|18446744073709551615"
              "0|subscript.0|type:STRING" "0|subscript.0|18446744073709551615"
              "1|index|type:NUMBER" "1|size.0|type:NUMBER"
  ARGS ind2sub --json 18446744073709551614 18446744073709551615 7 3x4)
ui_core_tool_test(streaming_json_index_past_2_53_is_a_string
  JSON_RECORDS 1
  JSON_CHECKS "0|index|type:STRING" "0|index|9007199254740992" "0|subscript.0|9007199254740993"
  ARGS sub2ind --json 9007199254740993 9007199254740993)

# --- A UTF-8 byte-order mark at the start of a file or of standard input is
# not part of the first input.
string(ASCII 239 bom_1)
string(ASCII 187 bom_2)
string(ASCII 191 bom_3)
file(WRITE ${stream_dir}/paths_bom.txt "${bom_1}${bom_2}${bom_3}a/b\nc\n")
ui_core_tool_test(streaming_byte_order_mark_of_a_file_is_skipped
  OUT "^a/b\t2 identifiers: 'a' 'b'\nc\t1 identifier: 'c'\n$"
  ARGS node-path --file ${stream_dir}/paths_bom.txt)
ui_core_tool_test(streaming_byte_order_mark_of_standard_input_is_skipped
  JSON_RECORDS 2 JSON_CHECKS "0|input|a/b" "0|ids.0|a"
  STDIN ${stream_dir}/paths_bom.txt ARGS node-path --json)

# --- The locale picks the language of the messages only: output stays UTF-8
# and numbers keep their '.', whatever the environment or --locale says.
ui_core_tool_test(streaming_locale_german_environment_keeps_decimal_points
  OUT "base: 1 rpm = 1/30\\*pi \\(0\\.1047197551\\) rad/s\n"
  ENV "LC_ALL=de_DE.UTF-8" ARGS unit rpm)
ui_core_tool_test(streaming_locale_english_messages_and_numbers_agree EXIT 1
  OUT "base: 1 rpm = 1/30\\*pi \\(0\\.1047197551\\) rad/s\n"
  ERR "'furlong' names the unknown unit 'furlong'"
  ENV "LC_ALL=de_DE.UTF-8" ARGS unit --locale en rpm furlong)
ui_core_tool_test(streaming_locale_c_still_writes_utf8
  OUT "^Größe\\.model:1:2\n$" ENV "LC_ALL=C" ARGS source --location Größe.model:1:2)
ui_core_tool_test(streaming_locale_language_of_a_locale_the_system_lacks EXIT 1
  ERR "'a/' ist kein gültiger Knotenpfad\\." ENV "LC_ALL=de_XX.UTF-8" ARGS node-path a/)

# --- explain: a missing argument is named rather than shown as "{0}".
file(WRITE ${stream_dir}/explain_missing.txt "kalder:common:ui:core:kernel:path:InvalidNodePath\n")
ui_core_tool_test(streaming_explain_line_missing_an_argument_is_refused EXIT 1 ENV "LC_ALL=C"
  JSON_RECORDS 1
  JSON_CHECKS "0|error.catalogue|ui-core" "0|error.key|MissingArguments"
              "0|error.arguments.1|1" "0|error.arguments.2|0"
  ARGS explain --json --file ${stream_dir}/explain_missing.txt)
# Why a file cannot be read follows the locale, like every text of the tool.
ui_core_tool_test(streaming_missing_file_in_german EXIT 2
  ERR "^error: [^\n]*no-such-file\\.txt kann nicht geöffnet werden: "
  ARGS node-path --locale de --file ${stream_dir}/no-such-file.txt)
ui_core_tool_test(streaming_directory_in_german EXIT 2 ERR " ist ein Verzeichnis\n$"
  ARGS escape-xml --locale de --file ${stream_dir})
