#!/usr/bin/env python3
"""Coverage by folder, from a report of gcovr; called by tools/coverage.sh.

    tools/coverage_table.py REPORT UNCOVERED LEAST

Writes the lines that nothing ran to UNCOVERED; fails when fewer than LEAST % of all lines ran.
"""

import collections
import json
import pathlib
import sys


def ranges(numbers):
    """[1, 2, 3, 7] as "1-3 7"."""
    spans = []
    for number in numbers:
        if spans and number == spans[-1][1] + 1:
            spans[-1][1] = number
        else:
            spans.append([number, number])
    return " ".join(f"{a}-{b}" if b > a else str(a) for a, b in spans)


def main():
    report, uncovered, least = sys.argv[1:]
    lines, branches = collections.Counter(), collections.Counter()
    run, taken = collections.Counter(), collections.Counter()
    missing = []
    for file in json.loads(pathlib.Path(report).read_text())["files"]:
        folder = file["file"].split("/")[0]
        counted = {}
        for line in file["lines"]:
            if line.get("gcovr/noncode") or line.get("gcovr/excluded"):
                continue
            # Instances of a template are lines of the same number.
            counted[line["line_number"]] = counted.get(line["line_number"], 0) + line["count"]
            branches[folder] += len(line["branches"])
            taken[folder] += sum(branch["count"] > 0 for branch in line["branches"])
        lines[folder] += len(counted)
        run[folder] += sum(count > 0 for count in counted.values())
        bare = sorted(number for number, count in counted.items() if count == 0)
        if bare:
            missing.append(f"{file['file']}: {ranges(bare)}\n")
    pathlib.Path(uncovered).write_text("".join(sorted(missing)))

    def row(name, folders):
        total = [sum(counter[f] for f in folders) for counter in (lines, run, branches, taken)]
        percent = [100 * a / b if b else 100 for a, b in ((total[1], total[0]),
                                                          (total[3], total[2]))]
        print(f"| {name} | {total[0]} | {percent[0]:.1f} | {total[2]} | {percent[1]:.1f} |")
        return percent[0]

    print("| Folder | Lines | % run | Branches | % taken |\n|---|---|---|---|---|")
    for folder in sorted(lines):
        row(folder, [folder])
    return 0 if row("all", list(lines)) >= float(least) else 1


if __name__ == "__main__":
    sys.exit(main())
