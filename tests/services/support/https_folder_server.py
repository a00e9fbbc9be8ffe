"""An HTTPS server for a folder, on a free loopback port that it prints; ends when its input does.

    https_folder_server.py FOLDER CERTIFICATE
"""
import functools
import http.server
import ssl
import sys
import threading


class Handler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, *_):  # clients that refuse the certificate
        pass


context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain(sys.argv[2])
server = Server(("127.0.0.1", 0), functools.partial(Handler, directory=sys.argv[1]))
server.socket = context.wrap_socket(server.socket, server_side=True, do_handshake_on_connect=False)
print(server.server_port, flush=True)
threading.Thread(target=server.serve_forever, daemon=True).start()
sys.stdin.read()
