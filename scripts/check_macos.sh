#!/usr/bin/env bash
# Checks the macOS layer without a Mac, file by file: types for both processors with strict warnings, clang's static
# analyzer, and the list of what the layer asks of the system. See src/platform/macos/README.md.
#   scripts/check_macos.sh            says what is wrong
#   scripts/check_macos.sh --update   writes the list of imported symbols anew
#   scripts/check_macos.sh FILE…      checks these files alone, without the list
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

layer=src/platform/macos
symbols=tests/macos/imported_symbols.txt
output=build/macos-check
clang=clang++-14
nm=llvm-nm-14
resources=$("$clang" -print-resource-dir)
machine=$(g++ -dumpmachine)
libstdcxx=$(g++ -dumpversion)
# Clang's own C++ library; the newest, where there are several.
libcxx=$(printf '%s\n' /usr/lib/llvm-*/include/c++/v1 | sort -V | tail -n 1)

# Those of a build for a Mac (cmake/Compiler.cmake), and more.
warnings=(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wunguarded-availability -Wundeclared-selector
  -Wimplicit-retain-self -Warc-retain-cycles -Wnullable-to-nonnull-conversion -Wassign-enum
  -Wno-missing-field-initializers -Werror)
language=(-std=c++20 -fobjc-arc -fblocks -Isrc)
declarations=(-isystem tests/macos/sdk)
# Intel: the C++ library of g++.
intel=(-target x86_64-apple-macos13 -U__nonnull -D_GNU_SOURCE "${declarations[@]}" -nostdinc++
  -isystem "/usr/include/c++/$libstdcxx" -isystem "/usr/include/$machine/c++/$libstdcxx" -isystem "/usr/include/$machine"
  "${language[@]}" "${warnings[@]}")
# Apple silicon: clang's C++ library, as on a Mac, over a small C library.
silicon=(-target arm64-apple-macos13 -D_GNU_SOURCE -D_LIBCPP_PROVIDES_DEFAULT_RUNE_TABLE
  -D_LIBCPP_HAS_NO_LOCALIZATION -nostdinc -stdlib=libc++ "${declarations[@]}" -isystem tests/macos/shim
  -isystem "$libcxx" -isystem "$resources/include" -isystem "/usr/include/${machine%-gnu}-musl"
  "${language[@]}" "${warnings[@]}")
# The bound keeps one long function from taking as much time as all others together.
analyzer=(--analyze --analyzer-output text -Xclang -analyzer-checker=core,osx,cplusplus,nullability
  -Xclang -analyzer-werror -Xclang -analyzer-config -Xclang max-nodes=40000)

# precompile LANGUAGE NAME: the C++ library's headers once, not twice a file. Only the Intel checks use them, so that a
# file that forgets to include what it uses is still found.
precompile() {
  printf '#include <%s>\n' array atomic condition_variable functional memory mutex optional string thread \
    unordered_set vector >"$output/$2.h"
  "$clang" "${intel[@]}" -x "$1" -o "$output/$2.pch" "$output/$2.h"
}

# check_file FILE: prints what is wrong with it. The Apple silicon check leaves an object, whose symbols are listed.
check_file() {
  local file=$1 object precompiled=$output/cpp.pch failed=0
  [[ $file == *.mm ]] && precompiled=$output/mm.pch
  object=$output/$(basename "$file").o
  rm -f "$object"
  "$clang" "${intel[@]}" -include-pch "$precompiled" -fsyntax-only "$file" || {
    echo "FAILED: $file does not pass the type check for Intel"
    failed=1
  }
  "$clang" "${silicon[@]}" -c -o "$object" "$file" || {
    echo "FAILED: $file does not pass the type check for Apple silicon"
    failed=1
  }
  "$clang" "${intel[@]}" -include-pch "$precompiled" "${analyzer[@]}" "$file" || {
    echo "FAILED: the analyzer finds something in $file"
    failed=1
  }
  return "$failed"
}

# Every source file must be built on a Mac too.
check_listed() {
  local file failed=0
  for file in "${files[@]}"; do
    grep -qw "$(basename "$file")" "$layer/sources.cmake" || {
      echo "FAILED: nothing in $layer builds $(basename "$file")"
      failed=1
    }
  done
  return "$failed"
}

# What the layer asks of the system and of the C library: without C++, which a compiler brings along, and without what
# the layer defines itself. A Mac's object files write an underscore before each name.
list_symbols() {
  local objects=("$output"/*.o)
  "$nm" -u --just-symbol-name "${objects[@]}" | sed -nE 's/^_//p' |
    grep -vE '^(_Z|__cxa_|__gxx_|_Unwind_|objc_(retain|release|autorelease|store|load|destroy|copyWeak|moveWeak|init))' |
    sort -u | comm -23 - <("$nm" -U --just-symbol-name "${objects[@]}" | sed -nE 's/^_//p' | sort -u)
}

if [[ ${1:-} == --one ]]; then
  check_file "$2"
  exit
fi

mkdir -p "$output"
if (($#)) && [[ $1 != --update ]]; then
  files=("$@")
else
  shopt -s nullglob
  files=("$layer"/*.cpp "$layer"/*.mm)
  rm -f "$output"/*.o
fi
((${#files[@]} > 0)) || {
  echo "There is nothing to check in $layer."
  exit 1
}

precompile c++-header cpp &
precompile objective-c++-header mm
wait
failed=0
printf '%s\0' "${files[@]}" | xargs -0 -P "$(nproc)" -n 1 "$0" --one || failed=1
if ((failed)); then
  exit 1
fi
if (($#)) && [[ $1 != --update ]]; then
  exit 0
fi
check_listed || failed=1
export LC_ALL=C
if [[ ${1:-} == --update ]]; then
  list_symbols >"$symbols"
elif ! diff -u "$symbols" <(list_symbols); then
  echo "FAILED: the layer imports other symbols than $symbols says: look at each, and run $0 --update"
  failed=1
fi
((failed == 0)) && echo "${#files[@]} files of the macOS layer are in order."
exit "$failed"
