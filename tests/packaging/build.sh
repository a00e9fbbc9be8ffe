# shellcheck shell=bash
# Sourced by tests/package.sh: building packages, and changing their version.
# shellcheck disable=SC2154 # variables of tests/package.sh

older_version=1.0.99

# build_packages SOURCE FOLDER RESULTS: builds the committed source of SOURCE in a new FOLDER, and checks the packages
# with lintian.
build_packages() {
    local log=$3/build.log
    rm -rf "$2"
    mkdir -p "$2" "$3"
    git -C "$1" archive HEAD | tar -x -C "$2"
    echo "Building the packages"
    (cd "$2" && dpkg-buildpackage -b -us -uc) >"$log" 2>&1 || { tail -n 30 "$log" >&2; return 1; }
    rm -f "$3"/quarrynet*.deb "$3"/quarrynet*.changes "$3"/quarrynet*.buildinfo
    mv "$(dirname "$2")"/quarrynet*.{deb,changes,buildinfo} "$3"
    # Root may build here; nothing else is suppressed.
    lintian --fail-on error,warning --allow-root "$3"/quarrynet_*.changes || fail "lintian"
}

# Builds the packages again elsewhere, at another time, in another language and with other permissions of new files.
compare_second_build() {
    local other=$work/second/another\ folder
    mkdir -p "$work/second-results"
    (umask 027 && export LC_ALL=C.UTF-8 TZ=Pacific/Kiritimati && unset CCACHE_DIR &&
        build_packages "$tree" "$other/source" "$work/second-results")
    for file in "$packages"/quarrynet*.deb; do
        cmp "$file" "$work/second-results/$(basename "$file")" || fail "$(basename "$file") differs between two builds"
    done
}

# collect FROM TO: copies the packages of a folder, whatever their files are called, under their usual names.
collect() {
    local file name found=0
    for file in "$1"/*.deb; do
        name=$(dpkg-deb -f "$file" Package)
        cp "$file" "$2/${name}_$(dpkg-deb -f "$file" Version)_$(dpkg-deb -f "$file" Architecture).deb"
        found=$((found + 1))
    done
    [ "$found" = 3 ] || { echo "$1 has $found packages instead of three" >&2; return 1; }
}

# make_older FROM TO: gives the packages a lower version.
make_older() {
    local file version unpacked=$work/unpacked
    for file in "$1"/*.deb; do
        version=$(dpkg-deb -f "$file" Version)
        rm -rf "$unpacked"
        dpkg-deb -R "$file" "$unpacked"
        sed -i -e "s/^Version: .*/Version: $older_version/" -e "s/(= $version)/(= $older_version)/g" \
            "$unpacked/DEBIAN/control"
        dpkg-deb --root-owner-group -Znone -b "$unpacked" "$2" >/dev/null
    done
    rm -rf "$unpacked"
}
