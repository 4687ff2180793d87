# What the samples' runs share: the host, and checks on what it printed. To be sourced with the project's root as the
# current directory; FORGEYARD names the host.

source scripts/common.sh

# start_sample NAME: a fresh copy of the sample becomes the current directory; registry and workspace are its own.
start_sample() {
  local place=$project_root/build/run/$1
  output=$place/output
  rm -rf "$place"
  mkdir -p "$place"
  own_environment "$place/home"
  cp -r "samples/$1" "$place/project"
  cd "$place/project"
}

# shown COMMAND...: runs it, shows and keeps what it prints.
shown() { "$@" 2>&1 | tee "$output"; }

# fy EXIT_CODE ARGUMENT...: runs the host and checks the exit code.
fy() {
  local expected=$1 status=0
  shift
  say "\$ forgeyard $*"
  shown "$FORGEYARD" "$@" || status=$?
  [ "$status" -eq "$expected" ] || die "exit code $status, $expected was expected."
}

# Checks on what was shown last.
expect_line() { grep -qxF -e "$1" "$output" || die "the line '$1' is missing."; }
expect_tool_runs() {
  local runs
  runs=$(grep -c '^Exit Code: ' "$output" || true)
  [ "$runs" -eq "$1" ] || die "$runs tools ran, $1 were expected."
}
# expect_runs ADAPTER STEM...: the objects that the adapter was run for.
expect_runs() {
  local adapter=$1 stems
  shift
  stems=$(sed -nE "s/^$adapter .*\\\\([^\\]*)\.obj( |,.*|)\$/\1/p" "$output" | sort | xargs)
  [ "$stems" = "$*" ] || die "$adapter ran for: $stems; expected: $*."
}
