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
COLUMNS = {"none": "", "C": "reference", "CV": "reference, SIMD"}


def lines(path, macros):
    """The arguments of each line of a list that starts with one of the macros."""
    text = (ROOT / path).read_text()
    for macro, arguments in re.findall(rf"^({macros})\(([^\n]*)\)$", text, re.MULTILINE):
        yield macro, [argument.strip() for argument in arguments.split(",")]


def operations():
    """Pairs of an operation and its columns, by the header that declares it."""
    remote = {arguments[0] for _, arguments in lines("src/dsp/remote.def", "ODX_REMOTE(?:_SCALAR|_STATUS)?")}
    headers = {}
    for header in sorted((ROOT / "include/ondrix").glob("*.h")):
        for name in re.findall(r"^ODX_API[^(;]*\b(odx\w+)\(", header.read_text(), re.MULTILINE):
            headers[name] = header

    pages = {}
    for macro, arguments in lines("src/frame/operations.def", "ODX_OPERATION|ODX_VERSION"):
        name, columns = arguments[1 if macro == "ODX_OPERATION" else 0], arguments[-1]
        base = arguments[1]  # whose implementations it has; its own name for most
        if columns == "none":
            continue
        if name not in headers:
            sys.exit(f"operations.py: no header declares {name}")
        where = COLUMNS[columns] + (", remote" if base in remote else "")
        pages.setdefault(headers[name], []).append((name, where))
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
