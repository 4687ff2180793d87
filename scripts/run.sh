#!/usr/bin/env bash
# ./dev run [SAMPLE...]: builds the programs and does the main job on the sample projects, with real tools. Each step
# is checked; the first that goes wrong ends the run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

samples=("$@")
[ $# -gt 0 ] || samples=(hello rom)
for sample in "${samples[@]}"; do
  [ -x "scripts/run/$sample.sh" ] || die "there is no sample '$sample' to run."
done

need build target
heading "Build Forgeyard"
configure_release
cmake --build build/release -j "$jobs" --target programs

export FORGEYARD=$project_root/build/release/bin/forgeyard
for sample in "${samples[@]}"; do
  heading "Sample: $sample"
  "scripts/run/$sample.sh"
done
heading "All of this holds. The projects lie in build/run."
