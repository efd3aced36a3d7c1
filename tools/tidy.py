#!/usr/bin/env python3
"""Runs clang-tidy on every source file once, and remembers the files without findings.

usage: tidy.py CLANG_TIDY BUILD_FOLDER JOBS [FILE...]

The commands are those of the build folder; of a kernel that is compiled for several targets the first one counts. A
file without findings is looked at again when it, a header that it includes, the configuration or the tool has changed.
Of what was not built yet, which headers it includes is not known: all of them count.

Most of the time goes into what the sources include: where the sources of a folder can be read as one, some at a time
are. When there is anything to find in them, or they cannot be read as one, each is looked at alone.

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
# Folders whose sources share names, or include little else than their own.
ALONE = ("src/cpu", "src/orlan", "tests/remote", "tests/simd/targets", "examples/demo")
MOST_AT_ONCE = 8


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


def bundle(sources, commands):
    """Lists of sources that are looked at together: of a folder, with the same flags. The longest come first."""
    groups = {}
    for source in sources:
        folder = str(source.parent.relative_to(ROOT))
        flags = re.sub(r" -o \S+ -c \S+| -O\d", "", commands[source]["command"])
        groups.setdefault(source if folder in ALONE else (folder, flags), []).append(source)
    bundles = []
    for group in groups.values():
        count = -(-len(group) // MOST_AT_ONCE)
        bundles += [group[first::count] for first in range(count)]
    return sorted(bundles, key=lambda some: -sum(20000 + source.stat().st_size for source in some))


def main():
    tool, build, jobs = sys.argv[1], pathlib.Path(sys.argv[2]).resolve(), int(sys.argv[3])
    wanted = {pathlib.Path(name).resolve() for name in sys.argv[4:]}
    commands = read_commands(build)

    work = build / "tidy"
    work.mkdir(exist_ok=True)
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

    def findings_of_each(sources):
        if len(sources) > 1 and not findings(united[sources[0]]):
            return [""] * len(sources)
        return [findings(source) for source in sources]

    unknown = wanted - set().union(*reads.values())
    for path in sorted(unknown):
        print(f"{path}: nothing that is built reads it")
    chosen = [source for source in commands if not wanted or wanted & reads[source]]
    todo = [source for source in chosen if keys[source] not in known]
    for path in settings:  # which hold below their folder
        copy = work / path.relative_to(ROOT)
        copy.parent.mkdir(parents=True, exist_ok=True)
        copy.write_bytes(path.read_bytes())
    bundles = bundle(todo, commands)
    united, entries = {}, list(commands.values())
    for number, sources in enumerate(bundles):
        united[sources[0]] = path = work / sources[0].relative_to(ROOT).parent / f"united{number}.cpp"
        path.parent.mkdir(parents=True, exist_ok=True)
        # Not included, because some checks look at the main file alone.
        path.write_text("\n".join(source.read_text() for source in sources))
        command = re.sub(r" -o \S+ -c \S+", f" -iquote {sources[0].parent} -c {path}", commands[sources[0]]["command"])
        entries.append({**commands[sources[0]], "file": str(path), "command": command})
    (work / "compile_commands.json").write_text(json.dumps(entries))
    good = not unknown
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for sources, texts in zip(bundles, pool.map(findings_of_each, bundles)):
            for source, text in zip(sources, texts):
                if text:
                    good = False
                    print(text, flush=True)
                else:
                    known.add(keys[source])
    clean.write_text("\n".join(sorted(known & set(keys.values()))))
    print(f"{len(todo)} files looked at, {len(chosen) - len(todo)} known to be clean")
    sys.exit(0 if good else 1)


main()
