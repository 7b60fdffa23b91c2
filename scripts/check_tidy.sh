#!/usr/bin/env bash
# Runs clang-tidy over every source file of the program, two at a time, with the commands of the address sanitizer's
# build: there the files of a folder are compiled together, and the headers that they share are read once instead of
# forty times. Version 16 is the first that can read the ranges of g++ 12.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
[[ -f build/asan/compile_commands.json ]] || {
  echo "Build the asan preset first." >&2
  exit 1
}
# The Objective-C++ files have checks of their own (scripts/check_macos.sh).
# xcb names a member `explicit`, which its includers must define away; shadowing is for g++ to judge.
# Tidy runs clang: it knows neither g++'s precompiled headers nor some of its flags, and needs no sanitizer.
mkdir -p build/tidy
sed -E 's/ -fpch-preprocess//g; s/ -Winvalid-pch -include [^ ]*cmake_pch\.hxx//g; s/ -fsanitize=[^ ]*//g; s/ -fno-sanitize[^ ]*//g; s/ -Wno-(maybe-uninitialized|stringop-overflow|restrict)//g; s/ -Wshadow=local//g' \
  build/asan/compile_commands.json >build/tidy/compile_commands.json
sed -nE 's/^ *"file": "(.*)",?$/\1/p' build/tidy/compile_commands.json |
  grep -E "^$PWD/(src/|build/asan/src/.*/Unity/).*\.(cpp|cxx)$" |
  xargs -d '\n' -P 2 -n 1 clang-tidy-16 --quiet -p build/tidy --extra-arg=-Wno-keyword-macro 2>build/tidy/stderr.log || {
  grep -E 'error:' build/tidy/stderr.log || true
  exit 1
}
