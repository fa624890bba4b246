ui_core_tool_test(explain_english
  EXPECT "^'/mass' is not a valid node path\\.\n$"
  ENV "LC_ALL=C"
  ARGS explain kalder:common:ui:core:kernel:path:InvalidNodePath /mass)
ui_core_tool_test(explain_german
  EXPECT "'/mass' ist kein gültiger Knotenpfad\\."
  ENV "LC_ALL=de_DE.UTF-8"
  ARGS explain kalder:common:ui:core:kernel:path:InvalidNodePath /mass)
ui_core_tool_test(explain_number_argument
  EXPECT "^5 elements do not fill an array of size 2x3\\.\n$"
  ARGS explain kalder:common:ui:core:kernel:data_struct:InvalidArrayArguments 5 2x3)
ui_core_tool_test(explain_locale_option
  EXPECT "unbekannt"
  ARGS explain --locale de kalder:common:ui:core:kernel:units:UnitConversionUnknown)
ui_core_tool_test(explain_unknown_identifier_is_refused EXIT 1
  ARGS explain no:such:Message)
ui_core_tool_test(explain_malformed_identifier_is_bad_usage EXIT 2
  ARGS explain nocolon)
ui_core_tool_test(explain_missing_argument_is_bad_usage EXIT 2 OUT "^$"
  ERR "^error: kalder:common:ui:core:kernel:path:InvalidNodePath takes 1 argument, but 0 were given: \\{0\\} is missing\n"
  ENV "LC_ALL=C" ARGS explain kalder:common:ui:core:kernel:path:InvalidNodePath)
ui_core_tool_test(explain_names_each_missing_argument EXIT 2
  ERR "takes 2 arguments, but 1 was given: \\{1\\} is missing\n"
  ENV "LC_ALL=C" ARGS explain kalder:common:ui:core:kernel:path:SubscriptOutOfRange //4)
ui_core_tool_test(explain_missing_arguments_in_german EXIT 2
  ERR "\\{0\\} und \\{1\\} fehlen\n"
  ARGS explain --locale de kalder:common:ui:core:kernel:path:SubscriptOutOfRange)
ui_core_tool_test(explain_message_without_arguments
  OUT "^An object path subscript must not contain a zero subscript\\.\n$" ENV "LC_ALL=C"
  ARGS explain kalder:common:ui:core:kernel:path:InvalidObjectPathSubscript)
ui_core_tool_test(version EXPECT "^ui-core [0-9]+\\.[0-9]+\\.[0-9]+" ARGS --version)
ui_core_tool_test(help EXPECT "explain" ARGS --help)
ui_core_tool_test(no_subcommand_is_bad_usage EXIT 2 ARGS)
ui_core_tool_test(unknown_subcommand_is_bad_usage EXIT 2 ARGS frobnicate)
# --list goes through the tool's renderer: a line each, or with --json an object each.
ui_core_tool_test(explain_list_json
  OUT "^{\"identifier\":\"[^\"\n]+\"}\n(.*\n)?{\"identifier\":\"kalder:common:ui:core:kernel:path:InvalidNodePath\"}\n"
  ARGS explain --list --json)
