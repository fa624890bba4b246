# The fuzz targets, shared by fuzz/CMakeLists.txt (libFuzzer executables) and
# tests/reliability/CMakeLists.txt (corpus replay in the ordinary test build).
# Each includer defines ui_core_fuzz_target(name LIBS <targets>) before
# including this file; fuzz/<name>.cpp is the target's source and
# fuzz/corpus/<name>/ its seed corpus.
ui_core_fuzz_target(utf LIBS ui_core::krel)
ui_core_fuzz_target(tokenize LIBS ui_core::krel)
ui_core_fuzz_target(node_id LIBS ui_core::ui_core)
ui_core_fuzz_target(node_path LIBS ui_core::ui_core)
ui_core_fuzz_target(object_path_name LIBS ui_core::ui_core)
ui_core_fuzz_target(object_path_subscript LIBS ui_core::ui_core)
ui_core_fuzz_target(object_path_element LIBS ui_core::ui_core)
ui_core_fuzz_target(object_path LIBS ui_core::ui_core)
ui_core_fuzz_target(indexing LIBS ui_core::ui_core)
ui_core_fuzz_target(block_path LIBS ui_core::ui_core)
ui_core_fuzz_target(escape_xml LIBS ui_core::ui_core)
ui_core_fuzz_target(enumerations LIBS ui_core::ui_core)
ui_core_fuzz_target(unit_expr LIBS ui_core::ui_core)
