#!/usr/bin/env bash
# Configures (once) and builds a preset, quietly: scripts/build.sh PRESET
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
preset=${1:?"give a preset: release, test, dev, asan, tsan, bench or fuzz"}
log=$root/build/$preset.log
mkdir -p "$root/build"
cd "$root"

show_failure() {
  cat "$log" >&2
  echo "The build failed; the text above is in $log." >&2
  exit 1
}

# The tests are built in the release's folder, which may have been configured without them.
folder=build/$preset
[ "$preset" != test ] || folder=build/release
targets=""
[ "$preset" != release ] || targets=tarvex
needed=build.ninja
[ "$preset" != test ] || needed=tests

if [ ! -f "$folder/build.ninja" ] || [ ! -e "$folder/$needed" ]; then
  cmake --preset "$preset" >"$log" 2>&1 || show_failure
fi
if ! ninja -C "$folder" -n $targets 2>/dev/null | grep -q 'no work to do'; then
  [ ! -t 2 ] || echo "Building ($preset), a few minutes the first time ..." >&2
  cmake --build --preset "$preset" >"$log" 2>&1 || show_failure
fi
