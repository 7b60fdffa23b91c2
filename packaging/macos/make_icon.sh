#!/usr/bin/env bash
# Makes the application's icon, in every size that a Mac asks for, from the drawing.
#   make_icon.sh DRAWING.svg ICON.icns
set -euo pipefail
(($# == 2)) || {
  echo "usage: $0 DRAWING.svg ICON.icns" >&2
  exit 2
}
drawing=$1
icon=$2
set=$(mktemp -d)/Ferrowyn.iconset
trap 'rm -rf "$(dirname "$set")"' EXIT
mkdir "$set"
for side in 16 32 128 256 512; do
  rsvg-convert --width "$side" --height "$side" --output "$set/icon_${side}x$side.png" "$drawing"
  rsvg-convert --width $((2 * side)) --height $((2 * side)) --output "$set/icon_${side}x$side@2x.png" "$drawing"
done
iconutil --convert icns --output "$icon" "$set"
