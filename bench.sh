#!/usr/bin/env bash
# Builds and runs the benchmarks, each beside its peer in the same run; arguments go to Google Benchmark
# (./bench.sh --benchmark_filter=Load).
set -eu

root=$(cd "$(dirname "$0")" && pwd)
"$root/scripts/packages.sh" run bench
"$root/scripts/build.sh" bench
for program in "$root"/build/bench/bench/*_bench; do
  "$program" --benchmark_counters_tabular=true "$@"
done
