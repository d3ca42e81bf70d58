#!/usr/bin/env python3
"""Prints, for each folder of the library, how many of its lines and branches the tests reach.

    coverage_table.py SUMMARY       what `llvm-cov export -summary-only` wrote
"""

import collections
import json
import pathlib
import sys

FOLDERS = ("base", "core", "engine", "store", "options", "calendar", "fintext", "present", "platform")


def main():
    root = pathlib.Path(__file__).resolve().parent.parent
    reached = collections.defaultdict(collections.Counter)
    for file in json.loads(pathlib.Path(sys.argv[1]).read_text())["data"][0]["files"]:
        path = pathlib.Path(file["filename"])
        folder = path.relative_to(root).parts[0] if path.is_relative_to(root) else ""
        if folder not in FOLDERS:
            continue
        for kind in ("lines", "branches"):
            for row in (folder, "all"):
                reached[row][kind] += file["summary"][kind]["count"]
                reached[row][kind, "covered"] += file["summary"][kind]["covered"]
    if not reached:
        sys.exit("No source of the library was counted.")
    for row in (*FOLDERS, "all"):
        counts = reached[row]
        shares = (f"{kind} {counts[kind, 'covered']:5} of {counts[kind]:5} "
                  f"{100 * counts[kind, 'covered'] / max(counts[kind], 1):5.1f} %" for kind in ("lines", "branches"))
        print(f"{row:9} ", "   ".join(shares))


if __name__ == "__main__":
    main()
