#!/usr/bin/env python3
"""Tells what a run has covered: coverage-report.py ROOT UNCOVERED UNREACHABLE EXPORT...

Each EXPORT is what llvm-cov export writes about sources below ROOT. A table of folders and files goes to the standard output,
the lines and outcomes that nothing has reached into the file UNCOVERED. UNREACHABLE is a list of the outcomes that no input
reaches; the status is 1 when a goal is missed, or when an entry of the list excuses nothing. Without one ("") no goal counts.
"""
import json
import os
import re
import sys

ENGINE = ["attribute", "nema", "syntax", "tables", "compare", "util", "platform/posix"]
OTHERS = ["tools", "view", "app", "platform/sdl"]
LINES_GOAL = 95  # Of a hundred lines of each folder of the engine.
READER = re.compile(r"nema/.*|compare/file_reader\.cpp|attribute/format\.cpp")  # Every outcome of every condition.
CONSTANT = re.compile(r"true|false|\d+")


class File:
    """A source: its text, and how often each line and each outcome of a condition came about."""

    def __init__(self, name, root, entry):
        self.name = name
        with open(os.path.join(root, name), encoding="utf-8") as file:
            self.text = file.read().split("\n")
        self.lines = line_counts(entry["segments"])
        self.outcomes = {}  # (line, column, condition, outcome) to count
        for line, column, end_line, end_column, true, false, *_ in entry["branches"]:
            condition = self.condition(line, column, end_line, end_column)
            if CONSTANT.fullmatch(condition):
                continue
            for outcome, count in (("true", true), ("false", false)):
                key = (line, column, condition, outcome)
                self.outcomes[key] = self.outcomes.get(key, 0) + count

        self.forget_compiled()

    def forget_compiled(self):
        """What the compiler evaluates runs in no program: a constexpr function of which nothing ran doesn't count."""
        start = 0
        for number, text in enumerate(self.text, 1):
            if re.match(r"(static |inline )*constexpr .*\) \{$", text):
                start = number
            elif start and text == "}":
                body = range(start, number + 1)
                if not any(self.lines.get(line) for line in body):
                    self.lines = {line: count for line, count in self.lines.items() if line not in body}
                    self.outcomes = {key: count for key, count in self.outcomes.items() if key[0] not in body}
                start = 0

    def condition(self, line, column, end_line, end_column):
        if line == end_line:
            return self.text[line - 1][column - 1 : end_column - 1]
        lines = [self.text[line - 1][column - 1 :]] + self.text[line : end_line - 1]
        return " ".join(part.strip() for part in lines + [self.text[end_line - 1][: end_column - 1]])

    def function(self, line):
        """The name of the function around a line: its head is the nearest line above that is not indented."""
        while line > 1 and not self.text[line - 1][:1].isalpha():
            line -= 1
        name = re.search(r"(\w+) \(", self.text[line - 1])
        return name.group(1) if name else ""

    def missed_lines(self):
        return [line for line, count in sorted(self.lines.items()) if not count]

    def missed_outcomes(self):
        return [key for key, count in sorted(self.outcomes.items()) if not count]


def line_counts(segments):
    """How often each line ran: the most that a region starting in it did, or the one that it lies in. A segment is line,
    column, count, whether it counts, whether a region starts, whether it is a gap between statements."""
    counts = {}
    around = None
    at_line = {}
    for segment in segments:
        at_line.setdefault(segment[0], []).append(segment)
    for line in range(segments[0][0], segments[-1][0] + 1) if segments else []:
        here = at_line.get(line, [])
        starts = [segment[2] for segment in here if segment[3] and segment[4] and not segment[5]]
        skipped = bool(here) and not here[0][3] and here[0][4]
        if not skipped and (starts or around and around[3]):
            counts[line] = max(starts + ([around[2]] if around and around[3] else []))
        around = here[-1] if here else around
    return counts


def share(done, count):
    return f"{done:6}/{count:<6}{100 * done / count:6.1f} %" if count else f"{'-':>6}{'':15}"


def row(title, files):
    lines = [count for file in files for count in file.lines.values()]
    outcomes = [count for file in files for count in file.outcomes.values()]
    covered = (sum(map(bool, lines)), len(lines), sum(map(bool, outcomes)), len(outcomes))
    print(f"{title:38}{share(*covered[:2])}   {share(*covered[2:])}".rstrip())
    return covered


def read(exports, root):
    """The sources of each folder, in the order of their names. The first export that has a source counts."""
    files = {folder: [] for folder in ENGINE + OTHERS}
    seen = set()
    for export in exports:
        with open(export, encoding="utf-8") as file:
            entries = json.load(file)["data"][0]["files"]
        for entry in entries:
            name = os.path.relpath(entry["filename"], root)
            if os.path.dirname(name) in files and name not in seen:
                files[os.path.dirname(name)].append(File(name, root, entry))
                seen.add(name)
    for folder in files.values():
        folder.sort(key=lambda file: file.name)
    return files


def write_uncovered(path, files):
    with open(path, "w", encoding="utf-8") as out:
        for file in files:
            for line in file.missed_lines():
                print(f"{file.name}:{line}: never ran: {file.text[line - 1].strip()}", file=out)
            for line, column, condition, outcome in file.missed_outcomes():
                print(f"{file.name}:{line}:{column}: never {outcome}: {condition}", file=out)


def read_unreachable(path):
    """Each entry is a file, a function, an outcome and a condition, with its reason in the comment above."""
    with open(path, encoding="utf-8") as file:
        lines = [line.rstrip("\n") for line in file if line.strip() and not line.startswith("#")]
    return {tuple(line.split(None, 3)) for line in lines}


def missed_goals(files, totals, unreachable):
    missed = []
    for folder in ENGINE:
        done, count = totals[folder][:2]
        if not count or 100 * done < LINES_GOAL * count:
            missed.append(f"{folder}: less than {LINES_GOAL} % of the lines")
    excuses = set()
    for file in (file for folder in files.values() for file in folder if READER.fullmatch(file.name)):
        for line, _, condition, outcome in file.missed_outcomes():
            entry = (file.name, file.function(line), outcome, condition)
            if entry in unreachable:
                excuses.add(entry)
            else:
                missed.append(f"{file.name}:{line}: never {outcome}: {condition}")
    missed += [f"reached, or gone, yet called unreachable: {' '.join(entry)}" for entry in sorted(unreachable - excuses)]
    return missed


def main():
    root, uncovered, unreachable, *exports = sys.argv[1:]
    files = read(exports, root)
    print(f"{'':38}{'lines':^21}   {'outcomes of conditions':^21}".rstrip())
    totals = {folder: row(folder, found) for folder, found in files.items()}
    for found in files.values():
        print()
        for file in found:
            row(file.name, [file])
    write_uncovered(uncovered, [file for found in files.values() for file in found])
    missed = missed_goals(files, totals, read_unreachable(unreachable)) if unreachable else []
    if missed:
        print("\nmissed:")
        print("\n".join(missed))
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
