#!/usr/bin/env python3
"""Runs the benchmarks of a build and prints, for each job, our median and how many times as long it takes as each
peer of the same run, and whether it reaches the goals of bench/goals.txt.

    bench_table.py BUILD/bench [FILTER]     FILTER is a regular expression over names such as value/ours
                   --json FILE              also keeps the figures, for bench_picture.py
                   --page FILE              also puts the table into a page, in the place of the last one
                   --strict                 fails if a goal is missed

A benchmark's name is job/who or job/who/size.
"""

import argparse
import collections
import json
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys

REPETITIONS = 7
WIDTH = 30  # of a job's name
GOALS = pathlib.Path(__file__).parent.parent / "bench" / "goals.txt"


class Output:
    """What is printed, kept for the page."""

    def __init__(self):
        self.lines = []

    def say(self, line=""):
        self.lines.append(line)
        print(line, flush=True)


class Figures:
    """Medians in nanoseconds by job and who, and bytes a row by job; of each of our jobs also how far its repetitions
    differ, and how many times as long as the processor worked it took."""

    def __init__(self):
        self.medians = collections.defaultdict(dict)
        self.bytes_a_row = {}
        self.spreads = []
        self.waits = []

    def take(self, report):
        """Answers the jobs of the report."""
        taken = set()
        for entry in report["benchmarks"]:
            name, who, *size = [part for part in entry["run_name"].split("/") if not part.startswith("iterations:")]
            job = "/".join([name, *size])
            taken.add(job)
            if entry["aggregate_name"] == "cv" and who == "ours" and "bytes_per_row" not in entry:
                self.spreads.append(entry["real_time"])
            if entry["aggregate_name"] != "median":
                continue
            if "bytes_per_row" in entry:
                self.bytes_a_row[job] = entry["bytes_per_row"]
            else:
                scale = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[entry["time_unit"]]
                self.medians[job][who] = entry["real_time"] * scale
                if who == "ours":
                    self.waits.append(entry["real_time"] / entry["cpu_time"])
        return sorted(taken, key=by_name_and_size)

    def ratios(self, job):
        """The peers and how many times as long as each we take, the fastest peer first."""
        times = self.medians[job]
        peers = sorted((time, who) for who, time in times.items() if who != "ours")
        return [(who, times["ours"] / time) for time, who in peers] if "ours" in times else []

    def sweeps(self):
        """Our time for one row, byte or key, by size, of each job with three sizes or more."""
        found = collections.defaultdict(dict)
        for job, times in self.medians.items():
            name, _, size = job.partition("/")
            if size and "ours" in times:
                found[name][int(size)] = times["ours"] / int(size)
        return {name: dict(sorted(sizes.items())) for name, sizes in sorted(found.items()) if len(sizes) >= 3}


class Goals:
    """The limits of goals.txt, and which of them were met."""

    def __init__(self):
        rows = [line.split() for line in GOALS.read_text().splitlines() if line and not line.startswith("#")]
        self.limits = {(job, peer): float(limit) for job, peer, limit in rows}
        self.asked = set()
        self.results = []

    def verdict(self, job, peer, figure):
        """What is printed behind a figure: nothing, its goal, or that it is missed."""
        for key in ((job, peer), (job.partition("/")[0], peer)):
            if key in self.limits:
                limit, met = self.limits[key], figure <= self.limits[key]
                self.asked.add(key)
                self.results.append({"job": job, "peer": peer, "figure": figure, "limit": limit, "met": met})
                return f" (goal {limit:g})" if met else f" (goal {limit:g} MISSED)"
        return ""

    def missed(self):
        return [result for result in self.results if not result["met"]]

    def never_measured(self):
        return [" ".join(key) for key in self.limits if key not in self.asked]


def by_name_and_size(job):
    name, _, size = job.partition("/")
    return name, int(size or 0)


def run(program, pattern):
    command = [str(program), f"--benchmark_repetitions={REPETITIONS}", "--benchmark_report_aggregates_only=true",
               "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.05", "--benchmark_format=json"]
    if pattern:
        command.append(f"--benchmark_filter={pattern}")
    result = subprocess.run(command, capture_output=True, text=True, env={**os.environ, "TZ": "UTC"}, check=False)
    if result.returncode != 0:
        sys.exit(f"{program.name} failed\n{result.stderr}")
    return json.loads(result.stdout) if result.stdout.strip() else {"benchmarks": [], "context": {}}


def readable_time(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def readable_ratio(ratio):
    if ratio >= 100:
        return f"x{ratio:.0f}"
    return f"x{ratio:.3g}" if ratio >= 10 else f"x{ratio:.2f}" if ratio >= 0.1 else f"x{ratio:.2g}"


def describe(folder):
    """Answers what the figures are made on, and refuses a build that isn't optimised."""
    cache = dict(line.split("=", 1) for line in (folder.parent / "CMakeCache.txt").read_text().splitlines()
                 if "=" in line and not line.startswith(("#", "//")))
    if cache.get("CMAKE_BUILD_TYPE:STRING") != "Release":
        sys.exit("The benchmarks are only worth something in an optimised build: configure the preset release.")
    model = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    compiler = subprocess.run([cache["CMAKE_CXX_COMPILER:FILEPATH"], "--version"], stdout=subprocess.PIPE, text=True,
                              check=True).stdout.splitlines()[0]
    commit = subprocess.run(["git", "describe", "--always", "--dirty", "--exclude=*"], cwd=GOALS.parent,
                            stdout=subprocess.PIPE, text=True, check=True).stdout.strip()
    return {"machine": f"{model[1] if model else platform.machine()}, {os.cpu_count()} cores",
            "compiler": f"{compiler}, {cache['CMAKE_CXX_FLAGS_RELEASE:STRING']}",
            "tarnutil": f"{cache['CMAKE_PROJECT_VERSION:STATIC']}, commit {commit}"}


def print_jobs(output, figures, goals, jobs):
    for job in jobs:
        if job in figures.bytes_a_row:
            figure = figures.bytes_a_row[job]
            output.say(f"{job:{WIDTH}}  {figure:.1f} bytes a row{goals.verdict(job, 'bytes', figure)}")
        elif "ours" in figures.medians[job]:
            peers = "  ".join(f"{who} {readable_ratio(ratio)}{goals.verdict(job, who, ratio)}"
                              for who, ratio in figures.ratios(job))
            output.say(f"{job:{WIDTH}}  {readable_time(figures.medians[job]['ours']):>8}  {peers}".rstrip())


def print_growth(output, figures, goals):
    sweeps = figures.sweeps()
    if not sweeps:
        return
    output.say("\nGrowth: our time for one row, byte, key, text, option or day at each size, and how many times as long it "
               "is at the\nlargest as at the smallest")
    for job, sizes in sweeps.items():
        times = list(sizes.values())
        growth = times[-1] / times[0]
        steps = "  ".join(f"{size}: {readable_time(time)}" for size, time in sizes.items())
        output.say(f"{job:{WIDTH}}  {steps}  {readable_ratio(growth)}{goals.verdict(job, 'growth', growth)}")


def print_end(output, figures, goals):
    if figures.spreads and figures.waits:
        spread, wait = 100 * statistics.median(figures.spreads), statistics.median(figures.waits)
        output.say(f"spread    {spread:.1f} % between our repetitions; {wait:.2f} times the processor's time, 1.00 on a quiet "
                   "machine")
    missed = goals.missed()
    output.say(f"\n{len(goals.results) - len(missed)} goals met, {len(missed)} missed" + (":" if missed else "."))
    for result in missed:
        output.say(f"  {result['job']}, {result['peer']}: {result['figure']:.3g} instead of {result['limit']:g}")


PLACE = re.compile(r"<!-- table -->\n\n```\n.*?```\n", re.DOTALL)


def require_place(page):
    if not PLACE.search(page.read_text()):
        sys.exit(f"{page} has no place for the table, which is a fenced block behind <!-- table -->")


def put_into_page(page, lines):
    block = "<!-- table -->\n\n```\n" + "\n".join(lines) + "\n```\n"
    page.write_text(PLACE.sub(lambda _: block, page.read_text(), count=1))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("filter", nargs="?", default="")
    parser.add_argument("--json", type=pathlib.Path)
    parser.add_argument("--page", type=pathlib.Path)
    parser.add_argument("--strict", action="store_true")
    arguments = parser.parse_args()
    if arguments.page:
        require_place(arguments.page)

    output, figures, goals = Output(), Figures(), Goals()
    context = describe(arguments.folder)
    for title, text in context.items():
        output.say(f"{title:9} {text}")
    output.say("\nOur median, and how many times as long it is as each peer's, of the same run, the fastest peer first:")

    peers, groups = {}, {}
    for program in sorted(arguments.folder.glob("*_bench")):
        report = run(program, arguments.filter)
        jobs = figures.take(report)
        peers.update((key.removeprefix("peer "), version) for key, version in report["context"].items()
                     if key.startswith("peer "))
        if jobs:
            title = program.name.removesuffix("_bench").replace("_", " ")
            groups[title] = jobs
            output.say(f"\n{title}")
            print_jobs(output, figures, goals, jobs)
    print_growth(output, figures, goals)
    context["peers"] = ", ".join(f"{name} {version}" for name, version in sorted(peers.items()))
    output.say(f"\npeers     {context['peers']}")
    print_end(output, figures, goals)

    if arguments.json:
        arguments.json.write_text(json.dumps({"context": context, "groups": groups, "medians": figures.medians,
                                              "bytes_a_row": figures.bytes_a_row, "growth": figures.sweeps(),
                                              "goals": goals.results}, indent=1, sort_keys=True) + "\n")
    if arguments.page:
        put_into_page(arguments.page, output.lines)
    if not arguments.filter and goals.never_measured():
        sys.exit("Goals of what isn't measured: " + ", ".join(goals.never_measured()))
    if arguments.strict and goals.missed():
        sys.exit(1)


if __name__ == "__main__":
    main()
