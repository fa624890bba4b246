ui_core_tool_test(unit_canonical_text
  EXPECT "text: kg\\*m\\^2/s\\^2\naffine: no\n"
  ARGS unit "m^2*kg / s^2")
ui_core_tool_test(unit_affine_conversion
  EXPECT "affine: yes\n.*to: degC \\(affine.*\nfactor: 5/9 \\(0\\.5555555556\\)\noffset: -160/9 \\(-17\\.77777778\\)\ndisplay: degF\n"
  ARGS unit degF --to degC)
ui_core_tool_test(unit_nonaffine_conversion_and_display
  EXPECT "factor: 5/9 \\(0\\.5555555556\\)\noffset: 0\nnonaffine display: deltadegF\n"
  ARGS unit degF --to degC --nonaffine)
ui_core_tool_test(unit_imperial_pressure_is_exact
  EXPECT "factor: 8896443230521/1290320000 \\(6894\\.757293\\)\n"
  ARGS unit psi --to Pa)
ui_core_tool_test(unit_rpm_in_degrees_per_second
  EXPECT "base: 1 rpm = 1/30\\*pi \\(0\\.1047197551\\) rad/s\n.*factor: 6\n"
  ARGS unit rpm --to deg/s)
ui_core_tool_test(unit_scaled_delta_twin_keeps_own_text
  EXPECT "nonaffine display: tstU\n"
  ARGS unit tstU --nonaffine)
ui_core_tool_test(unit_product_keeps_own_text
  EXPECT "nonaffine display: kg\\*m/s\\^2\n"
  ARGS unit kg*m/s^2 --nonaffine)
ui_core_tool_test(unit_syntax_error_is_refused EXIT 1
  EXPECT "^error: units2:core:SyntaxError: 'm\\^' is not a unit expression: unexpected text at position 3\\.\n$"
  ENV "LC_ALL=C"
  ARGS unit "m^")
ui_core_tool_test(unit_unknown_unit_is_refused EXIT 1
  EXPECT "units2:core:UnknownUnit: 'm/furlong' names the unknown unit 'furlong'"
  ENV "LC_ALL=C"
  ARGS unit m/furlong)
ui_core_tool_test(unit_offset_unit_in_a_power_is_refused EXIT 1
  EXPECT "units2:core:OffsetUnitNotAlone"
  ARGS unit degC^2)
ui_core_tool_test(unit_incommensurate_target_is_refused EXIT 1
  EXPECT "^error: units2:core:NotCommensurate: 'm' and 's' do not measure the same quantity\\.\n$"
  ENV "LC_ALL=C"
  ARGS unit m --to s)
ui_core_tool_test(unit_radians_are_not_rounded EXIT 1
  EXPECT "units2:core:InexactConversion: .*1/30\\*pi"
  ARGS unit rpm --to rad/s)
ui_core_tool_test(unit_german_messages
  EXPECT "nennt die unbekannte Einheit 'furlong'"
  EXIT 1
  ENV "LC_ALL=de_DE.UTF-8"
  ARGS unit furlong)
ui_core_tool_test(unit_without_expression_reads_standard_input
  OUT "^$" STDIN ${CMAKE_CURRENT_LIST_DIR}/data/text_empty.txt ARGS unit)
