#!/usr/bin/env python3
"""Fails when the documentation says what the repository doesn't.

A sample is what a file of examples/ says. Above a fenced block in a programming language stands

    <!-- example: simple.vbs -->

and every line of the block stands in that file, in this order, without gaps but where the block has a
line "...". Indentation as a whole doesn't count. What the file takes from its command line is a value
in the documentation, as in STAND_INS. The examples themselves are run by other tests.

The guide to errors has every text of the component. A path in backquotes is one of the repository. What
the pages of docs/ link to is installed with them.
"""

import re
import sys
import textwrap
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples"
PROGRAMS = {"vbscript", "js", "cpp", "sh", "exim"}
STAND_INS = {".vbs": {"WScript.Arguments(0)": '"mail.example.com"', "WScript.Arguments(1)": "25"},
             ".js": {"WScript.Arguments(0)": '"mail.example.com"'},
             ".cpp": {"arguments[1], port": '"mail.example.com"',
                      "arguments[1]": '"mail.example.com"',
                      "count > 2 ? std::atoi(arguments[2]) : 25": "587"},
             ".sh": {'"$1"': "mail.example.com"}}
PATH = re.compile(r"`((?:automation|bench|cli|cmake|component|docs|examples|fuzz|include|mime|model|"
                  r"packaging|platform|scripts|server|smtp|tests)/[\w./-]*)`")
LINK = re.compile(r"\]\((?!https?:)([\w./-]+)")
INSTALLED = {"docs", "examples", "SECURITY.md", "CHANGELOG.md"}
BLOCK = re.compile(r"(?:^<!-- example: (\S+) -->\n)?^```(\w*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def lines_of(text):
    return [line.rstrip() for line in textwrap.dedent(text).strip("\n").split("\n")]


def find_run(run, lines, start):
    """Where the run begins among the lines, by whatever more indentation; -1 for nowhere."""
    run = lines_of("\n".join(run))
    for at in range(start, len(lines) - len(run) + 1):
        if lines_of("\n".join(lines[at:at + len(run)])) == run:
            return at
    return -1


def missing_run(block, example):
    """The first piece of the block that the example doesn't have; nothing when it has all."""
    text = example.read_text("utf-8")
    for argument, value in STAND_INS.get(example.suffix, {}).items():
        text = text.replace(argument, value)
    lines, at = [line.rstrip() for line in text.split("\n")], 0
    for piece in re.split(r"^\.\.\.$", block, flags=re.MULTILINE):
        run = piece.strip("\n").split("\n")
        at = find_run(run, lines, at)
        if at < 0:
            return piece.strip("\n")
        at += len(run)
    return None


def faults_of(page):
    text = page.read_text("utf-8")
    for name, language, block in BLOCK.findall(text):
        where = f"{page.relative_to(ROOT)}: the sample that begins {block.strip().splitlines()[0]!r}"
        if name and not (EXAMPLES / name).is_file():
            yield f"{where} names examples/{name}, which isn't there"
        elif name:
            missing = missing_run(block, EXAMPLES / name)
            if missing is not None:
                yield f"{where} has what examples/{name} hasn't:\n{missing}"
        elif language in PROGRAMS:
            yield f"{where} is of no example"


def missing_paths(page):
    for path in PATH.findall(page.read_text("utf-8")):
        if "NAME" not in path and not (ROOT / path).exists():
            yield f"{page.relative_to(ROOT)}: there is no {path}"


def links_to_sources(page):
    """Links that lead nowhere once the manual is installed, without the sources beside it."""
    if page.is_relative_to(ROOT / "docs"):
        for link in LINK.findall(BLOCK.sub("", page.read_text("utf-8"))):
            target = (page.parent / link).resolve()
            if not target.is_relative_to(ROOT) or target.relative_to(ROOT).parts[0] not in INSTALLED:
                yield f"{page.relative_to(ROOT)}: {link} isn't installed with it"


def told_texts():
    """The pieces of the component's texts that tell one from another."""
    for path in ("smtp/failure_text.cpp", "component/send_method.cpp", "component/smtp_mail_queue.cpp",
                 "model/outgoing_message.cpp", "model/html_import.cpp"):
        for text in re.findall(r'OLESTR\("((?:[^"\\]|\\.)*)"\)', (ROOT / path).read_text("utf-8")):
            text = text.strip(" ,.:'\"")
            if " " in text:
                yield path, text


def main():
    pages = [ROOT / name for name in ("README.md", "SECURITY.md", "CONTRIBUTING.md")]
    pages += sorted((ROOT / "docs").rglob("*.md"))
    faults = [fault for page in pages for find in (faults_of, missing_paths, links_to_sources)
              for fault in find(page)]
    guide = " ".join((ROOT / "docs/guide/errors.md").read_text("utf-8").split())
    faults += [f"docs/guide/errors.md doesn't know {text!r} of {path}"
               for path, text in told_texts() if text not in guide]
    sys.exit("\n".join(faults) if faults else 0)


if __name__ == "__main__":
    main()
