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

# build PRESET [CMAKE-ARGUMENT…] -- [TARGET…]
# A Mac's bash takes an empty array for one that is not set.
build() {
  local preset=$1 arguments=()
  shift
  while (($#)) && [[ $1 != -- ]]; do
    arguments+=("$1")
    shift
  done
  (($#)) && shift
  say "Building ($preset)"
  mkdir -p "build/$preset"
  # A quiet configuration is shown whole when it fails.
  cmake --preset "$preset" ${arguments[@]+"${arguments[@]}"} >"build/$preset/configure.log" 2>&1 || {
    cat "build/$preset/configure.log"
    die "Configuring failed."
  }
  local targets=()
  (($#)) && targets=(--target "$@")
  cmake --build --preset "$preset" ${targets[@]+"${targets[@]}"}
}
