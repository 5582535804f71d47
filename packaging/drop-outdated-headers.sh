#!/usr/bin/env bash
# Removes the precompiled headers of a build that are older than the last installation of packages.
# What a package brings has an older date than that, so that no build would make them anew, but clang
# refuses one whose parts have changed.
#
#   drop-outdated-headers.sh PRESET
set -euo pipefail
cd "$(dirname "$0")/.."

[ -d "build/$1" ] || exit 0
find "build/$1" \( -name '*.pch' -o -name '*.gch' \) ! -newer /var/lib/dpkg/status -delete
