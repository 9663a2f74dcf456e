"""Checks with Python's email package that the contenders' messages have the same content."""

import email
import email.header
import email.policy
import hashlib
import re
import sys
from pathlib import Path

FIELDS = ("Importance", "X-Priority", "X-MSMail-Priority", "X-Mailer", "X-MimeOLE", "MIME-Version")


def undo_transparency(data):
    """What a server makes of the lines after DATA (RFC 5321 section 4.5.2)."""
    return re.sub(rb"(^|\r\n)\.", rb"\1", data)


def file_name(part):
    """The attachment's name, out of an encoded word too, which the parser doesn't expect there."""
    name = part.get_filename()
    if not name:
        field = str(dict(part.raw_items()).get("Content-Disposition", ""))
        word = re.search(r"filename=(=\?\S+\?=)", field)
        name = word and word.group(1)
    return name and str(email.header.make_header(email.header.decode_header(name)))


def addresses(message, name):
    return [(a.display_name, a.addr_spec) for a in message[name].addresses]


def payload(part):
    """A text without the line ends behind it, of which senders add one."""
    data = part.get_payload(decode=True)
    return data.rstrip(b"\r\n") if part.get_content_maintype() == "text" else data


def disposition(part):
    """To call a text inline, as Poco does, says nothing."""
    value = part.get_content_disposition()
    return None if value == "inline" and part.get_content_maintype() == "text" else value


def leaf(part):
    return {
        "type": part.get_content_type(),
        "charset": part.get_content_charset(),
        "disposition": disposition(part),
        "name": file_name(part),
        "id": part["Content-ID"] and str(part["Content-ID"]).strip(),
        "encoding": str(part["Content-Transfer-Encoding"]).lower(),
        "bytes": hashlib.sha256(payload(part)).hexdigest(),
    }


def tree(part):
    if not part.is_multipart():
        return leaf(part)
    children = [tree(child) for child in part.iter_parts()]
    # What libcurl sends is always multipart, be it of one part.
    return children[0] if len(children) == 1 else [part.get_content_type(), children]


def is_stuffed(path):
    """Whether dots are doubled: in what was sent, and in what Quorvane composes for sending."""
    work, name = path.name.split(".")[:2]
    return work.endswith("-send") or name == "Quorvane"


def content(path):
    data = path.read_bytes()
    message = email.message_from_bytes(undo_transparency(data) if is_stuffed(path) else data,
                                       policy=email.policy.default)
    result = {name: message[name] for name in FIELDS}
    # vmime puts a second space where it folds a line.
    result["Subject"] = " ".join(str(message["Subject"]).split())
    result["From"] = addresses(message, "From")
    result["To"] = addresses(message, "To")
    result["tree"] = tree(message)
    return result


def check(folder):
    """Whether the contenders' messages in WORK.CONTENDER.eml have Quorvane's content each."""
    names = sorted({path.name.split(".")[0] for path in folder.glob("*.eml")})
    different = 0
    for name in names:
        own = content(folder / f"{name}.Quorvane.eml")
        for path in sorted(folder.glob(f"{name}.*.eml")):
            other = content(path)
            for key in own:
                if own[key] != other[key]:
                    different += 1
                    print(f"{path.name}: {key} differs from Quorvane's")
                    print(f"  {own[key]!r}\n  {other[key]!r}")
    if not names or different:
        return False
    print(f"equal content by Python's email package: {', '.join(names)}")
    return True


if __name__ == "__main__":
    sys.exit(not check(Path(sys.argv[1])))
