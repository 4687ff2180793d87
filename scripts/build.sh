#!/usr/bin/env bash
# ./dev build [TARGET...]: a Release build in build/release; the programs lie in build/release/bin. Tests and
# measurements are built by the verbs that run them, or as the target "all".
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

need build
configure_release
exec cmake --build build/release -j "$jobs" --target "${@:-programs}"
