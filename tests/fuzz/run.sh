#!/bin/sh
# Builds the fuzzers with clang (once; later runs rebuild what changed) and
# runs each for a number of seconds on its corpus and seeds; fails on the
# first crash, leak or broken invariant, and leaves the input that did it
# in the build directory.
#   run.sh [build dir [seconds per fuzzer [fuzzer...]]]
# The fuzzers are named without their "fuzz_" prefix: cli_parse cli_grammar
# cli_msg property l2_msg hal_cmd (all of them by default).  Each prints its
# random seed; TIDE_FUZZ_SEED=<seed> (or TIDE_TEST_SEED) runs with that one again.
set -eu
src=$(cd "$(dirname "$0")" && pwd)
dir=${1:-$src/../../build/fuzz}
secs=${2:-10}
[ $# -gt 2 ] && shift 2 || set --
mkdir -p "$dir"
dir=$(cd "$dir" && pwd)
if [ ! -f "$dir/build.ninja" ]; then
    launcher=""
    if command -v ccache >/dev/null 2>&1; then
        launcher="-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache"
    fi
    # shellcheck disable=SC2086
    cmake -S "$src" -B "$dir" -G Ninja -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
        -DCMAKE_BUILD_TYPE=RelWithDebInfo $launcher >/dev/null
fi
cmake --build "$dir" -- -j2

# Each fuzzer with its seed directory and its longest input.
table="cli_parse:parse:1024 cli_grammar:grammar:1024 cli_msg:msg:1024 property:property:4096
l2_msg:l2_msg:2048 hal_cmd:hal_cmd:2048"
for entry in $table; do
    name=${entry%%:*}
    rest=${entry#*:}
    seeds=${rest%%:*}
    max_len=${rest#*:}
    if [ $# -gt 0 ] && ! printf ' %s ' "$*" | grep -q " $name "; then
        continue
    fi
    corpus="$dir/corpus/$seeds"
    mkdir -p "$corpus"
    echo "== fuzz_$name: ${secs} s"
    log="$dir/fuzz_$name.log"
    seed=${TIDE_FUZZ_SEED:-${TIDE_TEST_SEED:-}}
    if ! "$dir/fuzz_$name" -max_total_time="$secs" -max_len="$max_len" -timeout=10 -rss_limit_mb=2048 \
        ${seed:+-seed="$seed"} -artifact_prefix="$dir/fuzz_$name-" -print_final_stats=1 \
        "$corpus" "$src/seeds/$seeds" >"$log" 2>&1; then
        tail -n 60 "$log"
        used=$(sed -n 's/^INFO: Seed: \([0-9]*\).*/\1/p' "$log" | head -n 1)
        echo "fuzz_$name failed with seed $used: TIDE_FUZZ_SEED=$used draws the same inputs from the same"
        echo "corpus ($corpus); the failing input is kept in $dir/"
        exit 1
    fi
    grep -m1 '^INFO: Seed:' "$log" || true
    grep '^stat::\(number_of_executed_units\|new_units_added\)' "$log"
done
