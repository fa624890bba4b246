// A shared library that is no bundle: it lacks the bundle initialisation.

extern "C" int services_test_not_a_bundle_answer() {
  return 42;
}
