#!/bin/sh
# Installs the Debian packages that building and testing tide needs, when
# they are missing.  As root it installs them with apt-get; otherwise it
# names them and fails.
set -eu
need=""
have_cmd() { command -v "$1" >/dev/null 2>&1; }
have_cmd cmake || need="$need cmake"
have_cmd ninja || need="$need ninja-build"
have_cmd g++ || need="$need g++"
have_cmd ccache || need="$need ccache"
have_cmd pkg-config || need="$need pkg-config"
have_cmd nm || need="$need binutils"
have_cmd python3 || need="$need python3"
[ -f /usr/include/gtest/gtest.h ] || need="$need libgtest-dev"
[ -f /usr/include/gmock/gmock.h ] || need="$need libgmock-dev"
[ -f /usr/include/benchmark/benchmark.h ] || need="$need libbenchmark-dev"
# Line editing of the shell client tidesh.
[ -f /usr/include/histedit.h ] || need="$need libedit-dev"
# A standard reader of the chip model's capture files, for their test.
have_cmd tshark || need="$need tshark"
# ip and ping: the namespace lab (examples/netns-lab.sh) and the tests of
# the model's TAP ports, which make namespaces and interfaces.
have_cmd ip || need="$need iproute2"
have_cmd ping || need="$need iputils-ping"
# The fuzzers of the test suite: clang and its libFuzzer runtime.
have_cmd clang++ || need="$need clang"
ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-*.a >/dev/null 2>&1 || need="$need libclang-rt-14-dev"
if [ -z "$need" ]; then
    exit 0
fi
if [ "$(id -u)" = "0" ]; then
    echo "installing:$need"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    # shellcheck disable=SC2086
    apt-get install -y -qq --no-install-recommends $need
else
    echo "missing packages:$need" >&2
    echo "install them as root: apt-get install$need" >&2
    exit 1
fi
