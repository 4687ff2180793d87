#!/usr/bin/env bash
# ./dev package: a Debian package of the programs, samples, documents, manual pages and completions, in
# build/package. DEBFULLNAME and DEBEMAIL name who makes it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/common.sh
umask 022

need build package
configure_release
cmake --build build/release -j "$jobs" --target programs user_files

heading "Package"
rm -rf build/package
root=$PWD/build/package/root
mkdir -p "$root/DEBIAN" build/package/debian
cmake --install build/release --prefix "$root/usr" --strip >build/package/install.log

# control LINE-RANGE NAME VALUE...: these lines of the template, filled in.
control() {
  local script="$1p"
  shift
  while [ $# -gt 0 ]; do
    script="s|@$1@|${2//&/\\&}|;$script"
    shift 2
  done
  sed -n "$script" packaging/control
}
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/release/CMakeCache.txt)
maintainer="${DEBFULLNAME:-Forgeyard maintainers} <${DEBEMAIL:-maintainers@forgeyard.invalid}>"

# What finds the libraries that programs need wants to see the whole of a source package's file.
control '1,$' MAINTAINER "$maintainer" >build/package/debian/control
depends=$(cd build/package && dpkg-shlibdeps -O -lroot/usr/lib/forgeyard root/usr/bin/forgeyard \
  root/usr/lib/forgeyard/*.so | sed -n 's/^shlibs:Depends=//p')
control '/^Package/,$' MAINTAINER "$maintainer" VERSION "$version" DEPENDS "$depends" \
  ARCHITECTURE "$(dpkg --print-architecture)" SIZE "$(du -sk --apparent-size "$root/usr" | cut -f 1)" \
  >"$root/DEBIAN/control"
(cd "$root" && find usr -type f -print0 | sort -z | xargs -0 md5sum) >"$root/DEBIAN/md5sums"

package=build/package/forgeyard_${version}_$(dpkg --print-architecture).deb
dpkg-deb --root-owner-group --build "$root" "$package" >/dev/null
rm -rf "$root"
dpkg-deb --info "$package"
say "Install it with: sudo apt install ./$package"
