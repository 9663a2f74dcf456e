"""Measures Quorvane and its peers by turns, and prints a table."""

import argparse
import contextlib
import json
import random
import statistics
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

from check_equal import check
from contenders import entrants
from processes import Catcher, Contender
from rows import FILE, named

# Long enough to drown the noise of clock and scheduler.
SECONDS_OF_A_TURN = 0.1


@dataclass
class Turns:
    """What one contender did in each round of a row."""
    elapsed: list = field(default_factory=list)  # seconds of one message
    processor: list = field(default_factory=list)


@dataclass
class Outcome:
    row: object
    values: dict  # the median of each contender, in the row's unit
    ratios: list  # Quorvane's, times the reference's, of each round
    processor: dict = field(default_factory=dict)  # microseconds of a sent message; the catcher's too

    @property
    def ratio(self):
        return statistics.median(self.ratios)


def calibrate(contender, work, least):
    """So many messages that one turn takes long enough, at least so many."""
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
    for number in range(rounds):
        shift = number % len(names)
        for name in names[shift:] + names[:shift]:
            elapsed, processor = contenders[name].repeat(row.work, counts[name])
            turns[name].elapsed.append(elapsed / counts[name])
            turns[name].processor.append(processor / counts[name])
    return turns


def outcome_of(row, turns):
    seconds = {name: [row.unit.value(time) for time in (turn.elapsed if row.sends else turn.processor)]
               for name, turn in turns.items()}
    ratios = [own / other for own, other in zip(seconds["Quorvane"], seconds[row.reference])]
    outcome = Outcome(row, {name: statistics.median(times) for name, times in seconds.items()},
                      ratios)
    if row.sends:
        outcome.processor = {name: statistics.median(turn.processor) * 1e6
                             for name, turn in turns.items()}
    return outcome


def measure(row, field_, programs, folder, rounds):
    with contextlib.ExitStack() as stack:
        ports = [0] * len(field_)
        catcher = None
        if row.sends:
            catcher = stack.enter_context(Catcher(programs, len(field_)))
            ports = catcher.ports
        contenders = {
            entrant.name: stack.enter_context(Contender(entrant.command(row.work), row.workload,
                                                        folder, port, row.senders))
            for entrant, port in zip(field_, ports)}
        outcome = outcome_of(row, play(row, contenders, rounds))
        if catcher:
            outcome.processor["catcher"] = catcher.processor_seconds() * 1e6 / catcher.count()
        return outcome


def measure_peak(row, field_, programs, folder, rounds):
    """Each in a fresh process, since a peak stays."""
    work = row.work.split()[1]
    peaks = {entrant.name: [] for entrant in field_}
    with Catcher(programs, 1) as catcher:
        for entrant in field_ * rounds:
            with Contender(entrant.command(work), row.workload, folder, catcher.ports[0]) as contender:
                peaks[entrant.name].append(contender.peak(work) * row.unit.per_message)
    return Outcome(row, {name: statistics.median(sizes) for name, sizes in peaks.items()},
                   peaks["Quorvane"])


def write_messages(rows, field_, programs, folder, target):
    """A message of every contender and kind of work, as WORKLOAD-WORK.CONTENDER.eml."""
    for workload, work in sorted({(row.workload, row.work.split()[-1]) for row in rows}):
        for entrant in field_:
            name = f"{workload}-{work}.{entrant.name}"
            if work != "send":
                with Contender(entrant.command("write"), workload, folder) as contender:
                    contender.ask(f"write {target}/{name}.eml")
                continue
            with (tempfile.TemporaryDirectory() as inbox,
                  Catcher(programs, 1, inbox) as catcher,
                  Contender(entrant.sender, workload, folder, catcher.ports[0]) as contender):
                contender.repeat("send", 1)
                (Path(inbox) / "1.eml").rename(target / f"{name}.eml")


def number(value):
    if value >= 100:
        return f"{value:,.0f}"
    return f"{value:.3g}"


def print_outcome(outcome, names):
    row = outcome.row
    cells = "".join(f"{number(outcome.values[name]) if name in outcome.values else '-':>11}"
                    for name in names)
    spread = f"{outcome.ratio:.2f} ({min(outcome.ratios):.2f}..{max(outcome.ratios):.2f})"
    verdict = "met" if row.is_met(outcome.ratio) else "NOT met"
    print(f"{row.title + ', ' + row.unit.name:<48}{cells}  {spread:<20} {row.target}: {verdict}",
          flush=True)


def make_files(folder, sizes):
    source = random.Random(42)
    for size in sizes:
        path = folder / str(size)
        with path.open("wb") as file:
            for start in range(0, size, 1 << 24):
                file.write(source.randbytes(min(1 << 24, size - start)))


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", type=Path, required=True, help="folder of the programs")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("rows", nargs="*", help="those to measure; default all")
    return parser.parse_args()


def main():
    options = arguments()
    rows = named(options.rows)
    field_ = entrants(options.programs)
    names = [entrant.name for entrant in field_]
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        make_files(folder, [FILE])
        messages = folder / "messages"
        messages.mkdir()
        write_messages(rows, field_, options.programs, folder, messages)
        if not check(messages):
            return 1
        print(f"{'':<48}" + "".join(f"{name:>11}" for name in names) + "  ratio, median and range")
        for row in rows:
            measurement = measure_peak if row.is_peak else measure
            print_outcome(measurement(row, field_, options.programs, folder, options.rounds), names)
    return 0


if __name__ == "__main__":
    raise SystemExit(main())
