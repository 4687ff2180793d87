#!/usr/bin/env bash
# ./dev test [CTEST OPTION...]: builds everything and runs the tests; ends with ctest's summary.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

need build target test
configure_release
cmake --build build/release -j "$jobs"
own_environment "$project_root/build/test-home"
exec ctest --test-dir build/release -j "$jobs" --output-on-failure --no-tests=error "$@"
