#!/usr/bin/env python3
"""Runs the benchmarks of a build and prints, for each job, our median and how many times as long it takes as each
peer of the same run.

    bench_table.py BUILD/bench [FILTER]     FILTER is a regular expression over names such as value/ours
                   --json FILE              also keeps the medians

A benchmark's name is job/who or job/who/size.
"""

import argparse
import collections
import json
import os
import pathlib
import platform
import re
import subprocess
import sys

REPETITIONS = 7


def run(program, pattern):
    command = [str(program), f"--benchmark_repetitions={REPETITIONS}", "--benchmark_report_aggregates_only=true",
               "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.05", "--benchmark_format=json"]
    if pattern:
        command.append(f"--benchmark_filter={pattern}")
    result = subprocess.run(command, capture_output=True, text=True, env={**os.environ, "TZ": "UTC"}, check=False)
    if result.returncode != 0:
        sys.exit(f"{program.name} failed\n{result.stderr}")
    return json.loads(result.stdout) if result.stdout.strip() else {"benchmarks": [], "context": {}}


def medians(report):
    for entry in report["benchmarks"]:
        if entry.get("aggregate_name") == "median":
            scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[entry["time_unit"]]
            yield entry["run_name"], entry["real_time"] * scale, entry.get("bytes_per_row")


def readable(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def describe(folder):
    """Says what the figures were made on, and refuses a build that isn't optimised."""
    cache = dict(line.split("=", 1) for line in (folder.parent / "CMakeCache.txt").read_text().splitlines()
                 if "=" in line and not line.startswith(("#", "//")))
    if cache.get("CMAKE_BUILD_TYPE:STRING") != "Release":
        sys.exit("The benchmarks are only worth something in an optimised build: configure the preset release.")
    model = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    compiler = subprocess.run([cache["CMAKE_CXX_COMPILER:FILEPATH"], "--version"], stdout=subprocess.PIPE, text=True,
                              check=True).stdout.splitlines()[0]
    print(f"machine   {model[1] if model else platform.machine()}, {os.cpu_count()} cores")
    print(f"compiler  {compiler}, {cache['CMAKE_CXX_FLAGS_RELEASE:STRING']}")
    print(f"tarnutil  {cache['CMAKE_PROJECT_VERSION:STATIC']}")
    print("Our median, and how many times as long it is as each peer's, of the same run:\n")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("filter", nargs="?", default="")
    parser.add_argument("--json", type=pathlib.Path)
    arguments = parser.parse_args()
    describe(arguments.folder)

    jobs = collections.defaultdict(dict)
    memory = {}
    for program in sorted(arguments.folder.glob("*_bench")):
        report = run(program, arguments.filter)
        for name, time, bytes_per_row in medians(report):
            job, who, *size = [part for part in name.split("/") if not part.startswith("iterations:")]
            key = "/".join([job, *size])
            jobs[key][who] = time
            if bytes_per_row is not None:
                memory[key] = bytes_per_row
    width = max((len(job) for job in jobs), default=0)
    for job, times in sorted(jobs.items(), key=lambda item: [(part.isdigit(), part.zfill(9)) for part in item[0].split("/")]):
        ours = times.get("ours")
        if job in memory:
            print(f"{job:{width}}  {memory[job]:.1f} bytes a row")
            continue
        if ours is None:
            continue
        peers = "  ".join(f"{who} x{ours / time:.2f}" for who, time in times.items() if who != "ours")
        print(f"{job:{width}}  {readable(ours):>8}  {peers}")
    if arguments.json:
        arguments.json.write_text(json.dumps({"medians": jobs, "bytes_per_row": memory}, indent=1) + "\n")


if __name__ == "__main__":
    main()
