#!/bin/sh
# tided brings chips up, binds ports to TAP devices, starts its shell
# server, stays up, and tears everything down on SIGINT and SIGTERM with
# exit code 0; bad options give exit code 2.
#   tided_smoke.sh <tided>
set -eu
tided=$1
# Everything of this run in a directory of its own, the shell's socket too:
# runs of other build trees may go on at the same time, and a tided of the
# default socket would take another one's place.
dir=$(mktemp -d "${TMPDIR:-/tmp}/tided-smoke.XXXXXX")
out=$dir/out
cfg=$dir/chip_config.txt
sock=$dir/shell.sock
pid=
cleanup() {
    if [ -n "$pid" ]; then
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    fi
    rm -rf "$dir"
}
trap cleanup EXIT
trap 'exit 1' INT TERM

run() { # run <signal> <args...>
    sig=$1
    shift
    : >"$out"
    "$tided" "$@" >"$out" 2>&1 &
    pid=$!
    i=0
    until grep -q "running" "$out"; do
        i=$((i + 1))
        if [ $i -gt 1200 ] || ! kill -0 $pid 2>/dev/null; then
            echo "tided did not come up:"; cat "$out"; exit 1
        fi
        sleep 0.05
    done
    kill -s "$sig" $pid
    rc=0
    wait $pid || rc=$?
    pid=
    if [ $rc -ne 0 ]; then
        echo "tided exited with $rc after SIG$sig:"; cat "$out"; exit 1
    fi
}

run INT --socket "$sock"
grep -q "chip 0 (atolreef) is up" "$out"
grep -q "shell server on unix:$sock" "$out"
grep -q "SIGINT, shutting down" "$out"
grep -q "tided: stopped" "$out"
[ ! -e "$sock" ] || { echo "the socket was left behind"; exit 1; }

run TERM --chips 4 --socket "$sock"
for c in 0 1 2 3; do grep -q "chip $c (atolreef) is up" "$out"; done
grep -q "SIGTERM, shutting down" "$out"

# The configuration file: a setting for chip 1 only.
printf 'debug_level_init=3\nchip_hw_init.chip1=0\n' >"$cfg"
run INT --chips 2 --config "$cfg" --socket "$sock"
[ "$(grep -c 'no hw init' "$out")" -eq 1 ] || { echo "chip_hw_init.chip1 not applied:"; cat "$out"; exit 1; }
grep -q "SOFT-INIT:          base" "$out"
rc=0
"$tided" --config /nonexistent/chip_config.txt >"$out" 2>&1 || rc=$?
[ $rc -eq 2 ] || { echo "a missing --config gave $rc"; exit 1; }

rc=0
"$tided" --chips 5 >"$out" 2>&1 || rc=$?
[ $rc -eq 2 ] || { echo "--chips 5 gave $rc"; exit 1; }
rc=0
"$tided" --socket "" >"$out" 2>&1 || rc=$?
[ $rc -eq 2 ] || { echo "--socket '' gave $rc"; exit 1; }
rc=0
"$tided" --bogus >"$out" 2>&1 || rc=$?
[ $rc -eq 2 ] || { echo "--bogus gave $rc"; exit 1; }
# Bad TAP options: a port out of range, names empty or too long, a port
# named twice.
for bad in "--tap 28=x" "--tap 1=" "--tap x=tap0" "--tap 1=sixteen-chars-xx" "--tap-all fourteen-chars" \
    "--tap 1=a --tap 1=b" "--tap 3=a --tap-all b"; do
    rc=0
    # shellcheck disable=SC2086
    "$tided" $bad >"$out" 2>&1 || rc=$?
    [ $rc -eq 2 ] || { echo "$bad gave $rc"; cat "$out"; exit 1; }
done

# Ports on TAP devices, where the machine lets us make them: bound while
# tided runs, gone after it.
if [ "$(id -u)" = 0 ] && [ -c /dev/net/tun ]; then
    tap=tsmk$$
    run INT --socket "$sock" --tap 1="${tap}a" --tap 2="${tap}b"
    grep -q "port 1 on TAP ${tap}a (created)" "$out"
    grep -q "port 2 on TAP ${tap}b (created)" "$out"
    run TERM --socket "$sock" --tap-all "${tap}p"
    grep -q "port 0 on TAP ${tap}p0 (created)" "$out"
    grep -q "port 27 on TAP ${tap}p27 (created)" "$out"
    if ip link show "${tap}a" >/dev/null 2>&1 || ip link show "${tap}p27" >/dev/null 2>&1; then
        echo "a TAP was left behind"; exit 1
    fi
    rc=0
    "$tided" --socket "$sock" --tap 1=lo >"$out" 2>&1 || rc=$?
    [ $rc -eq 1 ] || { echo "--tap 1=lo gave $rc"; cat "$out"; exit 1; }
    grep -q "port 1 cannot be bound to lo: the interface name is in use" "$out"
fi

"$tided" --help | grep -q "usage: tided"
echo "tided smoke: ok"
