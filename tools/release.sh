#!/usr/bin/env bash
# Makes the files of a release in FOLDER (default: dist in the source): the source archive, the Debian packages, and
# their checksums.
#     tools/release.sh [FOLDER]
# The source is the commit of the tag "v" and the project's version (see "Release" in CONTRIBUTING); without such a tag
# it is the current commit, and the script says so. The same commit gives the same bytes on the same Debian 12.
set -euo pipefail
folder=
if [ $# -gt 0 ]; then
    mkdir -p -- "$1"
    folder=$(cd -- "$1" >/dev/null && pwd)
fi
cd "$(dirname "$0")/.."
folder=${folder:-$PWD/dist}
mkdir -p "$folder"
. tools/packages.sh
# shellcheck disable=SC2154,SC2086 # lists of words, from tools/packages.sh
install_missing $build_packages build-essential debhelper dpkg-dev git lintian xz-utils

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

version=$(sed -n 's/^project(Quarrynet VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
commit=HEAD
if git rev-parse -q --verify "refs/tags/v$version" >/dev/null; then
    commit=v$version
    git grep -q "^## $version - " "$commit" -- CHANGELOG.md || {
        echo "CHANGELOG.md of the tag $commit has no heading of this version." >&2
        exit 1
    }
else
    echo "There is no tag v$version; this is a release of the current commit, for trying it out."
fi
if [ "$commit" = HEAD ] && [ -n "$(git status --porcelain)" ]; then
    echo "The working tree has changes, which are not in the release."
fi

# The archive has the commit's time and no names of users. xz with one thread, because the number of threads changes
# the bytes.
name=quarrynet-$version
rm -f "$folder"/quarrynet[-_]"$version"* "$folder"/quarrynet_*_"$version"* "$folder/SHA256SUMS"
git archive --format=tar --prefix="$name/" "$commit" | xz -6 --threads=1 >"$folder/$name.tar.xz"

# The packages come from the archive and not from the working tree.
tar -xJf "$folder/$name.tar.xz" -C "$work"
(cd "$work/$name" && dpkg-buildpackage -b -us -uc) >"$work/build.log" 2>&1 || {
    tail -n 30 "$work/build.log" >&2
    exit 1
}
lintian --fail-on error,warning --allow-root "$work"/quarrynet_*.changes

# All names begin with "quarrynet_", so that "apt install ./quarrynet_*.deb" takes the three packages.
for file in "$work"/quarrynet*.deb; do
    package=$(basename "$file")
    mv "$file" "$folder/${package/#quarrynet-/quarrynet_}"
done
(cd "$folder" && sha256sum "$name.tar.xz" quarrynet_*"$version"_*.deb >SHA256SUMS && cat SHA256SUMS)
