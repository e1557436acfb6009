#!/bin/sh
# Starts tided, the reference application, on simulated atolreef chips with
# its shell server, and opens the shell client tidesh on it.  Leaving
# tidesh (quit, or Ctrl-D) stops tided.  Installs missing Debian packages
# first when run as root.
#   ./run.sh [--chips N] [--config FILE]
set -eu
cd "$(dirname "$0")"
scripts/deps.sh
scripts/build.sh run >/dev/null
dir=$(mktemp -d "${TMPDIR:-/tmp}/tided.XXXXXX")
sock=$dir/shell.sock
log=$dir/tided.log
build/run/app/tided --socket "$sock" "$@" >"$log" 2>&1 &
pid=$!
stop() {
    kill "$pid" 2>/dev/null || true
    wait "$pid" 2>/dev/null || true
    rm -rf "$dir"
}
trap stop EXIT
i=0
until [ -S "$sock" ]; do
    if ! kill -0 "$pid" 2>/dev/null || [ $i -ge 600 ]; then
        cat "$log"
        trap - EXIT
        rc=0
        wait "$pid" || rc=$?
        rm -rf "$dir"
        exit $((rc == 0 ? 1 : rc))
    fi
    i=$((i + 1))
    sleep 0.1
done
cat "$log"
echo "tidesh: type ? for help, Tab to complete, quit or Ctrl-D to leave (tided's log: $log)"
# Ctrl-C belongs to tidesh, which clears its line with it.
trap '' INT
rc=0
build/run/tools/tidesh --socket "$sock" || rc=$?
exit $rc
