#!/bin/sh
# Configures (once) and builds one of the build trees under build/.
#   build.sh test      sanitized Debug build with tests (the test command)
#   build.sh run       optimised build of the programs (the run command)
#   build.sh release   Release build with benchmarks
set -eu
cd "$(dirname "$0")/.."
kind=${1:-test}
case "$kind" in
test) opts="-DCMAKE_BUILD_TYPE=Debug -DTIDE_SANITIZE=ON -DTIDE_BUILD_TESTS=ON" ;;
run) opts="-DCMAKE_BUILD_TYPE=RelWithDebInfo -DTIDE_BUILD_TESTS=OFF" ;;
release) opts="-DCMAKE_BUILD_TYPE=Release -DTIDE_BUILD_TESTS=OFF -DTIDE_BUILD_BENCH=ON" ;;
*) echo "usage: $0 test|run|release" >&2; exit 2 ;;
esac
launcher=""
if command -v ccache >/dev/null 2>&1; then
    launcher="-DCMAKE_C_COMPILER_LAUNCHER=ccache -DCMAKE_CXX_COMPILER_LAUNCHER=ccache"
fi
dir=build/$kind
# Configured every time (quick when nothing changed), so that a tree made
# by an older script gets today's options.
# shellcheck disable=SC2086
cmake -S . -B "$dir" -G Ninja -DTIDE_WERROR=ON $opts $launcher >/dev/null
cmake --build "$dir" -- -j2
