#!/usr/bin/env bash
# Runs clang-tidy, as configured in the .clang-tidy files, over the sources of the release build that
# are new or have changed (or include what has changed) since they were last found clean.
#
#   check-analysis.sh          what has changed
#   check-analysis.sh --all    everything
#   check-analysis.sh FILE...  these sources, changed or not
#
# Ends with 0: nothing found; 1: something found; 77: could not run.
set -euo pipefail
cd "$(dirname "$0")/.."

could_not_run() { echo "No static analysis: $*"; exit 77; }

for program in clang-tidy python3 cmake; do
    command -v "$program" >/dev/null ||
        could_not_run "$program is not installed; packaging/install-build-packages.sh installs it."
done
log=build/clang-tidy/configure.log
mkdir -p build/clang-tidy
if [ ! -f build/release/compile_commands.json ] && ! cmake --preset release >"$log" 2>&1; then
    could_not_run "build/release cannot be configured, see $log."
fi

exec packaging/analyse.py build/release build/clang-tidy "$@"
