"""The manual in other languages: its paragraphs as texts of a .ts file, and the pages made from them.

    manual.py update DOCS FIXED TS           puts the texts of DOCS/*.html into TS, and drops those that are gone
    manual.py build DOCS FIXED TS FOLDER     writes the pages in the language of TS into FOLDER

FIXED lists the texts that stay English, such as the captions of tabs. A translated page shares its pictures and its
style with the English one in the folder above. A text that is not translated appears in English.
"""

import re
import sys
from pathlib import Path

import ts_file

# A text goes over these, which mark some words of a sentence. Everything else begins another text.
INLINE = {"a", "b", "i", "em", "strong", "code", "kbd", "br", "span"}
TOKEN = re.compile(r"<!--.*?-->|<[^>]+>|[^<]+", re.S)


def tag_of(token):
    match = re.match(r"</?([a-zA-Z0-9]+)", token)
    return match.group(1).lower() if match else ""


def needs_translation(text, fixed):
    """Returns whether a person reads words in `text`: not only numbers, and not only code."""
    words = re.sub(r"<[^>]+>", "", re.sub(r"<code>.*?</code>", "", text))
    return bool(re.search(r"[A-Za-z]", words)) and text not in fixed


class Page:
    """A page as a list of pieces: (True, a text to translate) or (False, markup as it is)."""

    def __init__(self, html, fixed):
        self.pieces = []
        self.fixed = fixed
        run = []
        in_nav = in_pre = False
        for token in TOKEN.findall(html):
            tag = tag_of(token)
            if not tag and not token.startswith("<"):
                run.append(token)
            elif tag in INLINE and not in_pre and not (in_nav and tag == "a"):
                run.append(token)
            else:
                self.take(run, in_pre)
                in_nav = token.startswith("<nav") or (in_nav and tag != "nav")
                in_pre = token.startswith("<pre") or (in_pre and tag != "pre")
                self.take_tag(token)
        self.take(run, in_pre)

    def add(self, text):
        """Adds `text`, whose blanks at both ends and line ends are not the translator's."""
        words = " ".join(text.split())
        if not needs_translation(words, self.fixed):
            self.pieces.append((False, text))
            return
        begin = len(text) - len(text.lstrip())
        end = len(text.rstrip())
        self.pieces += [(False, text[:begin]), (True, words), (False, text[end:])]

    def take(self, run, in_pre):
        text = "".join(run)
        run.clear()
        if not in_pre:
            self.add(text)
            return
        for line in text.splitlines(keepends=True):  # of commands, only their comments are for people
            command, sign, comment = line.partition("# ")
            self.pieces.append((False, command + sign))
            self.add(comment)

    def take_tag(self, token):
        match = re.match(r'(<img\b[^>]*\balt=")([^"]*)("[^>]*>)$', token, re.S)
        if match:
            self.pieces.append((False, match.group(1)))
            self.add(match.group(2))
            self.pieces.append((False, match.group(3)))
        else:
            self.pieces.append((False, token))

    def texts(self):
        return [text for to_translate, text in self.pieces if to_translate]

    def translated(self, translations):
        return "".join(translations.get(text, text) if to_translate else text for to_translate, text in self.pieces)


def pages(docs, fixed):
    """Returns the manual's pages by file name, the first page first."""
    files = sorted(Path(docs).glob("*.html"), key=lambda file: (file.name != "index.html", file.name))
    return {file.name: Page(file.read_text(encoding="utf-8"), fixed) for file in files}


def texts(docs, fixed):
    """Returns pairs of context and source text. A text of several pages belongs to the first one."""
    found = {}
    for name, page in pages(docs, fixed).items():
        for text in page.texts():
            found.setdefault(text, name)
    return [(context, source) for source, context in found.items()]


def build(docs, fixed, ts, folder):
    language = ts_file.language_of(ts)
    translations = ts_file.finished_translations(ts)
    Path(folder).mkdir(parents=True, exist_ok=True)
    for name, page in pages(docs, fixed).items():
        html = page.translated(translations)
        html = html.replace('<html lang="en">', f'<html lang="{language}">', 1)
        html = re.sub(r'\b(href="manual\.css"|src="pictures/)',
                      lambda match: match.group(0).replace('="', '="../'), html)
        Path(folder, name).write_text(html, encoding="utf-8", newline="\n")


def main():
    command, docs, fixed, ts = sys.argv[1:5]
    fixed = ts_file.fixed_texts(fixed)
    if command == "update":
        ts_file.update(ts, ts_file.language_of(ts), texts(docs, fixed))
    else:
        build(docs, fixed, ts, sys.argv[5])


if __name__ == "__main__":
    main()
