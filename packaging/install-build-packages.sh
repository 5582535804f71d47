#!/usr/bin/env bash
# Installs the Debian packages that are missing. Does nothing, and needs no rights and no network,
# when all are there. Removes none.
#
#   install-build-packages.sh                    to build, run and test here (build-packages.txt)
#   install-build-packages.sh --board ARCH       to build the application for a board, arm64 or armhf
#                                                (board-packages.txt)
#   install-build-packages.sh --emulation ARCH   to run here what was built for it, besides
#                                                (emulation-packages.txt)
#   install-build-packages.sh --debian           to make Debian packages, besides
#                                                (debian-packages.txt)
#   install-build-packages.sh --browser          to test the shared panel in a browser, besides
#                                                (browser-packages.txt)
set -euo pipefail
cd "$(dirname "$0")"

architecture=$(dpkg --print-architecture)
case "${1:-}" in
    '') list=build-packages.txt ;;
    --debian) list=debian-packages.txt ;;
    --browser) list=browser-packages.txt ;;
    --board | --emulation)
        list=${1#--}-packages.txt
        architecture=${2:-}
        ;;
    *) list=none ;;
esac
if [ "$list" = none ] || [[ ! $architecture =~ ^[a-z0-9]+$ ]]; then
    sed -n '2,13s/^# \{0,1\}//p' "$(basename "$0")" >&2
    exit 2
fi

mapfile -t wanted < <(grep -vE '^(#|$)' "$list" | sed "s/@ARCH@/$architecture/")
# A package without an architecture in its name is this machine's, others may be installed beside it.
is_installed() { # package
    local own
    own=$(dpkg --print-architecture)
    [[ $1 != *:* ]] || own=${1#*:}
    dpkg-query -W -f '${Architecture} ${db:Status-Status}\n' "$1" 2>/dev/null |
        grep -qE "^($own|all) installed\$"
}

missing=()
for package in "${wanted[@]}"; do
    is_installed "$package" || missing+=("$package")
done
[ "${#missing[@]}" -gt 0 ] || exit 0

if ! command -v apt-get >/dev/null; then
    echo "This needs Debian's apt-get to install: ${missing[*]}" >&2
    exit 1
fi
foreign=
if [ "$architecture" != "$(dpkg --print-architecture)" ] &&
    ! dpkg --print-foreign-architectures | grep -qxF "$architecture"; then
    foreign=$architecture
fi
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "Missing packages, and neither root nor sudo to install them. As root, run:" >&2
        [ -z "$foreign" ] || echo "    dpkg --add-architecture $foreign; apt-get update" >&2
        echo "    apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

echo "==> Installing ${#missing[@]} Debian packages: ${missing[*]}"
[ -z "$foreign" ] || "${as_root[@]}" dpkg --add-architecture "$foreign"
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install --yes --no-install-recommends --no-remove "${missing[@]}"
