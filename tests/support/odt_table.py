#!/usr/bin/env python3
"""Prints the cells of the only table of an OpenDocument text as CSV.

Usage: odt_table.py FILE
Exit status: 0 printed, 1 when the document has no table or more than one.
"""
import csv
import sys
import xml.etree.ElementTree as ElementTree
import zipfile

TABLE = "{urn:oasis:names:tc:opendocument:xmlns:table:1.0}"
TEXT = "{urn:oasis:names:tc:opendocument:xmlns:text:1.0}"


def text_of(element):
    """All text below an element, with the blanks that the format counts instead of writing them."""
    text = element.text or ""
    for child in element:
        if child.tag == TEXT + "s":
            text += " " * int(child.get(TEXT + "c", "1"))
        elif child.tag == TEXT + "tab":
            text += "\t"
        elif child.tag == TEXT + "line-break":
            text += "\n"
        else:
            text += text_of(child)
        text += child.tail or ""
    return text


def main():
    with zipfile.ZipFile(sys.argv[1]) as document:
        tables = list(ElementTree.fromstring(document.read("content.xml")).iter(TABLE + "table"))
    if len(tables) != 1:
        print(f"{sys.argv[1]}: {len(tables)} tables", file=sys.stderr)
        return 1
    out = csv.writer(sys.stdout)
    for row in tables[0].iter(TABLE + "table-row"):
        out.writerow(["\n".join(text_of(p) for p in cell.iter(TEXT + "p")) for cell in row.iter(TABLE + "table-cell")])
    return 0


if __name__ == "__main__":
    sys.exit(main())
