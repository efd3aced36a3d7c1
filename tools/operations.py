#!/usr/bin/env python3
"""Writes docs/operations.md, the page of the operations that exist, from the library's own lists.

usage: operations.py          writes the page
       operations.py --check  fails if the page is not what would be written
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/operations.md"
LISTS = ROOT / "src/frame/operations"
COLUMNS = {"C": "reference", "V": "SIMD", "X": "remote"}


def lines():
    """The kind, name and other fields of each line of the lists, and its family."""
    for path in sorted(LISTS.glob("*.def")):
        for kind, arguments in re.findall(r"^ODX_(OPERATION|VERSION)\(([^\n]*)\)$", path.read_text(), re.MULTILINE):
            fields = [argument.strip() for argument in arguments.split(",")]
            yield kind, fields[1:] if kind == "OPERATION" else fields, path.stem


def operations():
    """Name and columns of each operation that exists, by the header that declares it."""
    columns = {fields[0]: fields[2] for kind, fields, _ in lines() if kind == "OPERATION"}
    pages = {}
    for kind, fields, family in lines():
        name, base, written = fields[0], fields[0 if kind == "OPERATION" else 1], fields[2]
        if written != "none":
            where = ", ".join(COLUMNS[column] for column in columns[base])
            pages.setdefault(ROOT / f"include/ondrix/{family}.h", []).append((name, where))
    return pages


def title(header):
    """The first sentence of the header's own description."""
    comment = re.search(r"/// \\file .*\n((?:/// .*\n)+)", header.read_text()).group(1)
    return re.split(r"(?<=\.)\s", comment.replace("/// ", "").replace("\n", " "))[0]


def page():
    pages = operations()
    total = sum(len(rows) for rows in pages.values())
    text = ["# Operations", "",
            f"The {total} operations that exist, and where each can run. This page is written by `tools/operations.py`.",
            "", "Some references call inner loops that the SIMD modes replace, too: the scores of corners, and rows of RGB.", ""]
    for header, rows in sorted(pages.items(), key=lambda item: item[0].name):
        text += [f"## [{header.name}](../include/ondrix/{header.name})", "", title(header), "",
                 "| Operation | Runs as |", "|---|---|"]
        text += [f"| `{name}` | {where} |" for name, where in sorted(rows, key=lambda row: row[0].lower())]
        text.append("")
    return "\n".join(text)


def main():
    wanted = page()
    if "--check" not in sys.argv[1:]:
        PAGE.write_text(wanted)
    elif not PAGE.exists() or PAGE.read_text() != wanted:
        sys.exit("docs/operations.md is out of date: run tools/operations.py")


main()
