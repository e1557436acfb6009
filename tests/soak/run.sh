#!/bin/sh
# Runs the default test suite again and again while the machine is busy:
# a busy loop on every core competes with the tests, and ctest repeats each
# test until it fails, N times at most (default 20).  A test that fails
# here depends on the machine's speed or on the order of its threads.
#   tests/soak/run.sh [N] [ctest arguments...]   e.g. tests/soak/run.sh 5 -R CliServer
# The load stops with the run, also on Ctrl-C.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
cd "$root"
repeat=20
if [ $# -gt 0 ]; then
    repeat=$1
    shift
fi
case "$repeat" in
'' | *[!0-9]*) echo "usage: $0 [N] [ctest arguments...]" >&2; exit 2 ;;
esac
scripts/build.sh test

load=""
stop_load() {
    for p in $load; do
        kill "$p" 2>/dev/null || true
    done
    for p in $load; do
        wait "$p" 2>/dev/null || true
    done
    load=""
}
trap stop_load EXIT
trap 'stop_load; exit 130' INT
trap 'stop_load; exit 143' TERM

cores=$(nproc 2>/dev/null || echo 2)
i=0
while [ "$i" -lt "$cores" ]; do
    sh -c 'while :; do :; done' &
    load="$load $!"
    i=$((i + 1))
done
echo "== soak: $cores busy loops, each test up to $repeat times"
start=$(date +%s)
rc=0
(cd build/test && ctest --output-on-failure -j2 -LE stress --repeat "until-fail:$repeat" "$@") || rc=$?
stop_load
echo "== soak: $(( $(date +%s) - start )) s, ctest status $rc"
exit $rc
