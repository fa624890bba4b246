# Block names, XML escaping and the Access / UnitConversionType texts.
set(text_data ${CMAKE_CURRENT_LIST_DIR}/data)

ui_core_tool_test(block_name
  EXPECT "^Gain\n$" ARGS block-name model/sub/Gain)
ui_core_tool_test(block_name_pairs_from_the_right
  EXPECT "^//b\n$" ARGS block-name a///b)
ui_core_tool_test(block_name_leading_separator_keeps_whole_path
  EXPECT "^/Gain\n$" ARGS block-name /Gain)
ui_core_tool_test(block_name_trailing_separator_is_empty
  EXPECT "^\n$" ARGS block-name model/)
ui_core_tool_test(block_name_non_ascii
  EXPECT "^Verstärkung\n$" ARGS block-name Modell/Verstärkung)
ui_core_tool_test(block_path_without_model
  EXPECT "^sub/Gain\n$" ARGS block-path-without-model model/sub/Gain)
ui_core_tool_test(block_path_without_model_pairs_from_the_left
  EXPECT "^b\n$" ARGS block-path-without-model a///b)
ui_core_tool_test(block_path_without_model_leading_separator
  EXPECT "^Gain\n$" ARGS block-path-without-model /Gain)
ui_core_tool_test(block_path_without_model_escaped_only
  EXPECT "^a//\n$" ARGS block-path-without-model a//)
ui_core_tool_test(block_name_without_path_reads_standard_input
  OUT "^$" STDIN ${text_data}/text_empty.txt ARGS block-name)

ui_core_tool_test(escape_xml_markup
  EXPECT "^&lt;a href=&quot;x&amp;y&quot;&gt;Größe ≤ 5 😀 it&apos;s&lt;/a&gt;\n$"
  STDIN ${text_data}/text_markup.txt ARGS escape-xml)
# Reading one, two or three bytes at a time cuts inside every multi-byte
# sequence, the four-byte one that becomes a surrogate pair included; the
# output must not change.
foreach(chunk 1 2 3)
  ui_core_tool_test(escape_xml_markup_chunk_${chunk}
    EXPECT "^&lt;a href=&quot;x&amp;y&quot;&gt;Größe ≤ 5 😀 it&apos;s&lt;/a&gt;\n$"
    STDIN ${text_data}/text_markup.txt ARGS escape-xml --chunk-size ${chunk})
endforeach()
# Invalid bytes, a bad sequence, an encoded surrogate and a truncated sequence
# at the very end each become U+FFFD, in whatever pieces the input is read.
foreach(chunk 1 2 65536)
  ui_core_tool_test(escape_xml_invalid_utf8_chunk_${chunk}
    EXPECT "^a�&lt;�\\(&amp;😀��� ok�$"
    STDIN ${text_data}/text_invalid_utf8.txt ARGS escape-xml --chunk-size ${chunk})
endforeach()
ui_core_tool_test(escape_xml_empty_input
  EXPECT "^$" STDIN ${text_data}/text_empty.txt ARGS escape-xml)
ui_core_tool_test(escape_xml_zero_chunk_is_bad_usage EXIT 2
  STDIN ${text_data}/text_empty.txt ARGS escape-xml --chunk-size 0)

# An input of several default-sized chunks (about 450 KiB), made at configure
# time so that no large file is checked in.
string(REPEAT "<p>Größe 😀 & x</p>\n" 20000 text_large_input)
file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/text_large_input.txt "${text_large_input}")
ui_core_tool_test(escape_xml_large_input
  EXPECT "^(&lt;p&gt;Größe 😀 &amp; x&lt;/p&gt;\n)+$"
  STDIN ${CMAKE_CURRENT_BINARY_DIR}/text_large_input.txt ARGS escape-xml)

ui_core_tool_test(access_internal EXPECT "^internal\n$" ARGS access internal)
ui_core_tool_test(access_external EXPECT "^external\n$" ARGS access external)
ui_core_tool_test(access_is_case_sensitive EXIT 1
  EXPECT "InvalidAccess: 'External' is not a valid access" ENV "LC_ALL=C" ARGS access External)
ui_core_tool_test(access_is_not_trimmed EXIT 1
  EXPECT "InvalidAccess: ' internal' is not" ENV "LC_ALL=C" ARGS access " internal")
ui_core_tool_test(access_refusal_in_german EXIT 1
  EXPECT "'intern' ist kein gültiger Zugriff" ENV "LC_ALL=de_DE.UTF-8" ARGS access intern)

ui_core_tool_test(unit_conversion_type_absolute
  EXPECT "^absolute \\(0\\)\n$" ARGS unit-conversion-type absolute)
ui_core_tool_test(unit_conversion_type_relative
  EXPECT "^relative \\(1\\)\n$" ARGS unit-conversion-type relative)
ui_core_tool_test(unit_conversion_type_other_text_is_unknown
  EXPECT "^unknown \\(-1\\)\n$" ENV "LC_ALL=C" ARGS unit-conversion-type Relative)
ui_core_tool_test(unit_conversion_type_unknown_in_german
  EXPECT "^unbekannt \\(-1\\)\n$" ENV "LC_ALL=de_DE.UTF-8" ARGS unit-conversion-type delta)
