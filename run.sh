#!/usr/bin/env bash
# Installs what is missing, builds as shipped, and starts the front panel on the virtual
# instrument. Arguments go to panelsim: ./run.sh --help lists its options, keys and scripts.
set -euo pipefail
cd "$(dirname "$0")"

packaging/install-build-packages.sh

if [ ! -x build/release/bin/panelsim ] || [ ! -x build/release/bin/frontpanel ]; then
    echo "==> Building for the first time; this takes a few minutes."
fi
mkdir -p build
log=build/run.log
# The build's own progress is for a person who waits; what it says otherwise is for the log.
if ! cmake --preset release >"$log" 2>&1; then
    cat "$log" >&2
    echo "run.sh: cannot configure the build; the reason stands above." >&2
    exit 1
fi
if ! cmake --build --preset release --target panelsim frontpanel; then
    echo "run.sh: the build failed; the reason stands above." >&2
    exit 1
fi

if [ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}${QT_QPA_PLATFORM:-}" ]; then
    cat <<'EOF'
==> There is no display here, so the instrument runs without a window.
    To look at it, let Qt serve the window to any VNC viewer at port 5900 of this machine (without
    a password, to whoever can reach that port):

        QT_QPA_PLATFORM=vnc ./run.sh

EOF
fi
exec build/release/bin/panelsim "$@"
