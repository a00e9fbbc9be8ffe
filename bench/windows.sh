#!/usr/bin/env bash
# Measures the program for Windows under Wine: the time from its start until its window shows and its peak memory, each
# beside a bare window in the same run; and the sizes of zip and installer, if tests/windows_package.sh has made them.
#
# Usage: bench/windows.sh [RUNS]
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh
. tools/windows.sh
# shellcheck disable=SC2086 # a list of words
install_missing $windows_packages
get_windows_qt

build=$PWD/build/windows-bench
configure_for_windows "$build" -DQUARRYNET_BUILD_TESTS=OFF -DQUARRYNET_BUILD_BENCH=ON
cmake --build "$build" --target startup_bench

make_temporary_wine_folder
start_display

# Installed, the program has its libraries beside it as users have them; the other programs share these.
cmake --install "$build" --prefix "$work/installed" --strip >/dev/null
cp -r "$build"/bin/{startup_bench.exe,bare_window.exe,startup_plugins} "$work/installed/"
"$wine_folder/wine64" cmd /c "$(windows_path "$work/installed/startup_bench.exe") ${1:-21} > C:\\figures.txt" ||
    echo "the bench ended with $?" >&2
cat "$WINEPREFIX/drive_c/figures.txt"
for package in build/windows-package/quarrynet-*-windows-x64.*; do
    [ ! -e "$package" ] || echo "$(basename "$package"): $(stat -c %s "$package" | awk '{ printf "%.1f", $1 / 1e6 }') MB"
done
