#!/bin/sh
# Counts the instructions that parsing one long node path or object path
# executes per code unit of its text, for texts of 10 to 100,000 identifiers
# or elements, with valgrind's callgrind. Unlike time, the count does not
# depend on caches or on what else the machine does, so a flat count shows
# that the parsers do linear work and that what grows with the length in
# the timed scaling benchmarks is the memory the longer result occupies.
# Needs the `bench` build (scripts/bench.sh makes it) and valgrind.
set -eu
cd "$(dirname "$0")/.."

UI_CORE_DEPS_EXTRA="python3 valgrind ${UI_CORE_DEPS_EXTRA:-}" ./scripts/install-deps.sh
cmake --preset bench >/dev/null
cmake --build --preset bench --target ui_core_bench >/dev/null

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

# $1: benchmark name; the rest: the functions whose instructions count.
count() {
  name=$1
  shift
  toggles=""
  for f in "$@"; do toggles="$toggles --toggle-collect=$f"; done
  # The function names hold no blanks ("?" stands for one), so they split
  # cleanly.
  # shellcheck disable=SC2086
  valgrind --tool=callgrind --callgrind-out-file="$out/cg" $toggles \
    ./build/bench/bin/ui_core_bench --benchmark_filter="^$name\$" --benchmark_format=json >"$out/json" 2>/dev/null
  callgrind_annotate --threshold=100 "$out/cg" >"$out/annotated" 2>/dev/null
  python3 - "$out/json" "$out/annotated" "$name" <<'EOF'
import json, re, sys
b = json.load(open(sys.argv[1]))["benchmarks"][0]
total = own = 0
for line in open(sys.argv[2]):
    m = re.match(r"^\s*([\d,]+) \(\s*[\d.]+%\)\s+(.*)$", line)
    if not m:
        continue
    n = int(m.group(1).replace(",", ""))
    if "PROGRAM TOTALS" in m.group(2):
        total = n
    elif "libui_core" in m.group(2):
        own += n
per = b["iterations"] * b["code_units"]  # the code units parsed in all
name = sys.argv[3].replace("_counted", "").replace("/iterations:4", "")
print(f"{name:<26} {own / per:7.2f} in the library, {total / per:7.2f} with the allocator"
      " (instructions per code unit)")
EOF
}

for n in 10 100 1000 10000 100000; do
  count "NodePath_scaling_counted/$n/iterations:4" 'ui::core::NodePathBase::NodePathBase*' \
    'krel::detail::CountedPtr<*NodePathBase::Rep*>::~CountedPtr*'
done
for n in 10 100 1000 10000 100000; do
  count "ObjectPath_scaling_counted/$n/iterations:4" 'ui::core::to_object_path*'
done
