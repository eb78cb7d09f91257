#!/usr/bin/env python3
"""Checks that the lines of ctest fit a terminal: the longest name sets the length of all of them.

    names_fit.py CTEST BUILD
"""
import re
import subprocess
import sys

COLUMNS = 120
BESIDE = len("1000/1000 Test #1000:  ...   Passed    0.00 sec")  # in a line, beside the name


def main(ctest, build):
    listed = subprocess.run([ctest, "--test-dir", build, "-N"], check=True, capture_output=True, text=True).stdout
    names = re.findall(r"(?m)^ *Test +#\d+: (.*)$", listed)
    too_long = [name for name in names if len(name) + BESIDE > COLUMNS]
    for name in too_long:
        print(f"{len(name) + BESIDE - COLUMNS} characters too long: {name}")
    print(f"{len(names) - len(too_long)} of {len(names)} names fit {COLUMNS} columns")
    sys.exit(1 if too_long or not names else 0)


if __name__ == "__main__":
    main(*sys.argv[1:])
