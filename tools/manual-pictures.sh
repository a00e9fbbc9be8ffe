#!/usr/bin/env bash
# Takes the manual's screenshots again, with sample data: invented programs, hosts and drawings.
# Arguments: the folder of the built programs (default build/release/bin), the folder for the pictures
# (default docs/manual/pictures). It needs xvfb, and permission to listen on port 80 (see run.sh).
set -euo pipefail
cd "$(dirname "$0")/.."
bin=${1:-build/release/bin}
pictures=${2:-docs/manual/pictures}
sample=$(mktemp -d)
chmod 755 "$sample" # when root starts the services, they switch to a user that must be able to read the drawings
services=
trap '[ -z "$services" ] || { kill "$services" 2>/dev/null; wait "$services" 2>/dev/null; } || true; rm -rf "$sample"' EXIT

# package NAME SUMMARY SECTION: prints a stanza. The size derives from the name, so that each run gives the same
# pictures.
package() {
    local size
    size=$(printf '%s' "$1" | cksum | cut -d' ' -f1)
    printf 'Package: %s\nArchitecture: all\nSection: %s\nSize: %s\nHomepage: http://%s.example/\n' \
        "$1" "$3" "$((size % 4000000 + 7000))" "$1"
    printf 'Filename: pool/%s/%s/%s_1.%s_all.deb\nDescription: %s\n\n' \
        "${1:0:1}" "$1" "$1" "$((size % 9))" "$2"
}

{
    # name | summary, of invented programs
    while IFS='|' read -r name summary; do
        package "$name" "$summary" editors
    done <<'TEXTS'
inkpot|text editor for plain and simple notes
quillpen|small text editor for the terminal
writedesk|text editor with tabs and a spelling check
paperclip|text editor that keeps every version
lineup|text editor for lists and tables
marginal|text editor with notes in the margin
typebar|text editor for slow machines
longhand|text editor for whole books
blotter|text editor that saves while you type
foolscap|plain text editor with a large view
nibs|line text editor for scripts
redraft|text editor that compares two drafts
copydesk|text editor for several people at once
scribble|text editor and drawing board
TEXTS
    while IFS='|' read -r name summary; do
        package "$name" "$summary" games
    done <<'GAMES'
chessboard|chess for two people at one board
chess-puzzles|three hundred chess puzzles
chesswood|chess in three dimensions
rookery|chess program that plays at ten strengths
endgame-tutor|teaches the endings of chess
pawnshop|trains chess openings
stalemate|chess clock and score sheet
knightride|chess puzzle of the wandering knight
castling|chess by mail
GAMES
    package python3 "interpreter of a language, sample package" python
    for word in almanac barometer calendar dials envelope figures graphs hourglass inventory journal kiosk ledger maps \
        notebook orbits planner quotes recipes sundial timetable units vectors weather; do
        package "python3-$word" "module for $word, sample package" python
    done
} >"$sample/packages"

# One drawing of an envelope for each line "NAME COLOUR".
mkdir "$sample/drawings" "$sample/data" "$sample/bin"
while read -r name colour; do
    cat >"$sample/drawings/$name.svg" <<SVG
<svg xmlns="http://www.w3.org/2000/svg" width="120" height="120" viewBox="0 0 120 120">
<rect x="10" y="25" width="100" height="70" rx="6" fill="$colour"/>
<path d="M10 31 L60 70 L110 31" fill="none" stroke="white" stroke-width="6"/></svg>
SVG
done <<'DRAWINGS'
mail #3465a4
mail-new #4e9a06
mail-read #888a85
mail-unread #cc0000
mail-sent #75507b
mail-draft #c17d11
mail-archive #2e3436
mail-flagged #f57900
DRAWINGS

# Runs copies, because the user's own settings may lie beside the program and must neither be shown nor changed.
for file in quarrynet quarrynet-services quarrynet-thumbnails libquarrynet_webengine.so; do
    [ ! -e "$bin/$file" ] || cp "$bin/$file" "$sample/bin/"
done
bin=$sample/bin

"$bin/quarrynet-services" index --data "$sample/data" --packages "$sample/packages" --mirror http://mirror.example/sample \
    --folder docs/manual --pictures "$sample/drawings"
"$bin/quarrynet-services" serve --data "$sample/data" --proxy-port 0 >"$sample/log" 2>&1 &
services=$!
until grep -q ready "$sample/log"; do
    kill -0 "$services" 2>/dev/null || { cat "$sample/log" >&2; exit 1; }
    sleep 0.05
done
if grep -q '=- ' "$sample/log"; then
    cat "$sample/log" >&2
    exit 1
fi
mkdir -p "$pictures"
xvfb-run -a -s "-screen 0 1280x960x24" "$bin/quarrynet" --tour "$pictures"
