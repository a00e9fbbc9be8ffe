#!/usr/bin/env bash
# Runs the fuzz targets for a longer time, one after another. An input that breaks something is saved in the current
# folder; fix the fault and keep the input under corpus/TARGET, with a name that says what it is.
#     tests/fuzz/run.sh [SECONDS_EACH] [TARGET...]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
top=$(cd "$here/../.." && pwd)
. "$top/tools/packages.sh"
# shellcheck disable=SC2154,SC2086 # lists of words, from tools/packages.sh
install_missing $build_packages $test_packages
seconds=${1:-60}
shift || true
(cd "$top" && cmake --preset fuzz >/dev/null && cmake --build --preset fuzz)
targets=("$@")
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <(cd "$here" && ls *_fuzz.cpp | sed 's/\.cpp$//')
for target in "${targets[@]}"; do
    dictionary=$here/$target.dict
    [ -e "$dictionary" ] || dictionary=$here/pages.dict
    found=$top/build/fuzz/tests/fuzz/found/$target
    echo "== $target"
    ASAN_OPTIONS=detect_leaks=0 "$top/build/fuzz/bin/$target" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
        -dict="$dictionary" -print_final_stats=1 "$found" "$here/corpus/$target" 2>&1 |
        grep -E 'ERROR|SUMMARY|does not hold|Test unit written|number_of_executed_units' || true
done
