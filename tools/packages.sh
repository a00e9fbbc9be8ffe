# Sourced by other scripts. install_missing installs those of the named Debian packages that are missing, if any.

build_packages="g++ cmake ninja-build qt6-base-dev qt6-base-dev-tools qt6-webengine-dev qt6-l10n-tools libqt6svg6
    qt6-image-formats-plugins libgl1-mesa-dev libsqlite3-dev libboost-dev libcurl4-openssl-dev libgumbo-dev libyaml-dev libcap2-bin libcap-dev
    libcli11-dev libseccomp-dev libtomlplusplus-dev nlohmann-json3-dev python3
    fonts-dejavu-core fonts-liberation"
run_packages="ca-certificates xdg-utils xvfb xauth qt6-translations-l10n"
test_packages="orca at-spi2-core dbus xdotool libgtest-dev libgmock-dev libssl-dev openssl clang clang-format clang-tidy libclang-rt-14-dev
    libclang-14-dev llvm-14-dev python3 python3-pyftpdlib python3-openssl
    appstream apt debootstrap desktop-file-utils fish groff-base mandoc systemd systemd-container zsh"
# Debian starts these when they are installed; the tests start their own.
test_servers="vsftpd nginx-light searx"
package_test_packages="build-essential debhelper debootstrap dpkg-dev git lintian python3 systemd-container xvfb"
bench_packages="libbenchmark-dev curl w3m"

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

install_missing() {
    missing=""
    for package in "$@"; do
        # shellcheck disable=SC2016 # dpkg-query expands this, not the shell
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    if ! command -v apt-get >/dev/null; then
        echo "These packages are needed, and there is no apt-get to install them:$missing" >&2
        return 1
    fi
    echo "Installing:$missing"
    as_root apt-get update -qq
    # shellcheck disable=SC2086 # a list of words
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
}

# Installs the missing ones of the test servers, and stops what their installation has started: a web server at port 80
# of all addresses would leave none to the local services. Servers that were installed before keep running.
install_test_servers() {
    new_servers=""
    for server in $test_servers; do
        # shellcheck disable=SC2016 # dpkg-query expands this, not the shell
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$server" 2>/dev/null)" = installed ] ||
            new_servers="$new_servers ${server%-light}"
    done
    # shellcheck disable=SC2086 # a list of words
    install_missing $test_servers
    for server in $new_servers; do
        if [ -d /run/systemd/system ]; then
            as_root systemctl disable --quiet --now "$server.service" 2>/dev/null || true
        elif [ -x "/etc/init.d/$server" ]; then
            as_root "/etc/init.d/$server" stop >/dev/null || true
        fi
    done
}
