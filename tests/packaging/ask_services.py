"""Asks each local service one search and expects at least one result, and all thumbnails of the images.

Usage: ask_services.py [NAME...]    the named services are expected not to answer
Prints what is wrong and returns 1, or prints nothing.
"""

import re
import sys
import urllib.request

SEARCHES = {
    "web": ("http://127.80.0.1/search?num=30&hl=en&filter=0&safe=off&q=license", "<p><a href="),
    "image": ("http://127.80.0.2/images?num=10&hl=en&filter=0&safe=off&q=mail", "tbn:"),
    "download": ("http://127.80.0.3/3120-20-0-1-5.html?qt=text&ca=20", "destUrl="),
    "file": ("http://127.80.0.4/cgi-bin/s?t=f&d=&l=en&m=20&q=bash", "bash"),
}


def fetch(address):
    """Returns the bytes at an address, without a proxy that the environment names. Raises OSError."""
    opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
    with opener.open(address, timeout=60) as answer:
        return answer.read()


def fault(address, sign):
    """Returns what is wrong with the answer of a service, or None."""
    try:
        page = fetch(address).decode("utf-8", "replace")
        if sign not in page:
            return "no results in: " + page[:2000]
        for thumbnail in re.findall(r"/images\?q=tbn:[^ \"'>]*", page):
            if not fetch("http://127.80.0.2" + thumbnail).startswith((b"\x89PNG", b"\xff\xd8")):
                return "no picture at " + thumbnail
    except OSError as error:
        return str(error)
    return None


def main():
    silent = sys.argv[1:]
    faults = {name: fault(*search) for name, search in SEARCHES.items()}
    wrong = False
    for name, text in faults.items():
        if (text is not None) != (name in silent):
            print(f"{name}: {text or 'answers'}")
            wrong = True
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
