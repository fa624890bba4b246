ui_core_tool_test(node_path_splits_at_unescaped_separator
  EXPECT "^'Body//Frame/mass' is a valid node path with 2 identifiers\n  id 1: 'Body//Frame'\n  id 2: 'mass'\n  text form: 'Body//Frame/mass'\n$"
  ARGS node-path Body//Frame/mass)
# ui_core_tool_test drops empty arguments, so the cases with the empty path
# text call the tool directly (they check the output, not the exit code).
add_test(NAME tool.node_path_empty_text_is_the_empty_path
         COMMAND ui-core node-path "" --relative-to "")
set_tests_properties(tool.node_path_empty_text_is_the_empty_path PROPERTIES LABELS tool
  PASS_REGULAR_EXPRESSION "^'' is a valid node path with 0 identifiers\n  text form: ''\n  relative to '': ''\n$")
add_test(NAME tool.node_path_relative_to_empty_base_is_whole_path
         COMMAND ui-core node-path --relative-to "" a//b/c)
set_tests_properties(tool.node_path_relative_to_empty_base_is_whole_path PROPERTIES LABELS tool
  PASS_REGULAR_EXPRESSION "  text form: 'a//b/c'\n  relative to '': 'a//b/c'\n$")
ui_core_tool_test(node_path_cleans_white_space
  EXPECT "  id 1: 'x y'\n  id 2: 'z'\n  text form: 'x y/z'\n"
  ARGS node-path "x\ty/z")
ui_core_tool_test(node_path_leading_separator_is_refused EXIT 1
  EXPECT "'/mass' is not a valid node path\nerror: kalder:common:ui:core:kernel:path:InvalidNodePath: '/mass' is not a valid node path\\."
  ENV "LC_ALL=C"
  ARGS node-path /mass)
ui_core_tool_test(node_path_triple_slash_names_the_bad_identifier EXIT 1
  EXPECT "error: kalder:common:ui:core:kernel:path:InvalidNodeId: 'a//' is not a valid node identifier\\."
  ENV "LC_ALL=C"
  ARGS node-path a///b)
ui_core_tool_test(node_path_processes_every_text_before_refusing EXIT 1
  EXPECT "^'a/' is not a valid node path\n'b' is a valid node path with 1 identifier\n  id 1: 'b'\n  text form: 'b'\nerror: [^\n]*InvalidNodePath: 'a/'"
  ARGS node-path a/ b)
ui_core_tool_test(node_path_relative_to_prefix
  EXPECT "  relative to 'a/b': 'c'\n.*  relative to 'a/b': ''\n.*  relative to 'a/b': not a prefix\n$"
  ARGS node-path --relative-to a/b a/b/c a/b a/x)
ui_core_tool_test(node_path_invalid_base_is_bad_usage EXIT 2 OUT "^$"
  ERR "InvalidNodePath: '/bad'"
  ARGS node-path --relative-to /bad a)
ui_core_tool_test(node_path_german_message EXIT 1
  EXPECT "InvalidNodePath: 'a/' ist kein gültiger Knotenpfad\\."
  ENV "LC_ALL=de_DE.UTF-8"
  ARGS node-path a/)
# Without a text the paths are read from standard input, one per line: an
# empty input gives no output.
ui_core_tool_test(node_path_without_text_reads_standard_input
  OUT "^$" STDIN ${CMAKE_CURRENT_LIST_DIR}/data/text_empty.txt ARGS node-path)
