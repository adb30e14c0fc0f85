#!/usr/bin/python3
"""Compares every real file that Debian's python3-pydicom brings with the definition of its SOP class, using the tables
that come with the program. The reports come as they should, the tables give no warning, and the code of every attribute of
the merged list is the one that file and definition, walked here once more, ask for.

usage: modality_test.py DUMP_MODALITY TABLES_DIRECTORY
"""
import json
import os
import subprocess
import sys

from corpus_test import ROOT, LEAST_FILES, SECONDS, files

FILE_ONLY, BOTH, DEFINITION_ONLY = 64, 128, 0

# The definitions that the files ask for; with fewer the test would hold less than it says.
MODALITIES = {"CT_Image", "MR_Image", "OT_Image", "SC_Image", "US_Image", "CR_Image"}


def runs(program, tables, names):
    done = subprocess.run([program, tables] + names, stdout=subprocess.PIPE, timeout=SECONDS, check=True)
    found, current = {}, None
    for line in done.stdout.decode("latin-1").split("\n"):
        word, _, rest = line.partition(" ")
        if word == "file":
            current = found[rest] = {"report": [], "warning": []}
        elif word in ("report", "warning"):
            current[word].append(rest)
        elif word in ("merged", "file_list", "definition"):
            current[word] = json.loads(rest)
        elif word in ("count", "modality"):
            current[word] = rest
    return found


def item(attribute, i):
    return attribute[2][i] if attribute and i < len(attribute[2]) else []


def walk(a_list, d_list, path, codes):
    """Both lists side by side; returns the number of the file's attributes."""
    a_list, d_list, count = a_list[:], d_list[:], 0
    while a_list or d_list:
        a = a_list[0] if a_list and (not d_list or a_list[0][0] <= d_list[0][0]) else None
        d = d_list[0] if d_list and (not a_list or d_list[0][0] <= a_list[0][0]) else None
        if a:
            a_list.pop(0)
            count += 1
        if d:
            d_list.pop(0)
        tag = path + (a or d)[0]
        codes[tag] = BOTH if a and d else FILE_ONLY if a else DEFINITION_ONLY
        for i in range(max(len(a[2]) if a else 0, len(d[2]) if d else 0)):
            count += walk(item(a, i), item(d, i), "%s[%d] " % (tag, i), codes)
    return count


def merged_paths(attributes, path, paths):
    """What copying a list makes: items until the first empty one."""
    for attribute in attributes:
        tag = path + attribute[0]
        paths[tag] = attribute[1]
        for i, attributes_of_item in enumerate(attribute[2]):
            if not attributes_of_item:
                break
            merged_paths(attributes_of_item, "%s[%d] " % (tag, i), paths)


def reports(name, count, has_list):
    result = ["Found %d differences" % count if count else "No changes"] * 2
    tables = ["    Reading DICOM Modality tables for: " + name] if has_list else []
    return ["    Compare A: " + name, "          /vs/     B: Modality description", "    Reading: " + name, ""] + tables + \
        ["    Analysing differences"] + result


def faults(name, run):
    codes, paths, expected_paths = {}, {}, {}
    count = walk(run["file_list"], run["definition"], "", codes)
    merged_paths(run["file_list"], "", expected_paths)
    merged_paths(run["definition"], "", expected_paths)
    merged_paths(run["merged"], "", paths)
    expected = {path: codes[path] for path in expected_paths}
    for text in run["warning"]:
        yield "warning: " + text
    if run["report"] != reports(name, count, bool(run["file_list"])):
        yield "reports are %s" % run["report"]
    if int(run["count"]) != count:
        yield "returned %s, the file has %d attributes" % (run["count"], count)
    if run["file_list"] and not run["definition"]:
        yield "no definition"
    for path in sorted(set(expected) | set(paths)):
        if expected.get(path) != paths.get(path):
            yield "%s: code %s, should be %s" % (path, paths.get(path), expected.get(path))


def main():
    program, tables = sys.argv[1], os.path.join(sys.argv[2], "")
    names = files()
    if len(names) < LEAST_FILES:
        print("only %d files below %s: is python3-pydicom installed?" % (len(names), ROOT))
        return 1
    found, failed = runs(program, tables, names), 0
    reached = {run.get("modality") for run in found.values()}
    for name in names:
        wrong = list(faults(name, found[name])) if name in found else ["not read to its end"]
        failed += bool(wrong)
        for fault in wrong[:10]:
            print("%s: %s" % (os.path.relpath(name, ROOT), fault))
    missing = MODALITIES - reached
    if missing:
        print("no file for: %s" % ", ".join(sorted(missing)))
    print("%d files compared with %d definitions, %d failures" % (len(names), len(reached - {None}), failed))
    return 1 if failed or missing else 0


if __name__ == "__main__":
    sys.exit(main())
