# Turns the unit database into a C++ source file at build time.
# Inputs: INPUT (the data file) and OUTPUT (the .cpp to write). The output is
# rewritten only when its text changes, so an unchanged database rebuilds nothing.
file(READ "${INPUT}" content)
string(FIND "${content}" ")units\"" bad)
if(NOT bad EQUAL -1)
  message(FATAL_ERROR "${INPUT} contains the raw-string delimiter )units\"")
endif()
set(body "// Generated from the unit database; do not edit.\n#include \"units_data.h\"\n\nnamespace units2::core::detail {\n\nstd::string_view builtin_unit_data() noexcept {\n  static constexpr std::string_view data = R\"units(${content})units\";\n  return data;\n}\n\n}  // namespace units2::core::detail\n")
if(EXISTS "${OUTPUT}")
  file(READ "${OUTPUT}" old)
else()
  set(old "")
endif()
if(NOT old STREQUAL body)
  file(WRITE "${OUTPUT}" "${body}")
endif()
