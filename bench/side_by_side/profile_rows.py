"""Shows where Quorvane's processor time goes, by samples that perf takes."""

import re
import subprocess
import tempfile
from collections import Counter
from pathlib import Path

from processes import Catcher, Contender

SECONDS = 1
SHOWN = 7


def sample(command, row, folder, port, file):
    """Has perf watch the contender for about so many seconds."""
    perf = ["perf", "record", "--quiet", "--output", file, "--freq", "4000", "--event", "cpu-clock"]
    with Contender([*perf, *command], row.workload, folder, port) as contender:
        count = 1
        while contender.repeat(row.work, count)[1] < SECONDS:
            count *= 2


def plain(symbol):
    """A function's own name, without namespaces, templates and the compiler's suffixes."""
    while re.search(r"<[^<>]*>|\([^()]*\)|\{[^{}]*\}", symbol):
        symbol = re.sub(r"<[^<>]*>|\([^()]*\)|\{[^{}]*\}", "", symbol)
    return symbol.split("[")[0].strip(":").split("::")[-1].split(".")[0].split("@")[0]


def read(file):
    """Percents by owner (kernel, Quorvane, libraries), and by function outside of the kernel."""
    report = subprocess.run(["perf", "report", "--input", file, "--stdio", "--no-children", "--sort",
                             "dso,sym", "--field-separator", "|"], capture_output=True, text=True,
                            check=True).stdout
    owners, functions = Counter(), Counter()
    for line in report.splitlines():
        if line.startswith("#") or line.count("|") < 2:
            continue
        share, owner, symbol = (cell.strip(" %") for cell in line.split("|", 2))
        if symbol.startswith("[k]"):
            owners["kernel"] += float(share)
            continue
        is_system = owner.startswith(("libc.", "libstdc++", "[vdso"))
        owners["libraries" if is_system else "Quorvane"] += float(share)
        functions[plain(symbol.removeprefix("[.]").strip())] += float(share)
    return owners, functions


def named(shares, count):
    return ", ".join(f"{name} {share:.0f}" for name, share in shares.most_common(count)
                     if share >= 1)


def rows(bench, measured):
    """Of a table."""
    for row in measured:
        if row.is_peak or row.senders > 1:
            continue
        with (tempfile.TemporaryDirectory() as name, Catcher(bench.programs, 1) as catcher):
            file = str(Path(name) / "samples")
            sample(bench.entrants[0].command(row.work), row, bench.folder, catcher.ports[0], file)
            owners, functions = read(file)
        yield [row.title, named(owners, 3), named(functions, SHOWN)]


HEAD = ["percent of samples", "by owner", "by function outside of the kernel"]
