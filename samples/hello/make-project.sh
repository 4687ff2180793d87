#!/usr/bin/env bash
# Makes hello.nqp in the current directory, which must hold this sample's sources, with the console host alone.
# FORGEYARD names the host; left out, it is the one on the PATH.
set -euo pipefail
host=${FORGEYARD:-forgeyard}
fy() { "$host" -p hello.nqp "$@"; }

"$host" new hello.nqp --name hello

# Sources lie in two folders, which stand for the two directories.
fy folder add src --filter "c"
fy folder add "text tools" --filter "c;h"
fy file add --folder src src/*.c
fy file add --folder "text tools" "text tools"/*.c "text tools"/*.h

# Two configurations, each with a target and directories of its own; the second begins as a copy of the first.
fy config set Name=native Target=native OutputDirectory=out/native IntermediateDirectory=obj/native \
  UpdateFileDependencies=yes
fy config add mips --from native
fy -c mips config set Target=mips OutputDirectory=out/mips IntermediateDirectory=obj/mips

# The folders give their files to the compiler, the compiler gives its objects to the linker.
fy component add cc compile
fy component add cmdline link
fy connect src compile
fy connect "text tools" compile
fy connect compile link

fy set compile --all-configs IncludePath="inc;text tools" OptimisationLevel=2 WarningLevel=2 Options="-std=c99"
# The C library of this target is linked statically and wants its own calling convention.
fy -c mips set compile TargetCPUOptions=abicalls

# Objects are linked all at once. A name in the list may hold a blank, so each stands in quotes.
fy set link --all-configs Input=.obj Output=hello CommandOutDir='$(COutDir)' RunOnce=yes FileSeparator='" "'
link_line='-o "$(OutDir)hello" "$(FileFullPathList)"'
fy -c native set link Command="gcc $link_line"
fy -c mips set link Command="mipsel-linux-gnu-gcc -static $link_line"
