"""Reads and writes .ts files, the translators' files of Qt, for texts that are not in the program's sources."""

import re
import xml.etree.ElementTree as ElementTree
from dataclasses import dataclass
from pathlib import Path
from xml.sax.saxutils import escape


@dataclass
class Message:
    """A text of the source language with its translation; `finished` is False for one that nobody has translated."""

    context: str
    source: str
    translation: str = ""
    finished: bool = False
    comment: str = ""
    forms: tuple = ()  # the translations of a text with a count (%n), one for each number form

    def key(self):
        return self.context, self.source, self.comment

    def translations(self):
        return list(self.forms) or [self.translation]


def read(path):
    """Returns the messages of a .ts file in their order. Obsolete messages are included as unfinished ones."""
    messages = []
    for context in ElementTree.parse(path).getroot().iter("context"):
        name = context.findtext("name", "")
        for message in context.iter("message"):
            translation = message.find("translation")
            forms = tuple(form.text or "" for form in translation.iter("numerusform"))
            messages.append(Message(
                name, message.findtext("source", ""), translation.text or "",
                translation.get("type") is None and all(forms), message.findtext("comment", ""), forms))
    return messages


def write(path, language, messages):
    """Writes messages, one context after the other."""
    lines = ['<?xml version="1.0" encoding="utf-8"?>', "<!DOCTYPE TS>",
             f'<TS version="2.1" language="{language}" sourcelanguage="en">']
    for name in dict.fromkeys(message.context for message in messages):
        lines += ["<context>", f"    <name>{escape(name)}</name>"]
        for message in messages:
            if message.context != name:
                continue
            mark = "" if message.finished else ' type="unfinished"'
            numerus = ' numerus="yes"' if message.forms else ""
            lines += [f"    <message{numerus}>", f"        <source>{escape(message.source)}</source>"]
            if message.comment:
                lines.append(f"        <comment>{escape(message.comment)}</comment>")
            forms = "".join(f"<numerusform>{escape(form)}</numerusform>" for form in message.forms)
            lines += [f"        <translation{mark}>{forms or escape(message.translation)}</translation>", "    </message>"]
        lines.append("</context>")
    lines.append("</TS>")
    Path(path).write_text("\n".join(lines) + "\n", encoding="utf-8")


def update(path, language, found):
    """Makes the .ts file hold exactly the texts `found`, pairs of context and source, and keeps their translations."""
    known = {}
    if Path(path).exists():
        known = {message.source: message for message in read(path)}
    messages = []
    for context, source in found:
        old = known.get(source)
        messages.append(Message(context, source, old.translation if old else "", bool(old and old.finished)))
    write(path, language, messages)


def finished_translations(path):
    """Returns the finished translations by their source texts."""
    return {message.source: message.translation for message in read(path) if message.finished}


def fixed_texts(path):
    """Returns the texts that stay English in every language."""
    lines = Path(path).read_text(encoding="utf-8").splitlines()
    return {line for line in lines if line and not line.startswith("# ")}


def language_of(path):
    """Returns the language of a .ts file by its name: "de" for manual_de.ts."""
    return re.search(r"_([a-z]+)\.ts$", str(path)).group(1)
