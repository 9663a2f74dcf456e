"""Measures Quorvane and its peers by turns, and prints a table."""

import argparse
import contextlib
import random
import statistics
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

import calls
import document
import growth
from check_equal import check
from contenders import entrants
from processes import Catcher, Contender
from rows import FILE, Row, named

# Long enough to drown the noise of clock and scheduler.
SECONDS_OF_A_TURN = 0.1


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
    """A send is as long as the user waits; composing is processor time, which others disturb less."""
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
        with contextlib.ExitStack() as stack:
            catcher = stack.enter_context(Catcher(self.programs, len(members)))
            contenders = {entrant.name: stack.enter_context(
                Contender(entrant.command(row.work), row.workload, self.folder, port, row.senders))
                for entrant, port in zip(members, catcher.ports)}
            turns = play(row, contenders, self.rounds)
            outcome = outcome_of(row, turns)
            if row.sends:
                outcome.processor = {name: statistics.median(turn.processor) * 1e6
                                     for name, turn in turns.items()}
                outcome.processor["catcher"] = catcher.processor_seconds() / catcher.count() * 1e6
            return outcome

    def measure_peak(self, row):
        """Each in a fresh process, since a peak stays."""
        members = self.field(row.workload)
        peaks = {entrant.name: [] for entrant in members}
        with Catcher(self.programs, 1) as catcher:
            for entrant in members * self.rounds:
                with Contender(entrant.command(row.action), row.workload, self.folder,
                               catcher.ports[0]) as contender:
                    peaks[entrant.name].append(contender.peak(row.action) / FILE)
        return Outcome(row, {name: statistics.median(sizes) for name, sizes in peaks.items()},
                       peaks["Quorvane"])


def measure_rows(bench, rows):
    """Their outcomes, or None when the messages differ."""
    if not bench.check(rows):
        return None
    print(document.heading(bench.names))
    outcomes = []
    for row in rows:
        outcomes.append(bench.measure(row))
        print(document.line(outcomes[-1], bench.names), flush=True)
    if any(outcome.processor for outcome in outcomes):
        print("\n" + document.processor(outcomes, bench.names))
    return outcomes


def sections_of(bench, outcomes):
    return {"targets": document.targets(outcomes),
            "figures": document.figures(outcomes, bench.names),
            "processor": document.processor(outcomes, bench.names)}


def measure_growth(bench, picture):
    """A table of it, below the picture when there is one, as a section of the document."""
    bench.prepare((), growth.sizes())
    curves = growth.measure_all(bench)
    table = document.table(growth.HEAD, growth.rows(curves))
    print("\n" + table)
    if picture:
        growth.draw(curves, picture)
        table = (f"![Time and memory of each further KiB, recipient and attachment]({picture.name})\n\n"
                 + table)
    return {"growth": table}


def count_calls(bench):
    """A table of them, as a section of the document."""
    bench.prepare({"small"}, ())
    table = document.table(calls.HEAD, calls.rows(bench, "small"))
    print("\n" + table)
    return {"calls": table}


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", type=Path, required=True, help="folder of the programs")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--check", action="store_true", help="compare the messages, no more")
    parser.add_argument("--growth", action="store_true", help="measure that too")
    parser.add_argument("--calls", action="store_true", help="count system calls too")
    parser.add_argument("--document", type=Path,
                        help="put the tables into this file, and the picture beside it")
    parser.add_argument("rows", nargs="*", help="those to measure")
    return parser.parse_args()


def main():
    options = arguments()
    rows = named(options.rows)
    sections = {"machine": document.machine()}
    with tempfile.TemporaryDirectory() as name:
        bench = Bench(options.programs, Path(name), options.rounds)
        bench.prepare({row.workload for row in rows}, [FILE])
        if options.check:
            return not bench.check(rows)
        if rows:
            outcomes = measure_rows(bench, rows)
            if outcomes is None:
                return 1
            sections |= sections_of(bench, outcomes)
        if options.calls:
            sections |= count_calls(bench)
        if options.growth:
            picture = options.document and options.document.parent / "growth.svg"
            sections |= measure_growth(bench, picture)
    if options.document:
        document.insert(options.document, sections)
    return 0


if __name__ == "__main__":
    raise SystemExit(main())
