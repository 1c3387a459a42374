#!/usr/bin/env python3
"""Reads gcov's JSON, a line for each object, and prints a table of lines and branches, or what is not reached."""
import collections
import json
import os
import sys

root = sys.argv[1] + "/"
wanted = {os.path.relpath(name, root) for name in sys.argv[2:]}

# By file and line: how often it was reached, and how often each of its branches was taken. A line of a template or an
# inline function stands in several objects.
lines = collections.defaultdict(dict)
for text in sys.stdin:
    for file in json.loads(text)["files"]:
        name = os.path.normpath(os.path.join(root, file["file"]))
        if not name.startswith((root + "src/", root + "refhost/")):
            continue
        for line in file["lines"]:
            branches = [b["count"] for b in line["branches"] if not b["throw"]]
            known = lines[name[len(root):]].setdefault(line["line_number"], [0, {}])
            known[0] += line["count"]
            if len(branches) > 1:
                for index, count in enumerate(branches):
                    key = (line.get("function_name", ""), index)
                    known[1][key] = known[1].get(key, 0) + count

# Copies of a function in several objects are one function; copies of a template for several types are told apart, and a
# branch counts as taken when one copy takes it.
def branches_of(line):
    taken = {}
    for (function, index), count in line[1].items():
        taken[index] = max(taken.get(index, 0), count)
    return list(taken.values())

def percent(part, whole):
    return f"{100 * part / whole:6.1f}" if whole else "      "

if wanted:
    for name in sorted(wanted):
        for number, line in sorted(lines.get(name, {}).items()):
            branches = branches_of(line)
            if line[0] == 0:
                print(f"{name}:{number}: not reached")
            elif any(count == 0 for count in branches):
                print(f"{name}:{number}: {sum(c == 0 for c in branches)} of {len(branches)} branches not taken")
    sys.exit()

total = [0, 0, 0, 0]
print("  lines   in all  branches   in all  file")
for name in sorted(lines):
    reached = sum(line[0] > 0 for line in lines[name].values())
    branches = [count for line in lines[name].values() for count in branches_of(line)]
    taken = sum(count > 0 for count in branches)
    figures = [reached, len(lines[name]), taken, len(branches)]
    total = [a + b for a, b in zip(total, figures)]
    print(f"{percent(reached, figures[1])} {figures[1]:8} {percent(taken, figures[3]):>9} {figures[3]:8}  {name}")
print(f"{percent(total[0], total[1])} {total[1]:8} {percent(total[2], total[3]):>9} {total[3]:8}  all")
