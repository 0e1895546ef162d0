#!/usr/bin/env bash
# Installs what is missing, builds everything and runs the whole test suite.
# The core is also built and tested on its own, without Qt, to keep it that way.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

cmake --preset default
cmake --build --preset default
# The window's tests here; the core's run once, below, in the build without Qt.
ctest --preset default --label-exclude core

cmake --preset core
cmake --build --preset core
ctest --preset core
