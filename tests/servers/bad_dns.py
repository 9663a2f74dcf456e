#!/usr/bin/env python3
"""A DNS server that answers as no DNS server should.

The first label of the name that is asked for names the fault; see FAULTS. Prints a line when it
listens. It ends when the process that started it is gone, or after --limit seconds.
"""

import argparse
import os
import select
import socket
import struct
import sys
import time

MX, INTERNET = 15, 1
TRUNCATED = 0x0200
ANSWER_FLAGS = 0x8180
QUESTION_AT = 12  # behind the header
BACK_TO_QUESTION = b"\xC0\x0C"  # compressed name: what stands at the question


def message(query, exchanger, flags=0, answers=1, identifier=None, question=None):
    """The answer to the query with one mail exchanger, which is given as in a message."""
    record = BACK_TO_QUESTION + struct.pack(">HHIHH", MX, INTERNET, 60, 2 + len(exchanger), 10)
    return ((identifier or query[:2]) + struct.pack(">5H", ANSWER_FLAGS | flags, 1, answers, 0, 0)
            + (question or query[QUESTION_AT:]) + record + exchanger)


def record_place(query):
    """Where the exchanger's name stands in the answer."""
    return len(message(query, b""))


NAME = b"\x04trap" + BACK_TO_QUESTION  # must never be connected to
OTHER_QUESTION = b"\x05other\x04test\0" + struct.pack(">HH", MX, INTERNET)

FAULTS = {
    "loop": lambda q: message(q, struct.pack(">H", 0xC000 | record_place(q))),
    "long-loop": lambda q: message(q, b"\x01a" + struct.pack(">H", 0xC000 | record_place(q))),
    "outside": lambda q: message(q, b"\xFF\xFF"),
    "cut": lambda q: message(q, NAME)[:-3],
    "no-name": lambda q: message(q, b""),
    "missing-records": lambda q: message(q, NAME, answers=100),
    "garbage": lambda q: q[:2] + bytes(range(256)),
    "two-bytes": lambda q: q[:2],
    "wrong-identifier": lambda q: message(q, NAME, identifier=bytes(255 - b for b in q[:2])),
    "wrong-question": lambda q: message(q, NAME, question=OTHER_QUESTION),
    "silent": lambda q: None,
    # Over TCP it says nothing, or closes.
    "stalls": lambda q: message(q, b"\0", flags=TRUNCATED),
    "closes": lambda q: message(q, b"\0", flags=TRUNCATED),
}


def fault_of(query):
    length = query[QUESTION_AT]
    return query[QUESTION_AT + 1:QUESTION_AT + 1 + length].decode("latin-1").lower()


def serve(host, port, limit):
    parent, end = os.getppid(), time.monotonic() + limit
    datagrams = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    datagrams.bind((host, port))
    listener = socket.create_server((host, port))
    print("ready", flush=True)
    last, stalled = "", []
    while os.getppid() == parent and time.monotonic() < end:
        ready, _, _ = select.select([datagrams, listener], [], [], 0.25)
        if datagrams in ready:
            query, client = datagrams.recvfrom(512)
            last = fault_of(query)
            answer = FAULTS.get(last, FAULTS["silent"])(query)
            if answer is not None:
                datagrams.sendto(answer, client)
        if listener in ready:
            connection, _ = listener.accept()
            if last == "closes":
                # With what has arrived unread, this resets the connection.
                connection.close()
            else:
                stalled.append(connection)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("host")
    parser.add_argument("--port", type=int, default=53)
    parser.add_argument("--limit", type=float, default=600, help="seconds after which it ends")
    arguments = parser.parse_args()
    try:
        serve(arguments.host, arguments.port, arguments.limit)
    except KeyboardInterrupt:
        return 130
    return 0


if __name__ == "__main__":
    sys.exit(main())
