#!/usr/bin/env bash
# Makes the packages for this machine, and those for a 64-bit ARM board, and looks at them: lintian
# finds nothing, the version is the project's, the service is confined, and a second build elsewhere
# gives the same bytes.
#
# Ends with 0; 77: could not, and the last line says why; 1: something is wrong.
set -euo pipefail
cd "$(dirname "$0")/../.."

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

same_bytes() { # architecture
    local package name
    mkdir -p "$work/$1"
    packaging/make-packages.sh --to "$work/$1" "$1"
    for package in "build/debian/$1"/*.deb; do
        name=${package##*/}
        cmp "$package" "$work/$1/$name" || fail "$name: the second build gives other bytes"
        echo "$name: two builds, the same bytes"
    done
}

version=$(sed -n 's/^project(frontpanel VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
for architecture in "$native" arm64; do
    packaging/make-packages.sh "$architecture"
    same_bytes "$architecture"
    package=build/debian/$architecture/frontpanel_${version}_$architecture.deb
    [ "$(dpkg-deb --field "$package" Version)" = "$version" ] || fail "$package: another version"
done

dpkg-deb --extract "build/debian/$native/frontpanel-simulator_${version}_$native.deb" "$work/simulator"
for program in panelsim measurementserver; do
    [ "$("$work/simulator/usr/bin/$program" --version)" = "$program $version" ] ||
        fail "$program --version: not $version"
done

systemd-analyze security --offline=true --threshold="$most_exposed" --no-pager \
    debian/frontpanel.service | tail -n 2
ls -l -- build/debian/*/*.deb
