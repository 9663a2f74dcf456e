"""Prints what was measured, and puts it into a document between markers."""

from datetime import date
import os
import re


def number(value):
    return f"{value:,.0f}" if value >= 100 else f"{value:.3g}"


def spread(ratios):
    ratios = sorted(ratios)
    return f"{ratios[len(ratios) // 2]:.2f} ({ratios[0]:.2f}..{ratios[-1]:.2f})"


def verdict(outcome):
    if not outcome.row.target:
        return ""
    return "met" if outcome.row.is_met(outcome.ratio) else "NOT met"


def heading(names):
    return f"{'':<64}" + "".join(f"{name:>11}" for name in names) + "  ratio, median and range"


def line(outcome, names):
    row = outcome.row
    cells = "".join(f"{number(outcome.values[name]) if name in outcome.values else '-':>11}"
                    for name in names)
    return (f"{row.title + ', ' + row.unit.name:<64}{cells}  {spread(outcome.ratios):<20}"
            f" {row.target and f'{row.target}: {verdict(outcome)}'}").rstrip()


def table(head, rows):
    lines = ["| " + " | ".join(cells) + " |" for cells in [head, ["---"] * len(head), *rows]]
    return "\n".join(lines)


def targets(outcomes):
    """The ratios that shall be reached."""
    return table(["work", "Quorvane's figure, times", "median (range)", "to reach", ""],
                 [[outcome.row.title, f"{outcome.row.reference}'s" if not outcome.row.is_peak
                   else outcome.row.reference, spread(outcome.ratios), outcome.row.target or "-",
                   verdict(outcome)] for outcome in outcomes])


def figures(outcomes, names):
    """The medians of all."""
    return table(["work", "in", *names],
                 [[outcome.row.title, outcome.row.unit.name,
                   *(number(outcome.values[name]) if name in outcome.values else "-"
                     for name in names)] for outcome in outcomes])


def processor(outcomes, names):
    """Processor time of a sent message."""
    names = [*names, "catcher"]
    return table(["microseconds of a message", *names],
                 [[outcome.row.title, *(number(outcome.processor[name]) for name in names)]
                  for outcome in outcomes if outcome.processor])


def machine():
    with open("/proc/cpuinfo", encoding="ascii") as info:
        model = re.search(r"model name\s*: (.*)", info.read()).group(1)
    today = date.today()
    load = os.getloadavg()[0]
    busy = load > os.cpu_count() / 2
    # What others do takes less from processor time than from the time that passes.
    warning = f"; busy with other work (load {load:.0f}), so times of sending are uncertain"
    return (f"{today.day} {today:%B %Y}, {model}, {os.cpu_count()} cores"
            f"{warning if busy else ''}.")


def insert(path, sections):
    """Replaces what stands between <!-- NAME --> and <!-- end --> for each name in sections."""
    text = path.read_text(encoding="utf-8")
    for name, content in sections.items():
        pattern = re.compile(f"(<!-- {name} -->\n).*?(<!-- end -->)", re.DOTALL)
        text, count = pattern.subn(lambda match: match[1] + content + "\n" + match[2], text)
        if count != 1:
            raise RuntimeError(f"{path} has no place for {name}")
    path.write_text(text, encoding="utf-8")
