#!/usr/bin/env bash
# Static analysis by .clang-tidy of the sources that differ from the upstream branch, or that include a header which does.
#     tools/tidy.sh [--all] [PRESET]
# --all analyses every source. PRESET names the build whose compile commands are used (default ci); it has to be built.
set -euo pipefail
cd "$(dirname "$0")/.."
all=""
[ "${1:-}" != --all ] || { all=yes; shift; }
build=build/${1:-ci}

# Files that differ from what is upstream; everything where there is no upstream, or where the rules have changed.
changed() {
    base=$(git merge-base HEAD '@{upstream}' 2>/dev/null || git merge-base HEAD origin/HEAD 2>/dev/null) || return 1
    files=$(git diff --name-only "$base" && git ls-files --others --exclude-standard)
    ! grep -qxF .clang-tidy <<<"$files" || return 1
    printf '%s\n' "$files"
}

if [ -z "$all" ] && files=$(changed); then
    # Each object file's sources and headers, as the compiler named them to the build.
    mapfile -t sources < <(ninja -C "$build" -t deps | awk -v top="$PWD/" -v files="$files" '
        BEGIN { n = split(files, list, "\n"); for (i = 1; i <= n; i++) if (list[i] ~ /\.(cpp|h)$/) wanted[list[i]] = 1 }
        /^[^ ]/ { source = "" }
        /^ / { sub(/^ +/, ""); sub(/^(\.\.\/)+/, ""); if (index($0, top) == 1) $0 = substr($0, length(top) + 1)
               if (source == "") source = $0
               if ($0 in wanted) print source }' | grep '\.cpp$' | sort -u)
else
    mapfile -t sources < <(git ls-files '*.cpp')
fi
# Only what this build compiles: other systems' files, fuzzers and benchmarks have no commands here. Tests are left out.
wanted=()
for source in "${sources[@]}"; do
    if [[ $source != tests/* ]] && grep -qF "\"file\": \"$PWD/$source\"" "$build/compile_commands.json"; then
        wanted+=("$source")
    fi
done
echo "clang-tidy: ${#wanted[@]} sources"
[ ${#wanted[@]} -gt 0 ] || exit 0
printf '%s\n' "${wanted[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p "$build" --quiet 2> >(grep -v 'warnings generated' >&2)
