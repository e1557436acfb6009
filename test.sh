#!/bin/sh
# Builds tide with AddressSanitizer and UndefinedBehaviorSanitizer and runs
# every test.  Installs missing Debian packages first when run as root.
set -eu
cd "$(dirname "$0")"
scripts/deps.sh
scripts/build.sh test
cd build/test
ctest --output-on-failure -j2 "$@"
