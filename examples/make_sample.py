#!/usr/bin/env python3
"""Makes the binary files of the examples: of the sample message and of the newsletter.

Needs nothing but Python, and gives the same bytes each time.
"""

import math
import pathlib
import struct
import zlib

SAMPLE = pathlib.Path(__file__).with_name("sample")
PICTURES = pathlib.Path(__file__).with_name("newsletter") / "images"

PAPER, EDGE, SKY = (250, 246, 235), (70, 90, 130), (205, 222, 240)
SAMPLES = [(dx / 3 + 1 / 6, dy / 3 + 1 / 6) for dx in range(3) for dy in range(3)]


def envelope(x, y):
    """The colour of one point of the logo."""
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


NIGHT, GARDEN, CORD = (36, 56, 107), (22, 44, 40), (120, 128, 150)
GLOW, LIGHT, PAGE = (250, 190, 80), (255, 232, 170), (255, 255, 255)
CREAM, SPONGE, BERRY, PLATE = (255, 244, 226), (222, 174, 108), (206, 40, 62), (190, 200, 216)


def lanterns(x, y):
    """A cord of lanterns over a garden at night."""
    for number in range(7):
        centre = 45 + number * 85
        middle = 62 + 22 * math.cos((centre - 300) / 300 * math.pi)
        if math.hypot((x - centre) / 0.8, y - middle) < 17:
            return LIGHT if math.hypot((x - centre) / 0.8, y - middle) < 10 else GLOW
    if abs(y - (45 + 22 * math.cos((x - 300) / 300 * math.pi))) < 1.2:
        return CORD
    if y > 128 + 6 * math.sin(x / 23) + 3 * math.sin(x / 7):
        return GARDEN
    shade = int(y / 12) * 4
    return tuple(min(255, channel + shade) for channel in NIGHT)


def lantern(x, y):
    """One lantern."""
    from_middle = abs(x - 24)
    if y < 10 and from_middle < 1.5 or (9 < y < 12 or 40 < y < 43) and from_middle < 8:
        return CORD
    if 12 <= y <= 40 and math.hypot((x - 24) / 0.9, (y - 26) / 1.1) < 15:
        return LIGHT if math.hypot(x - 24, y - 26) < 7 else GLOW
    return PAGE


def cake(x, y):
    """A piece of strawberry cake on a plate."""
    if math.hypot(x - 24, y - 10) < 6:
        return BERRY
    if 14 < y < 38 and abs(x - 24) < 14:
        return CREAM if y < 19 or 26 < y < 30 else SPONGE
    return PLATE if 38 <= y < 41 and abs(x - 24) < 20 else PAGE


def chunk(kind, data):
    return (struct.pack(">I", len(data)) + kind + data +
            struct.pack(">I", zlib.crc32(kind + data)))


def png(width, height, colour):
    """A picture whose points have the colours that the function says."""
    def pixel(x, y):
        points = [colour(x + dx, y + dy) for dx, dy in SAMPLES]
        return bytes(sum(channel) // len(points) for channel in zip(*points))

    rows = b"".join(b"\0" + b"".join(pixel(x, y) for x in range(width)) for y in range(height))
    header = struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0)
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
    (SAMPLE / "logo.png").write_bytes(png(160, 110, envelope))
    (SAMPLE / "programme.pdf").write_bytes(programme())
    (PICTURES / "lanterns.png").write_bytes(png(600, 150, lanterns))
    (PICTURES / "lantern.png").write_bytes(png(48, 48, lantern))
    (PICTURES / "cake.png").write_bytes(png(48, 48, cake))
