#!/usr/bin/env bash
# Draws the pictures anew with which the tests compare the panel (tests/ui/pictures). Look at what changed before you
# commit it. Needs build/dev, configured.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --build --preset dev --target ferrowyn_ui_tests
FERROWYN_RENEW_PICTURES=1 build/dev/bin/ferrowyn_ui_tests --gtest_filter='*PanelPicture*'
git status --short tests/ui/pictures
