#!/bin/bash
# End to end, in a Wine prefix of its own: register OrblaneHost.dll and Sentrel.dll
# (Sentrel's DllRegisterServer calls RegisterPlugIn), then orblane.exe must build
# the plug-in's menus from its IHostPlugIn texts. Needs a display (ctest runs under Xvfb).
# Usage: orblane_menus_test.sh <wine-run> <OrblaneHost.dll> <Sentrel.dll> <orblane.exe> <site.xml> <prefix>
set -uo pipefail
wine_run=$1 host_dll=$2 sentrel_dll=$3 orblane=$4 site=$5
export SENTREL_WINEPREFIX=$6
winpath() { printf 'Z:%s' "${1//\//\\}"; }
finish() { WINEPREFIX=$SENTREL_WINEPREFIX wineserver -k 2>/dev/null || true; }
trap finish EXIT
if [ -z "${DISPLAY:-}" ]; then
  exec xvfb-run -a "$0" "$@"
fi
finish   # a server of an earlier run may hold another display
"$wine_run" --prefix-only
"$wine_run" regsvr32 /s "$(winpath "$host_dll")" || { echo "FAIL: regsvr32 OrblaneHost.dll"; exit 1; }
"$wine_run" regsvr32 /s "$(winpath "$sentrel_dll")" || { echo "FAIL: regsvr32 Sentrel.dll"; exit 1; }
out=$("$wine_run" "$(winpath "$orblane")" --dump-menus --site "$(winpath "$site")" | tr -d '\r')
echo "$out"
status=0
expect() {
  if grep -qxF -- "$1" <<<"$out"; then echo "ok: $1"; else echo "FAIL: missing line: $1"; status=1; fi
}
expect "&Plug-In/&Halvo Console Plug-In/&ACL Manager..."
expect "&UserMgr/&Raduis Server..."
expect "&View/&DevManage Toolbar [checked]"
expect "&File/E&xit"
expect "&Help/&About Orblane NMS..."
# Plug-in menus sit before the host's Help menu.
[ "$(grep -v '^orblane:' <<<"$out" | tail -1)" = "&Help/&About Orblane NMS..." ] || { echo "FAIL: Help is not last"; status=1; }
exit $status
