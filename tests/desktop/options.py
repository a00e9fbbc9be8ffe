#!/usr/bin/env python3
"""Compares what the programs' --help lists with the manual pages, or with what a shell really completes.

    options.py man|bash|zsh|fish QUARRYNET QUARRYNET_SERVICES

Neither may have an option or a command that the other lacks.
"""

import os
import pathlib
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time

PLACE = pathlib.Path(__file__).resolve().parents[2] / "packaging/linux/desktop"
SKIPPED = 77
READER, QUARRYNET, SERVICES = sys.argv[1:4]
OPTION = re.compile(r"(?<![\w-])--?[a-z][a-z-]*")
TABS = set("web page image download file 1 2 3 4 5".split())
faults = []


def compare(what, listed, expected):
    for name in sorted(expected - listed):
        faults.append(f"{what} lacks {name}")
    for name in sorted(listed - expected):
        faults.append(f"{what} has {name}, which --help does not list")


def help_of(program, *command):
    return subprocess.run([program, *command, "--help"], capture_output=True, text=True, timeout=60, check=True).stdout


def options_in(text):
    """Returns the options in the left column of a help text."""
    columns = [re.split(r"\s{2,}", line[2:])[0] for line in text.splitlines() if re.match(r"  -", line)]
    return {option for column in columns for option in OPTION.findall(column)}


def commands_in(text):
    return set(re.findall(r"^  ([a-z]+) ", text.partition("Subcommands:")[2].split("\n\n")[0], re.M))


def options_of_manual(section):
    """Returns the options of the lists in a section of a manual page."""
    found = set()
    for line in re.findall(r"^\.It (.*Fl .*)", section, re.M):
        found |= {f"-{name}" for name in re.findall(r"Fl ([a-z-]+)", line)}
    return found


def check_man():
    text = (PLACE / "man/quarrynet.1").read_text("utf-8")
    compare("quarrynet.1", options_of_manual(text), options_in(help_of(QUARRYNET)))
    text = (PLACE / "man/quarrynet-services.1").read_text("utf-8")
    sections = dict(zip(re.findall(r"^\.Ss (.*)", text, re.M), re.split(r"^\.Ss .*", text, flags=re.M)[1:]))
    general = options_of_manual(text.partition(".Ss")[0])
    help_text = help_of(SERVICES)
    compare("quarrynet-services.1", set(sections), commands_in(help_text) | {"help"})
    compare("quarrynet-services.1", general, options_in(help_text) | {"--data"})
    for command in sorted(commands_in(help_text)):
        listed = options_of_manual(sections.get(command, "")) | general - {"--version"}
        compare(f"quarrynet-services.1, {command}", listed, options_in(help_of(SERVICES, command)))


def completed_by_bash(line, folder):
    script = r'''
        . "$1"
        COMP_LINE=$2 COMP_POINT=${#2}
        # As bash splits a line: at blanks and at the sign.
        read -ra COMP_WORDS <<<"${2//=/ = }"
        [[ $2 == *" " ]] && COMP_WORDS+=("")
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        name=${COMP_WORDS[0]}
        function=$(complete -p "$name" | sed 's/.*-F \([^ ]*\).*/\1/')
        $function "$name" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
        printf '%s\n' "${COMPREPLY[@]}"
    '''
    file = PLACE / "bash" / line.split()[0]
    done = subprocess.run(["bash", "--norc", "-c", script, "bash", file, line], cwd=folder, capture_output=True, text=True,
                          timeout=60, check=True)
    if done.stderr:
        faults.append(f"bash, {line}: {done.stderr}")
    return set(done.stdout.split("\n")) - {""}


def completed_by_fish(line, folder):
    environment = {**os.environ, "HOME": folder, "XDG_CONFIG_HOME": folder, "XDG_DATA_HOME": folder, "TERM": "dumb"}
    script = 'source $argv[1]; complete -C $argv[2]'
    file = PLACE / "fish" / f"{line.split()[0]}.fish"
    done = subprocess.run(["fish", "--no-config", "-c", script, file, line], cwd=folder, env=environment,
                          capture_output=True, text=True, timeout=60, check=True)
    if done.stderr:
        faults.append(f"fish, {line}: {done.stderr}")
    return {row.partition("\t")[0] for row in done.stdout.split("\n")} - {""}


ZSH_SETUP = r'''
PROMPT= RPROMPT=
fpath=(%(place)s $fpath)
autoload -U compinit && compinit -D -u
# Writes what the completion system would offer.
compadd() {
    if [[ ${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then
        builtin compadd "$@"
        return $?
    fi
    local -a offered
    builtin compadd -A offered "$@"
    print -rl -- $offered >>%(output)s
    builtin compadd "$@"
}
zle -C offer complete-word _main_complete
capture() { zle offer; print DONE >>%(output)s; zle kill-buffer; }
zle -N capture
bindkey '^I' capture
print READY >>%(output)s
'''


def completed_by_zsh(line, folder):
    output = pathlib.Path(folder) / "offered"
    output.write_text("", encoding="utf-8")
    setup = pathlib.Path(folder) / "setup.zsh"
    setup.write_text(ZSH_SETUP % {"place": PLACE / "zsh", "output": output}, encoding="utf-8")
    child, terminal = pty.fork()
    if child == 0:
        os.chdir(folder)
        os.execvpe("zsh", ["zsh", "-f", "-i"], {**os.environ, "HOME": folder, "TERM": "dumb"})

    def wait_for(mark):
        seen = b""
        end = time.monotonic() + 60
        while mark not in output.read_text("utf-8").split("\n"):
            if time.monotonic() > end:
                raise TimeoutError(f"zsh, {line}: {seen.decode(errors='replace')}")
            if select.select([terminal], [], [], 0.02)[0]:
                seen += os.read(terminal, 65536)

    try:
        os.write(terminal, f"source {setup}\n".encode())
        wait_for("READY")
        os.write(terminal, f"{line}\t".encode())
        wait_for("DONE")
    finally:
        os.close(terminal)
        os.waitpid(child, 0)
    return {row.rstrip("= ") for row in output.read_text("utf-8").split("\n")} - {"", "READY", "DONE"}


def check_shell(completed):
    if not shutil.which(READER):
        print(f"{READER} is not installed")
        sys.exit(SKIPPED)
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "place").mkdir()
        pathlib.Path(folder, "page").touch()

        def offers(line, expected):
            # Fish offers the option with its value.
            compare(f"{READER}, '{line}'", {name.removeprefix("--tab=") for name in completed(line, folder)}, expected)

        offers("quarrynet -", options_in(help_of(QUARRYNET)))
        offers("quarrynet --tab ", TABS)
        offers("quarrynet --tab w", {"web"})
        offers("quarrynet --tab=w", {"web"})
        offers("quarrynet --tab web --l", {"--language"})
        offers("quarrynet -- -", set())
        help_text = help_of(SERVICES)
        commands = commands_in(help_text)
        offers("quarrynet-services ", commands | {"help"})
        offers("quarrynet-services -", options_in(help_text))
        for command in sorted(commands):
            offers(f"quarrynet-services {command} -", options_in(help_of(SERVICES, command)))
        for option, names in (("--data", {"place"}), ("--config", {"place", "page"})):
            listed = {name.rstrip("/") for name in completed(f"quarrynet-services check {option} p", folder)}
            compare(f"{READER}, {option}", listed, names)


if READER == "man":
    check_man()
else:
    check_shell({"bash": completed_by_bash, "fish": completed_by_fish, "zsh": completed_by_zsh}[READER])
print("\n".join(faults))
sys.exit(1 if faults else 0)
