#!/usr/bin/env python3
"""Measures the file search over contents lists, side by side with apt-file and plocate on the same names.

    bench/contents_bench.py PROGRAM [APT_CONFIG]

PROGRAM is quarrynet-services. Needs apt-file, plocate, and contents lists that "apt-get update" has downloaded after
apt-file was installed; APT_CONFIG is a configuration file of apt for lists in another folder. Prints the rate of the
indexing and, for each search, the first page's time here (over HTTP) and the others' times (as processes), then the
medians and their ratios. Fails above a median of 5 ms or below 100,000 names a second.
"""

import os
import pathlib
import re
import statistics
import subprocess
import sys
import tempfile
import time
import urllib.parse
import urllib.request

WORDS = ["vim", "stdio.h", "qwindow", "libgimp", "png", "lib", "python", "copyright", "__init__.py", "systemd-resolved",
         "xylophone", "kernel-doc", "README", "zzzqqqxxx", "gtk", "opencv2", "bash_completion", "fonts.conf", "e.mo",
         "postgres", "7z", "Makefile", "libssl.so", "ls", "gimp png", "html", "unicode", "tetris", "nginx.conf", "so.6"]
ROUNDS = 5


def milliseconds(action):
    begin = time.perf_counter()
    action()
    return (time.perf_counter() - begin) * 1000


def run(arguments, **more):
    return subprocess.run(arguments, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False, **more)


def main():
    program = sys.argv[1]
    if len(sys.argv) > 2:
        os.environ["APT_CONFIG"] = str(pathlib.Path(sys.argv[2]).resolve())
    with tempfile.TemporaryDirectory() as folder:
        os.chmod(folder, 0o755)
        index = [program, "index", "--data", folder + "/data", "--folder", folder, "--pictures", folder]
        begin = time.perf_counter()
        told = subprocess.run(index, stderr=subprocess.PIPE, text=True, check=True).stderr
        seconds = time.perf_counter() - begin
        files = int(re.search(r"(\d+) files in packages in", told).group(1))
        size = os.path.getsize(folder + "/data/index.sqlite")
        print(f"{files} files in packages, indexed with the packages in {seconds:.1f} s: {files / seconds:,.0f} a "
              f"second, {size / 1e6:.0f} MB")

        lists = subprocess.run(["apt-get", "indextargets", "--format", "$(FILENAME)", "Identifier: Contents-deb"],
                               stdout=subprocess.PIPE, text=True, check=True).stdout.split()
        with open(folder + "/names", "wb") as names:
            for path in lists:
                text = subprocess.run(["/usr/lib/apt/apt-helper", "cat-file", path], stdout=subprocess.PIPE,
                                      check=True).stdout
                names.write(b"".join(b"/" + line.rsplit(None, 1)[0] + b"\n" for line in text.splitlines()))
        built = milliseconds(lambda: subprocess.run(
            ["plocate-build", "-p", folder + "/names", folder + "/plocate.db"], check=True)) / 1000
        print(f"plocate-build took {built:.1f} s, {os.path.getsize(folder + '/plocate.db') / 1e6:.0f} MB")

        serve = subprocess.Popen([program, "serve", "--data", folder + "/data", "--port", "0", "--proxy-port", "0"],
                                 stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        try:
            address = re.search(r"file=(\S+)", serve.stdout.readline()).group(1)
            times = {"here": [], "plocate": [], "apt-file": []}
            print(f"{'search':20}{'here ms':>10}{'plocate ms':>12}{'apt-file ms':>13}")
            for word in WORDS:
                query = urllib.parse.quote_plus(word)
                ask = f"{address}cgi-bin/s?t=f&d=&l=en&m=20&q={query}"
                # plocate takes several words as names that contain any, so it gets the longest one.
                longest = max(word.split(), key=len)
                actions = {
                    "here": lambda ask=ask: urllib.request.urlopen(ask).read(),
                    "plocate": lambda longest=longest: run(
                        ["plocate", "-d", folder + "/plocate.db", "-b", "-i", "-l", "21", longest]),
                    "apt-file": lambda longest=longest: run(["apt-file", "search", longest]),
                }
                row = []
                for name, action in actions.items():
                    took = [milliseconds(action) for _ in range(1 if name == "apt-file" else ROUNDS)]
                    times[name] += took
                    row.append(statistics.median(took))
                print(f"{word:20}{row[0]:10.2f}{row[1]:12.2f}{row[2]:13.0f}")
        finally:
            serve.terminate()
            serve.wait()
    medians = {name: statistics.median(took) for name, took in times.items()}
    worst = {name: max(took) for name, took in times.items()}
    print(f"{'median':20}{medians['here']:10.2f}{medians['plocate']:12.2f}{medians['apt-file']:13.0f}")
    print(f"{'worst':20}{worst['here']:10.2f}{worst['plocate']:12.2f}{worst['apt-file']:13.0f}")
    print(f"plocate takes {medians['plocate'] / medians['here']:.1f} times as long, apt-file "
          f"{medians['apt-file'] / medians['here']:.0f} times")
    return 0 if medians["here"] < 5 and files / seconds >= 100_000 else 1


sys.exit(main())
