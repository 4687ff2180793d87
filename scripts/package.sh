#!/usr/bin/env bash
# ./dev package: Debian packages in build/package, one of the programs, samples, documents, manual pages and completions,
# one of the source control database. DEBFULLNAME and DEBEMAIL name who makes them.
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
database=$PWD/build/package/database
private=usr/lib/forgeyard
mkdir -p "$root/DEBIAN" "$database/DEBIAN" "$database/$private" build/package/debian
cmake --install build/release --prefix "$root/usr" --strip >build/package/install.log
# The source control database alone needs Subversion's libraries.
mv "$root/$private/ForgeyardRepository.so" "$database/$private"

# control FILE LINE-RANGE NAME VALUE...: these lines of the template, filled in.
control() {
  local file=$1 script="$2p"
  shift 2
  while [ $# -gt 0 ]; do
    script="s|@$1@|${2//&/\\&}|;$script"
    shift 2
  done
  sed -n "$script" "$file"
}
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' build/release/CMakeCache.txt)
maintainer="${DEBFULLNAME:-Forgeyard maintainers} <${DEBEMAIL:-maintainers@forgeyard.invalid}>"

architecture=$(dpkg --print-architecture)

# needed PATTERN...: the packages with the libraries of these files, named from build/package.
needed() {
  (cd build/package && dpkg-shlibdeps -O -lroot/$private $* | sed -n 's/^shlibs:Depends=//p')
}

# package NAME ROOT TEMPLATE DEPENDS: makes build/package/NAME_*.deb of a tree.
package() {
  local file="build/package/$1_${version}_$architecture.deb"
  control "$3" '/^Package/,$' MAINTAINER "$maintainer" VERSION "$version" DEPENDS "$4" ARCHITECTURE "$architecture" \
    SIZE "$(du -sk --apparent-size "$2/usr" | cut -f 1)" >"$2/DEBIAN/control"
  (cd "$2" && find usr -type f -print0 | sort -z | xargs -0 md5sum) >"$2/DEBIAN/md5sums"
  dpkg-deb --root-owner-group --build "$2" "$file" >/dev/null
  dpkg-deb --info "$file"
}

# What finds the libraries that programs need wants to see the whole of a source package's file.
control packaging/control '1,$' MAINTAINER "$maintainer" >build/package/debian/control
main_needs=$(needed root/usr/bin/forgeyard "root/$private/*.so")
database_needs=$(needed "database/$private/*.so")
package forgeyard "$root" packaging/control "$main_needs"
package forgeyard-repository "$database" packaging/control-repository "forgeyard (= $version), $database_needs"
rm -rf "$root" "$database"
say "Install it with: sudo apt install ./build/package/forgeyard_*.deb"
say "Source control is in a package of its own: ./build/package/forgeyard-repository_*.deb"
