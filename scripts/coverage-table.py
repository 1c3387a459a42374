#!/usr/bin/env python3
"""Reads lcov's text and the reasons, and prints a table of lines and branches, and what is not reached."""
import collections
import json
import os
import sys

root = os.path.join(os.path.realpath(sys.argv[1]), "")
compiled = [entry["file"] for entry in json.load(open(sys.argv[2]))]
wanted = {os.path.relpath(os.path.realpath(name), root) for name in sys.argv[3:]}


def inside(path):
    path = os.path.realpath(path)
    return path[len(root):] if path.startswith((root + "src/", root + "refhost/")) else None


# By file and line: how often it was reached, and how often each way of its conditions was taken.
lines = collections.defaultdict(dict)
name = None
for text in sys.stdin:
    key, _, value = text.strip().partition(":")
    if key == "SF":
        name = inside(value)
    elif name and key == "DA":
        number, count = value.split(",")[:2]
        lines[name].setdefault(int(number), [0, []])[0] = int(count)
    elif name and key == "BRDA":
        number, _, _, count = value.split(",")
        lines[name].setdefault(int(number), [1, []])[1].append(0 if count == "-" else int(count))

# Stretches of lines that are not reached, and lines whose conditions go one way only. A brace alone is no code, but is
# counted as not reached behind a break.
gaps = []
for name in sorted(lines):
    source = open(root + name).read().split("\n")
    lines[name] = {number: line for number, line in lines[name].items() if source[number - 1].strip() != "}"}
    stretch = None
    for number, (count, branches) in sorted(lines[name].items()):
        if count == 0 and stretch:
            stretch["end"] = number
            continue
        stretch = None
        if count == 0 or 0 in branches:
            what = f"{branches.count(0)} of {len(branches)} branches not taken" if count else "not reached"
            gaps.append({"file": name, "line": number, "end": number, "what": what, "reason": None})
            stretch = gaps[-1] if count == 0 else None
for name in sorted(set(filter(None, map(inside, compiled))) - set(lines)):
    gaps.append({"file": name, "line": 1, "end": 1, "what": "in no test program", "reason": None})

# A reason holds for the one gap in which a line with its piece of text stands.
errors = []
name = None
for number, text in enumerate(open(root + "scripts/coverage-reasons.txt"), 1):
    if not text.strip() or text.startswith("#"):
        continue
    if not text.startswith(" "):
        name = text.strip()
        source = open(root + name).read().split("\n") if os.path.isfile(root + name) else []
        continue
    piece, _, reason = text.strip().partition("  -  ")
    found = [index for index, line in enumerate(source, 1) if piece in line]
    concerned = [gap for gap in gaps if gap["file"] == name and any(gap["line"] <= i <= gap["end"] for i in found)]
    if not reason or not found or len(concerned) > 1:
        errors.append(f"scripts/coverage-reasons.txt:{number}: has no reason, or fits no line or several of {name}")
    elif not concerned:
        errors.append(f"scripts/coverage-reasons.txt:{number}: {name}:{found[0]} is reached and needs no reason")
    else:
        concerned[0]["reason"] = reason

missing = [gap for gap in gaps if gap["reason"] is None]


def percent(part, whole):
    return f"{100 * part / whole:6.1f}" if whole else "      "


if not wanted:
    total = [0, 0, 0, 0]
    print("  lines   in all  branches   in all  file")
    for name in sorted(lines):
        branches = [count for line in lines[name].values() for count in line[1]]
        figures = [sum(line[0] > 0 for line in lines[name].values()), len(lines[name]),
                   sum(count > 0 for count in branches), len(branches)]
        total = [a + b for a, b in zip(total, figures)]
        print(f"{percent(*figures[:2])} {figures[1]:8} {percent(*figures[2:]):>9} {figures[3]:8}  {name}")
    print(f"{percent(*total[:2])} {total[1]:8} {percent(*total[2:]):>9} {total[3]:8}  all")
for gap in [gap for gap in gaps if gap["file"] in wanted] if wanted else missing:
    print(f"{gap['file']}:{gap['line']}: {gap['what']}: {gap['reason'] or 'NO REASON'}")
for error in errors:
    print(error)
print(f"{len(gaps) - len(missing)} lines and branches have a reason, {len(missing)} have none")
sys.exit(1 if missing or errors else 0)
