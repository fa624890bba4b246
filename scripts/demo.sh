#!/bin/sh
# Installs what is missing, builds the ui-core tool and runs it on the bundled
# samples in examples/sample/:
#   1. batch mode with --json: each *.txt input file is read line by line and
#      every line gives one JSON object (JSON Lines) - all of these lines are
#      valid, so each run exits 0;
#   2. a file with deliberately refused lines, in German: those lines become
#      error records and the run exits 1, which is the expected outcome here;
#   3. the session examples/sample/session.txt, one ui-core command per line;
#      some of its commands show refused input on purpose, so it exits 1.
# The script exits 0 when every step behaved as described.
# UI_CORE_BUILD_DIR picks the build folder (default build/release).
set -eu
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
build="${UI_CORE_BUILD_DIR:-build/release}"
cmake --preset release -B "$build" >/dev/null
cmake --build "$build" --target ui-core ui_core_source_creators
tool="$build/bin/ui-core"
sample=examples/sample

step() { printf '\n$ ui-core %s\n' "$*"; "$tool" "$@"; }

echo "== 1. Batch mode, JSON Lines (one object per input line)"
step node-path --json --file "$sample/node_paths.txt"
step object-path --json --file "$sample/object_paths.txt"
step sub2ind --json --size 3x4 --file "$sample/subscripts_3x4.txt"
step unit --json --to Pa --file "$sample/units.txt"

echo
echo "== 2. Refused lines (German messages); exit code 1 is expected"
status=0
step node-path --json --locale de_DE.UTF-8 --file "$sample/node_paths_mixed.txt" || status=$?
if [ "$status" -ne 1 ]; then
  echo "demo: expected exit code 1 for the refused lines, got $status" >&2
  exit 1
fi
echo "(exit code $status: some lines were refused, as intended)"

echo
echo "== 3. The session: one ui-core command line per line"
status=0
"$tool" batch "$sample/session.txt" || status=$?
if [ "$status" -ne 0 ] && [ "$status" -ne 1 ]; then
  echo "demo: the session ended with exit code $status" >&2
  exit 1
fi
