# shellcheck shell=bash
# Sourced by tests/package.sh: what a person or an administrator does with the packages, and what is expected then.
# shellcheck disable=SC2154 # variables of tests/package.sh and machine.sh

failures=0
fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# expect WHAT COMMAND...: runs a command of which nothing but success is expected.
expect() {
    local what=$1 output
    shift
    output=$("$@" 2>&1) || fail "$what: $output"
}

# says WHAT PATTERN TEXT: expects a line of the text to match.
says() {
    grep -qE -- "$2" <<<"$3" || fail "$1: no line matches \"$2\" in:
$3"
}

# same WHAT EXPECTED ACTUAL: compares two texts line by line.
same() {
    diff -u --label expected --label actual <(printf '%s\n' "$2") <(printf '%s\n' "$3") || fail "$1"
}

# install FOLDER PACKAGE...: installs the packages' files as a person would, with one command. $apt_options may add
# options.
install() {
    local folder=$1 files=() log=$work/$machine/apt.log
    shift
    for package in "$@"; do files+=("$(cd "$root" && inside sh -c "ls $folder/${package}_*.deb")"); done
    # shellcheck disable=SC2086 # a list of options
    inside apt-get install -y -q ${apt_options:-} "${files[@]}" >"$log" 2>&1 || {
        fail "apt-get install ${files[*]}"
        tail -n 20 "$log" >&2
    }
}

# shellcheck disable=SC2034 # used by tests.sh
all_packages="quarrynet quarrynet-webengine quarrynet-services"

# Waits until no unit makes an index any more, and at least one has.
await_index() {
    for _ in $(seq 3000); do
        case $(inside systemctl show -P ActiveState quarrynet-services-first-index quarrynet-services-index |
            sort -u | grep .) in
        inactive) return 0 ;;
        *failed*) return 1 ;;
        esac
        sleep 0.1
    done
    return 1
}

# Expects every service to answer a search with results. Arguments: the services that are expected to be unreachable.
services_answer() {
    local out
    out=$(on_its_network python3 "$tree/tests/packaging/ask_services.py" "$@" 2>&1) || fail "the services' answers: $out"
}

# tour PERSON [BOX...]: starts the installed program as a person and searches on each tab. Expects a picture of each
# stop, no others but those of the named boxes, the local pages in the person's data folder, and nothing there of what the
# program remembers.
tour() {
    local person=$1 home=/home/$1 pictures expected
    shift
    [ "$person" != root ] || home=/root
    pictures=$home/tour
    inside_as "$person" rm -rf "$pictures"
    inside_as "$person" mkdir "$pictures"
    inside_as "$person" timeout 300 quarrynet --tour "$pictures" >"$work/$machine/tour-$person.log" 2>&1 ||
        fail "the tour of $person ended with $?: $(tail -n 5 "$work/$machine/tour-$person.log")"
    mkdir -p "$results/$machine/$person"
    cp "$root$pictures"/*.png "$results/$machine/$person/" || true
    expected=$(printf '%s.png\n' 1-start 2-web-search 3-page-check 4-image-search 5-download-search 6-file-search "$@" |
        LC_ALL=C sort)
    same "the pictures of $person's tour" "$expected" "$(cd "$root$pictures" && LC_ALL=C ls)"
    same "the local pages of $person" "blank.htm
blank.html" "$(cd "$root$home/.local/share/quarrynet" && LC_ALL=C ls -d blank*)"
    same "what the tour of $person remembers" "" "$(cd "$root$home/.local/share/quarrynet" &&
        ls -d Quarrynet.history* Quarrynet.state* 2>/dev/null || true)"
}

# Prints all files of the current machine that are part of its system: no caches, logs, or states of the package
# manager and of systemd, which keep their own records about everything.
system_files() {
    (cd "$root" && find . -xdev \( -path ./proc -o -path ./sys -o -path ./run -o -path ./tmp -o -path ./dev -o -path ./home \
        -o -path ./root -o -path ./var/cache -o -path ./var/log -o -path ./var/tmp -o -path ./var/lib/apt \
        -o -path ./var/lib/dpkg/info -o -path ./packages -o -path ./old \) -prune -o -print | LC_ALL=C sort |
        grep -vE '^\./var/lib/(dpkg/(status|available|lock|triggers|diversions|statoverride)|systemd/)|__pycache__')
}

# Expects nothing of the packages to be left, whatever the record keepers are.
expect_nothing_left() {
    local left
    left=$(cd "$root" && find etc usr var/lib var/cache run opt -xdev -iname '*quarrynet*' ! -path '*/archives/*' \
        ! -path 'run/user/*' 2>/dev/null)
    same "files with the program's name after purge" "" "$left"
    same "the system's files after purge" "$(cat "$1")" "$(system_files)"
    same "users after purge" "" "$(inside sh -c 'cat /etc/passwd /etc/group | grep quarrynet' || true)"
    # shellcheck disable=SC2016 # the package tools expand these
    same "packages after purge" "" "$(inside dpkg-query -W -f '${Package} ${db:Status-Abbrev}\n' 'quarrynet*' 2>/dev/null |
        grep -v 'un $' || true)"
}
