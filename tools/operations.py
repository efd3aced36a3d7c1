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


def purposes(header):
    """What the header says of each operation it declares: the first sentence of its comment, or the group's name."""
    purpose, group, comment = {}, "", []
    for line in header.read_text().splitlines():
        if line.startswith("/// \\name "):
            group, comment = line[len("/// \\name "):], []
        elif re.match(r"/// ?@", line):
            comment = []
        elif line.startswith("///"):
            comment.append(line[3:].strip())
        elif declared := re.match(r"ODX_API[^(;]*\b(odx\w+)\(", line):
            sentence = re.split(r"[.:](?:\s|$)", " ".join(comment))[0].strip()
            purpose[declared[1]] = sentence or group
            comment = []
        elif not line.startswith(" "):
            comment = []
    return purpose


def operations():
    """Name, purpose and columns of each operation that exists, by the header that declares it."""
    columns = {fields[0]: fields[2] for kind, fields, _ in lines() if kind == "OPERATION"}
    pages = {}
    for kind, fields, family in lines():
        name, base, written = fields[0], fields[0 if kind == "OPERATION" else 1], fields[2]
        if written == "none":
            continue
        header = ROOT / f"include/ondrix/{family}.h"
        purpose = purposes(header).get(name)
        if not purpose:
            sys.exit(f"operations.py: {header.name} does not say what {name} does")
        where = ", ".join(COLUMNS[column] for column in columns[base] if column in COLUMNS)
        pages.setdefault(header, []).append((name, purpose.replace("|", "\\|"), where))
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
                 "| Operation | What it does | Runs as |", "|---|---|---|"]
        text += ["| `{}` | {} | {} |".format(*row) for row in sorted(rows, key=lambda row: row[0].lower())]
        text.append("")
    return "\n".join(text)


def main():
    wanted = page()
    if "--check" not in sys.argv[1:]:
        PAGE.write_text(wanted)
    elif not PAGE.exists() or PAGE.read_text() != wanted:
        sys.exit("docs/operations.md is out of date: run tools/operations.py")


main()
