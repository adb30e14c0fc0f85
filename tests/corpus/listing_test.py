#!/usr/bin/python3
"""Ten real files and their listing after each phase of a reading, as somebody has looked at it: listings/NAME.txt. The
cleanup, the completion or the listing itself can't change unseen.

usage: listing_test.py DUMP_LISTING            compares
       listing_test.py DUMP_LISTING --update   writes the listings anew; look at what changed before you commit it
"""
import difflib
import os
import subprocess
import sys

ROOT = "/usr/lib/python3/dist-packages/pydicom/data"
HERE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "listings")
FILES = [
    "charset_files/chrH31.dcm",
    "test_files/CT_small.dcm",
    "test_files/ExplVR_BigEnd.dcm",
    "test_files/JPEG2000.dcm",
    "test_files/MR_small_implicit.dcm",
    "test_files/UN_sequence.dcm",
    "test_files/nested_priv_SQ.dcm",
    "test_files/no_meta_group_length.dcm",
    "test_files/priv_SQ.dcm",
    "test_files/rtplan.dcm",
]


def listing(program, name):
    done = subprocess.run([program, os.path.join(ROOT, name)], stdout=subprocess.PIPE, timeout=60, check=True)
    return done.stdout.decode("ascii").replace(ROOT, "ROOT")


def main():
    failed = 0
    for name in FILES:
        golden = os.path.join(HERE, os.path.basename(name) + ".txt")
        now = listing(sys.argv[1], name)
        if "--update" in sys.argv:
            with open(golden, "w", encoding="ascii") as file:
                file.write(now)
            continue
        with open(golden, encoding="ascii") as file:
            before = file.read()
        if now != before:
            failed += 1
            print("%s: its listing changed" % name)
            sys.stdout.writelines(list(difflib.unified_diff(before.splitlines(True), now.splitlines(True), n=0))[:40])
    print("%d listings, %d changed" % (len(FILES), failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
