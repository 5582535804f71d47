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

# Installed, these would bring the whole C library for ARCH, and renew this machine's headers. The
# libraries themselves are here with Qt's.
headers=$PWD/build/board/$architecture/headers
mkdir -p "$headers"
for name in zlib1g-dev libpng-dev libjpeg62-turbo-dev; do
    if ! package=$(packaging/fetch-package.sh "$name:$architecture"); then
        echo "$package"
        exit 77
    fi
    dpkg-deb --extract "$package" "$headers"
done
tuple=$(basename "$headers"/usr/include/*-linux-gnu*)
libraries=/usr/lib/$tuple

cmake --preset "$architecture-simulator" \
    -DCMAKE_CXX_FLAGS="-isystem $headers/usr/include/$tuple -isystem $headers/usr/include" \
    -DZLIB_INCLUDE_DIR="$headers/usr/include" -DZLIB_LIBRARY="/lib/$tuple/libz.so.1" \
    -DPNG_PNG_INCLUDE_DIR="$headers/usr/include" -DPNG_LIBRARY="$libraries/libpng16.so.16" \
    -DJPEG_INCLUDE_DIR="$headers/usr/include" -DJPEG_LIBRARY="$libraries/libjpeg.so.62"
cmake --build --preset "$architecture-simulator"
