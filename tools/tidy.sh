#!/usr/bin/env bash
# Static analysis by .clang-tidy of the sources that changed since they last passed; all of them after a clean build.
# Argument: the build preset whose compile commands are used (default ci), already built.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-ci}
stamp=build/$preset/tidy.stamp
inputs=(.clang-tidy)
sources=()
if [ -e "$stamp" ] && [ -z "$(git ls-files '*.h' "${inputs[@]}" | xargs -I{} find {} -newer "$stamp")" ]; then
    mapfile -t sources < <(git ls-files '*.cpp' ':!tests' | xargs -I{} find {} -newer "$stamp")
else
    mapfile -t sources < <(git ls-files '*.cpp' ':!tests')
fi
# Only what this build compiles: other systems' files, fuzzers and benchmarks have no commands here.
wanted=()
for source in "${sources[@]}"; do
    if grep -qF "\"file\": \"$PWD/$source\"" "build/$preset/compile_commands.json"; then
        wanted+=("$source")
    fi
done
if [ ${#wanted[@]} -gt 0 ]; then
    printf '%s\n' "${wanted[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p "build/$preset" --quiet 2> >(grep -v 'warnings generated' >&2)
fi
touch "$stamp"
