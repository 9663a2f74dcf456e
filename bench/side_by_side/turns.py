"""Lets contenders do the same work by turns."""

import contextlib
import random
import statistics
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

from check_equal import check
from contenders import entrants
from processes import Catcher, Contender, processors
from rows import FILE, Row

# Long enough to drown the noise of clock and scheduler.
SECONDS_OF_A_TURN = 0.25


@dataclass
class Turns:
    """What one contender did in each round: seconds of one message."""
    elapsed: list = field(default_factory=list)
    processor: list = field(default_factory=list)


@dataclass
class Outcome:
    row: Row
    values: dict  # the median of each contender, in the row's unit
    ratios: list  # of Quorvane's and the reference's in each round
    processor: dict = field(default_factory=dict)  # microseconds of a sent message; catcher's too

    @property
    def ratio(self):
        return statistics.median(self.ratios)


def calibrate(contender, work, least):
    """So many messages that a turn takes long enough, and at least so many."""
    count = least
    while contender.repeat(work, count)[0] < SECONDS_OF_A_TURN and count < 1 << 20:
        count *= 2
    return count


def play(row, contenders, rounds):
    """Lets the contenders take turns, each round beginning with another one."""
    counts = {name: calibrate(contender, row.work, row.senders)
              for name, contender in contenders.items()}
    turns = {name: Turns() for name in contenders}
    names = list(contenders)
    for round_ in range(rounds):
        first = round_ % len(names)
        for name in names[first:] + names[:first]:
            elapsed, processor = contenders[name].repeat(row.work, counts[name])
            turns[name].elapsed.append(elapsed / counts[name])
            turns[name].processor.append(processor / counts[name])
    return turns


def outcome_of(row, turns):
    """A send is what a user waits for; composing is processor time, which is disturbed less."""
    values = {name: [row.unit.value(seconds)
                     for seconds in (turn.elapsed if row.sends else turn.processor)]
              for name, turn in turns.items()}
    ratios = [own / other for own, other in zip(values["Quorvane"], values[row.reference])]
    return Outcome(row, {name: statistics.median(each) for name, each in values.items()}, ratios)


class Bench:
    def __init__(self, programs, folder, rounds):
        self.programs = programs
        self.folder = folder  # of the files that are attached
        self.rounds = rounds
        self.entrants = entrants(programs)

    @property
    def names(self):
        return [entrant.name for entrant in self.entrants]

    def field(self, workload):
        return [entrant for entrant in self.entrants if entrant.can(workload)]

    def prepare(self, workloads, sizes):
        """Makes the files, and describes the workloads for contenders that aren't C++."""
        source = random.Random(42)
        for size in sizes:
            with (self.folder / str(size)).open("wb") as file:
                for start in range(0, size, 1 << 24):
                    file.write(source.randbytes(min(1 << 24, size - start)))
        for workload in workloads:
            with Contender(self.entrants[0].composer, workload, self.folder) as contender:
                (self.folder / f"{workload}.json").write_text(contender.ask("describe json"))

    def check(self, rows):
        """Whether everybody's messages have the same content, for each kind of work."""
        with tempfile.TemporaryDirectory() as name:
            for workload, work in sorted({(row.workload, row.action) for row in rows}):
                for entrant in self.field(workload):
                    path = Path(name) / f"{workload}-{work}.{entrant.name}.eml"
                    (self.receive if work == "send" else self.write)(entrant, workload, path)
            return check(Path(name))

    def write(self, entrant, workload, path):
        with Contender(entrant.composer, workload, self.folder) as contender:
            contender.ask(f"write {path}")

    def receive(self, entrant, workload, path):
        with (tempfile.TemporaryDirectory() as inbox,
              Catcher(self.programs, 1, inbox) as catcher,
              Contender(entrant.sender, workload, self.folder, catcher.ports[0]) as contender):
            contender.repeat("send", 1)
            (Path(inbox) / "1.eml").rename(path)

    def measure(self, row):
        return self.measure_peak(row) if row.is_peak else self.measure_speed(row)

    def measure_speed(self, row):
        members = self.field(row.workload)
        of_catcher, of_contenders = processors(row.place)
        with contextlib.ExitStack() as stack:
            catcher = stack.enter_context(
                Catcher(self.programs, len(members), processor=of_catcher))
            contenders = {entrant.name: stack.enter_context(
                Contender(entrant.command(row.work), row.workload, self.folder, port, row.senders,
                          of_contenders))
                for entrant, port in zip(members, catcher.ports)}
            turns = play(row, contenders, self.rounds)
            outcome = outcome_of(row, turns)
            if row.sends:
                outcome.processor = {name: statistics.median(turn.processor) * 1e6
                                     for name, turn in turns.items()}
                outcome.processor["catcher"] = catcher.processor_seconds() / catcher.count() * 1e6
            return outcome

    def measure_peak(self, row):
        """Each in a fresh process, since a peak stays. The limit keeps its memory."""
        members = [entrant for entrant in self.field(row.workload) if entrant.name != "limit"]
        peaks = {entrant.name: [] for entrant in members}
        with Catcher(self.programs, 1) as catcher:
            for entrant in members * self.rounds:
                with Contender(entrant.command(row.action), row.workload, self.folder,
                               catcher.ports[0]) as contender:
                    peaks[entrant.name].append(contender.peak(row.action) / FILE)
        return Outcome(row, {name: statistics.median(sizes) for name, sizes in peaks.items()},
                       peaks["Quorvane"])
