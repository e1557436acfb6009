#!/bin/sh
# Builds the shell server's tests, those of the model's TAP ports and the
# interrupt thread's tear-down and the counter thread with ThreadSanitizer (once; later runs
# rebuild what changed) and runs each case in a process of its own; fails
# on the first race report.
#   run.sh [build dir]
set -eu
src=$(cd "$(dirname "$0")" && pwd)
dir=${1:-$src/../../build/tsan}
if [ ! -f "$dir/build.ninja" ]; then
    launcher=""
    if command -v ccache >/dev/null 2>&1; then
        launcher="-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache"
    fi
    # shellcheck disable=SC2086
    cmake -S "$src" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $launcher >/dev/null
fi
cmake --build "$dir" --target tide_tsan_tests tide_tsan_tap tide_tsan_intr tide_tsan_counter -- -j2
export TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1"
for prog in "$dir/tide_tsan_tests" "$dir/tide_tsan_tap" "$dir/tide_tsan_intr" "$dir/tide_tsan_counter"; do
    for t in $("$prog" --gtest_list_tests | awk '/^[^ ]/ {s=$1} /^  / {print s $1}'); do
        "$prog" --gtest_filter="$t" --gtest_brief=1 >"$dir/last.log" 2>&1 || { cat "$dir/last.log"; exit 1; }
        echo "ok $t"
    done
done
