#!/bin/sh
# Runs the long stress tests, which the default test run leaves out.
#   tests/stress/run.sh          in the sanitized test tree (build/test)
#   tests/stress/run.sh tsan     in a ThreadSanitizer tree of their own (build/tsan)
# TIDE_STRESS_SECONDS sets the length of each run (default 10).
set -eu
cd "$(dirname "$0")/../.."
if [ "${1:-}" = tsan ]; then
    dir=build/tsan
    if [ ! -f "$dir/build.ninja" ]; then
        cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTIDE_TSAN=ON -DTIDE_BUILD_TESTS=ON \
            -DTIDE_BUILD_EXAMPLES=OFF >/dev/null
    fi
    cmake --build "$dir" --target tide_l2_stress -- -j2
    # Reports of the race detector fail the run.
    TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" "$dir/tests/tide_l2_stress"
else
    scripts/build.sh test
    cd build/test
    ctest --output-on-failure -L stress
fi
