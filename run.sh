#!/usr/bin/env bash
# Installs what is missing, builds as shipped, and starts the front panel on the virtual
# instrument. Arguments go to panelsim: ./run.sh --help lists its options, keys and scripts.
#
#   ./run.sh --board arm64 ...   shows the program as it is built for a board with that processor,
#                                in an emulator of it
set -euo pipefail
cd "$(dirname "$0")"

preset=release
if [ "${1:-}" = --board ]; then
    preset=${2:?"run.sh: --board takes the architecture: arm64"}
    shift 2
fi
packaging/install-build-packages.sh
if [ "$preset" != release ]; then
    packaging/install-build-packages.sh --board "$preset"
    packaging/install-build-packages.sh --emulation "$preset"
fi

application=build/$preset/bin/frontpanel
if [ ! -x build/release/bin/panelsim ] || [ ! -x "$application" ]; then
    echo "==> Building for the first time; this takes a few minutes."
fi
mkdir -p build
log=build/run.log
# The build's own progress is for a person who waits; what it says otherwise is for the log.
build() { # preset target...
    local preset=$1
    shift
    if ! cmake --preset "$preset" >"$log" 2>&1; then
        cat "$log" >&2
        echo "run.sh: cannot configure the build; the reason stands above." >&2
        exit 1
    fi
    if ! cmake --build --preset "$preset" --target "$@"; then
        echo "run.sh: the build failed; the reason stands above." >&2
        exit 1
    fi
}
if [ "$preset" = release ]; then
    build release panelsim frontpanel measurementserver servercheck
else
    build release panelsim measurementserver servercheck
    build "$preset" frontpanel
    packaging/fetch-preload.sh "$preset" "build/$preset/bin"
fi

shared=no
for argument in "$@"; do
    [[ $argument != --remote* ]] || shared=yes
done
if [ "$shared" = no ] && [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}${QT_QPA_PLATFORM:-}" ]; then
    cat <<'EOF'
==> There is no display here, so the instrument runs without a window.
    To use the panel from a browser or a VNC viewer, for this machine's own only:

        ./run.sh --remote

    and from another one, first reach its ports through ssh, then open http://127.0.0.1:5800/ there:

        ssh -L 5800:127.0.0.1:5800 -L 5900:127.0.0.1:5900 THIS-MACHINE

EOF
fi
exec build/release/bin/panelsim --app "$application" "$@"
