#!/usr/bin/env bash
# Fails when a source is not formatted as .clang-format says, or a script not as shellcheck likes.
# The mend for the former: clang-format -i FILE.
#
#   check-style.sh            checks
#   check-style.sh --scripts  lists the scripts that it would check
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t scripts < <(
    git ls-files '*.sh' '.ci/run' 'packaging/board/prepare-board' 'tests/board/init' \
        'tests/board/service/checks' 'tests/board/service/display' 'tests/board/service/init'
)
if [ "${1:-}" = --scripts ]; then
    printf '%s\n' "${scripts[@]}"
    exit
fi

mapfile -t sources < <(git ls-files '*.c' '*.cpp' '*.h')
clang-format --dry-run --Werror "${sources[@]}"

shellcheck "${scripts[@]}"

echo "${#sources[@]} sources and ${#scripts[@]} scripts are in style."
