#!/usr/bin/env bash
# Builds the Debian packages of the commit that is checked out.
#
#   make-packages.sh [OPTION...]         for this machine: frontpanel and frontpanel-simulator
#   make-packages.sh [OPTION...] ARCH    for a board (arm64, armhf): frontpanel
#
#   --to FOLDER           where the packages are afterwards, instead of build/debian/ARCH
#   --without-simulator   frontpanel only, also for this machine
#
# Installs what is missing for that. Lintian finds nothing about the packages. The version is that of
# CMakeLists.txt. The same commit gives the same bytes, whenever and wherever it is built.
set -euo pipefail
cd "$(dirname "$0")/.."

here=$(dpkg --print-architecture)
folder=
profiles=nocheck
while [[ ${1:-} == --* ]]; do
    case "$1" in
        --to) folder=${2:?"make-packages.sh: --to takes a folder"} && shift ;;
        --without-simulator) profiles="$profiles pkg.frontpanel.nosimulator" ;;
        *) break ;;
    esac
    shift
done
architecture=${1:-$here}
if [ "$#" -gt 1 ] || [[ ! $architecture =~ ^[a-z0-9]+$ ]]; then
    sed -n '2,11s/^# \{0,1\}//p' "$0" >&2
    exit 2
fi
packaging/install-build-packages.sh
packaging/install-build-packages.sh --debian
if [ "$architecture" != "$here" ]; then
    packaging/install-build-packages.sh --board "$architecture"
    profiles="$profiles cross pkg.frontpanel.nosimulator"
fi

version=$(sed -n 's/^project(frontpanel VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
commit=$(git rev-parse HEAD)
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
if [ -n "$(git status --porcelain)" ]; then
    echo "make-packages.sh: the packages are those of the last commit, without what has changed since"
fi

# A cache may give back what was built elsewhere.
export CCACHE_DISABLE=1

folder=${folder:-build/debian/$architecture}
rm -rf "$folder"
mkdir -p "$folder/frontpanel-$version"
git archive HEAD | tar -x -C "$folder/frontpanel-$version"
cd "$folder/frontpanel-$version"

maintainer=$(sed -n 's/^Maintainer: //p' debian/control)
cat >debian/changelog <<END
frontpanel ($version) unstable; urgency=medium

  * Built from commit $commit.

 -- $maintainer  $(date --utc --rfc-email --date="@$SOURCE_DATE_EPOCH")
END

DEB_BUILD_OPTIONS="${DEB_BUILD_OPTIONS:-} nocheck noautodbgsym" DEB_BUILD_PROFILES=$profiles \
    dpkg-buildpackage --build=binary --host-arch "$architecture" --unsigned-changes \
    --unsigned-buildinfo
cd ..
lintian --fail-on error,warning --tag-display-limit 0 ./*.changes
rm -r "frontpanel-$version"
ls -l -- *.deb
