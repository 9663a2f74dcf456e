"""Makes web pages of a folder's Markdown files, in their places.

    html_texts.py FOLDER

For systems whose browser opens a page and nothing opens Markdown. Links among the files lead to the
pages then. The Markdown files are removed.
"""

import html
import os
import re
import sys
from pathlib import Path

import markdown

STYLE = """
body { max-width: 50em; margin: 0 auto; padding: 1em; font: 16px/1.5 "Segoe UI", sans-serif;
       color: #222; background: #fff }
pre, code { font-family: Consolas, monospace; font-size: 0.9em; background: #f4f4f4 }
pre { padding: 0.7em; overflow-x: auto }
table { display: block; overflow-x: auto; border-collapse: collapse }
th, td { padding: 0.3em 0.6em; border: 1px solid #ccc; text-align: left; vertical-align: top }
img { max-width: 100% }
a { color: #0b5cad }
"""

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>{title}</title>
<style>{style}</style>
</head>
<body>
<p><a href="{manual}">Quorvane manual</a></p>
{body}
</body>
</html>
"""

MANUAL = Path("docs/manual.md")
LINK = re.compile(r'(<a href="(?![a-z]+:)[^"#]*)\.md([#"])')


def page(text, manual):
    """The page of a text. `manual`: where the manual's first page is, as seen from it."""
    title = re.search(r"^# (.*)", text, re.MULTILINE)
    body = markdown.markdown(text, extensions=["toc", "tables", "fenced_code"])
    return PAGE.format(title=html.escape(title[1] if title else "Quorvane"), style=STYLE,
                       manual=manual, body=LINK.sub(r"\1.html\2", body))


def main():
    root = Path(sys.argv[1])
    for path in sorted(root.rglob("*.md")):
        manual = os.path.relpath((root / MANUAL).with_suffix(".html"), path.parent)
        text = page(path.read_text(encoding="utf-8"), manual)
        path.with_suffix(".html").write_text(text, encoding="utf-8")
        path.unlink()


if __name__ == "__main__":
    main()
