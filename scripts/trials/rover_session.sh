#!/usr/bin/env bash
# A rover's session as in the field: a receiver behind a pseudo-terminal, a caster that is killed
# twice and comes back, points collected all the time. Afterwards everything must be there.
#   scripts/trials/rover_session.sh [SECONDS (default 600)] [FOLDER]
# Needs str2str (rtklib) and python3; takes about SECONDS.
set -eu

root=$(cd "$(dirname "$0")/../.." && pwd)
seconds=${1:-600}
folder=${2:-$(mktemp -d)}
tarvex=${TARVEX:-$root/build/release/app/tarvex}
mkdir -p "$folder"
cd "$folder"
export TARVEX_DATA=$folder/data TARVEX_NTRIP_PASSWORD=pass

running=()
end_all() { for p in "${running[@]}"; do kill "$p" 2>/dev/null || true; done; }
trap end_all EXIT

say() { printf '%s  %s\n' "$(date -u +%H:%M:%S)" "$*"; }

python3 "$root/scripts/trials/rover_log.py" "$seconds" >rover.log
cp "$root/tests/data/ntrip/rtcm3.bndm.log" corrections.rtcm

# The corrections come from a caster of ours, through the stream tool's own caster.
: >source.out
"$tarvex" caster corrections.rtcm --mountpoint SRC --port 0 --rate 500 >source.out 2>source.err &
running+=($!)
until grep -q ntrip:// source.out; do sleep 0.1; done
source_port=$(sed -n 's,.*127.0.0.1:\([0-9]*\)/SRC.*,\1,p' source.out)
port=$(python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])')
start_caster() {
  str2str -in "ntrip://127.0.0.1:$source_port/SRC" \
    -out "ntripc://user:pass@:$port/TEST:TEST_ID;RTCM 3.2;1004(1);2;GPS+GLO;LAB;CHE;46.80;9.27;1;0;X;none;B;N;200;" \
    >/dev/null 2>&1 &
  caster=$!
  running+=("$caster")
  say "caster started"
}
start_caster
sleep 1

: >replay.out
"$tarvex" replay rover.log --to pty --keep-input corrections.got >replay.out 2>replay.err &
running+=($!)
until grep -q serial: replay.out; do sleep 0.1; done
device=$(sed -n 's/.*serial:\([^ ]*\).*/\1/p' replay.out)

"$tarvex" new site.crd --system "UTM/UTM WGS84 Zone 32" >/dev/null
"$tarvex" collect site.crd --receiver "serial:$device@115200" --count 0 --log-stream stream.log \
  --corrections "ntrip://user@127.0.0.1:$port/TEST" >collect.out 2>collect.err &
collect=$!
say "collecting from $device for $seconds s"

for at in 4 5; do
  sleep $((seconds / at))
  kill "$caster"
  say "caster killed"
  sleep $((seconds / 30))
  start_caster
done
code=0
wait "$collect" || code=$?
say "collect ended with $code"
sleep 1
python3 "$root/scripts/trials/rover_check.py" "$seconds"
