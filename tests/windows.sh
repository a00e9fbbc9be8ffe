#!/usr/bin/env bash
# Builds the program and all tests for Windows, and runs the tests under Wine: all of them without a display, and those
# for which it matters (label "native") also on Windows' own platform under Xvfb. Needs about 1.5 GB in build/windows and
# a temporary folder, and Qt for MinGW, which it makes once (see tools/windows.sh).
#     tests/windows.sh [--all] [REGULAR EXPRESSION]     only runs the tests whose names match
#     --all      runs all window tests on Windows' own platform, too
set -euo pipefail
label=native
if [ "${1:-}" = --all ]; then
    label=window
    shift
fi
chosen=${1:-.}
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

# Runs the chosen tests with the options of ctest that follow. A test that fails is tried once more: on a busy machine
# Wine may delay a program for longer than a test waits.
run_tests() {
    start_wine
    ctest --preset windows --repeat until-pass:2 -R "$chosen" "$@"
    end_wine
}

if ctest --test-dir build/windows -N -L "$label" -R "$chosen" | grep "^ *Test *#" >/dev/null; then
    start_display
    # One by one, because only one window of a display has the focus.
    QUARRYNET_WINE_PLATFORM=windows run_tests -L "$label" -j 1
    end_display
fi
run_tests
