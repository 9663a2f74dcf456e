#!/usr/bin/python3
"""Shows an HTML file and the mail that was made of it side by side, as Chromium draws them.

    gallery.py original.html message.eml FOLDER [--picture picture.png]

Unpacks the message into the folder with Python's own e-mail library, draws both there, and prints
as JSON how many points there are and how many of them differ by more than font smoothing does.
Debian's Python runs it, which has its imaging library. Nothing goes over the network.
"""

import argparse
import email
import email.policy
import json
import pathlib
import re
import subprocess
import sys
import tempfile

from PIL import Image, ImageChops

WIDTH, HEIGHT = 640, 620
SMOOTHING = 64  # by how much a channel of 0 to 255 may differ at the edge of a letter
TIMEOUT_SECONDS = 120


def unpack(raw, folder):
    """Writes the parts of the message into the folder; returns its HTML, which shows them."""
    message = email.message_from_bytes(raw, policy=email.policy.default)
    html, files = None, {}
    for part in message.walk():
        if part.get_content_type() == "text/html":
            html = part.get_content()
        elif part.get_content_disposition() == "inline":
            identifier = part["Content-ID"].strip("<>")
            files[identifier] = f"part-{identifier}-{part.get_filename()}"
            (folder / files[identifier]).write_bytes(part.get_payload(decode=True))
    html = re.sub(r"cid:([^\"']+)", lambda found: files[found[1]], html)
    page = folder / "mail.html"
    page.write_text(html, encoding="utf-8-sig")
    return page


def draw(page, picture, width=WIDTH, height=HEIGHT):
    """Draws the page; returns the picture."""
    with tempfile.TemporaryDirectory(prefix="quorvane-chromium-") as profile:
        done = subprocess.run(
            ["chromium", "--headless", "--no-sandbox", "--disable-gpu", "--no-first-run",
             f"--user-data-dir={profile}", "--host-resolver-rules=MAP * ~NOTFOUND",
             "--disable-background-networking", "--disable-component-update", "--disable-sync",
             "--hide-scrollbars", "--force-device-scale-factor=1", "--disable-lcd-text",
             f"--window-size={width},{height}", f"--screenshot={picture}", page.resolve().as_uri()],
            stdin=subprocess.DEVNULL, capture_output=True, timeout=TIMEOUT_SECONDS)
    if not picture.exists():
        sys.exit("Chromium drew nothing:\n" + done.stderr.decode(errors="replace"))
    return Image.open(picture).convert("RGB")


def differing(a, b):
    """The number of points that differ by more than font smoothing."""
    channels = ImageChops.difference(a, b).split()
    worst = ImageChops.lighter(ImageChops.lighter(channels[0], channels[1]), channels[2])
    return sum(worst.histogram()[SMOOTHING + 1:])


def draw_side_by_side(folder, picture):
    page = folder / "both.html"
    figures = "".join(
        f'<figure><img src="{name}.png" width="448"><figcaption>{caption}</figcaption></figure>'
        for name, caption in (("original", "The file in a browser"),
                              ("mail", "The mail, unpacked by another program")))
    page.write_text(
        '<body style="margin:16px;background:#fff;display:flex;gap:16px;'
        'font:15px DejaVu Sans,sans-serif;color:#445"><style>figure{margin:0}'
        'img{border:1px solid #ccd;display:block;margin-bottom:8px}</style>' + figures,
        encoding="utf-8")
    draw(page, folder / "both.png", 948, 492).save(picture, optimize=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("original", type=pathlib.Path)
    parser.add_argument("message", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--picture", type=pathlib.Path, help="write both of them into this file")
    options = parser.parse_args()
    page = unpack(options.message.read_bytes(), options.folder)
    original = draw(options.original, options.folder / "original.png")
    mail = draw(page, options.folder / "mail.png")
    if options.picture:
        draw_side_by_side(options.folder, options.picture)
    print(json.dumps({"points": WIDTH * HEIGHT, "differing": differing(original, mail)}))


if __name__ == "__main__":
    main()
