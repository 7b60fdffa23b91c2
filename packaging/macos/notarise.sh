#!/usr/bin/env bash
# Sends the signed bundle to Apple's notary, waits for the answer and staples it to the bundle.
#   FERROWYN_NOTARY_APPLE_ID, FERROWYN_NOTARY_TEAM_ID, FERROWYN_NOTARY_PASSWORD (an app-specific one)
#   notarise.sh Ferrowyn.app
set -euo pipefail
(($# == 1)) || {
  echo "usage: $0 Ferrowyn.app" >&2
  exit 2
}
bundle=$1
: "${FERROWYN_NOTARY_APPLE_ID:?is the account to send with}"
: "${FERROWYN_NOTARY_TEAM_ID:?is the team of that account}"
: "${FERROWYN_NOTARY_PASSWORD:?is an app-specific password of that account}"

archive=$(mktemp -d)/Ferrowyn.zip
trap 'rm -rf "$(dirname "$archive")"' EXIT
ditto -c -k --keepParent "$bundle" "$archive"
xcrun notarytool submit "$archive" --wait --apple-id "$FERROWYN_NOTARY_APPLE_ID" \
  --team-id "$FERROWYN_NOTARY_TEAM_ID" --password "$FERROWYN_NOTARY_PASSWORD"
xcrun stapler staple "$bundle"
