#!/usr/bin/env bash
# Builds the program if needed, starts the local search services and then the program, and ends the services with it.
# Without a display it makes pictures of a tour through the tabs instead (also with --tour, which takes a folder).
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh
# shellcheck disable=SC2154,SC2086 # lists of words, from the file above
install_missing $build_packages $run_packages

cmake --preset release >/dev/null
cmake --build --preset release
bin=$PWD/build/release/bin

data=${XDG_DATA_HOME:-$HOME/.local/share}/quarrynet
"$bin/quarrynet-services" index --if-needed --data "$data"

# The services answer on port 80 of loopback addresses, where ordinary users may not listen without leave.
lowest=$(cat /proc/sys/net/ipv4/ip_unprivileged_port_start 2>/dev/null || echo 1024)
if [ "$(id -u)" != 0 ] && [ "$lowest" -gt 80 ] && ! getcap "$bin/quarrynet-services" | grep -q cap_net_bind_service; then
    echo "Permitting quarrynet-services to listen on port 80:"
    sudo setcap cap_net_bind_service=+ep "$bin/quarrynet-services" || echo "Not permitted; use the proxy port instead." >&2
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
    # A display of its own also where there is one: the tour must not fight a person for the keyboard.
    xvfb-run -a -s "-screen 0 1280x960x24" "$bin/quarrynet" --tour "$pictures"
    echo "The tour's pictures are in $pictures"
fi
