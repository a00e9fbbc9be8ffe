#!/usr/bin/env bash
# Builds everything and runs the tests twice: under the address and undefined-behaviour sanitizers, and optimised with
# warnings as errors. Fault and cost tests run in the second build only. In between it runs the services' tests with
# threads under the thread sanitizer, and fuzzes every reader of outside input for some seconds.
#     ./test.sh [--quick | --all]
# --quick skips the sanitizers, the fuzzing and the static analysis. --all analyses every source, not only those that
# differ from the upstream branch.
set -euo pipefail
cd "$(dirname "$0")"
quick=""
tidy=()
case "${1:-}" in
"") ;;
--quick) quick=yes ;;
--all) tidy=(--all) ;;
*)
    echo "Usage: ./test.sh [--quick | --all]" >&2
    exit 2
    ;;
esac

. tools/packages.sh
# shellcheck disable=SC2154,SC2086 # lists of words, from tools/packages.sh
install_missing $build_packages $run_packages $test_packages
install_test_servers

tools/format.sh --check

build_and_test() {
    echo "== $1"
    cmake --preset "$1" >"build-$1.log" 2>&1 || { cat "build-$1.log"; rm -f "build-$1.log"; return 1; }
    rm -f "build-$1.log"
    cmake --build --preset "$1"
    [ "$1" != ci ] || [ -n "$quick" ] || tools/tidy.sh "${tidy[@]}" "$1"
    ctest --preset "$1"
}

if [ -z "$quick" ]; then
    build_and_test asan
    build_and_test tsan
    build_and_test fuzz
fi
build_and_test ci
