#!/usr/bin/env bash
# Downloads Debian packages without installing them, into build/packages, and prints the path of
# each. What is there already is not downloaded again.
#
#   fetch-package.sh PACKAGE[:ARCH]...
#
# Ends with 0; 77: could not, and the last line says why.
set -euo pipefail
cd "$(dirname "$0")/.."
cache=$PWD/build/packages
mkdir -p "$cache"

for package in "$@"; do
    # URI, file name, size, checksum; of the newest version that apt knows. (Where the file is already,
    # apt prints nothing.)
    line=$(cd / && apt-get download --print-uris "$package" 2>&1 | tail -n 1) || true
    file=$(awk '{print $2}' <<<"$line")
    if [[ $line != \'* || $file != *.deb ]]; then
        echo "No package $package: $line (packages of other architectures are known after packaging/install-build-packages.sh --board ARCH)"
        exit 77
    fi
    if [ ! -e "$cache/$file" ] &&
        ! (cd "$cache" && apt-get download "$package" >"$file.log" 2>&1); then
        echo "No package $package: $(tail -n 1 "$cache/$file.log")"
        exit 77
    fi
    echo "$cache/$file"
done
