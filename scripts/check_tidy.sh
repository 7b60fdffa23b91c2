#!/usr/bin/env bash
# Runs clang-tidy over every source file of the program, two at a time, with the development build's commands.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
[[ -f build/dev/compile_commands.json ]] || {
  echo "Build the dev preset first." >&2
  exit 1
}
# Tidy runs clang: it knows neither g++'s precompiled headers nor its flag for them.
mkdir -p build/tidy
sed -E 's/ -fpch-preprocess//g; s/ -Winvalid-pch -include [^ ]*cmake_pch\.hxx//g' build/dev/compile_commands.json >build/tidy/compile_commands.json
git ls-files -z 'src/*.cpp' ':!src/platform/macos/*' | xargs -0 -P 2 -n 4 clang-tidy-14 --quiet -p build/tidy 2>build/tidy/stderr.log || {
  grep -E 'error:' build/tidy/stderr.log || true
  exit 1
}
