#!/usr/bin/env python3
"""Draws the ratios that bench_table.py --json kept: a bar for each job and peer on a logarithmic scale, to the left
where we are faster, to the right where we take longer, with a mark at the goal.

    bench_picture.py FIGURES.json PICTURE.svg

Of a job with several sizes it draws the largest, and each size that misses its goal.
"""
import json
import pathlib
import sys

import matplotlib.pyplot as plt

FASTER, SLOWER, MISSED, INK, PALE = "#2a7f8e", "#c9a24a", "#c0392b", "#1f2933", "#c6ccd2"
JOB, PEER, TIMES, GOAL = -1.05, -0.4, 1.15, 1.3  # the columns of text, in widths of the bars' field


def rows_of(figures, goals):
    """A row is a group's title, or a job, one of its peers, our time as a multiple of the peer's, and the goal."""
    missed = {job for (job, _), goal in goals.items() if not goal["met"]}
    for title, group in figures["groups"].items():
        compared = [job for job in group if len(figures["medians"].get(job, {})) > 1]
        largest = {job.partition("/")[0]: job for job in compared}
        if compared:
            yield title.capitalize(), None, None, None
        for job in compared:
            times = figures["medians"][job]
            if job in missed or job in largest.values():
                for time, peer in sorted((time, peer) for peer, time in times.items() if peer != "ours"):
                    yield job, peer, times["ours"] / time, goals.get((job, peer))


def colour_of(ratio, goal):
    if goal and not goal["met"]:
        return MISSED
    return FASTER if ratio <= 1 else SLOWER


def label(job):
    name, _, size = job.partition("/")
    return name.replace("_", " ") + (f", {int(size):,}" if size else "")


def write_row(write, y, row, above):
    job, peer, ratio, goal = row
    if peer is None:
        write(JOB, y, job, weight="bold")
        return
    if above is None or above[0] != job:
        write(JOB, y, label(job))
    ink = MISSED if goal and not goal["met"] else INK
    write(PEER, y, peer.replace("_", " "))
    write(TIMES, y, f"{ratio:.2f}" if ratio >= 0.1 else f"{ratio:.2g}", ha="right", color=ink)
    if goal:
        write(GOAL, y, f"{goal['limit']:g}", ha="right", color=ink)


def draw(figures, target):
    goals = {(goal["job"], goal["peer"]): goal for goal in figures["goals"] if goal["peer"] not in ("growth", "bytes")}
    rows = list(rows_of(figures, goals))
    height = 0.19 * len(rows) + 1.2
    figure, axes = plt.subplots(figsize=(9.5, height))
    figure.subplots_adjust(left=0.44, right=0.85, top=1 - 1 / height, bottom=0.1 / height)

    bars = [(y, ratio, goal) for y, (_, _, ratio, goal) in enumerate(rows) if ratio]
    axes.hlines([y for y, _, _ in bars], 1, [ratio for _, ratio, _ in bars], linewidth=8,
                colors=[colour_of(ratio, goal) for _, ratio, goal in bars])
    marks = [(y, goal["limit"]) for y, _, goal in bars if goal]
    axes.vlines([limit for _, limit in marks], [y - 0.4 for y, _ in marks], [y + 0.4 for y, _ in marks], colors=INK,
                linewidth=2)
    axes.axvline(1, color=INK, linewidth=1)
    axes.set(xscale="log", ylim=(len(rows) - 0.5, -0.5), yticks=[])
    axes.minorticks_off()
    axes.tick_params(top=True, labeltop=True, bottom=False, labelbottom=False, color=PALE)
    axes.xaxis.set_major_formatter("{x:g}")
    axes.grid(axis="x", color=PALE, zorder=0)
    axes.spines[:].set_visible(False)

    def write(x, y, text, **style):
        axes.text(x, y, text, transform=axes.get_yaxis_transform(), va="center", **style)

    for y, row in enumerate(rows):
        write_row(write, y, row, rows[y - 1] if y else None)
    context = figures["context"]
    write(JOB, -4.6, "Our time as a multiple of each peer's", size=13, weight="bold")
    write(JOB, -3.3, f"tarnutil {context['tarnutil']} on {context['machine']}.  Peers: {context['peers']}")
    for x, text, colour in ((JOB, "faster", FASTER), (-0.88, "takes longer", SLOWER), (-0.6, "misses its goal", MISSED),
                            (-0.25, "| goal", INK)):
        write(x, -1.6, text, color=colour, weight="bold")
    for x, text in ((TIMES, "times"), (GOAL, "goal")):
        write(x, -1.6, text, ha="right")
    figure.savefig(target, metadata={"Date": None})


def main():
    source, target = map(pathlib.Path, sys.argv[1:])
    plt.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": "tarnutil", "font.size": 9, "text.color": INK,
                         "font.family": ["DejaVu Sans"]})
    draw(json.loads(source.read_text()), target)
    target.write_text(target.read_text().replace("'DejaVu Sans'", "'DejaVu Sans', sans-serif"))


main()
