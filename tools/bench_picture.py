#!/usr/bin/env python3
"""Draws the ratios that bench_table.py --json kept as an SVG picture: a bar for each job and peer on a logarithmic
scale, to the left where we are faster, to the right where we take longer, with a mark at the goal.

    bench_picture.py FIGURES.json PICTURE.svg

Of a job with several sizes it shows those with goals of their own or missed ones, else the largest.
"""

import collections
import html
import json
import math
import pathlib
import sys

WIDTH = 800
ROW, BAR, HEAD = 17, 10, 20
JOB_X, PEER_X, LEFT, RIGHT, RATIO_X, GOAL_X = 16, 230, 366, 668, 722, 784
FASTER, SLOWER, MISSED = "#2a7f8e", "#c9a24a", "#c0392b"
INK, PALE, LINE, PAPER, BAND = "#1f2933", "#5f6b76", "#c6ccd2", "#ffffff", "#f3f5f7"


class Drawing:
    def __init__(self):
        self.parts = []

    def rect(self, x, y, width, height, fill):
        self.parts.append(f'<rect x="{x:.1f}" y="{y:.1f}" width="{width:.1f}" height="{height:.1f}" fill="{fill}"/>')

    def line(self, x1, y1, x2, y2, stroke, width=1.0):
        self.parts.append(f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{stroke}" '
                          f'stroke-width="{width}"/>')

    def text(self, x, y, text, fill=INK, anchor="start", size=12, bold=False):
        weight = ' font-weight="600"' if bold else ""
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" fill="{fill}" text-anchor="{anchor}"'
                          f'{weight}>{html.escape(text)}</text>')

    def save(self, path, height):
        head = (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {height}" width="{WIDTH}" '
                f'height="{height}" font-family="Helvetica, Arial, sans-serif">')
        path.write_text("\n".join([head, *self.parts, "</svg>"]) + "\n")


def shown_jobs(figures, goals, group):
    """The jobs of a group that the picture shows."""
    sizes = collections.defaultdict(set)
    for job in group:
        times = figures["medians"].get(job, {})
        if "ours" in times and len(times) > 1:
            name, _, size = job.partition("/")
            sizes[name].add(int(size or 0))
    for name, all_sizes in sizes.items():
        with_goal = {size for size in all_sizes if any(job == join(name, size) for job, _ in goals)}
        missed = {size for size in with_goal
                  if any(job == join(name, size) and not goal["met"] for (job, _), goal in goals.items())}
        has_own_goals = with_goal and with_goal != all_sizes
        for size in sorted(with_goal if has_own_goals else missed | {max(all_sizes)}):
            yield join(name, size)


def peers_of(figures, job):
    """Who it is held against and the ratio, the fastest peer first."""
    times = figures["medians"][job]
    peers = sorted((time, who) for who, time in times.items() if who != "ours")
    return [(who, times["ours"] / time) for time, who in peers]


def join(name, size):
    return f"{name}/{size}" if size else name


def readable(ratio):
    if ratio >= 100:
        return f"{ratio:.0f}"
    return f"{ratio:.3g}" if ratio >= 10 else f"{ratio:.2f}" if ratio >= 0.1 else f"{ratio:.2g}"


def label(job):
    name, _, size = job.partition("/")
    return name.replace("_", " ") + (f", {int(size):,}" if size else "")


def draw(figures, path):
    goals = {(goal["job"], goal["peer"]): goal for goal in figures["goals"]
             if goal["peer"] not in ("growth", "bytes")}
    groups = {title: [(job, peers_of(figures, job)) for job in shown_jobs(figures, goals, group)]
              for title, group in figures["groups"].items()}
    groups = {title: rows for title, rows in groups.items() if rows}
    if not groups:
        sys.exit("There is nothing to draw.")
    rows = [row for group in groups.values() for row in group]

    ratios = [ratio for _, peers in rows for _, ratio in peers] + [goal["limit"] for goal in goals.values()]
    low, high = math.log10(min(ratios) / 1.2), math.log10(max(ratios) * 1.2)
    scale = (RIGHT - LEFT) / (high - low)

    def place(ratio):
        return LEFT + (math.log10(ratio) - low) * scale

    top = 118
    bottom = top + len(groups) * HEAD + sum(len(peers) for _, peers in rows) * ROW
    drawing = Drawing()
    drawing.rect(0, 0, WIDTH, bottom + 74, PAPER)
    drawing.text(JOB_X, 30, "Our time as a multiple of each peer's", size=17, bold=True)
    context = figures["context"]
    drawing.text(JOB_X, 50, f"tarnutil {context['tarnutil']} on {context['machine']}; logarithmic scale", PALE)
    draw_legend(drawing, 72)
    for power in range(math.ceil(low), math.floor(high) + 1):
        x = place(10.0 ** power)
        drawing.line(x, top, x, bottom, LINE)
        for y in (top - 6, bottom + 14):
            drawing.text(x, y, f"{10.0 ** power:g}", PALE, "middle", 11)
    drawing.text(RATIO_X, top - 6, "times", PALE, "end", 11)
    drawing.text(GOAL_X, top - 6, "goal", PALE, "end", 11)

    y = top
    for title, jobs in groups.items():
        drawing.rect(0, y, WIDTH, HEAD, BAND)
        drawing.text(JOB_X, y + 14, title[0].upper() + title[1:], bold=True)
        y += HEAD
        for job, peers in jobs:
            drawing.text(JOB_X, y + 13, label(job))
            for peer, ratio in peers:
                draw_bar(drawing, y, peer, ratio, goals.get((job, peer)), place)
                y += ROW
    drawing.line(place(1), top, place(1), bottom, INK, 1.2)

    met = sum(goal["met"] for goal in figures["goals"])
    drawing.text(JOB_X, bottom + 38, f"{met} of {len(figures['goals'])} goals met; those of growth, of memory and of the "
                 "other sizes have no bar here.", PALE)
    drawing.text(JOB_X, bottom + 56, f"Peers: {context['peers']}", PALE, size=11)
    drawing.save(path, bottom + 74)


def draw_legend(drawing, y):
    x = JOB_X
    for colour, text in ((FASTER, "faster than the peer"), (SLOWER, "takes longer"), (MISSED, "misses its goal")):
        drawing.rect(x, y, 12, 10, colour)
        drawing.text(x + 18, y + 9, text)
        x += 40 + 6.6 * len(text)
    drawing.rect(x, y - 2, 3, 14, INK)
    drawing.text(x + 10, y + 9, "goal")


def draw_bar(drawing, y, peer, ratio, goal, place):
    missed = goal is not None and not goal["met"]
    colour = MISSED if missed else FASTER if ratio <= 1 else SLOWER
    start, end = sorted((place(1), place(ratio)))
    drawing.text(PEER_X, y + 13, peer.replace("_", " "))
    drawing.rect(start, y + (ROW - BAR) / 2, max(end - start, 1), BAR, colour)
    drawing.text(RATIO_X, y + 13, readable(ratio), MISSED if missed else INK, "end", bold=missed)
    if goal is not None:
        drawing.rect(place(goal["limit"]) - 1.5, y + 1.5, 3, ROW - 3, INK)
        drawing.text(GOAL_X, y + 13, f"{goal['limit']:g}", MISSED if missed else INK, "end")


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    draw(json.loads(pathlib.Path(sys.argv[1]).read_text()), pathlib.Path(sys.argv[2]))


if __name__ == "__main__":
    main()
