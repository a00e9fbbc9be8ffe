#!/usr/bin/env python3
"""Checks the files for desktops by the tools that define their formats. Usage: files.py entry|component|manuals|icons"""

import pathlib
import re
import shutil
import struct
import subprocess
import sys
import xml.etree.ElementTree as tree

TOP = pathlib.Path(__file__).resolve().parents[2]
PLACE = TOP / "packaging/linux/desktop"
ID = "org.quarrynet.Quarrynet"
SKIPPED = 77
faults = []


def need(program):
    if not shutil.which(program):
        print(f"{program} is not installed")
        sys.exit(SKIPPED)


def quiet(*command):
    """Expects success without a word from a command."""
    done = subprocess.run(command, capture_output=True, text=True, timeout=60, check=False)
    output = (done.stdout + done.stderr).strip()
    if done.returncode != 0 or output:
        faults.append(f"{' '.join(map(str, command))}:\n{output}")


def expect(what, actual, expected):
    if actual != expected:
        faults.append(f"{what}: {actual!r} and not {expected!r}")


def check_entry():
    need("desktop-file-validate")
    entry = PLACE / f"{ID}.desktop"
    quiet("desktop-file-validate", entry)
    text = entry.read_text(encoding="utf-8")
    expect("icon", re.findall("^Icon=(.*)", text, re.M), [ID])
    expect("actions", re.findall("^Actions=(.*)", text, re.M), ["web;page;image;download;file;"])
    commands = dict(re.findall(r"^\[Desktop Action (\w+)\]\n(?:.*\n)*?Exec=(.*)", text, re.M))
    expect("commands", commands, {tab: f"quarrynet --tab {tab}" for tab in "web page image download file".split()})
    # The program tells the desktop the same name.
    told = re.findall(r'setDesktopFileName\(QStringLiteral\("([^"]*)"\)\)', (TOP / "app/entry.cpp").read_text("utf-8"))
    expect("app/entry.cpp", told, [ID])


def check_component():
    need("appstreamcli")
    file = PLACE / f"{ID}.metainfo.xml"
    quiet_enough = subprocess.run(["appstreamcli", "validate", "--no-net", "--strict", file], capture_output=True,
                                  text=True, timeout=60, check=False)
    if quiet_enough.returncode != 0:
        faults.append(quiet_enough.stdout + quiet_enough.stderr)
    root = tree.parse(file).getroot()
    expect("id", root.findtext("id"), ID)
    expect("launchable", root.findtext("launchable"), f"{ID}.desktop")
    version = re.search(r"^project\(Quarrynet VERSION ([\d.]+)", (TOP / "CMakeLists.txt").read_text("utf-8"), re.M)[1]
    expect("newest release", root.find("releases/release").get("version"), version)


def check_manuals():
    need("mandoc")
    need("groff")
    manuals = sorted((PLACE / "man").glob("*.[1-9]"))
    expect("number of manuals", len(manuals), 3)
    for manual in manuals:
        quiet("mandoc", "-T", "lint", "-W", "warning", manual)
        quiet("groff", "-ww", "-mdoc", "-Tutf8", "-z", manual)


def check_icons():
    rules = (PLACE / "CMakeLists.txt").read_text("utf-8")
    sizes = sorted({22, *map(int, re.search(r"foreach\(size IN ITEMS ([\d ]+)\)", rules)[1].split())})
    expect("sizes", sizes, [16, 22, 24, 32, 48, 64, 128, 256])
    for size in sizes:
        file = PLACE / "quarrynet-22.png" if size == 22 else TOP / f"icons/pictures/quarrynet-{size}.png"
        head = file.read_bytes()[:24]
        expect(file.name, (head[:8], *struct.unpack(">II", head[16:24])), (b"\x89PNG\r\n\x1a\n", size, size))
    expect("drawing", tree.parse(TOP / "icons/drawings/quarrynet.svg").getroot().tag, "{http://www.w3.org/2000/svg}svg")


{"entry": check_entry, "component": check_component, "manuals": check_manuals, "icons": check_icons}[sys.argv[1]]()
print("\n".join(faults))
sys.exit(1 if faults else 0)
