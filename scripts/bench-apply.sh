#!/bin/bash
# Benchmark of sentrel-acl, one command, as root: builds the optimised `bench` tree and, in a
# network namespace of its own, serves simulated switches on 127.0.8.x:161 with sentrel-sim.
#  1. a distant site: 10 switches answering 20 ms late, 3 of them silent, 20 records each:
#     `apply --parallel 10` against `--parallel 1`, and the parallel run against its slowest
#     switch (read, write, read back);
#  2. the same 200 records on 10 switches without delay: sentrel-acl against a shell loop of
#     net-snmp `snmpset`, one call per record (and per closing request), as engineers script it;
#  3. 1,000 switches x 10 records: the apply with its progress on a terminal (a tmux pane)
#     against the same apply into a pipe;
#  4. 200 switches x 10 records: the sentrel.acl collection through ansible-playbook (forks 50)
#     against `sentrel-acl apply --parallel 50`, the same fleet and state;
#  5. a large estate: 10,000 switches x 10 records applied, then planned again (see scale_case).
# Usage: scripts/bench-apply.sh [terminal]   (terminal: only the run of 1,000 switches)
# Environment: SENTREL_BENCH_SMOKE=1  a short run that only proves the benchmark works (the
#              slow one-switch-at-a-time run left out, cases 3-5 on a few switches; the test
#              run uses it)
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

terminal_only=0; [ "${1:-}" = terminal ] && terminal_only=1
if [ "$terminal_only" = 0 ]; then
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
fi

big=1000; [ "$smoke" = 0 ] || big=20
echo "== 3. $big switches x 10 records: progress on a terminal (tmux) against into a pipe"
{
  echo '{"communities": {"read_env": "BENCH_READ", "write_env": "BENCH_WRITE"}, "switches": {'
  for i in $(seq 0 $((big - 1))); do
    echo "  \"big$i\": {\"address\": \"127.1.$((i / 250)).$((i % 250 + 1))\", \"model\": \"TVR4820\", \"groups\": [\"all\"]}$([ "$i" -lt $((big - 1)) ] && echo ,)"
  done
  echo '}}'
} > "$work/big-inventory.json"
{
  echo '{"groups": {"all": {"acl": [{"id": 3, "type": "ethernet", "vlan": true, "rules": ['
  for a in $(seq 1 9); do
    echo "  {\"access_id\": $a, \"vlan\": \"v$a\", \"action\": \"permit\", \"ports\": \"$a\"}$([ "$a" -lt 9 ] && echo ,)"
  done
  echo ']}]}}}'
} > "$work/big-state.json"
start_big() {
  for i in $(seq 0 $((big - 1))); do echo "127.1.$((i / 250)).$((i % 250 + 1)) TVR4820 public private"; done > "$work/big-fleet.txt"
  "$sim" --quiet --fleet "$work/big-fleet.txt" > "$work/sim.log" 2>&1 &
  sim_pid=$!
  for _ in $(seq 200); do grep -q ready "$work/sim.log" && return; sleep 0.05; done
  echo "bench-apply: the simulator did not start" >&2; cat "$work/sim.log" >&2; exit 1
}
big_apply="$acl -i $work/big-inventory.json apply --audit-log $work/big-audit.jsonl $work/big-state.json"
# Into a pipe: the recap and the plain progress lines go through cat.
start_big
t0=$(now); $big_apply 2>&1 | cat > "$work/big-pipe.txt"; t1=$(now)
t_pipe=$(calc "$t1 - $t0")
grep -E '^Total' "$work/big-pipe.txt"
stop_sim
# On a terminal: stderr (the progress) is a tmux pane of 160x48; the recap goes to a file.
start_big
tmux -L sentrel-bench-$$ new-session -d -x 160 -y 48 \
  "t0=\$(date +%s.%N); $big_apply > $work/big-term.txt; t1=\$(date +%s.%N); echo \"\$t0 \$t1\" > $work/big-term.time"
for _ in $(seq 1200); do [ -s "$work/big-term.time" ] && break; sleep 0.1; done
tmux -L sentrel-bench-$$ kill-server 2>/dev/null || true
read -r t0 t1 < "$work/big-term.time"
t_term=$(calc "$t1 - $t0")
grep -E '^Total' "$work/big-term.txt"
stop_sim
printf '  into a pipe:   %.2f s\n' "$t_pipe"
printf '  on a terminal: %.2f s (%.2fx the pipe; aim at most 1.5x)\n' "$t_term" "$(calc "$t_term / $t_pipe")"


# 3. The sentrel.acl collection: Ansible forks one module run per switch, each running the
# engine for its switch, against one engine run over the whole fleet.
bench_ansible() {
  local n=200 dir="$work/ansible" i
  [ "$smoke" = 0 ] || n=5
  echo "== 4. $n switches x 10 records: ansible-playbook (forks 50) against sentrel-acl apply --parallel 50"
  # The engine's switch locks and audit log of both runs stay with this case.
  local -x XDG_STATE_HOME="$dir/state"
  mkdir -p "$dir"
  # One profile with 9 rules: 10 records a switch; the same switches in both inventories.
  python3 - "$dir" "$n" "$PWD/$acl" <<'PY'
import json, sys
folder, n, engine = sys.argv[1], int(sys.argv[2]), sys.argv[3]
rules = [{"access_id": a, "src_mac": "00A0C9000%d" % (100 + a), "vlan": "v%d" % a, "action": "permit",
          "ports": "1-%d" % (a + 2)} for a in range(1, 10)]
profile = {"id": 1, "type": "ethernet", "vlan": True, "src_mac_mask": "FFFFFFFFFFFF", "rules": rules}
names = {"sw%d" % i: "127.0.9.%d" % i for i in range(1, n + 1)}
json.dump({"communities": {"read_env": "BENCH_READ", "write_env": "BENCH_WRITE"},
           "switches": {s: {"address": a, "model": "TVR4820", "groups": ["site"]} for s, a in names.items()}},
          open(folder + "/inventory.json", "w"))
json.dump({"groups": {"site": {"acl": [profile]}}}, open(folder + "/state.json", "w"))
json.dump({"all": {"hosts": {s: {"ansible_host": a} for s, a in names.items()}, "vars": {
    "ansible_connection": "local", "ansible_python_interpreter": "{{ ansible_playbook_python }}",
    "sentrel_model": "TVR4820", "sentrel_acl_path": engine, "acls": {"acl": [profile]},
    "sentrel_read_community": "public", "sentrel_write_community": "private"}}},
    open(folder + "/inventory.yml", "w"))
PY
  cat > "$dir/play.yml" <<'YML'
- hosts: all
  gather_facts: false
  tasks:
    - sentrel.acl.acls:
        config: "{{ acls }}"
YML
  start_fleet() {
    for i in $(seq 1 $n); do echo "127.0.9.$i TVR4820 public private"; done > "$dir/fleet.txt"
    "$sim" --quiet --fleet "$dir/fleet.txt" > "$dir/sim.log" 2>&1 &
    sim_pid=$!
    for _ in $(seq 100); do grep -q ready "$dir/sim.log" && return; sleep 0.05; done
    echo "bench-apply: the simulator did not start" >&2; cat "$dir/sim.log" >&2; exit 1
  }
  local t0 t1 t_ansible t_acl
  start_fleet
  t0=$(now)
  ANSIBLE_COLLECTIONS_PATH="$PWD/ansible" ANSIBLE_PIPELINING=True ANSIBLE_FORKS=50 ANSIBLE_HOME="$dir/home" \
    ANSIBLE_LOCAL_TEMP="$dir/tmp" ANSIBLE_NOCOLOR=1 \
    ansible-playbook -i "$dir/inventory.yml" "$dir/play.yml" > "$dir/ansible.txt" 2>&1 || true
  t1=$(now); t_ansible=$(calc "$t1 - $t0")
  echo "  ansible-playbook recap: $(grep -cE ' changed=1 .* failed=0 ' "$dir/ansible.txt" || true) of $n switches" \
    "changed, $(grep -cE ' failed=[1-9]' "$dir/ansible.txt" || true) failed"
  stop_sim; start_fleet
  t0=$(now)
  "$acl" -i "$dir/inventory.json" apply --parallel 50 --audit-log "$dir/audit.jsonl" "$dir/state.json" \
    > "$dir/recap.txt" 2>/dev/null || true
  t1=$(now); t_acl=$(calc "$t1 - $t0")
  grep -E '^Total' "$dir/recap.txt" || true
  stop_sim
  printf '  ansible-playbook, forks 50 (%d switches x 10 records): %.2f s (%.1f ms a switch)\n' \
    "$n" "$t_ansible" "$(calc "$t_ansible * 1000 / $n")"
  printf '  sentrel-acl apply --parallel 50, the same:               %.2f s (ansible-playbook %.1fx of it)\n' \
    "$t_acl" "$(calc "$t_ansible / $t_acl")"
}

# 5. A large estate: SENTREL_BENCH_SWITCHES (10,000) switches on 127.10.x.y:161 in one simulator,
# 10 records each (an Ethernet profile and 9 rules), --parallel SENTREL_BENCH_PARALLEL (10, the
# command's default). Every address of 127.0.0.0/8 is local to lo, so the simulator binds one
# socket per switch without adding addresses. Times the first apply (read, write, read back),
# then a plan that finds nothing to do, with the peak memory of each.
scale_case() {
  local n=${SENTREL_BENCH_SWITCHES:-$([ "$smoke" = 0 ] && echo 10000 || echo 100)} parallel=${SENTREL_BENCH_PARALLEL:-10} i addr
  echo "== 5. a large estate: $n switches x 10 records, --parallel $parallel"
  : > "$work/fleet.txt"
  {
    echo '{"communities": {"read_env": "BENCH_READ", "write_env": "BENCH_WRITE"}, "switches": {'
    for ((i = 0; i < n; i++)); do
      addr="127.10.$((i / 250)).$((i % 250 + 1))"
      echo "$addr TVR4820 public private" >> "$work/fleet.txt"
      echo "  \"sw$i\": {\"address\": \"$addr\", \"model\": \"TVR4820\", \"groups\": [\"site\"]}$([ "$i" -lt $((n - 1)) ] && echo ,)"
    done
    echo '}}'
  } > "$work/estate.json"
  {
    echo '{"groups": {"site": {"acl": ['
    echo '  {"id": 1, "type": "ethernet", "vlan": true, "src_mac_mask": "FFFFFFFFFFFF", "rules": ['
    for a in $(seq 1 9); do
      echo "    {\"access_id\": $a, \"src_mac\": \"00A0C9000$((100 + a))\", \"vlan\": \"v$a\", \"action\": \"permit\", \"ports\": \"1-$((a + 2))\"}$([ "$a" -lt 9 ] && echo ,)"
    done
    echo '  ]}]}}}'
  } > "$work/estate-state.json"
  "$sim" --quiet --fleet "$work/fleet.txt" > "$work/sim.log" 2>&1 &
  sim_pid=$!
  for _ in $(seq 600); do grep -q ready "$work/sim.log" && break; sleep 0.05; done
  grep -q ready "$work/sim.log" || { echo "bench-apply: the simulator did not start" >&2; cat "$work/sim.log" >&2; exit 1; }
  # The simulator's CPU seconds so far (user + system, from /proc), to tell its share apart.
  sim_cpu() { awk -v hz="$(getconf CLK_TCK)" '{ printf "%.2f", ($14 + $15) / hz }' "/proc/$sim_pid/stat"; }
  local c0 c1 c2
  c0=$(sim_cpu)
  # GNU time: wall seconds, peak resident kilobytes and CPU seconds of sentrel-acl alone (the CPU
  # time shows the cost on a machine busy with other work, where the wall time does not).
  /usr/bin/time -f '%e %M %U %S' -o "$work/apply.time" "$acl" -i "$work/estate.json" --parallel "$parallel" \
    apply --audit-log "$work/audit.jsonl" "$work/estate-state.json" > "$work/recap.txt" 2>/dev/null || true
  grep -E '^Total' "$work/recap.txt"
  c1=$(sim_cpu)
  /usr/bin/time -f '%e %M %U %S' -o "$work/plan.time" "$acl" -i "$work/estate.json" --parallel "$parallel" \
    plan "$work/estate-state.json" > "$work/plan.txt" 2>/dev/null || true
  tail -1 "$work/plan.txt"
  c2=$(sim_cpu)
  stop_sim
  local t m u s
  read -r t m u s < "$work/apply.time"
  printf '  apply (read, write, read back): %6.2f s, peak %5.1f MB, CPU %5.2f s (simulator %5.2f s)\n' \
    "$t" "$(calc "$m / 1024")" "$(calc "$u + $s")" "$(calc "$c1 - $c0")"
  read -r t m u s < "$work/plan.time"
  printf '  plan again (nothing to do):     %6.2f s, peak %5.1f MB, CPU %5.2f s (simulator %5.2f s)\n' \
    "$t" "$(calc "$m / 1024")" "$(calc "$u + $s")" "$(calc "$c2 - $c1")"
}

if [ "$terminal_only" = 0 ]; then
  bench_ansible
  scale_case
fi
