#!/usr/bin/env python3
"""Fails when a link of a site leads to a file or a place in a page that isn't there.

    check_anchors.py SITE
"""

import sys
import urllib.parse
from html.parser import HTMLParser
from pathlib import Path


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.places, self.links = set(), []
        self.feed(path.read_text("utf-8"))

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        self.places |= {attributes[name] for name in ("id", "name") if attributes.get(name)}
        self.links += [attributes[name] for name in ("href", "src") if attributes.get(name)]


def faults(site):
    pages = {path: Page(path) for path in site.rglob("*.html")}
    for path, page in pages.items():
        for link in page.links:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme or parts.netloc:
                continue
            target = path
            if parts.path:
                target = (path.parent / urllib.parse.unquote(parts.path)).resolve()
            if target.is_dir():
                target = target / "index.html"
            if not target.exists():
                yield f"{path.relative_to(site)}: {link} isn't there"
            elif parts.fragment and target in pages and parts.fragment not in pages[target].places:
                yield f"{path.relative_to(site)}: {link}: there is no such place in the page"


def main():
    found = sorted(set(faults(Path(sys.argv[1]).resolve())))
    sys.exit("\n".join(found) if found else 0)


if __name__ == "__main__":
    main()
