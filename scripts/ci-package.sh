#!/bin/sh
# Builds the Debian package of ui_core from a release build installed under
# /usr, installs it with apt-get and proves the installation works: the ui-core
# tool from /usr/bin, the example programs built on their own against /usr with
# find_package(ui_core) and run under CTest, and two of them compiled with the
# flags from pkg-config. Removes (purges) the package again at the end, also
# when a step fails. Exits non-zero on any failure. Run as root (or with sudo available).
#
# UI_CORE_PACKAGE_BUILD_DIR: the build tree (default build/package).
# UI_CORE_PACKAGE_CMAKE_ARGS: more configure arguments, such as those that
#   select an installed CppMicroServices.
# UI_CORE_PACKAGE_ALLOWED_RUNPATH: the one run path installed files may carry,
#   the library folder of a CppMicroServices installed outside the system's
#   folders (by default none may carry one).
set -eu
cd "$(dirname "$0")/.."

start=$(date +%s)
build=${UI_CORE_PACKAGE_BUILD_DIR:-build/package}
name=ui-core
SUDO=""
if [ "$(id -u)" != "0" ]; then SUDO="sudo"; fi

work=$(mktemp -d)
installed=0
cleanup() {
  rc=$?
  if [ "$installed" = 1 ]; then
    echo "== removing $name after a failure"
    $SUDO env DEBIAN_FRONTEND=noninteractive apt-get remove --purge -y -qq "$name" >/dev/null || rc=1
  fi
  rm -rf "$work"
  exit "$rc"
}
trap cleanup EXIT
trap 'exit 1' INT TERM

echo "== build: release, installed under /usr ($build)"
# shellcheck disable=SC2086
# Warnings as errors: a user's first (release) build must print none.
cmake --preset release -B "$build" -DCMAKE_INSTALL_PREFIX=/usr -DUI_CORE_WERROR=ON -DUI_CORE_BUILD_TESTS=OFF \
  -DUI_CORE_BUILD_BENCH=OFF -DUI_CORE_BUILD_EXAMPLES=OFF ${UI_CORE_PACKAGE_CMAKE_ARGS:-} >/dev/null
cmake --build "$build" -j2

echo "== cpack -G DEB"
rm -f "$build"/${name}_*.deb
(cd "$build" && cpack -G DEB)
set -- "$build"/${name}_*.deb
if [ $# -ne 1 ] || [ ! -f "$1" ]; then
  echo "expected one ${name}_*.deb in $build, found: $*" >&2
  exit 1
fi
deb=$(realpath "$1")
dpkg-deb --field "$deb" Package Version Architecture Maintainer Section Depends
dpkg-deb --contents "$deb" | awk '{print $6, $7, $8}'

echo "== apt-get install $deb"
installed=1
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq "$deb" >/dev/null

echo "== the tool from /usr/bin"
test "$(command -v ui-core)" = /usr/bin/ui-core
/usr/bin/ui-core --version
if ldd /usr/bin/ui-core | grep 'not found'; then
  echo "ui-core does not find all its libraries" >&2
  exit 1
fi
ldd /usr/bin/ui-core | grep ui_core
libdir=$(dirname "$(dpkg -L "$name" | grep '/libui_core\.so$')")
echo "libraries in $libdir"
allowed=${UI_CORE_PACKAGE_ALLOWED_RUNPATH:-}
if readelf -d /usr/bin/ui-core "$libdir"/libui_core*.so.*.*.* "$libdir"/ui_core/bundles/*/*.so |
  grep -E 'RPATH|RUNPATH' | grep -v -F "[$allowed]"; then
  echo "installed programs and libraries in the system folders need no run path" >&2
  exit 1
fi
test "$(env -i /usr/bin/ui-core source --location model/plant.model:12:5)" = model/plant.model:12:5
test "$(env -i /usr/bin/ui-core source --block model/Sub/Gain)" = "block model/Sub/Gain"
test "$(env -i /usr/bin/ui-core source --block model/Sub/Gain --open-dialog)" = \
  "dialog of block model/Sub/Gain"
/usr/bin/ui-core node-path 'Body//Frame/mass'

echo "== the examples, on their own, against /usr with find_package(ui_core)"
if ! cmake -S examples -B "$work/examples" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_CXX_FLAGS=-Werror >"$work/configure.log" 2>&1; then
  cat "$work/configure.log" >&2
  exit 1
fi
grep "ui_core .* from $libdir/cmake/ui_core" "$work/configure.log"
cmake --build "$work/examples" -j2
ctest --test-dir "$work/examples" --output-on-failure
"$work/examples/example_source"

echo "== two examples built with pkg-config"
test "$(pkg-config --variable=pcfiledir ui_core)" = "$libdir/pkgconfig"
echo "ui_core $(pkg-config --modversion ui_core): $(pkg-config --cflags --libs ui_core)"
for example in node_path source; do
  # shellcheck disable=SC2046
  g++ -std=c++20 -Wall -Wextra -Werror -o "$work/pc_$example" "examples/$example.cpp" \
    $(pkg-config --cflags --libs ui_core)
  "$work/pc_$example"
done

echo "== apt-get remove --purge $name"
$SUDO env DEBIAN_FRONTEND=noninteractive apt-get remove --purge -y -qq "$name" >/dev/null
installed=0
status=$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null || true)
if { [ -n "$status" ] && [ "$status" != not-installed ]; } || [ -e /usr/bin/ui-core ] ||
  [ -e "$libdir/pkgconfig/ui_core.pc" ] || [ -e "$libdir/ui_core" ]; then
  echo "$name is still on the machine (status '$status')" >&2
  exit 1
fi

echo "== package checks passed in $(($(date +%s) - start)) s ($(basename "$deb"))"
