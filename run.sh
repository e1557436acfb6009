#!/bin/sh
# Starts tided, the reference application, on simulated atolreef chips: it
# brings them up and keeps them up until Ctrl-C.  Installs missing Debian
# packages first when run as root.
#   ./run.sh [--chips N] [--config FILE]
set -eu
cd "$(dirname "$0")"
scripts/deps.sh
scripts/build.sh run >/dev/null
exec build/run/app/tided "$@"
