#!/usr/bin/env bash
# Runs clang-tidy, as configured in .clang-tidy, over every source of the release build.
set -euo pipefail
cd "$(dirname "$0")/.."

log=build/clang-tidy.log
if ! run-clang-tidy -quiet -p build/release -j "$(nproc)" "^$PWD/(?!build/)" >"$log" 2>&1; then
    sed 's/\x1b\[[0-9;]*m//g' "$log" | grep -E '(warning|error):' | sort -u
    echo "clang-tidy found something: the whole report is in $log" >&2
    exit 1
fi
echo "clang-tidy found nothing."
