ui_core_tool_test(unit_canonical_text
  EXPECT "text: kg\\*m\\^2/s\\^2\naffine: no\n"
  ARGS unit "m^2*kg / s^2")
ui_core_tool_test(unit_nonaffine_conversion_and_display
  EXPECT "factor: 5/9 \\(0\\.5555555556\\)\noffset: 0\nnonaffine display: deltadegF\n"
  ARGS unit degF --to degC --nonaffine)
ui_core_tool_test(unit_rpm_in_degrees_per_second
  EXPECT "base: 1 rpm = 1/30\\*pi \\(0\\.1047197551\\) rad/s\n.*factor: 6\n"
  ARGS unit rpm --to deg/s)
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
ui_core_tool_test(unit_german_messages
  EXPECT "nennt die unbekannte Einheit 'furlong'"
  EXIT 1
  ENV "LC_ALL=de_DE.UTF-8"
  ARGS unit furlong)
ui_core_tool_test(unit_without_expression_reads_standard_input
  OUT "^$" STDIN ${CMAKE_CURRENT_LIST_DIR}/data/text_empty.txt ARGS unit)

# Text as people type it, long names and the units added to the database.
ui_core_tool_test(unit_mmhg_to_pascal
  OUT "^text: mmHg\n.*\nfactor: 26664477483/200000000 \\(133\\.3223874\\)\noffset: 0\n"
  ARGS unit mmHg --to Pa)
ui_core_tool_test(unit_blank_and_superscript_make_a_newton
  OUT "^text: kg\\*m/s\\^2\n.*\nto: N \\(affine: y = factor\\*x \\+ offset\\)\nfactor: 1\noffset: 0\n"
  ARGS unit "kg m/s²" --to N)
ui_core_tool_test(unit_middle_dot_is_a_product
  OUT "^text: N\\*m\n.*\nfactor: 1\noffset: 0\n"
  ARGS unit "N·m" --to J)
ui_core_tool_test(unit_micro_sign_is_the_micro_prefix
  OUT "^text: um\n.*\nfactor: 1/1000000 \\(1e-6\\)\noffset: 0\ndisplay: um\n$"
  ARGS unit µm --to m)
ui_core_tool_test(unit_degree_sign_celsius_shows_its_delta_unit
  OUT "^text: degC\naffine: yes\n.*\nnonaffine display: deltadegC\n$"
  ARGS unit °C --nonaffine)
ui_core_tool_test(unit_ct_is_the_carat_not_a_centitonne
  OUT "^text: ct\n.*\nfactor: 1/5 \\(0\\.2\\)\noffset: 0\n"
  ARGS unit ct --to g)
ui_core_tool_test(unit_kt_is_the_knot
  OUT "^text: kn\n.*\nfactor: 463/250 \\(1\\.852\\)\n"
  ARGS unit kt --to km/h)
ui_core_tool_test(unit_long_names_print_as_ids
  OUT "^text: km/h\n.*\nfactor: 5/18 \\(0\\.2777777778\\)\n"
  ARGS unit kilometre/hour --to m/s)
ui_core_tool_test(unit_ambiguous_spelling_is_refused EXIT 1
  OUT "^$"
  ERR "^error: units2:core:AmbiguousUnit: 'gal' names 'gal', which has more than one reading in common use and is therefore read as none of them; write the unit meant: gal_US = 231 in\\^3, gal_UK = 4\\.54609 L\\.\n$"
  ENV "LC_ALL=C"
  ARGS unit gal)
ui_core_tool_test(unit_ambiguous_spelling_in_german EXIT 1
  ERR "^error: units2:core:AmbiguousUnit: 'cal' nennt 'cal', das mehr als eine gebräuchliche Bedeutung hat"
  ENV "LC_ALL=de_DE.UTF-8"
  ARGS unit cal)
ui_core_tool_test(unit_test_units_are_not_shipped EXIT 1
  ERR "^error: units2:core:UnknownUnit: 'tstU' names the unknown unit 'tstU'\\.\n$"
  ENV "LC_ALL=C"
  ARGS unit tstU)
ui_core_tool_test(unit_hbar_is_not_a_hectobar EXIT 1
  ERR "units2:core:UnknownUnit: 'hbar' names the unknown unit 'hbar'"
  ENV "LC_ALL=C"
  ARGS unit hbar)
ui_core_tool_test(unit_lone_degree_sign_is_refused_where_it_stands EXIT 1
  ERR "units2:core:SyntaxError: '° C' is not a unit expression: unexpected text at position 2\\."
  ENV "LC_ALL=C"
  ARGS unit "° C")

# --list: the database.
ui_core_tool_test(unit_list_shows_ids_names_and_ambiguous_spellings
  OUT "^m\tnames: metre, meter\tbase: 1 m = 1 m\tprefixes: all\tdefinition: base unit of length\n.*\nt\tnames: tonne, metric_ton\tbase: 1 t = 1000 kg\tprefixes: M G\tdefinition: 1000 kg\n.*\nkn\tnames: knot, kt\tbase: 1 kn = 463/900 \\(0\\.5144444444\\) m/s\tprefixes: none\tdefinition: 1852/3600 m/s\n.*\ndegC\tnames: degree_Celsius, celsius\tbase: 1 degC = 1 K\tzero: 5463/20 \\(273\\.15\\) K\tprefixes: none\tdefinition: 1 K offset=273\\.15\n.*\ngal\tambiguous: gal_US, gal_UK\n.*\nyr\tambiguous: common_year, julian_year\n$"
  ARGS unit --list)
ui_core_tool_test(unit_list_json
  JSON_CHECKS "0|id|m" "0|kind|unit" "0|names|#2" "0|names.1|meter" "0|base|m" "0|scale|1"
              "0|prefixes|#24" "0|definition|base unit of length"
  ARGS unit --list --json)
ui_core_tool_test(unit_list_takes_no_expressions EXIT 2
  OUT "^$" ERR "^error: --list: lists the whole database and takes no expressions\n"
  ARGS unit --list m)
ui_core_tool_test(unit_list_takes_no_target EXIT 2
  OUT "^$" ARGS unit --list --to m)

# Every example of `ui-core unit --help`.
ui_core_tool_test(unit_help_example_affine_conversion
  OUT "^text: degF\naffine: yes\nbase: 1 degF = 5/9 \\(0\\.5555555556\\) K\nzero: 45967/180 \\(255\\.3722222\\) K\nto: degC \\(affine: y = factor\\*x \\+ offset\\)\nfactor: 5/9 \\(0\\.5555555556\\)\noffset: -160/9 \\(-17\\.77777778\\)\ndisplay: degF\n$"
  ARGS unit degF --to degC)
ui_core_tool_test(unit_help_example_nonaffine
  OUT "^text: degC\naffine: yes\nbase: 1 degC = 1 K\nzero: 5463/20 \\(273\\.15\\) K\nnonaffine display: deltadegC\n$"
  ARGS unit degC --nonaffine)
ui_core_tool_test(unit_help_example_pressures
  OUT "^input: psi\n.*\nfactor: 8896443230521/1290320000 \\(6894\\.757293\\)\n.*\ninput: bar\n.*\nfactor: 100000\n.*\ninput: mmHg\n.*\nfactor: 26664477483/200000000 \\(133\\.3223874\\)\noffset: 0\ndisplay: mmHg\n$"
  ARGS unit --to Pa psi bar mmHg)
ui_core_tool_test(unit_help_example_typed_text
  OUT "^text: kg\\*m/s\\^2\n.*\nfactor: 1\n"
  ARGS unit "kg m/s²" --to N)
ui_core_tool_test(unit_help_example_json_file EXIT 1
  JSON_RECORDS 4
  JSON_CHECKS "0|input|kg m/s²" "0|text|kg*m/s^2" "1|text|N*m" "2|ok|OFF"
              "2|error.key|AmbiguousUnit" "3|text|um"
  ARGS unit --json --file ${CMAKE_CURRENT_LIST_DIR}/data/unit_expressions.txt)
ui_core_tool_test(unit_help_example_list
  OUT "^m\tnames: metre, meter\t"
  ARGS unit --list)

# Every example of the unit section of docs/tool.md.
ui_core_tool_test(unit_readme_psi_to_pascal
  OUT "^text: psi\naffine: no\nbase: 1 psi = 8896443230521/1290320000 \\(6894\\.757293\\) kg/\\(m\\*s\\^2\\)\nto: Pa \\(affine: y = factor\\*x \\+ offset\\)\nfactor: 8896443230521/1290320000 \\(6894\\.757293\\)\noffset: 0\ndisplay: psi\n$"
  ARGS unit psi --to Pa)
ui_core_tool_test(unit_readme_mmhg_to_pascal
  OUT "^text: mmHg\naffine: no\nbase: 1 mmHg = 26664477483/200000000 \\(133\\.3223874\\) kg/\\(m\\*s\\^2\\)\nto: Pa \\(affine: y = factor\\*x \\+ offset\\)\nfactor: 26664477483/200000000 \\(133\\.3223874\\)\noffset: 0\ndisplay: mmHg\n$"
  ARGS unit mmHg --to Pa)
ui_core_tool_test(unit_readme_typed_text
  OUT "^text: N\\*m\naffine: no\nbase: 1 N\\*m = 1 kg\\*m\\^2/s\\^2\nto: J \\(affine: y = factor\\*x \\+ offset\\)\nfactor: 1\noffset: 0\ndisplay: N\\*m\n$"
  ARGS unit "N·m" --to J)
ui_core_tool_test(unit_readme_degree_sign
  OUT "^text: degC\naffine: yes\nbase: 1 degC = 1 K\nzero: 5463/20 \\(273\\.15\\) K\nnonaffine display: deltadegC\n$"
  ARGS unit °C --nonaffine)
ui_core_tool_test(unit_readme_radians_are_not_rounded EXIT 1
  OUT "^$"
  ERR "^error: units2:core:InexactConversion: The factor from 'rpm' to 'rad/s' is 1/30\\*pi, which is not a rational number, so it cannot be converted exactly\\.\n$"
  ENV "LC_ALL=C"
  ARGS unit rpm --to rad/s)
ui_core_tool_test(unit_readme_offset_unit_in_a_product EXIT 1
  OUT "^$"
  ERR "^error: units2:core:OffsetUnitNotAlone: 'degC' is a unit with an offset and may only stand alone, so 'degC\\*m' is not valid; products, quotients and powers need a difference unit \\(delta\\.\\.\\.\\) instead\\.\n$"
  ENV "LC_ALL=C"
  ARGS unit degC*m)
ui_core_tool_test(unit_readme_ambiguous_calorie EXIT 1
  OUT "^$"
  ERR "^error: units2:core:AmbiguousUnit: 'kcal/h' names 'kcal', which has more than one reading in common use and is therefore read as none of them; write the unit meant: kcal_th = 1000 cal_th, kcal_IT = 1000 cal_IT\\.\n$"
  ENV "LC_ALL=C"
  ARGS unit kcal/h)
ui_core_tool_test(unit_readme_list_grep
  OUT "\nkn\tnames: knot, kt\tbase: 1 kn = 463/900 \\(0\\.5144444444\\) m/s\tprefixes: none\tdefinition: 1852/3600 m/s\n"
  ARGS unit --list)
