#!/usr/bin/env bash
# Installs the Debian 12 packages that building, running and testing Lorekeep
# need. Only missing packages are installed; when nothing is missing, apt is
# not touched at all.
set -euo pipefail

packages=(
    build-essential cmake ninja-build        # compiler and build tools
    qt6-base-dev libgl-dev                   # Qt 6 Widgets
    libqt6svg6                               # draws the SVG window icon
    libgtest-dev libgmock-dev                # unit tests
    libbenchmark-dev libxtst-dev             # benchmarks (XTest types into the real window)
    xvfb xauth                               # the real window on a virtual X display
    libgettextpo-dev gettext                 # lorekeep-tool's PO files, and msgfmt to check them
    pkg-config libenchant-2-dev              # spelling (Enchant) ...
    hunspell-en-us hunspell-fr hunspell-de-de hunspell-it  # ... and its dictionaries
    desktop-file-utils appstream             # check the desktop entry and the metainfo
)
# Tools that only some scripts need (the screenshot, fuzzing) ask for more.
read -r -a extra <<< "${LOREKEEP_EXTRA_PACKAGES:-}"
packages+=("${extra[@]}")

missing=()
for package in "${packages[@]}"; do
    if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != "installed" ]; then
        missing+=("$package")
    fi
done

if [ "${#missing[@]}" -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
fi
"${as_root[@]}" apt-get update
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y --no-install-recommends "${missing[@]}"
