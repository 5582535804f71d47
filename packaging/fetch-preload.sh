#!/usr/bin/env bash
# Puts umockdev's preload library for another architecture into a directory: the one of the program
# that panelsim is to show on the virtual board. Installing that architecture's umockdev would remove
# this machine's.
#
#   fetch-preload.sh ARCH DIRECTORY
#
# Ends with 0; 77: could not, and the last line says why.
set -euo pipefail
here=$(dirname "$0")
architecture=$1
directory=$2

library=libumockdev-preload.so.0
[ ! -e "$directory/$library" ] || exit 0
if ! package=$("$here/fetch-package.sh" "umockdev:$architecture"); then
    echo "$package"
    exit 77
fi
mkdir -p "$directory"
dpkg-deb --fsys-tarfile "$package" |
    tar --extract --to-stdout --wildcards "./usr/lib/*/$library.0.0" >"$directory/$library.new"
mv "$directory/$library.new" "$directory/$library"
