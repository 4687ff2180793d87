#!/usr/bin/env bash
# The main job on samples/hello, with real compilers: make a project, build it for two targets, run the programs, build
# again, change a header, break a source and mend it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source scripts/run/steps.sh
start_sample hello

expect_program() {
  shown "$@"
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
expect_runs gnu-cc check_texts main page table
expect_tool_runs 5

heading "Break one source and touch another: both are tried, nothing is linked"
sed -i.good 's/return 1;/return one;/' src/primes.c
touch src/roman.c
fy 1 build
expect_runs gnu-cc primes roman
expect_line "Final result: ERRORS"

heading "Mend it"
mv src/primes.c.good src/primes.c
touch src/primes.c
fy 0 build
expect_runs gnu-cc primes
expect_tool_runs 2
expect_program out/native/hello
