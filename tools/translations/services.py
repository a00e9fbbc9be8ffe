"""The services' own texts: found in their sources, and the table that is compiled into them.

    services.py update SOURCES TS          puts the texts of SOURCES/**/*.cpp into TS, and drops those that are gone
    services.py table OUTPUT TS...         writes C++ arrays with the translations of all .ts files
"""

import ast
import re
import sys
from pathlib import Path

import ts_file

LITERAL = r'"(?:[^"\\\n]|\\.)*"'
CALL = re.compile(r"\b(?:translated|ownText|pageHead|errorResponse)\(\s*(?:\d+,\s*)?(" + LITERAL + r"(?:\s*" + LITERAL + r")*)")


def texts(sources):
    """Returns pairs of context (the source file's name) and text."""
    found = {}
    for file in sorted(Path(sources).rglob("*.cpp")):
        for call in CALL.finditer(file.read_text(encoding="utf-8")):
            text = "".join(ast.literal_eval(literal) for literal in re.findall(LITERAL, call.group(1)))
            found.setdefault(text, file.stem)
    return [(context, source) for source, context in found.items()]


def quoted(text):
    """Returns a C++ literal of the UTF-8 text. Octal escapes, unlike hexadecimal ones, have a fixed length."""
    escaped = "".join(chr(byte) if 32 <= byte < 127 and byte not in b'"\\?' else f"\\{byte:03o}"
                      for byte in text.encode("utf-8"))
    return f'"{escaped}"'


def table(files):
    files = sorted(files)
    translations = [ts_file.finished_translations(file) for file in files]
    codes = ["en"] + [ts_file.language_of(file) for file in files]
    sources = sorted({source for each in translations for source in each}, key=lambda text: text.encode("utf-8"))
    lines = ["// Made by tools/translations/services.py.",
             f"constexpr std::array<std::string_view, {len(codes)}> kCodes = {{{', '.join(map(quoted, codes))}}};",
             "struct Row", "{", "    std::string_view english;",
             f"    std::array<std::string_view, {len(files)}> others;", "};",
             f"constexpr std::array<Row, {len(sources)}> kRows = {{{{"]
    for source in sources:
        others = ", ".join(quoted(each.get(source, "")) for each in translations)
        lines.append(f"    Row{{{quoted(source)}, {{{others}}}}},")
    return "\n".join(lines + ["}};", ""])


def main():
    if sys.argv[1] == "update":
        ts_file.update(sys.argv[3], ts_file.language_of(sys.argv[3]), texts(sys.argv[2]))
    else:
        Path(sys.argv[2]).write_text(table(sys.argv[3:]), encoding="ascii", newline="\n")


if __name__ == "__main__":
    main()
