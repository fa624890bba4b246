#!/bin/sh
# Installs what is missing, builds the ui-core tool and runs it on the bundled
# sample (examples/sample/session.txt), one subcommand per line of the sample.
set -eu
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target ui-core ui_core_source_creators
exec ./build/release/bin/ui-core batch examples/sample/session.txt
