#!/usr/bin/env bash
# Configures (once) and builds a preset, quietly: scripts/build.sh PRESET
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
preset=${1:?"give a preset: dev, asan, tsan, release, bench or fuzz"}
log=$root/build/$preset.log
mkdir -p "$root/build"
cd "$root"

show_failure() {
  cat "$log" >&2
  echo "The build failed; the text above is in $log." >&2
  exit 1
}

[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >"$log" 2>&1 || show_failure
if ! ninja -C "build/$preset" -n 2>/dev/null | grep -q 'no work to do'; then
  [ ! -t 2 ] || echo "Building ($preset), a few minutes the first time ..." >&2
  cmake --build --preset "$preset" >"$log" 2>&1 || show_failure
fi
