# ui-core object-path and ui-core subscript.
ui_core_tool_test(object_path_elements
  EXPECT "elements: 3\n  \\[0\\] name +a  \\(hash [0-9]+\\)\n  \\[1\\] subscript //1, 2  \\(hash [0-9]+\\)\n  \\[2\\] name +b  \\(hash [0-9]+\\)\ntext form: a///1, 2/b\n"
  ARGS object-path "a///1, 2/b")
ui_core_tool_test(object_path_escaped_slash_stays_one_name
  EXPECT "elements: 2\n  \\[0\\] name +a//b .*\n  \\[1\\] name +c .*\ntext form: a//b/c\n"
  ARGS object-path a//b/c)
ui_core_tool_test(object_path_name_hash
  # hash_value of the name "A": combine(combine(0, 0x41), 1) with the 64-bit
  # mix of hash_combine, worked out independently.
  EXPECT "\\[0\\] name +A  \\(hash 1029024946723767152\\)"
  ARGS object-path A)
ui_core_tool_test(object_path_several_texts
  EXPECT "input: a\n.*input: //3/x\n.*text form: //3/x\n"
  ARGS object-path a //3/x)
ui_core_tool_test(object_path_bad_segment_is_refused EXIT 1
  EXPECT "error: kalder:common:ui:core:kernel:path:InvalidObjectPath: 'a///b'"
  ENV "LC_ALL=C"
  ARGS object-path a///b)
ui_core_tool_test(object_path_adjacent_subscripts_are_refused EXIT 1
  EXPECT "InvalidObjectPath: '//1///2'"
  ARGS object-path //1///2)
ui_core_tool_test(object_path_partial_prints_the_rest
  EXPECT "elements: 1\n  \\[0\\] name +a .*\ntext form: a\nrest: //b\n"
  ARGS object-path --partial a///b)
ui_core_tool_test(object_path_partial_still_refuses_adjacent_subscripts EXIT 1
  EXPECT "InvalidObjectPath"
  ARGS object-path --partial a///1///2)
ui_core_tool_test(object_path_names_only_refuses_a_subscript EXIT 1
  EXPECT "error: kalder:common:ui:core:kernel:path:InvalidNodePath: 'a///1/b'"
  ENV "LC_ALL=C"
  ARGS object-path --names-only a///1/b)
ui_core_tool_test(object_path_names_only_partial
  EXPECT "elements: 1\n.*\ntext form: a\nrest: //1/b\n"
  ARGS object-path --names-only --partial a///1/b)
ui_core_tool_test(object_path_names_only_accepts_names
  EXPECT "elements: 2\n.*text form: a/b\n"
  ARGS object-path --names-only a/b/)
ui_core_tool_test(object_path_without_text_reads_standard_input
  OUT "^a//b/c\t2 elements: name 'a//b'; name 'c'\n$"
  STDIN ${CMAKE_CURRENT_LIST_DIR}/data/object_path_line.txt ARGS object-path)
ui_core_tool_test(subscript_values
  EXPECT "^count: 2\nvalues: 2 3\ntext form: //2, 3\nhash: [0-9]+\n$"
  ARGS subscript "// 2 ,3")
ui_core_tool_test(subscript_largest_value
  EXPECT "values: 18446744073709551615\n"
  ARGS subscript //18446744073709551615)
ui_core_tool_test(subscript_zero_is_refused EXIT 1
  EXPECT "error: kalder:common:ui:core:kernel:path:InvalidObjectPathSubscriptString: '//0'"
  ENV "LC_ALL=C"
  ARGS subscript //0)
ui_core_tool_test(subscript_overflow_is_refused EXIT 1
  EXPECT "InvalidObjectPathSubscriptString"
  ARGS subscript //18446744073709551616)
