#!/usr/bin/env bash
# ./dev sanitize [address|thread] [CTEST OPTION...]: all tests under AddressSanitizer and UndefinedBehaviorSanitizer,
# or those that have threads under ThreadSanitizer.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

kind=${1:-address}
[ $# -eq 0 ] || shift
case $kind in
  address) sanitizers=address,undefined targets=(all) selection=() ;;
  thread) sanitizers=thread targets=(threaded_tests) selection=(-L threads) ;;
  *) die "'$kind' is neither address nor thread." ;;
esac

need build target test
# -O1 halves the time of the tests, -g1 is enough for the lines of a report.
configure "build/$kind" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g1" \
  -DFORGEYARD_SANITIZE="$sanitizers"
cmake --build "build/$kind" -j "$jobs" --target "${targets[@]}"

own_environment "$project_root/build/$kind-home"
export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1
export LSAN_OPTIONS=suppressions=$project_root/scripts/leaks.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1
export TSAN_OPTIONS=second_deadlock_stack=1
exec ctest --test-dir "build/$kind" -j "$jobs" --output-on-failure --no-tests=error \
  "${selection[@]}" "$@"
