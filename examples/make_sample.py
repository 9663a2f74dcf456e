#!/usr/bin/env python3
"""Makes the binary files of the sample message: sample/logo.png and sample/programme.pdf.

Needs nothing but Python, and gives the same bytes each time.
"""

import pathlib
import struct
import zlib

SAMPLE = pathlib.Path(__file__).with_name("sample")

WIDTH, HEIGHT = 160, 110
PAPER, EDGE, SKY = (250, 246, 235), (70, 90, 130), (205, 222, 240)
SAMPLES = [(dx / 3 + 1 / 6, dy / 3 + 1 / 6) for dx in range(3) for dy in range(3)]


def colour(x, y):
    """The colour of one point of the picture, an envelope."""
    left, top, right, bottom = 14, 14, 146, 96
    if not (left <= x <= right and top <= y <= bottom):
        return SKY
    if min(x - left, right - x, y - top, bottom - y) < 3:
        return EDGE
    slope = 46 / ((right - left) / 2)
    from_side = min(x - left, right - x)
    if abs(y - (top + from_side * slope)) < 1.8:  # the flap
        return EDGE
    if y > 55 and abs(y - (bottom - from_side * slope * 0.8)) < 1.2:  # the lower folds
        return EDGE
    return PAPER


def pixel(x, y):
    points = [colour(x + dx, y + dy) for dx, dy in SAMPLES]
    return bytes(sum(channel) // len(points) for channel in zip(*points))


def chunk(kind, data):
    return (struct.pack(">I", len(data)) + kind + data +
            struct.pack(">I", zlib.crc32(kind + data)))


def picture():
    rows = b"".join(b"\0" + b"".join(pixel(x, y) for x in range(WIDTH)) for y in range(HEIGHT))
    header = struct.pack(">IIBBBBB", WIDTH, HEIGHT, 8, 2, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
            chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


PROGRAMME = [(22, "Midsummer at Café Björk"), (12, "Saturday, 20 June"), (12, ""),
             (12, "15:00  Coffee and strawberry cake"), (12, "17:00  Fiddles in the garden"),
             (12, "19:30  Dinner under the lanterns"), (12, "22:00  The fire is lit")]


def page():
    lines, y = [], 760
    for size, text in PROGRAMME:
        y -= size * 1.8
        lines.append(b"BT /F1 %d Tf 72 %d Td (%s) Tj ET" % (size, y, text.encode("cp1252")))
    return b"\n".join(lines)


def programme():
    """A document of one page (PDF 1.4)."""
    content = zlib.compress(page(), 9)
    objects = [
        b"<< /Type /Catalog /Pages 2 0 R >>",
        b"<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R "
        b"/Resources << /Font << /F1 5 0 R >> >> >>",
        b"<< /Length %d /Filter /FlateDecode >>\nstream\n%s\nendstream" % (len(content), content),
        b"<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>",
    ]
    out, places = b"%PDF-1.4\n%\xe2\xe3\xcf\xd3\n", []
    for number, body in enumerate(objects, 1):
        places.append(len(out))
        out += b"%d 0 obj\n%s\nendobj\n" % (number, body)
    table = b"".join(b"%010d 00000 n \n" % place for place in places)
    return out + (b"xref\n0 %d\n0000000000 65535 f \n%strailer\n<< /Size %d /Root 1 0 R >>\n"
                  b"startxref\n%d\n%%%%EOF\n" % (len(objects) + 1, table, len(objects) + 1, len(out)))


if __name__ == "__main__":
    (SAMPLE / "logo.png").write_bytes(picture())
    (SAMPLE / "programme.pdf").write_bytes(programme())
