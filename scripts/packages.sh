#!/usr/bin/env bash
# Installs the Debian packages that are missing for what is asked: scripts/packages.sh run|test|ci|bench|fuzz ...
# Prints nothing when nothing is missing.
set -eu

run="g++ cmake ninja-build libcli11-dev nlohmann-json3-dev libpugixml-dev libssl-dev"
test="libgtest-dev libgmock-dev locales socat rtklib openssl python3"
ci="clang-format-19 clang-tidy"
bench="libbenchmark-dev libsqlite3-dev libproj-dev proj-bin libgeos-dev rtklib"
fuzz="clang libclang-rt-14-dev"

wanted=""
for group in "$@"; do
  case "$group" in
    run | test | ci | bench | fuzz) wanted="$wanted ${!group}" ;;
    *) echo "packages.sh: no group '$group' (run, test, ci, bench, fuzz)" >&2; exit 2 ;;
  esac
done

missing=""
for package in $wanted; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q ' installed$' || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

if [ "$(id -u)" = 0 ]; then
  as_root=""
elif command -v sudo >/dev/null 2>&1 && sudo -n true 2>/dev/null; then
  as_root="sudo"
else
  echo "These packages are missing, and only root may install them:$missing" >&2
  echo "Run:  apt-get install$missing" >&2
  exit 1
fi

echo "Installing$missing ..." >&2
log=$(mktemp)
export DEBIAN_FRONTEND=noninteractive
if ! { $as_root apt-get update -qq && $as_root apt-get install -y -qq --no-install-recommends $missing; } >"$log" 2>&1; then
  cat "$log" >&2
  echo "The packages could not be installed:$missing" >&2
  exit 1
fi
rm -f "$log"
