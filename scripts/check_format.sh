#!/usr/bin/env bash
# Fails, and shows what differs, when a source file is not as clang-format would leave it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
git ls-files -z '*.h' '*.cpp' '*.mm' | xargs -0 clang-format-14 --dry-run --Werror
