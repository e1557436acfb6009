#!/bin/sh
# Builds tide and runs every test: the sanitized test tree (AddressSanitizer
# and UndefinedBehaviorSanitizer) with all its tests but the long stress
# tests, then the other trees the README names (run, Release with the
# benchmarks), each program of which is run once for a moment.  Installs
# missing Debian packages first when run as root.
#   ./test.sh               everything
#   ./test.sh ARGS...       only the test tree, with ARGS for ctest (-R NAME)
set -eu
cd "$(dirname "$0")"
scripts/deps.sh
scripts/build.sh test
if [ $# -gt 0 ]; then
    cd build/test
    exec ctest --output-on-failure -j2 -LE stress "$@"
fi
scripts/build.sh run
scripts/build.sh release
(cd build/test && ctest --output-on-failure -j2 -LE stress)
scripts/smoke.sh
