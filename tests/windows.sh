#!/usr/bin/env bash
# Builds the program and all tests for Windows, and runs the tests under Wine: all of them without a display, and most
# window tests once more on Windows' own platform under Xvfb. Needs about 1.5 GB in build/windows and a temporary
# folder, and Qt for MinGW, which it makes once (see tools/windows.sh).
#     tests/windows.sh [REGULAR EXPRESSION]     only runs the tests whose names match
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh
. tools/windows.sh
# shellcheck disable=SC2086 # a list of words
install_missing $windows_packages
get_windows_qt
get_windows_gtest

configure_for_windows build/windows
cmake --build --preset windows

make_temporary_wine_folder
export WINEPATH="Z:${windows_qt//\//\\}\\bin"

chosen=${1:-.}
# Wine's server now and then delays a program for longer than a test waits, so a failure is tried once more.
again="--repeat until-pass:2"
# These measure what is drawn, for which they expect the fonts that the tests have without a display.
pixels='^(gallery_view_test|contrast_test)$'
native=$(ctest --test-dir build/windows -N -L window -R "$chosen" -E "$pixels" | grep -c '^ *Test *#' || true)
if [ "$native" != 0 ]; then
    # shellcheck disable=SC2086 # two words
    QUARRYNET_WINE_PLATFORM=windows xvfb-run -a -s '-screen 0 1280x800x24' \
        ctest --preset windows -L window -j 1 $again -R "$chosen" -E "$pixels"
    end_wine
fi
# shellcheck disable=SC2086 # two words
ctest --preset windows $again -R "$chosen"
