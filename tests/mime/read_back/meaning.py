"""What readers should find in a generated message, worked out from what it was made of alone."""

import codecs
import dataclasses
import re

BREAK = r"\r\n|\r|\n"
STANDARD = {"from", "date", "message-id", "importance", "x-msmail-priority", "x-priority",
            "x-mailer", "x-mimeole", "mime-version", "content-type"}
REPLACED = {"subject", "message-id", "mime-version", "content-type"}
PRIORITIES = {2: ("1 (Highest)", "High"), 1: ("3 (Normal)", "Normal"), 0: ("5 (Lowest)", "Low")}
ENCODINGS = ["", "7bit", "8bit", "quoted-printable", "base64"]


def is_unicode(charset):
    return charset.lower() == "unicode"


def label(charset):
    return "utf-8" if is_unicode(charset) else charset


def text_of(units):
    """A text of UTF-16 units; halves of pairs stay what they are."""
    return bytes.fromhex(units).decode("utf-16-le", "surrogatepass")


def bytes_of(units, charset):
    if is_unicode(charset):
        return re.sub("[\ud800-\udfff]", "\ufffd", text_of(units)).encode()
    return bytes.fromhex(units)[0::2]


def decoded(content, charset):
    """The text of bytes in a character set; None when they are none, or the name is unknown."""
    try:
        codecs.lookup(charset)
        return content.decode(charset)
    except (LookupError, UnicodeDecodeError):
        return None


@dataclasses.dataclass
class HeaderText:
    """A subject, a name or a value as a reader should show it."""
    original: str
    wire: str            # "plain", "quoted", "word"
    text: str | None     # None: no text in the character set of the message
    label: str = ""      # of a word
    bytes: bytes = b""

    @property
    def wire_size(self):
        if self.wire == "word":
            return len(f"=?{self.label}?B??=") + (len(self.bytes) + 2) // 3 * 4
        return 2 * len(self.text) + 2


def header_charset(bodies):
    found = [b["charset"] for b in bodies if b["charset"].lower() not in ("", "iso-8859-1")]
    return found[-1] if found else "unicode"


def field_text(text):
    """A value that went through the writer of fields, unfolded."""
    folded = re.sub(rf"({BREAK})(?![ \t])", "\r\n ", text)
    return re.sub(BREAK, "", folded).replace("\0", "?")


def header_text(units, bodies, is_phrase):
    text = text_of(units)
    if any(ord(c) > 0x7E for c in text):
        charset = header_charset(bodies)
        content = bytes_of(units, charset)
        return HeaderText(text, "word", decoded(content, label(charset)), label(charset), content)
    if is_phrase and not re.fullmatch("[A-Za-z0-9]*", text):
        return HeaderText(text, "quoted", re.sub(r"[\t-\r]", " ", text).replace("\0", "?"))
    return HeaderText(text, "plain", field_text(text))


def trimmed(units):
    """Without white space at the ends."""
    text = text_of(units)
    return text.strip(" \t\n\v\f\r").encode("utf-16-le", "surrogatepass").hex()


@dataclasses.dataclass
class Part:
    type: str | None   # None: what the system says of the name
    charset: str
    encoding: str      # "" when the composer chooses
    content: bytes
    disposition: str = ""
    name: HeaderText | None = None
    id: str = ""
    reads: bool = True  # False: a body file that can't be read, without content and encoding


class Meaning:
    def __init__(self, made):
        self.made = made
        self.bodies = [self._body(body) for body in made["bodies"]]
        attachments = made["attachments"]
        ordered = ([a for a in attachments if a["inline"]] +
                   [a for a in attachments if not a["inline"]])
        self.attachments = [self._attachment(a) for a in ordered]
        self.parts = self.bodies + [a for a in self.attachments if a.content]
        self.subject = header_text(made["subject"], made["bodies"], False)

    def _body(self, body):
        file = body.get("file", "")
        if "file" not in body:
            return Part(body["type"], label(body["charset"]), ENCODINGS[body["encoding"]],
                        bytes_of(body["text"], body["charset"]))
        return Part(body["type"], body["charset"], ENCODINGS[body["encoding"]],
                    bytes.fromhex(file) if file is not None else b"\r\n", reads=file is not None)

    def _attachment(self, made):
        name = made["name"] or last_component(made["file"])
        type_ = made["type"].split(";")[0].lower() or None
        return Part(type_, made["charset"], ENCODINGS[made["encoding"]],
                    bytes.fromhex(made["content"]),
                    "inline" if made["inline"] else "attachment",
                    header_text(name, self.made["bodies"], True), made["id"])

    def structure(self, types):
        """The nesting, given the types of the parts that readers find."""
        inline = sum(a.disposition == "inline" for a in self.attachments)
        mixed = [t for t, part in zip(types, self.parts) if part.disposition == "attachment"]
        related = [t for t, part in zip(types, self.parts) if part.disposition == "inline"]
        bodies = ",".join(types[:len(self.bodies)])
        if not self.attachments:
            return bodies if len(self.bodies) == 1 else f"multipart/alternative({bodies})"
        if len(self.bodies) > 1:
            bodies = f"multipart/alternative({bodies})"
        if inline == 0:
            return f"multipart/mixed({','.join([bodies] + mixed)})"
        inside = f"multipart/related({','.join([bodies] + related)})"
        return inside if inline == len(self.attachments) else \
            f"multipart/mixed({','.join([inside] + mixed)})"

    def addresses(self, kind):
        return [(header_text(trimmed(a["name"]), self.made["bodies"], True), a["address"])
                for a in self.made[kind]]

    def own_fields(self):
        """The caller's fields that stay, as readers should show them."""
        for name, value in self.made["fields"]:
            if name.lower() not in REPLACED:
                text = bytes.fromhex(value).decode("latin-1")
                yield name, HeaderText(text, "plain", field_text(text))

    def texts_of_field(self, name):
        """The caller's texts in the fields of that name, which may be those of parts."""
        name = name.lower()
        if name in ("content-type", "content-disposition"):
            return [part.name for part in self.attachments]
        if name == "subject":
            return [self.subject]
        if name in ("from", "reply-to", "to", "cc"):
            return [text for text, _ in self.addresses(name)]
        return [text for own, text in self.own_fields() if own.lower() == name]

    def header_texts(self):
        names = {"content-type", "subject", "from", "reply-to", "to", "cc"}
        names |= {name.lower() for name, _ in self.own_fields()}
        return [text for name in names for text in self.texts_of_field(name)]

    def has_bytes(self, name):
        """True when the caller's own field of that name isn't ASCII."""
        return any(not text.text.isascii() for own, text in self.own_fields()
                   if own.lower() == name.lower())

    def field_names(self):
        names = set(STANDARD) | {kind for kind in ("reply-to", "to", "cc") if self.made[kind]}
        if self.made["subject"]:
            names.add("subject")
        if not self.attachments and len(self.bodies) == 1 and self.bodies[0].reads:
            names.add("content-transfer-encoding")
        own = [name.lower() for name, _ in self.own_fields()]
        return sorted([name for name in names if name not in own] + own)


def last_component(units):
    return text_of(units).rsplit("\\", 1)[-1].encode("utf-16-le", "surrogatepass").hex()
