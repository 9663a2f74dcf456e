#!/usr/bin/env python3
"""Makes the reference in docs/reference/ of the interface definition and of the sentences beside it.

    reference.py --write            writes the pages
    reference.py --check [DEFAULTS] fails when the pages on disk are others; or when the output of the
                                    program DEFAULTS, a new object's properties, says other defaults

A member, parameter or value that lacks its sentence, a property that lacks its default, and a sentence
about something that isn't there are errors.
"""

import subprocess
import sys
import textwrap
import tomllib
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.append(str(ROOT / "scripts" / "idl"))

from generate_type_data import Definition  # noqa: E402

PAGES = ROOT / "docs" / "reference"
MARK = "<!-- Made by scripts/docs of server/Quorvane.idl and server/Quorvane.toml; change those. -->"
# What the types are called for somebody who writes a script.
WORDS = {"BSTR": "text", "long": "whole number", "VARIANT_BOOL": "truth value", "VARIANT": "any value",
         "unsigned char": "bytes"}


class Lack(Exception):
    """Something that the reference has to say isn't there."""


class Notes:
    """The sentences, each taken once at least: what is left over is about nothing."""

    def __init__(self, path):
        self.data = tomllib.loads(path.read_text("utf-8"))
        self.used = set()

    def get(self, *path, default=None, wanted=True):
        value = self.data
        for name in path:
            value = value.get(name) if isinstance(value, dict) else None
            if value is None:
                if wanted:
                    raise Lack(f"server/Quorvane.toml has no {'.'.join(path)}")
                return default
        self.used.add(path)
        return " ".join(value.split()) if isinstance(value, str) else value

    def left_over(self):
        def walk(value, path):
            if isinstance(value, dict):
                for name, inner in value.items():
                    yield from walk(inner, (*path, name))
            elif path not in self.used:
                yield ".".join(path)
        return list(walk(self.data, ()))


def help_text(attributes):
    return attributes["helpstring"][0].strip('"')


def identifier(attributes):
    return "{" + attributes["uuid"][0].strip('"').upper() + "}"


class Member:
    """A property, with one function or two, or a method."""

    def __init__(self, functions):
        self.functions = functions
        self.name = functions[0].name
        self.attributes = functions[0].attributes
        self.id = int(self.attributes["id"][0])
        self.is_property = any(kind in self.attributes for kind in ("propget", "propput"))

    @property
    def access(self):
        kinds = {kind for function in self.functions for kind in function.attributes}
        if {"propget", "propput"} <= kinds:
            return "read and write"
        return "read-only" if "propget" in kinds else "write-only"


def members(owner):
    by_name = {}
    for function in owner.functions:
        by_name.setdefault(function.name, []).append(function)
    return [Member(functions) for functions in by_name.values()]


def wrapped(text):
    return textwrap.fill(text, 110, break_long_words=False, break_on_hyphens=False)


def anchor(name):
    return name.lower().replace(" ", "-")


class Reference:
    def __init__(self):
        self.definition = Definition((ROOT / "server/Quorvane.idl").read_text("utf-8"))
        self.notes = Notes(ROOT / "server/Quorvane.toml")
        self.types = self.definition.types
        self.page_of = {}
        self.classes = [self.types[name] for name in self.definition.members
                        if self.types[name].kind == "coclass"]
        order = ["SmtpMail", "MailMessage", "MailAddress", "MailAttachment"]
        self.classes.sort(key=lambda found: order.index(found.name))
        for found in self.classes:
            for attributes, name in found.implemented:
                self.page_of[name] = "events" if "source" in attributes else found.name.lower()
        self.enumerations = [found for found in self.types.values() if found.kind == "enum"]

    def pages(self):
        """Texts by file name."""
        found = {f"{one.name.lower()}.md": self.class_page(one) for one in self.classes}
        [events] = [found for found in self.types.values() if found.kind == "dispinterface"]
        found["events.md"] = self.events_page(events)
        found["enumerations.md"] = self.enumerations_page()
        found["index.md"] = self.index_page(events)
        return found

    # Types and signatures

    def type_words(self, parameter):
        name, _ = parameter.type
        if name in WORDS:
            return WORDS[name]
        if self.types[name].kind == "enum":
            return f"[`{name}`](enumerations.md#{anchor(name)})"
        page = self.page_of[name]
        return f"[`{name[1:]}`]({page}.md)"

    def idl_lines(self, member):
        """The member's functions as the definition writes them, without help texts."""
        lines = []
        for function in member.functions:
            kinds = [kind for kind in ("propget", "propput") if kind in function.attributes]
            parameters = [
                f"[{', '.join(parameter.flags)}] {parameter.type[0]}{'*' * parameter.type[1]} "
                f"{parameter.name}" for parameter in function.parameters]
            prefix = f"[{kinds[0]}] " if kinds else ""
            line = f"{prefix}{function.result[0]} {member.name}({', '.join(parameters)});"
            if len(line) > 100:
                indent = line.index("(") + 1
                line = line[:indent] + f",\n{' ' * indent}".join(parameters) + ");"
            lines.append(line)
        return lines

    # Pages

    def sentence(self, owner, member):
        text = help_text(member.attributes)
        more = self.notes.get(owner.name, member.name, "text")
        return f"{text}. {more}"

    def default(self, owner, member):
        return self.notes.get(owner.name, member.name, "default")

    def shown_default(self, text):
        return text if " " in text or text == "none" else f"`{text}`"

    def parameter_rows(self, owner, member):
        for parameter in member.functions[0].parameters:
            text = self.notes.get(owner.name, member.name, "parameters", parameter.name, wanted=False)
            text = text or self.notes.get("parameters", parameter.name)
            flags = "returned" if "retval" in parameter.flags else " and ".join(parameter.flags)
            yield f"| `{parameter.name}` | {flags} | {self.type_words(parameter)} | {text} |"

    def error_rows(self, owner, member):
        lists = self.notes.get(owner.name, member.name, "errors", default=[], wanted=False)
        rows = [row for name in lists for row in self.notes.get("errors", name)]
        rows += self.notes.get(owner.name, member.name, "more", default=[], wanted=False)
        return [f"| {status} | {text} |" for status, text in rows]

    def member_section(self, owner, member):
        kind = f"Property, {member.access}" if member.is_property else (
            "Event" if owner.kind == "dispinterface" else "Method")
        lines = [f"## {member.name}", "", wrapped(self.sentence(owner, member)), ""]
        facts = f"{kind}. Dispid {member.id}."
        if member.is_property:
            [parameter] = member.functions[0].parameters
            facts += (f" Type: {self.type_words(parameter)}."
                      f" Default: {self.shown_default(self.default(owner, member))}.")
        lines += [facts, ""]
        if not member.is_property and member.functions[0].parameters:
            lines += ["| parameter | | type | |", "|---|---|---|---|",
                      *self.parameter_rows(owner, member), ""]
        errors = self.error_rows(owner, member)
        if errors:
            lines += ["| status | when |", "|---|---|", *errors, ""]
        lines += ["```idl", *self.idl_lines(member), "```", ""]
        return lines

    def overview(self, owner):
        lines = ["| member | dispid | | default |", "|---|---|---|---|"]
        for member in members(owner):
            default = self.shown_default(self.default(owner, member)) if member.is_property else ""
            lines.append(f"| [`{member.name}`](#{anchor(member.name)}) | {member.id} | "
                         f"{help_text(member.attributes)} | {default} |")
        return lines + [""]

    def class_page(self, found):
        implemented = {("source" if "source" in attributes else "default"): self.types[name]
                       for attributes, name in found.implemented}
        owner = implemented["default"]
        lines = [f"# {found.name}", "", MARK, "", wrapped(self.notes.get("classes", found.name)), "",
                 "| | |", "|---|---|",
                 f"| ProgID | `Quorvane.{found.name}`, `Quorvane.{found.name}.1` |",
                 f"| class | `{identifier(found.attributes)}` |",
                 f"| interface | `{owner.name}`, `{identifier(owner.attributes)}`, dual |"]
        if "source" in implemented:
            events = implemented["source"]
            lines.append(f"| events | [`{events.name}`](events.md) |")
        lines += ["", *self.overview(owner)]
        for member in members(owner):
            lines += self.member_section(owner, member)
        return self.text(lines)

    def events_page(self, events):
        lines = ["# Events", "", MARK, "",
                 "What queued messages tell their listeners. [Queue and events](../guide/queue.md) shows how to "
                 "listen.", "", "| | |", "|---|---|",
                 f"| interface | `{events.name}`, `{identifier(events.attributes)}`, late-bound |", ""]
        for member in members(events):
            lines += self.member_section(events, member)
        return self.text(lines)

    def enumerations_page(self):
        lines = ["# Enumerations", "", MARK, ""]
        for found in self.enumerations:
            lines += [f"## {found.name}", "", help_text(found.attributes) + ".", "",
                      "| name | value | |", "|---|---|---|"]
            lines += [f"| `{name}` | {value} | {self.notes.get(found.name, name)} |"
                      for name, value in found.constants]
            lines.append("")
        return self.text(lines)

    def index_page(self, events):
        name, attributes = self.definition.library
        version = "".join(attributes["version"])
        lines = ["# Reference", "", MARK, "", "| class | |", "|---|---|"]
        lines += [f"| [`Quorvane.{found.name}`]({found.name.lower()}.md) | "
                  f"{self.notes.get('classes', found.name)} |" for found in self.classes]
        lines += ["", f"[Events](events.md) of `{events.name}`, and [enumerations](enumerations.md).", "",
                  f"Type library: `{name}` {version}, `{identifier(attributes)}`, \"{help_text(attributes)}\".",
                  "", "## What holds for every member", "",
                  "- A null pointer where a value is to be put answers E_INVALIDARG, and so does a null object.",
                  "- Where memory runs out: E_OUTOFMEMORY. Sends answer E_FAIL, \"Unexpected exception!\".",
                  "- A text property keeps a text up to its first NUL; a null text counts as empty.",
                  "- Truth values: what is not 0 is true. Programs read back the number that they have put.",
                  "- Enumerations take any number; what others than the named values mean stands with each property.",
                  "- Errors of the tables come with error information, where a text stands beside the status: "
                  "[Errors](../guide/errors.md#wrong-use).", "", "## All members", "",
                  "| member | of | |", "|---|---|---|"]
        every = []
        for found in [*self.classes, events]:
            page, owner = found.name.lower(), found
            if found.kind == "coclass":
                owner = self.types[next(name for attributes, name in found.implemented
                                        if "source" not in attributes)]
            else:
                page = "events"
            every += [(member.name, page, found.name, help_text(member.attributes))
                      for member in members(owner)]
        lines += [f"| [`{member}`]({page}.md#{anchor(member)}) | `{owner}` | {text} |"
                  for member, page, owner, text in sorted(every, key=lambda row: row[0].lower())]
        return self.text(lines + [""])

    @staticmethod
    def text(lines):
        return "\n".join(lines).rstrip() + "\n"

    # Checks

    def property_defaults(self):
        """Of readable properties: what a new object's property shows, by interface and name."""
        values = {name: str(value) for found in self.enumerations for name, value in found.constants}
        for found in self.classes:
            for attributes, name in found.implemented:
                owner = self.types[name]
                for member in members(owner):
                    if member.is_property and member.access != "write-only":
                        default = self.default(owner, member)
                        default = "object" if default.startswith("an empty ") else default
                        yield f"{owner.name}.{member.name}", values.get(default, default)


def differing_pages(pages):
    on_disk = {path.name: path.read_text("utf-8") for path in PAGES.glob("*.md")}
    return sorted(name for name in pages.keys() | on_disk.keys()
                  if pages.get(name) != on_disk.get(name))


def differing_defaults(reference, command):
    output = subprocess.run(command, check=True, capture_output=True, stdin=subprocess.DEVNULL)
    shown = dict(line.split(" ", 1) for line in output.stdout.decode().splitlines())
    told = dict(reference.property_defaults())
    return [f"{name}: the reference says {told.get(name)}, a new object {shown.get(name)}"
            for name in sorted(told.keys() | shown.keys()) if told.get(name) != shown.get(name)]


def main():
    if len(sys.argv) < 2 or sys.argv[1] not in ("--write", "--check"):
        sys.exit(__doc__)
    reference = Reference()
    try:
        pages = reference.pages()
    except Lack as lack:
        sys.exit(str(lack))
    problems = [f"server/Quorvane.toml: {name} is about nothing" for name in reference.notes.left_over()]
    if sys.argv[1] == "--write" and not problems:
        PAGES.mkdir(exist_ok=True)
        for name in differing_pages(pages):
            if name in pages:
                (PAGES / name).write_text(pages[name], "utf-8")
            else:
                (PAGES / name).unlink()
    else:
        problems += [f"docs/reference/{name} isn't what the interface definition says: run scripts/docs"
                     for name in differing_pages(pages)]
        if len(sys.argv) > 2:
            problems += differing_defaults(reference, sys.argv[2:])
    sys.exit("\n".join(problems) if problems else 0)


if __name__ == "__main__":
    main()
