#!/usr/bin/env bash
# Makes ready what an emulated board needs of Debian's kernel for ARCH, in build/board/ARCH/kernel:
#
#   vmlinuz         the kernel
#   panelboard.ko   the board's module, built for it (simulator/board/module)
#
# The packages are downloaded to build/packages, and not installed.
#
#   kernel.sh ARCH     amd64 or arm64
#
# Ends with 0; 77: could not, and the last line says why.
set -euo pipefail
cd "$(dirname "$0")/../.."

could_not_run() { echo "No kernel for an emulated board: $*"; exit 77; }

architecture=$1
here=$(dpkg --print-architecture)
cross=
case "$architecture" in
    amd64) machine=x86 prefix=x86_64-linux-gnu- ;;
    arm64) machine=arm64 prefix=aarch64-linux-gnu- ;;
    *) echo "kernel.sh: no board of architecture $architecture" >&2; exit 2 ;;
esac
[ "$architecture" = "$here" ] || cross=$prefix
for program in make "${cross}gcc-12"; do
    command -v "$program" >/dev/null || could_not_run "$program is not installed."
done

# The packages of the newest kernel: linux-image-6.1.0-56-arm64 and so on.
image=$(apt-cache depends "linux-image-$architecture:$architecture" 2>/dev/null |
    sed -n 's/^ *Depends: \(linux-image-[^: ]*\).*/\1/p' | head -n 1)
[ -n "$image" ] || could_not_run "apt knows no linux-image-$architecture (apt-get update)."
release=${image#linux-image-}
kbuild=linux-kbuild-$(cut -d. -f1,2 <<<"$release")

directory=$PWD/build/board/$architecture/kernel
sources=$directory/usr/src/linux-headers-$release
if [ "$(cat "$directory/release" 2>/dev/null)" != "$release" ]; then
    packages=$(packaging/fetch-package.sh "linux-headers-$release:$architecture" \
        "linux-headers-${release%-*}-common" "$kbuild:$here" "$image:$architecture") ||
        could_not_run "$(tail -n 1 <<<"$packages")"
    rm -rf "$directory"
    mkdir -p "$directory"
    while read -r package; do
        [[ $package != */linux-image-* ]] || break
        dpkg-deb --extract "$package" "$directory"
    done <<<"$packages"
    # Not the modules behind it, which take long to unpack.
    dpkg-deb --fsys-tarfile "$package" 2>/dev/null |
        tar --extract --directory "$directory" --occurrence=1 "./boot/vmlinuz-$release" || true
    # They expect to be installed.
    sed -i "s,/usr/src/,$directory/usr/src/," "$sources/Makefile"
    mv "$directory/boot/vmlinuz-$release" "$directory/vmlinuz"
    echo "$release" >"$directory/release"
fi

module=$directory/module
mkdir -p "$module"
cp --update simulator/board/module/* "$module"
if ! make -C "$sources" M="$module" ARCH="$machine" CROSS_COMPILE="$cross" CC="${cross}gcc-12" \
    modules >"$module/make.log" 2>&1; then
    cat "$module/make.log"
    exit 1
fi
cp --update "$module/panelboard.ko" "$directory/panelboard.ko"
echo "Kernel $release and its module are in $directory."
