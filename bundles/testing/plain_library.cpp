// A bundle without an activator: installing its set loads it and starts nothing.

extern "C" int krel_plain_library_answer() {
  return 42;
}
