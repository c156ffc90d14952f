#!/usr/bin/env bash
# Renders the fixed-size PNG icons from vantrel.svg (needs rsvg-convert, Debian package librsvg2-bin).
# The PNGs are committed, so a build needs no SVG renderer; run this after editing the SVG.
set -euo pipefail
cd "$(dirname "$0")"
for size in 16 22 24 32 48 64 128 256 512 1024; do
  rsvg-convert --width "$size" --height "$size" --output "png/${size}.png" vantrel.svg
done
