# shellcheck shell=bash
# Sourced by tests/package.sh: one function for each test, on a machine of its own.
# shellcheck disable=SC2154,SC2086 # variables of the other files; lists of packages

state=/var/lib/private/quarrynet
# The window says that these searches found nothing.
boxes_without_index="2-web-search-box 4-image-search-box 5-download-search-box"

# The way of most people: a fresh system, one command, the menu, a search on each tab.
test_fresh() {
    start_machine fresh base
    install /packages $all_packages
    local entry=usr/share/applications/org.quarrynet.Quarrynet.desktop
    expect "the menu entry" test -f "$root/$entry"
    says "the menu entry" '^Exec=quarrynet' "$(cat "$root/$entry")"
    expect "the menu's icon" test -f "$root/usr/share/icons/hicolor/48x48/apps/org.quarrynet.Quarrynet.png"
    expect "the manual" test -f "$root/usr/share/quarrynet/manual/index.html"
    same "failed units" "" "$(inside systemctl --failed --plain --no-legend)"
    expect "the index" await_index
    services_answer
    tour anna
    says "the status" '^Everything is in order' "$(inside quarrynet-services status)"
}

# The parts that a small machine leaves out, with their libraries.
test_without_plugin() {
    start_machine without-plugin base
    # Such a system has no icons yet, and so no pictures to find.
    inside mkdir -p /usr/share/pixmaps
    cp "$tree/icons/pictures/mail-128.png" "$tree/icons/drawings/mail.svg" "$root/usr/share/pixmaps/"
    apt_options=--no-install-recommends install /packages quarrynet quarrynet-services
    same "the plug-in" "" "$(inside sh -c 'ls -d /usr/lib/*/quarrynet /usr/lib/*/libQt6WebEngine* 2>/dev/null' || true)"
    expect "the index" await_index
    services_answer
    tour anna
}

# From the first version to the last trace.
test_life() {
    local files index pid opened
    start_machine life ready
    system_files >"$work/before"
    install /old $all_packages
    expect "the index" await_index
    tour anna
    # The settings that a person changes, and the administrator's.
    inside_as anna sh -c 'printf "[ProxySwitch]\nValue=0\n; mine\n" >.local/share/quarrynet/Quarrynet.ini'
    files=$(inside sha256sum /home/anna/.local/share/quarrynet/Quarrynet.ini)
    inside sh -c 'mkdir -p /etc/quarrynet; echo "[web]" >/etc/quarrynet/services.toml'
    same "the crawl's timer" disabled "$(inside systemctl is-enabled quarrynet-services-crawl.timer)"
    inside systemctl --quiet enable --now quarrynet-services-crawl.timer
    index=$(stat -c %i "$root$state/index.sqlite")
    pid=$(inside systemctl show -P MainPID quarrynet-services.service)
    opened=$(inside systemctl show -P ActiveEnterTimestampMonotonic 'quarrynet-services*.socket')

    echo "   upgrade"
    install /packages $all_packages
    # shellcheck disable=SC2016 # the package tools expand these
    same "the version" "$version" "$(inside dpkg-query -W -f '${Version}' quarrynet)"
    expect "the index" await_index
    services_answer
    [ "$pid" != "$(inside systemctl show -P MainPID quarrynet-services.service)" ] ||
        fail "the upgrade left the old services running"
    same "the times when the sockets were opened" "$opened" \
        "$(inside systemctl show -P ActiveEnterTimestampMonotonic 'quarrynet-services*.socket')"
    tour anna
    same "the person's settings" "$files" "$(inside sha256sum /home/anna/.local/share/quarrynet/Quarrynet.ini)"
    same "the index" "$index" "$(stat -c %i "$root$state/index.sqlite")"
    same "the crawl's timer after the upgrade" active "$(inside systemctl is-active quarrynet-services-crawl.timer)"

    echo "   removal"
    expect "apt-get remove" inside apt-get remove -y $all_packages
    services_answer web image download file
    expect "the index after removal" test -f "$root$state/index.sqlite"
    expect "the administrator's file after removal" test -f "$root/etc/quarrynet/services.toml"
    same "active units after removal" "" "$(inside systemctl list-units --plain --no-legend --state=active,activating \
        'quarrynet*')"
    # The hook of the package manager has stayed.
    expect "apt without the packages" inside apt-get check
    same "processes" "" "$(inside pgrep -a quarrynet || true)"

    echo "   installation again, and purge"
    install /packages $all_packages
    expect "the index" await_index
    services_answer
    same "the crawl's timer, which was enabled" active "$(inside systemctl is-active quarrynet-services-crawl.timer)"
    expect "apt-get purge" inside apt-get purge -y $all_packages
    expect_nothing_left "$work/before"
    expect "the person's settings after purge" test -f "$root/home/anna/.local/share/quarrynet/Quarrynet.ini"
}

test_two_users() {
    local first
    start_machine two-users ready
    install /packages $all_packages
    expect "the index" await_index
    # A display for each, because the tours take pictures of the screen.
    first=$display
    start_display
    (display=$first tour anna; exit $((failures > 0))) &
    tour ben
    wait $! || fail "the tour of anna"
    tour root
    same "root's settings" "" "$(inside sh -c 'ls /usr/bin/*.ini /usr/bin/*.htm* 2>/dev/null' || true)"
}

# No network and no package lists: apt installs, the program starts, and the status says what is missing.
test_no_package_lists() {
    start_machine no-package-lists ready
    inside sh -c 'rm -rf /var/lib/apt/lists/* /var/cache/apt/*.bin'
    install /packages $all_packages
    expect "the index" await_index
    says "the status" 'apt update' "$(inside quarrynet-services status)"
    # Programs and files come from the package lists.
    tour anna 5-download-search-box 6-file-search-box
}

# An administrator who forbids packages to start anything, or has disabled the socket, gets no index and no services.
test_nothing_started() {
    start_machine nothing-started ready
    printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d"
    chmod 755 "$root/usr/sbin/policy-rc.d"
    install /old quarrynet-services
    nothing_runs "with a policy that forbids it"
    says "the installation" 'systemctl start quarrynet-services.socket' "$(cat "$work/$machine/apt.log")"
    rm "$root/usr/sbin/policy-rc.d"
    inside systemctl disable --quiet quarrynet-services.socket
    install /packages quarrynet-services
    nothing_runs "with a disabled socket"
    # The package tool's hook made an index there at the next update of the lists.
    run_update_hook || fail "the hook of the package tool"
    nothing_runs "after an update of the package lists"
    inside systemctl enable --quiet --now quarrynet-services.socket
    inside systemctl start quarrynet-services-first-index.service
    services_answer
}

# Without systemd the package makes and starts nothing. What it says to do works for everybody; who may not use port 80
# is told about the proxy.
test_without_systemd() {
    local said tried person command
    mount_machine without-systemd ready
    # The package manager gives the scripts a terminal, which ends lines in its own way.
    said=$(without_systemd sh -c 'apt-get install -y -q /packages/quarrynet-services_*.deb' 2>&1 | tr -d '\r') ||
        fail "the installation: $said"
    says "the installation" 'systemd does not run here' "$said"
    same "the system's index" "" "$(ls -A "$root$state" 2>/dev/null)"
    for person in root anna; do
        for command in index serve; do
            says "the installation" "^    quarrynet-services $command\$" "$said"
        done
        tried=$(without_systemd sh -c '
            su "$1" -c "quarrynet-services index"
            su "$1" -c "exec quarrynet-services serve" >/tmp/ready 2>&1 &
            until grep -q ready /tmp/ready; do kill -0 $! || break; sleep 0.1; done
            su "$1" -c "quarrynet-services status"
            cat /tmp/ready' sh $person 2>&1)
        if [ $person = root ]; then
            says "the status for root" '^Everything is in order' "$tried"
        else
            says "the status for $person" '^Index: /home/anna/' "$tried"
            says "the status for $person" '^  proxy +127\.0\.0\.1:8780  answers in' "$tried"
            says "the services of $person" 'enter 127\.0\.0\.1 and 8780' "$tried"
        fi
    done
    expect "apt-get purge" without_systemd apt-get purge -y quarrynet-services
}

# nothing_runs WHEN: expects neither an index, nor services or sockets.
nothing_runs() {
    # shellcheck disable=SC2016 # the machine's shell expands this
    expect "the machine at rest $1" inside sh -c 'until [ -z "$(systemctl list-jobs --no-legend)" ]; do sleep 0.1; done'
    same "the units that run $1" "" "$(inside systemctl list-units --plain --no-legend \
        --state=active,activating,failed 'quarrynet-services*.service' 'quarrynet-services*.socket')"
    expect "no index $1" test ! -e "$root$state/index.sqlite"
}

test_port_taken() {
    local other
    start_machine port-taken ready
    nsenter -t "$leader" --net -- python3 -m http.server --bind 127.80.0.2 --directory "$work/debs" 80 >/dev/null 2>&1 &
    other=$!
    install /packages $all_packages
    expect "the index" await_index
    services_answer image
    says "the status" 'image search does not have its address 127\.80\.0\.2:80' "$(inside quarrynet-services status)"
    tour anna 4-image-search-box
    kill $other
    wait $other || true
    inside systemctl restart quarrynet-services.socket
    services_answer
}

test_full_disk() {
    start_machine full-disk ready
    inside mkdir -p -m 700 /var/lib/private
    inside mkdir -p $state
    inside mount -t tmpfs -o size=300k tmpfs $state
    install /packages $all_packages
    await_index && fail "the index fitted on the full disk"
    says "the status" '^Problem: .*index' "$(inside quarrynet-services status)"
    says "the log" 'No space left|disk is full' "$(inside journalctl -b -u 'quarrynet-services*')"
    tour anna $boxes_without_index
    inside mount -o remount,size=2g $state
    inside systemctl start quarrynet-services-first-index.service
    services_answer
    # The place of a mounted disk cannot be removed, which must not stop the purge.
    expect "apt-get purge" inside apt-get purge -y $all_packages
    same "the index after purge" "" "$(ls -A "$root$state" 2>/dev/null)"
    expect "apt-get check" inside apt-get check
}

test_newer_index() {
    local report command
    start_machine newer-index ready
    install /packages $all_packages
    expect "the index" await_index
    inside systemctl stop quarrynet-services.service 2>/dev/null # its sockets stay
    python3 - "$root$state/index.sqlite" <<'END'
import sqlite3, sys
base = sqlite3.connect(sys.argv[1])
version = base.execute("PRAGMA user_version").fetchone()[0]
base.execute(f"PRAGMA user_version = {version + 1000}")
base.commit()
END
    # Nothing replaces it unasked: the newer version may come back, and crawled sites are in it.
    services_answer web image download file
    await_index && fail "an index was made in place of the newer one"
    report=$(inside quarrynet-services status || true)
    says "the status" 'newer version.*index --force' "$report"
    tour anna $boxes_without_index
    # Runs the command that the message names; this machine has no sudo, and needs none.
    command=$(sed -n 's/.*newer version.*run "sudo \([^"]*\)".*/\1/p' <<<"$report" | head -n 1)
    says "the command" '^quarrynet-services index ' "$command"
    expect "the remedy" inside $command
    services_answer
}

test_broken_configuration() {
    start_machine broken-configuration ready
    inside mkdir -p /etc/quarrynet
    printf '[web\nsources = \0\n' >"$root/etc/quarrynet/services.toml"
    install /packages $all_packages
    expect "the index" await_index
    says "the status" 'services\.toml' "$(inside quarrynet-services status)"
    services_answer web image
    inside_as anna mkdir -p .local/share/quarrynet
    printf '[ProxySwitch\0\n[[[\nValue' >"$root/home/anna/.local/share/quarrynet/Quarrynet.ini"
    # The two searches that the file is about say what is wrong.
    tour anna 2-web-search-box 4-image-search-box
    rm "$root/etc/quarrynet/services.toml"
    inside systemctl restart quarrynet-services.service
    services_answer
}
