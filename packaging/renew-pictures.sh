#!/usr/bin/env bash
# Draws the stored pictures of the screens (tests/system/pictures) anew, with whatever the panel and
# the virtual instrument now make of them. Look at them before you commit: git status tells which
# have changed.
set -euo pipefail
cd "$(dirname "$0")/.."

sessions=tests/system
pictures=$sessions/pictures

cmake --preset release >/dev/null
cmake --build --preset release --target panelsim frontpanel

rm -f "$pictures"/*.png # what no session takes any more goes
mapfile -t scripts < <(grep -l '^ *screenshot ' "$sessions"/*.session)
for script in "${scripts[@]}"; do
    echo "==> $script"
    build/release/bin/panelsim --headless --script "$script" --compare "$pictures" --renew
done
