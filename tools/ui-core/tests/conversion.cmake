# sub2ind / ind2sub: column-major, 1-based subscripts, 0-based indices.
ui_core_tool_test(sub2ind_matrix EXPECT "^7\n$" ARGS sub2ind "//2, 3" 3x4)
ui_core_tool_test(sub2ind_plain_subscript EXPECT "^7\n$" ARGS sub2ind 2,3 3x4)
ui_core_tool_test(sub2ind_last_of_three_dimensions EXPECT "^23\n$" ARGS sub2ind 2,3,4 2x3x4)
ui_core_tool_test(sub2ind_column_vector_takes_one_subscript EXPECT "^3\n$" ARGS sub2ind 4 5x1)
ui_core_tool_test(sub2ind_extra_subscripts_ignored EXPECT "^2\n$" ARGS sub2ind 1,2,5 2x3)
ui_core_tool_test(sub2ind_row_vector_needs_two_subscripts EXIT 1
  EXPECT "InsufficientSubscriptDimensions: The subscript '//4' has too few dimensions for an array of size 1x5\\."
  ENV "LC_ALL=C"
  ARGS sub2ind 4 1x5)
ui_core_tool_test(sub2ind_out_of_range EXIT 1
  EXPECT "SubscriptOutOfRange: The subscript '//4, 1' is out of range for an array of size 3x4\\."
  ENV "LC_ALL=C"
  ARGS sub2ind 4,1 3x4)
ui_core_tool_test(sub2ind_zero_subscript_refused EXIT 1
  EXPECT "InvalidObjectPathSubscriptString: '//0'"
  ARGS sub2ind 0 3)
ui_core_tool_test(sub2ind_bad_size_is_bad_usage EXIT 2 EXPECT "size" ARGS sub2ind 1 3y4)
ui_core_tool_test(sub2ind_missing_size_is_bad_usage EXIT 2 ARGS sub2ind 1)
ui_core_tool_test(ind2sub_matrix EXPECT "^//2, 3\n$" ARGS ind2sub 7 3x4)
ui_core_tool_test(ind2sub_keeps_trailing_ones EXPECT "^//4, 1\n$" ARGS ind2sub 3 5x1)
ui_core_tool_test(ind2sub_past_the_end_grows_last_subscript EXPECT "^//1, 5\n$" ARGS ind2sub 12 3x4)
ui_core_tool_test(ind2sub_zero_gives_ones EXPECT "^//1, 1, 1\n$" ARGS ind2sub 0 2x3x4)
ui_core_tool_test(ind2sub_negative_index_is_bad_usage EXIT 2 EXPECT "index" ARGS ind2sub x 3)
ui_core_tool_test(ind2sub_index_past_64_bits_is_bad_usage EXIT 2
  ARGS ind2sub 18446744073709551616 3)

# lang-path: a node path as the language's container and value paths, and back.
ui_core_tool_test(lang_path_escaped_separator
  EXPECT "^container path: Body//Frame\\.mass\nvalue path: Body//Frame\\.mass \\(head 'Body//Frame', tail 'mass'\\)\nnode path: Body//Frame/mass\n$"
  ARGS lang-path Body//Frame/mass)
ui_core_tool_test(lang_path_single_id_has_empty_head
  EXPECT "value path: mass \\(head '', tail 'mass'\\)"
  ARGS lang-path mass)
ui_core_tool_test(lang_path_invalid_path_refused EXIT 1
  EXPECT "InvalidNodePath: '/mass'"
  ARGS lang-path /mass)
ui_core_tool_test(lang_path_head_holds_all_but_the_last
  EXPECT "container path: a\\.b\\.c\nvalue path: a\\.b\\.c \\(head 'a\\.b', tail 'c'\\)\nnode path: a/b/c\n"
  ARGS lang-path a/b/c)
ui_core_tool_test(lang_path_bad_identifier_refused EXIT 1
  EXPECT "InvalidNodeId: 'a//'"
  ARGS lang-path a///b)
