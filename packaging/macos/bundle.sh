#!/usr/bin/env bash
# Makes the built bundle one that can be given away: puts the libraries into it that the program needs, signs it, and
# has Apple notarise it where there is an account for that.
#   FERROWYN_SIGNING_IDENTITY  as sign.sh has it; without one the bundle is signed for this Mac alone
#   FERROWYN_NOTARY_PROFILE    as notarise.sh has it; without one the bundle is not sent to Apple
#   bundle.sh Ferrowyn.app
set -euo pipefail
(($# == 1)) || {
  echo "usage: $0 Ferrowyn.app" >&2
  exit 2
}
bundle=$1
folder=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export FERROWYN_SIGNING_IDENTITY=${FERROWYN_SIGNING_IDENTITY:--}
if [[ -n ${FERROWYN_NOTARY_PROFILE:-} && $FERROWYN_SIGNING_IDENTITY == - ]]; then
  echo "FERROWYN_SIGNING_IDENTITY is missing: Apple notarises nothing that is signed for one Mac alone." >&2
  exit 1
fi
[[ -d $bundle ]] || {
  echo "There is no bundle at $bundle." >&2
  exit 1
}

macdeployqt "$bundle" -always-overwrite
# It says what it could not do, but ends as if it had.
foreign=$(find "$bundle/Contents" -type f \( -name '*.dylib' -o -perm -u+x \) -exec otool -L {} + |
  grep -E '^[[:space:]]+(/opt/homebrew|/usr/local)/' || true)
[[ -z $foreign ]] || {
  printf 'The bundle needs libraries that only this Mac has:\n%s\n' "$foreign" >&2
  exit 1
}
"$folder/sign.sh" "$bundle"
if [[ -n ${FERROWYN_NOTARY_PROFILE:-} ]]; then
  "$folder/notarise.sh" "$bundle"
fi
