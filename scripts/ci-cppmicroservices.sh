#!/bin/sh
# The whole project on an installed CppMicroServices: builds the framework
# from ../shared/third_party (or SOURCE) into a prefix kept between runs on
# one machine (built again only when missing), configures the project with
# UI_CORE_USE_SYSTEM_CPPMICROSERVICES=ON against it, builds everything with
# warnings as errors, runs every test, proves the installation (see
# scripts/ci-installed.sh) and the Debian package.
#
# Environment: UI_CORE_CPPMICROSERVICES_SOURCE (default: the archive in
# ../shared/third_party), UI_CORE_CPPMICROSERVICES_PREFIX (default
# ~/.cache/ui_core/cppmicroservices-3.8.12), UI_CORE_CPPMICROSERVICES_BUILD_DIR
# (default build/cppmicroservices).
set -eu
cd "$(dirname "$0")/.."

start=$(date +%s)
source=${UI_CORE_CPPMICROSERVICES_SOURCE:-}
prefix=${UI_CORE_CPPMICROSERVICES_PREFIX:-${HOME:-/root}/.cache/ui_core/cppmicroservices-3.8.12}
build=${UI_CORE_CPPMICROSERVICES_BUILD_DIR:-build/cppmicroservices}

echo "== CppMicroServices in $prefix"
./scripts/install-cppmicroservices.sh "$source" "$prefix"
echo "   ready after $(($(date +%s) - start)) s"

echo "== configure, build and test against it ($build)"
cmake --preset cppmicroservices -B "$build" -DCMAKE_PREFIX_PATH="$prefix" >"$build.configure.log" 2>&1 ||
  { cat "$build.configure.log" >&2; exit 1; }
grep "Service registry: CppMicroServices" "$build.configure.log"
rm -f "$build.configure.log"
cmake --build "$build" -j2
ctest --test-dir "$build" --output-on-failure -j2

./scripts/ci-installed.sh "$build"

echo "== the Debian package built against it"
UI_CORE_PACKAGE_BUILD_DIR=build/package-cppmicroservices \
  UI_CORE_PACKAGE_CMAKE_ARGS="-DUI_CORE_USE_SYSTEM_CPPMICROSERVICES=ON -DCMAKE_PREFIX_PATH=$prefix" \
  UI_CORE_PACKAGE_ALLOWED_RUNPATH="$prefix/lib" ./scripts/ci-package.sh

echo "== CppMicroServices leg passed in $(($(date +%s) - start)) s"
