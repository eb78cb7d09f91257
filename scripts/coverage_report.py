#!/usr/bin/env python3
"""Prints gcovr's counts: covered lines and branches per room, then the lines that are not covered."""
import collections
import json
import sys

ROOMS = ("extraction", "feedback", "intents", "phone", "platform/linux", "platform", "queue", "store")


def room_of(path):
    inside = path.removeprefix("src/")
    return next((room for room in ROOMS if inside.startswith(room + "/")), "other")


def ranges(numbers):
    """The sorted numbers as text, such as "3, 5-7"."""
    runs = []
    for number in numbers:
        if runs and number == runs[-1][1] + 1:
            runs[-1][1] = number
        else:
            runs.append([number, number])
    return ", ".join(str(first) if first == last else f"{first}-{last}" for first, last in runs)


def percent(reached, all_of_them):
    return f"{reached:6} of {all_of_them:6}  {100 * reached / all_of_them if all_of_them else 100:5.1f} %"


def main():
    with open(sys.argv[1], encoding="utf-8") as report:
        files = json.load(report)["files"]
    rooms = collections.defaultdict(lambda: [0, 0, 0, 0])
    missed = {}
    for file in files:
        lines = [line for line in file["lines"] if not line["gcovr/noncode"]]
        branches = [branch for line in lines for branch in line["branches"]]
        counts = (sum(line["count"] > 0 for line in lines), len(lines),
                  sum(branch["count"] > 0 for branch in branches), len(branches))
        for room in (room_of(file["file"]), "all of src/"):
            rooms[room] = [before + more for before, more in zip(rooms[room], counts)]
        numbers = sorted({line["line_number"] for line in lines if line["count"] == 0})
        if numbers:
            missed[file["file"]] = numbers

    print(f"\n{'':16}{'lines':>14}{'':14}{'branches':>14}")
    for room in (*sorted(set(rooms) - {"all of src/"}), "all of src/"):
        reached, lines, taken, branches = rooms[room]
        print(f"{room:16}{percent(reached, lines)}    {percent(taken, branches)}")
    print("\nLines that no test reaches:")
    for file, numbers in sorted(missed.items()):
        print(f"  {file}: {ranges(numbers)}")


if __name__ == "__main__":
    main()
