#!/usr/bin/python3
"""A mail catcher: accepts every message on a loopback port and keeps it in a folder.

Prints the port it listens on as its first line. Message N becomes two files, N counted from 0001:
`N.eml` holds the bytes that came after DATA, with the doubled dots undone and nothing else
changed; `N.json` holds the envelope and the address that took it, and appears only when both are
complete. A recipient with the local part "refused" is refused.
With --certificate and --login it takes mail only from who has encrypted the connection and logged in.

It ends when the process that started it is gone, or after --limit seconds.
"""

import argparse
import asyncio
import json
import logging
import os
import pathlib
import ssl
import sys

from aiosmtpd.smtp import SMTP, AuthResult


class Catcher(SMTP):
    # Long header fields are none of our business: a line may have up to this many bytes.
    line_length_limit = 1 << 20
    # As mail servers ask.
    AuthLoginUsernameChallenge, AuthLoginPasswordChallenge = "Username:", "Password:"


class Folder:
    """Stores messages as numbered pairs of files."""

    def __init__(self, path):
        self.path = path
        self.count = 0

    async def handle_RCPT(self, server, session, envelope, address, options):
        if address.startswith("refused@"):
            return "550 no such user here"
        envelope.rcpt_tos.append(address)
        return "250 OK"

    async def handle_DATA(self, server, session, envelope):
        self.count += 1
        stem = self.path / f"{self.count:04}"
        stem.with_suffix(".eml").write_bytes(envelope.original_content)
        record = {
            "server": server.transport.get_extra_info("sockname")[0],
            "helo": session.host_name,
            "from": envelope.mail_from,
            "to": envelope.rcpt_tos,
            "mail_options": envelope.mail_options,
        }
        unfinished = stem.with_suffix(".part")
        unfinished.write_text(json.dumps(record, ensure_ascii=False), encoding="utf-8")
        unfinished.rename(stem.with_suffix(".json"))
        return f"250 kept as {self.count:04}"


async def catch(arguments):
    parent = os.getppid()
    folder = Folder(arguments.folder)
    arguments.folder.mkdir(parents=True, exist_ok=True)

    security = {}
    if arguments.certificate:
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(*arguments.certificate)
        logging.getLogger("mail.log").setLevel(logging.ERROR)  # it warns of its own old ways
        login = tuple(word.encode() for word in arguments.login)
        security = {"tls_context": context, "require_starttls": True, "auth_required": True,
                    "authenticator": lambda server, session, envelope, mechanism, data: AuthResult(
                        success=(data.login, data.password) == login)}

    def connection():
        return Catcher(folder, data_size_limit=None, hostname="catcher.test", ident="ready",
                       **security)

    server = await asyncio.get_running_loop().create_server(
        connection, arguments.host or "127.0.0.1", arguments.port)
    print(server.sockets[0].getsockname()[1], flush=True)
    async with server:
        waited = 0.0
        while os.getppid() == parent and waited < arguments.limit:
            await asyncio.sleep(0.25)
            waited += 0.25


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("folder", type=pathlib.Path, help="folder that the messages go to")
    parser.add_argument("--host", action="append",
                        help="address to listen on (default: 127.0.0.1); may be repeated")
    parser.add_argument("--port", type=int, default=0, help="port to listen on (default: a free one)")
    parser.add_argument("--certificate", nargs=2, metavar=("CERTIFICATE", "KEY"),
                        help="PEM files for STARTTLS, which it wants then")
    parser.add_argument("--login", nargs=2, metavar=("USER", "PASSWORD"),
                        help="account of those who may send (with --certificate)")
    parser.add_argument("--limit", type=float, default=600, help="seconds after which it ends")
    try:
        asyncio.run(catch(parser.parse_args()))
    except KeyboardInterrupt:
        return 130
    return 0


if __name__ == "__main__":
    sys.exit(main())
