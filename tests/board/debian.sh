#!/usr/bin/env bash
# Makes a small Debian with systemd for an emulated board, in build/board/debian/root.cpio: what the
# packages frontpanel and frontpanel-simulator depend on, and no kernel. What is there already is not
# made again.
#
# Ends with 0; 77: could not, and the last line says why.
set -euo pipefail
cd "$(dirname "$0")/../.."

could_not_run() { echo "No Debian for an emulated board: $*"; exit 77; }

packages=systemd-sysv,udev,dbus,iproute2,kmod,procps
packages=$packages,libqt5core5a,libqt5network5,libqt5gui5,libqt5widgets5,libvncserver1,umockdev,zlib1g
# What nobody reads or draws with there.
left_out=('/usr/share/doc/*' '/usr/share/locale/*' '/usr/share/man/*' '/usr/lib/*/dri/*' '/usr/lib/*/libLLVM*')

for program in mmdebstrap cpio fakeroot; do
    command -v "$program" >/dev/null ||
        could_not_run "$program is not installed; packaging/install-build-packages.sh --emulation arm64 installs it."
done

directory=$PWD/build/board/debian
recipe=$(sha256sum <"tests/board/debian.sh" | cut -d' ' -f1)
if [ "$(cat "$directory/recipe" 2>/dev/null)" = "$recipe" ]; then
    exit 0
fi
rm -rf "$directory"
mkdir -p "$directory"
options=()
for path in "${left_out[@]}"; do
    options+=("--dpkgopt=path-exclude=$path")
done
# shellcheck disable=SC2016 # for mmdebstrap's shell
if ! mmdebstrap --variant=apt --include="$packages" "${options[@]}" \
    --aptopt='Apt::Install-Recommends "false"' \
    --customize-hook='rm -r "$1"/etc/dpkg/dpkg.cfg.d/99mmdebstrap "$1"/var/lib/apt/lists/*' \
    bookworm "$directory/root.tar" >"$directory/log" 2>&1; then
    could_not_run "mmdebstrap: $(grep '^E: ' "$directory/log" | head -n 1)"
fi
mkdir "$directory/root"
# shellcheck disable=SC2016 # for the inner shell
fakeroot -- sh -e -c 'cd "$1/root"; tar --extract --file ../root.tar --exclude "./dev/*"; find . |
    cpio --quiet --create --format=newc >../root.cpio' sh "$directory"
rm -rf "$directory/root" "$directory/root.tar"
echo "$recipe" >"$directory/recipe"
