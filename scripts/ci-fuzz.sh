#!/bin/sh
# Builds the libFuzzer targets with the "fuzz" preset (clang, ASan, UBSan) and
# runs each for a bounded time, starting from a copy of its checked-in seed
# corpus (fuzz/corpus/<target>/ is never modified). Prints each target's
# executions and crash count and exits non-zero when any target crashed or
# found a broken property; the inputs that did are kept for reproduction.
#
#   scripts/ci-fuzz.sh                 # every target, 20 s each
#   FUZZ_SECONDS=300 scripts/ci-fuzz.sh node_path object_path
#
# Environment: FUZZ_SECONDS (default 20), FUZZ_BUILD_DIR (default build/fuzz,
# the preset's folder), FUZZ_ARTIFACTS (default: a temporary folder, printed).
set -eu
cd "$(dirname "$0")/.."

seconds="${FUZZ_SECONDS:-20}"
build="${FUZZ_BUILD_DIR:-build/fuzz}"
start=$(date +%s)

cmake --preset fuzz -B "$build" >/dev/null
cmake --build "$build" -j2 --target ui_core_fuzz

if [ "$#" -gt 0 ]; then
  targets="$*"
else
  targets=$(cat "$build/fuzz_targets.txt")
fi

work=$(mktemp -d "${TMPDIR:-/tmp}/ui-core-fuzz.XXXXXX")
artifacts="${FUZZ_ARTIFACTS:-$work/artifacts}"
mkdir -p "$artifacts"
# Keep the artifacts when something was found; drop the copied corpora.
trap 'rm -rf "$work/corpus"' EXIT

failed=0
summary=""
for target in $targets; do
  exe="$build/bin/fuzz_$target"
  if [ ! -x "$exe" ]; then
    echo "error: no fuzz target $target ($exe)" >&2
    exit 2
  fi
  corpus="$work/corpus/$target"
  mkdir -p "$corpus" "$artifacts/$target"
  if [ -d "fuzz/corpus/$target" ]; then
    cp -R "fuzz/corpus/$target/." "$corpus/"
  fi
  log="$work/$target.log"
  echo "== fuzz_$target: ${seconds}s"
  set +e
  ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}" UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1}" \
    "$exe" -max_total_time="$seconds" -print_final_stats=1 -timeout=10 -rss_limit_mb=2048 \
    -artifact_prefix="$artifacts/$target/" "$corpus" >"$log" 2>&1
  code=$?
  set -e
  runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  crashes=$(find "$artifacts/$target" -type f | wc -l | tr -d ' ')
  if [ "$code" -ne 0 ] && [ "$crashes" -eq 0 ]; then
    crashes=1  # it stopped without leaving an input behind
  fi
  if [ "$crashes" -ne 0 ]; then
    failed=1
    echo "   CRASH (exit $code); last lines of the log:"
    tail -n 30 "$log" | sed 's/^/   | /'
    cp "$log" "$artifacts/$target/fuzz.log"
  fi
  line=$(printf '%-24s executions %10s   crashes %s' "$target" "${runs:-?}" "$crashes")
  echo "   $line"
  summary="$summary$line
"
done

echo
echo "Fuzzing summary (${seconds}s per target, $(( $(date +%s) - start ))s in all):"
printf '%s' "$summary"
if [ "$failed" -ne 0 ]; then
  echo "Crashing inputs and logs: $artifacts"
  exit 1
fi
rm -rf "$work"
