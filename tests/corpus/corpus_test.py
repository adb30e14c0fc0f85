#!/usr/bin/python3
"""Reads every real file that Debian's python3-pydicom brings: none may crash, hang or upset a sanitizer, each equals
itself, and for the files that dcmtk's dcmdump reads as well, the sequence of tags and lengths is the same. Where it
isn't, the reason stands in DIFFERENCES; a reason that no longer holds fails the test too.

usage: corpus_test.py DUMP_ELEMENTS
"""
import os
import re
import subprocess
import sys

ROOT = "/usr/lib/python3/dist-packages/pydicom/data"
FOLDERS = ("test_files", "charset_files", "palettes")
LEAST_FILES = 150
SECONDS = 120           # For all files together; a hang, not a slow machine, takes longer.

# File name: why the lists differ.
DIFFERENCES = {
    "palettes/winter.dcm": "(0008,0018) stands twice: both are kept, dcmdump drops the second",
    "test_files/ExplVR_BigEndNoMeta.dcm":
        "a bare big-endian stream: nothing says so, a bare stream is read as explicit little endian",
    "test_files/UN_sequence.dcm":
        "a UN of undefined length holds implicit VR inside an explicit stream: reading stops there with a warning",
    "test_files/dicomdirtests/DICOMDIR-nooffset": "dcmdump prints item lengths that it computed anew",
    "test_files/image_dfl.dcm": "a deflated data set: dcmdump inflates it, here reading stops with a warning",
    "test_files/meta_missing_tsyntax.dcm":
        "no transfer syntax: read as explicit little endian, which stops with a warning; dcmdump guesses implicit",
    "test_files/nested_priv_SQ.dcm": "an odd length is kept as it is; dcmdump pads the value",
    "test_files/rtstruct.dcm":
        "a bare implicit stream: nothing says so, a bare stream is read as explicit little endian",
}

TAG = re.compile(r"^ *\(([0-9a-f]{4},[0-9a-f]{4})\) (..) ", re.M)
LENGTH = re.compile(r" # +(u/l|\d+), *\d+ [^\n]*$", re.M)


def files():
    found = []
    for folder in FOLDERS:
        for path, _, names in os.walk(os.path.join(ROOT, folder)):
            found += [os.path.join(path, name) for name in names if not name.endswith((".py", ".pyc"))]
    return sorted(found)


def own_lists(program, names):
    """What the program reads: {name: {"elements": [...], "nested": n, "self": n}}."""
    done = subprocess.run([program] + names, stdout=subprocess.PIPE, timeout=SECONDS, check=True)
    lists, current = {}, None
    for line in done.stdout.decode("ascii", "replace").splitlines():
        word, rest = line.split(" ", 1)
        if word == "file":
            current = lists[rest] = {"elements": []}
        elif word in ("nested", "self"):
            current[word] = int(rest)
        else:
            current["elements"].append((word, int(rest)))
    return lists


def peer_list(name):
    """The elements as dcmdump prints them, or None when it refuses the file."""
    done = subprocess.run(["dcmdump", "+L", "-q", name], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    if done.returncode:
        return None
    text = done.stdout.decode("latin-1")
    elements, starts = [], list(TAG.finditer(text))
    for start, end in zip(starts, starts[1:] + [None]):
        piece = text[start.start():end.start() if end else len(text)]
        length = LENGTH.search(piece)
        # Delimiters that no stream holds: dcmdump adds them behind content of defined length.
        if not length or "for re-encod" in piece:
            continue
        elements.append((start.group(1), -1 if length.group(1) == "u/l" else int(length.group(1))))
    return elements


def first_difference(own, peer):
    for i in range(max(len(own), len(peer))):
        a = own[i] if i < len(own) else None
        b = peer[i] if i < len(peer) else None
        if a != b:
            return "element %d: read %s, dcmdump says %s (%d and %d elements)" % (i, a, b, len(own), len(peer))
    return None


def main():
    names = files()
    failed = 0
    if len(names) < LEAST_FILES:
        print("only %d files below %s: is python3-pydicom installed?" % (len(names), ROOT))
        return 1
    lists = own_lists(sys.argv[1], names)

    compared = 0
    for name in names:
        short, own = os.path.relpath(name, ROOT), lists.get(name)
        if own is None or own.get("self") != 0 or "nested" not in own:
            print("%s: not read to its end, or differs from itself: %s" % (short, own and own.get("self")))
            failed += 1
            continue
        peer = peer_list(name)
        if peer is None:
            continue
        compared += 1
        difference, reason = first_difference(own["elements"], peer), DIFFERENCES.get(short)
        if difference and not reason:
            print("%s: %s" % (short, difference))
            failed += 1
        elif reason and not difference:
            print("%s: no longer differs (%s)" % (short, reason))
            failed += 1
    unknown = set(DIFFERENCES) - {os.path.relpath(name, ROOT) for name in names}
    for short in sorted(unknown):
        print("%s: stands in the table, but there is no such file" % short)
    print("%d files read, %d of them compared with dcmdump, %d explained differences, %d failures"
          % (len(names), compared, len(DIFFERENCES), failed + len(unknown)))
    return 1 if failed or unknown else 0


if __name__ == "__main__":
    sys.exit(main())
