#!/usr/bin/env bash
# Builds and runs the soak test: random touches on the shipped program on the virtual instrument,
# each request and each picture checked against a model.
#
#   tests/soak/run.sh [TIME] [--seed N]
#
# TIME is hours, or such as 30s or 2m; without it two minutes. A failure names its seed and leaves,
# in build/soak, a session that repeats it and the picture of that moment. Exit status: 0 passed,
# 77 could not run (the last line says why), anything else failed.
set -euo pipefail
cd "$(dirname "$0")/../.."

case "${1:-}" in
    --help | -h) sed -n '2,9s/^# \{0,1\}//p' "$PWD/tests/soak/run.sh"; exit 0 ;;
esac

mkdir -p build
log=build/soak-build.log
could_not_build() {
    cat "$log" >&2
    echo "soak: FAILED, the build stopped; the reason stands above."
    exit 1
}
if [ ! -f build/release/CMakeCache.txt ]; then
    cmake --preset release >"$log" 2>&1 || could_not_build
fi
cmake --build --preset release --target soak frontpanel ownport >"$log" 2>&1 || could_not_build

exec build/release/bin/ownport build/release/bin/soak "$@" --output build/soak
