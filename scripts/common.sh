# Shared by the two commands; sourced. Everything runs from the project's root.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
# shellcheck source=scripts/packages.sh
source scripts/packages.sh

say() { printf '\n== %s\n' "$*"; }
die() {
  printf '%s\n' "$*" >&2
  exit 1
}

on_mac() { [[ $(uname -s) == Darwin ]]; }

# ensure_mac_packages: installs with Homebrew what is missing, and tells CMake where it is.
ensure_mac_packages() {
  xcode-select -p >/dev/null 2>&1 || die "Apple's command line tools are missing: run \"xcode-select --install\" first."
  command -v brew >/dev/null || die "Homebrew is missing, and these packages with it: ${mac_packages[*]}. See https://brew.sh."
  local missing=() package
  for package in "${mac_packages[@]}"; do
    brew list --versions "$package" >/dev/null 2>&1 || missing+=("$package")
  done
  if ((${#missing[@]} > 0)); then
    say "Installing ${#missing[@]} missing packages: ${missing[*]}"
    brew install --quiet "${missing[@]}"
  fi
  # Homebrew links no ICU into its own folder, since the system has one without headers.
  export CMAKE_PREFIX_PATH
  CMAKE_PREFIX_PATH=$(brew --prefix):$(brew --prefix icu4c)
}

# ensure_packages PACKAGE…: installs those that are missing, and asks for the administrator's rights only then.
ensure_packages() {
  command -v dpkg-query >/dev/null || {
    printf 'This system has no dpkg: install the equivalents of these packages yourself:\n%s\n' "$*" >&2
    return 0
  }
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
  done
  ((${#missing[@]} == 0)) && return 0
  say "Installing ${#missing[@]} missing packages: ${missing[*]}"
  local administrator=()
  if ((EUID != 0)); then
    command -v sudo >/dev/null || die "These packages are missing, and installing them needs root or sudo: ${missing[*]}"
    administrator=(sudo)
  fi
  "${administrator[@]}" apt-get update -qq
  "${administrator[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [CMAKE-ARGUMENT…] -- [TARGET…]: configures and builds. What the compilers say goes into a file, which is
# shown when the build fails.
# A Mac's bash takes an empty array for one that is not set.
build() {
  local preset=$1 arguments=() targets=()
  local log=build/$1/build.log
  shift
  while (($#)) && [[ $1 != -- ]]; do
    arguments+=("$1")
    shift
  done
  (($#)) && shift
  (($#)) && targets=(--target "$@")
  say "Building ($preset); the compilers' messages go to $log"
  mkdir -p "build/$preset"
  cmake --preset "$preset" ${arguments[@]+"${arguments[@]}"} >"$log" 2>&1 || {
    cat "$log"
    die "Configuring failed."
  }
  # What was there before the build is not shown with its errors.
  NINJA_STATUS='[%f/%t] ' cmake --build --preset "$preset" ${targets[@]+"${targets[@]}"} 2>&1 |
    tee "$log" | show_progress || {
    grep -vE '^\[[0-9]+/[0-9]+\] ' "$log" || true
    die "Building failed."
  }
}

# show_progress: reduces ninja's lines to how far it is: a line that is rewritten on a terminal, five lines elsewhere.
show_progress() {
  local line steps every=0 shown=0
  while IFS= read -r line; do
    [[ $line =~ ^\[([0-9]+)/([0-9]+)\] ]] || continue
    steps=${BASH_REMATCH[1]}
    every=$(((BASH_REMATCH[2] + 4) / 5))
    if [[ -t 1 ]]; then
      printf '\r%d of %d steps' "$steps" "${BASH_REMATCH[2]}"
      shown=$steps
    elif ((steps >= shown + every || steps == BASH_REMATCH[2])); then
      printf '%d of %d steps\n' "$steps" "${BASH_REMATCH[2]}"
      shown=$steps
    fi
  done
  [[ ! -t 1 ]] || ((shown == 0)) || echo
}
