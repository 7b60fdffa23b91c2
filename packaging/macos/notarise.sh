#!/usr/bin/env bash
# Sends the signed bundle to Apple's notary, waits for the answer and staples it to the bundle.
#   FERROWYN_NOTARY_PROFILE  the name under which the keychain has the account, put there once with
#                            "xcrun notarytool store-credentials NAME"
#   notarise.sh Ferrowyn.app
set -euo pipefail
(($# == 1)) || {
  echo "usage: $0 Ferrowyn.app" >&2
  exit 2
}
bundle=$1
# No password is handed over here: every user of a Mac can read what a command is called with.
: "${FERROWYN_NOTARY_PROFILE:?is the name under which the keychain has the account to send with}"

archive=$(mktemp -d)/Ferrowyn.zip
trap 'rm -rf "$(dirname "$archive")"' EXIT
ditto -c -k --keepParent "$bundle" "$archive"
xcrun notarytool submit "$archive" --wait --keychain-profile "$FERROWYN_NOTARY_PROFILE"
xcrun stapler staple "$bundle"
