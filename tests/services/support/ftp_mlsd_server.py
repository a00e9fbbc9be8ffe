"""An anonymous FTP server for a folder, on a free loopback port that it prints; ends when its input does."""
import sys
import threading

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer

FTPHandler.authorizer = DummyAuthorizer()
FTPHandler.authorizer.add_anonymous(sys.argv[1])
server = FTPServer(("127.0.0.1", 0), FTPHandler)
print(server.address[1], flush=True)
threading.Thread(target=server.serve_forever, daemon=True).start()
sys.stdin.read()
