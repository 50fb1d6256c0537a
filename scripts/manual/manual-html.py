#!/usr/bin/python3
"""Turns the manual (Markdown) into one HTML page that any browser opens.

Usage: manual-html.py SOURCE.md TARGET.html

Runs with Debian's python3-markdown. Headings get the same anchors as the Markdown's own links
("#76-import-records"), so the table of contents and the cross references work in the page.
"""
import re
import sys
import unicodedata

import markdown

STYLE = """
body { font-family: "Open Sans", "DejaVu Sans", sans-serif; font-size: 16px; line-height: 1.5;
       color: #1d2630; background: #fff; max-width: 58em; margin: 0 auto; padding: 1.5em 2em 4em; }
h1, h2, h3 { color: #104a7a; line-height: 1.25; }
h1 { font-size: 2em; border-bottom: 3px solid #159; padding-bottom: .3em; }
h2 { font-size: 1.5em; margin-top: 2em; border-bottom: 1px solid #cfd8e0; padding-bottom: .2em; }
h3 { font-size: 1.2em; margin-top: 1.6em; }
a { color: #0b5cad; }
img { max-width: 100%; border: 1px solid #cfd8e0; border-radius: 4px; }
table { border-collapse: collapse; margin: 1em 0; }
th, td { border: 1px solid #cfd8e0; padding: .35em .7em; text-align: left; vertical-align: top; }
th { background: #eef3f7; }
code, pre { font-family: "DejaVu Sans Mono", monospace; font-size: .92em; background: #f3f6f9; }
code { padding: .1em .3em; border-radius: 3px; }
pre { padding: .8em 1em; overflow-x: auto; border-radius: 4px; }
pre code { padding: 0; background: none; }
hr { border: 0; border-top: 1px solid #cfd8e0; margin: 2.5em 0; }
em { color: #3c4b59; }
@media print { body { max-width: none; } a { color: inherit; } }
"""


def slug(text, separator):
    """The anchor a Markdown viewer gives a heading: lower case, words joined by '-',
    punctuation dropped."""
    text = unicodedata.normalize("NFKC", text).strip().lower()
    text = re.sub(r"[^\w\- ]", "", text)
    return text.replace(" ", separator)


def main():
    source, target = sys.argv[1], sys.argv[2]
    with open(source, encoding="utf-8") as f:
        text = f.read()
    title = next((line[2:].strip() for line in text.splitlines() if line.startswith("# ")),
                 "Manual")
    body = markdown.markdown(
        text,
        extensions=["tables", "fenced_code", "toc", "sane_lists"],
        extension_configs={"toc": {"slugify": slug}},
        output_format="html5",
    )
    page = ("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
            f"<title>{title}</title>\n<style>{STYLE}</style>\n</head>\n<body>\n{body}\n"
            "</body>\n</html>\n")
    with open(target, "w", encoding="utf-8") as f:
        f.write(page)


if __name__ == "__main__":
    main()
