#!/usr/bin/env bash
# Installs the Debian packages on fresh Debian 12 systems, uses them and removes them: the menu entry, a search on each
# tab as an ordinary user, two users at once, without the browser plug-in or systemd, upgrade, removal and purge, and
# what is left;
# without network and package lists, with a taken port, a full disk, a newer index, and broken configuration.
#
# Usage, as root: tests/package.sh [--packages FOLDER] [--from FOLDER] [--results FOLDER] [--reproducible] [TEST...]
#   --packages FOLDER   tests the packages in FOLDER; without it they are built from the committed source
#   --from FOLDER       upgrades from the packages in FOLDER; without it from the same packages with a lower version
#   --results FOLDER    keeps the packages, and the screenshots of every tour, in FOLDER (default: build/package)
#   --reproducible      builds the packages twice, in different folders and at different times, and compares the bytes
#   TEST...             runs only these tests, functions test_NAME in tests/packaging/tests.sh
#
# Each system is a container with a systemd and a network of its own (systemd-nspawn), so the script needs a kernel with
# overlayfs and namespaces. The base system and the downloaded packages are kept in ~/.cache/quarrynet.
set -euo pipefail
if [ "$(id -u)" != 0 ]; then
    echo "This needs root, for containers: sudo $0 $*" >&2
    exit 2
fi

# folder NAME: prints the whole path of a folder.
folder() { cd -- "$1" >/dev/null && pwd; }
results=
packages=
from=
reproducible=
tests=()
while [ $# -gt 0 ]; do
    case "$1" in
    --packages | --from | --results)
        [ $# -gt 1 ] || { echo "$1 needs a folder" >&2; exit 2; }
        [ "$1" != --results ] || mkdir -p -- "$2"
        path=$(folder "$2")
        declare "${1#--}=$path"
        shift
        ;;
    --reproducible) reproducible=yes ;;
    -*) echo "Unknown option: $1" >&2 && exit 2 ;;
    *) tests+=("$1") ;;
    esac
    shift
done
cd "$(dirname "$0")/.."
tree=$PWD
results=${results:-$tree/build/package}
mkdir -p "$results"

. tools/packages.sh
# shellcheck disable=SC2154,SC2086 # a list of words
install_missing $package_test_packages
. tests/packaging/machine.sh
. tests/packaging/driving.sh
. tests/packaging/build.sh
. tests/packaging/update_hook.sh
. tests/packaging/tests.sh

cache=${XDG_CACHE_HOME:-$HOME/.cache}/quarrynet/debian
work=$(mktemp -d "${TMPDIR:-/var/tmp}/quarrynet-package.XXXXXX")
debs=$work/debs
old=$work/old
mkdir -p "$debs" "$old"

clean_up() {
    halt
    while read -r place; do umount -l "$place"; done < <(awk -v work="$work/" 'index($2, work) == 1 { print $2 }' \
        /proc/mounts | sort -r)
    rm -rf "$work"
}
trap clean_up EXIT

if [ -z "$packages" ]; then
    packages=$results
    # shellcheck disable=SC2154,SC2086 # a list of words
    install_missing $build_packages
    build_packages "$tree" "$work/build/quarrynet" "$packages"
fi
[ -z "$reproducible" ] || compare_second_build
collect "$packages" "$debs"
version=$(dpkg-deb -f "$debs"/quarrynet_*.deb Version)
if [ -n "$from" ]; then
    collect "$from" "$old"
else
    echo "The upgrade starts from the same packages with version $older_version, because no earlier ones were given."
    make_older "$debs" "$old"
fi
if [ ${#tests[@]} = 0 ]; then
    mapfile -t tests < <(declare -F | sed -n 's/^declare -f test_//p')
fi

# Two runs cannot use the downloaded packages at once.
mkdir -p "$cache"
exec {running}>"$cache/lock"
flock --nonblock $running || { echo "Waiting for another run of this script"; flock $running; }
make_base
make_ready
for name in "${tests[@]}"; do
    echo "== $name"
    before=$failures
    "test_$name"
    stop_machine
    [ "$failures" = "$before" ] || echo "   failed"
done
echo "The screenshots are in $results"
if [ "$failures" != 0 ]; then
    echo "$failures checks failed" >&2
    exit 1
fi
