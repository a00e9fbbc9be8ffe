#!/usr/bin/env bash
# Tests the units on a machine that systemd runs: a fresh Debian 12 in a container, in which the services are installed
# from this source, started by their sockets, asked, renewed, disturbed and stopped. Needs root; works in build/units.
#
#   sudo tests/units.sh [MIRROR]       # by default, the mirror of this machine's package sources
#
# QUARRYNET_BASE_TREE may name an archive of such a Debian (tar), which is made if it is not there, and
# QUARRYNET_BUILD_TREE a build folder.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=tools/packages.sh
. tools/packages.sh
. tests/packaging/update_hook.sh
[ "$(id -u)" = 0 ] || { echo "tests/units.sh: only root can start a container" >&2; exit 1; }
# shellcheck disable=SC2086 # lists of words
install_missing $build_packages debootstrap systemd-container

# shellcheck disable=SC2016 # apt-get expands this
mirror=${1:-$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | head -n 1)}
work=$PWD/build/units
machine=$work/machine
build=${QUARRYNET_BUILD_TREE:-$work/build}
base=${QUARRYNET_BASE_TREE:-$work/base.tar}
needed=systemd,systemd-sysv,dbus,libpam-systemd,curl,apt-file,libsqlite3-0,libcurl4,libgumbo1,libyaml-0-2,libcap2,libseccomp2
needed=$needed,libqt6gui6,libqt6svg6
leader=
failures=0

finish() {
    if [ -n "$leader" ]; then
        kill -s RTMIN+4 "$leader" || true # systemd powers off
        for _ in $(seq 300); do [ -d "/proc/$leader" ] || break; sleep 0.2; done
        [ ! -d "/proc/$leader" ] || { echo "the container did not end; $machine stays"; return; }
    fi
    rm -rf "$machine"
}
trap finish EXIT

inside() { nsenter -t "$leader" -m -u -i -n -p -C -r -w -- "$@"; }
check() { # check TEXT COMMAND...
    if "${@:2}"; then echo "ok: $1"; else echo "FAILED: $1"; failures=$((failures + 1)); fi
}
answers() { # answers STATUS ADDRESS [CURL-OPTION...]
    [ "$(inside curl -s -o /dev/null --max-time 20 -w '%{http_code}' "${@:3}" "$2")" = "$1" ]
}
finds() { # finds TEXT ADDRESS
    inside curl -s --max-time 20 "$2" | grep -F -- "$1" > /dev/null # reads all, or curl would fail
}
is_gone() { ! inside curl -s -o /dev/null --max-time 5 "$1"; }

cmake -G Ninja -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_INSTALL_SYSCONFDIR=/etc \
    -DQUARRYNET_BUILD_GUI=OFF -DQUARRYNET_BUILD_TESTS=OFF > /dev/null
cmake --build "$build"
if [ ! -e "$base" ]; then
    rm -rf "$machine"
    debootstrap --variant=minbase --include="$needed" bookworm "$machine" "$mirror"
    tar -C "$machine" -cf "$base" .
fi
rm -rf "$machine"
mkdir -p "$machine"
tar -C "$machine" -xf "$base"
chroot "$machine" sh -c "dpkg -s $(echo "$needed" | tr , ' ') > /dev/null 2>&1 ||
    { apt-get -qq update && apt-get -qq install -y --no-install-recommends $(echo "$needed" | tr , ' '); }"
chroot "$machine" apt-get -qq update
DESTDIR="$machine" cmake --install "$build" > /dev/null
mkdir -p "$machine/usr/share/pixmaps"
cp tests/data/pictures/sample.png "$machine/usr/share/pixmaps/apple-tree.png"

setsid systemd-nspawn --register=no --keep-unit --private-network -D "$machine" -b > "$work/console.log" 2>&1 < /dev/null &
nspawn=$!
for _ in $(seq 100); do
    leader=$(pgrep -P "$nspawn" -x systemd || true)
    [ -z "$leader" ] || break
    sleep 0.2
done
[ -n "$leader" ] || { echo "the container did not start:"; cat "$work/console.log"; exit 1; }
for _ in $(seq 100); do inside systemctl is-system-running 2> /dev/null | grep -q running && break; sleep 0.2; done

sockets="127.80.0.1 127.80.0.2 127.80.0.3 127.80.0.4"
inside systemctl --quiet enable --now quarrynet-services.socket quarrynet-services-index.timer
for address in $sockets; do check "a request to $address starts the services" answers 200 "http://$address/"; done
check "the index is made while the services answer" \
    inside systemctl start quarrynet-services-index.service
check "the web search has results" finds "Results <b>1</b>" "http://127.80.0.1/search?q=bash"
check "the download search has results" finds "bash" "http://127.80.0.3/3120-20-0-1-5.html?qt=bash&ca=20"
check "the file search has results" finds "bash_" "http://127.80.0.4/cgi-bin/s?t=f&q=bash"
check "the proxy leads there" answers 200 "http://127.80.0.1/search?q=bash" -x 127.0.0.1:8780
thumbnail=$(inside curl -s "http://127.80.0.2/images?num=10&q=apple" | grep -o '/images?q=tbn:[^ ]*' | head -n 1)
check "a confined thumbnail program makes a thumbnail" finds JFIF "http://127.80.0.2$thumbnail"
process=$(inside systemctl show -p MainPID --value quarrynet-services.service)
check "the services have no capability" inside grep -q 'CapBnd:.0000000000000000' "/proc/$process/status"
check "the services are not root" inside sh -c "! grep -q '^Uid:.0' /proc/$process/status"
check "status finds everything in order" inside quarrynet-services status
check "status works for a person" inside setpriv --reuid=nobody --clear-groups env HOME=/nonexistent quarrynet-services status
check "the timer waits" inside systemctl is-active --quiet quarrynet-services-index.timer

inside touch /var/lib/apt/lists
run_update_hook
check "the package tool's hook starts the index" \
    inside sh -c 'for i in 1 2 3 4 5 6 7 8 9 10; do systemctl is-active quarrynet-services-index.service | grep -q activating && exit 0; sleep 0.1; done; exit 1'
inside sh -c 'while systemctl is-active quarrynet-services-index.service | grep -q activating; do sleep 0.5; done'

check "without servers to crawl the timer does nothing" inside sh -c 'systemctl start quarrynet-services-crawl.service &&
    systemctl show -p ConditionResult --value quarrynet-services-crawl.service | grep -qx no'
mkdir -p "$machine/srv/files/pub"
echo > "$machine/srv/files/pub/planned-pear.zip"
nsenter -t "$leader" -n python3 -m http.server --bind 127.0.0.9 --directory "$machine/srv/files" 8009 > /dev/null 2>&1 &
site=$!
for _ in $(seq 100); do inside curl -s -o /dev/null http://127.0.0.9:8009/ && break; sleep 0.1; done
inside mkdir -p /etc/quarrynet
inside sh -c 'printf "[web]\nsources = [\"index\"]\n" > /etc/quarrynet/services.toml'
check "a configuration that names none is no failure" inside systemctl start quarrynet-services-crawl.service
inside sh -c 'printf "[[crawl]]\naddress = \"http://127.0.0.9:8009/pub/\"\n" > /etc/quarrynet/services.toml'
check "status says that nobody has crawled it" sh -c "nsenter -t $leader -m -u -i -n -p -r -w -- quarrynet-services status |
    grep -q 'not been crawled: http://127.0.0.9:8009/pub/.*sudo systemctl enable --now quarrynet-services-crawl.timer'"
check "the crawl's timer can be enabled" inside systemctl --quiet enable --now quarrynet-services-crawl.timer
check "the confined crawl ends well" inside systemctl start quarrynet-services-crawl.service
check "the file search has the crawled file" finds planned-pear.zip "http://127.80.0.4/cgi-bin/s?t=f&q=planned-pear"
check "status names the crawl" sh -c "nsenter -t $leader -m -u -i -n -p -r -w -- quarrynet-services status |
    grep -q 'crawled *http://127.0.0.9:8009/pub/ on '"
kill "$site"
inside sh -c 'printf "[web]\nsource = []\n" > /etc/quarrynet/services.toml; systemctl restart quarrynet-services.service'
check "a faulty configuration stops the web search" finds "services.toml:2:" "http://127.80.0.1/search?q=bash"
check "and no other" answers 200 "http://127.80.0.4/cgi-bin/s?t=f&q=bash"
check "status names it" sh -c "! nsenter -t $leader -m -u -i -n -p -r -w -- quarrynet-services status > /dev/null"
inside rm -r /etc/quarrynet

inside systemctl stop quarrynet-services.socket
for address in $sockets; do check "stopping the socket frees $address" is_gone "http://$address/"; done
# As a unit: nsenter stops together with its child when the machine goes down, and keeps it from ending.
inside systemd-run --quiet --unit=other-program systemd-socket-activate -l 127.80.0.2:80 /bin/cat
for _ in $(seq 100); do inside grep -q ' 0200507F:0050 ' /proc/net/tcp && break; sleep 0.1; done
check "the sockets start although an address is taken" inside systemctl start quarrynet-services.socket
for address in 127.80.0.1 127.80.0.3 127.80.0.4; do check "$address answers" answers 200 "http://$address/"; done
check "the search without an address answers through the proxy" answers 200 http://127.80.0.2/ -x 127.0.0.1:8780
check "the journal names the address" inside sh -c 'journalctl -b | grep -q "no socket for 127.80.0.2"'

inside useradd -m person
inside loginctl enable-linger person
for _ in $(seq 50); do inside systemctl is-active --quiet "user@$(inside id -u person).service" && break; sleep 0.2; done
person() { inside runuser -u person -- env HOME=/home/person "XDG_RUNTIME_DIR=/run/user/$(inside id -u person)" "$@"; }
check "a person's own services start" person systemctl --user --quiet enable --now quarrynet-services.socket
inside systemctl stop quarrynet-services.socket
check "they make their index" person systemctl --user start quarrynet-services-index.service
check "they answer without the system's" answers 200 "http://127.80.0.1/search?q=bash" -x 127.0.0.1:8781
check "and at addresses of their own" answers 200 http://127.80.0.4:8781/
check "no unit failed" sh -c "[ -z \"\$(nsenter -t $leader -m -u -i -n -p -r -w -- systemctl --failed --no-legend | grep -v -e image.socket)\" ]"

[ "$failures" = 0 ] || { inside journalctl -b -u 'quarrynet*' --no-pager | tail -n 40; echo "$failures checks failed"; exit 1; }
echo "All checks of the units passed."
