#!/usr/bin/env python3
"""Checks translations/*.ts: that they have all texts of the program, the manual and the services and no others, that
German is complete, and that translations keep what a program or a browser needs.

    tests/translations/translations_test.py [SOURCE_FOLDER]
"""

import collections
import pathlib
import re
import subprocess
import sys
import tempfile
from html.parser import HTMLParser

ROOT = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]).resolve()
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools/translations"))
import ts_file  # noqa: E402

COMPLETE = "de"
PLACEHOLDER = re.compile(r"%L?\d+|%L?n")
ACCELERATOR = re.compile(r"&(?!&|[a-z]+;)(?<!&&)")
MARKUP = re.compile(r"<[^>]+>|&(?:lt|gt|amp|quot|nbsp);")


class Nesting(HTMLParser):
    """Finds a tag that is closed elsewhere than it was opened."""

    def __init__(self):
        super().__init__()
        self.open = []
        self.well = True

    def handle_starttag(self, tag, attrs):
        if tag not in ("br", "img"):
            self.open.append(tag)

    def handle_endtag(self, tag):
        self.well = self.well and bool(self.open) and self.open.pop() == tag


def is_well_nested(text):
    nesting = Nesting()
    nesting.feed(text)
    nesting.close()
    return nesting.well and not nesting.open


def faults(message, is_html):
    """Returns what is wrong with the translation of one message."""
    found = []
    for translation in message.translations():
        source = message.source
        if not message.finished or not translation.strip():
            return ["is not translated"]
        wanted, there = (collections.Counter(PLACEHOLDER.findall(text)) for text in (source, translation))
        if message.forms:  # the form for one thing may do without its number
            wanted, there = wanted - collections.Counter(["%n"]), there - collections.Counter(["%n"] * 2)
        if wanted != there:
            found.append("has other placeholders")
        if is_html:
            if collections.Counter(MARKUP.findall(source)) != collections.Counter(MARKUP.findall(translation)):
                found.append("has other markup")
            if not is_well_nested(translation):
                found.append("has badly nested markup")
        elif len(ACCELERATOR.findall(source)) != len(ACCELERATOR.findall(translation)):
            found.append("has another number of accelerators")
        for end in ("...", ":", ".", "\n"):
            if source.endswith(end) != translation.endswith(end):
                found.append(f"must end like its source, with or without {end!r}")
                break
        if translation != translation.strip() and source == source.strip():
            found.append("has blanks around it")
    return found


def is_html(file):
    return not file.name.startswith("quarrynet_")


def check_file(file, fixed):
    """Returns the problems of one .ts file."""
    problems = []
    for message in ts_file.read(file):
        where = f"{file.name}: {message.context}: {message.source!r}"
        if message.source in fixed:
            problems.append(f"{where} stays English: it must not go through tr()")
        elif ts_file.language_of(file) == COMPLETE:
            problems += [f"{where} {fault}" for fault in faults(message, is_html(file))]
    return problems


def check_texts(folder):
    """Returns where the .ts files have other texts than the sources."""
    problems = []
    with tempfile.TemporaryDirectory() as fresh:
        subprocess.run([str(ROOT / "tools/translations.sh"), "--into", fresh], check=True)
        for file in sorted(folder.glob("*.ts")):
            kept = {message.key() for message in ts_file.read(file)}
            wanted = {message.key() for message in ts_file.read(pathlib.Path(fresh, file.name))}
            if not wanted:
                problems.append(f"{file.name}: no texts were found")
            problems += [f"{file.name}: {context}: {source!r} is missing: run tools/translations.sh"
                         for context, source, _ in sorted(wanted - kept)]
            problems += [f"{file.name}: {context}: {source!r} is gone: run tools/translations.sh"
                         for context, source, _ in sorted(kept - wanted)]
    return problems


def check_fixed_texts(fixed):
    """Returns fixed texts that no source has: a list with such texts guards nothing."""
    # Generated from the forms and the code; a form writes "&" as "&amp;".
    sources = "".join(path.read_text(encoding="utf-8") for part in ("app", "common", "dialogs", "platform", "search")
                      for path in sorted((ROOT / part).rglob("*")) if path.suffix in (".cpp", ".h", ".ui"))
    def quoted(text):
        return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
    return [f"fixed_texts.txt: no source has {text!r}"
            for text in sorted(fixed) if text not in sources and quoted(text) not in sources]


def check_the_check():
    """Returns the faults that the functions above overlook, so that they cannot pass by accident."""
    message = ts_file.Message
    broken = [
        (message("C", "Save", "", False), False, "is not translated"),
        (message("C", "Save", "Speichern", False), False, "is not translated"),
        (message("C", "Page %1 of %2", "Seite %1 von %1", True), False, "has other placeholders"),
        (message("C", "Page %1", "Seite", True), False, "has other placeholders"),
        (message("C", "&Save", "Speichern", True), False, "has another number of accelerators"),
        (message("C", "&Save", "&Sp&eichern", True), False, "has another number of accelerators"),
        (message("C", "Save...", "Speichern", True), False, "must end like its source, with or without '...'"),
        (message("C", "Save", " Speichern", True), False, "has blanks around it"),
        (message("C", "<b>Save</b>", "Speichern", True), True, "has other markup"),
        (message("C", "<a href=\"a\">A</a>", "<a href=\"b\">A</a>", True), True, "has other markup"),
        (message("C", "<b>A</b> <i>B</i>", "<b>A <i>B</b></i>", True), True, "has badly nested markup"),
        (message("C", "%n rows", "", True, forms=("%n Zeile %1", "%n Zeilen")), False, "has other placeholders"),
    ]
    problems = [f"the check overlooks that {entry} {fault}" for entry, html, fault in broken
                if fault not in faults(entry, html)]
    good = [
        (message("C", "&Save %1 && more...", "%1 && mehr &speichern...", True), False),
        (message("C", "A &lt;b <b>C</b>", "<b>C</b> ist &lt;b", True), True),
        (message("C", "%n rows", "", True, forms=("eine Zeile", "%n Zeilen")), False),
    ]
    problems += [f"the check rejects {entry}" for entry, html in good if faults(entry, html)]
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder, "quarrynet_de.ts")
        ts_file.write(file, "de", [message("C", "Stop", "Halt", True), message("C", "Run", "Los", True)])
        if len(check_file(file, {"Stop"})) != 1:
            problems.append("the check overlooks a fixed text")
        if not check_texts(pathlib.Path(folder)):
            problems.append("the check overlooks texts that are missing and texts that are gone")
    return problems


def main():
    folder = ROOT / "translations"
    fixed = ts_file.fixed_texts(folder / "fixed_texts.txt")
    files = sorted(folder.glob("*.ts"))
    problems = check_the_check() + check_fixed_texts(fixed) + check_texts(folder)
    for file in files:
        problems += check_file(file, fixed)
    if not {"quarrynet_de.ts", "manual_de.ts", "services_de.ts"} <= {file.name for file in files}:
        problems.append("there is no German")
    print("\n".join(problems) or f"{len(files)} files are complete.")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
