#!/usr/bin/env bash
# An hour with a rover at 10 Hz, as on site: points by keys in a terminal, points and a line set out,
# points by time, corrections from a caster. Receiver and caster are killed (kill -9) every two
# minutes, the fix is lost again and again. What must hold is said in rover_hour_check.py.
#   scripts/trials/rover_hour.sh [SECONDS (default 3600)] [FOLDER]
# Needs python3; takes SECONDS. TARVEX names another program than build/release/app/tarvex.
set -eu

root=$(cd "$(dirname "$0")/../.." && pwd)
seconds=${1:-3600}
folder=${2:-$(mktemp -d)}
export TARVEX=${TARVEX:-$root/build/release/app/tarvex}
echo "in $folder"

python3 "$root/scripts/trials/rover_hour.py" "$seconds" "$folder"
python3 "$root/scripts/trials/rover_hour_check.py" "$folder"
