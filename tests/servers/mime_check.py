#!/usr/bin/env python3
"""Reads a message with Python's own e-mail library, shows it and compares it with given files.

    mime_check.py message.eml --envelope message.json
    mime_check.py message.eml --html body.html --text body.txt \\
        --inline logo@example=logo.png --attachment report.pdf=report.pdf

Without expectations it only shows the message. With expectations every part must be one of the
expected ones and equal its file byte for byte; the exit status is 0 when they all do, else 1.
Body files are UTF-8 text; their lines count as ending in CRLF, as lines do in mail.
"""

import argparse
import dataclasses
import email
import email.header
import email.policy
import json
import os
import pathlib
import re
import sys


@dataclasses.dataclass
class Part:
    """One part of a message that isn't a container, as a reader sees it."""
    type: str
    disposition: str  # "inline", "attachment" or "" for a body
    name: str
    content_id: str
    charset: str
    encoding: str
    content: bytes    # decoded from the transfer encoding
    depth: int = 0


def decode_words(text):
    """The text of a header field with its encoded words decoded (RFC 2047)."""
    pieces = []
    for data, charset in email.header.decode_header(text):
        pieces.append(data if isinstance(data, str) else data.decode(charset or "ascii", "replace"))
    return "".join(pieces)


def parse(raw):
    """The message of these bytes; str fields keep their words encoded, as they were sent."""
    return email.message_from_bytes(raw, policy=email.policy.compat32)


def leaf(message):
    disposition = message.get_content_disposition() or ""
    return Part(
        type=message.get_content_type(),
        disposition=disposition,
        name=decode_words(message.get_filename() or ""),
        content_id=(message.get("Content-ID") or "").strip("<>"),
        charset=message.get_content_charset() or "",
        encoding=(message.get("Content-Transfer-Encoding") or "").lower(),
        content=message.get_payload(decode=True))


def leaves(message):
    """Every part that isn't a container, in order."""
    return [leaf(part) for part in message.walk() if not part.is_multipart()]


def structure(message):
    """The nesting of the parts, as in 'multipart/mixed(text/plain,image/png)'."""
    if not message.is_multipart():
        return message.get_content_type()
    inside = ",".join(structure(part) for part in message.get_payload())
    return f"{message.get_content_type()}({inside})"


def faults(raw):
    """What is wrong with the message as such, whatever it was meant to hold."""
    found = []
    if re.search(rb"(?<!\r)\n|\r(?!\n)", raw):
        found.append("a line end is not CRLF")
    head = raw.split(b"\r\n\r\n", 1)[0]
    if re.search(rb"[\x00-\x08\x0b\x0c\x0e-\x1f\x7f-\xff]", head):
        found.append("the header holds bytes that are not printable ASCII")
    for line in head.split(b"\r\n"):
        if not re.match(rb"[!-9;-~]+:|[ \t]", line):
            found.append(f"not a header line: {line!r}")
    for part in parse(raw).walk():
        found += [f"{part.get_content_type()}: {type(defect).__name__}" for defect in part.defects]
        names = [name.lower() for name, _ in part.items()]
        for name in ("from", "to", "cc", "subject", "date", "message-id", "mime-version",
                     "content-type", "content-transfer-encoding"):
            if names.count(name) > 1:
                found.append(f"{name} stands more than once")
    return found


def body_text(path):
    """What a body made of this UTF-8 file holds: its text with CRLF line ends."""
    text = pathlib.Path(path).read_bytes().decode("utf-8-sig")
    return re.sub(r"\r\n|\r|\n", "\r\n", text)


class Comparison:
    """Takes the parts of a message one by one and judges whether they are what was meant."""

    def __init__(self, message):
        self.left = leaves(message)
        self.results = []  # pairs of (as meant, sentence)

    def _take(self, label, accept):
        for index, part in enumerate(self.left):
            if accept(part):
                return self.left.pop(index)
        self.results.append((False, f"{label}: no such part"))
        return None

    def _judge(self, equal, label, got, meant):
        size = f"{got:,} bytes"
        self.results.append(
            (equal, f"{label}: {size}, equal to the file sent" if equal
             else f"{label}: {size}, DIFFERS from the file sent ({meant:,} bytes)"))

    def text(self, type_, meant):
        """A body of this type, whose text, with CRLF line ends, is the one meant."""
        label = f"{type_} body"
        part = self._take(label, lambda p: p.type == type_ and not p.disposition)
        if part:
            try:
                equal = part.content.decode(part.charset or "ascii") == meant
            except (LookupError, UnicodeDecodeError):
                equal = False
            self._judge(equal, label, len(part.content), len(meant.encode()))

    def inline(self, content_id, meant):
        self._bytes(f"inline {content_id}", meant,
                    lambda p: p.disposition == "inline" and p.content_id == content_id)

    def attachment(self, name, meant):
        self._bytes(f"attachment {name}", meant,
                    lambda p: p.disposition == "attachment" and p.name == name)

    def _bytes(self, label, meant, accept):
        part = self._take(label, accept)
        if part:
            self._judge(part.content == meant, label, len(part.content), len(meant))

    def finish(self):
        """The results, with a complaint about every part that nobody asked for."""
        for part in self.left:
            self.results.append((False, f"unexpected part {part.type} {part.name}".rstrip()))
        return self.results


class Paint:
    """Colours on a terminal, unless NO_COLOR asks for none."""

    def __init__(self, stream):
        self.on = stream.isatty() and not os.environ.get("NO_COLOR")

    def __call__(self, code, text):
        return f"\033[{code}m{text}\033[0m" if self.on else text

    def title(self, text):
        return self("1", text)

    def faint(self, text):
        return self("2", text)

    def verdict(self, good, text):
        return f"{self('32', '✓') if good else self('31', '✗')} {text}"


def describe(part):
    if part.is_multipart():
        return part.get_content_type(), ""
    one = leaf(part)
    notes = [one.charset, one.encoding, f"{len(one.content):,} bytes"]
    if one.name:
        notes.insert(0, f"“{one.name}”")
    if one.disposition:
        notes.insert(0, one.disposition)
    if one.content_id:
        notes.append(f"cid:{one.content_id}")
    return one.type, "  ".join(note for note in notes if note)


def tree(part, paint, indent="", lead=""):
    """The lines that show a part and everything inside it."""
    type_, notes = describe(part)
    lines = [f"{lead}{type_}  {paint.faint(notes)}".rstrip()]
    inside = part.get_payload() if part.is_multipart() else []
    for number, child in enumerate(inside, 1):
        last = number == len(inside)
        lines += tree(child, paint, indent + ("   " if last else "│  "),
                      indent + ("└─ " if last else "├─ "))
    return lines


def printable(text):
    return re.sub(r"[\x00-\x1f\x7f-\x9f]", "?", re.sub(r"\r?\n[ \t]", " ", text))


def show(raw, envelope, paint, out):
    message = parse(raw)
    if envelope:
        print(paint.title("Envelope"), file=out)
        print(f"  from  {printable(envelope['from'])}", file=out)
        for recipient in envelope["to"]:
            print(f"  to    {printable(recipient)}", file=out)
    print(paint.title("Header"), file=out)
    for name, value in message.items():
        print(f"  {paint.faint(name + ':')} {printable(decode_words(value))}", file=out)
    print(paint.title("Structure"), file=out)
    for line in tree(message, paint):
        print(f"  {line}", file=out)


def pair(text):
    key, mark, path = text.rpartition("=")
    if not mark or not key:
        raise argparse.ArgumentTypeError(f"{text}: written as NAME=FILE")
    return key, pathlib.Path(path)


def arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("message", type=pathlib.Path)
    parser.add_argument("--envelope", type=pathlib.Path, help="envelope as the catcher writes it")
    parser.add_argument("--html", metavar="FILE", help="the HTML body")
    parser.add_argument("--text", metavar="FILE", help="the plain-text body")
    parser.add_argument("--inline", metavar="CID=FILE", type=pair, action="append", default=[])
    parser.add_argument("--attachment", metavar="NAME=FILE", type=pair, action="append", default=[])
    parser.add_argument("--structure", metavar="S", help="as in multipart/mixed(text/plain,image/png)")
    parser.add_argument("--absent", metavar="TEXT", action="append", default=[],
                        help="text that must not occur in the message")
    parser.add_argument("--quiet", action="store_true", help="show nothing but what is wrong")
    return parser.parse_args()


def check(raw, expected):
    """The results of everything that was asked for, as pairs of (as meant, sentence)."""
    message = parse(raw)
    results = [(False, fault) for fault in faults(raw)]
    if expected.structure and structure(message) != expected.structure:
        results.append((False, f"the structure is {structure(message)}"))
    for text in expected.absent:
        absent = text.encode() not in raw
        results.append((absent, f"{text} {'occurs nowhere' if absent else 'OCCURS'} in the message"))
    if expected.html or expected.text or expected.inline or expected.attachment:
        comparison = Comparison(message)
        if expected.text:
            comparison.text("text/plain", body_text(expected.text))
        if expected.html:
            comparison.text("text/html", body_text(expected.html))
        for content_id, path in expected.inline:
            comparison.inline(content_id, path.read_bytes())
        for name, path in expected.attachment:
            comparison.attachment(name, path.read_bytes())
        results += comparison.finish()
    return results


def main():
    expected = arguments()
    paint = Paint(sys.stdout)
    raw = expected.message.read_bytes()
    envelope = json.loads(expected.envelope.read_text("utf-8")) if expected.envelope else None
    if not expected.quiet:
        show(raw, envelope, paint, sys.stdout)
    results = check(raw, expected)
    if results and not expected.quiet:
        print(paint.title("Checks"))
    for good, sentence in results:
        if not (good and expected.quiet):
            print(f"  {paint.verdict(good, sentence)}")
    return 0 if all(good for good, _ in results) else 1


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8")
    sys.exit(main())
