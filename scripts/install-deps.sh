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
  python3-jsonschema                           # sentrel-acl: its JSON output checked against its schemas
  ansible-core python3-pytest                  # the sentrel.acl collection and its tests
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "install-deps: installing ${missing[*]}"
  SUDO=""; [ "$(id -u)" = 0 ] || SUDO="sudo"
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq "${missing[@]}" >/dev/null
fi
