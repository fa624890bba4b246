#!/bin/sh
# Installs what is missing, builds everything with warnings as errors and runs
# every test under CTest.
set -eu
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake --preset dev >/dev/null
cmake --build --preset dev
ctest --preset dev --output-on-failure -j2
