#!/usr/bin/env bash
# ./dev fuzz [SECONDS]: every fuzz target for that long, side by side on all cores. What a target learns is kept in
# build/fuzz/corpus; an input that makes one fail is kept in build/fuzz/finds and named at the end.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh

seconds=${1:-60}
[[ $seconds =~ ^[0-9]+$ ]] || die "'$seconds' is no number of seconds."

need build fuzz
configure build/fuzz -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS_DEBUG="-O1 -g1" -DFORGEYARD_FUZZ=ON
cmake --build build/fuzz -j "$jobs" --target fuzzers

# fuzz_one TARGET: leaves its log beside its corpus.
fuzz_one() {
  local target=$1 name=${1%_fuzz} seeds
  mapfile -t seeds <"build/fuzz/fuzz/$target.seeds"
  mkdir -p "build/fuzz/corpus/$name" "build/fuzz/finds/$name"
  if "build/fuzz/bin/$target" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 -print_final_stats=1 \
    -artifact_prefix="build/fuzz/finds/$name/" "build/fuzz/corpus/$name" "${seeds[@]}" \
    >"build/fuzz/corpus/$name.log" 2>&1; then
    printf '%-24s ok, %s runs\n' "$name" \
      "$(sed -n 's/^stat::number_of_executed_units: *//p' "build/fuzz/corpus/$name.log")"
  else
    printf '%-24s FAILED; the input lies in build/fuzz/finds/%s\n' "$name" "$name"
    tail -n 40 "build/fuzz/corpus/$name.log"
    return 1
  fi
}
export -f fuzz_one
export seconds

targets=()
for list in build/fuzz/fuzz/*_fuzz.seeds; do targets+=("$(basename "$list" .seeds)"); done
own_environment "$project_root/build/fuzz-home"
heading "${#targets[@]} fuzz targets, $seconds s each"
printf '%s\n' "${targets[@]}" | xargs -P "$jobs" -I TARGET bash -c 'fuzz_one TARGET'
