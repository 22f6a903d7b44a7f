#!/usr/bin/env bash
# Builds the fuzz targets and runs each for SECONDS (default 60): ./fuzz.sh [SECONDS] [TARGET ...]
set -eu

root=$(cd "$(dirname "$0")" && pwd)
seconds=${1:-60}
[ $# -gt 0 ] && shift
"$root/scripts/packages.sh" run fuzz
"$root/scripts/build.sh" fuzz
cd "$root/build/fuzz/fuzz"
[ $# -gt 0 ] || set -- *_fuzz
for target in "$@"; do
  corpus=$root/fuzz/corpus/${target%_fuzz}
  mkdir -p "found/$target"
  echo "$target: $seconds s from $corpus"
  if ! "./$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=0 \
    -artifact_prefix="found/" "found/$target" "$corpus" >"$target.log" 2>&1; then
    tail -n 40 "$target.log"
    echo "$target failed; its input is in $PWD/found"
    exit 1
  fi
  grep -E 'DONE|Done' "$target.log" || true
done
