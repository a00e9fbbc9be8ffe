# Sourced by the scripts that build for Windows and run the result under Wine, on Debian 12. Downloads and their
# results are kept in $windows_cache, which may be deleted at any time.

windows_packages="g++-mingw-w64-x86-64-posix wine64 cmake ninja-build googletest qt6-base-dev qt6-base-dev-tools qt6-l10n-tools
    python3 xz-utils xvfb xauth fonts-dejavu-core"
windows_cache="${XDG_CACHE_HOME:-$HOME/.cache}/quarrynet"
windows_qt="$windows_cache/qt6-mingw"
windows_gtest="$windows_cache/googletest-mingw"
wine_folder=/usr/lib/wine

# Makes $windows_qt: Qt Core, Gui, Widgets, Network and Test for MinGW. It is unpacked from an archive of an earlier
# build ($QUARRYNET_QT_FOR_WINDOWS, or qt6-mingw.txz in a folder "shared" beside the project), if there is one;
# otherwise it is built from Debian's source, which takes 20 minutes on two cores.
get_windows_qt() {
    [ ! -f "$windows_qt/complete" ] || return 0
    archive=$(find_windows_qt_archive)
    rm -rf "$windows_qt"
    mkdir -p "$windows_qt"
    if [ -n "$archive" ]; then
        echo "Unpacking Qt for Windows from $archive"
        tar -xJf "$archive" -C "$windows_qt" --strip-components=1
    else
        build_windows_qt
    fi
    touch "$windows_qt/complete"
}

# Tells whether Qt for Windows is there already, or can be unpacked.
has_windows_qt() { [ -f "$windows_qt/complete" ] || [ -n "$(find_windows_qt_archive)" ]; }

# Prints the path of the archive with Qt for Windows, or nothing.
find_windows_qt_archive() {
    for archive in "${QUARRYNET_QT_FOR_WINDOWS:-}" ../shared/qt6-mingw.txz; do
        if [ -f "$archive" ]; then
            echo "$archive"
            return
        fi
    done
}

# Builds Qt from the source of Debian's package and installs it in $windows_qt.
build_windows_qt() {
    echo "Building Qt for Windows from Debian's source (20 minutes on two cores)"
    sources="$windows_cache/qt6-source"
    rm -rf "$sources"
    mkdir -p "$sources/apt/lists/partial" "$sources/apt/parts"
    # The machine's package sources, for source packages, in lists of their own: the system's stay as they are.
    : >"$sources/apt/sources.list"
    [ ! -f /etc/apt/sources.list ] || sed -n 's/^deb /deb-src /p' /etc/apt/sources.list >"$sources/apt/sources.list"
    for list in /etc/apt/sources.list.d/*; do
        case "$list" in
        *.sources) sed 's/^Types:.*/Types: deb-src/' "$list" >"$sources/apt/parts/${list##*/}" ;;
        *.list) sed -n 's/^deb /deb-src /p' "$list" >"$sources/apt/parts/${list##*/}" ;;
        esac
    done
    (
        cd "$sources"
        set -- -qq -o "Dir::Etc::sourcelist=$sources/apt/sources.list" -o "Dir::Etc::sourceparts=$sources/apt/parts" \
            -o "Dir::State::lists=$sources/apt/lists" -o "Dir::Cache::pkgcache=" -o "Dir::Cache::srcpkgcache=" \
            -o "APT::Sandbox::User=$(id -un)"
        apt-get "$@" update
        apt-get "$@" --download-only source qt6-base
        mkdir qtbase
        tar -xf ./*.orig.tar.* -C qtbase --strip-components=1
    )
    cp cmake/mingw-w64.cmake "$windows_qt/mingw-toolchain.cmake" # Qt's own toolchain file includes it
    options="-DBUILD_SHARED_LIBS=ON -DQT_BUILD_EXAMPLES=OFF -DQT_BUILD_TESTS=OFF -DINPUT_opengl=no"
    for feature in pkg_config icu glib zstd openssl opengl vulkan dbus sql xml concurrent printsupport tabletevent \
        androiddeployqt system_zlib system_pcre2 system_png system_jpeg system_freetype system_harfbuzz \
        system_doubleconversion; do
        options="$options -DFEATURE_$feature=OFF"
    done
    # shellcheck disable=SC2086 # a list of options
    cmake -S "$sources/qtbase" -B "$sources/build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$windows_qt/mingw-toolchain.cmake" \
        -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="$(qt_host_cmake)" -DQT_QMAKE_TARGET_MKSPEC=win32-g++ \
        -DCMAKE_INSTALL_PREFIX="$windows_qt" -DCMAKE_BUILD_TYPE=Release $options >"$sources/configure.log" 2>&1 ||
        { tail -40 "$sources/configure.log"; return 1; }
    cmake --build "$sources/build"
    cmake --install "$sources/build" --strip >"$sources/install.log"
    for library in libgcc_s_seh-1.dll libstdc++-6.dll; do
        cp "$(x86_64-w64-mingw32-g++-posix -print-file-name=$library)" "$windows_qt/bin/"
    done
    cp /usr/x86_64-w64-mingw32/lib/libwinpthread-1.dll "$windows_qt/bin/"
    rm -rf "$sources"
}

# Configures the build folder $1 for Windows, with the options that follow.
configure_for_windows() {
    mkdir -p "$1"
    QUARRYNET_WINDOWS_QT="$windows_qt" QUARRYNET_WINDOWS_GTEST="$windows_gtest" QUARRYNET_HOST_QT="$(qt_host_cmake)" \
        cmake --preset windows -B "$@" >"$1/configure.log" 2>&1 || { cat "$1/configure.log"; return 1; }
}

# Prints the folder of the CMake packages of this machine's Qt, whose tools a build for Windows uses.
qt_host_cmake() { dpkg -L qt6-base-dev | sed -n 's|/Qt6/Qt6Config\.cmake$||p'; }

# Makes $windows_gtest: GoogleTest for MinGW, from Debian's source.
get_windows_gtest() {
    version=$(dpkg-query -W -f '${Version}' googletest)
    [ "$(cat "$windows_gtest/complete" 2>/dev/null)" != "$version" ] || return 0
    rm -rf "$windows_gtest"
    mkdir -p "$windows_gtest"
    { cmake -S /usr/src/googletest -B "$windows_gtest/build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/mingw-w64.cmake" -DCMAKE_INSTALL_PREFIX="$windows_gtest" &&
        cmake --build "$windows_gtest/build" --target install; } >"$windows_gtest/log" 2>&1 ||
        { cat "$windows_gtest/log"; return 1; }
    echo "$version" >"$windows_gtest/complete"
}

# Makes a Windows folder for Wine at $1, for programs of the Qt in $windows_qt, and exports WINEPREFIX. Nothing of the
# user's own Wine settings is used or changed.
make_wine_folder() {
    export WINEPREFIX="$1" WINEDEBUG="${WINEDEBUG:--all}"
    export LC_ALL=C.UTF-8 # Wine reads the names of files by it
    export WINEDLLOVERRIDES=winemenubuilder.exe=d # puts what is installed into the user's own menus
    unset DISPLAY
    "$wine_folder/wine64" wineboot -i >/dev/null 2>&1
    "$wine_folder/wine64" winecfg -v win10 >/dev/null 2>&1
    {
        printf 'Windows Registry Editor Version 5.00\r\n'
        printf '\r\n[%s]\r\n' 'HKEY_CURRENT_USER\Environment'
        printf '"QT_FORCE_STDERR_LOGGING"="1"\r\n' # otherwise QtTest writes to the debugger
        printf '"QT_QPA_FONTDIR"="Z:\\\\usr\\\\share\\\\fonts\\\\truetype\\\\dejavu"\r\n' # for the offscreen platform
        printf '\r\n[%s]\r\n' 'HKEY_CURRENT_USER\Software\Wine\Fonts\Replacements'
        for font in Tahoma 'MS Shell Dlg' 'MS Shell Dlg 2' 'Segoe UI' Arial 'Microsoft Sans Serif'; do
            printf '"%s"="DejaVu Sans"\r\n' "$font" # Wine has no fonts of its own here
        done
        printf '\r\n[%s]\r\n"Desktop"="Default"\r\n' 'HKEY_CURRENT_USER\Software\Wine\Explorer'
        # Without a virtual desktop no window becomes active under a bare X server.
        printf '\r\n[%s]\r\n"Default"="1280x800"\r\n' 'HKEY_CURRENT_USER\Software\Wine\Explorer\Desktops'
    } >"$WINEPREFIX/settings.reg"
    "$wine_folder/wine64" reg import "$WINEPREFIX/settings.reg" >/dev/null 2>&1
    end_wine
    # The drive's share, which Windows itself has, for the tests of network paths.
    mkdir -p "$WINEPREFIX/dosdevices/unc/localhost"
    ln -sfn ../../../drive_c "$WINEPREFIX/dosdevices/unc/localhost/c\$"
}

# Makes the temporary folder $work with a Wine folder in it. The end of the script ends Wine and the display, and removes
# the folder.
make_temporary_wine_folder() {
    work=$(mktemp -d)
    case "$PWD$work" in
    *' '*) echo "The paths of the project and of temporary files must not contain blanks." >&2; return 1 ;;
    esac
    export WINEPREFIX="$work/wine" # before anything could end the Wine programs of another one
    trap 'end_wine; end_display; rm -rf "$work"' EXIT
    trap 'exit 1' INT TERM
    make_wine_folder "$work/wine"
}

# Starts Wine's server, services and desktop for the programs of WINEPREFIX, until end_wine. Otherwise the first of the
# programs that run at a time starts them and the last one ends them, which takes seconds, and a reader of the first
# one's output waits for the end of theirs, too.
start_wine() {
    rm -f "$WINEPREFIX/ready"
    "$wine_folder/wineserver64" -p
    "$wine_folder/wine64" explorer '/desktop=Default,1280x800' cmd /d /c "echo >$(windows_path "$WINEPREFIX/ready")" \
        >/dev/null 2>&1 &
    desktop=$!
    until [ -e "$WINEPREFIX/ready" ]; do
        kill -0 "$desktop" || return 1
        sleep 0.05
    done
}

# Ends the programs of WINEPREFIX. A program with a display needs a new server.
end_wine() {
    "$wine_folder/wineserver64" -k 2>/dev/null || true
    "$wine_folder/wineserver64" -w 2>/dev/null || true
}

# Starts an X server of its own and exports DISPLAY, so that no window appears on the user's display.
start_display() {
    Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp 3>"$WINEPREFIX/display" >/dev/null 2>&1 &
    display_server=$!
    until [ -s "$WINEPREFIX/display" ]; do
        kill -0 "$display_server" || return 1
        sleep 0.05
    done
    DISPLAY=:$(cat "$WINEPREFIX/display")
    export DISPLAY
}

end_display() {
    [ -z "${display_server:-}" ] || kill "$display_server" 2>/dev/null || true
    unset DISPLAY display_server
}

# Prints the path $1 of this system as Windows programs under Wine know it.
windows_path() { echo "Z:$1" | tr / '\\'; }
