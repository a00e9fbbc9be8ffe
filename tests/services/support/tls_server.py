#!/usr/bin/env python3
"""Serves one HTTP answer over TLS on free ports of the loopback, each with another certificate, until standard input ends.

    tls_server.py FOLDER

Prints "KIND=PORT" for each kind: good, expired, self-signed, wrong-name, and old (TLS 1.1 at most). The authority that
signed the first, second, fourth and fifth is FOLDER/ca.pem; the servers are called localhost and 127.0.0.1.
"""

import http.server
import os
import ssl
import subprocess
import sys
import threading

folder = sys.argv[1]
BODY = b'{"results": [{"url": "https://a.example/", "title": "over TLS"}]}'


def run(*arguments):
    subprocess.run(["openssl", *arguments], cwd=folder, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def write(name, text):
    with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
        file.write(text)


write("ca.cnf", """
[ca]
default_ca = test
[test]
database = index.txt
serial = serial
new_certs_dir = .
default_md = sha256
policy = any
copy_extensions = copy
[any]
commonName = supplied
""")
write("index.txt", "")
write("serial", "01\n")
NEW = ("req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes")
HERE = "subjectAltName=DNS:localhost,IP:127.0.0.1"
run(*NEW, "-keyout", "ca.key", "-out", "ca.pem", "-subj", "/CN=Authority of a test", "-days", "2")
run(*NEW, "-keyout", "self-signed.key", "-out", "self-signed.pem", "-subj", "/CN=localhost", "-days", "2", "-addext", HERE)
for name, names, dates in (
        ("good", HERE, ("-days", "2")),
        ("expired", HERE, ("-startdate", "20000101000000Z", "-enddate", "20010101000000Z")),
        ("wrong-name", "subjectAltName=DNS:other.example", ("-days", "2"))):
    run(*NEW[:1], *NEW[2:], "-keyout", name + ".key", "-out", name + ".csr", "-subj", f"/CN={name}", "-addext", names)
    run("ca", "-batch", "-config", "ca.cnf", "-cert", "ca.pem", "-keyfile", "ca.key", "-in", name + ".csr", "-out",
        name + ".pem", "-notext", *dates)


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(BODY)))
        self.end_headers()
        self.wfile.write(BODY)

    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, *_):  # clients that refuse the certificate
        pass


ports = []
for kind in ("good", "expired", "self-signed", "wrong-name", "old"):
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    certificate = "good" if kind == "old" else kind
    context.load_cert_chain(os.path.join(folder, certificate + ".pem"), os.path.join(folder, certificate + ".key"))
    if kind == "old":
        context.set_ciphers("DEFAULT:@SECLEVEL=0")
        context.minimum_version = ssl.TLSVersion.TLSv1
        context.maximum_version = ssl.TLSVersion.TLSv1_1
    server = Server(("127.0.0.1", 0), Handler)
    server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    ports.append(f"{kind}={server.server_port}")
print(*ports, flush=True)
sys.stdin.read()
