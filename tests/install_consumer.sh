#!/bin/sh
# Installs the SDK into a temporary prefix and builds the example, a C
# program, outside the tree against it: once with pkg-config, once with
# find_package(tide_sdk).  Both binaries must run on the chip model.
#   install_consumer.sh <build dir> <example source> <ON if sanitized>
set -eu
build=$1
src=$2
sanitize=${3:-OFF}
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

cmake --install "$build" --prefix "$tmp/prefix" >/dev/null
flags=""
if [ "$sanitize" = "ON" ]; then
    flags="-fsanitize=address,undefined"
fi

# Copy the installation elsewhere: it must not depend on where it was put.
mv "$tmp/prefix" "$tmp/moved"
pcdir=$(dirname "$(find "$tmp/moved" -name tide_sdk.pc)")
libdir=$(dirname "$pcdir")

# pkg-config, shared libraries.
cc $flags -o "$tmp/hello_pc" "$src" $(PKG_CONFIG_PATH="$pcdir" pkg-config --cflags --libs tide_sim tide_sdk)
LD_LIBRARY_PATH="$libdir" "$tmp/hello_pc" 1 0x200 0xcafef00d

# find_package, static libraries.
mkdir "$tmp/proj"
cp "$src" "$tmp/proj/hello.c"
cat > "$tmp/proj/CMakeLists.txt" <<'CMAKE'
cmake_minimum_required(VERSION 3.25)
project(consumer C)
find_package(tide_sdk 0.1 REQUIRED)
add_executable(hello hello.c)
target_link_libraries(hello PRIVATE tide::sim_static tide::sdk_static)
CMAKE
cmake -S "$tmp/proj" -B "$tmp/pb" -G Ninja -DCMAKE_PREFIX_PATH="$tmp/moved" \
    -DCMAKE_C_FLAGS="$flags" -DCMAKE_EXE_LINKER_FLAGS="$flags"
cmake --build "$tmp/pb"
"$tmp/pb/hello" 2 0x300 0x0badcafe
echo "install consumer: ok"
