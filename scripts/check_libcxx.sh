#!/usr/bin/env bash
# Compiles the code that a Mac shares with Linux as far as its compiler would complain: with clang, clang's own C++
# library and the integers of a Mac. Version 16 of both is about what Xcode 15 has, the oldest that can build it.
#   scripts/check_libcxx.sh           says what is wrong
#   scripts/check_libcxx.sh FILE…     checks these files alone
# FERROWYN_LIBCXX names the library's headers where they are elsewhere.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
compiler=clang++-16
library=${FERROWYN_LIBCXX:-/usr/lib/llvm-16/include/c++/v1}
commands=build/libcxx/compile_commands.json
[[ -f $library/version ]] || {
  echo "clang's C++ library is not in $library: install libc++-16-dev." >&2
  exit 1
}

# A line a file: its name, and the definitions and folders that the build gives it.
list_files() {
  python3 - "$commands" "$PWD" "$@" <<'PYTHON'
import json, re, shlex, sys
commands, root, *wanted = sys.argv[1:]
# What only Linux builds, beside its adapters.
linux = re.compile(r"src/platform/(x11|linux|macos)/|_on_(linux|x11|macos)\.cpp"
                   r"|src/main/(bus_|doctor|outside_|single_instance|mac_)")
seen = set()
for entry in json.load(open(commands)):
    name = entry["file"].removeprefix(root + "/")
    if not re.match(r"src/.*\.cpp$", name) or linux.search(name) or name in seen or wanted and name not in wanted:
        continue
    seen.add(name)
    words = shlex.split(entry["command"])
    kept = [word for index, word in enumerate(words) if re.match(r"-[DI]", word)]
    kept += [f"-isystem{words[index + 1]}" for index, word in enumerate(words) if word == "-isystem"]
    print(shlex.join([name, *kept]))
PYTHON
}

check_file() {
  local file=$1
  shift
  "$compiler" -std=c++20 -fsyntax-only -nostdinc++ -isystem "$library" -isystem tests/macos/darwin_integers \
    -D_LIBCPP_ENABLE_ASSERTIONS=0 -Wall -Wextra -Wno-missing-field-initializers -Werror "$@" "$file" || {
    echo "FAILED: $file does not compile with clang's own C++ library"
    return 1
  }
}

if [[ ${1:-} == --one ]]; then
  check_file "${@:2}"
  exit
fi

cmake --preset dev -B build/libcxx -DFERROWYN_BUILD_TESTS=OFF >/dev/null
files=$(list_files "$@")
[[ -n $files ]] || {
  echo "There is nothing to check."
  exit 1
}
xargs -P "$(nproc)" -L 1 "$0" --one <<<"$files" || exit 1
echo "$(wc -l <<<"$files") files compile with clang's own C++ library."
