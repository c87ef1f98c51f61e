#!/bin/bash
# Installs the Debian packages that building, testing and the demo need (DESIGN.md section 1).
# Idempotent: packages already present are left alone, so a second run costs seconds.
set -euo pipefail
packages=(
  cmake make g++ python3
  mingw-w64 mingw-w64-tools libwine-dev        # cross compilers, widl and the IDL files it imports
  wine wine64 xvfb xauth imagemagick x11-utils # running and looking at the Windows build
  fonts-wine                                   # Marlett: the title bars' caption buttons
  googletest libgtest-dev libbenchmark-dev     # unit tests and benchmarks
  nlohmann-json3-dev libcli11-dev              # sentrel-acl: its files and its arguments
  snmp snmpd                                   # net-snmp: the outside referee
  clang libclang-rt-14-dev                     # libFuzzer and sanitizers
  iproute2 util-linux ccache time tmux         # the benchmarks' peak memory; a terminal for their progress
)
# Without their recommendations: ansible-core's would bring every other vendor's collection
# (a quarter of a gigabyte) that the sentrel.acl collection never uses.
lean=(
  python3-jsonschema                           # sentrel-acl: its JSON output checked against its schemas
  ansible-core python3-pytest                  # the sentrel.acl collection and its tests
)
missing() {
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || echo "$p"
  done
}
mapfile -t full < <(missing "${packages[@]}")
mapfile -t slim < <(missing "${lean[@]}")
if [ ${#full[@]} -gt 0 ] || [ ${#slim[@]} -gt 0 ]; then
  echo "install-deps: installing ${full[*]} ${slim[*]}"
  SUDO=""; [ "$(id -u)" = 0 ] || SUDO="sudo"
  $SUDO apt-get update -qq
  apt_install() { DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "$@" >/dev/null; }
  [ ${#full[@]} -eq 0 ] || apt_install "${full[@]}"
  [ ${#slim[@]} -eq 0 ] || apt_install --no-install-recommends "${slim[@]}"
fi
