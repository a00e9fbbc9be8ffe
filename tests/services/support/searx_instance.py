#!/usr/bin/python3
"""Runs Debian's searx on a free port of the loopback with engines that need no network, until standard input ends.

    searx_instance.py FOLDER json|html

Prints the port. FOLDER receives the settings and the data: 35 pages and 25 pictures, found by "page" and "picture". The
answers are in JSON if the second argument says so; otherwise the instance refuses JSON as newer instances do by default.
This version of searx has no setting for that, so a rule before its own ones says 403.
"""

import os
import sqlite3
import sys
import threading

import yaml

folder, answers = sys.argv[1:]
database = os.path.join(folder, "pages.sqlite")
with sqlite3.connect(database) as connection:
    connection.execute("CREATE TABLE page (title TEXT, url TEXT, content TEXT)")
    connection.executemany("INSERT INTO page VALUES (?, ?, ?)", [
        (f"The {i}. page <p><a href=http://no.example> & more", f"https://pages.example/{i}?a=b&c=d", f"Text {i} of the page")
        for i in range(1, 36)])
pictures = os.path.join(folder, "pictures.txt")
with open(pictures, "w", encoding="utf-8") as lines:
    for i in range(1, 26):
        lines.write(f"https://pages.example/p{i}|picture {i}|https://pictures.example/{i}.jpg|"
                    f"https://thumbs.example/{i}.png\n")
# The package brings its settings as an example only.
with open("/usr/share/doc/searx/examples/settings.yml", encoding="utf-8") as file:
    values = yaml.safe_load(file)
values["server"]["secret_key"] = "of a test"
values["doi_resolvers"] = {"none": "https://doi.example/"}
values["default_doi_resolver"] = "none"
values["engines"] = [
    {"name": "pages", "engine": "sqlite", "shortcut": "pg", "categories": "general", "database": database,
     "query_str": "SELECT title, url, content FROM page WHERE content LIKE '%' || :query || '%' ORDER BY rowid",
     "limit": 10, "result_template": "default.html"},
    {"name": "pictures", "engine": "command", "shortcut": "pc", "categories": "images",
     "command": ["grep", "-F", "-e", "{{QUERY}}", pictures],
     "delimiter": {"chars": "|", "keys": ["url", "title", "img_src", "thumbnail_src"]}, "paging": True,
     "result_template": "images.html"},
]
settings = os.path.join(folder, "settings.yml")
with open(settings, "w", encoding="utf-8") as file:
    yaml.safe_dump(values, file)
os.environ["SEARX_SETTINGS_PATH"] = settings

# pylint: disable=wrong-import-position
from flask import abort, request
from werkzeug.serving import WSGIRequestHandler, make_server
from searx import webapp


@webapp.app.before_request
def refuse_json():
    if answers != "json" and request.values.get("format") == "json":
        abort(403)


class Quiet(WSGIRequestHandler):
    def log(self, *_):
        pass


server = make_server("127.0.0.1", 0, webapp.app, threaded=True, request_handler=Quiet)
threading.Thread(target=server.serve_forever, daemon=True).start()
print(server.server_port, flush=True)
sys.stdin.read()
