#!/usr/bin/env bash
# ./dev lint [format|layers|tidy [PATH...]|deep [PATH...]]: checks without running anything; the first three if not said.
#   format  the layout of all C++ files, by .clang-format; mend it with clang-format -i
#   layers  includes run downward
#   tidy    clang-tidy's checks, by .clang-tidy, over all sources or those below PATHs
#   deep    tidy with clang's static analyzer, half an hour for all sources
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

need build lint

check_format() {
  heading "Layout"
  local files
  mapfile -d '' files < <(find adapters bench engine fuzz hosts model platform plugin repository sourcecontrol spawner tests \
    tools typelib ui workbench \( -name '*.cc' -o -name '*.h' \) -print0 2>/dev/null | sort -z)
  printf '%s\0' "${files[@]}" | xargs -0 -n 32 -P "$jobs" clang-format --dry-run -Werror
  say "${#files[@]} files"
}

check_layers() {
  heading "Layers"
  scripts/check_layers.py
}

check_tidy() {
  heading "clang-tidy"
  configure_release
  scripts/tidy.py build/release "$@"
}

check_deep() {
  heading "clang-tidy with the static analyzer"
  configure_release
  scripts/tidy.py --deep build/release "$@"
}

what=${1:-all}
[ $# -eq 0 ] || shift
case $what in
  format | layers | tidy | deep) "check_$what" "$@" ;;
  all)
    # All are run, so that one look shows all there is to mend.
    status=0
    for check in format layers tidy; do
      scripts/lint.sh "$check" || status=1
    done
    exit "$status"
    ;;
  *) die "'$what' is none of format, layers, tidy, deep." ;;
esac
