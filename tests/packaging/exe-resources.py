#!/usr/bin/env python3
"""Looks into a Windows program: exe-resources.py PROGRAM VERSION ICON. Its version, icon and manifest are those
expected, and it makes use of what protects it."""
import struct
import sys

ICON, GROUP_ICON, VERSION, MANIFEST = 3, 14, 16, 24


class Program:
    def __init__(self, path):
        with open(path, "rb") as file:
            self.bytes = file.read()
        header, = struct.unpack_from("<I", self.bytes, 60)
        assert self.bytes[header:header + 4] == b"PE\0\0"
        machine, sections, _, _, _, optional, _ = struct.unpack_from("<HHIIIHH", self.bytes, header + 4)
        assert machine == 0x8664, hex(machine)
        self.subsystem, self.characteristics = struct.unpack_from("<HH", self.bytes, header + 24 + 68)
        self.sections = []
        for index in range(sections):
            place = header + 24 + optional + 40 * index
            size, address, raw_size, raw = struct.unpack_from("<IIII", self.bytes, place + 8)
            self.sections.append((address, max(size, raw_size), raw))
        self.resources_address, = struct.unpack_from("<I", self.bytes, header + 24 + 112 + 8 * 2)

    def place(self, address):
        for start, size, raw in self.sections:
            if start <= address < start + size:
                return address - start + raw
        raise ValueError(hex(address))

    def entries(self, offset):
        """Names and offsets of a folder of resources."""
        place = self.place(self.resources_address) + offset
        names, numbers = struct.unpack_from("<HH", self.bytes, place + 12)
        return [struct.unpack_from("<II", self.bytes, place + 16 + 8 * i) for i in range(names + numbers)]

    def resources(self, kind):
        found = []
        for name, folder in self.entries(0):
            if name != kind:
                continue
            for _, languages in self.entries(folder & 0x7FFFFFFF):
                for _, leaf in self.entries(languages & 0x7FFFFFFF):
                    address, size = struct.unpack_from("<II", self.bytes, self.place(self.resources_address) + leaf)
                    place = self.place(address)
                    found.append(self.bytes[place:place + size])
        return found


def main(path, version, icon):
    program = Program(path)
    assert program.subsystem == 2, "opens a console"
    # Loaded anywhere, also beyond 4 GB, and no data are run.
    assert program.characteristics & 0x160 == 0x160, hex(program.characteristics)

    facts, = program.resources(VERSION)
    numbers = [int(number) for number in version.replace(" rev-", ".").split(".")]
    high, low = struct.unpack_from("<II", facts, facts.index(struct.pack("<I", 0xFEEF04BD)) + 8)
    assert [high >> 16, high & 0xFFFF, low & 0xFFFF] == numbers, (hex(high), hex(low))
    for name in ("FileVersion", "ProductVersion"):
        assert (name + "\0").encode("utf-16-le") in facts
    assert facts.count((version + "\0").encode("utf-16-le")) == 2, "its texts say another version"

    group, = program.resources(GROUP_ICON)
    with open(icon, "rb") as file:
        pictures = file.read()
    count, = struct.unpack_from("<H", group, 4)
    assert count == struct.unpack_from("<H", pictures, 4)[0] == 4, count
    expected = []
    for index in range(count):
        size, place = struct.unpack_from("<II", pictures, 6 + 16 * index + 8)
        expected.append(pictures[place:place + size])
    assert program.resources(ICON) == expected, "another icon"

    manifest, = program.resources(MANIFEST)
    for part in (b">UTF-8</activeCodePage>", b">PerMonitorV2, PerMonitor</dpiAwareness>", b'level="asInvoker"',
                 b'version="%d.%d.0.%d"' % tuple(numbers)):
        assert part in manifest, part


main(*sys.argv[1:])
