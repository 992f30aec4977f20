#!/bin/bash
# Renders the icons of packaging/icons from their SVG files: one PNG for each size that icon themes
# ask for. The results are committed, so no build needs rsvg-convert (package librsvg2-bin).
set -euo pipefail
here=$(cd "$(dirname "$0")/.." && pwd)
cd "$here/packaging/icons"
for size in 16 22 24 32 48 64 128 256 512; do
    folder="${size}x${size}"
    mkdir -p "$folder"
    for name in lumoscript lumoscript-script; do
        rsvg-convert --width "$size" --height "$size" --output "$folder/$name.png" "$name.svg"
    done
done
