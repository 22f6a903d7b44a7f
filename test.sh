#!/usr/bin/env bash
# Builds and runs all tests, on the libraries and the program that run.sh builds; further arguments go to ctest (./test.sh -R Angle).
set -eu

root=$(cd "$(dirname "$0")" && pwd)
"$root/scripts/packages.sh" run test
"$root/scripts/build.sh" test
cd "$root/build/release"
progress=""
[ ! -t 1 ] || progress=--progress
exec ctest --output-on-failure -j 2 $progress "$@"
