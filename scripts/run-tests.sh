#!/bin/bash
# Runs every test of Sentrel on a fresh Debian machine: installs what it needs, builds the
# native, fuzz, Windows x64, i686 and optimised (bench) trees, then runs the native and
# interop tests, the fuzz targets for a bounded time, the Windows and GUI tests under Wine +
# Xvfb, the demo's walk and both benchmarks in a short smoke run.
# Prints how long each step took, then "Total: N passed, N failed"; exits non-zero on a failure.
# Usage: scripts/run-tests.sh        (from anywhere; the build trees go to build/)
# Environment: SENTREL_FUZZ_SECONDS  how long each fuzz target runs (default 30)
#
# Two lanes share the machine: the main lane builds the Windows x64 tree and runs its tests
# under Wine; the side lane runs the native tests and the fuzz targets beside the x64 build,
# then, once that is built, the i686 and bench builds and the benchmarks beside the Windows
# tests. Most of the tests wait on sockets, windows and time-outs rather than on the
# processor, so each lane's waiting is the other lane's compiling.
set -uo pipefail
cd "$(dirname "$0")/.."
root=$PWD
jobs=$(nproc)
# Counts, failed steps and step times, appended by both lanes.
results=$(mktemp -d /tmp/sentrel-run-tests-XXXXXX)
trap 'rm -rf "$results"' EXIT
run_start=$SECONDS

# Sets $cpu to the CPU seconds (user + sys) of the finished child processes of the calling
# shell: a step's share of the processor, which other work on the machine inflates far less
# than its wall time. (`times` must run in that shell itself, not in a $(...) subshell.)
cpu_seconds() {
  local file=$results/times.$BASHPID
  times > "$file"
  cpu=$(awk 'NR == 2 { split($0, f, /[ ms]+/); print f[1] * 60 + f[2] + f[3] * 60 + f[4] }' "$file")
}
step_name=""; step_start=0; step_cpu=0
end_step() {
  [ -n "$step_name" ] || return 0
  cpu_seconds
  printf '%6ds %6.0fs  %s\n' $((SECONDS - step_start)) "$(awk "BEGIN { print $cpu - $step_cpu }")" \
    "$step_name" >> "$results/times"
  step_name=""
}
step() { end_step; step_name=$*; step_start=$SECONDS; cpu_seconds; step_cpu=$cpu; echo; echo "=== $* ==="; }
passed() { echo "pass ${1:-1}" >> "$results/counts"; }
fail() { echo "fail 1 $1" >> "$results/counts"; }
# Runs ctest and counts its results into the totals.
run_ctest() {
  local label=$1; shift
  local log; log=$(mktemp)
  ctest "$@" 2>&1 | tee "$log"
  local rc=${PIPESTATUS[0]}
  local line; line=$(grep -E 'tests passed, [0-9]+ tests failed out of [0-9]+' "$log" | tail -1)
  if [ -n "$line" ]; then
    local failed out
    failed=$(sed -E 's/.* ([0-9]+) tests failed out of ([0-9]+).*/\1/' <<<"$line")
    out=$(sed -E 's/.* ([0-9]+) tests failed out of ([0-9]+).*/\2/' <<<"$line")
    echo "pass $((out - failed))" >> "$results/counts"
    [ "$failed" = 0 ] || echo "fail $failed" >> "$results/counts"
  fi
  [ "$rc" = 0 ] || echo "fail 0 $label" >> "$results/counts"
  rm -f "$log"
}
# build <preset> [targets...]: configures the tree and builds the targets (default: all).
build() {
  local preset=$1; shift
  cmake --preset "$preset" >/dev/null &&
    cmake --build --preset "$preset" -j"$jobs" ${1:+--target "$@"}
}
# test_programs <tree> <word>: the programs that the tree's tests named with <word> run and the
# tree itself builds (their target names, read from the test files CMake wrote), so a tree that
# only serves a few tests builds only those.
test_programs() {
  find "$1" -name CTestTestfile.cmake -exec grep -h "^add_test(\[=\[[^]]*$2" {} + |
    sed -nE 's|^add_test\(\[=\[[^]]*\]=\] "([^"]*)".*|\1|p' | grep "^$(realpath "$1")/" |
    xargs -r -n1 basename | sort -u | tr '\n' ' '
}
# as_root <what> <command...>: runs what needs UDP 161 (CI runs as root), else says it is skipped.
as_root() {
  local what=$1; shift
  if [ "$(id -u)" != 0 ]; then
    echo "run-tests: not root, so no simulated switches on UDP 161: $what is skipped"
  elif "$@"; then
    passed
  else
    fail "$what"
  fi
}

# The side lane: everything that needs no Wine.
side_lane() {
  step "native and interop tests"
  run_ctest native --test-dir build/native --output-on-failure -j"$jobs"

  if [ -d fuzz ] || [ -d tests/fuzz ]; then
    # Only the fuzz targets and what they link: the rest of the tree is built and tested above.
    # The targets run side by side, each for a bounded time, from their seed corpus.
    step "fuzz targets (build and bounded runs)"
    local targets
    if cmake --preset fuzz -DSNMP_FUZZ_SECONDS="${SENTREL_FUZZ_SECONDS:-30}" >/dev/null &&
       targets=$(test_programs build/fuzz fuzz) && [ -n "$targets" ] &&
       cmake --build --preset fuzz -j"$jobs" --target $targets; then
      run_ctest fuzz --test-dir build/fuzz --output-on-failure -j"$jobs" -L fuzz
    else
      fail "fuzz build"
    fi
  fi

  # The x64 build is the longest step: the rest of this lane's compiling waits for it to end.
  end_step
  while [ ! -f "$results/win64-built" ]; do sleep 2; done

  # The i686 build proves the plug-in compiles and links for 32-bit Windows (there is no
  # 32-bit Wine to run it); the host and test programs are the x64 tree's business.
  step "win32 build (the plug-in, compile and link only)"
  build win32 Sentrel || fail "win32 build"

  # The optimised tree of the benchmarks and the demo's simulator, and both benchmarks in a
  # short run that proves they work (their figures mean nothing here); they reuse this tree.
  step "bench build (optimised)"
  if build bench; then
    step "benchmarks, smoke run (scripts/bench-snmp.sh, scripts/bench-apply.sh)"
    as_root "bench-snmp smoke run" env SENTREL_BENCH_SMOKE=1 scripts/bench-snmp.sh
    as_root "bench-apply smoke run" env SENTREL_BENCH_SMOKE=1 scripts/bench-apply.sh
  else
    fail "bench build"
  fi
  end_step
}

# The Windows tests under Wine + Xvfb.
win64_tests() {
  build/win64/wine-run --prefix-only
  export WINEPREFIX=$root/build/win64/wineprefix
  wineserver -p 2>/dev/null || true   # one server for the whole run, not one per test
  # Each GUI program has a prefix and a display of its own, and tests that change the same
  # registration take turns (ctest resource locks). The GUI programs mostly wait for windows
  # and simulated switches, not for the processor: twice as many run as there are cores.
  export results
  xvfb-run -a -s "-screen 0 1280x1024x24" bash -c "$(declare -f run_ctest); run_ctest win64 --test-dir build/win64 --output-on-failure -j$((jobs * 2))"
  wineserver -k 2>/dev/null || true
}

scripts/install-deps.sh || { echo "run-tests: installing packages failed"; exit 1; }
cpu_seconds
printf '%6ds %6.0fs  %s\n' $((SECONDS - run_start)) "$cpu" "install packages" >> "$results/times"

step "native build (ASan+UBSan)"
side_pid=""
if build native; then
  end_step
  echo "run-tests: the side lane (native tests, fuzz, win32, bench) runs beside; its output: build/side-lane.log"
  mkdir -p build
  side_lane > build/side-lane.log 2>&1 &
  side_pid=$!
else
  fail "native build"
fi

step "win64 build"
if build win64; then
  touch "$results/win64-built"
  step "Windows and GUI tests under Wine + Xvfb"
  win64_tests
  # The demo's scripted walk (DESIGN.md section 4), so it cannot rot: orblane.exe creates
  # profiles and rules on two simulated switches through the wizard, deletes an earlier rule
  # and profile on the modify pages, and snmpwalk reads the switches back (under a minute).
  step "demo: the scripted walk through the wizard (scripts/run-demo.sh --walk-only)"
  as_root "demo walk" env SENTREL_SIM=build/native/sim/sentrel-sim scripts/run-demo.sh --no-build --walk-only
else
  touch "$results/win64-built"
  fail "win64 build"
fi
end_step

if [ -n "$side_pid" ]; then
  wait "$side_pid"
  echo; echo "=== the side lane's output (build/side-lane.log) ==="
  cat build/side-lane.log
fi

echo
echo "Time per step, wall and CPU (user + sys), $jobs jobs at a time; the side lane's steps"
echo "(native tests and fuzz beside the win64 build; win32 and bench beside the Windows tests):"
cat "$results/times"
cpu_seconds
printf '%6ds %6.0fs  %s\n' $((SECONDS - run_start)) "$cpu" "the whole run"
failed_steps=$(awk '$1 == "fail" && NF > 2 { $1 = $2 = ""; sub(/^ +/, ""); print }' "$results/counts" 2>/dev/null | paste -sd, -)
read -r total_pass total_fail < <(awk '$1 == "pass" { p += $2 } $1 == "fail" { f += $2 } END { print p + 0, f + 0 }' "$results/counts" 2>/dev/null)
[ -z "$failed_steps" ] || echo "run-tests: FAILED steps: $failed_steps"
echo "Total: ${total_pass:-0} passed, ${total_fail:-0} failed"
[ -z "$failed_steps" ]
