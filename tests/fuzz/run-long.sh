#!/bin/sh
# Runs every fuzzer for long: 30 minutes each by default, or the seconds
# given; names after the seconds pick some of them (see run.sh).  The
# corpus grows in build/fuzz/corpus; a crash leaves its input in
# build/fuzz/ as fuzz_<name>-crash-..., fuzz_<name>-timeout-... or
# fuzz_<name>-leak-....
#   run-long.sh [seconds per fuzzer [fuzzer...]]
set -eu
cd "$(dirname "$0")/../.."
secs=${1:-1800}
[ $# -gt 0 ] && shift
exec tests/fuzz/run.sh build/fuzz "$secs" "$@"
