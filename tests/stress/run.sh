#!/bin/sh
# Runs the long stress tests, which the default test run leaves out.
#   tests/stress/run.sh          in the sanitized test tree (build/test)
#   tests/stress/run.sh tsan     under ThreadSanitizer, in the tree of tests/tsan (build/tsan)
# TIDE_STRESS_SECONDS sets the length of each run (default 10).
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
cd "$root"
if [ "${1:-}" = tsan ]; then
    dir=build/tsan
    if [ ! -f "$dir/build.ninja" ]; then
        launcher=""
        if command -v ccache >/dev/null 2>&1; then
            launcher="-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache"
        fi
        # shellcheck disable=SC2086
        cmake -S tests/tsan -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $launcher >/dev/null
    fi
    cmake --build "$dir" --target tide_tsan_l2_stress -- -j2
    # A report of the race detector fails the run.
    TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" "$dir/tide_tsan_l2_stress"
else
    scripts/build.sh test
    cd build/test
    ctest --output-on-failure -L stress
fi
