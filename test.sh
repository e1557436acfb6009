#!/bin/sh
# Builds tide with AddressSanitizer and UndefinedBehaviorSanitizer and runs
# every test but the long stress tests (tests/stress/run.sh).  Installs
# missing Debian packages first when run as root.
set -eu
cd "$(dirname "$0")"
scripts/deps.sh
scripts/build.sh test
cd build/test
ctest --output-on-failure -j2 -LE stress "$@"
