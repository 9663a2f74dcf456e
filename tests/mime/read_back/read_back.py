"""Composes messages and reads them with Python's email package: same texts, names and bytes."""

import email
import email.policy
import random
import re
import subprocess
import sys
import tempfile
from datetime import datetime, timedelta, timezone
from pathlib import Path

QUOTED_PRINTABLE = 3
LOSSLESS = {0, QUOTED_PRINTABLE, 4}  # 7bit and 8bit break long lines


def make_files(folder):
    chance = random.Random(7)
    words = ["Straße", "=", ".", "über", "€uro", "\U0001F600", "a\tb", "plain", "words", "x" * 90]
    lines = [" ".join(chance.choices(words, k=chance.randrange(12))) + chance.choice(["", " ", "."])
             for _ in range(400)]
    text = "\r\n".join([".", "..dots", "From here"] + lines) + "\r\n"
    files = {
        "alternative.txt": text.encode(),
        "body.html": b"<p>" + text.encode() + b"</p>",
        "picture.png": chance.randbytes(57 * 5),
        "report.pdf": chance.randbytes(200_001),
    }
    for name, content in files.items():
        (folder / name).write_bytes(content)
    return files


def expect(what, actual, wanted):
    if actual != wanted:
        sys.exit(f"{what}: {actual!r:.300} instead of {wanted!r:.300}")


def check(data, files, encoding):
    for number, line in enumerate(data.split(b"\r\n")):
        if b"\r" in line or b"\n" in line or line == b".":
            sys.exit(f"line {number} has a bare line break or ends the message: {line!r}")
    message = email.message_from_bytes(re.sub(rb"(^|\r\n)\.", rb"\1", data),
                                       policy=email.policy.default)
    expect("defects", message.defects, [])
    expect("subject", message["Subject"], "Grüße € \U0001F600")
    expect("subjects", len(message.get_all("Subject")), 1)
    expect("sender", [(a.display_name, a.addr_spec) for a in message["From"].addresses],
           [("Jürgen Müller", "sender@example.com")])
    expect("recipients", [(a.display_name, a.addr_spec) for a in message["To"].addresses],
           [('O\'Brien, "Bob"', "bob@example.org"), ("", "second@example.org")])
    date = message["Date"].datetime
    if date.tzinfo is None:  # -0000
        date = date.replace(tzinfo=timezone.utc)
    age = datetime.now(timezone.utc) - date
    expect("date is now", timedelta(minutes=-1) < age < timedelta(minutes=5), True)
    parts = [part for part in message.walk() if not part.is_multipart()]
    expect("structure", [part.get_content_type() for part in message.walk()],
           ["multipart/mixed", "multipart/related", "multipart/alternative", "text/plain",
            "text/html", "image/png", "application/pdf"])
    expect("names", [part.get_filename() for part in parts],
           [None, None, "picture.png", "report.pdf"])
    expect("identifier", parts[2]["Content-ID"], "<picture@example.com>")
    for part, (name, content) in zip(parts, files.items()):
        if encoding in LOSSLESS or not name.endswith(("txt", "html")):
            expect(name, part.get_payload(decode=True), content)
    expect("charset", parts[0].get_content_charset(), "utf-8")


def main(program):
    with tempfile.TemporaryDirectory() as folder:
        files = make_files(Path(folder))
        for encoding in range(5):
            data = subprocess.run([program, folder, str(encoding)], check=True,
                                  stdout=subprocess.PIPE).stdout
            check(data, files, encoding)


if __name__ == "__main__":
    main(sys.argv[1])
