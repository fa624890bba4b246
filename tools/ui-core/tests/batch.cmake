# ui-core batch: command lines run one after the other in the batch's own
# process, each with every option at its default; the exit code says whether
# any command refused input (1) or a command line was bad (2).
set(batch_dir ${CMAKE_CURRENT_BINARY_DIR}/batch)
file(WRITE ${batch_dir}/refusals.txt "node-path a/b\nnode-path /mass\naccess internal\n")
file(WRITE ${batch_dir}/accepted.txt "node-path a/b\n# a comment\n\naccess internal\n")
file(WRITE ${batch_dir}/bad_line.txt "node-path a\nnode-path --josn b\nnode-path c\n")
file(WRITE ${batch_dir}/bad_quote.txt "node-path \"a\n")
# Each option of each subcommand, then the same subcommand without it: the
# second line must not see the first one's option.
file(WRITE ${batch_dir}/fresh.txt
     "node-path --locale de --relative-to a a/b\n"
     "node-path a/\n"
     "node-path --json x\n"
     "node-path x\n"
     "object-path --partial --names-only a///1/b\n"
     "object-path a///1/b\n"
     "sub2ind --size 3x4 2,3\n"
     "sub2ind 2,3 3x4\n"
     "unit km --to m --nonaffine\n"
     "unit km\n"
     "source --block m/G --open-dialog\n"
     "source m/H:1:2\n"
     "source --kind block m/I\n"
     "source m/J:3:4\n"
     "explain --list\n"
     "explain kalder:common:ui:core:kernel:path:InvalidNodePath /x\n")
string(ASCII 239 bom_1)
string(ASCII 187 bom_2)
string(ASCII 191 bom_3)
file(WRITE ${batch_dir}/bom.txt "${bom_1}${bom_2}${bom_3}node-path a\n")

ui_core_tool_test(batch_runs_the_sample_session EXIT 1
  EXPECT "\\$ ui-core sub2ind '//2, 3' 3x4\n7\n.*26 command\\(s\\) run, 4 refused their input"
  ARGS batch ${PROJECT_SOURCE_DIR}/examples/sample/session.txt)
ui_core_tool_test(batch_of_a_missing_file_is_bad_usage EXIT 2
  ARGS batch ${PROJECT_SOURCE_DIR}/examples/sample/no-such-file.txt)
ui_core_tool_test(batch_exit_1_when_a_command_refused_input EXIT 1
  OUT "\n3 command\\(s\\) run, 1 refused their input\n$" ARGS batch ${batch_dir}/refusals.txt)
ui_core_tool_test(batch_exit_0_when_every_command_accepted EXIT 0
  OUT "\n2 command\\(s\\) run, 0 refused their input\n$" ARGS batch ${batch_dir}/accepted.txt)
ui_core_tool_test(batch_stops_at_a_bad_command_line EXIT 2
  OUT "^\\$ ui-core node-path a\n[^$]*\n\\$ ui-core node-path --josn b\n$"
  ERR "^error: node-path has no option '--josn' \\(did you mean '--json'\\?\\)\n[^\n]*bad_line\\.txt:2: error: bad command line \\(exit 2\\)\n$"
  ARGS batch ${batch_dir}/bad_line.txt)
ui_core_tool_test(batch_options_do_not_carry_over EXIT 1 ENV "LC_ALL=C"
  OUT "\\$ ui-core node-path --locale de --relative-to a a/b\n[^$]*relative to 'a': 'b'\n\n\\$ ui-core node-path a/\n'a/' is not a valid node path\n\n\\$ ui-core node-path --json x\n{[^\n]*}\n\n\\$ ui-core node-path x\n'x' is a valid node path with 1 identifier\n  id 1: 'x'\n  text form: 'x'\n\n\\$ ui-core object-path --partial --names-only a///1/b\n[^$]*rest: //1/b\n\n\\$ ui-core object-path a///1/b\ninput: a///1/b\nelements: 3\n[^$]*\\$ ui-core sub2ind --size 3x4 2,3\n7\n\n\\$ ui-core sub2ind 2,3 3x4\n7\n\n\\$ ui-core unit km --to m --nonaffine\n[^$]*nonaffine display: km\n\n\\$ ui-core unit km\ntext: km\naffine: no\nbase: 1 km = 1000 m\ndisplay: km\n\n\\$ ui-core source --block m/G --open-dialog\ndialog of block m/G\n\n\\$ ui-core source m/H:1:2\nm/H:1:2\n\n\\$ ui-core source --kind block m/I\nblock m/I\n\n\\$ ui-core source m/J:3:4\nm/J:3:4\n\n\\$ ui-core explain --list\n[^$]*\n\n\\$ ui-core explain kalder:common:ui:core:kernel:path:InvalidNodePath /x\n'/x' is not a valid node path\\.\n\n16 command\\(s\\) run, 1 refused their input\n$"
  ERR "^error: kalder:common:ui:core:kernel:path:InvalidNodePath: 'a/' is not a valid node path\\.\n$"
  ARGS batch ${batch_dir}/fresh.txt)
ui_core_tool_test(batch_skips_a_byte_order_mark
  OUT "^\\$ ui-core node-path a\n'a' is a valid node path" ARGS batch ${batch_dir}/bom.txt)

# Batch's own texts come from the tool's catalogue and follow the locale.
ui_core_tool_test(batch_summary_in_german EXIT 1
  OUT "\n3 Befehle ausgeführt, 1 hat Eingaben abgelehnt\n$"
  ENV "LC_ALL=de_DE.UTF-8" ARGS batch ${batch_dir}/refusals.txt)
ui_core_tool_test(batch_unterminated_quote_in_german EXIT 2
  ERR "bad_quote\\.txt:1: error: Anführungszeichen nicht geschlossen\n$"
  ENV "LC_ALL=de_DE.UTF-8" ARGS batch ${batch_dir}/bad_quote.txt)
