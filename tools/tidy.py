#!/usr/bin/env python3
"""Runs clang-tidy on every source file once, and remembers the files without findings.

usage: tidy.py CLANG_TIDY BUILD_FOLDER JOBS [FILE...]

The commands are those of the build folder; of a kernel that is compiled for several targets the first one counts. A
file without findings is looked at again when it, a header that it includes, the configuration or the tool has changed.
Of what was not built yet, which headers it includes is not known: all of them count.

With files, only those are looked at, and of headers the sources that include them.
"""
import concurrent.futures
import hashlib
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("src", "tests", "tools", "examples", "bench")


def digest(*parts):
    return hashlib.sha256(b"\0".join(parts)).hexdigest()


def own(path):
    return ROOT in path.parents and path.relative_to(ROOT).parts[0] in ("include", *FOLDERS)


def read_commands(build):
    """The command of each source of ours."""
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = pathlib.Path(entry["file"]).resolve()
        if own(source):
            entry["command"] = entry["command"].replace("ccache ", "", 1)
            commands.setdefault(source, entry)
    return commands


def read_headers(build):
    """Our headers that each object was built from, as the compiler told Ninja."""
    headers, paths = {}, {}
    text = subprocess.run(["ninja", "-C", str(build), "-t", "deps"], capture_output=True, text=True, check=False).stdout
    for line in text.splitlines():
        if line.startswith(" "):
            name = line.strip()
            if name not in paths:
                paths[name] = (build / name).resolve()
            if own(paths[name]):
                headers[last].add(paths[name])
        elif line.endswith("(VALID)"):
            last = line.split(":")[0]
            headers[last] = set()
        elif line:
            last = ""
            headers[last] = set()
    return headers


def main():
    tool, build, jobs = sys.argv[1], pathlib.Path(sys.argv[2]).resolve(), int(sys.argv[3])
    wanted = {pathlib.Path(name).resolve() for name in sys.argv[4:]}
    commands = read_commands(build)

    work = build / "tidy"
    work.mkdir(exist_ok=True)
    (work / "compile_commands.json").write_text(json.dumps(list(commands.values())))
    clean = work / "clean"
    known = set(clean.read_text().split()) if clean.exists() else set()

    version = subprocess.run([tool, "--version"], capture_output=True, check=True).stdout
    settings = sorted(path for path in ROOT.rglob(".clang-tidy") if "build" not in path.relative_to(ROOT).parts)
    common = digest(version, *(path.read_bytes() for path in settings)).encode()
    every = {path for folder in ("include", *FOLDERS) for path in (ROOT / folder).rglob("*")
             if path.suffix in (".h", ".def", ".inc")}
    built, contents = read_headers(build), {}

    def content(path):
        if path not in contents:
            contents[path] = digest(path.read_bytes()).encode() if path.exists() else b""
        return contents[path]

    def read_by(source):
        target = re.search(r" -o (\S+)", commands[source]["command"])
        return built.get(target.group(1), every) | {source}

    reads = {source: read_by(source) for source in commands}
    keys = {source: digest(common, entry["command"].encode(), *(content(path) for path in sorted(reads[source])))
            for source, entry in commands.items()}

    def findings(source):
        run = subprocess.run([tool, "-quiet", "-p", str(work), str(source)], capture_output=True, text=True,
                             check=False)
        return "" if run.returncode == 0 else run.stdout or run.stderr

    unknown = wanted - set().union(*reads.values())
    for path in sorted(unknown):
        print(f"{path}: nothing that is built reads it")
    chosen = [source for source in commands if not wanted or wanted & reads[source]]
    todo = [source for source in chosen if keys[source] not in known]
    good = not unknown
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for source, text in zip(todo, pool.map(findings, todo)):
            if text:
                good = False
                print(text, flush=True)
            else:
                known.add(keys[source])
    clean.write_text("\n".join(sorted(known & set(keys.values()))))
    print(f"{len(todo)} files looked at, {len(chosen) - len(todo)} known to be clean")
    sys.exit(0 if good else 1)


main()
