ui_core_tool_test(batch_runs_the_sample_session
  EXPECT "\\$ ui-core sub2ind '//2, 3' 3x4\n7\n.*26 command\\(s\\) run, 4 refused their input"
  ARGS batch ${PROJECT_SOURCE_DIR}/examples/sample/session.txt)
ui_core_tool_test(batch_of_a_missing_file_is_bad_usage EXIT 2
  ARGS batch ${PROJECT_SOURCE_DIR}/examples/sample/no-such-file.txt)
