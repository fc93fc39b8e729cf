#!/usr/bin/python3
"""A scriptable FTP server for the tests, plain or with implicit TLS.

Usage: ftp_test_server.py ROOT CONTROL PORT_FILE USER PASSWORD THROTTLE [CERT KEY]
CONTROL holds the listings, scripted replies and command record that
tests/support/servers/ftp_test_server.cpp writes and reads.
"""

import os
import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, ThrottledDTPHandler, TLS_FTPHandler, TLS_DTPHandler
from pyftpdlib.servers import FTPServer


def make_scripted(base):
    class ScriptedHandler(base):
        control = None
        rule_uses = {}

        def _control_file(self, *parts):
            return os.path.join(self.control, *parts)

        def _record(self, line):
            with open(self._control_file("record.log"), "a", encoding="utf-8", errors="surrogateescape") as f:
                f.write(line + "\n")

        def _scripted_reply(self, line, verb):
            try:
                with open(self._control_file("replies.tsv"), encoding="utf-8") as f:
                    rules = [row.rstrip("\n").split("\t") for row in f if "\t" in row]
            except FileNotFoundError:
                return None
            for matching in (lambda m: m == line, lambda m: m == verb):
                for rule in rules:
                    if not matching(rule[0]):
                        continue
                    key = "\t".join(rule)
                    times = int(rule[2]) if len(rule) > 2 and rule[2] else -1
                    used = ScriptedHandler.rule_uses.get(key, 0)
                    if times >= 0 and used >= times:
                        continue
                    ScriptedHandler.rule_uses[key] = used + 1
                    return rule[1]
            return None

        def pre_process_command(self, line, cmd, arg):
            self._record(line)
            verb = cmd
            if cmd == "SITE" and arg:
                verb = "SITE " + arg.split(" ")[0].upper()
            reply = self._scripted_reply(line, verb)
            if reply is None:
                return super().pre_process_command(line, cmd, arg)
            if reply == "CLOSE":
                self.close()
            elif reply != "STALL":
                self.respond(reply)

        def ftp_LIST(self, path):
            name = self.fs.fs2ftp(path).encode("utf-8", "surrogateescape").hex()
            try:
                with open(self._control_file("lists", name), "rb") as f:
                    self.push_dtp_data(f.read(), isproducer=False, cmd="LIST")
                return path
            except FileNotFoundError:
                return super().ftp_LIST(path)

    return ScriptedHandler


class ImplicitTlsMixin:
    """Speaks TLS from the first byte: the handshake comes before the greeting."""

    def __init__(self, conn, server, ioloop=None):
        super().__init__(conn, server, ioloop)
        if self.connected:
            self.secure_connection(self.ssl_context)


class EarlyHandshakeTlsDTPHandler(TLS_DTPHandler):
    """libcurl starts the TLS handshake as soon as the data connection opens, before the command
    that uses it; pyftpdlib would take those early bytes for a client gone away and close."""

    def readable(self):
        if not self._initialized:
            return self._ssl_accepting or self.receive
        return super().readable()


def tls_context(cert, key):
    from OpenSSL import SSL
    context = SSL.Context(SSL.TLS_SERVER_METHOD)
    context.use_certificate_chain_file(cert)
    context.use_privatekey_file(key)
    # libcurl resumes the control connection's TLS session on every data connection; without a
    # session id context OpenSSL refuses the resumption and the data handshake fails.
    context.set_session_id(b"perchftp-test-server")
    return context


def main():
    root, control, port_file, user, password, throttle, *tls = sys.argv[1:]
    authorizer = DummyAuthorizer()
    authorizer.add_user(user, password, root, perm="elradfmwMT")
    if tls:
        handler = type("ImplicitTlsHandler", (ImplicitTlsMixin, make_scripted(TLS_FTPHandler)), {})
        handler.ssl_context = tls_context(*tls)
        handler.dtp_handler = EarlyHandshakeTlsDTPHandler
    else:
        handler = make_scripted(FTPHandler)
    if int(throttle):
        base = (EarlyHandshakeTlsDTPHandler, ThrottledDTPHandler) if tls else (ThrottledDTPHandler,)
        handler.dtp_handler = type("Throttled", base, {"read_limit": int(throttle), "write_limit": int(throttle)})
    handler.control = control
    handler.authorizer = authorizer
    handler.permit_foreign_addresses = False
    handler.banner = "PerchFtp test server ready."

    server = FTPServer(("127.0.0.1", 0), handler)
    server.max_cons = 64
    with open(port_file + ".tmp", "w") as f:
        f.write(str(server.socket.getsockname()[1]))
    os.rename(port_file + ".tmp", port_file)
    server.serve_forever(handle_exit=True)


if __name__ == "__main__":
    import logging
    logging.basicConfig(level=logging.ERROR)
    main()
