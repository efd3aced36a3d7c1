#!/usr/bin/env python3
"""Writes docs/arm.md, the instructions that each operation executes on ARM, from what the benchmark counted.

usage: counts.py [--update] AARCH64_FOLDER ARMHF_FOLDER

The counts stand beside each build folder, as FOLDER.counts: what ondrix_bench --count printed, lines of operation, size
with content, who, instructions. --update keeps the page's lines of operations that were not counted, and prints those
that were.
"""
import collections
import math
import pathlib
import re
import sys

PAGE = pathlib.Path(__file__).resolve().parent.parent / "docs/arm.md"
SIZES = ("1920x1080", "640x480")
PEERS = ("OpenCV", "libyuv")
INTRODUCTION = """# What ARM executes

Instructions per pixel of each operation at 1920x1080, and at 640x480 in the columns at the end: by the reference, by
the SIMD column (NEON; an operation without SIMD code runs its reference there, some with SIMD rows), and by the nearest
calls of OpenCV and libyuv, as the distribution builds them. `gain` is the reference's count and `lead` that of the best
peer over SIMD's. The library was built by COMPILER. Counts are exact, up to what the heap does, but they say nothing of
caches, nor of how long an instruction takes.

`./run bench --arm` writes this page; `./run bench --arm --filter=REGEX` counts some operations, and rewrites their
lines alone.

Where the gain is small, this is why: compilers make vectors of simple references themselves, on 64-bit ARM of most.
Sums of floats are added in the reference's order, one after the other. What compilers load and store of three or four
channels, interleaved, counts as one instruction of 48 or 64 bytes, which processors take apart: SIMD needs more for
differences of floats to a pixel, and is done sooner. On 32-bit ARM, NEON rounds denormal floats to zero, so that
vectors of floats are looked at first, or stay with the reference; and it has no vectors of doubles, which roots and
interpolation need in places, as where corners are refined and ellipses tracked. Warps, remaps, rotated patches and
trees fetch pixels one by one, and so do table lookups without SIMD code; 32-bit ARM finds 32 of the 256 bytes of a
table at a time. A histogram, and with it equalisation and Otsu's threshold, is an extraction, a load, an addition and a
store for each pixel in every column. Lines are searched, and regions grow, pixel by pixel, these by the reference in
all columns; they are counted on one thread. Of windows a few pixels wide, in optical flow and small integral images,
much is the way from row to row and from step to step, which all columns share. Singular values take doubles, two to a
vector, which compilers manage, too: on 64-bit ARM all columns run one loop. A call that works on a few dozen bytes is
mostly the way there: 65 to 90 instructions, some of them the benchmark's. Grey is exact to 16 bits of its weights,
where libyuv's have 8: twice the products.
"""
KINDS = {"64-bit ARM": PEERS, "32-bit ARM": ()}


def compiler(folder):
    """The compiler that the folder was configured for, as "Clang 14"."""
    text = max(pathlib.Path(folder).glob("CMakeFiles/*/CMakeCXXCompiler.cmake")).read_text()
    name, version = (re.search(rf'set\(CMAKE_CXX_COMPILER_{key} "(\w+)', text).group(1) for key in ("ID", "VERSION"))
    return f"{name} {version}"


def counted(folder):
    """Instructions per pixel by row, size and who: {row: {(size, who): count}}."""
    rows = collections.defaultdict(dict)
    for line in pathlib.Path(str(folder) + ".counts").read_text().splitlines():
        operation, size, who, count = line.split("\t")
        extent, _, content = size.partition(" ")
        width, height = map(int, extent.split("x"))
        who = "SIMD" if who == "neon" else who
        rows[operation + (", " + content if content else "")][extent, who] = int(count) / (width * height)
    return rows


def number(value):
    """Three digits and never fewer than the integral part; nothing for what was not counted."""
    if not value:
        return ""
    value = float(f"{value:.3g}") if value < 100 else value
    return f"{value:.{max(0, 2 - math.floor(math.log10(value)))}f}"


def ratios(row, peers):
    """Gain and lead."""
    size = SIZES[0]
    simd = row.get((size, "SIMD"))
    best = min((row[size, peer] for peer in peers if (size, peer) in row), default=None)
    reference = row.get((size, "reference"))
    return [a / simd if a and simd else None for a in (reference, best)]


def table(rows, peers, kept):
    who = ["reference", "SIMD", *peers]
    head = ["operation", "reference", "SIMD", "gain", *peers, *(["lead"] if peers else []), *who]
    lines = dict(kept)
    for name, row in rows.items():
        gain, lead = ratios(row, peers)
        values = [row.get((SIZES[0], w)) for w in who]
        values = values[:2] + [gain] + values[2:] + ([lead] if peers else [])
        values += [row.get((SIZES[1], w)) for w in who]
        lines[name] = "| " + " | ".join([name] + [number(value) for value in values]) + " |"
    top = ["| " + " | ".join(head) + " |", "|---|" + "--:|" * (len(head) - 1)]
    return "\n".join(top + [lines[name] for name in sorted(lines)]) + "\n"


def kept_lines(text, kind):
    section = re.search(rf"^## {kind}\n(.*?)(?=^## |\Z)", text, re.MULTILINE | re.DOTALL)
    return dict(re.findall(r"^(?=\| (odx[^|]*?) \|)(.*)$", section.group(1), re.MULTILINE)) if section else {}


def summary(kind, rows, peers):
    """Geometric means, and who is behind."""
    gains, leads = zip(*(ratios(row, peers) for row in rows.values()))
    text = f"{kind}: {len(rows)} rows"
    for name, found in (("gain", gains), ("lead", leads)):
        found = [value for value in found if value]
        if found:
            mean = math.exp(sum(map(math.log, found)) / len(found))
            text += f"; {name} {mean:.2f} (geometric mean of {len(found)}, {sum(v < 1 for v in found)} below 1)"
    return text


def main():
    arguments = sys.argv[1:]
    update = arguments[:1] == ["--update"]
    folders = arguments[1 if update else 0:]
    counts = dict(zip(KINDS, map(counted, folders)))
    old = PAGE.read_text() if update and PAGE.exists() else ""
    page = INTRODUCTION.replace("COMPILER", compiler(folders[0]))
    for kind, peers in KINDS.items():
        page += f"\n## {kind}\n\n{table(counts[kind], peers, kept_lines(old, kind))}"
        if update:
            print(f"\n{kind}\n\n{table(counts[kind], peers, {})}")
        if counts[kind]:
            print(summary(kind, counts[kind], peers))
    PAGE.write_text(page)


main()
