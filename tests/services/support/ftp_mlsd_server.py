"""An anonymous FTP server, on a free loopback port that it prints; ends when its input does.

    ftp_mlsd_server.py FOLDER [CERTIFICATE]

With a certificate, it requires TLS for both connections.
"""
import sys
import threading

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer

Handler = FTPHandler
if len(sys.argv) > 2:
    from pyftpdlib.handlers import TLS_DTPHandler, TLS_FTPHandler

    class DataHandler(TLS_DTPHandler):
        """Accepts the first message of the handshake before the command for the data, as clients may send it."""

        def readable(self):
            return self._ssl_accepting or super().readable()

    Handler = TLS_FTPHandler
    Handler.dtp_handler = DataHandler
    Handler.certfile = sys.argv[2]
    Handler.tls_control_required = True
    Handler.tls_data_required = True
Handler.authorizer = DummyAuthorizer()
Handler.authorizer.add_anonymous(sys.argv[1])
server = FTPServer(("127.0.0.1", 0), Handler)
print(server.address[1], flush=True)
threading.Thread(target=server.serve_forever, daemon=True).start()
sys.stdin.read()
