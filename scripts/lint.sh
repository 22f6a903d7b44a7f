#!/usr/bin/env bash
# clang-tidy over the libraries and the program, as .clang-tidy says; needs what ./test.sh builds.
set -eu

root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"
# clang reads neither g++'s precompiled headers (the sources name what they include) nor its cost models,
# and does not know all of its warnings.
mkdir -p build/lint
sed -e 's/-Winvalid-pch -include [^ ]*cmake_pch.hxx//' -e 's/ -fvect-cost-model=[a-z]*//' \
  -e 's/ -Wno-restrict//' -e 's/ -Wno-stringop-overflow//' \
  build/release/compile_commands.json >build/lint/compile_commands.json
if ! git ls-files 'platform/*.cpp' 'core/*.cpp' 'coordsys/*.cpp' 'gnss/*.cpp' 'roads/*.cpp' 'exchange/*.cpp' 'tls/*.cpp' \
  'modules/*.cpp' 'app/*.cpp' |
  xargs -P "$(nproc)" -n 6 clang-tidy --quiet -p build/lint >build/lint.log 2>&1; then
  grep -E 'warning:|error:' build/lint.log | sort -u >&2
  exit 1
fi
