#!/usr/bin/env python3
"""Runs the differential test on fresh random seeds until the time is over.

usage: soak.py DIFFERENTIAL_TESTS MINUTES JOBS

Prints how many calls were compared; of a failure the seed and the command that repeats it, and ends with 1.
"""
import concurrent.futures
import os
import pathlib
import re
import secrets
import subprocess
import sys
import time

CASES = 100  # of each operation in a run, which takes some seconds


def run(program):
    seed = secrets.randbelow(2**62) + 1000  # what is below are the sizes of every run
    environment = dict(os.environ, ONDRIX_TEST_SEED=str(seed), ONDRIX_TEST_CASES=str(CASES))
    result = subprocess.run([program, "--gtest_filter=Operations/*", "--gtest_brief=1"], env=environment,
                            capture_output=True, check=False)
    text = (result.stdout + result.stderr).decode(errors="replace")
    calls = sum(int(number) for number in re.findall(r"compared calls: (\d+)", text))
    return calls, "" if result.returncode == 0 else f"a run from seed {seed} on:\n{text}"


def main():
    program, minutes, jobs = str(pathlib.Path(sys.argv[1]).resolve()), float(sys.argv[2]), int(sys.argv[3])
    end = time.monotonic() + 60 * minutes
    calls = failures = 0

    def worker(_):
        nonlocal calls, failures
        while time.monotonic() < end:
            compared, failure = run(program)
            calls += compared
            if failure:
                failures += 1
                print(failure, flush=True)

    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        list(pool.map(worker, range(jobs)))
    print(f"{calls} calls compared, {failures} runs failed")
    sys.exit(1 if failures else 0)


main()
