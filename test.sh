#!/usr/bin/env bash
# Installs what is missing, builds, and runs the tests.
#
#   ./test.sh              style, unit tests under the sanitizers, the shipped program on the virtual
#                          instrument: minutes, from a fresh clone
#   ./test.sh --all        also what is slow: unit tests on the release build, static analysis,
#                          coverage, fuzzing, soak, the program for an ARM board and on a real kernel
#   ./test.sh --coverage   what the tests cover, as a report below build/coverage, and nothing else
#
# Ends with a table of what was run, and with status 0 only if nothing failed. What could not be run
# here stands in the table with the reason. Logs are in build/test-logs.
set -euo pipefail
cd "$(dirname "$0")"
# shellcheck source=packaging/test-stages.sh
. packaging/test-stages.sh

usage() { sed -n '2,12s/^# \{0,1\}//p' "$0"; }

which=everyday
for argument in "$@"; do
    case "$argument" in
        --all) which=all ;;
        --coverage) which=coverage ;;
        --help | -h) usage; exit 0 ;;
        *) echo "test.sh: unknown argument $argument" >&2; usage >&2; exit 2 ;;
    esac
done

packaging/install-build-packages.sh

# Unit tests wait now and then, system tests most of the time.
cores=$(nproc)
unit_jobs=$((cores * 3))
system_jobs=$((cores * 8))
fault_jobs=$((cores * 6)) # many of the faults are about the 50 ms that the program gives the server
fuzz_seconds=60
soak_time=2m

build() { # preset target
    packaging/drop-outdated-headers.sh "$1"
    cmake --preset "$1" && cmake --build --preset "$1" --target "$2"
}

preparation() {
    stage "Packages for boards" install_for_boards
    stage "Package of a browser" install_browser
}

everyday() {
    stage "Style" packaging/check-style.sh
    stage "Build, sanitizers" build debug unit_tests
    stage "Unit tests, sanitizers" --needs "Build, sanitizers" \
        --results build/debug/test-results ctest --preset unit --parallel "$unit_jobs"
    stage "Build, as shipped" build release system_tests
    # By themselves: what the program does with a server that answers late is its own affair.
    stage "System tests" --needs "Build, as shipped" \
        --ctest build/test-logs/system.xml ctest --preset system --parallel "$system_jobs" \
        --output-junit "$PWD/build/test-logs/system.xml"
}

slow() {
    stage "Build, all of it" build release all
    stage "Soak" --beside --needs "Build, all of it" tests/soak/run.sh "$soak_time"
    stage "Unit tests, release" --needs "Build, all of it" \
        --results build/release/test-results ctest --preset release-unit --parallel "$unit_jobs"
    stage "Fault matrix" --needs "Build, all of it" \
        --ctest build/test-logs/faults.xml ctest --preset faults --parallel "$fault_jobs" \
        --output-junit "$PWD/build/test-logs/faults.xml"
    stage "Recorded tour" --needs "Build, all of it" --ctest build/test-logs/recorded.xml \
        ctest --preset recorded --output-junit "$PWD/build/test-logs/recorded.xml"
    stage "In a browser" --needs "Build, all of it" \
        --ctest build/test-logs/browser.xml test_in_browser
    stage "Packages" --needs "Packages for boards" tests/packages/check.sh
    stage "Service on a board" --beside --needs "Packages" --results build/board/service/results \
        tests/board/service.sh
    stage "Static analysis" packaging/check-analysis.sh --all
    stage "Coverage" packaging/coverage.sh
    stage "Fuzzing" tests/fuzz/run.sh "$fuzz_seconds"
}

# Before anything is built: what is installed may renew headers that others have been made from.
install_for_boards() {
    local list
    for list in --debian "--board arm64" "--emulation arm64"; do
        # shellcheck disable=SC2086 # an option and its argument
        packaging/install-build-packages.sh $list || {
            echo "The packages for boards (install-build-packages.sh $list) could not be installed."
            return 77
        }
    done
}

install_browser() {
    packaging/install-build-packages.sh --browser || {
        echo "Chromium (install-build-packages.sh --browser) could not be installed."
        return 77
    }
}

test_in_browser() {
    command -v chromium >/dev/null || {
        echo "chromium is not installed."
        return 77
    }
    ctest --preset browser --output-junit "$PWD/build/test-logs/browser.xml"
}

# The program for a 64-bit ARM board.
build_arm64() {
    build arm64-tests unit_tests &&
        tests/structure/check-libraries.sh build/arm64/bin/frontpanel &&
        packaging/fetch-preload.sh arm64 build/arm64/bin
}

board() {
    stage "Build, ARM" --needs "Packages for boards" build_arm64
    stage "Unit tests, ARM" --needs "Build, ARM" \
        --results build/arm64/test-results ctest --preset arm64-unit --parallel "$unit_jobs"
    stage "System tests, ARM" --needs "Build, ARM" \
        --ctest build/test-logs/system-arm64.xml ctest --preset arm64-system --parallel 2 \
        --output-junit "$PWD/build/test-logs/system-arm64.xml"
    stage "Emulated board" --needs "Packages for boards" --ctest build/board/amd64/results.xml \
        tests/board/boot.sh amd64 startup counter-run tour
}

coverage_alone() {
    stage "Coverage" packaging/coverage.sh
}

case "$which" in
    everyday) plan everyday ;;
    all) plan preparation everyday slow board ;;
    coverage) plan coverage_alone ;;
esac
