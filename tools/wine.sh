#!/bin/sh
# Runs a Windows program under Wine: tools/wine.sh PROGRAM [ARGUMENT...]
# Wine passes on the environment except the variables QT_*, so this sets them inside. WINEPREFIX names the Windows
# folder (see make_wine_folder in windows.sh), QUARRYNET_WINE_PLATFORM overrides QT_QPA_PLATFORM.
set -eu

[ -z "${QUARRYNET_WINE_PLATFORM:-}" ] || export QT_QPA_PLATFORM="$QUARRYNET_WINE_PLATFORM"
settings=
for name in $(env | sed -n 's/^\(QT_[A-Z0-9_]*\)=.*/\1/p'); do
    eval "settings=\"\${settings}set $name=\$$name&&\""
done
if [ -z "$settings" ]; then
    exec /usr/lib/wine/wine64 "$@"
fi
program=$1
shift
exec /usr/lib/wine/wine64 cmd /d /c "$settings$program" "$@"
