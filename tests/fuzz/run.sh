#!/usr/bin/env bash
# Builds the fuzzers and lets each try inputs for a while. What it finds is below
# build/fuzz/findings; to see one again: build/fuzz/bin/fuzz_TARGET FILE.
#
#   tests/fuzz/run.sh [SECONDS [TARGET...]]   60 seconds of all at a time, if not said otherwise
#
# The inputs that reach new code are kept in build/fuzz/corpus for the next run.
# Ends with 0: nothing found; 1: something found; 77: could not run.
set -euo pipefail
cd "$(dirname "$0")/../.."

seconds=${1:-60}
shift || true
all=(bus displaylist coprocessor flash inflate image script requests replies)
targets=("$@")
[ $# -gt 0 ] || targets=("${all[@]}")

could_not_run() { echo "No fuzzing: $*"; exit 77; }

[[ $seconds =~ ^[0-9]+$ ]] || could_not_run "\"$seconds\" is no number of seconds."
for program in clang++ cmake python3; do
    command -v "$program" >/dev/null ||
        could_not_run "$program is not installed; packaging/install-build-packages.sh installs it."
done

build=build/fuzz
findings=$build/findings
mkdir -p "$findings"
cmake --preset fuzz >$build/configure.log 2>&1 || could_not_run "see $build/configure.log."
cmake --build --preset fuzz
tests/fuzz/makeseeds.py $build/seeds

# An input that takes longer than a minute, or more than two gigabytes, is a finding too.
limits=(-timeout=60 -rss_limit_mb=2048 -max_len=4096)

# Prints a line of the table; fails if there is a finding.
run() {
    local target=$1 log=$build/$1.log status=0
    if [ ! -x "$build/bin/fuzz_$target" ]; then
        printf '%-12s there is no such target\n' "$target"
        return 1
    fi
    mkdir -p "$build/corpus/$target"
    QT_LOGGING_RULES='*=false' "$build/bin/ownport" "$build/bin/fuzz_$target" -max_total_time="$seconds" "${limits[@]}" \
        -print_final_stats=1 -artifact_prefix="$findings/$target-" "$build/corpus/$target" \
        "$build/seeds/$target" >"$log" 2>&1 || status=$?
    local inputs rate found=none
    inputs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")
    if [ "$status" -ne 0 ]; then
        found=$(sed -n 's/.*Test unit written to //p' "$log" | tail -1)
        found=${found:-"see $log"}
    fi
    printf '%-12s %10s %10s  %s\n' "$target" "${inputs:-?}" "${rate:-?}" "$found"
    return "$status"
}

printf '%-12s %10s %10s  %s\n' target inputs per-second finding
# All at a time: they share the cores, and the machine is not asked for anything else.
bad=0
processes=()
for target in "${targets[@]}"; do
    run "$target" &
    processes+=($!)
done
for process in "${processes[@]}"; do
    wait "$process" || bad=$((bad + 1))
done
if [ "$bad" -gt 0 ]; then
    echo "Fuzzing found something in $bad of ${#targets[@]} targets; see $findings and $build/*.log."
    exit 1
fi
echo "Fuzzing found nothing: ${#targets[@]} targets in $seconds seconds."
