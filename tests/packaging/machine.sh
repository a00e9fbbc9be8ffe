# shellcheck shell=bash
# Sourced by tests/package.sh: machines with a fresh Debian 12, each a container with a systemd of its own, a network of
# its own without a way out, and a file system that is thrown away. Needs root.
#
# $cache keeps the base system and downloaded packages between runs and may be deleted at any time. $work is the run's
# folder.
# shellcheck disable=SC2154 # $cache, $work and $debs are set by tests/package.sh

# Prints "ADDRESS SUITE" for each of Debian 12's archives that this machine's own package manager uses.
own_archives() {
    # shellcheck disable=SC2016 # the package tools expand these
    apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(CODENAME) $(COMPONENT)' 'Created-By: Packages' \
        'Origin: Debian' | awk '$3 ~ /^bookworm/ && $4 == "main" && !seen[$1 $2]++ { print $1, $2 }'
}

# Makes $work/base: Debian 12 with systemd and package lists, and two persons, anna and ben.
make_base() {
    local archives
    archives=$(own_archives)
    if [ -z "$archives" ]; then
        echo "This machine's package manager knows no archive of Debian 12; run apt-get update." >&2
        return 1
    fi
    mkdir -p "$cache/archives" "$work/base"
    if [ ! -f "$cache/bookworm.tar" ]; then
        echo "Making the base system"
        debootstrap --variant=minbase --include=systemd,systemd-sysv,dbus,dbus-user-session,libpam-systemd,ca-certificates \
            bookworm "$work/base" "$(awk '$2 == "bookworm" { print $1; exit }' <<<"$archives")" >"$work/debootstrap.log" ||
            { tail "$work/debootstrap.log" >&2; return 1; }
        rm -f "$work/base/var/cache/apt/archives"/*.deb
        tar -C "$work/base" -cf "$cache/bookworm.tar.new" .
        mv "$cache/bookworm.tar.new" "$cache/bookworm.tar"
    else
        tar -C "$work/base" -xf "$cache/bookworm.tar"
    fi
    awk '{ print "deb", $1, $2, "main" }' <<<"$archives" >"$work/base/etc/apt/sources.list"
    apt-config dump | grep -E '^Acquire::(Check-|Retries|https?::)' >"$work/base/etc/apt/apt.conf.d/00archives" || true
    # Containers may not mount it, and the windows' display is in /tmp.
    ln -sf /dev/null "$work/base/etc/systemd/system/tmp.mount"
    # The machine is thrown away, so nothing waits for the disk.
    echo force-unsafe-io >"$work/base/etc/dpkg/dpkg.cfg.d/test"
    echo quarrynet-test >"$work/base/etc/hostname"
    with_network "$work/base" apt-get -qq update 2>"$work/update.log" || { cat "$work/update.log" >&2; return 1; }
    for person in anna ben; do
        chroot "$work/base" useradd --create-home --shell /bin/bash "$person"
    done
}

# with_network ROOT COMMAND...: runs a command in a file system, without starting its systemd, with this machine's
# network. Downloaded packages go into the cache.
with_network() {
    local root=$1
    shift
    systemd-nspawn -q --register=no --keep-unit --as-pid2 --pipe --resolv-conf=copy-host -D "$root" \
        --bind="$cache/archives:/var/cache/apt/archives" --bind-ro="$debs:/packages" \
        --setenv=DEBIAN_FRONTEND=noninteractive "$@"
}

# Makes $work/ready: the base with everything that the packages depend on and recommend, but without the packages.
make_ready() {
    local names
    mkdir -p "$work/ready" "$work/ready.work" "$work/ready.view"
    mount -t overlay overlay -o "lowerdir=$work/base,upperdir=$work/ready,workdir=$work/ready.work" "$work/ready.view"
    names=$(for field in Depends Recommends; do
        for file in "$debs"/*.deb; do dpkg-deb -f "$file" $field; done
    done | sed 's/, */\n/g' | grep -vE '^(quarrynet.*)?$' | sort -u | paste -sd,)
    with_network "$work/ready.view" apt-get -y -q -o APT::Keep-Downloaded-Packages=true satisfy "$names" \
        >"$work/ready.log" 2>&1 || { tail "$work/ready.log" >&2; return 1; }
    umount "$work/ready.view"
}

# start_machine NAME base|ready: starts a machine over one of the two file systems. Sets $root and $leader.
start_machine() {
    mount_machine "$@"
    boot
}

# mount_machine NAME base|ready: makes the file system of a machine. Sets $root.
mount_machine() {
    local lower=$work/base
    [ "$2" = base ] || lower=$work/ready:$work/base
    machine=$1
    root=$work/$machine/root
    mkdir -p "$root" "$work/$machine/changes" "$work/$machine/work"
    mount -t overlay overlay \
        -o "lowerdir=$lower,upperdir=$work/$machine/changes,workdir=$work/$machine/work" "$root"
}

# without_systemd COMMAND...: runs a command in the current, unstarted machine, which ends with it. The network has
# loopback addresses only.
without_systemd() {
    systemd-nspawn -q --register=no --keep-unit --as-pid2 --pipe --private-network -D "$root" \
        --bind="$cache/archives:/var/cache/apt/archives" --bind-ro="$debs:/packages" \
        --setenv=DEBIAN_FRONTEND=noninteractive "$@"
}

# Starts the systemd of the current machine.
boot() {
    systemd-nspawn -q --register=no --keep-unit --private-network -D "$root" -b --link-journal=no \
        --bind="$cache/archives:/var/cache/apt/archives" --bind-ro="$debs:/packages" --bind-ro="$old:/old" \
        >"$work/$machine/console.log" 2>&1 </dev/null &
    container=$!
    leader=
    for _ in $(seq 600); do
        leader=$(pgrep -P "$container" | head -n 1) || true
        if [ -n "$leader" ] && [ "$(inside systemctl is-system-running 2>/dev/null)" = running ]; then
            start_display
            return 0
        fi
        kill -0 "$container" 2>/dev/null || break
        sleep 0.1
    done
    echo "The machine did not start; the end of $work/$machine/console.log:" >&2
    tail "$work/$machine/console.log" >&2
    return 1
}

# Ends the current machine and throws its file system away.
stop_machine() {
    halt
    umount "$root"
    rm -rf "${work:?}/$machine/changes" "${work:?}/$machine/work"
}

halt() {
    # shellcheck disable=SC2086 # a list of numbers
    [ -z "${display_servers:-}" ] || kill $display_servers 2>/dev/null || true
    display_servers=
    [ -z "${container:-}" ] || { kill -s RTMIN+4 "$leader" 2>/dev/null && wait "$container" 2>/dev/null; } || true
    container=
}

# inside COMMAND...: runs a command in the current machine as root.
inside() {
    nsenter -t "$leader" --mount --uts --ipc --net --pid --cgroup --root --wd -- \
        /usr/bin/env -i HOME=/root LANG=C.UTF-8 PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive "$@"
}

# inside_as PERSON COMMAND...: runs a command in the current machine as a person with a display.
inside_as() {
    local person=$1 home=/home/$1
    shift
    [ "$person" != root ] || home=/root
    inside runuser -u "$person" -- env HOME="$home" USER="$person" DISPLAY=":$display" \
        XDG_RUNTIME_DIR="/run/user/$(inside id -u "$person")" sh -c 'cd && exec "$@"' sh "$@"
}

# on_its_network COMMAND...: runs a command of this machine on the network of the current one.
on_its_network() {
    nsenter -t "$leader" --net -- "$@"
}

# Starts an X server on the machine's network. Clients find it by its abstract socket, which belongs to a network; the
# file system and the package lists of the machine stay as they are. Shared memory does not cross the border.
start_display() {
    local file
    file=$(mktemp "$work/$machine/display.XXXXXX")
    # Not by on_its_network: the shell would be the process to end.
    nsenter -t "$leader" --net -- Xvfb -displayfd 3 -ac -nolisten tcp -extension MIT-SHM -screen 0 1280x960x24 \
        3>"$file" 2>"$work/$machine/xvfb.log" &
    display_servers+=" $!"
    until [ -s "$file" ]; do
        kill -0 $! || return 1
        sleep 0.1
    done
    display=$(cat "$file")
}
