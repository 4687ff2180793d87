#!/usr/bin/env bash
# Makes monitor.nqp in the current directory, which must hold this sample's sources, with the console host alone.
# FORGEYARD names the host; left out, it is the one on the PATH.
set -euo pipefail
host=${FORGEYARD:-forgeyard}
fy() { "$host" -p monitor.nqp "$@"; }

"$host" new monitor.nqp --name monitor
fy folder add code --filter "c;h"
fy folder add start-up --filter "s"
fy folder add scripts --filter "lk"
fy file add --folder code src/*.c inc/*.h
fy file add --folder start-up start/*.s
fy file add --folder scripts monitor.lk

# C and assembler sources become objects. The linker gets its script from a folder, and the script names the objects.
fy component add cc compile
fy component add asm assemble
fy component add linker link
fy connect code compile
fy connect start-up assemble
fy connect scripts link
fy connect compile link
fy connect assemble link

# One configuration for each form of the program; the later ones begin as copies.
fy config set Name=executable Target=mips OutputDirectory='out\executable' IntermediateDirectory='obj\executable' \
  UpdateFileDependencies=yes
for form in binary srecord; do
  fy config add $form --from executable
  fy -c $form config set OutputDirectory="out\\$form" IntermediateDirectory="obj\\$form"
done

# No operating system, no library; variables of up to 8 bytes go by the global pointer.
fy set compile --all-configs Input=.c IncludePath=inc OptimisationLevel=2 WarningLevel=2 SmallDataThreshold=8 \
  Options="-std=c99;-ffreestanding" SpecificOptimisations=no-tree-loop-distribute-patterns

# A listing for each source. An output that is named is made again when it is gone, and deleted by a clean.
fy set assemble --all-configs CreateListingFile=yes Output=".obj;.lst"

# The linker runs once. Objects are let in besides the script, so that a new object links the program again; the
# script finds them in the directory of the configuration. The output is called like the script.
fy set link --all-configs Input=".lk;.obj" LibraryPath='$(CIntDir)' CreateSymbolFile=yes CreateMapFile=yes
fy -c executable set link OutputFormat=0 EquateSymbols=LOADED=1
fy -c binary set link OutputFormat=1
fy -c srecord set link OutputFormat=2
