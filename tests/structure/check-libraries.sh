#!/usr/bin/env bash
# Fails when the program needs a shared library besides Qt's Core and Network and the compiler's own.
#
#   check-libraries.sh PROGRAM
set -euo pipefail

needed=$(readelf --dynamic --wide "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p')
own='^(libstdc\+\+|libm|libgcc_s|libc|libpthread|ld-linux[a-z0-9_-]*|libasan|libubsan)\.so\.[0-9]+$'
foreign=$(grep -Ev -e "$own" -e '^libQt5(Core|Network)\.so\.5$' <<<"$needed") || true

grep -q '^libQt5Core\.so\.5$' <<<"$needed" || { echo "$1 is not the program" >&2; exit 1; }
[ -z "$foreign" ] || { echo "$1 needs $foreign" >&2; exit 1; }
echo "$1 needs only $(tr '\n' ' ' <<<"$needed")"
