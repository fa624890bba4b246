#!/bin/sh
# Runs the tests under the sanitizers:
#   1. the "asan" preset (clang, AddressSanitizer with LeakSanitizer, and
#      UndefinedBehaviorSanitizer): everything is built and the whole suite runs;
#   2. the "tsan" preset (clang, ThreadSanitizer): only the test programs that
#      hold multi-threaded tests are built, and only those tests run.
#
# Which tests are multi-threaded: every test that starts threads has "Thread"
# or "Concurren" in its name (for example Concurrency.FirstEscapeXmlCalls...,
# NodePath.CopiesAcrossThreads...), so the selection is
#   ctest -R 'Thread|Concurren'
# and the programs to build are those whose sources define such a test, found
# through the compilation database.
#
#   scripts/ci-sanitizers.sh          # both
#   scripts/ci-sanitizers.sh asan     # one of them
#
# Environment: ASAN_BUILD_DIR (default build/asan), TSAN_BUILD_DIR (default
# build/tsan), JOBS (default 2).
set -eu
cd "$(dirname "$0")/.."

jobs="${JOBS:-2}"
runs="${*:-asan tsan}"
thread_tests='Thread|Concurren'
summary=""
failed=0

elapsed() { echo $(( $(date +%s) - $1 )); }

run_asan() {
  dir="${ASAN_BUILD_DIR:-build/asan}"
  t0=$(date +%s)
  cmake --preset asan -B "$dir" >/dev/null
  cmake --build "$dir" -j"$jobs"
  t1=$(date +%s)
  # LeakSanitizer is on by default; make a leak or a UB report fail the test.
  result=passed
  (cd "$dir" && ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=0}" \
     UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}" \
     ctest -j"$jobs" --output-on-failure) || { result=FAILED; failed=1; }
  summary="${summary}asan: build $(( t1 - t0 ))s, tests $(elapsed "$t1")s, $result
"
}

run_tsan() {
  dir="${TSAN_BUILD_DIR:-build/tsan}"
  t0=$(date +%s)
  cmake --preset tsan -B "$dir" >/dev/null
  # The sources that define a multi-threaded test, then the targets that
  # compile them: object files live in .../CMakeFiles/<target>.dir/...
  # (A test name may also stand alone on the line after "TEST(Suite,".)
  name="[A-Za-z0-9_]*(${thread_tests})[A-Za-z0-9_]*"
  sources=$(grep -rlE "^TEST(_F|_P)?\(${name},|^TEST(_F|_P)?\([A-Za-z0-9_]+, *${name}\)|^ +${name}\) *\{" \
              tests platform/*/tests 2>/dev/null || true)
  targets=""
  for source in $sources; do
    abs="$(pwd)/$source"
    target=$(grep -F "\"file\": \"$abs\"" -B3 -A3 "$dir/compile_commands.json" |
             sed -n 's|.*CMakeFiles/\([^/]*\)\.dir/.*|\1|p' | head -n 1)
    case " $targets " in *" $target "*) ;; *) [ -n "$target" ] && targets="$targets $target" ;; esac
  done
  if [ -z "$targets" ]; then
    echo "error: no multi-threaded tests found" >&2
    exit 1
  fi
  echo "tsan: building$targets"
  # shellcheck disable=SC2086
  cmake --build "$dir" -j"$jobs" --target $targets
  t1=$(date +%s)
  result=passed
  (cd "$dir" && TSAN_OPTIONS="${TSAN_OPTIONS:-halt_on_error=1:second_deadlock_stack=1}" \
     ctest -j"$jobs" --output-on-failure -R "$thread_tests" --no-tests=error) ||
    { result=FAILED; failed=1; }
  summary="${summary}tsan: build $(( t1 - t0 ))s, tests $(elapsed "$t1")s ($(echo $targets | wc -w) programs), $result
"
}

start=$(date +%s)
for run in $runs; do
  case "$run" in
    asan) run_asan ;;
    tsan) run_tsan ;;
    *) echo "error: unknown run '$run' (asan or tsan)" >&2; exit 2 ;;
  esac
done
printf '%s' "$summary"
echo "sanitizers: $(elapsed "$start")s in all"
exit "$failed"
