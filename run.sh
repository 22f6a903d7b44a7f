#!/usr/bin/env bash
# Builds Tarvex and runs it with the arguments given; with none, a demonstration session.
#   ./run.sh                          a whole field session on the simulated receiver
#   ./run.sh --help                   the commands
#   ./run.sh points site.crd          any command
set -eu

root=$(cd "$(dirname "$0")" && pwd)
"$root/scripts/packages.sh" run
"$root/scripts/build.sh" release
if [ $# -eq 0 ]; then set -- demo "$root/build/demo"; fi
exec "$root/build/release/app/tarvex" "$@"
