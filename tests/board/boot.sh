#!/usr/bin/env bash
# Boots Debian's kernel on an emulated board, with the board's module and nothing else, and plays
# sessions there with the program as it ships: through that kernel's own spidev and GPIO, panelsim
# standing at the other end of the wires. The pictures are compared with the stored ones.
#
#   boot.sh ARCH SESSION...     amd64 or arm64; tests/system/SESSION.session
#
# What is run comes from build/release (amd64), or build/arm64 and build/arm64-simulator (arm64). What the board says
# is in build/board/ARCH/console.log, pictures that differ are in build/board/ARCH/shots, and the
# outcome of each session is in build/board/ARCH/results.xml.
#
# Ends with 0: all passed; 1: not; 77: could not run, and the last line says why.
set -euo pipefail
cd "$(dirname "$0")/../.."

could_not_run() { echo "No emulated board: $*"; exit 77; }

architecture=$1
shift
sessions=("$@")
# An emulated board that takes longer than this stands still.
longest=600

case "$architecture" in
    amd64)
        frontpanel=build/release/bin/frontpanel
        panelsim=build/release/bin/panelsim
        libraries="/lib/x86_64-linux-gnu /usr/lib/x86_64-linux-gnu"
        loader=/lib64/ld-linux-x86-64.so.2
        emulator=(qemu-system-x86_64 -cpu max)
        console=ttyS0
        ;;
    arm64)
        frontpanel=build/arm64/bin/frontpanel
        panelsim=build/arm64-simulator/bin/panelsim
        libraries="/lib/aarch64-linux-gnu /usr/lib/aarch64-linux-gnu"
        loader=/lib/ld-linux-aarch64.so.1
        emulator=(qemu-system-aarch64 -machine virt -cpu cortex-a57)
        console=ttyAMA0
        ;;
    *) echo "boot.sh: no board of architecture $architecture" >&2; exit 2 ;;
esac
for program in "${emulator[0]}" cpio readelf; do
    command -v "$program" >/dev/null || could_not_run "$program is not installed; packaging/install-build-packages.sh --emulation arm64 installs it."
done
for program in $frontpanel $panelsim; do
    [ -x "$program" ] || could_not_run "$program is not built."
done

place=build/board/$architecture
mkdir -p "$place"
tests/board/kernel.sh "$architecture" >"$place/kernel.log" 2>&1 || {
    status=$?
    cat "$place/kernel.log"
    exit $status
}
busybox=$(packaging/fetch-package.sh "busybox-static:$architecture") || could_not_run "$busybox"

# The file system in memory
root=$place/root
rm -rf "$root" "$place/shots"
mkdir -p "$root"/{bin,dev,lib,lib64,proc,sys,tmp,sessions}
dpkg-deb --fsys-tarfile "$busybox" | tar --extract --to-stdout ./bin/busybox >"$root/bin/busybox"
chmod +x "$root/bin/busybox"
cp tests/board/init "$root/init"
cp "$place/kernel/panelboard.ko" "$root"
cp -r tests/system/pictures "$root/pictures"
for session in "${sessions[@]}"; do
    cp "tests/system/$session.session" "$root/sessions"
done

# The libraries that a program or library names, and those that these name.
add_libraries() { # file
    local name directory
    for name in $(readelf --dynamic --wide "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p'); do
        [ ! -e "$root/lib/$name" ] || continue
        for directory in $libraries; do
            [ -e "$directory/$name" ] || continue
            cp -L "$directory/$name" "$root/lib/$name"
            add_libraries "$root/lib/$name"
            break
        done
    done
}
for program in $frontpanel $panelsim; do
    cp "$program" "$root/bin"
    add_libraries "$program"
done
cp -L "$loader" "$root$loader"
(cd "$root" && find . | cpio --quiet --create --format=newc --owner=0:0) >"$place/initrd"

begin=$SECONDS
status=0
timeout --kill-after=10 "$longest" "${emulator[@]}" -accel tcg -smp 1 -icount shift=0,sleep=off -m 1024 -nographic -no-reboot \
    -monitor none -net none -kernel "$place/kernel/vmlinuz" -initrd "$place/initrd" \
    -append "console=$console quiet panic=-1" </dev/null >"$place/console.log" 2>&1 || status=$?
tr -d '\r' <"$place/console.log" >"$place/console.txt"

failed=0
for session in "${sessions[@]}"; do
    line=$(grep "^board: session $session ended" "$place/console.txt") || line="session $session did not end"
    echo "${line#board: }"
    [[ $line == *" ended with 0 "* ]] || failed=$((failed + 1))
done
cat >"$place/results.xml" <<END
<testsuite name="board-$architecture" tests="${#sessions[@]}" failures="$failed" skipped="0">
</testsuite>
END
sed -n 's/^board: \(up after .*\)/The board is \1/p' "$place/console.txt"
echo "Emulated for $((SECONDS - begin)) s."
if [ "$failed" -gt 0 ]; then
    sed '/^board: pictures/,/^board: end of pictures/d' "$place/console.txt" | tail -n 40
    if grep -q '^board: pictures' "$place/console.txt"; then
        mkdir -p "$place/shots"
        sed '1,/^board: pictures/d; /^board: end of pictures/,$d' "$place/console.txt" |
            base64 -d | tar -x -z -C "$place/shots"
        echo "What differs is in $place/shots."
    fi
    [ "$status" -ne 124 ] || echo "The board has been switched off after $longest s."
    exit 1
fi
