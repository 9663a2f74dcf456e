#!/usr/bin/env python3
"""Composes generated messages and has two parsers that nobody here wrote read them back: Python's
email package and GMime. Contents must be equal byte for byte, names and texts equal, nothing in
the messages that wasn't meant, and no reader may find anything wrong with them but what
exceptions.py lists.

A message that fails can be made again by its number alone: --seed S --first NUMBER --messages 1.
"""

import argparse
import json
import pathlib
import re
import subprocess
import sys
import tempfile
from datetime import datetime, timedelta, timezone

import email_reader
from exceptions import Exceptions
from meaning import PRIORITIES, Meaning, decoded

LINE_LIMIT = 998      # RFC 5322 section 2.1.1
BODY_LINE_LIMIT = 77  # the composer's own, with a doubled dot
BATCH = 250
SHOWN_FAILURES = 20


class Judge:
    """Looks at one message."""

    def __init__(self, made, exceptions, failures):
        self.number = made["number"]
        self.composed = bytes.fromhex(made["composed"])
        self.meaning = Meaning(made["meaning"])
        self.exceptions = exceptions
        self.failures = failures

    def fail(self, what):
        self.failures.append(f"message {self.number}: {what}")

    def expect(self, what, got, wanted):
        if got != wanted:
            self.fail(f"{what}: {got!r:.400} instead of {wanted!r:.400}")

    def received(self):
        """What a server makes of it: without the doubled dots."""
        return re.sub(rb"(^|\r\n)\.", rb"\1", self.composed)

    # The message as a sequence of lines.

    def judge_lines(self):
        wire = self.composed
        if wire.startswith(b".\r\n") or b"\r\n.\r\n" in wire:
            self.fail("a line ends the message")
        if b"\0" in wire:
            self.fail("a zero byte")
        if re.search(rb"\r(?!\n)", wire):
            self.fail("a CR alone")
        if re.search(rb"(?<!\r)\n", wire) and not self.exceptions.allow_bare_line_feed(self):
            self.fail("a LF alone")
        if b"secret@example.com" in wire:
            self.fail("a recipient of Bcc")
        _, _, rest = wire.partition(b"\r\n\r\n")
        for line in wire.split(b"\r\n"):
            if len(line) > LINE_LIMIT and not self.exceptions.allow_long_line(self, line):
                self.fail(f"a line of {len(line)} bytes: {line[:80]!r}")
        for line in rest.split(b"\r\n"):
            if len(line) > BODY_LINE_LIMIT and not re.match(b"\t(file)?name=", line):
                self.fail(f"a line of {len(line)} bytes in a body: {line[:80]!r}")

    # What a reader found.

    def judge_reading(self, reader, found):
        self.reader = reader
        self.judge_defects(found["defects"])
        fields = {}
        for name, value in found["fields"]:
            fields.setdefault(name.lower(), []).append(value)
        self.judge_fields(fields)
        for kind, got in found["addresses"].items():
            if got is None:
                continue  # a defect tells why
            wanted = self.meaning.addresses(kind)
            self.expect(f"{reader}: addresses of {kind}", [a for _, a in got],
                        [a for _, a in wanted])
            for (shown, _), (name, _) in zip(got, wanted):
                self.expect_text(f"{reader}: name in {kind}", shown, name)
        self.judge_parts(found)

    def judge_defects(self, defects):
        for defect, item in defects:
            if not self.exceptions.allow_defect(self, defect, item):
                self.fail(f"{self.reader}: defect {defect} {item!r:.200}")

    def expect_text(self, what, got, wanted):
        if wanted.text is None or got == wanted.text:
            return
        if not self.exceptions.allow_text(self, got, wanted):
            self.fail(f"{what}: {got!r:.400} instead of {wanted.text!r:.400}")

    def judge_fields(self, fields):
        made = self.meaning.made
        names = sorted(name for name, values in fields.items() for _ in values)
        self.expect(f"{self.reader}: fields", names, self.meaning.field_names())
        if made["subject"]:
            self.expect_text(f"{self.reader}: subject", fields["subject"][0], self.meaning.subject)
        identifier = made["message-id"] or r"0[0-9A-F]{8}\.[0-9A-F]{8}\..+@.+"
        if not re.fullmatch(f"<{identifier}>", fields["message-id"][0]):
            self.fail(f"{self.reader}: identifier {fields['message-id'][0]!r}")
        own = list(self.meaning.own_fields())
        own_names = {name.lower() for name, _ in own}
        number, word = PRIORITIES[made["priority"]]
        for name, value in (("x-priority", number), ("x-msmail-priority", word),
                            ("importance", word), ("mime-version", "1.0")):
            if name not in own_names:
                self.expect(f"{self.reader}: {name}", fields[name], [value])
        self.judge_date(fields["date"][0])
        for name, value in own:
            got = fields[name.lower()]
            if not any(self.exceptions.same_value(self, one, value.text) for one in got):
                self.fail(f"{self.reader}: {name}: {got!r:.300} instead of {value.text!r:.300}")

    def judge_date(self, text):
        *wanted, offset = self.meaning.made["date"]
        zone = timezone((-1 if offset < 0 else 1) *
                        timedelta(hours=abs(offset) // 100, minutes=abs(offset) % 100))
        got = datetime.strptime(re.sub("-0000$", "+0000", text), "%a, %d %b %Y %H:%M:%S %z")
        self.expect(f"{self.reader}: date", got, datetime(*wanted, tzinfo=zone))
        self.expect(f"{self.reader}: day", text[:3], got.strftime("%a"))

    def judge_parts(self, found):
        parts, wanted = found["parts"], self.meaning.parts
        types = [part["type"].lower() for part in parts]
        if len(parts) != len(wanted):
            self.fail(f"{self.reader}: the parts {types}, {len(wanted)} meant")
            return
        self.expect(f"{self.reader}: structure", found["structure"].lower(),
                    self.meaning.structure(types))
        for index, (part, meant) in enumerate(zip(parts, wanted)):
            self.judge_part(f"{self.reader}: part {index}", part, meant)

    def judge_part(self, what, part, meant):
        if meant.type:
            self.expect(f"{what}, type", part["type"].lower(), meant.type)
        if part["type"].lower().startswith("text/"):
            self.expect(f"{what}, charset", part["charset"].lower(), meant.charset.lower())
        if meant.encoding and meant.reads:
            self.expect(f"{what}, encoding", part["encoding"], meant.encoding)
        self.expect(f"{what}, disposition", part["disposition"], meant.disposition)
        self.expect(f"{what}, identifier", part["id"], meant.id)
        for parameter in ("name", "filename") if meant.name else ():
            if not self.exceptions.allow_parameter(self, parameter, meant.name):
                self.expect_text(f"{what}, {parameter}", part[parameter], meant.name)
        self.judge_content(what, part, meant)

    def judge_content(self, what, part, meant):
        got = bytes.fromhex(part["content"])
        encoding = part["encoding"]
        if not meant.reads:
            self.expect(f"{what}, content", (got, encoding), (meant.content, ""))
            return
        sent = meant.content if encoding == "base64" else meant.content.split(b"\0")[0]
        if encoding == "base64":
            equal = got == sent
        elif encoding == "quoted-printable":
            sent = re.sub(rb"\r\n|\r", b"\r\n", sent)
            equal = got == sent
            if re.search(r"[ \t](\r\n|\Z)", part.get("wire", "")):
                self.fail(f"{what}: a line in quoted-printable ends in a blank")
        else:
            if encoding == "7bit":
                sent = re.sub(rb"[\x7f-\xff]", b"?", sent)
            equal = is_wrapped(sent, got)
        if not equal:
            self.fail(f"{what}, content in {encoding}: {got!r:.400} instead of {sent!r:.400}")
        if equal and part.get("text") and not meant.disposition:
            text = decoded(got, meant.charset)
            if text is not None and not self.exceptions.same_text(meant.charset, part["text"], text):
                self.fail(f"{what}, text: {part['text']!r:.300} instead of {text!r:.300}")


def is_wrapped(sent, got):
    """True when the lines of one are those of the other, long ones cut into several."""
    lines = iter(got.split(b"\r\n"))
    for line in re.split(rb"\r\n|\r", sent):
        piece = next(lines, None)
        while piece is not None and len(piece) < len(line) and line.startswith(piece):
            line = line[len(piece):]
            piece = next(lines, None)
        if piece != line:
            return False
    return next(lines, None) is None


class Programs:
    def __init__(self, folder):
        self.generator = folder / "generate_messages"
        self.gmime = folder / "gmime_reader"

    def generate(self, scratch, seed, first, count):
        lines = subprocess.run([self.generator, scratch, str(seed), str(first), str(count)],
                               check=True, stdout=subprocess.PIPE).stdout
        return [json.loads(line) for line in lines.splitlines()]

    def read_with_gmime(self, messages):
        text = "".join(f"{message.hex()}\n" for message in messages)
        lines = subprocess.run([self.gmime], check=True, input=text.encode(),
                               stdout=subprocess.PIPE).stdout
        return [json.loads(line) for line in lines.splitlines()]


def judge_batch(programs, scratch, options, first, exceptions, failures):
    count = min(BATCH, options.first + options.messages - first)
    judges = [Judge(made, exceptions, failures)
              for made in programs.generate(scratch, options.seed, first, count)]
    readings = programs.read_with_gmime([judge.received() for judge in judges])
    assert len(judges) == len(readings) == count
    for judge, reading in zip(judges, readings):
        judge.judge_lines()
        judge.judge_reading("GMime", reading)
        judge.judge_reading("email", email_reader.describe(judge.received()))
    return sum(len(judge.composed) for judge in judges)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--messages", type=int, default=400)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--first", type=int, default=0, metavar="NUMBER")
    parser.add_argument("--programs", type=pathlib.Path, required=True, metavar="FOLDER",
                        help="where generate_messages and gmime_reader are")
    options = parser.parse_args()
    exceptions, failures, size = Exceptions(), [], 0
    programs = Programs(options.programs)
    end = options.first + options.messages
    with tempfile.TemporaryDirectory() as scratch:
        for first in range(options.first, end, BATCH):
            size += judge_batch(programs, scratch, options, first, exceptions, failures)
            if sys.stdout.isatty():
                print(f"\r{min(first + BATCH, end):,} of {end:,}", end="\r")
    exceptions.report()
    for failure in failures[:SHOWN_FAILURES]:
        print(failure)
    print(f"{options.messages:,} messages of seed {options.seed}, {size:,} bytes, read by GMime "
          f"and email: {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
