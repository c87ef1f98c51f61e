#!/bin/bash
# Benchmark of the SNMP layer (issue 3), one command: builds the optimised `bench` tree, starts
# net-snmp's snmpd on 127.0.7.1:161 and sentrel-sim on 127.0.7.2 (a 10,000-row column) and
# 127.0.7.3 (a replay of snmpd's own walk), runs build/bench/bench/snmp/snmp_bench, and
# stops both. Needs root (UDP 161). Usage: scripts/bench-snmp.sh [RUNS]
# Environment: SENTREL_BENCH_SMOKE=1  a short run that only proves the benchmark works (one run,
#              a 500-row column; the test run uses it, its figures mean nothing)
set -euo pipefail
cd "$(dirname "$0")/.."
runs=${1:-3}; rows=10000
[ "${SENTREL_BENCH_SMOKE:-0}" = 1 ] && runs=1 rows=500
scripts/install-deps.sh
cmake --preset bench >/dev/null
cmake --build --preset bench -j"$(nproc)" --target sentrel-sim snmp_bench >/dev/null

work=$(mktemp -d /tmp/sentrel-bench-XXXXXX)
snmpd_pid=""; sim_pid=""
cleanup() {
  [ -n "$sim_pid" ] && kill "$sim_pid" 2>/dev/null && wait "$sim_pid" 2>/dev/null || true
  [ -n "$snmpd_pid" ] && kill "$snmpd_pid" 2>/dev/null && wait "$snmpd_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
export SNMP_PERSISTENT_DIR=$work/persist MIBS=
mkdir -p "$SNMP_PERSISTENT_DIR"

cat > "$work/snmpd.conf" <<CONF
agentAddress udp:127.0.7.1:161
rocommunity public 127.0.0.0/8
CONF
snmpd -f -Lf "$work/snmpd.log" -C -c "$work/snmpd.conf" -p "$work/snmpd.pid" -I -smux &
snmpd_pid=$!
for _ in $(seq 50); do snmpget -v1 -c public -t 0.2 -r 0 127.0.7.1 .1.3.6.1.2.1.1.1.0 >/dev/null 2>&1 && break; sleep 0.1; done

column=.1.3.6.1.4.1.32473.99.1.1
awk -v c="$column" -v rows="$rows" 'BEGIN { for (i = 1; i <= rows; i++) printf "%s.%d = INTEGER: %d\n", c, i, i }' > "$work/column.walk"
snmpwalk -v1 -c public -On 127.0.7.1 .1.3.6.1.2.1 > "$work/snmpd.walk"
cat > "$work/fleet.txt" <<FLEET
127.0.7.2 replay public - dump=column.walk
127.0.7.3 replay public - dump=snmpd.walk
FLEET
build/bench/sim/sentrel-sim --quiet --fleet "$work/fleet.txt" > "$work/sim.log" 2>&1 &
sim_pid=$!
for _ in $(seq 50); do grep -q ready "$work/sim.log" && break; sleep 0.1; done

build/bench/bench/snmp/snmp_bench 127.0.7.1 127.0.7.2 127.0.7.3 "$column" .1.3.6.1.2.1 "$runs"
