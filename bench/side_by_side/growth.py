"""Measures how Quorvane's processor time and memory grow with a message, and draws it."""

import statistics
from dataclasses import dataclass

from processes import Catcher, Contender

KIB = 1024
MIB = 1024 * KIB
WORKS = ("compose", "send")
ROUNDS = 5


@dataclass(frozen=True)
class Series:
    kind: str  # of workload, see workloads.h
    title: str
    unit: str
    size: int  # how much of the workload's number a unit is
    numbers: tuple


SERIES = (
    Series("size", "attached file", "KiB", KIB,
           tuple(KIB * 4 ** power for power in range(9)) + (400 * MIB,)),
    Series("recipients", "recipients", "recipient", 1, (1, 3, 10, 30, 100, 300, 1000)),
    Series("attachments", "attachments of 10 KiB", "attachment", 1,
           (1, 3, 10, 30, 100, 300, 1000)),
)


def sizes():
    """Of the files that are attached."""
    return SERIES[0].numbers


@dataclass
class Point:
    units: float
    seconds: float  # of processor time for one message
    bytes: float  # by which the peak of the process's memory grows


class Curve:
    """One work's points of a series, the smallest first."""

    def __init__(self, points):
        self.points = points

    def further(self, attribute):
        """What each unit costs that a message has more than the smallest one. Messages too little
        larger to tell the difference from noise are left out."""
        first = self.points[0]
        return [(point.units, (getattr(point, attribute) - getattr(first, attribute)) /
                 (point.units - first.units))
                for point in self.points if point.units >= 30 * first.units]


def measure(bench, series, work):
    points = []
    for number in series.numbers:
        workload = f"{series.kind}:{number}"
        command = bench.entrants[0].command(work)
        with Catcher(bench.programs, 1) as catcher:
            with Contender(command, workload, bench.folder, catcher.ports[0]) as contender:
                peak = contender.peak(work)
                count = 1
                while contender.repeat(work, count)[0] < 0.05 and count < 1 << 16:
                    count *= 2
                seconds = [contender.repeat(work, count)[1] / count for _ in range(ROUNDS)]
        points.append(Point(number / series.size, statistics.median(seconds), peak))
    return Curve(points)


def measure_all(bench):
    """Curves by series and work."""
    return {(series, work): measure(bench, series, work) for series in SERIES for work in WORKS}


def rows(curves):
    """Of a table: what each further unit costs, from the smallest message to the largest."""
    for (series, work), curve in curves.items():
        times = [value * 1e6 for _, value in curve.further("seconds")]
        # Memory of small messages is pages of the program.
        memory = curve.further("bytes")[-1][1] / KIB
        largest = curve.points[-1]
        yield [f"{work}, {series.title}", f"{curve.points[0].seconds * 1e6:,.1f} us",
               f"{largest.seconds * 1e3:,.1f} ms", series.unit,
               f"{min(times):.3g}..{max(times):.3g} us", f"{times[-1]:.3g} us",
               f"{memory:.3g} KiB"]


HEAD = ["", "smallest", "largest", "unit", "each further one, range", "in the largest",
        "memory of each"]


def draw(curves, path):
    import matplotlib

    matplotlib.use("svg")
    from matplotlib import pyplot

    # The same picture for the same figures.
    matplotlib.rcParams.update({"svg.hashsalt": "growth", "svg.fonttype": "none"})
    figure, axes = pyplot.subplots(2, len(SERIES), figsize=(11, 6), sharex="col")
    for column, series in enumerate(SERIES):
        for work in WORKS:
            curve = curves[series, work]
            for row, (attribute, scale) in enumerate((("seconds", 1e6), ("bytes", 1 / KIB))):
                units, values = zip(*curve.further(attribute))
                axes[row][column].plot(units, [value * scale for value in values], "o-", label=work)
        axes[0][column].set_title(series.title)
        axes[0][column].set_ylabel(f"us for each further {series.unit}")
        axes[1][column].set_ylabel(f"KiB for each further {series.unit}")
        axes[1][column].set_xlabel(series.unit if series.unit == "KiB" else series.unit + "s")
        for axis in (axes[0][column], axes[1][column]):
            axis.set_xscale("log")
            axis.set_ylim(bottom=0)
            axis.grid(alpha=0.3)
            axis.legend()
    figure.tight_layout()
    figure.savefig(path, metadata={"Date": None})
