#!/usr/bin/env bash
# Builds the application so that it counts which lines run (build/coverage), runs its tests, and shows
# what they cover: a table here, each line in build/coverage/report/index.html.
#
# Fails when a test does, when a line of the application is not covered without being listed, with
# the reason, in tests/coverage/uncovered.txt, and when a listed one is.
#
#   coverage.sh               the application
#   coverage.sh --simulator   and the virtual instrument, with every test there is: twice the time
#   coverage.sh --report      without building and running, from what was counted last
#
# Ends with 0: passed; 1: not; 77: could not run.
set -euo pipefail
cd "$(dirname "$0")/.."

could_not_run() { echo "No coverage: $*"; exit 77; }

for program in gcovr gcov python3 cmake; do
    command -v "$program" >/dev/null ||
        could_not_run "$program is not installed; packaging/install-build-packages.sh installs it."
done

build=build/coverage
report=$build/report
mkdir -p $report

# The programs that test folders of the application; CTest knows them, and the sessions, by these names.
programs=(assets client eve_layer flow main onmodel platform supervision widgets)
targets=("${programs[@]/%/_test}" system_tests)
tests_of_these="^((${programs[*]})_test|system\\..*)$"
tests_of_these=${tests_of_these// /|}
simulator=OFF
if [ "${1:-}" = --simulator ]; then
    targets=(unit_tests system_tests)
    tests_of_these=.
    simulator=ON
fi

tests=passed
if [ "${1:-}" != --report ]; then
    cmake --preset coverage -DFRONTPANEL_COVERAGE_SIMULATOR=$simulator >$build/configure.log 2>&1 || could_not_run "see $build/configure.log."
    cmake --build --preset coverage --target "${targets[@]}"
    find $build -name '*.gcda' -delete
    ctest --preset coverage --label-regex '^(unit|system)$' --tests-regex "$tests_of_these" \
        --parallel $((4 * $(nproc))) --quiet --output-log "$PWD/$build/tests.log" || tests=failed
fi
[ -n "$(find $build -name '*.gcda' -print -quit)" ] || could_not_run "no test has counted anything."

counted='client|platform|assets|eve_layer|widgets|supervision'
[ "${1:-}" != --simulator ] || counted+='|simulator'
gcovr --root . $build -j "$(nproc)" --gcov-executable gcov \
    --filter "($counted)/" \
    --filter '(main|startup|screenflow)\.(cpp|h)' --exclude 'build/' \
    --exclude-unreachable-branches --exclude-throw-branches \
    --json $report/coverage.json --html-details $report/index.html >$build/gcovr.log 2>&1 ||
    could_not_run "gcovr failed, see $build/gcovr.log."

lines=passed
tests/coverage/table.py $report/coverage.json tests/coverage/uncovered.txt || lines=failed

if [ $tests = failed ]; then
    sed -n '/The following tests FAILED/,$p' $build/tests.log
    echo "Coverage: tests failed, see $build/tests.log."
    exit 1
fi
if [ $lines = failed ]; then
    echo "Coverage: uncovered and listed lines of the application differ, see above; $report/index.html shows all."
    exit 1
fi
echo "Coverage: every line of the application is covered or listed in tests/coverage/uncovered.txt; $report/index.html shows all."
