#!/usr/bin/env bash
# Builds the release editor and a Debian package of it (build/release/package/).
# Install it with:  sudo apt-get install ./build/release/package/lorekeep_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."

LOREKEEP_EXTRA_PACKAGES="dpkg-dev file" scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target lorekeep lorekeep_compressed_docs
cpack --config build/release/CPackConfig.cmake -B build/release/package
ls build/release/package/*.deb
