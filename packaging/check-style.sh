#!/usr/bin/env bash
# Fails when a source is not formatted as .clang-format says, or a script not as shellcheck likes.
# The mend for the former: clang-format -i FILE.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t sources < <(git ls-files '*.cpp' '*.h')
clang-format --dry-run --Werror "${sources[@]}"

mapfile -t scripts < <(git ls-files '*.sh' '.ci/run')
shellcheck "${scripts[@]}"

echo "${#sources[@]} sources and ${#scripts[@]} scripts are in style."
