#!/usr/bin/env bash
# ./dev bench [OPTION...]: builds the programs and runs the fixed workloads of bench/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

need build
configure_release
cmake --build build/release -j "$jobs"
own_environment "$project_root/build/bench-home"
exec bench/run.sh "$@"
