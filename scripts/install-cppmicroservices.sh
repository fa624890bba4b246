#!/bin/sh
# Builds and installs the CppMicroServices service framework (3.8.x), which
# Debian does not package.
#
#   scripts/install-cppmicroservices.sh [SOURCE] [PREFIX]
#
# SOURCE: a source archive (.tar.xz, .tar.gz, .tar.bz2, .zip) or a source
#   folder such as a clone of the upstream tag v3.8.12; by default the archive
#   ../shared/third_party/cppmicroservices-3.8.12.tar.xz next to the project.
# PREFIX: where to install; /usr/local by default, which CMake and the dynamic
#   linker search without being told. With another prefix, give it to CMake as
#   -DCMAKE_PREFIX_PATH=PREFIX when configuring ui_core.
#
# Idempotent: when PREFIX already holds a framework built from the same
# source, nothing is done. Quiet: prints one line of outcome; the build log is
# shown only when something fails. Installs the Debian packages the build
# needs (as root, or with sudo).
set -eu

here=$(cd "$(dirname "$0")/.." && pwd)
source=${1:-$here/../shared/third_party/cppmicroservices-3.8.12.tar.xz}
prefix=${2:-/usr/local}
jobs=${UI_CORE_JOBS:-$(nproc 2>/dev/null || echo 2)}

die() {
  echo "install-cppmicroservices: $*" >&2
  exit 1
}

[ -e "$source" ] || die "no source at '$source' (give an archive or a folder as the first argument)"
source=$(cd "$(dirname "$source")" && pwd)/$(basename "$source")
case $prefix in
  /*) ;;
  *) prefix=$(pwd)/$prefix ;;
esac

# What identifies the source: the archive's checksum, or the folder's commit
# when it is a git clone (its path otherwise).
if [ -f "$source" ]; then
  stamp=$(sha256sum "$source" | cut -d' ' -f1)
elif [ -d "$source/.git" ] && command -v git >/dev/null 2>&1; then
  stamp=$(git -C "$source" rev-parse HEAD 2>/dev/null || echo "$source")
else
  stamp=$source
fi
stamp_file=$prefix/share/cppmicroservices3/ui_core-build-stamp
config=$prefix/share/cppmicroservices3/cmake/CppMicroServicesConfig.cmake
if [ -f "$config" ] && [ -f "$stamp_file" ] && [ "$(cat "$stamp_file")" = "$stamp" ]; then
  echo "CppMicroServices is already installed in $prefix"
  exit 0
fi

# What the build needs from Debian.
UI_CORE_DEPS_EXTRA="xz-utils unzip" "$here/scripts/install-deps.sh"

work=$(mktemp -d "${TMPDIR:-/tmp}/cppmicroservices.XXXXXX")
trap 'rm -rf "$work"' EXIT
log=$work/build.log

if [ -d "$source" ]; then
  src=$source
else
  mkdir "$work/src"
  case $source in
    *.zip) unzip -q "$source" -d "$work/src" ;;
    *) tar -xf "$source" -C "$work/src" ;;
  esac
  src=$(find "$work/src" -mindepth 1 -maxdepth 2 -name CMakeLists.txt -printf '%h\n' | head -n 1)
  [ -n "$src" ] || die "'$source' holds no CMake project"
fi
grep -q "CppMicroServices" "$src/CMakeLists.txt" || die "'$src' is not a CppMicroServices source tree"

# Debian's Boost exports Boost::headers, while the framework's build links
# the name boost::boost when it takes Boost.Nowide from the system; the
# headers are on the default include path, so an empty target stands in.
cat >"$work/boost-alias.cmake" <<'EOF'
if(NOT TARGET boost::boost)
  add_library(boost::boost INTERFACE IMPORTED GLOBAL)
endif()
EOF

echo "Building CppMicroServices from $source into $prefix (several minutes)"
if ! {
  cmake -S "$src" -B "$work/build" -G Ninja \
    -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$prefix" \
    -DCMAKE_PROJECT_INCLUDE="$work/boost-alias.cmake" \
    -DUS_USE_SYSTEM_BOOST=ON \
    -DUS_BUILD_TESTING=OFF -DUS_BUILD_EXAMPLES=OFF \
    -DUS_BUILD_DOC_HTML=OFF -DUS_BUILD_DOC_MAN=OFF \
    -DBUILD_SHARED_LIBS=ON &&
    cmake --build "$work/build" -j "$jobs" &&
    cmake --install "$work/build"
} >"$log" 2>&1; then
  tail -n 60 "$log" >&2
  die "the build failed (the end of its log is above)"
fi
echo "$stamp" >"$stamp_file"
if [ "$(id -u)" = "0" ] && command -v ldconfig >/dev/null 2>&1; then ldconfig; fi
echo "CppMicroServices installed in $prefix"
