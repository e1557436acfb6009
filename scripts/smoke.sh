#!/bin/sh
# Runs every program of the build trees that the README names once, for a
# moment, so that none of the README's commands breaks unseen: the main job
# (./run.sh with tidesh answering a command), tided alone, the example, every
# benchmark of bench/run (none may report an error), and the long-test
# runners.  No figure is judged.
# The trees must be built (./test.sh builds them first).
set -eu
cd "$(dirname "$0")/.."
step() { echo "== smoke: $*"; }

step "./run.sh, the main job"
out=$(printf 'common\nshow chip\nquit\n' | ./run.sh 2>&1) || { echo "$out"; exit 1; }
echo "$out" | grep -q "chip name    : atolreef" || { echo "$out"; exit 1; }

step "tided of the run tree"
tests/tided_smoke.sh build/run/app/tided >/dev/null

step "the example of the run tree"
build/run/examples/tide_hello 2 >/dev/null

step "bench/run"
# A benchmark that cannot do its work says "ERROR OCCURRED" and still exits 0.
bench_out=$(mktemp)
trap 'rm -f "$bench_out"' EXIT
bench/run --benchmark_min_time=0.001 >"$bench_out" 2>&1 || { tail -40 "$bench_out"; exit 1; }
if grep "ERROR OCCURRED" "$bench_out"; then exit 1; fi

step "tests/stress/run.sh"
TIDE_STRESS_SECONDS=1 tests/stress/run.sh >/dev/null
TIDE_STRESS_SECONDS=1 tests/stress/run.sh tsan >/dev/null
echo "== smoke: ok"
