#!/usr/bin/env bash
# Brings translations/*.ts up to date with the texts of the program, the manual and the services: new texts come in as
# unfinished ones, texts that are gone disappear. Translate them with Qt Linguist or in an editor. With --into FOLDER the
# files there are written instead, which start as copies.
set -euo pipefail
cd "$(dirname "$0")/.."
folder=translations
if [ "${1:-}" = --into ]; then
    folder=$2
    cp translations/*.ts "$folder/"
fi
lupdate=${LUPDATE:-}
for place in lupdate lupdate-qt6 /usr/lib/qt6/bin/lupdate; do
    [ -n "$lupdate" ] || lupdate=$(command -v "$place" || true)
done
[ -n "$lupdate" ] || { echo "lupdate is missing; Debian has it in qt6-l10n-tools." >&2; exit 1; }

for file in "$folder"/quarrynet_*.ts; do
    # -I: without the classes' headers, lupdate gives their texts a context that the program does not ask for.
    "$lupdate" -silent -I . -no-obsolete -locations none -extensions cpp,h,ui app dialogs platform search -ts "$file"
done
for file in "$folder"/manual_*.ts; do
    python3 tools/translations/manual.py update docs/manual translations/fixed_texts.txt "$file"
done
for file in "$folder"/services_*.ts; do
    python3 tools/translations/services.py update services "$file"
done
