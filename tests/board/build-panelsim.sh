#!/usr/bin/env bash
# Builds panelsim for an emulated board: build/ARCH-simulator/bin/panelsim. It knows only the boards
# of kernels, and so needs no umockdev for ARCH.
#
#   build-panelsim.sh ARCH     arm64
#
# Ends with 0; 77: could not, and the last line says why.
set -euo pipefail
cd "$(dirname "$0")/../.."
architecture=$1

# Installed, it would bring the whole C library for ARCH, and renew this machine's headers.
if ! package=$(packaging/fetch-package.sh "zlib1g-dev:$architecture"); then
    echo "$package"
    exit 77
fi
zlib=$PWD/build/board/$architecture/zlib
mkdir -p "$zlib"
dpkg-deb --extract "$package" "$zlib"

cmake --preset "$architecture-simulator" -DZLIB_ROOT="$zlib/usr" \
    -DCMAKE_CXX_FLAGS="-isystem $(echo "$zlib"/usr/include/*-linux-gnu*)"
cmake --build --preset "$architecture-simulator"
