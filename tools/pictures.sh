#!/usr/bin/env bash
# Draws every tab, menu, dialog and box as people see them: in light and dark colours, in both of the toolkit's own
# styles, the tabs at the window's minimum, design and full size, all at 1, 1.5 and 2 device pixels to a pixel. The
# contents are those of the tests. Arguments: the folder for the pictures, and the folder of the built tests (default
# build/ci/bin). Fails if a text on a picture cannot be read (see tests/gui/contrast_test.cpp).
set -euo pipefail
cd "$(dirname "$0")/.."
pictures=${1:?the folder for the pictures}
bin=${2:-build/ci/bin}
mkdir -p "$pictures"
for scale in 1 1.5 2; do
    QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=$scale QUARRYNET_SCREENSHOTS=$pictures "$bin/contrast_test" -silent
done
echo "$(find "$pictures" -name '*.png' | wc -l) pictures in $pictures"
