#!/usr/bin/env bash
# Runs clang-tidy over every source file of the program, one a processor. Version 16 is the first that can read the
# ranges of g++ 12.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
# A configuration of the same code without precompiled headers, which clang cannot read, and with what is generated.
cmake --preset dev -B build/tidy -DFERROWYN_DEVELOPER_BUILD=OFF -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON \
  -DFERROWYN_BUILD_TESTS=OFF >/dev/null
cmake --build build/tidy --target ferrowyn_ui_autogen ferrowyn_platform_linux_autogen >/dev/null
# The Objective-C++ files have checks of their own (scripts/check_macos.sh).
# xcb names a member `explicit`, which its includers must define away.
git ls-files 'src/*.cpp' ':!src/platform/macos' ':!src/main/*macos*' ':!src/main/mac_*' |
  xargs -d '\n' -P "$(nproc)" -n 1 clang-tidy-16 --quiet -p build/tidy --extra-arg=-Wno-keyword-macro \
    2>build/tidy/stderr.log || {
  grep -E 'error:' build/tidy/stderr.log || true
  exit 1
}
