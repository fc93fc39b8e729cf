#!/usr/bin/python3
"""A scriptable FTP server for the tests.

Usage: ftp_test_server.py ROOT CONTROL USER PASSWORD THROTTLE
CONTROL receives the file "port" once the server listens, and holds the listings, scripted
replies and command record that tests/support/servers/ftp_test_server.cpp writes and reads.
"""

import logging
import os
import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, ThrottledDTPHandler
from pyftpdlib.servers import FTPServer


class ScriptedHandler(FTPHandler):
    rule_uses = {}

    def _scripted_reply(self, line, verb):
        try:
            with open(os.path.join(self.control, "replies.tsv"), encoding="utf-8") as f:
                rules = [row.rstrip("\n").split("\t") for row in f]
        except FileNotFoundError:
            return None
        # Whole-line rules before verb rules; a rule is used up after its count, never when it is -1.
        for rule in [r for r in rules if r[0] == line] + [r for r in rules if r[0] == verb]:
            key = "\t".join(rule)
            used = ScriptedHandler.rule_uses.get(key, 0)
            if 0 <= int(rule[2]) <= used:
                continue
            ScriptedHandler.rule_uses[key] = used + 1
            return rule[1]
        return None

    def pre_process_command(self, line, cmd, arg):
        with open(os.path.join(self.control, "record.log"), "a", encoding="utf-8", errors="surrogateescape") as f:
            f.write(line + "\n")
        verb = "SITE " + arg.split(" ")[0].upper() if cmd == "SITE" and arg else cmd
        reply = self._scripted_reply(line, verb)
        if reply is None:
            return super().pre_process_command(line, cmd, arg)
        if reply == "CLOSE":
            self.close()
        elif reply != "STALL":
            self.respond(reply)

    def ftp_LIST(self, path):
        listing = os.path.join(self.control, "lists", self.fs.fs2ftp(path).lstrip("/"), ".listing")
        if not os.path.exists(listing):
            return super().ftp_LIST(path)
        with open(listing, "rb") as f:
            self.push_dtp_data(f.read(), isproducer=False, cmd="LIST")
        return path


def main():
    root, control, user, password, throttle = sys.argv[1:]
    handler = ScriptedHandler
    if int(throttle):
        limits = {"read_limit": int(throttle), "write_limit": int(throttle)}
        handler.dtp_handler = type("Throttled", (ThrottledDTPHandler,), limits)
    handler.control = control
    handler.authorizer = DummyAuthorizer()
    handler.authorizer.add_user(user, password, root, perm="elradfmwMT")
    handler.banner = "PerchFtp test server ready."

    server = FTPServer(("127.0.0.1", 0), handler)
    port_file = os.path.join(control, "port")
    with open(port_file + ".tmp", "w") as f:
        f.write(str(server.socket.getsockname()[1]))
    os.rename(port_file + ".tmp", port_file)
    server.serve_forever(handle_exit=True)


if __name__ == "__main__":
    logging.basicConfig(level=logging.ERROR)
    main()
