#!/usr/bin/env bash
# Renders icons/pictures/NAME-WIDTH.png, icons/quarrynet.ico and an icon for panels from icons/drawings/NAME.svg. Run it
# after changing a drawing. The pictures are in the repository, so that neither the build nor the program needs an SVG
# renderer.
set -euo pipefail
cd "$(dirname "$0")/../icons"
. ../tools/packages.sh
install_missing librsvg2-bin optipng icoutils

# The widths cover device pixel ratios of 1, 1.5 and 2, and larger windows.
draw() {
    local name=$1 width
    shift
    for width in "$@"; do
        rsvg-convert --width "$width" --keep-aspect-ratio "drawings/$name.svg" --output "pictures/$name-$width.png"
        optipng -quiet -o5 -strip all "pictures/$name-$width.png"
    done
}

rm -f pictures/*.png
for name in about help mail proxy stop webpage; do
    draw "$name" 16 24 36 48 72 128
done
draw quarrynet 16 24 32 48 64 96 128 256
draw waiting 64 96 128
draw terraces 320 480 640

# Some panels of desktops ask for this size, which the program itself never shows.
panel=../packaging/linux/desktop/quarrynet-22.png
rsvg-convert --width 22 --height 22 drawings/quarrynet.svg --output "$panel"
optipng -quiet -o5 -strip all "$panel"

{
    echo '<RCC>'
    echo '  <qresource prefix="/icons">'
    printf '    <file alias="%s">%s</file>\n' $(cd pictures && for file in *.png; do echo "$file pictures/$file"; done)
    echo '  </qresource>'
    echo '</RCC>'
} >icons.qrc

# The icon of the Windows program and its installer, in the sizes of lists, taskbar and desktop at 100 to 250 percent.
# Only the large sizes are stored as PNG: some readers of icons expect bitmaps for the small ones.
sizes=$(mktemp -d)
trap 'rm -rf "$sizes"' EXIT
for width in 16 20 24 32 40 48 64 128 256; do
    rsvg-convert --width "$width" --height "$width" drawings/quarrynet.svg --output "$sizes/$width.png"
    optipng -quiet -o5 -strip all "$sizes/$width.png"
done
cd "$sizes"
icotool --create --output="$OLDPWD/quarrynet.ico" 16.png 20.png 24.png 32.png 40.png 48.png 64.png --raw=128.png \
    --raw=256.png
