#!/usr/bin/env bash
# Runs clang-tidy, as configured in the .clang-tidy files, over the sources that are new or have
# changed (or include what has changed) since they were last found clean. They are seen as the
# sanitizer build compiles them, with its precompiled headers, which takes a fifth off; what only the
# release build has (benchmarks) as that does.
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
log=build/clang-tidy/prepare.log
mkdir -p build/clang-tidy
prepare() {
    [ -f build/release/compile_commands.json ] || cmake --preset release
    packaging/drop-outdated-headers.sh debug
    cmake --preset debug
    cmake --build --preset debug --target precompiled_headers
}
prepare >"$log" 2>&1 || could_not_run "the builds cannot be prepared, see $log."

exec packaging/analyse.py build/debug,build/release build/clang-tidy "$@"
