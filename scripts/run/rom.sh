#!/usr/bin/env bash
# samples/rom with real tools: a program of C and assembler sources without an operating system, in three forms.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
source scripts/run/steps.sh
start_sample rom

expect_monitor() {
  say "\$ $* <<< 'map'"
  shown "$@" <<<"map"
  expect_line "self test passed"
}

heading "Make a project of C and assembler sources and a linker script: three tools, three configurations"
./make-project.sh
fy 0 component list

heading "Build the executable and run it under an emulator"
fy 0 build
expect_runs gnu-cc commands console crc32 main selftest
expect_runs gnu-as start system
expect_tool_runs 8
expect_monitor qemu-mipsel out/executable/monitor.cpe

heading "Build the pure binary and run it as a ROM, with the RAM empty"
fy 0 -c binary build
expect_tool_runs 8
expect_monitor ./run-image.sh out/binary/monitor.bin

heading "Build the S-records: converted back, they are the binary"
fy 0 -c srecord build
expect_tool_runs 8
mipsel-linux-gnu-objcopy -I srec -O binary out/srecord/monitor.sre converted.bin
cmp converted.bin out/binary/monitor.bin || die "S-records and binary differ."
head -n 3 out/srecord/monitor.sre

heading "Build again: no tool runs"
fy 0 build
expect_tool_runs 0

heading "Touch one assembler source: it is assembled, and the program is linked"
touch start/system.s
fy 0 build
expect_runs gnu-as system
expect_tool_runs 2

heading "Touch the linker script: the program is linked"
touch monitor.lk
fy 0 build
expect_runs gnu-as
expect_tool_runs 1
expect_monitor qemu-mipsel out/executable/monitor.cpe

heading "Misspell an object in the script: the message names the place, and no program is left"
sed -i.good 's/crc32\.obj/crc.obj/' monitor.lk
fy 1 build
grep -q 'monitor\.lk:6: cannot find crc\.obj; looked in ' "$output" || die "the message is missing."
[ ! -e out/executable/monitor.cpe ] || die "a program is left."
mv monitor.lk.good monitor.lk
fy 0 build
expect_monitor qemu-mipsel out/executable/monitor.cpe
