#!/usr/bin/env python3
"""Runs clang-tidy on every source file once, and remembers the files without findings.

usage: tidy.py CLANG_TIDY BUILD_FOLDER JOBS

The commands are those of the build folder; of a kernel that is compiled for several targets the first one counts. A
file without findings is looked at again when it, a header, the configuration or the tool has changed.
"""
import concurrent.futures
import hashlib
import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("src", "tests", "tools", "examples", "bench")


def digest(*parts):
    return hashlib.sha256(b"\0".join(parts)).hexdigest()


def main():
    tool, build, jobs = sys.argv[1], pathlib.Path(sys.argv[2]).resolve(), int(sys.argv[3])
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = pathlib.Path(entry["file"]).resolve()
        if ROOT in source.parents and source.relative_to(ROOT).parts[0] in FOLDERS:
            entry["command"] = entry["command"].replace("ccache ", "", 1)
            commands.setdefault(source, entry)

    work = build / "tidy"
    work.mkdir(exist_ok=True)
    (work / "compile_commands.json").write_text(json.dumps(list(commands.values())))
    clean = work / "clean"
    known = set(clean.read_text().split()) if clean.exists() else set()

    version = subprocess.run([tool, "--version"], capture_output=True, check=True).stdout
    headers = [path for folder in ("include", *FOLDERS) for path in sorted((ROOT / folder).rglob("*"))
               if path.suffix in (".h", ".def", ".inc")]
    settings = sorted(path for path in ROOT.rglob(".clang-tidy") if "build" not in path.relative_to(ROOT).parts)
    common = digest(version, *(path.read_bytes() for path in (*settings, *headers)))
    keys = {source: digest(common.encode(), entry["command"].encode(), source.read_bytes())
            for source, entry in commands.items()}

    def findings(source):
        run = subprocess.run([tool, "-quiet", "-p", str(work), str(source)], capture_output=True, text=True,
                             check=False)
        return "" if run.returncode == 0 else run.stdout or run.stderr

    todo = [source for source in commands if keys[source] not in known]
    good = True
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for source, text in zip(todo, pool.map(findings, todo)):
            if text:
                good = False
                print(text, flush=True)
            else:
                known.add(keys[source])
    clean.write_text("\n".join(sorted(known & set(keys.values()))))
    print(f"{len(todo)} files looked at, {len(commands) - len(todo)} known to be clean")
    sys.exit(0 if good else 1)


main()
