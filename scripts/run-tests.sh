#!/bin/bash
# Runs every test of Sentrel on a fresh Debian machine: installs what it needs, builds the
# native, Windows x64 and i686 trees, then runs the native and interop tests, the fuzz
# targets for a bounded time, the Windows and GUI tests under Wine + Xvfb and the demo's walk.
# Prints how long each step took, then "Total: N passed, N failed"; exits non-zero on a failure.
# Usage: scripts/run-tests.sh        (from anywhere; the build trees go to build/)
# Environment: SENTREL_FUZZ_SECONDS  how long each fuzz target runs (default 30)
set -uo pipefail
cd "$(dirname "$0")/.."
root=$PWD
jobs=$(nproc)

scripts/install-deps.sh || { echo "run-tests: installing packages failed"; exit 1; }

total_pass=0; total_fail=0; failed_steps=(); timings=()
step_name=""; step_start=$SECONDS; run_start=$SECONDS
end_step() {
  [ -z "$step_name" ] || timings+=("$(printf '%6ds  %s' $((SECONDS - step_start)) "$step_name")")
  step_name=""
}
step() { end_step; step_name=$*; step_start=$SECONDS; echo; echo "=== $* ==="; }
fail() { failed_steps+=("$1"); total_fail=$((total_fail + 1)); }
# Runs ctest, counts its results into the totals.
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
    total_pass=$((total_pass + out - failed)); total_fail=$((total_fail + failed))
  fi
  [ "$rc" = 0 ] || failed_steps+=("$label")
  rm -f "$log"
}
# build <preset> [cmake -D options...]: configures and builds the whole tree.
build() {
  local preset=$1; shift
  cmake --preset "$preset" "$@" >/dev/null && cmake --build --preset "$preset" -j"$jobs"
}
# test_programs <tree> <word>: the programs that the tree's tests named with <word> run and the
# tree itself builds (their target names, read from the test files CMake wrote), so a tree that
# only serves a few tests builds only those.
test_programs() {
  find "$1" -name CTestTestfile.cmake -exec grep -h "^add_test(\[=\[[^]]*$2" {} + |
    sed -nE 's|^add_test\(\[=\[[^]]*\]=\] "([^"]*)".*|\1|p' | grep "^$(realpath "$1")/" |
    xargs -r -n1 basename | sort -u | tr '\n' ' '
}

step "native build (ASan+UBSan)"
if build native; then
  step "native and interop tests"
  run_ctest native --test-dir build/native --output-on-failure -j"$jobs"
else
  fail "native build"
fi

if [ -d fuzz ] || [ -d tests/fuzz ]; then
  # Only the fuzz targets and what they link: the rest of the tree is built and tested above.
  # The targets run side by side, each for a bounded time, from their seed corpus.
  step "fuzz targets (bounded runs)"
  fuzz_seconds=${SENTREL_FUZZ_SECONDS:-30}
  if cmake --preset fuzz -DSNMP_FUZZ_SECONDS="$fuzz_seconds" >/dev/null &&
     targets=$(test_programs build/fuzz fuzz) && [ -n "$targets" ] &&
     cmake --build --preset fuzz -j"$jobs" --target $targets; then
    run_ctest fuzz --test-dir build/fuzz --output-on-failure -j"$jobs" -L fuzz
  else
    fail "fuzz build"
  fi
fi

step "win32 build (compile and link only)"
build win32 || fail "win32 build"

step "win64 build"
if build win64; then
  step "Windows and GUI tests under Wine + Xvfb"
  build/win64/wine-run --prefix-only
  export WINEPREFIX=$root/build/win64/wineprefix
  wineserver -p 2>/dev/null || true   # one server for the whole run, not one per test
  # Each GUI program has a prefix and a display of its own, and tests that change the same
  # registration take turns (ctest resource locks). The GUI programs mostly wait for windows
  # and simulated switches, not for the processor: twice as many run as there are cores.
  xvfb_log=$(mktemp)
  xvfb-run -a -s "-screen 0 1280x1024x24" bash -c "$(declare -f run_ctest); total_pass=0; total_fail=0; failed_steps=(); run_ctest win64 --test-dir build/win64 --output-on-failure -j$((jobs * 2)); echo \"\$total_pass \$total_fail \${#failed_steps[@]}\" > '$xvfb_log'"
  read -r p f s < "$xvfb_log" || { p=0; f=1; s=1; }
  total_pass=$((total_pass + p)); total_fail=$((total_fail + f))
  [ "${s:-1}" = 0 ] || failed_steps+=("win64 tests")
  rm -f "$xvfb_log"
  wineserver -k 2>/dev/null || true
  # The demo's scripted walk (DESIGN.md section 4), so it cannot rot: orblane.exe creates
  # profiles and rules on two simulated switches through the wizard, deletes an earlier rule
  # and profile on the modify pages, and snmpwalk reads the switches back (under a minute).
  # Its switches listen on UDP 161 of 127.0.0.x, which needs root (CI runs as root).
  step "demo: the scripted walk through the wizard (scripts/run-demo.sh --walk-only)"
  if [ "$(id -u)" != 0 ]; then
    echo "run-tests: not root, so no simulated switches on UDP 161: the demo walk is skipped"
  elif SENTREL_SIM=build/native/sim/sentrel-sim scripts/run-demo.sh --no-build --walk-only; then
    total_pass=$((total_pass + 1))
  else
    fail "demo walk"
  fi
else
  fail "win64 build"
fi
end_step

echo
echo "Time per step ($jobs jobs at a time):"
printf '%s\n' "${timings[@]}"
printf '%6ds  %s\n' $((SECONDS - run_start)) "the whole run"
if [ ${#failed_steps[@]} -gt 0 ]; then
  echo "run-tests: FAILED steps: ${failed_steps[*]}"
fi
echo "Total: $total_pass passed, $total_fail failed"
[ ${#failed_steps[@]} -eq 0 ]
