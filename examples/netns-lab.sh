#!/bin/sh
# Real hosts on the simulated switch, in one command.
#
# Starts tided with ports 1 to N of its chip (VLAN 1) bound to TAP devices,
# moves each TAP into a network namespace of its own, gives it the IPv6
# link-local address fe80::<port> (no routable address: nothing leaves the
# namespaces), pings from every host to the next across the switch, and
# shows what the chip learned and what its ports carried.  Everything it
# made goes when it ends, also on failure or Ctrl-C.
#
#   examples/netns-lab.sh [--hosts 2|3] [--keep]
#
# --keep leaves the lab up and opens tidesh on tided, so that you can ping
# by hand (ip netns exec <namespace> ping -6 fe80::2%<tap>) and look at the
# switch; leaving tidesh takes the lab down.  Needs root, /dev/net/tun, ip
# and ping.  TIDED and TIDESH name the programs to use; by default the
# script builds build/run.  Exit codes: 0 the pings went through, 1 they
# did not, 77 the machine cannot run the lab.
set -eu
cd "$(dirname "$0")/.."

hosts=3
keep=0
while [ $# -gt 0 ]; do
    case "$1" in
    --hosts) hosts=${2:-}; shift 2 ;;
    --keep) keep=1; shift ;;
    *) echo "usage: $0 [--hosts 2|3] [--keep]" >&2; exit 2 ;;
    esac
done
case "$hosts" in
2 | 3) ;;
*) echo "$0: --hosts takes 2 or 3" >&2; exit 2 ;;
esac

cannot() {
    echo "netns-lab: $*" >&2
    exit 77
}
[ "$(id -u)" = 0 ] || cannot "needs root (network namespaces and TAP devices)"
[ -c /dev/net/tun ] || cannot "/dev/net/tun is missing (no TUN/TAP driver)"
command -v ip >/dev/null 2>&1 || cannot "needs ip (iproute2)"
command -v ping >/dev/null 2>&1 || cannot "needs ping (iputils-ping)"

if [ -z "${TIDED:-}" ]; then
    scripts/deps.sh
    scripts/build.sh run >/dev/null
fi
tided=${TIDED:-build/run/app/tided}
tidesh=${TIDESH:-build/run/tools/tidesh}

# Names of this run: its pid keeps them apart from every other.
id=$$
ns() { echo "tidelab$id-h$1"; }
tap() { echo "tl${id}h$1"; }
dir=$(mktemp -d "${TMPDIR:-/tmp}/netns-lab.XXXXXX")
pid=""

cleanup() {
    if [ -n "$pid" ]; then
        kill "$pid" 2>/dev/null || true
        wait "$pid" 2>/dev/null || true
    fi
    h=1
    while [ $h -le "$hosts" ]; do
        ip netns del "$(ns $h)" 2>/dev/null || true
        h=$((h + 1))
    done
    rm -rf "$dir"
}
trap cleanup EXIT
trap 'exit 1' INT TERM

h=1
while [ $h -le "$hosts" ]; do
    ip netns add "$(ns $h)" || cannot "network namespaces cannot be made here"
    set -- "$@" --tap "$h=$(tap $h)"
    h=$((h + 1))
done

echo "== tided with ports 1 to $hosts on TAP devices"
"$tided" --socket "$dir/shell.sock" "$@" >"$dir/tided.log" 2>&1 &
pid=$!
i=0
until grep -q "running" "$dir/tided.log"; do
    if ! kill -0 "$pid" 2>/dev/null || [ $i -ge 300 ]; then
        cat "$dir/tided.log"
        echo "netns-lab: tided did not come up" >&2
        exit 1
    fi
    i=$((i + 1))
    sleep 0.1
done
grep "on TAP" "$dir/tided.log"

echo "== each TAP into its namespace, with fe80::<port>"
h=1
while [ $h -le "$hosts" ]; do
    n=$(ns $h)
    t=$(tap $h)
    ip link set dev "$t" netns "$n"
    ip -n "$n" link set dev lo up
    ip -n "$n" link set dev "$t" up
    # No duplicate address detection: the address is usable at once.
    ip -n "$n" addr add "fe80::$h/64" dev "$t" nodad
    echo "$n: $t fe80::$h"
    h=$((h + 1))
done

status=0
h=1
while [ $h -le "$hosts" ]; do
    to=$((h % hosts + 1))
    echo "== host $h pings host $to across the switch"
    ip netns exec "$(ns $h)" ping -6 -c 3 -i 0.2 -w 10 "fe80::$to%$(tap $h)" || status=1
    h=$((h + 1))
done

echo "== the chip's MAC table and its ports"
"$tidesh" --socket "$dir/shell.sock" -c l2 -c "show l2 mac-info vid 1" -c sim -c "show tap" || status=1

if [ $keep = 1 ]; then
    echo "== the lab is up; ping by hand, for example:"
    echo "   ip netns exec $(ns 1) ping -6 fe80::2%$(tap 1)"
    echo "tidesh: quit or Ctrl-D takes the lab down"
    trap '' INT
    "$tidesh" --socket "$dir/shell.sock" || true
fi
if [ $status = 0 ]; then
    echo "netns-lab: every host reached the next across the simulated switch"
else
    echo "netns-lab: a ping failed (tided's log: see above)" >&2
    cat "$dir/tided.log" >&2
fi
exit $status
