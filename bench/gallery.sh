#!/usr/bin/env bash
# Measures the time from the click until all ten thumbnails are drawn in the program's window, and compares it with
# headless Chromium opening the same gallery file. Both fetch the thumbnails from the same local services, through their
# proxy. The browser's figure includes its start; the window's does not, because a user searches in an open window.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh
install_missing chromium xvfb xauth
cmake --preset dev >/dev/null
cmake --build --preset dev --target quarrynet-services quarrynet_webengine quarrynet-thumbnails gallery_window >/dev/null
bin=build/dev/bin
work=$(mktemp -d)
"$bin/quarrynet-services" index --data "$work/index" >/dev/null 2>&1
port=$((20000 + RANDOM % 10000)) # not chosen by the system: the settings accept ports up to 32767 only
"$bin/quarrynet-services" serve --data "$work/index" --port 0 --proxy-port "$port" >"$work/log" 2>&1 &
services=$!
trap 'kill $services; wait $services 2>/dev/null || true; rm -rf "$work"' EXIT
until grep -q ready "$work/log" 2>/dev/null; do kill -0 $services; sleep 0.05; done

median=$(xvfb-run -a -s "-screen 0 1280x960x24" "$bin/gallery_window" "$port" "${1:-mail}" 7 "$work")
echo "window, click to drawn (median of 7): $median ms"
times=()
for _ in 1 2 3; do
    start=$(date +%s%N)
    chromium --headless --no-sandbox --disable-gpu --no-first-run --disable-background-networking \
        --disable-component-update --disable-sync --user-data-dir="$work/profile" \
        --proxy-server="127.0.0.1:$port" --proxy-bypass-list="<-loopback>" --allow-file-access-from-files \
        --screenshot="$work/chromium.png" "file://$work/new.html" >/dev/null 2>&1
    times+=($((($(date +%s%N) - start) / 1000000)))
done
echo "headless Chromium, start to picture of the same gallery: ${times[*]} ms"
