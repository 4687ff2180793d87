#!/usr/bin/env bash
# ./dev run: the main job on the sample project, with real compilers: make a project, build it for two targets, run
# the programs, build again, change a header, break a source and mend it. Each step is checked; the first that goes
# wrong ends the run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

need build target
heading "Build Forgeyard"
configure_release
cmake --build build/release -j "$jobs" --target programs

export FORGEYARD=$project_root/build/release/bin/forgeyard
place=$project_root/build/run
output=$place/output
rm -rf "$place"
mkdir -p "$place"
own_environment "$place/home"
cp -r samples/hello "$place/hello"
cd "$place/hello"

# fy EXIT_CODE ARGUMENT...: runs the host, shows and keeps what it prints, and checks the exit code.
fy() {
  local expected=$1 status=0
  shift
  say "\$ forgeyard $*"
  "$FORGEYARD" "$@" 2>&1 | tee "$output" || status=${PIPESTATUS[0]}
  [ "$status" -eq "$expected" ] || die "exit code $status, $expected was expected."
}

# Checks on what the last call of fy printed.
expect_line() { grep -qxF -e "$1" "$output" || die "the line '$1' is missing."; }
expect_tool_runs() {
  local runs
  runs=$(grep -c '^Exit Code: ' "$output" || true)
  [ "$runs" -eq "$1" ] || die "$runs tools ran, $1 were expected."
}
# The stems of the sources that were compiled.
expect_compiled() {
  local stems
  stems=$(sed -n 's/^gnu-cc .*\\\([^\\]*\)\.obj $/\1/p' "$output" | sort | xargs)
  [ "$stems" = "$*" ] || die "compiled: $stems; expected: $*."
}
expect_program() {
  "$@" | tee "$output"
  expect_line "4763 checks passed, 0 failed"
}

heading "Make a project of twelve C files: two folders, a compiler and a linker, two configurations"
./make-project.sh

heading "Another process loads it"
fy 0 component list
fy 0 config list
fy 0 file list

heading "Build for this machine and run the program"
fy 0 build
expect_tool_runs 13
expect_line "Final result: OK"
expect_program out/native/hello

heading "Build for MIPS and run the program under an emulator"
fy 0 -c mips build
expect_tool_runs 13
expect_program qemu-mipsel out/mips/hello

heading "Build again: no tool runs"
fy 0 build
expect_tool_runs 0
expect_line "All outputs up to date."

heading "Touch one header: just the sources that include it are compiled, then the program is linked"
touch "text tools/table.h"
fy 0 build
expect_compiled check_texts main page table
expect_tool_runs 5

heading "Break one source and touch another: both are tried, nothing is linked"
sed -i.good 's/return 1;/return one;/' src/primes.c
touch src/roman.c
fy 1 build
expect_compiled primes roman
expect_line "Final result: ERRORS"

heading "Mend it"
mv src/primes.c.good src/primes.c
touch src/primes.c
fy 0 build
expect_compiled primes
expect_tool_runs 2
expect_program out/native/hello

heading "All of this holds. The project lies in build/run/hello."
