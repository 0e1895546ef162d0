#!/usr/bin/env bash
# Builds everything with AddressSanitizer and UndefinedBehaviorSanitizer and
# runs the whole test suite once under them.
set -euo pipefail
cd "$(dirname "$0")/.."

# libgettextpo's own leaks are let through by the names in their stacks;
# some of those stacks pass through the C library, whose frames only its
# debugging symbols name (without them the suppressions miss, and the PO
# tests fail on leaks that are not ours).
LOREKEEP_EXTRA_PACKAGES="libc6-dbg" scripts/install-deps.sh
cmake --preset asan
cmake --build --preset asan
ctest --preset asan
