"""What readers may find wrong with composed messages: every exception by its name, with the reason
and the condition under which it is made. Nothing else is let through."""

import base64
import re

REASONS = {
    "look-alike":
        "ASCII text that looks like an encoded word goes out as it is; readers decode it",
    "word as parameter":
        "attachment names beyond ASCII go out as encoded words without quotes, which many mail "
        "programs expect and RFC 2231 replaced; the bytes are looked at instead",
    "empty name":
        "an attachment from memory without a name has empty parameters",
    "control characters":
        "control characters other than line breaks and NUL stay in header texts",
    "line break in word":
        "a line break in a text beyond ASCII is inside of its encoded word; email refuses it",
    "no text in character set":
        "a character set name is only a label: its low bytes may be no text in it, or it may be "
        "unknown to the reader",
    "long text":
        "a text is not folded: its line is as long as it is",
    "bare line feed":
        "a LF alone in a 7bit, 8bit or quoted-printable body goes out as it was given",
    "NUL":
        "GMime's texts end at a NUL, which encoded words and Base64 carry",
    "blanks":
        "readers shorten or drop blanks between words and at the ends of header texts",
    "bytes of a field":
        "extra fields go out in the 8-bit code page",
    "quoted local part in identifier":
        "a generated identifier ends in the sender's address, a quoted local part included",
    "converters":
        "GMime reads some bytes of three character sets as other characters than Python: the bytes "
        "that went out are the caller's",
}
# Characters that the C library's iconv, which GMime uses, reads differently from Python's codecs,
# by their bytes: all there are in the character sets of the generator.
CONVERTERS = {
    "shift_jis": "5c 7e",  # yen sign and overline, or as in ASCII
    "big5": "a145 a14e a1c2 a1e3 a1f2-a1f3 a241-a242 a244 a246-a247 "  # symbols of two kinds
            "c6a1-c7fc",  # an extension that iconv reads as private characters
    "gb18030": "a6d9-a6df a6ec-a6ed a6f3 a8bc fe51-fe53 fe59 fe61 fe66-fe67 fe6c-fe6d "
               "fe76 fe7e fe90-fe91 fea0",  # private characters until Unicode had them
}
CONTROLS = re.compile("[\x00-\x1f\x7f]")
LOOK_ALIKE = "=?utf-8?B?4oKs?="  # in the generator's texts


def squeezed(text):
    return " ".join(text.split())


def differs_by_converter(charset, got, wanted):
    areas = [area.split("-") for area in CONVERTERS.get(charset.lower(), "").split()]

    def may_differ(character):
        code = character.encode(charset).hex()
        return any(area[0] <= code <= area[-1] for area in areas)

    return len(got) == len(wanted) and all(
        a == b or may_differ(b) for a, b in zip(got, wanted))


class Exceptions:
    def __init__(self):
        self.uses = dict.fromkeys(REASONS, 0)

    def allow(self, name, condition):
        if condition:
            self.uses[name] += 1
        return bool(condition)

    def report(self):
        for name, count in self.uses.items():
            print(f"{count:9,}  {name}: {REASONS[name]}")

    # Lines.

    def allow_bare_line_feed(self, judge):
        return self.allow("bare line feed", any(
            re.search(rb"(?<!\r)\n", part.content.split(b"\0")[0])
            for part in judge.meaning.parts if part.encoding != "base64"))

    def allow_long_line(self, judge, line):
        longest = max(text.wire_size for text in judge.meaning.header_texts())
        return self.allow("long text", len(line) <= longest + 100)

    # Defects.

    def allow_defect(self, judge, defect, item):
        # Of a parameter GMime tells its value or name.
        field = "content-type" if defect == "invalid parameter" else item.lower()
        texts = judge.meaning.texts_of_field(field)
        words = [text for text in texts if text.wire == "word"]
        if defect in ("InvalidHeaderDefect", "invalid parameter"):
            if field in ("content-type", "content-disposition"):
                return (self.allow("word as parameter", words) or
                        self.allow("empty name", any(text.text == "" for text in texts)) or
                        self.allow("look-alike", any(LOOK_ALIKE in text.original for text in texts)))
            return self.allow("look-alike", any(LOOK_ALIKE in text.original for text in texts))
        if defect == "NonPrintableDefect":
            return self.allow("control characters",
                              any(CONTROLS.search(text.original) or
                                  CONTROLS.search(text.bytes.decode("latin-1"))
                                  for text in texts))
        if defect == "unreadable":
            return self.allow("line break in word",
                              any(re.search(b"[\r\n]", word.bytes) for word in words))
        if defect in ("UndecodableBytesDefect", "CharsetError"):
            return (self.allow("no text in character set", any(w.text is None for w in words)) or
                    self.allow("bytes of a field", judge.meaning.has_bytes(item)))
        if defect == "unencoded 8-bit header":
            return self.allow("bytes of a field", judge.meaning.has_bytes(item))
        if defect == "ObsoleteHeaderDefect":
            return self.allow("quoted local part in identifier",
                              item == "Message-ID" and not judge.meaning.made["message-id"] and
                              '"' in judge.meaning.made["from"][0]["address"])
        return False

    # Texts.

    def allow_text(self, judge, got, wanted, parameter=None):
        if squeezed(got) == squeezed(wanted.text):
            return self.allow("blanks", True)
        if self.allow("NUL", squeezed(got) == squeezed(wanted.text.split("\0")[0])):
            return True
        if self.allow("look-alike", wanted.wire != "word" and LOOK_ALIKE in wanted.text and
                      squeezed(got) == squeezed(wanted.text.replace(LOOK_ALIKE, "\u20ac"))):
            return True
        if self.allow("control characters", CONTROLS.search(wanted.text) and
                      squeezed(CONTROLS.sub("?", got)) ==
                      squeezed(CONTROLS.sub("?", wanted.text))):
            return True
        return self.allow("converters",
                          differs_by_converter(wanted.label, squeezed(got), squeezed(wanted.text)))

    def allow_parameter(self, judge, parameter, wanted):
        """An unquoted word: the bytes that went out are exactly the text."""
        line = f"\r\n\t{parameter}==?{wanted.label}?B?".encode()
        word = base64.b64encode(wanted.bytes) + b"?=\r\n"
        return self.allow("word as parameter",
                          wanted.wire == "word" and line + word in judge.composed)

    def same_value(self, judge, got, wanted):
        if got == wanted or self.allow("blanks", squeezed(got) == squeezed(wanted)):
            return True
        return self.allow("bytes of a field", not wanted.isascii() and
                          re.sub("[^ -~]", "?", got) == re.sub("[^ -~]", "?", wanted))

    # Contents.

    def same_text(self, charset, got, wanted):
        return (got == wanted or self.allow("NUL", got == wanted.split("\0")[0]) or
                self.allow("converters", differs_by_converter(charset, got, wanted)))
