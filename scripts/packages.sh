# The Debian packages that the verbs need, in one place. To be sourced.

# package_list: group, package, what it is for.
package_list() {
  cat <<'TEXT'
build  g++                       compiles everything
build  cmake                     configures the build; brings ctest
build  ninja-build               runs the build
build  ccache                    compiles nothing twice
build  libcli11-dev              command line of the hosts
build  nlohmann-json3-dev        JSON output of the hosts, reference data in tests
build  liblua5.4-dev             language of the console host's scripts
build  libsvn-dev                the source control database
build  libapr1-dev               and the runtime that it is built on
build  pkg-config                finds both
build  libgtest-dev              tests
build  libgmock-dev              tests
build  libbenchmark-dev          benchmarks
package dpkg-dev                finds what the programs of the package depend on
target gcc-mipsel-linux-gnu      second target of the sample and the tests: compiler
target binutils-mipsel-linux-gnu second target: assembler and linker
target libc6-dev-mipsel-cross    second target: C library
target qemu-user                 runs programs of the second target
test   make                      builds what is exported for it
test   libgsf-bin                another implementation reads our project files
test   python3-olefile           and one more
test   subversion                 works beside us on one repository, serves it
test   git                       shows and merges projects, tells imports what to leave out
lint   clang-format              layout of the code
lint   clang-tidy                faults that the compiler does not see; brings python3
fuzz   clang                     compiles the fuzz targets
fuzz   libclang-rt-14-dev        libFuzzer
TEXT
}

# need GROUP...: installs the packages of these groups that are missing; says what it does.
need() {
  local wanted missing
  wanted=$(package_list | awk -v groups=" $* " 'index(groups, " " $1 " ") { print $2 }')
  if ! command -v dpkg-query >/dev/null; then
    say "dev: this is no Debian system; these packages are taken to be there: ${wanted//$'\n'/ }" >&2
    return
  fi
  missing=$(missing_packages $wanted)
  [ -n "$missing" ] || return 0
  install_packages $missing
}

missing_packages() {
  local package status
  declare -A installed=()
  while read -r package status; do
    [ "$status" != installed ] || installed[$package]=1
  done < <(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null || true)
  for package in "$@"; do
    [ -n "${installed[$package]:-}" ] || printf '%s\n' "$package"
  done
}

install_packages() {
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || die "these packages are missing, and there is no sudo to install them: $*"
    as_root=(sudo)
  fi
  say "dev: installing with ${as_root[*]:+sudo }apt-get: $*"
  "${as_root[@]}" apt-get update -q -o DPkg::Lock::Timeout=600 </dev/null ||
    say "dev: the package lists could not be renewed; trying with the old ones." >&2
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends \
    -o DPkg::Lock::Timeout=600 "$@" </dev/null || die "these packages could not be installed: $*"
}
