"""Makes a language for tests from a .ts file: Arabic letters for the English ones, 40% longer, right to left.

    pseudo.py TS OUTPUT

Letters that are still Latin in a window of this language were not meant to be translated, or were forgotten.
"""

import re
import sys

import ts_file

# What a translation must keep: markup and entities, placeholders, an accelerator's letter, addresses.
KEPT = re.compile(r"<[^>]+>|&[a-z]+;|%L?\d|%n|&&|&\S|https?://")
LETTERS = "ابتثجحخدذرزسشصضطظعغفقكلمنهوي"
LONGER = 1.4
ARABIC_FORMS = 6  # of a text with a number


def pseudo(source):
    """Returns `source` in the language: at least 1.4 times as long."""
    result = ""
    at = 0
    for match in KEPT.finditer(source):
        result += arabic(source[at:match.start()]) + match.group(0)
        at = match.end()
    result += arabic(source[at:])
    missing = int(len(source) * LONGER) + 1 - len(result)
    return result + " " + "س" * max(1, missing - 1)


def arabic(text):
    return "".join(LETTERS[ord(c.lower()) - ord("a")] if c.isascii() and c.isalpha() else c for c in text)


def main():
    messages = ts_file.read(sys.argv[1])
    for message in messages:
        message.translation = pseudo(message.source)
        if message.forms:
            message.forms = (message.translation,) * ARABIC_FORMS
        message.finished = True
    ts_file.write(sys.argv[2], "ar", messages)


if __name__ == "__main__":
    main()
