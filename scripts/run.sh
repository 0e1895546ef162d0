#!/usr/bin/env bash
# Installs what is missing, builds the editor (release) and starts it.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake --preset release
cmake --build --preset release --target lorekeep

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    echo "No display found: start Lorekeep from a desktop session (or under xvfb-run)." >&2
    exit 1
fi
exec build/release/src/lorekeep "$@"
