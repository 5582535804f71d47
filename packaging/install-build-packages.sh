#!/usr/bin/env bash
# Installs the Debian packages of build-packages.txt that are missing. Does nothing, and needs no
# rights and no network, when all are there.
set -euo pipefail
cd "$(dirname "$0")"

mapfile -t wanted < <(grep -vE '^(#|$)' build-packages.txt)
missing=()
for package in "${wanted[@]}"; do
    if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
        missing+=("$package")
    fi
done
[ "${#missing[@]}" -gt 0 ] || exit 0

if ! command -v apt-get >/dev/null; then
    echo "This needs Debian's apt-get to install: ${missing[*]}" >&2
    exit 1
fi
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "Missing packages, and neither root nor sudo to install them. As root, run:" >&2
        echo "    apt-get install ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

echo "==> Installing ${#missing[@]} Debian packages: ${missing[*]}"
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install --yes --no-install-recommends "${missing[@]}"
