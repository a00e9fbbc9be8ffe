#!/usr/bin/env bash
# Runs a test program with the screen reader Orca, on a display, a bus and a home folder of its own.
#     tests/orca.sh PROGRAM [ARGUMENT...]
# Exit status 77, with the reason, means that the test cannot run here.
set -euo pipefail

for tool in orca xvfb-run dbus-run-session xdotool; do
    command -v "$tool" >/dev/null || { echo "skipped: $tool is not installed"; exit 77; }
done
[ -x /usr/libexec/at-spi-bus-launcher ] || { echo "skipped: at-spi2-core is not installed"; exit 77; }

if [ -z "${QUARRYNET_ORCA_HOME:-}" ]; then
    QUARRYNET_ORCA_HOME=$(mktemp -d)
    export QUARRYNET_ORCA_HOME
    trap 'rm -rf "$QUARRYNET_ORCA_HOME"' EXIT
    xvfb-run -a dbus-run-session -- "$0" "$@" && status=0 || status=$?
    exit "$status"
fi

home=$QUARRYNET_ORCA_HOME
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache
export XDG_RUNTIME_DIR=$home/run GSETTINGS_BACKEND=memory
unset WAYLAND_DISPLAY
mkdir -m 700 "$XDG_RUNTIME_DIR"
log=$home/orca.log
: >"$log"
# Without speech and braille devices, Orca writes to its log what it would say, once it is told not to buffer it.
mkdir "$home/python"
echo 'raise ImportError("not in tests")' >"$home/python/brlapi.py"
cat >"$home/python/speechd.py" <<'END'
from orca import debug
debug.debugFile.reconfigure(line_buffering=True)
raise ImportError("not in tests")
END
PYTHONPATH=$home/python orca --debug-file="$log" >"$home/orca.out" 2>&1 &
orca=$!
finish() {
    kill -KILL "$orca" 2>/dev/null || true
    wait "$orca" 2>/dev/null || true
}
trap finish EXIT
# Qt complains about each key that a busy Orca answers late, and about rows that are gone when Orca asks for them.
export QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_LOGGING_RULES='qt.accessibility.*=false'
QUARRYNET_ORCA_LOG=$log "$@"
