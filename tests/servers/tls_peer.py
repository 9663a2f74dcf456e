#!/usr/bin/python3
"""A mail server for tests of encryption: Python's ssl on a loopback port, in one of many moods.

Prints the port it listens on as its first line, then one line for each message that it took: the
version of TLS, or 'clear'. It ends when the process that started it is gone, or after --limit
seconds.

  1.0 1.1 1.2 1.3   speaks this version alone, from the start
  clear             answers the handshake in clear, and so it greets the next connection
  closes            closes the connection in the handshake
  silent            says nothing
  resets            resets the connection in the handshake
  farewell          closes the session, but not the connection, after it has greeted in it
  cut, change       STARTTLS, with the Nth connection's handshake cut at byte N times --step,
                    both counted from 0, or with that byte changed
"""

import argparse
import itertools
import os
import socket
import ssl
import struct
import threading

PATIENCE = 30  # seconds


class Channel:
    """A connection whose bytes go out as the test wants them."""

    def __init__(self, connection, fault=None, place=None):
        connection.settimeout(PATIENCE)
        self._connection = connection
        self._fault, self._place = fault, place
        self._said = 0  # bytes of the handshake
        self._tls = None
        self._rest = b""

    def secure(self, context):
        self._in, self._out = ssl.MemoryBIO(), ssl.MemoryBIO()
        tls = context.wrap_bio(self._in, self._out, server_side=True)
        while True:
            try:
                tls.do_handshake()
                self._flush()
                self._tls = tls
                return
            except ssl.SSLWantReadError:
                self._flush()
                self._in.write(self._receive())
            except ssl.SSLError:
                self._flush()  # the alert
                raise

    def _receive(self):
        data = self._connection.recv(65536)
        if not data:
            raise ConnectionError("closed by the client")
        return data

    def _flush(self):
        data = bytearray(self._out.read())
        begin, self._said = self._said, self._said + len(data)
        if self._tls is None and self._fault and begin <= self._place < self._said:
            if self._fault == "change":
                data[self._place - begin] ^= 0xFF
            else:
                self._connection.sendall(data[:self._place - begin])
                self._connection.shutdown(socket.SHUT_WR)
                while self._connection.recv(65536):
                    pass
                raise ConnectionError("cut")
        self._connection.sendall(data)

    def say(self, text):
        if self._tls:
            self._tls.write(text.encode() + b"\r\n")
            self._flush()
        else:
            self._connection.sendall(text.encode() + b"\r\n")

    def line(self):
        while b"\n" not in self._rest:
            self._rest += self._read()
        line, _, self._rest = self._rest.partition(b"\n")
        return line.rstrip(b"\r")

    def _read(self):
        if not self._tls:
            return self._receive()
        while True:
            try:
                return self._tls.read(65536)
            except ssl.SSLWantReadError:
                self._in.write(self._receive())

    def farewell(self):
        try:
            self._tls.unwrap()
        except ssl.SSLWantReadError:
            pass
        self._flush()
        self._connection.recv(65536)

    def version(self):
        return self._tls.version() if self._tls else "clear"


class Peer:
    def __init__(self, mood, step, certificate, key):
        self._mood, self._step = mood, step
        versions = {"1.0": ssl.TLSVersion.TLSv1, "1.1": ssl.TLSVersion.TLSv1_1,
                    "1.3": ssl.TLSVersion.TLSv1_3}
        self._context = context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, key)
        context.set_ciphers("ALL:@SECLEVEL=0")  # or the old versions have none
        context.options |= ssl.OP_NO_TICKET     # handshakes of equal length
        version = versions.get(mood, ssl.TLSVersion.TLSv1_2)
        context.minimum_version, context.maximum_version = version, version

    def serve(self, connection, number):
        try:
            with connection:
                self._serve(connection, number)
        except (OSError, ssl.SSLError):
            pass  # what the client makes of it is the test's business

    def _serve(self, connection, number):
        fault = self._mood if self._mood in ("cut", "change") else None
        channel = Channel(connection, fault, number * self._step)
        if self._mood in ("closes", "resets", "silent") or (self._mood == "clear" and number == 0):
            connection.recv(65536)  # the handshake
            if self._mood == "silent":
                connection.recv(65536)
            if self._mood == "resets":
                connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            if self._mood == "clear":
                channel.say("220 peer.test")
                connection.recv(65536)
            return
        if not fault and self._mood != "clear":
            channel.secure(self._context)
        channel.say("220 peer.test ESMTP")
        if self._mood == "farewell":
            channel.farewell()
            return
        self._talk(channel)

    def _talk(self, channel):
        while True:
            word = channel.line()[:4].upper()
            if word == b"DATA":
                channel.say("354 go ahead")
                while channel.line() != b".":
                    pass
                print(channel.version(), flush=True)
                channel.say("250 kept")
            elif word == b"EHLO" and self._mood in ("cut", "change"):
                channel.say("250 STARTTLS")
            elif word == b"STAR":
                channel.say("220 go ahead")
                channel.secure(self._context)
            elif word == b"QUIT":
                channel.say("221 bye")
                return
            else:
                channel.say("250 fine")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("mood")
    parser.add_argument("certificate")
    parser.add_argument("key")
    parser.add_argument("--step", type=int, default=1)
    parser.add_argument("--limit", type=float, default=600)
    options = parser.parse_args()
    peer = Peer(options.mood, options.step, options.certificate, options.key)
    parent = os.getppid()
    with socket.create_server(("127.0.0.1", 0), backlog=64) as listener:
        listener.settimeout(0.25)
        print(listener.getsockname()[1], flush=True)
        waited = 0.0
        numbers = itertools.count()
        while os.getppid() == parent and waited < options.limit:
            try:
                connection, _ = listener.accept()
            except TimeoutError:
                waited += 0.25
                continue
            threading.Thread(target=peer.serve, args=(connection, next(numbers)),
                             daemon=True).start()


if __name__ == "__main__":
    main()
