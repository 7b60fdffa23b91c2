#!/usr/bin/env bash
# Signs the bundle, innermost code first, with the hardened runtime. The toolkit's frameworks must be in it already
# (macdeployqt).
#   FERROWYN_SIGNING_IDENTITY  the certificate, such as "Developer ID Application: …"; "-" signs for this Mac alone
#   sign.sh Ferrowyn.app
set -euo pipefail
(($# == 1)) || {
  echo "usage: $0 Ferrowyn.app" >&2
  exit 2
}
bundle=$1
folder=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
: "${FERROWYN_SIGNING_IDENTITY:?is the certificate to sign with}"
[[ -d $bundle ]] || {
  echo "There is no bundle at $bundle." >&2
  exit 1
}

options=(--force --sign "$FERROWYN_SIGNING_IDENTITY")
if [[ $FERROWYN_SIGNING_IDENTITY != - ]]; then
  options+=(--options runtime --timestamp)
fi

while IFS= read -r -d '' code; do
  codesign "${options[@]}" "$code"
done < <(find "$bundle/Contents" -depth \( -name '*.dylib' -o -name '*.framework' \) -print0)
codesign "${options[@]}" --entitlements "$folder/ferrowyn.entitlements" "$bundle"
codesign --verify --deep --strict "$bundle"
