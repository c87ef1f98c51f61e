#!/bin/bash
# The Sentrel demo (DESIGN.md section 4): installs what it needs, builds the DLLs and the
# stand-in host of the win64 tree and the optimised simulator, starts the simulated switch
# fleet of the demo site (when the simulator builds; it names the one it runs), registers
# the stand-in host (OrblaneHost.dll) and the plug-in (Sentrel.dll) in the demo's own Wine
# prefix, imports the host's registry values (host/demo/demo.reg) and opens orblane.exe on
# the demo site (host/demo/site.xml).
#
# With a display: opens the host window; close it to end the demo.
# Without one (or with --headless): runs under Xvfb, saves screenshots of the host window,
# of its plug-in menu and of the ACL wizard under <tree>/screenshots/, then the scripted
# walk: orblane.exe --walk profiles-and-rules creates a profile of every type the model offers
# and a rule under each on two simulated switches through the wizard, then deletes an earlier
# rule and its profile on the modify pages, a screenshot per page in
# <tree>/screenshots/walk/; the script reads the profiles and rules back from both switches
# with snmpwalk and fails if they are not there.
#
# Usage: scripts/run-demo.sh [--headless] [--no-build] [--no-sim] [--walk-only]
#   --walk-only   headless: only the walk, not the three host screenshots (the test run)
# Environment: SENTREL_BUILD_DIR  the win64 tree (default build/win64)
#              SENTREL_SIM        the simulator (default build/bench, else build/native)
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

headless=0; build=1; sim=1; inside_xvfb=0; walk_only=0
for arg in "$@"; do
  case "$arg" in
    --headless) headless=1 ;;
    --no-build) build=0 ;;
    --no-sim) sim=0 ;;
    --walk-only) walk_only=1; headless=1 ;;
    --inside-xvfb) inside_xvfb=1; headless=1 ;;   # internal: the script re-run under xvfb-run
    -h|--help) sed -n '2,21p' "$0" | sed 's/^# \{0,1\}//'; exit 0 ;;
    *) echo "run-demo: unknown argument $arg" >&2; exit 2 ;;
  esac
done
[ -n "${DISPLAY:-}" ] || headless=1

# The win64 tree: build/win64 unless SENTREL_BUILD_DIR names another (relative to the root).
bin=${SENTREL_BUILD_DIR:-build/win64}
case "$bin" in /*) ;; *) bin=$root/$bin ;; esac
demo=$bin/demo                     # current directory of the host: the plug-in writes its
shots=$bin/screenshots             # RListDeviceFromGroup.xml and staging INI files here
site=$root/host/demo/site.xml
host_dll=$bin/host/host_objects/OrblaneHost.dll
sentrel_dll=$bin/shell/Sentrel.dll
orblane=$bin/host/orblane/orblane.exe
sim_exe=${SENTREL_SIM:-}
if [ -z "$sim_exe" ]; then
  sim_exe=$root/build/bench/sim/sentrel-sim
  [ -x "$sim_exe" ] || sim_exe=$root/build/native/sim/sentrel-sim
fi
case "$sim_exe" in /*) ;; *) sim_exe=$root/$sim_exe ;; esac
# The demo has a Wine prefix of its own, so its registry values and its wineserver never
# meet a test run's (wine-run honours SENTREL_WINEPREFIX).
export SENTREL_WINEPREFIX=$demo/wineprefix
wine_run=$bin/wine-run

# A Unix path as Wine sees it (drive Z: is the Unix root in every prefix).
winpath() { printf 'Z:%s' "${1//\//\\}"; }
stop_wineserver() { WINEPREFIX=$SENTREL_WINEPREFIX wineserver -k 2>/dev/null || true; }

if [ "$inside_xvfb" = 0 ]; then
  scripts/install-deps.sh
  if [ "$build" = 1 ]; then
    # Only what the demo runs: the plug-in, the stand-in host's objects and its program; the
    # test programs of the tree are the test run's business.
    echo "run-demo: building Sentrel.dll, OrblaneHost.dll and orblane.exe ($bin)"
    cmake --preset win64 -B "$bin" >/dev/null
    cmake --build "$bin" -j"$(nproc)" --target Sentrel OrblaneHost orblane
    if [ "$sim" = 1 ] && [ -z "${SENTREL_SIM:-}" ] && [ -f sim/CMakeLists.txt ]; then
      # The optimised (bench) build, else the debug (native) one, and saying so: the debug
      # simulator answers far slower, which a user must not take for the plug-in's speed.
      mkdir -p build
      for preset in bench native; do
        echo "run-demo: building the $preset switch simulator (log: build/sim-build-$preset.log)"
        if { cmake --preset $preset && cmake --build build/$preset --target sentrel-sim -j"$(nproc)"; } \
             > "build/sim-build-$preset.log" 2>&1; then
          break
        fi
        echo "run-demo: the $preset simulator did not build (see build/sim-build-$preset.log)" >&2
      done
    fi
  fi
  for f in "$host_dll" "$sentrel_dll" "$orblane"; do
    [ -f "$f" ] || { echo "run-demo: $f is missing (build first)" >&2; exit 1; }
  done
  if [ "$headless" = 1 ]; then
    # Everything that talks to Wine runs under the same X display: a wineserver started
    # without one cannot open windows later.
    exec xvfb-run -a -s "-screen 0 1024x720x24" "$0" --inside-xvfb --no-build \
      $([ "$sim" = 1 ] || echo --no-sim) $([ "$walk_only" = 0 ] || echo --walk-only)
  fi
fi

mkdir -p "$demo" "$shots"
cd "$demo"
stop_wineserver                    # a server of an earlier run may hold another display
"$wine_run" --prefix-only

# The simulated fleet: every switch of the site whose model the simulator serves, on its
# own loopback address, UDP 161 (needs root or CAP_NET_BIND_SERVICE).
sim_pid=""
cleanup() {
  [ -z "$sim_pid" ] || kill "$sim_pid" 2>/dev/null || true
  stop_wineserver
}
trap cleanup EXIT
if [ "$sim" = 1 ] && [ -x "$sim_exe" ]; then
  python3 - "$site" > "$demo/fleet.txt" <<'PY'
import sys, xml.etree.ElementTree as ET
models = {"TVG5240-10", "TVG5470", "TVG5690", "TVR4060", "TVR4510", "TVR4820", "TVR4512"}
print("# generated by scripts/run-demo.sh from host/demo/site.xml")
seen = set()
for info in ET.parse(sys.argv[1]).iter("DEVICEINFO"):
    f = {c.tag: (c.text or "").strip() for c in info}
    if f.get("TYPE") in models and f.get("IP", "").startswith("127.") and f["IP"] not in seen:
        seen.add(f["IP"])
        print(f["IP"], f["TYPE"], f.get("GETCOMM") or "public", f.get("SETCOMM") or "-")
PY
  echo "run-demo: simulator $sim_exe"
  case "$sim_exe" in */build/native/*) echo "run-demo: (the debug build, with sanitizers: slower than build/bench's)" ;; esac
  "$sim_exe" --fleet "$demo/fleet.txt" --quiet > "$demo/sim.log" 2>&1 &
  sim_pid=$!
  sleep 0.5
  if kill -0 "$sim_pid" 2>/dev/null; then
    echo "run-demo: simulated fleet of $(grep -vc '^#' "$demo/fleet.txt") switches started (log: $demo/sim.log)"
  else
    echo "run-demo: the simulator did not start (see $demo/sim.log); going on without switches"
    sim_pid=""
  fi
else
  echo "run-demo: no simulator ($sim_exe); the demo runs without switches"
fi
# An earlier configuration: core-sw1 (127.0.0.2, TVR4820) already has Ethernet profile 1, set
# with net-snmp's snmpset (RowStatus createAndGo, VLAN and Ethernet type used), so the wizard's
# "Add profile" page has a profile to list and leaves ID 1 out of the free ones.
if [ -n "$sim_pid" ]; then
  eth=.1.3.6.1.4.1.32473.12.9.2.1.1
  if ! snmpset -v1 -c private -t 2 -r 1 127.0.0.2 $eth.8.1 i 4 $eth.2.1 i 1 $eth.7.1 i 1 >/dev/null 2>&1; then
    echo "run-demo: could not set up core-sw1's existing profile with snmpset" >&2
  fi
  # ... and a rule of that profile (Access ID 1, permit, port 1), which the walk deletes on
  # "Modify Rule".
  rule=.1.3.6.1.4.1.32473.12.9.3.1.1
  if ! snmpset -v1 -c private -t 2 -r 1 127.0.0.2 $rule.15.1.1 i 4 $rule.13.1.1 i 2 $rule.14.1.1 x 80000000 \
       $rule.4.1.1 x 000000000000 $rule.5.1.1 x 000000000000 >/dev/null 2>&1; then
    echo "run-demo: could not set up core-sw1's existing rule with snmpset" >&2
  fi
fi

# The host first (its objects and type library), then the plug-in, whose
# DllRegisterServer calls IHostSystem::RegisterPlugIn for both classes.
echo "run-demo: registering OrblaneHost.dll and Sentrel.dll in $SENTREL_WINEPREFIX"
"$wine_run" regsvr32 /s "$(winpath "$host_dll")"
"$wine_run" regsvr32 /s "$(winpath "$sentrel_dll")"
# The host's settings: RootName, RadiusSite and the device types with and without "ACLExe".
"$wine_run" regedit /S "$(winpath "$root/host/demo/demo.reg")"

orblane_args=("$(winpath "$orblane")" --site "$(winpath "$site")")

if [ "$headless" = 0 ]; then
  echo "run-demo: opening Orblane NMS on $DISPLAY (close its window to end the demo)"
  "$wine_run" "${orblane_args[@]}" --select-node 11
  exit 0
fi

# Headless: one screenshot per state. orblane.exe writes the ready file once its start-up
# actions are done and closes when the file is removed again.
shoot() {  # shoot <png> <orblane options...>
  local png=$1; shift
  local ready=$demo/ready.txt
  rm -f "$ready"
  # A virtual desktop: Wine then draws the window frames itself (Xvfb has no window manager).
  "$wine_run" explorer /desktop=Orblane,1024x720 "${orblane_args[@]}" \
    --ready-file "$(winpath "$ready")" --exit-after 60000 "$@" &
  local pid=$!
  for _ in $(seq 1 150); do [ -f "$ready" ] && break; sleep 0.2; done
  if [ ! -f "$ready" ]; then
    echo "run-demo: orblane.exe did not get ready" >&2
    kill "$pid" 2>/dev/null || true
    return 1
  fi
  sleep 1.5
  import -window root "$png"
  rm -f "$ready"
  wait "$pid" || true
  echo "run-demo: screenshot $png"
}

if [ "$walk_only" = 0 ]; then
  shoot "$shots/host-window.png" --select-node 22 --select-device 127.0.0.21
  shoot "$shots/host-menus.png" --select-node 11 --select-device 127.0.0.2 \
    --open-menu "&Plug-In/&Halvo Console Plug-In"
  # The plug-in's ACL command as the host runs it: Execute of CSentrelCfg shows the wizard.
  shoot "$shots/host-acl-wizard.png" --select-node 22 --select-device 127.0.0.21 --run "&ACL Manager..."
fi

# The scripted walk (DESIGN.md section 4): the host opens "Core" with core-sw1 selected and
# runs the ACL command; orblane.exe --walk checks core-sw2 (the same model) beside it, picks
# the ordinary ACL and "Create Profile", makes a profile of each type the model offers with
# the first free profile IDs and applies them to both switches, then "Create Rules" and a rule
# under each of them, applied to both switches; "Modify Rule" and "Modify Profile" delete
# core-sw1's earlier rule and profile; Finish. A screenshot per page.
if [ -z "$sim_pid" ]; then
  if [ "$sim" = 0 ]; then
    echo "run-demo: --no-sim: no switches, so no walk; done; screenshots in $shots"
    exit 0
  fi
  echo "run-demo: FAILED: the walk needs the simulated fleet, which did not start" >&2
  exit 1
fi
walk_shots=$shots/walk
rm -rf "$walk_shots"
mkdir -p "$walk_shots"
echo "run-demo: the scripted walk through the ACL wizard (screenshots: $walk_shots)"
walk_rc=0
# A virtual desktop draws the window frames; the time-outs only stop a walk that hangs.
timeout 300 "$wine_run" explorer /desktop=Orblane,1024x720 "${orblane_args[@]}" \
  --select-node 11 --select-device 127.0.0.2 --run "&ACL Manager..." \
  --walk profiles-and-rules --shots "$(winpath "$walk_shots")" --exit-after 240000 \
  > "$demo/walk.log" 2>&1 || walk_rc=$?
report=$walk_shots/walk.txt
if [ ! -f "$report" ]; then
  echo "run-demo: FAILED: the walk wrote no report (exit $walk_rc; log: $demo/walk.log)" >&2
  exit 1
fi
sed 's/^/  walk: /' "$report"
if ! grep -qx 'result ok' "$report"; then
  echo "run-demo: FAILED: the walk did not get through the wizard (screenshots: $walk_shots)" >&2
  exit 1
fi

# The outside referee: net-snmp's snmpwalk reads, on every switch the walk configured, the
# table of each profile and rule the walk made; each row must be there and active (RowStatus
# 1), unless the walk deleted it on a modify page, when it must be gone. The tables are those
# of the demo's model, TVR4820: entry below 1.3.6.1.4.1.32473.12.9 and row-status column.
table_of() {  # table_of <profile|rule> <type>: "<entry> <row-status column>"
  case "$1 $2" in
    "profile Ethernet") echo 2.1.1 8 ;;   "rule Ethernet") echo 3.1.1 15 ;;
    "profile IPv4") echo 2.2.1 19 ;;      "rule IPv4") echo 3.2.1 22 ;;
    "profile IPv6") echo 2.4.1 7 ;;       "rule IPv6") echo 3.4.1 15 ;;
    "profile Packet_Content") echo 2.3.1 7 ;; "rule Packet_Content") echo 3.3.1 15 ;;
    *) echo "run-demo: FAILED: no table known for $2 ${1}s" >&2; return 1 ;;
  esac
}
# row_of <ip> <entry> <index>: the cells of the row, as snmpwalk -On prints them (none when
# the switch has no such row); fails when the switch does not answer, so a silent switch
# never passes for one whose row is gone.
row_of() {
  local out
  out=$(snmpwalk -v1 -c public -On -t 2 -r 1 "$1" ".1.3.6.1.4.1.32473.12.9.$2" 2>&1) ||
    { echo "run-demo: FAILED: $1 does not answer snmpwalk: $out" >&2; return 1; }
  grep -E "^\.1\.3\.6\.1\.4\.1\.32473\.12\.9\.$2\.[0-9]+\.$3 = " <<<"$out" || true
}
for what in profile rule; do
  grep -q "^$what " "$report" || { echo "run-demo: FAILED: the walk's report names no $what" >&2; exit 1; }
done
model=$(grep -m1 '^switch ' "$report" | awk '{print $3}' || true)
[ "$model" = TVR4820 ] || { echo "run-demo: FAILED: the read-back knows the tables of TVR4820, not '$model'" >&2; exit 1; }
missing=0
while read -r _ ip _; do
  while read -r what type index; do
    table=$(table_of "$what" "$type") && rows=$(row_of "$ip" "${table% *}" "$index") || { missing=1; continue; }
    status=${table#* }
    if grep -qx "deleted $what $type ${index/./ } on $ip" "$report"; then
      [ -z "$rows" ] && echo "run-demo: $ip, $type $what $index: gone (deleted on a modify page)" ||
        { echo "run-demo: FAILED: $ip still has $type $what $index after its deletion" >&2; missing=1; }
    elif grep -qE "\.${table% *}\.$status\.$index = INTEGER: 1\$" <<<"$rows"; then
      echo "run-demo: $ip, $type $what $index: $(grep -c . <<<"$rows") cells read back with snmpwalk, row active"
    else
      echo "run-demo: FAILED: $ip has no active $type $what $index; snmpwalk reads:" >&2
      [ -z "$rows" ] || sed 's/^/    /' <<<"$rows" >&2
      missing=1
    fi
  done < <(awk '$1 == "profile" {print "profile", $2, $3} $1 == "rule" {print "rule", $2, $3 "." $4}' "$report")
done < <(grep '^switch ' "$report")

# The earlier rule and profile that the modify pages deleted are gone from the first switch.
for what in rule profile; do
  line=$(grep -m1 "^deleted $what " "$report") || { echo "run-demo: FAILED: the walk deleted no $what" >&2; missing=1; continue; }
  set -- $line
  if [ "$what" = rule ]; then index=$4.$5; ip=$7; else index=$4; ip=$6; fi
  table=$(table_of "$what" "$3") && rows=$(row_of "$ip" "${table% *}" "$index") || { missing=1; continue; }
  if [ -z "$rows" ]; then
    echo "run-demo: $ip, $3 $what $index deleted on a modify page: gone (snmpwalk)"
  else
    echo "run-demo: FAILED: $ip still has $3 $what $index" >&2
    missing=1
  fi
done

# What the modify pages listed for the first switch, less what they deleted, is what snmpwalk
# reads from its profile tables now (row status of each TVR4820 profile table).
first=$(grep -m1 '^switch ' "$report" | awk '{print $2}')
listed=$(grep "^listed profile .* on $first\$" "$report" | awk '{print $3, $4}' | sort -u |
         grep -vxF -f <(grep "^deleted profile .* on $first\$" "$report" | awk '{print $3, $4}') || true)
walked=$(for type in Ethernet IPv4 IPv6 Packet_Content; do
           table=$(table_of profile $type) || continue
           snmpwalk -v1 -c public -On -t 2 -r 1 "$first" ".1.3.6.1.4.1.32473.12.9.${table% *}.${table#* }" 2>/dev/null |
             sed -nE "s/^.*\.([0-9]+) = .*/$type \1/p"
         done | sort -u)
if [ "$listed" = "$walked" ]; then
  echo "run-demo: $first: the modify pages listed what snmpwalk reads: $(tr '\n' ',' <<<"$walked" | sed 's/,$//')"
else
  echo "run-demo: FAILED: $first: the modify pages listed [$listed], snmpwalk reads [$walked]" >&2
  missing=1
fi
[ "$missing" = 0 ] || exit 1
echo "run-demo: the walk created $(awk '$1 == "profile" {p = p (p ? ", " : "") $2 " " $3} $1 == "rule" {r = r (r ? ", " : "") $2 " " $3 "." $4} END {print "the profiles " p " and the rules " r}' "$report") on $(grep -c '^switch ' "$report") switches"
echo "run-demo: done; screenshots in $shots, the walk's page by page in $walk_shots"
