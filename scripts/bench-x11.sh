#!/usr/bin/env bash
# Measures the editor as a user meets it: the release build on a virtual X
# display (Xvfb, 24-bit, 1280 x 1024), keys typed through XTest, the process's
# CPU time and peak memory read from the kernel. Arguments go to the
# benchmark program (for example --benchmark_filter=Startup).
set -euo pipefail
cd "$(dirname "$0")/.."

LOREKEEP_EXTRA_PACKAGES="xvfb xauth" scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target x11_bench >/dev/null
xvfb-run -a -s "-screen 0 1280x1024x24" build/release/bench/x11_bench "$@"
