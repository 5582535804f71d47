#!/usr/bin/env bash
# Makes the packages for this machine, and those for a 64-bit ARM board, and looks at them: lintian
# finds nothing, the version is the project's, the service is confined, and a second build elsewhere
# gives the same bytes.
#
#   check.sh          the second build is one of frontpanel, for this machine
#   check.sh --all    the second build is one of all packages
#
# Ends with 0; 77: could not, and the last line says why; 1: something is wrong.
set -euo pipefail
cd "$(dirname "$0")/../.."

all=
case "${1:-}" in
    "") ;;
    --all) all=yes ;;
    *) sed -n '2,7s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac
most_exposed=17 # tenths: 1.7 of systemd-analyze's 10

for_board=(packaging/install-build-packages.sh --board arm64)
if ! packaging/install-build-packages.sh --debian || ! "${for_board[@]}"; then
    echo "The packages that making packages needs could not be installed."
    exit 77
fi
native=$(dpkg --print-architecture)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "$1" >&2
    exit 1
}

same_bytes() { # architecture [option of make-packages.sh]
    local package name
    mkdir -p "$work/$1"
    packaging/make-packages.sh --to "$work/$1" ${2:+"$2"} "$1"
    for package in "$work/$1"/*.deb; do
        name=${package##*/}
        cmp "build/debian/$1/$name" "$package" || fail "$name: the second build gives other bytes"
        echo "$name: two builds, the same bytes"
    done
}

version=$(sed -n 's/^project(frontpanel VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
for architecture in "$native" arm64; do
    packaging/make-packages.sh "$architecture"
    [ -z "$all" ] || same_bytes "$architecture"
    package=build/debian/$architecture/frontpanel_${version}_$architecture.deb
    [ "$(dpkg-deb --field "$package" Version)" = "$version" ] || fail "$package: another version"
done

[ -n "$all" ] || same_bytes "$native" --without-simulator

dpkg-deb --extract "build/debian/$native/frontpanel-simulator_${version}_$native.deb" "$work/simulator"
for program in panelsim measurementserver servercheck; do
    [ "$("$work/simulator/usr/bin/$program" --version)" = "$program $version" ] ||
        fail "$program --version: not $version"
done

systemd-analyze security --offline=true --threshold="$most_exposed" --no-pager \
    debian/frontpanel.service | tail -n 2
ls -l -- build/debian/*/*.deb
