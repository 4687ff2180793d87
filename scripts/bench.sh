#!/usr/bin/env bash
# ./dev bench [--quick] [--rounds N]: builds the programs and measures the fixed workloads of bench/.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

need build
configure_release
cmake --build build/release -j "$jobs" --target programs forgeyard_bench
own_environment "$project_root/build/bench-home"
exec build/release/bin/forgeyard_bench "$@" "$project_root/build/bench"
