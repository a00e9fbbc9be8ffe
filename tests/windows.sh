#!/bin/sh
# Builds the core library and its tests for Windows and runs them under Wine. Among other things this shows that our INI
# reader and writer and the private-profile functions of Windows behave alike. ./test.sh does not run it, because it
# needs a cross-compiler and Wine (about 1 GB; installed on Debian if missing).
#
# Usage: tests/windows.sh [REGULAR EXPRESSION]     runs only the tests whose names match
set -eu

cd "$(dirname "$0")/.."
build=build/windows
gtest=$build/googletest

packages='g++-mingw-w64-x86-64-posix wine64 cmake ninja-build googletest'
missing=
for package in $packages; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
done
if [ -n "$missing" ]; then
    root=
    [ "$(id -u)" -eq 0 ] || root=sudo
    $root apt-get update
    # shellcheck disable=SC2086
    $root apt-get install -y --no-install-recommends $missing
fi

mkdir -p "$build"
toolchain=$PWD/cmake/mingw-w64.cmake
if [ ! -f "$gtest/installed/lib/libgtest.a" ]; then
    cmake -S /usr/src/googletest -B "$gtest" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$PWD/$gtest/installed" > "$gtest.log" 2>&1 || { cat "$gtest.log"; exit 1; }
    cmake --build "$gtest" --target install > "$gtest.log" 2>&1 || { cat "$gtest.log"; exit 1; }
fi
cmake -S . -B "$build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_FIND_ROOT_PATH="$PWD/$gtest/installed" -DCMAKE_PREFIX_PATH=/ \
    -DQUARRYNET_WARNINGS_AS_ERRORS=ON -DQUARRYNET_BUILD_GUI=OFF -DQUARRYNET_BUILD_SERVICES=OFF
cmake --build "$build"

# A temporary Windows folder, so that the user's Wine settings have no effect and do not change.
WINEPREFIX=$(mktemp -d)
export WINEPREFIX WINEDEBUG=-all
finish() {
    /usr/lib/wine/wineserver64 -k 2>/dev/null || true
    /usr/lib/wine/wineserver64 -w 2>/dev/null || true
    rm -rf "$WINEPREFIX"
}
trap finish EXIT
trap 'exit 1' INT TERM
/usr/lib/wine/wine64 wineboot -i > /dev/null 2>&1

ctest --test-dir "$build" --output-on-failure --no-tests=error -j 2 -R "${1:-.}"
