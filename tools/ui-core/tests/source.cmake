# Sources are made by the bundle installed next to the library
# (<build>/lib/ui_core/bundles/kalder_ui_create_source).
ui_core_tool_test(source_location
  EXPECT "^model/plant\\.model:12:5\n$"
  ARGS source --location model/plant.model:12:5)
ui_core_tool_test(source_location_file_may_hold_colons
  EXPECT "^C:/models/a\\.model:3:4\n$"
  ARGS source --location C:/models/a.model:3:4)
ui_core_tool_test(source_block
  EXPECT "^block model/Sub/Gain\n$"
  ARGS source --block model/Sub/Gain)
ui_core_tool_test(source_open_dialog
  EXPECT "^dialog of block model/Sub/Gain\n$"
  ARGS source --block model/Sub/Gain --open-dialog)
ui_core_tool_test(source_location_without_file_makes_no_source
  EXPECT "^\\(the service made no source for this key\\)\n$"
  ARGS source --location :1:1)
ui_core_tool_test(source_without_bundles_is_refused EXIT 1
  EXPECT "error: kalder:common:ui:core:kernel:source:CannotCreateSource: No service can create a source of the kind krel::Location\\.\nnote: .*folders searched: none"
  ENV "KREL_NO_DEFAULT_BUNDLES=1"
  ARGS source --location model/plant.model:12:5)
ui_core_tool_test(source_open_dialog_without_bundles_is_refused EXIT 1
  EXPECT "CannotCreateSource: No service can create a source of the kind OpenDialog\\."
  ENV "KREL_NO_DEFAULT_BUNDLES=1"
  ARGS source --block m/G --open-dialog)
ui_core_tool_test(source_malformed_location_is_bad_usage EXIT 2
  EXPECT "FILE:LINE:COL"
  ARGS source --location plant.model:12)
ui_core_tool_test(source_location_numbers_are_checked EXIT 2
  EXPECT "whole numbers"
  ARGS source --location plant.model:x:5)
# Without a key the keys are read from standard input (none here).
ui_core_tool_test(source_without_key_reads_standard_input
  OUT "^$" STDIN ${CMAKE_CURRENT_LIST_DIR}/data/text_empty.txt ARGS source)
ui_core_tool_test(source_one_key_option_or_inputs EXIT 2
  EXPECT "not both" ARGS source --location a:1:1 b:2:2)
ui_core_tool_test(source_takes_one_key EXIT 2 ARGS source --location a:1:1 --block b)
ui_core_tool_test(source_open_dialog_needs_a_block EXIT 2 ARGS source --open-dialog)
