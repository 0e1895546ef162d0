#!/usr/bin/env bash
# Starts the real editor on a virtual X display and saves a PNG of its window.
#   scripts/screenshot.sh [out.png] [dpi-scale]
# The optional scale (for example 2) shows the window as on a high-DPI screen.
set -euo pipefail
cd "$(dirname "$0")/.."

out="$(realpath -m "${1:-docs/lorekeep.png}")"
scale="${2:-1}"
LOREKEEP_EXTRA_PACKAGES="xvfb xauth x11-utils imagemagick" scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target lorekeep >/dev/null
mkdir -p "$(dirname "$out")"

export LOREKEEP_BINARY="$PWD/build/release/src/lorekeep" LOREKEEP_SHOT="$out" QT_SCALE_FACTOR="$scale"
xvfb-run -a -s "-screen 0 1280x1024x24" bash -c '
    "$LOREKEEP_BINARY" & pid=$!
    for _ in $(seq 50); do
        id=$(xwininfo -root -tree 2>/dev/null | awk "/\"The Lorekeep by Halvane\"/ {print \$1; exit}")
        [ -n "$id" ] && break
        sleep 0.2
    done
    sleep 1
    import -window "$id" "$LOREKEEP_SHOT"
    kill "$pid"
'
echo "$out"
