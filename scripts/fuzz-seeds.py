#!/usr/bin/env python3
"""fuzz-seeds.py FOLDER: writes what the fuzzer starts from into FOLDER/TARGET, one folder a target.

Seeds are the files of examples/, those of Debian's python3-pydicom that are small, and the program's own tables, icons and
configuration, each behind the byte that fuzz/fuzz.h explains. The files of tests/faults are seeds, too.
"""
import pathlib
import shutil
import struct
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PYDICOM = pathlib.Path("/usr/lib/python3/dist-packages/pydicom/data")
LARGEST = 16 * 1024     # What is larger teaches little and is slow.

SILENT, LISTED, REPORTED, BATCH = 0, 5, 0x10, 0x08      # Bits of the first byte.
FEED = b"\f"


def small(paths):
    return [path for path in sorted(paths) if path.is_file() and path.stat().st_size <= LARGEST]


def dicom_files():
    paths = list((ROOT / "examples").glob("*.dcm"))
    paths += [path for path in PYDICOM.rglob("*") if path.suffix.lower() in (".dcm", "")]
    return small(paths)


def file_seeds():
    for i, path in enumerate(dicom_files()):
        yield bytes([REPORTED | (LISTED if i % 4 == 0 else SILENT)]) + path.read_bytes()


def comparison_seeds():
    """A file with itself but for its last byte; two examples, the shorter one filled up."""
    for i, path in enumerate(dicom_files()):
        data = path.read_bytes()
        if len(data) <= LARGEST // 2:
            yield bytes([REPORTED | (BATCH if i % 2 else 0)]) + data + data[:-1] + bytes([data[-1] ^ 1])
    for a, b in (("nested_a", "nested_b"), ("implicit_a", "explicit_b")):
        first, second = ((ROOT / "examples" / (name + ".dcm")).read_bytes() for name in (a, b))
        size = max(len(first), len(second))
        yield bytes([REPORTED]) + first.ljust(size, b"\0") + second.ljust(size, b"\0")


def definition_seeds():
    tables = ROOT / "DICOM Tables"
    for path in small(tables.glob("DICOM_Attributes_*.txt")):
        yield bytes([REPORTED]) + path.read_bytes()
    for path in small(tables.glob("DICOM_Private_*.txt")) + small((ROOT / "examples" / "tables").glob("*.txt")):
        table = path.read_bytes()
        yield bytes([REPORTED]) + b"(0008,1140) type=1\n>include B\n" + FEED + table + FEED + FEED + table
    yield (bytes([LISTED]) + b'(0010,0010) type=2 desc="Name"\n(0008,1140) type=3\n>include B\n' + FEED +
           b'(0008,0100) type=1 "CT"\n=(0028,0010) VR=US "512"\n(0008,1199) VR=SQ\n>include C\n' + FEED +
           b'!(0040,A730) type=3 VR=SQ\n>include B\n+(0008,0008) "ORIGINAL\\PRIMARY" ; comment\n' + FEED +
           b'(0009,1001) type=3 VR=LO desc="Private"\n-(0009,xx02) VR=SQ\n>include B\n' + FEED + b"A\nA ; again\nNone\n" +
           FEED + b'(0018,0050) VR=DS "1.5\\2"\n-(0010,0010) type=1\n')


def configuration_seeds():
    yield bytes([REPORTED]) + (ROOT / "install" / "Tagwright.ini").read_bytes()
    yield (bytes([LISTED]) + b"trace = 5\nscratch = C:\\logs\r\naudit: audit.dat\nskip = (0010,*)\nskip=(0008,115?) # one\n"
           b"skip = (*)\ntables = /tmp/tables\noverride = none.txt\noverride =\n; end\nunknown = 3\n")


def images_seeds():
    targa = (ROOT / "Icons" / "icon_dot.tga").read_bytes()
    wide = b"\0\0\2" + bytes(9) + struct.pack("<HHBB", 2, 2, 32, 0) + bytes(range(16))
    for reader, images in ((2, (targa, wide)), (4, (targa, wide))):
        for image in images:
            yield bytes([reader]) + image
    for reader in (0, 1, 3):
        for text in IGB_HEADERS:
            yield bytes([reader]) + text


IGB_HEADERS = [b"x:2 y:2 type:long\r\n# comment\n\f" + bytes(range(16)), b"x:3,y:1;type:byte\nsup:0\n" + b"\n" * 6 + b"abc"]


def command_line_seeds():
    yield b'-v -t 3 -x 40 1200 -Y 20 800 "a file.dcm" b.dcm'
    yield b"-t\0005\0-x\0-99999999999\0001\0a.dcm\0b.dcm"
    yield b"-q a\t\"b\" \"\" -"


SEEDS = {"file": file_seeds, "comparison": comparison_seeds, "definition": definition_seeds,
         "configuration": configuration_seeds, "images": images_seeds, "command_line": command_line_seeds}


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: fuzz-seeds.py FOLDER")
    folder = pathlib.Path(sys.argv[1])
    for target, seeds in SEEDS.items():
        (folder / target).mkdir(parents=True, exist_ok=True)
        for i, seed in enumerate(seeds()):
            (folder / target / f"seed_{i:03}").write_bytes(seed)
        for fault in sorted((ROOT / "tests" / "faults" / target).glob("*")):
            shutil.copy(fault, folder / target)


if __name__ == "__main__":
    main()
