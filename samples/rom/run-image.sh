#!/usr/bin/env bash
# run-image.sh IMAGE: runs a pure binary of this sample as a board would: it stands at the address of the ROM and is
# entered at its first byte, and the RAM is empty. The emulator takes executables only, so one is put around it.
set -euo pipefail
image=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

cat >board.lk <<'LK'
ENTRY(rom)
SECTIONS
{
  .rom 0x00400000 : { rom = .; *(.rom) }
  .ram 0x10000000 (NOLOAD) : { . = . + 64K; }
}
LK
mipsel-linux-gnu-objcopy -I binary -O elf32-tradlittlemips \
  --rename-section .data=.rom,alloc,load,contents,readonly,code "$image" image.o
mipsel-linux-gnu-ld -T board.lk -o board image.o
qemu-mipsel ./board
