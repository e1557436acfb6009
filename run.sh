#!/bin/sh
# Brings up simulated atolreef chips and shows the SDK at work on them.
# Installs missing Debian packages first when run as root.
#   ./run.sh [chips [addr [value]]]
set -eu
cd "$(dirname "$0")"
scripts/deps.sh
scripts/build.sh run >/dev/null
exec build/run/examples/tide_hello "$@"
