"""Counts the system calls of a sent message."""

import tempfile
from collections import Counter
from pathlib import Path

from processes import Catcher, Contender

MESSAGES = 50


def count(command, workload, folder, port, messages):
    """Of a whole process that sends so many, by name."""
    with tempfile.TemporaryDirectory() as name:
        summary = Path(name) / "summary"
        strace = ["strace", "-f", "-c", "-U", "calls,name", "-o", summary]
        with Contender([*strace, *command], workload, folder, port) as contender:
            contender.repeat("send", messages)
        # Two lines of heading, two of the sum.
        lines = summary.read_text().splitlines()[2:-2]
        return Counter({name: int(calls) for calls, name in (line.split() for line in lines)})


def of_a_message(bench, entrant, workload):
    """What more messages take, by name; parts of a call are those that only some take."""
    with Catcher(bench.programs, 1) as catcher:
        def total(messages):
            return count(entrant.sender, workload, bench.folder, catcher.ports[0], messages)

        more = total(2 + MESSAGES)
        more.subtract(total(2))
    return {name: calls / MESSAGES for name, calls in more.items() if calls > 0}


def short(value):
    return f"{value:.2f}".rstrip("0").rstrip(".")


def rows(bench, workload):
    """Of a table: sum and names, the most frequent first."""
    for entrant in bench.field(workload):
        calls = of_a_message(bench, entrant, workload)
        names = ", ".join(f"{short(calls[name])} {name}"
                          for name in sorted(calls, key=calls.get, reverse=True)
                          if calls[name] >= 0.1)
        yield [entrant.name, short(sum(calls.values())), names]


HEAD = ["a small message over a new connection", "calls", "which"]
