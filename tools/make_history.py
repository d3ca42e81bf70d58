#!/usr/bin/env python3
"""Makes a record file (text form) of a price history from a table of daily closes.

    make_history.py CLOSES.csv TITLE > HISTORY.txt

CLOSES.csv has the columns date (yyyy-mm-dd) and close, oldest first.  The record has the title in field 1 and, row by
row, the date in column 737, its year counted from 1900, and the price in column 336.
"""

import csv
import sys

TEXT = 15  # type code of the record file


def main():
    path, title = sys.argv[1:]
    with open(path, newline="", encoding="utf-8") as table:
        closes = list(csv.DictReader(table))
    out = [f"#1^1|{TEXT}|{title}^#0|{len(closes)}^"]
    for close in closes:
        year, month, day = close["date"].split("-")
        out.append(f"737|{TEXT}|{month}/{day}/{int(year) - 1900}^336|{TEXT}|{float(close['close']):.2f}^")
    print("".join(out))


if __name__ == "__main__":
    main()
