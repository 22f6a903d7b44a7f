#!/usr/bin/env bash
# Builds and runs all tests; further arguments go to ctest (./test.sh -R Angle).
set -eu

root=$(cd "$(dirname "$0")" && pwd)
"$root/scripts/packages.sh" run test
"$root/scripts/build.sh" dev
cd "$root/build/dev"
progress=""
[ ! -t 1 ] || progress=--progress
exec ctest --output-on-failure -j 2 $progress "$@"
