#!/usr/bin/env bash
# Builds and runs the benchmarks, each beside its peer in the same run, and prints one table in
# Markdown; what is told meanwhile goes to the standard error. Arguments go to Google Benchmark
# (./bench.sh --benchmark_filter=Lambert).
set -euo pipefail

root=$(cd "$(dirname "$0")" && pwd)
"$root/scripts/packages.sh" run bench >&2
"$root/scripts/build.sh" bench >&2
head=1
for program in "$root"/build/bench/bench/*_bench; do
  "$program" "$@" | tail -n +"$head"
  head=3 # the two lines above the rows are there
done
