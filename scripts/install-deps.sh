#!/bin/sh
# Installs the Debian 12 packages the build, the tests and the tools need.
# Idempotent and quiet: packages already present are left alone. Run as root
# (or with sudo available).
set -eu

packages="g++ cmake ninja-build pkg-config libboost1.81-dev libicu-dev googletest \
libgmock-dev libgtest-dev libbenchmark-dev libcli11-dev locales nlohmann-json3-dev \
libboost-filesystem1.81-dev libxml2-dev libpugixml-dev doxygen dpkg-dev file libudunits2-dev"
if [ "${UI_CORE_DEPS_EXTRA:-}" != "" ]; then
  packages="$packages $UI_CORE_DEPS_EXTRA"
fi

missing=""
for p in $packages; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing="$missing $p"
  fi
done

SUDO=""
if [ "$(id -u)" != "0" ]; then SUDO="sudo"; fi

if [ -n "$missing" ]; then
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq >/dev/null
  # shellcheck disable=SC2086
  $SUDO apt-get install -y -qq --no-install-recommends $missing >/dev/null
fi

# The message catalogue ships English and German texts; the German locale is
# generated so that the tool and the tests can select it.
for loc in en_US.UTF-8 de_DE.UTF-8; do
  if ! locale -a 2>/dev/null | grep -qi "^$(echo "$loc" | sed 's/UTF-8/utf8/')\$"; then
    if [ -f /etc/locale.gen ]; then
      $SUDO sed -i "s/^# *\($loc UTF-8\)/\1/" /etc/locale.gen
      grep -q "^$loc UTF-8" /etc/locale.gen || echo "$loc UTF-8" | $SUDO tee -a /etc/locale.gen >/dev/null
      $SUDO locale-gen >/dev/null
    fi
  fi
done
