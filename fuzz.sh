#!/usr/bin/env bash
# Builds the fuzz targets and runs each for SECONDS (default 60), one a core at a time:
#   ./fuzz.sh [SECONDS] [TARGET ...]
set -eu

root=$(cd "$(dirname "$0")" && pwd)
seconds=${1:-60}
[ $# -gt 0 ] && shift
case "$seconds" in
  '' | *[!0-9]*) echo "fuzz.sh: SECONDS is a whole number, not '$seconds'" >&2; exit 2 ;;
esac
"$root/scripts/packages.sh" run fuzz
"$root/scripts/build.sh" fuzz
cd "$root/build/fuzz/fuzz"
[ $# -gt 0 ] || set -- *_fuzz

attack() {
  target=$1
  corpus=$root/fuzz/corpus/${target%_fuzz}
  mkdir -p "found/$target"
  if "./$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -print_final_stats=0 \
    -artifact_prefix="found/" "found/$target" "$corpus" >"$target.log" 2>&1; then
    echo "$target: $(grep -E '^Done' "$target.log" || echo 'done')"
  else
    tail -n 40 "$target.log"
    echo "$target failed; its input is in $PWD/found"
    return 1
  fi
}
export -f attack
export root seconds

echo "$# targets, $seconds s each, $(nproc) at a time"
printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} bash -c 'attack {}'
