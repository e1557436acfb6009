#!/bin/sh
# Runs the fuzzers of the command language for long: 30 minutes each by
# default.  The corpus grows in build/fuzz/corpus; a crash leaves its input
# in build/fuzz/.
#   run-long.sh [seconds per fuzzer]
set -eu
cd "$(dirname "$0")/../.."
exec tests/fuzz/run.sh build/fuzz "${1:-1800}"
