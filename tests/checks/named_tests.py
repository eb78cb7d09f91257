#!/usr/bin/env python3
"""Checks that each test that a document names, as `ASuite.DoesSomething`, exists."""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
IN_DOCUMENT = re.compile(r"`([A-Z][A-Za-z]+)\.([A-Z][a-z]+[A-Z][A-Za-z0-9]+)`")
IN_SOURCE = re.compile(r"\bTEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\s*\)")
IN_LIST = re.compile(r"\badd_test\(NAME (\w+)\.(\w+)")


def main():
    tests = set()
    for source in (ROOT / "tests").rglob("*.cpp"):
        tests.update(IN_SOURCE.findall(source.read_text(encoding="utf-8")))
    for listed in (ROOT / "tests").rglob("CMakeLists.txt"):
        tests.update(IN_LIST.findall(listed.read_text(encoding="utf-8")))
    named = 0
    absent = []
    for document in sorted((ROOT / "docs").rglob("*.md")):
        for test in IN_DOCUMENT.findall(document.read_text(encoding="utf-8")):
            named += 1
            if test not in tests:
                absent.append(f"{document.relative_to(ROOT)}: no test is called {'.'.join(test)}")
    print("\n".join(absent) or f"{named} named tests exist")
    sys.exit(1 if absent or not named else 0)


if __name__ == "__main__":
    main()
