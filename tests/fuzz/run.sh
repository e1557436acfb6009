#!/bin/sh
# Builds the fuzzers of the command language and the wire format with clang (once) and runs
# each for a number of seconds; fails on the first crash or leak.  Each run
# draws its inputs from a seed of its own, which a failure names; with
# TIDE_TEST_SEED set, every fuzzer takes that one.  The input that failed
# is kept as crash-*, leak-* or timeout-* in the build dir.
#   run.sh [build dir [seconds per fuzzer]]
set -eu
src=$(cd "$(dirname "$0")" && pwd)
dir=${1:-$src/../../build/fuzz}
secs=${2:-10}
if [ ! -f "$dir/build.ninja" ]; then
    launcher=""
    if command -v ccache >/dev/null 2>&1; then
        launcher="-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"
    fi
    # shellcheck disable=SC2086
    cmake -S "$src" -B "$dir" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo $launcher >/dev/null
fi
cmake --build "$dir" -- -j2
for name in parse grammar msg; do
    corpus="$dir/corpus/$name"
    mkdir -p "$corpus"
    echo "== fuzz_cli_$name: ${secs} s"
    log="$dir/fuzz_cli_$name.log"
    seed=${TIDE_TEST_SEED:+-seed=$TIDE_TEST_SEED}
    # shellcheck disable=SC2086
    if ! "$dir/fuzz_cli_$name" -max_total_time="$secs" -max_len=1024 -timeout=10 -rss_limit_mb=2048 $seed \
        -artifact_prefix="$dir/" -print_final_stats=1 "$corpus" "$src/seeds/$name" >"$log" 2>&1; then
        tail -n 60 "$log"
        used=$(sed -n 's/^INFO: Seed: \([0-9]*\).*/\1/p' "$log" | head -n 1)
        echo "fuzz_cli_$name failed with seed $used: TIDE_TEST_SEED=$used draws the same inputs from the same"
        echo "corpus ($corpus); the failing input is kept in $dir/"
        exit 1
    fi
    grep '^stat::\(number_of_executed_units\|new_units_added\)' "$log"
done
