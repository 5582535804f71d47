#!/usr/bin/env bash
# Fails when the package is about other devices of the board than the program.
#
#   check-board-names.sh SOURCE-DIRECTORY
set -euo pipefail
cd "$1"

program=platform/cplatform.cpp
number() { # constant
    sed -n "s/^constexpr unsigned int $1 = \([0-9]*\);.*/\1/p" "$program"
}

spi=$(sed -n 's/^const char\* const spiPath = "\(.*\)";/\1/p' "$program")
lines=()
for pin in pinPD pinINT pinCS; do
    lines+=($(($(number gpioBase) + $(number "$pin"))))
done

mistakes=0
expect() { # file line
    if ! grep -qxF -- "$2" "$1"; then
        echo "$1 has no line \"$2\", which is what $program says" >&2
        mistakes=$((mistakes + 1))
    fi
}

expect packaging/board/prepare-board "spi=${spi#/dev/}"
expect packaging/board/prepare-board "lines=\"${lines[*]}\""
expect debian/frontpanel.service "DeviceAllow=$spi rw"
expect debian/frontpanel.udev "SUBSYSTEM==\"spidev\", KERNEL==\"${spi#/dev/}\", GROUP=\"spi\", MODE=\"0660\""
expect debian/frontpanel.udev "KERNEL==\"gpio${lines[0]}|gpio${lines[1]}|gpio${lines[2]}\", TEST==\"value\", \\"
[ "$mistakes" -eq 0 ] || exit 1
echo "Program and package agree on $spi and lines ${lines[*]}."
