#!/usr/bin/env python3
"""Sends valid and broken requests to the local services for a long time, and watches their resources.

    bench/soak.py [--halts] BUILD_FOLDER [MINUTES]         two hours by default

Eight clients search on all four services, page, fetch thumbnails, send broken requests, disconnect early and read
slowly; every ten minutes the index is rebuilt. All traffic is on loopback addresses and bounded: each client pauses
between two requests. Once a minute a line reports the services' memory, descriptors and threads, and the search times;
soak.tsv in the current folder keeps the lines; bench/soak.tsv has those of the last long run. The exit status is 1 if
memory or descriptors have grown since the tenth minute, a search took longer than two seconds, or the services ended.

With --halts the services are stopped for moments of up to five seconds, so that every timeout and every order of events
is met; search times are then not judged. Under the thread sanitizer (preset tsan) this finds races within minutes.
"""

import pathlib
import random
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time

WORDS = ["text", "editor", "python", "library", "game", "image", "vim", "doc", "icon", "web", "a", "xyzzy", '"text editor"']
HOSTS = {"web": "127.80.0.1", "image": "127.80.0.2", "download": "127.80.0.3", "file": "127.80.0.4"}
PAUSE = 0.02  # seconds between two requests of a client
SLOWEST = 2.0  # seconds that a search may take
SETTLED = 10  # minutes until memory and descriptors are stable
GROWTH = 1.25  # permitted factor of memory growth from then on, in addition to GROWTH_MB
GROWTH_MB = 32


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class Services:
    def __init__(self, program, data):
        self.port = free_port()
        self.process = subprocess.Popen(
            [program, "serve", "--data", data, "--proxy-port", str(self.port), "--port", str(self.port)],
            stdout=subprocess.PIPE, text=True)
        line = self.process.stdout.readline()
        if "ready" not in line:
            sys.exit("the services did not start: " + line)

    def status(self):
        numbers = {}
        for line in pathlib.Path(f"/proc/{self.process.pid}/status").read_text().splitlines():
            name, _, value = line.partition(":")
            if name in ("VmRSS", "Threads"):
                numbers[name] = int(value.split()[0])
        descriptors = len(list(pathlib.Path(f"/proc/{self.process.pid}/fd").iterdir()))
        return numbers["VmRSS"] / 1024, descriptors, numbers["Threads"]


def request(service, chance):
    word = chance.choice(WORDS).replace(" ", "+")
    page = chance.choice([1, 1, 1, 2, 5, 100])
    target = {
        "web": f"/search?num=30&hl=en&filter=0&start={page * 30 - 30}&safe=off&q={word}",
        "image": f"/images?num=10&hl=en&filter=0&start={page * 10 - 10}&safe=off&q={word}",
        "download": f"/3120-20-0-{page}-5.html?qt={word}&ca=20",
        "file": f"/cgi-bin/s?t=f&q={word}&o=n&d=1&f={page * 20 - 20}",
    }[service]
    return f"GET http://{HOSTS[service]}{target} HTTP/1.1\r\nHOST: {HOSTS[service]}\r\nConnection: close\r\n\r\n".encode()


def broken(chance):
    return chance.choice([
        b"GET / HTTP/9.9\r\n\r\n", b"\0" * 500, b"GET " + b"/" * 20000 + b" HTTP/1.1\r\n\r\n",
        b"POST http://127.80.0.1/ HTTP/1.1\r\nContent-Length: 99999999\r\n\r\nx",
        b"GET http://127.80.0.1/doc/0/../../../etc/passwd HTTP/1.1\r\nHOST: x\r\n\r\n",
        b"GET http://127.80.0.2/pictures/0/%2e%2e/x HTTP/1.1\r\nHOST: x\r\n\r\n",
        b"GET http://elsewhere.example/ HTTP/1.1\r\nHOST: elsewhere.example\r\n\r\n"])


def exchange(port, message, slowly=False, leave_after=None):
    with socket.create_connection(("127.0.0.1", port), timeout=30) as connection:
        connection.sendall(message)
        answer = b""
        while True:
            if leave_after is not None and len(answer) >= leave_after:
                return answer
            piece = connection.recv(256 if slowly else 65536)
            if not piece:
                return answer
            answer += piece
            if slowly:
                time.sleep(0.005)


def client(number, services, stop, faults):
    chance = random.Random(number)
    while not stop.is_set():
        service = chance.choice(list(HOSTS))
        kind = chance.random()
        try:
            if kind < 0.6:
                answer = exchange(services.port, request(service, chance))
                if service == "image" and b"src=/images?q=tbn" in answer:
                    path = answer.split(b"src=", 1)[1].split(b" ", 1)[0].decode()
                    exchange(services.port, f"GET http://{HOSTS['image']}{path} HTTP/1.1\r\n\r\n".encode())
            elif kind < 0.75:
                exchange(services.port, broken(chance))
            elif kind < 0.9:
                exchange(services.port, request(service, chance), leave_after=chance.choice([0, 0, 10, 2000]))
            else:
                exchange(services.port, request(service, chance), slowly=True)
        except (ConnectionError, socket.timeout):
            pass  # refused and dropped connections are expected
        except OSError as fault:
            faults.append(str(fault))
        stop.wait(PAUSE)


def halt(services, stop):
    chance = random.Random(5)
    while not stop.wait(chance.random() / 2):
        services.process.send_signal(signal.SIGSTOP)
        time.sleep(chance.choice([0.2, 1, 2.2, 4.5]))
        services.process.send_signal(signal.SIGCONT)


def main():
    arguments = [argument for argument in sys.argv[1:] if argument != "--halts"]
    halts = "--halts" in sys.argv
    if not arguments:
        sys.exit(__doc__)
    program = str(pathlib.Path(arguments[0]) / "bin" / "quarrynet-services")
    minutes = int(arguments[1]) if len(arguments) > 1 else 120
    with tempfile.TemporaryDirectory() as data:
        subprocess.run([program, "index", "--data", data], check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)
        services = Services(program, data)
        stop, faults = threading.Event(), []
        clients = [threading.Thread(target=client, args=(i, services, stop, faults), daemon=True) for i in range(8)]
        if halts:
            clients.append(threading.Thread(target=halt, args=(services, stop), daemon=True))
        for thread in clients:
            thread.start()
        probe, settled, problems = random.Random(99), None, []
        report = open("soak.tsv", "w", encoding="ascii")
        heading = "minute\tmemory MB\tdescriptors\tthreads\tmedian ms\tworst ms"
        print(heading)
        report.write(heading + "\n")
        try:
            for minute in range(1, minutes + 1):
                indexing = None
                if minute % 10 == 0:
                    indexing = subprocess.Popen([program, "index", "--data", data],
                                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
                end, times = time.monotonic() + 60, []
                while time.monotonic() < end:
                    begin = time.monotonic()
                    try:
                        exchange(services.port, request(probe.choice(list(HOSTS)), probe))
                    except OSError as fault:
                        if services.process.poll() is not None:
                            break
                        if not halts:
                            faults.append(str(fault))
                    times.append(time.monotonic() - begin)
                    time.sleep(0.5)
                if indexing and indexing.wait() != 0:
                    problems.append(f"minute {minute}: indexing failed")
                if services.process.poll() is not None:
                    problems.append(f"minute {minute}: the services ended with {services.process.returncode}")
                    break
                memory, descriptors, threads = services.status()
                times.sort()
                line = f"{minute}\t{memory:.0f}\t{descriptors}\t{threads}\t" \
                       f"{times[len(times) // 2] * 1000:.1f}\t{times[-1] * 1000:.0f}"
                print(line, flush=True)
                report.write(line + "\n")
                report.flush()
                if times[-1] > SLOWEST and not halts:
                    problems.append(f"minute {minute}: a search took {times[-1]:.1f} s")
                if minute == SETTLED:
                    settled = memory, descriptors
                elif settled and memory > settled[0] * GROWTH + GROWTH_MB:
                    problems.append(f"minute {minute}: memory has grown from {settled[0]:.0f} to {memory:.0f} MB")
                elif settled and descriptors > settled[1] + 40:
                    problems.append(f"minute {minute}: descriptors have grown from {settled[1]} to {descriptors}")
        finally:
            stop.set()
            for thread in clients:
                thread.join(40)
            begin = time.monotonic()
            services.process.terminate()
            services.process.wait(20)
            print(f"the services ended {time.monotonic() - begin:.1f} s after SIGTERM")
        problems += sorted(set(faults))
        print("\n".join(problems) if problems else "passed: no growth" + ("" if halts else ", no slow search"))
        sys.exit(1 if problems else 0)


main()
