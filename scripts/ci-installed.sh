#!/bin/sh
# Proves an installation works the way its users meet it. Installs a build
# tree into a fresh prefix and, from there alone:
#   - builds examples/consumer and runs it;
#   - builds the examples on their own with find_package(ui_core) and runs them;
#   - builds the third-party bundle (examples/third_party_bundle) and runs its
#     test, then has the installed ui-core pick the bundle up;
#   - runs the three `ui-core source` commands with an empty environment
#     (no LD_LIBRARY_PATH, no KREL_BUNDLE_PATH);
#   - compiles two programs with the flags of the installed pkg-config file.
#
#   scripts/ci-installed.sh BUILD_DIR [CMAKE_PREFIX_PATH-of-dependencies]
#
# The second argument is only for the consumer projects' own configure step
# when a dependency is somewhere CMake does not look; the installed package
# is meant to need nothing but its own prefix, so CI leaves it out.
set -eu
cd "$(dirname "$0")/.."

build=$1
extra_prefix=${2:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
search=$prefix
if [ -n "$extra_prefix" ]; then search="$prefix;$extra_prefix"; fi

echo "== install $build into a fresh prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

echo "== examples/consumer against the installed package"
cmake -S examples/consumer -B "$work/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$search" \
  -DCMAKE_CXX_FLAGS=-Werror >/dev/null
cmake --build "$work/consumer" >/dev/null
"$work/consumer/app"

echo "== the examples on their own against the installed package"
cmake -S examples -B "$work/examples" -G Ninja -DCMAKE_PREFIX_PATH="$search" \
  -DCMAKE_CXX_FLAGS=-Werror >/dev/null
cmake --build "$work/examples" >/dev/null
ctest --test-dir "$work/examples" --output-on-failure

echo "== a third-party bundle built with find_package(ui_core) only"
cmake -S examples/third_party_bundle -B "$work/acme" -G Ninja -DCMAKE_PREFIX_PATH="$search" \
  -DCMAKE_CXX_FLAGS=-Werror >/dev/null
cmake --build "$work/acme" >/dev/null
ctest --test-dir "$work/acme" --output-on-failure
out=$(env -i KREL_BUNDLE_PATH="$work/acme/bundles" "$prefix/bin/ui-core" source --location plant.model:3:4)
echo "ui-core with the bundle: $out"
test "$out" = "made by acme: plant.model line 3, column 4"

echo "== the installed ui-core makes sources with an empty environment"
check() {
  expected=$1
  shift
  got=$(env -i "$prefix/bin/ui-core" "$@")
  echo "ui-core $*: $got"
  if [ "$got" != "$expected" ]; then
    echo "expected: $expected" >&2
    exit 1
  fi
}
check "model/plant.model:12:5" source --location model/plant.model:12:5
check "block model/Sub/Gain" source --block model/Sub/Gain
check "dialog of block model/Sub/Gain" source --block model/Sub/Gain --open-dialog

echo "== programs built with pkg-config"
export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
cat >"$work/context.cpp" <<'CPP'
#include <iostream>

#include "krel/bundles.h"

int main() {
  const bool valid = static_cast<bool>(krel::get_global_bundle_context());
  std::cout << "global bundle context: " << (valid ? "valid" : "invalid") << '\n';
  return valid ? 0 : 1;
}
CPP
for program in "$work/context.cpp" examples/source.cpp; do
  name=$(basename "$program" .cpp)
  # shellcheck disable=SC2046
  g++ -std=c++20 -Wall -Wextra -Werror -o "$work/pc_$name" "$program" $(pkg-config --cflags --libs ui_core)
  LD_LIBRARY_PATH="$prefix/lib" "$work/pc_$name" >/dev/null
  echo "pkg-config build of $name.cpp runs"
done

echo "== the layout: platform headers in one folder of the project, SONAME major.minor"
test -f "$prefix/include/ui_core/krel/bundles.h"
test -f "$prefix/include/ui/core/node_id.h"
for folder in krel lang msgcat units2 resource_core cppmicroservices; do
  if [ -e "$prefix/include/$folder" ]; then
    echo "$prefix/include/$folder: platform headers outside include/ui_core" >&2
    exit 1
  fi
done
version=$("$prefix/bin/ui-core" --version | sed 's/^ui-core //')
soversion=$(echo "$version" | cut -d. -f1-2)
case $version in
  0.*) ;;
  *) soversion=$(echo "$version" | cut -d. -f1) ;;
esac
readelf -d "$prefix/lib/libui_core.so" | grep -F "[libui_core.so.$soversion]"

echo "== the consumer's own C++ standard is kept"
cat >"$work/std.cpp" <<'CPP'
#include "ui/core/node_id.h"

static_assert(__cplusplus > 202002L, "the -std given before pkg-config's flags was overridden");

int main() { return ui::core::is_node_path(u"a/b") ? 0 : 1; }
CPP
# shellcheck disable=SC2046
g++ -std=c++23 -Wall -Wextra -Werror -o "$work/std" "$work/std.cpp" $(pkg-config --cflags --libs ui_core)
LD_LIBRARY_PATH="$prefix/lib" "$work/std"
echo "a C++23 program builds with the package's flags"

echo "== installation checks passed"
