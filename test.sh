#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: style, unit tests under the sanitizers,
# every test on the release build, system tests on the virtual instrument, static analysis.
#
#   ./test.sh          all of it
#   ./test.sh --quick  without static analysis
set -euo pipefail
cd "$(dirname "$0")"

usage() { sed -n '2,6s/^# \{0,1\}//p' "$0"; }

analysis=yes
for argument in "$@"; do
    case "$argument" in
        --quick) analysis=no ;;
        --help | -h) usage; exit 0 ;;
        *) echo "test.sh: unknown argument $argument" >&2; usage >&2; exit 2 ;;
    esac
done

stage=0
stages=$([ "$analysis" = yes ] && echo 6 || echo 5)
announce() {
    stage=$((stage + 1))
    printf '\n==> [%d/%d] %s\n' "$stage" "$stages" "$*"
}

packaging/install-build-packages.sh

announce "Style of the sources"
packaging/check-style.sh

announce "Building with the sanitizers"
cmake --preset debug
cmake --build --preset debug

announce "Building as shipped"
cmake --preset release
cmake --build --preset release

announce "Unit tests under AddressSanitizer and UndefinedBehaviorSanitizer"
ctest --preset unit --parallel "$(nproc)"

announce "Every test on the release build"
ctest --preset release --parallel "$(nproc)"

if [ "$analysis" = yes ]; then
    announce "Static analysis"
    packaging/check-analysis.sh
fi

printf '\nAll tests passed.\n'
