#!/usr/bin/env bash
# Boots an emulated board with Debian's kernel and systemd, on which the packages are installed, and
# tests the service there: that the panel comes up by itself, as whom and how confined it runs, and that
# it comes back from what can stop it. service/checks has the tests; panelsim stands at the other end of
# the board's wires.
#
#   service.sh
#
# The packages are those of build/debian (packaging/make-packages.sh). What the board says is in
# build/board/service/console.log, the outcome of each test in build/board/service/results/results.xml.
#
# Ends with 0: all passed; 1: not; 77: could not run, and the last line says why.
set -euo pipefail
cd "$(dirname "$0")/../.."

could_not_run() { echo "No emulated board: $*"; exit 77; }

# An emulated board that takes longer than this stands still.
longest=2400
architecture=amd64

[ "$(dpkg --print-architecture)" = "$architecture" ] || could_not_run "this machine is no $architecture."
command -v qemu-system-x86_64 >/dev/null ||
    could_not_run "qemu-system-x86_64 is not installed; packaging/install-build-packages.sh --emulation arm64 installs it."
packages=(build/debian/"$architecture"/*.deb)
[ -e "${packages[0]}" ] || could_not_run "there are no packages; packaging/make-packages.sh makes them."
for needed in "kernel.sh $architecture" debian.sh; do
    # shellcheck disable=SC2086 # a script and its argument
    tests/board/$needed || exit $?
done

place=build/board/service
rm -rf "$place"
payload=$place/root/payload
mkdir -p "$payload/newer" "$place/root/etc/systemd/system" "$place/results"
cp tests/board/service/{checks,display,*.session} "$payload"
cp tests/board/service/init "$place/root/init"
cp "${packages[@]}" "build/board/$architecture/kernel/panelboard.ko" "$payload"
cp -r tests/system/pictures "$payload/pictures"

# A newer version of the package, with the same in it.
package=$(ls "$payload"/frontpanel_*.deb)
dpkg-deb --raw-extract "$package" "$place/newer"
sed -i 's/^Version: .*/&+newer/' "$place/newer/DEBIAN/control"
dpkg-deb --root-owner-group --build "$place/newer" "$payload/newer" >/dev/null

units=$place/root/etc/systemd/system
for unit in tests/board/service/units/*.service; do
    cp "$unit" "$units"
    target=$(sed -n 's/^WantedBy=//p' "$unit")
    mkdir -p "$units/$target.wants"
    ln -s "../${unit##*/}" "$units/$target.wants"
done
(cd "$place/root" && find . | cpio --quiet --create --format=newc --owner=0:0) >"$place/payload.cpio"
cat build/board/debian/root.cpio "$place/payload.cpio" >"$place/initrd"

# The board's time is counted in instructions, of 2 ns each, and where it waits, the time is skipped: a
# busy PC makes it slower, but not late. A processor with few extensions, and a kernel that need not
# distrust it, are emulated in two thirds of the time.
begin=$SECONDS
status=0
timeout --kill-after=10 "$longest" qemu-system-x86_64 -cpu Nehalem -accel tcg -smp 1 \
    -icount shift=1,sleep=off -m 2048 -nographic -no-reboot -monitor none -net none \
    -kernel "build/board/$architecture/kernel/vmlinuz" \
    -initrd "$place/initrd" -append "console=ttyS0 loglevel=2 mitigations=off panic=-1 rdinit=/init" \
    </dev/null >"$place/console.log" 2>&1 || status=$?
rm "$place/initrd" "$place/payload.cpio"
tr -d '\r' <"$place/console.log" >"$place/console.txt"

grep -E '^board: (up|figure|passed|failed)' "$place/console.txt" | sed 's/^board: //' || true
passed=$(grep -c '^board: passed: ' "$place/console.txt") || true
failed=$(grep -c '^board: failed: ' "$place/console.txt") || true
if ! grep -qx 'board: done' "$place/console.txt"; then
    echo "The board did not come to the end of its tests."
    [ "$status" -ne 124 ] || echo "It has been switched off after $longest s."
    failed=$((failed + 1))
fi
cat >"$place/results/results.xml" <<END
<testsuites name="board-service" tests="$((passed + failed))" failures="$failed" skipped="0">
</testsuites>
END
echo "Emulated for $((SECONDS - begin)) s."
if [ "$failed" -gt 0 ]; then
    tail -n 80 "$place/console.txt"
    exit 1
fi
