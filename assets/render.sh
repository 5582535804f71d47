#!/usr/bin/env bash
# Renders the drawings (*.svg) to the pictures (*.png) that the build packs into the program.
# Run it after editing a drawing and commit both. Needs librsvg2-bin and fonts-roboto-unhinted;
# the build itself does not, so that it gives the same bytes on every machine.
set -euo pipefail
cd "$(dirname "$0")"
command -v rsvg-convert >/dev/null || {
    echo "render.sh: rsvg-convert is missing: apt-get install librsvg2-bin fonts-roboto-unhinted" >&2
    exit 1
}
for drawing in *.svg; do
    rsvg-convert "$drawing" --output "${drawing%.svg}.png"
    echo "${drawing%.svg}.png"
done
