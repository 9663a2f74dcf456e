"""The processes of a measurement: the catcher, and contenders at work."""

import os
import subprocess
from pathlib import Path

from rows import ANYWHERE, APART, TOGETHER


def processors(place):
    """Those of the catcher and of the contenders; None is any. A machine with one has no apart."""
    ours = sorted(os.sched_getaffinity(0))
    return {ANYWHERE: (None, None), TOGETHER: (ours[0], ours[0]), APART: (ours[0], ours[-1])}[place]


class Program:
    """A process that answers each line it is told with one line, and ends with its input. It may
    have to stay on a processor."""

    def __init__(self, command, processor=None):
        place = [] if processor is None else ["taskset", "--cpu-list", processor]
        self.command = [str(word) for word in [*place, *command]]
        self.process = subprocess.Popen(self.command, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)

    def answer(self):
        line = self.process.stdout.readline()
        if not line:
            raise RuntimeError(f"{' '.join(self.command)} ended with {self.process.wait()}")
        return line.strip()

    def ask(self, text):
        self.process.stdin.write(text + "\n")
        self.process.stdin.flush()
        return self.answer()

    def processor_seconds(self):
        """Of the whole process, until now."""
        return int(Path(f"/proc/{self.process.pid}/schedstat").read_text().split()[0]) / 1e9

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.stdin.close()
        self.process.wait(timeout=60)
        self.process.stdout.close()


class Catcher(Program):
    """Each contender gets a port of its own, so that none waits for another's old connections."""

    def __init__(self, programs, ports, folder=None, processor=None):
        super().__init__([programs / "bench_catcher", ports] + ([folder] if folder else []),
                         processor)
        self.ports = [int(port) for port in self.answer().split()]

    def count(self):
        return int(self.ask("count"))


class Contender(Program):
    """See contend.cpp."""

    def __init__(self, command, workload, folder, port=0, senders=1, processor=None):
        super().__init__([*command, "--workload", workload, "--folder", folder, "--port", port,
                          "--senders", senders], processor)

    def repeat(self, work, count):
        """Seconds and processor seconds for so many messages."""
        elapsed, processor = self.ask(f"{work} {count}").split()
        return float(elapsed), float(processor)

    def peak(self, work):
        """Bytes by which composing or sending a message makes the process's peak of memory grow."""
        return int(self.ask(f"peak {work}"))
