#!/usr/bin/env bash
# Kills the program while it collects, imports, stakes, stores and deletes, and looks at the job's
# files each time: at random moments, and, where strace is installed, at every system call that
# changes a file. What must hold is said in kills.py.
#   scripts/trials/kills.sh [KILLS (default 500)] [SEED] [FOLDER]
# Needs python3; TARVEX names another program than build/release/app/tarvex. 500 kills take 15 minutes.
set -eu

root=$(cd "$(dirname "$0")/../.." && pwd)
kills=${1:-500}
seed=${2:-$((RANDOM * 32768 + RANDOM))}
folder=${3:-$(mktemp -d)}
export TARVEX=${TARVEX:-$root/build/release/app/tarvex}
echo "in $folder"

code=0
python3 "$root/scripts/trials/kills.py" moments --kills "$kills" --seed "$seed" --folder "$folder/moments" || code=1
if command -v strace >/dev/null; then
  python3 "$root/scripts/trials/kills.py" calls --folder "$folder/calls" || code=1
else
  echo "strace is not installed: the kills at every system call were left out."
fi
[ "$code" != 0 ] || rm -rf "$folder"
exit "$code"
