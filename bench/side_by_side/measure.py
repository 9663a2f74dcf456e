"""Measures Quorvane and its peers, prints tables and writes them into a document."""

import argparse
import tempfile
from pathlib import Path

import calls
import document
import growth
import profile_rows
from rows import FILE, named
from turns import Bench


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


def profile(bench):
    """A table of it, as a section of the document."""
    rows = named(["all"])
    bench.prepare({row.workload for row in rows}, [FILE])
    table = document.table(profile_rows.HEAD, profile_rows.rows(bench, rows))
    print("\n" + table)
    return {"profile": table}


def arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", type=Path, required=True, help="folder of the programs")
    parser.add_argument("--rounds", type=int, default=7)
    parser.add_argument("--check", action="store_true", help="compare the messages, no more")
    parser.add_argument("--growth", action="store_true", help="measure that too")
    parser.add_argument("--calls", action="store_true", help="count system calls too")
    parser.add_argument("--profile", action="store_true", help="sample with perf too")
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
        if options.profile:
            sections |= profile(bench)
        if options.growth:
            picture = options.document and options.document.parent / "growth.svg"
            sections |= measure_growth(bench, picture)
    if options.document:
        document.insert(options.document, sections)
    return 0


if __name__ == "__main__":
    raise SystemExit(main())
