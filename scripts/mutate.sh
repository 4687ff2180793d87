#!/usr/bin/env bash
# ./dev mutate [--seed N] [--list] [COUNT] [PATH...]: breaks random lines of the product in a copy below build/mutate
# and prints what no test notices.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

need build target test lint
exec scripts/mutate.py "$@"
