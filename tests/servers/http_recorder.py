#!/usr/bin/python3
"""A loopback HTTP server for tests.

Usage: http_recorder.py FOLDER

Listens on 127.0.0.1 on a free port and writes that port to FOLDER/port. Every request is answered
with the status written in FOLDER/status (200 when the file is missing) and recorded as two files
under FOLDER/requests: NNNN.body with the raw body and NNNN.head with the request line followed by
the headers as received. A 3xx answer carries a Location header, so that a client that followed
redirects would show up as a second request. SIGTERM ends the server.
"""

import http.server
import os
import sys


class RecordingHandler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    folder = "."
    count = 0

    def handle_any(self):
        length = int(self.headers.get("Content-Length") or 0)
        body = self.rfile.read(length)
        self.record(body)

        status = self.status()
        self.close_connection = True
        self.send_response(status)
        reply = b"" if status < 200 or status in (204, 304) else b'{"accepted":true}'
        if 300 <= status < 400:
            self.send_header("Location", "/redirected")
        self.send_header("Connection", "close")
        if status >= 200:
            self.send_header("Content-Length", str(len(reply)))
        self.end_headers()
        self.wfile.write(reply)

    do_GET = do_POST = do_PUT = handle_any

    def record(self, body):
        cls = type(self)
        cls.count += 1
        stem = os.path.join(cls.folder, "requests", "%04d" % cls.count)
        with open(stem + ".body", "wb") as out:
            out.write(body)
        with open(stem + ".head.tmp", "w") as out:
            out.write("%s %s\n%s" % (self.command, self.path, self.headers))
        os.rename(stem + ".head.tmp", stem + ".head")

    def status(self):
        try:
            with open(os.path.join(type(self).folder, "status")) as source:
                return int(source.read().strip())
        except (OSError, ValueError):
            return 200

    def log_message(self, *args):
        pass


def main():
    folder = sys.argv[1]
    os.makedirs(os.path.join(folder, "requests"), exist_ok=True)
    RecordingHandler.folder = folder
    server = http.server.HTTPServer(("127.0.0.1", 0), RecordingHandler)
    with open(os.path.join(folder, "port.tmp"), "w") as out:
        out.write(str(server.server_address[1]))
    os.rename(os.path.join(folder, "port.tmp"), os.path.join(folder, "port"))
    server.serve_forever()


if __name__ == "__main__":
    main()
