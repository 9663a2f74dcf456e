#!/usr/bin/env python3
"""Moves types to the front of a type library, and takes the time of its making out of it.

widl damages a library whose first type is a dispinterface, so the definition lets an interface
come first and this step restores the order that is wanted. The types' records are permuted in the
file and every reference to them is rewritten. widl's marks of when it ran give way to the epoch, so
that the same definition makes the same file; nothing else changes.

The file format (MSFT): a header, one offset per type, a directory of segments, the segments. A
type is referred to by the offset of its record in the type-info segment; references into other
libraries have one of the two low bits set.
"""

import argparse
import re
import struct
import sys
import time

HEADER_SIZE = 0x54
HEADER_FLAGS = 0x14
HEADER_TYPE_COUNT = 0x20
FLAG_HELP_DLL = 0x100  # one more header word
RECORD_SIZE = 0x64
RECORD_NAME = 0x34
RECORD_BASE = 0x54  # base interface, or for a class the first entry of its reference list
KIND_INTERFACE, KIND_DISPATCH, KIND_ALIAS, KIND_CLASS = 3, 4, 6, 5
VT_USERDEFINED = 29
# How the identifiers of the two marks begin: seconds, and a sentence with the time in it.
MARK_SECONDS, MARK_SENTENCE = 0xDE77BA63, 0xDE77BA65
SEGMENTS = ("types", "imports", "files", "references", "guid_hash", "guids", "name_hash", "names",
            "strings", "descriptions", "arrays", "custom", "custom_guids", "unused1", "unused2")


class TypeLibrary:
    """The bytes of a type library and where its segments are."""

    def __init__(self, data):
        if data[:4] != b"MSFT":
            raise ValueError("not a type library of the MSFT format")
        self.data = bytearray(data)
        self.count = self.word(HEADER_TYPE_COUNT)
        position = HEADER_SIZE + (4 if self.word(HEADER_FLAGS) & FLAG_HELP_DLL else 0)
        expected = [index * RECORD_SIZE for index in range(self.count)]
        if [self.word(position + 4 * index) for index in range(self.count)] != expected:
            raise ValueError("the type records don't follow each other")
        position += 4 * self.count
        self.segments = {}
        for name in SEGMENTS:
            start, length = struct.unpack_from("<ii", self.data, position)
            self.segments[name] = range(start, start + length) if start >= 0 else range(0)
            position += 16
        if len(self.segments["types"]) != self.count * RECORD_SIZE:
            raise ValueError("the type records don't fill their segment")

    def word(self, position):
        return struct.unpack_from("<i", self.data, position)[0]

    def set_word(self, position, value):
        struct.pack_into("<i", self.data, position, value)

    def entries(self, segment, size):
        """Positions of the fixed-size entries of a segment."""
        return range(self.segments[segment].start, self.segments[segment].stop, size)

    def name_entries(self):
        """Positions of the name entries: reference, hash chain, length and hash, padded text."""
        position = self.segments["names"].start
        while position < self.segments["names"].stop:
            yield position
            position += 12 + (self.data[position + 8] + 3) // 4 * 4

    def record(self, index):
        start = self.segments["types"].start + index * RECORD_SIZE
        return self.data[start:start + RECORD_SIZE]

    def name(self, index):
        entry = (self.segments["names"].start +
                 struct.unpack_from("<i", self.record(index), RECORD_NAME)[0])
        return self.data[entry + 12:entry + 12 + self.data[entry + 8]].decode("ascii")


def reorder(library, first):
    """Puts the types named in `first` before all others, which keep their order."""
    names = [library.name(index) for index in range(library.count)]
    missing = [name for name in first if name not in names]
    if missing:
        raise ValueError("no such type: " + ", ".join(missing))
    order = [names.index(name) for name in first]
    order += [index for index in range(library.count) if index not in order]
    moved = {old * RECORD_SIZE: new * RECORD_SIZE for new, old in enumerate(order)}

    def redirect(position):
        reference = library.word(position)
        if reference >= 0 and reference & 3 == 0:
            library.set_word(position, moved[reference])

    records = [library.record(index) for index in order]
    for index, record in enumerate(records):
        start = library.segments["types"].start + index * RECORD_SIZE
        library.data[start:start + RECORD_SIZE] = record
        kind_word = library.word(start) & 0xFFFF
        library.set_word(start, kind_word | index << 16)
        kind = kind_word & 0xF
        if kind in (KIND_INTERFACE, KIND_DISPATCH):
            redirect(start + RECORD_BASE)
        elif kind == KIND_ALIAS:
            raise ValueError(library.name(index) + ": aliases aren't handled")
    for position in library.entries("references", 16):
        redirect(position)
    for position in library.entries("guids", 24):
        redirect(position + 16)
    for position in library.entries("descriptions", 8):
        if library.word(position) & 0x7FFF == VT_USERDEFINED:
            redirect(position + 4)
    for position in library.name_entries():
        redirect(position)


def forget_time(library):
    epoch = b" at " + time.asctime(time.gmtime(0)).encode() + b"\n"
    for position in library.entries("custom_guids", 12):
        guid = library.segments["guids"].start + library.word(position)
        value = library.segments["custom"].start + library.word(position + 4) + 2  # behind its type
        mark = library.word(guid) & 0xFFFFFFFF
        if mark == MARK_SECONDS:
            library.set_word(value, 0)
        elif mark == MARK_SENTENCE:
            text = slice(value + 4, value + 4 + library.word(value))
            changed = re.sub(rb" at .{24}\n$", epoch, library.data[text])
            if epoch not in changed:
                raise ValueError("another sentence than expected tells when it was made")
            library.data[text] = changed


def main():
    parser = argparse.ArgumentParser(
        description="Moves types to the front of a type library and takes the time out of it.")
    parser.add_argument("library", help="type library that widl made")
    parser.add_argument("output", help="file to write")
    parser.add_argument("types", nargs="+", help="names of the types, in the wanted order")
    arguments = parser.parse_args()
    try:
        with open(arguments.library, "rb") as file:
            library = TypeLibrary(file.read())
        reorder(library, arguments.types)
        forget_time(library)
        with open(arguments.output, "wb") as file:
            file.write(library.data)
    except (OSError, ValueError, KeyError) as error:
        sys.exit(f"{arguments.library}: {error}")


if __name__ == "__main__":
    main()
