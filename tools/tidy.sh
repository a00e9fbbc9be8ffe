#!/usr/bin/env bash
# Runs clang-tidy on the sources that differ from the upstream branch, or that include a header that differs.
#     tools/tidy.sh [--all] [--deep] [PRESET]
# --all analyses every source. --deep follows each function's paths as far as the analyser does by default; without it a
# third of these steps takes half the time. PRESET names the build whose compile commands are used (default ci); it must
# be built.
set -euo pipefail
cd "$(dirname "$0")/.."
all=""
[ "${1:-}" != --all ] || { all=yes; shift; }
steps=75000
[ "${1:-}" != --deep ] || { steps=225000; shift; }
build=build/${1:-ci}

# Prints the files that differ from the upstream branch. Fails if there is none, or if the rules have changed; all
# sources are analysed then.
changed() {
    base=$(git merge-base HEAD '@{upstream}' 2>/dev/null || git merge-base HEAD origin/HEAD 2>/dev/null) || return 1
    files=$(git diff --name-only "$base" && git ls-files --others --exclude-standard)
    ! grep -qxF .clang-tidy <<<"$files" || return 1
    printf '%s\n' "$files"
}

if [ -z "$all" ] && files=$(changed); then
    # ninja lists the source and the headers of each object file, as the compiler reported them.
    mapfile -t sources < <(ninja -C "$build" -t deps | awk -v top="$PWD/" -v files="$files" '
        BEGIN { n = split(files, list, "\n"); for (i = 1; i <= n; i++) if (list[i] ~ /\.(cpp|h)$/) wanted[list[i]] = 1 }
        /^[^ ]/ { source = "" }
        /^ / { sub(/^ +/, ""); sub(/^(\.\.\/)+/, ""); if (index($0, top) == 1) $0 = substr($0, length(top) + 1)
               if (source == "") source = $0
               if ($0 in wanted) print source }' | grep '\.cpp$' | sort -u)
else
    mapfile -t sources < <(git ls-files '*.cpp')
fi
# Keeps only what this build compiles, without tests. Files for other systems, fuzzers and benchmarks have no commands
# here.
wanted=()
for source in "${sources[@]}"; do
    if [[ $source != tests/* ]] && grep -qF "\"file\": \"$PWD/$source\"" "$build/compile_commands.json"; then
        wanted+=("$source")
    fi
done
echo "clang-tidy: ${#wanted[@]} sources"
[ ${#wanted[@]} -gt 0 ] || exit 0

# The plug-in is built for this clang-tidy, whose headers (libclang-14-dev) lie beside it.
options=(--quiet --extra-arg=-Xclang --extra-arg=-analyzer-config --extra-arg=-Xclang --extra-arg=max-nodes=$steps)
llvm=$(dirname "$(dirname "$(readlink -f "$(command -v clang-tidy)")")")
plugin=$PWD/build/tidy/own_code.so
mkdir -p build/tidy
if [ ! -e "$plugin" ] || [ tools/tidy/own_code.cpp -nt "$plugin" ] || [ "$llvm/bin/clang-tidy" -nt "$plugin" ]; then
    clang++ -std=c++17 -O1 -fPIC -shared -fno-rtti -D__STDC_CONSTANT_MACROS -D__STDC_LIMIT_MACROS \
        -isystem "$llvm/include" tools/tidy/own_code.cpp -o "$plugin" 2>build/tidy/plugin.log || rm -f "$plugin"
fi
if [ -e "$plugin" ]; then
    options+=(--load "$plugin" --checks=quarrynet-own-code)
else
    echo "clang-tidy: the plug-in was not built (build/tidy/plugin.log), so this takes three times as long"
fi
clang-tidy "${options[@]}" tools/tidy/known_fault.cpp -- -std=c++20 >build/tidy/known_fault.log 2>&1 || true
# The static analyser reports it as well, but does not depend on what the plug-in lets the checks visit.
if ! grep -q bugprone-use-after-move build/tidy/known_fault.log; then
    cat build/tidy/known_fault.log
    echo "clang-tidy does not report the fault in tools/tidy/known_fault.cpp" >&2
    exit 1
fi
printf '%s\n' "${wanted[@]}" |
    xargs -P "$(nproc)" -n 4 clang-tidy -p "$build" "${options[@]}" 2> >(grep -v 'warnings generated' >&2)
