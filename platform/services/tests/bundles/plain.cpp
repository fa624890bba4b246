// A test bundle without activator: it has nothing to start, and starts all the same.

extern "C" int services_test_plain_answer() {
  return 42;
}
