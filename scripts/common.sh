# What all verbs share. To be sourced, with the project's root as the current directory.

project_root=$PWD
jobs=$(nproc)
source "$project_root/scripts/packages.sh"

say() { printf '%s\n' "$*"; }

# A step of a verb: stands out in a terminal and in a log.
heading() {
  if [ -t 1 ]; then
    printf '\n\033[1m== %s\033[0m\n' "$*"
  else
    printf '\n== %s\n' "$*"
  fi
}

die() {
  printf 'dev: %s\n' "$*" >&2
  exit 2
}

# configure DIRECTORY CMAKE_OPTION...: prepares a build directory; quiet unless it fails.
configure() {
  local directory=$1 log
  shift
  mkdir -p "$directory"
  log=$directory/configure.log
  if ! cmake -S "$project_root" -B "$directory" -G Ninja "$@" >"$log" 2>&1; then
    cat "$log" >&2
    die "'$directory' could not be configured."
  fi
}

configure_release() { configure build/release -DCMAKE_BUILD_TYPE=Release; }

# One compiler cache for all clones: paths below the root count as relative ones.
export CCACHE_BASEDIR=$project_root CCACHE_NOHASHDIR=1 CCACHE_SLOPPINESS=pch_defines,time_macros

# own_environment DIRECTORY: what is started from here on keeps its registry, workspace and runtime files there.
own_environment() {
  local directory=$1
  mkdir -p "$directory/config" "$directory/data" "$directory/runtime"
  chmod 700 "$directory/runtime"
  export FORGEYARD_REGISTRY=$directory/config/registry
  export FORGEYARD_WORKSPACE=$directory/data/workspace
  export FORGEYARD_RUNTIME_DIR=$directory/runtime
  export XDG_CONFIG_HOME=$directory/config XDG_DATA_HOME=$directory/data XDG_STATE_HOME=$directory/data
  export XDG_RUNTIME_DIR=$directory/runtime
}
