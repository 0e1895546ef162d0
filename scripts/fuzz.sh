#!/usr/bin/env bash
# Builds the libFuzzer targets (clang, AddressSanitizer and UBSan) and runs
# each for the given number of seconds, starting from the seed corpus.
#   scripts/fuzz.sh [seconds-per-target] [target ...]
# Targets: reader renderer commands roundtrip po_import html (all by default). New inputs go
# to a scratch corpus, never into the repository; a crash leaves its input
# under build/fuzz/findings/ and makes the script fail.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-30}"
shift || true
targets=("$@")
if [ "${#targets[@]}" -eq 0 ]; then
    targets=(reader renderer commands roundtrip po_import html)
fi

LOREKEEP_EXTRA_PACKAGES="clang libclang-rt-14-dev" scripts/install-deps.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
findings="$PWD/build/fuzz/findings"
mkdir -p "$findings"

status=0
for target in "${targets[@]}"; do
    mkdir -p "$scratch/$target"
    echo "== fuzz_$target for ${seconds}s"
    leaks=1
    # libgettextpo keeps some of what it allocates on every read: not ours.
    [ "$target" = po_import ] && leaks=0
    if ! ASAN_OPTIONS="detect_leaks=$leaks" build/fuzz/fuzz/"fuzz_$target" \
        -detect_leaks="$leaks" -max_total_time="$seconds" \
        -print_final_stats=1 \
        -artifact_prefix="$findings/$target-" "$scratch/$target" "fuzz/corpus/$target" \
        >"$scratch/$target.log" 2>&1; then
        status=1
        tail -40 "$scratch/$target.log"
    fi
    grep -E 'stat::number_of_executed_units|Done [0-9]+ runs' "$scratch/$target.log" || true
done
exit "$status"
