#!/bin/bash
# Benchmark of sentrel-acl, one command, as root: builds the optimised `bench` tree and, in a
# network namespace of its own, serves simulated switches on 127.0.8.x:161 with sentrel-sim.
#  1. a distant site: 10 switches answering 20 ms late, 3 of them silent, 20 records each:
#     `apply --parallel 10` against `--parallel 1`, and the parallel run against its slowest
#     switch (read, write, read back);
#  2. the same 200 records on 10 switches without delay: sentrel-acl against a shell loop of
#     net-snmp `snmpset`, one call per record (and per closing request), as engineers script it.
# Usage: scripts/bench-apply.sh
# Environment: SENTREL_BENCH_SMOKE=1  a short run that only proves the benchmark works (the
#              slow one-switch-at-a-time run left out; the test run uses it)
set -euo pipefail
cd "$(dirname "$0")/.."
smoke=${SENTREL_BENCH_SMOKE:-0}
if [ "${SENTREL_BENCH_NETNS:-}" != 1 ]; then
  scripts/install-deps.sh
  cmake --preset bench >/dev/null
  cmake --build --preset bench -j"$(nproc)" --target sentrel-sim sentrel-acl >/dev/null
  exec unshare -n env SENTREL_BENCH_NETNS=1 bash "$0" "$@"
fi
ip link set lo up
sim=build/bench/sim/sentrel-sim
acl=build/bench/cli/sentrel-acl
work=$(mktemp -d /tmp/sentrel-bench-apply-XXXXXX)
sim_pid=""
stop_sim() { [ -n "$sim_pid" ] && kill "$sim_pid" 2>/dev/null && wait "$sim_pid" 2>/dev/null || true; sim_pid=""; }
trap 'stop_sim; rm -rf "$work"' EXIT
export BENCH_READ=public BENCH_WRITE=private

# Inventory of 10 TVR4820 switches and a state of 20 records each: two profiles with 9 rules.
{
  echo '{"communities": {"read_env": "BENCH_READ", "write_env": "BENCH_WRITE"}, "switches": {'
  for i in $(seq 1 10); do
    echo "  \"sw$i\": {\"address\": \"127.0.8.$i\", \"model\": \"TVR4820\", \"groups\": [\"site\"]}$([ "$i" -lt 10 ] && echo ,)"
  done
  echo '}}'
} > "$work/inventory.json"
{
  echo '{"groups": {"site": {"acl": ['
  echo '  {"id": 1, "type": "ethernet", "vlan": true, "src_mac_mask": "FFFFFFFFFFFF", "rules": ['
  for a in $(seq 1 9); do
    echo "    {\"access_id\": $a, \"src_mac\": \"00A0C9000$((100 + a))\", \"vlan\": \"v$a\", \"action\": \"permit\", \"ports\": \"1-$((a + 2))\"}$([ "$a" -lt 9 ] && echo ,)"
  done
  echo '  ]},'
  echo '  {"id": 2, "type": "ipv4", "dst_ip_mask": "255.255.255.0", "protocol": "tcp", "dst_port_mask": "FFFF", "rules": ['
  for a in $(seq 1 9); do
    echo "    {\"access_id\": $a, \"dst_ip\": \"10.0.$a.0\", \"dst_port\": $((8000 + a)), \"action\": \"deny\", \"ports\": \"1-8,$((10 + a))\"}$([ "$a" -lt 9 ] && echo ,)"
  done
  echo '  ]}]}}}'
} > "$work/state.json"

start_sim() {  # $1: options of every switch; $2: options of switches 8-10
  for i in $(seq 1 10); do ip addr add "127.0.8.$i/8" dev lo 2>/dev/null || true; done
  : > "$work/fleet.txt"
  for i in $(seq 1 10); do
    opts=$1; [ "$i" -ge 8 ] && opts="$opts $2"
    echo "127.0.8.$i TVR4820 public private $opts" >> "$work/fleet.txt"
  done
  "$sim" --quiet --fleet "$work/fleet.txt" > "$work/sim.log" 2>&1 &
  sim_pid=$!
  for _ in $(seq 100); do grep -q ready "$work/sim.log" && return; sleep 0.05; done
  echo "bench-apply: the simulator did not start" >&2; cat "$work/sim.log" >&2; exit 1
}
now() { date +%s.%N; }
calc() { awk "BEGIN { print $1 }"; }
apply_run() {  # $1: --parallel value; prints wall seconds, keeps the recap in $work/recap.txt
  local t0 t1
  t0=$(now)
  "$acl" -i "$work/inventory.json" apply --parallel "$1" --audit-log "$work/audit.jsonl" "$work/state.json" \
    > "$work/recap.txt" 2>/dev/null || true
  t1=$(now)
  calc "$t1 - $t0"
}
slowest() { grep -Eo '[0-9.]+s$' "$work/recap.txt" | tr -d s | sort -g | tail -1; }

echo "== 1. distant site: 10 switches, 20 ms answer delay, 3 silent, 20 records each"
start_sim "delay=20" "silent"
p10=$(apply_run 10); slow10=$(slowest)
grep -E '^Total' "$work/recap.txt"
printf '  --parallel 10: %.2f s (slowest switch %.2f s, ratio %.2fx)\n' "$p10" "$slow10" "$(calc "$p10 / $slow10")"
if [ "$smoke" = 0 ]; then
  stop_sim; start_sim "delay=20" "silent"
  p1=$(apply_run 1)
  printf '  --parallel 1:  %.2f s (%.1fx the parallel run)\n' "$p1" "$(calc "$p1 / $p10")"
fi
stop_sim

echo "== 2. 200 records on 10 switches without delay: sentrel-acl against a loop of snmpset"
start_sim "" ""
# The SETs sentrel-acl would send, from its own plan, as one snmpset per record.
"$acl" -i "$work/inventory.json" plan --verbose "$work/state.json" > "$work/plan.txt"
awk '
  function flush() { if (cmd != "") print cmd; cmd = "" }
  /^[^ ]/ { flush(); split($2, a, /[(,]/); host = a[2]; next }
  /^  \+/ { flush(); cmd = "snmpset -v1 -c private -r 0 -t 3 -Oq " host; next }
  /^      SET / {
    oid = $2; type = $4; sub(/:$/, "", type); value = substr($0, index($0, ": ") + 2)
    if (type == "INTEGER") t = "i"; else if (type == "IpAddress") t = "a"; else if (type == "STRING") t = "s"; else { t = "x"; gsub(/ /, "", value) }
    cmd = cmd " " oid " " t " \"" value "\""
  }
  END { flush() }' "$work/plan.txt" > "$work/loop.sh"
# The closing requests an engineer must also send: after the profiles and after the rules.
for i in $(seq 1 10); do
  for _ in 1 2; do echo "snmpset -v1 -c private -r 0 -t 3 -Oq 127.0.8.$i 1.3.6.1.4.1.32473.12.1.2.6.0 i 5"; done
done >> "$work/loop.sh"
records=$(grep -c '^  +' "$work/plan.txt")
t_acl=$(apply_run 10)
grep -E '^Total' "$work/recap.txt"
stop_sim; start_sim "" ""
t0=$(now); bash "$work/loop.sh" > /dev/null; t1=$(now)
t_loop=$(calc "$t1 - $t0")
stop_sim
printf '  sentrel-acl apply (%s records, read, write, read back): %.2f s\n' "$records" "$t_acl"
printf '  snmpset loop (%s calls, write only):                      %.2f s\n' "$(wc -l < "$work/loop.sh")" "$t_loop"
printf '  sentrel-acl is %.1fx faster\n' "$(calc "$t_loop / $t_acl")"
