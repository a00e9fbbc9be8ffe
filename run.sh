#!/usr/bin/env bash
# Builds the program if needed, starts the local search services and then the program, and stops the services with it.
# Without a display, or with --tour [FOLDER], it takes screenshots of a tour through the tabs instead.
set -euo pipefail
cd "$(dirname "$0")"
case "${1:-}" in
"" | --tour) ;;
*)
    echo "Usage: ./run.sh [--tour [FOLDER]]" >&2
    exit 2
    ;;
esac
. tools/packages.sh
# shellcheck disable=SC2154,SC2086 # lists of words, from tools/packages.sh
install_missing $build_packages $run_packages

cmake --preset release >/dev/null
cmake --build --preset release
bin=$PWD/build/release/bin

data=${XDG_DATA_HOME:-$HOME/.local/share}/quarrynet
"$bin/quarrynet-services" index --if-needed --data "$data" || echo "The searches say what to do about the index." >&2

# The services listen on port 80 of loopback addresses, for which ordinary users need a permission.
lowest=$(cat /proc/sys/net/ipv4/ip_unprivileged_port_start 2>/dev/null || echo 1024)
if [ "$(id -u)" != 0 ] && [ "$lowest" -gt 80 ] && ! getcap "$bin/quarrynet-services" | grep -q cap_net_bind_service; then
    echo "Permitting quarrynet-services to listen on port 80:"
    sudo setcap cap_net_bind_service=+ep "$bin/quarrynet-services" || echo "Not permitted. In the program, choose View > Proxy and enter 127.0.0.1 and 8780." >&2
fi

log=$(mktemp)
"$bin/quarrynet-services" serve --data "$data" >"$log" 2>&1 &
services=$!
trap 'kill $services 2>/dev/null || true; wait $services 2>/dev/null || true; rm -f "$log"' EXIT
until grep -q 'ready' "$log"; do
    kill -0 $services 2>/dev/null || { cat "$log" >&2; echo "The local services did not start." >&2; break; }
    sleep 0.05
done
cat "$log"

if [ "${1:-}" != --tour ] && [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    "$bin/quarrynet"
else
    pictures=${2:-$PWD/tour}
    mkdir -p "$pictures"
    # The tour gets its own display even if there is one, so that it does not compete with a user for the keyboard.
    xvfb-run -a -s "-screen 0 1280x960x24" "$bin/quarrynet" --tour "$pictures"
    echo "The tour's pictures are in $pictures"
fi
