#!/usr/bin/env bash
# Builds the portable zip and the installer for Windows, and tests both in a new Wine prefix with nothing else in it: the
# files of the packages, the resources in the program, the start from a folder with blanks and letters outside the ANSI
# code page, what the program writes and where; installation, upgrade over a running, an older and a moved copy, failed
# upgrade, and what is left after the removal.
#
# Usage: tests/windows_package.sh [FOLDER]     keeps the packages and the screenshots in FOLDER
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh
. tools/windows.sh
# shellcheck disable=SC2086 # a list of words
install_missing $windows_packages nsis icoutils unzip
get_windows_qt

tree=$PWD
build=$tree/build/windows-package
results=${1:-$build/results}
mkdir -p "$results"
results=$(cd "$results" && pwd)

failures=0
fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# same WHAT EXPECTED ACTUAL: compares two texts line by line.
same() {
    diff -u --label expected --label actual <(printf '%s\n' "$2") <(printf '%s\n' "$3") || fail "$1"
}

# ---- build ----

configure_for_windows "$build" -DQUARRYNET_BUILD_TESTS=OFF
cmake --build "$build"
rm -f "$build"/quarrynet-*-windows-x64.*
(cd "$build" && cpack)
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")
name=quarrynet-$version-windows-x64
cp "$build/$name.zip" "$build/$name.exe" "$results/"

# The same installer as an older version would have been, with a file that this one no longer has.
older=$build/older
rm -rf "$older"
mkdir -p "$older/styles"
echo old >"$older/styles/gone.txt"
(cd "$build" && cpack -G NSIS -D CPACK_PACKAGE_VERSION=0.9.0 -D CPACK_PACKAGE_FILE_NAME=older \
    -D "CPACK_INSTALLED_DIRECTORIES=$older;.") >/dev/null

# ---- the files ----

make_temporary_wine_folder
start_display

unzip -q "$build/$name.zip" -d "$work/unpacked"
same "the zip has one folder" "$name" "$(ls "$work/unpacked")"
unpacked=$work/unpacked/$name
files=$(cd "$unpacked" && find . -type f -printf '%P\n' | LC_ALL=C sort)
manual=$({ cd docs && find manual -type f && find manual -name '*.html' | sed 's,^manual/,manual/de/,'; } | LC_ALL=C sort)
same "the files of the zip" "$(LC_ALL=C sort <<END
Qt6Core.dll
Qt6Gui.dll
Qt6Network.dll
Qt6Widgets.dll
imageformats/qgif.dll
imageformats/qjpeg.dll
libgcc_s_seh-1.dll
libstdc++-6.dll
libwinpthread-1.dll
licenses/GCC-exception.txt
licenses/GPL-3.txt
licenses/LGPL-3.txt
licenses/quarrynet.txt
licenses/third-party.txt
$manual
platforms/qwindows.dll
qt.conf
quarrynet.exe
styles/qwindowsvistastyle.dll
tls/qschannelbackend.dll
END
)" "$files"
grep -q '^Qt [0-9.]*$' "$unpacked/licenses/third-party.txt" || fail "the notice names no version of Qt"
if grep -rlF "$tree" "$unpacked"; then
    fail "these files name the folder of the build"
fi

# Returns whether Windows has this library, going by Wine; the names api-ms-win-… stand for others.
part_of_windows() {
    [[ $1 == api-ms-win-* ]] || [ -n "$(find "$wine_folder" /usr/lib/*/wine -iname "$1" -print -quit 2>/dev/null)" ]
}

# Every imported library is in the package or part of Windows.
while read -r file; do
    folder=$(dirname "$unpacked/$file")
    while read -r import; do
        [ -e "$folder/$import" ] || [ -e "$unpacked/$import" ] || part_of_windows "$import" ||
            fail "$file imports $import, which is neither in the package nor part of Windows"
    done < <(x86_64-w64-mingw32-objdump -p "$unpacked/$file" | sed -n 's/.*DLL Name: //p')
done < <(grep -E '\.(exe|dll)$' <<<"$files")

# ---- the program's resources ----

program=$unpacked/quarrynet.exe
x86_64-w64-mingw32-objdump -p "$program" | grep '(Windows GUI)' >/dev/null || fail "the program opens a console window"
# The types of resources, by their numbers.
icons=14
versions=16
manifests=24
# As lines of names and values; the zero bytes of 16-bit text and of padding go.
wrestool --extract --type=$versions --raw "$program" | tr -d '\0' | tr -c '[:print:]' '\n' >"$work/version"
for text in "FileVersion$version" "ProductVersion$version" ProductNameQuarrynet FileDescriptionQuarrynet; do
    grep -F "$text" "$work/version" >/dev/null || fail "no $text in the resources"
done
wrestool --extract --type=$manifests --raw "$program" | tr -s ' \r\n' ' ' >"$work/manifest"
for text in 'name="Microsoft.Windows.Common-Controls" version="6.0.0.0"' '>PerMonitorV2, PerMonitor<' \
    'level="asInvoker"' '>true</longPathAware>' '{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}'; do
    grep -F "$text" "$work/manifest" >/dev/null || fail "no $text in the manifest"
done
if grep -q '<activeCodePage' "$work/manifest"; then
    fail "the manifest changes the code page"
fi
[ "$(wrestool --list --type=$manifests "$program" | wc -l)" = 1 ] || fail "not exactly one manifest"
wrestool --extract --type=$icons "$program" --output="$work/program.ico"
same "the sizes of the icon" "16 20 24 32 40 48 64 128 256" \
    "$(icotool --list "$work/program.ico" | sed -n 's/.*--width=\([0-9]*\).*/\1/p' | xargs)"

# ---- what is in a prefix ----

c=$WINEPREFIX/drive_c

# Prints all files and folders of the prefix, and its registry but for Wine's own notes about fonts and hardware.
contents() {
    end_wine
    (cd "$WINEPREFIX" && find drive_c -printf '%p\n')
    for hive in user system userdef; do
        awk -v hive="$hive" '/^\[/ { key = $0; sub(/\] [0-9]+$/, "]", key) }
            key ~ /^\[Software\\\\Wine|NetworkCards|4D36E96[8E]|Enum\\\\DISPLAY/ { next }
            /^\[/ { print hive, key; next }
            /^[@"]/ { print hive, key, $0 }' "$WINEPREFIX/$hive.reg"
    done
}
# Prints what was added ("> …") and removed ("< …") since `before` was kept.
changes() {
    diff <(LC_ALL=C sort <<<"$before") <(contents | LC_ALL=C sort) | grep '^[<>]' |
        # The copy in which the uninstaller works; Windows deletes it at its next start.
        grep -v '/Temp/~nsu\|"PendingFileRenameOperations"=' || true
}

run() { timeout 120 "$wine_folder/wine64" "$@"; }

# ---- the portable program ----

# What Windows has and Wine has not.
user=$(cd "$c/users" && find . -mindepth 1 -maxdepth 1 ! -name Public -printf '%P\n')
mkdir -p "$c/users/$user/AppData/Local/Programs"
programs='HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall'
run reg add "$programs" /f >/dev/null
ln -s /sys "$WINEPREFIX/dosdevices/q:" # a drive that nobody can write to
before=$(contents)
home="C:\\Eigene Wörter ωπ"
folder="$c/Eigene Wörter ωπ"
cp -r "$unpacked" "$folder"
same "--version of the portable program" "quarrynet $version" "$(run "$home\\quarrynet.exe" --version | tr -d '\r')"
mkdir -p "$results/pictures"
rm -f "$results/pictures"/*.png
run "$home\\quarrynet.exe" --tour "$(windows_path "$results/pictures")" 2>"$results/messages.txt" ||
    fail "the tour of the portable program ended with $?"
for picture in 1-start 2-web-search 3-page-check 4-image-search 5-download-search 6-file-search; do
    [ -s "$results/pictures/$picture.png" ] || fail "no picture $picture"
done
rm -f "$folder"/{blank.htm,blank.html,images.html,new.html,Quarrynet.history} # the files that it writes
same "the portable program writes nothing else into its folder" "$files" \
    "$(cd "$folder" && find . -type f -printf '%P\n' | LC_ALL=C sort)"
rm -r "$folder"
same "the portable program leaves nothing elsewhere" "" "$(changes)"

# ---- the installer ----

installer=$(windows_path "$build/$name.exe")
standard=$c/users/$user/AppData/Local/Programs/Quarrynet
standard_home="C:\\users\\$user\\AppData\\Local\\Programs\\Quarrynet"
installed_files=$(printf '%s\n' "$files" uninstall.exe | LC_ALL=C sort)
installed_in() { (cd "$1" && find . -type f -printf '%P\n') | LC_ALL=C sort; }
# listed VALUE: prints a value of the entry in the list of programs, with doubled "\".
listed() {
    rm -f "$c/listed.reg"
    run reg export "$programs\\Quarrynet" 'C:\listed.reg' >/dev/null
    iconv -f UTF-16 -t UTF-8 "$c/listed.reg" | tr -d '\r' | sed -n "s/^\"$1\"=\"\(.*\)\"\$/\1/p"
    rm "$c/listed.reg"
}
# expect STATUS WHAT COMMAND...
expect() {
    local wanted=$1 what=$2 status=0
    shift 2
    "$@" >/dev/null || status=$?
    [ "$status" = "$wanted" ] || fail "$what: exit status $status instead of $wanted"
}
# Wine itself would put arguments with blanks in quotes, which installer and uninstaller do not expect.
install_in() { run cmd /c "start /wait $installer /S /D=$1"; }
# uninstall FOLDER: the uninstaller works in a copy of itself, which is still at work when it returns.
uninstall() { run "$1\\uninstall.exe" /S && timeout 120 "$wine_folder/wineserver64" -w; }

expect 0 "installation" run "$installer" /S
same "the installed files" "$installed_files" "$(installed_in "$standard")"
same "the installed version" "$version" "$(listed DisplayVersion)"
start_menu="$c/users/$user/AppData/Roaming/Microsoft/Windows/Start Menu/Programs/Quarrynet.lnk"
[ -s "$start_menu" ] || fail "no entry in the start menu"
same "--version of the installed program" "quarrynet $version" \
    "$(run "$standard_home\\quarrynet.exe" --version | tr -d '\r')"

# Over a running copy: refused, and nothing changes.
run "$standard_home\\quarrynet.exe" 2>>"$results/messages.txt" &
for _ in $(seq 600); do
    [ ! -e "$standard/blank.html" ] || break
    sleep 0.1
done
stamps() { (cd "$standard" && find . -type f ! -name '*.htm*' -printf '%P %T@ %s\n') | LC_ALL=C sort; }
as_it_was=$(stamps)
expect 3 "installation over a running copy" run "$installer" /S
same "the copy that runs is unchanged" "$as_it_was" "$(stamps)"
expect 3 "removal of a running copy" run "$standard_home\\uninstall.exe" /S \
    "_?=$standard_home" # in its place, so that its exit status can be seen
same "the copy that runs is unchanged by its uninstaller" "$as_it_was" "$(stamps)"
run taskkill /f /im quarrynet.exe >/dev/null || fail "the program did not run during the installation"
wait $! || true

# Without settings nothing is left.
expect 0 "removal" uninstall "$standard_home"
same "the removal leaves nothing" "" "$(changes)"

# Over an older copy: its settings stay, its other files go.
expect 0 "installation of an older version" run "$(windows_path "$build/older.exe")" /S
same "the older version" 0.9.0 "$(listed DisplayVersion)"
[ -e "$standard/styles/gone.txt" ] || fail "the older version lacks its own file"
printf '[ProxyHost]\r\nValue=kept.example\r\n' >"$standard/Quarrynet.ini"
settings=$(cat "$standard/Quarrynet.ini")
with_settings=$(printf '%s\n' "$installed_files" Quarrynet.ini | LC_ALL=C sort)

# A folder that cannot be written: the older copy stays.
root_before=$(ls -A /) # the drive Z of Wine
expect 2 "installation into a folder that cannot be written" install_in 'Q:\Quarrynet'
same "the files in the root of the drive" "$root_before" "$(ls -A /)"

# A folder where something is in the way of a file: the older copy stays, and no new file comes.
mkdir -p "$c/in the way/Qt6Gui.dll"
expect 2 "installation where a folder is in the way" install_in 'C:\in the way'
[ -e "$standard/styles/gone.txt" ] && [ -e "$standard/quarrynet.exe" ] || fail "a failed upgrade removed the older copy"
same "what is in that folder" Qt6Gui.dll "$(ls "$c/in the way")"
rm -r "$c/in the way"
[ -e "$standard/styles/gone.txt" ] && [ -e "$standard/quarrynet.exe" ] || fail "a failed upgrade removed the older copy"

expect 0 "upgrade" run "$installer" /S
same "the files after the upgrade" "$with_settings" "$(installed_in "$standard")"
same "the settings after the upgrade" "$settings" "$(cat "$standard/Quarrynet.ini")"
same "the version after the upgrade" "$version" "$(listed DisplayVersion)"

# Into another folder: the copy moves, and takes its settings along.
moved="$c/Neue Wörter ωπ/Quarrynet"
expect 0 "installation into another folder" install_in 'C:\Neue Wörter ωπ\Quarrynet'
same "the files of the moved copy" "$with_settings" "$(installed_in "$moved")"
same "its settings" "$settings" "$(cat "$moved/Quarrynet.ini")"
same "its folder in the list of programs" 'C:\\Neue Wörter ωπ\\Quarrynet' "$(listed InstallLocation)"
same "what is left in the old folder" Quarrynet.ini "$(installed_in "$standard")"
same "--version of the moved copy" "quarrynet $version" \
    "$(run 'C:\Neue Wörter ωπ\Quarrynet\quarrynet.exe' --version | tr -d '\r')"

# A file of the user's in the folder, and the settings, stay.
echo mine >"$moved/mine.txt"
expect 0 "removal of the moved copy" uninstall 'C:\Neue Wörter ωπ\Quarrynet'
same "what is left of it" $'Quarrynet.ini\nmine.txt' "$(installed_in "$moved")"
rm -r "$c/Neue Wörter ωπ" "$standard"
same "the removal leaves nothing elsewhere" "" "$(changes)"

# Where a file of the package cannot be written, the installer says so.
mkdir -p "$c/taken/Qt6Core.dll"
expect 2 "installation into a folder with something in the way" install_in 'C:\taken'
rm -r "$c/taken"

ls -l "$results"/*.zip "$results"/*.exe
if [ "$failures" != 0 ]; then
    echo "$failures failures"
    exit 1
fi
echo "The packages are in $results, screenshots in $results/pictures"
