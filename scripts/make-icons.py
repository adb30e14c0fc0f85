#!/usr/bin/env python3
"""Draws the program's icons: make-icons.py [FOLDER] writes them (into Icons/ when no folder is given); make-icons.py --check
FOLDER only says which files there are not what it would write, and fails when there are any.

Change the tables below and run it again. Coordinates are units from the top-left corner; a type icon has 16 by 16 of them,
one for each pixel, and the program's icon the same at every size. Edges are smoothed by how much of a pixel they cover.
"""
import math
import os
import struct
import sys
import zlib

# --- colours -------------------------------------------------------------------------------------------------------------

WHITE = (255, 255, 255)
RED, RED_EDGE = (206, 40, 48), (128, 12, 22)            # required
ORANGE, ORANGE_EDGE = (222, 106, 0), (136, 58, 0)       # required under a condition
BLUE, BLUE_EDGE = (24, 92, 200), (12, 50, 122)          # required, may be empty
PURPLE, PURPLE_EDGE = (134, 48, 178), (74, 18, 106)     # the same under a condition
GREEN, GREEN_EDGE = (28, 132, 62), (10, 76, 32)         # optional
GREY, GREY_EDGE = (112, 116, 124), (62, 64, 70)         # unknown
NAVY_LIGHT, NAVY, NAVY_DARK = (62, 112, 190), (30, 66, 132), (16, 40, 88)
SLATE, AMBER = (120, 138, 166), (240, 148, 18)

# --- shapes: functions that give the distance of a point from the edge, negative inside ----------------------------------


def disc(x, y, radius):
    return lambda px, py: math.sqrt((px - x) ** 2 + (py - y) ** 2) - radius


def box(left, top, right, bottom, radius=0.0):
    x, y = (left + right) / 2, (top + bottom) / 2
    half_w, half_h = (right - left) / 2 - radius, (bottom - top) / 2 - radius

    def distance(px, py):
        dx, dy = abs(px - x) - half_w, abs(py - y) - half_h
        outside = math.sqrt(max(dx, 0) ** 2 + max(dy, 0) ** 2)
        return outside + min(max(dx, dy), 0) - radius

    return distance


def polygon(*points):
    """Convex, its corners in clockwise order as seen."""
    edges = []
    for (x1, y1), (x2, y2) in zip(points, points[1:] + points[:1]):
        length = math.sqrt((x2 - x1) ** 2 + (y2 - y1) ** 2)
        edges.append((x1, y1, (y2 - y1) / length, (x1 - x2) / length))
    return lambda px, py: max((px - x) * nx + (py - y) * ny for x, y, nx, ny in edges)


def stroke(x1, y1, x2, y2, width):
    """A line with round ends."""
    dx, dy = x2 - x1, y2 - y1

    def distance(px, py):
        along = ((px - x1) * dx + (py - y1) * dy) / (dx * dx + dy * dy)
        along = min(max(along, 0), 1)
        return math.sqrt((px - x1 - along * dx) ** 2 + (py - y1 - along * dy) ** 2) - width / 2

    return distance


def inset(shape, by):
    return lambda px, py: shape(px, py) + by


# --- glyphs: one character a unit ----------------------------------------------------------------------------------------

GLYPHS = {
    "1": ["..##.",
          ".###.",
          "####.",
          "..##.",
          "..##.",
          "..##.",
          "..##.",
          "..##.",
          "#####"],
    "2": [".###.",
          "##.##",
          "...##",
          "...##",
          "..##.",
          ".##..",
          "##...",
          "##...",
          "#####"],
    "3": [".###.",
          "##.##",
          "...##",
          "...##",
          "..##.",
          "...##",
          "...##",
          "##.##",
          ".###."],
    "?": [".###.",
          "##.##",
          "...##",
          "..##.",
          ".##..",
          ".##..",
          ".....",
          ".##..",
          ".##.."],
    "1C": [".#...###.",
           "##..#...#",
           ".#..#....",
           ".#..#....",
           ".#..#....",
           ".#..#...#",
           "###..###."],
    "2C": ["###...##.",
           "...#.#..#",
           "...#.#...",
           "..#..#...",
           ".#...#...",
           "#....#..#",
           "####..##."],
}


def glyph(name, x, y, colour):
    """Layers of a glyph whose top-left corner is (x, y): a box for each run of characters."""
    layers = []
    for line, row in enumerate(GLYPHS[name]):
        column = 0
        while column < len(row):
            end = column
            while end < len(row) and row[end] == "#":
                end += 1
            if end > column:
                layers.append((box(x + column, y + line, x + end, y + line + 1), colour))
            column = end + 1
    return layers


# --- type icons: layers from the lowest to the highest, each a shape and its colour --------------------------------------

# Solid: a value is required. Hollow: there need be none. Square: always; six corners: under a condition; round: optional.
# All stand around (7.5, 8.5), where the connector of a row arrives.
SQUARE = box(0, 1, 15, 16, 3)
HEXAGON = polygon((2.8, 2), (12.2, 2), (15, 8.5), (12.2, 15), (2.8, 15), (0, 8.5))
ROUND = disc(7.5, 8.5, 7.5)
DIAMOND = polygon((7.5, 0.6), (15.4, 8.5), (7.5, 16.4), (-0.4, 8.5))


def solid(shape, fill, edge):
    return [(shape, edge), (inset(shape, 1), fill)]


def hollow(shape, colour, edge):
    return [(shape, edge), (inset(shape, 0.6), colour), (inset(shape, 1.8), WHITE)]


TYPE_ICONS = {
    "icon_type_0.tga": solid(DIAMOND, GREY, GREY_EDGE) + glyph("?", 5, 4, WHITE),
    "icon_type_1.tga": solid(SQUARE, RED, RED_EDGE) + glyph("1", 5, 4, WHITE),
    "icon_type_1C.tga": solid(HEXAGON, ORANGE, ORANGE_EDGE) + glyph("1C", 3, 5, WHITE),
    "icon_type_2.tga": hollow(SQUARE, BLUE, BLUE_EDGE) + glyph("2", 5, 4, BLUE_EDGE),
    "icon_type_2C.tga": hollow(HEXAGON, PURPLE, PURPLE_EDGE) + glyph("2C", 3, 5, PURPLE_EDGE),
    "icon_type_3.tga": hollow(ROUND, GREEN, GREEN_EDGE) + glyph("3", 5, 4, GREEN_EDGE),
    "icon_dot.tga": [(disc(6.5, 10.5, 4.5), NAVY_DARK), (disc(6.5, 10.5, 3.5), NAVY_LIGHT),
                     (disc(5.5, 9.5, 1), WHITE)],
}

# --- the program's icon: two lists side by side, one line of them different ----------------------------------------------


def fade(top, bottom):
    """A colour that changes from the top of the icon to its bottom."""
    return lambda y: tuple(a + (b - a) * y / 16 for a, b in zip(top, bottom))


def program_icon(size):
    """At 16 pixels nothing is thinner than one of them; what is finer comes with the size."""
    layers = [(box(0, 0, 16, 16, 3), NAVY_DARK), (box(0.25, 0.25, 15.75, 15.75, 2.75), fade(NAVY_LIGHT, NAVY))]
    for left in (2, 9):
        if size >= 48:
            layers.append((box(left + 0.15, 2.4, left + 5.15, 14.4, 0.6), NAVY_DARK))
        layers.append((box(left, 2, left + 5, 14, 0.5 if size > 16 else 0), WHITE))
        for line in (3, 5, 10, 12):
            width = 2 if (left, line) in ((2, 5), (9, 12)) else 3
            layers.append((box(left + 1, line, left + 1 + width, line + 1, 0.25 if size > 32 else 0), SLATE))
    layers.append((box(1, 7, 15, 9, 0.5 if size > 16 else 0), AMBER))
    if size >= 32:
        thick = {32: 1 / 2, 48: 2 / 3}.get(size, 0.6)   # Whole pixels.
        layers += [(disc(8, 8, 3), NAVY_DARK), (disc(8, 8, 2.6), WHITE), (box(6.5, 7, 9.5, 7 + thick), NAVY_DARK),
                   (box(6.5, 9 - thick, 9.5, 9), NAVY_DARK), (stroke(8.9, 6.4, 7.1, 9.6, thick), RED)]
    return layers


PROGRAM_SIZES = (16, 32, 48, 256)    # In the ICO file.
PNG_SIZES = (16, 32, 48, 64, 128)    # Besides the largest one, tagwright.png: what desktops look for.

# --- drawing -------------------------------------------------------------------------------------------------------------


BLOCK = 8   # Pixels on a side that are looked at together, to leave out what can't be seen in any of them.


def seen(layers, x, y, reach):
    """The layers that show within reach of a point."""
    shown = []
    for shape, colour in layers:
        distance = shape(x, y)
        if distance <= -reach:
            shown = []
        if distance < reach:
            shown.append((shape, colour))
    return shown


def paint(layers, size, scale=1.0):
    """Rows of pixels (red, green, blue, opacity), each 0 to 255, opacity 0 to 1."""
    rows = [[None] * size for _ in range(size)]
    for top in range(0, size, BLOCK):
        for left in range(0, size, BLOCK):
            shown = seen(layers, (left + BLOCK / 2) / scale, (top + BLOCK / 2) / scale, (BLOCK + 1) / scale)
            for y in range(top, top + BLOCK):
                for x in range(left, left + BLOCK):
                    rows[y][x] = paint_pixel(shown, (x + 0.5) / scale, (y + 0.5) / scale, scale)
    return rows


def paint_pixel(layers, x, y, scale):
    pixel = (0.0, 0.0, 0.0, 0.0)
    for shape, colour in layers:
        cover = min(max(0.5 - shape(x, y) * scale, 0), 1)
        if cover > 0:
            pixel = over(pixel, colour(y) if callable(colour) else colour, cover)
    return pixel


def over(pixel, colour, cover):
    alpha = cover + pixel[3] * (1 - cover)
    under = pixel[3] * (1 - cover)
    return tuple((c * cover + p * under) / alpha for c, p in zip(colour, pixel)) + (alpha,)


def byte(value):
    return min(max(int(value + 0.5), 0), 255)


# --- TARGA: 24 bits, bottom row first; blue without red and green is black that lets 255 - blue through -------------------

GROUND = 190    # Brightness of the background that half-covered pixels are made for.
FIRM = 0.6      # What is covered less is drawn as transparent black, and keeps no colour.


def keyed(pixel):
    red, green, blue, alpha = pixel
    if alpha >= FIRM:
        red, green, blue = (byte(c * alpha + GROUND * (1 - alpha)) for c in (red, green, blue))
        return bytes((blue, green, red or not green))
    brightness = 0.3 * red + 0.59 * green + 0.11 * blue
    return bytes((byte(255 - 255 * alpha * max(1 - brightness / GROUND, 0)), 0, 0))


def targa(layers):
    rows = paint(layers, 16)
    header = struct.pack("<BBB5xHHHHBB", 0, 0, 2, 0, 0, 16, 16, 24, 0)
    return header + b"".join(keyed(pixel) for row in reversed(rows) for pixel in row)


# --- PNG and ICO ---------------------------------------------------------------------------------------------------------


def straight(pixel, order):
    red, green, blue, alpha = pixel[0], pixel[1], pixel[2], pixel[3] * 255
    return bytes(byte({"r": red, "g": green, "b": blue, "a": alpha}[c]) for c in order)


def filtered(row, above):
    """The row as differences to its left or upper neighbour, whichever are smaller."""
    left = bytes(a - b & 255 for a, b in zip(row, bytes(4) + row))
    up = bytes(a - b & 255 for a, b in zip(row, above))
    return min((b"\1" + left, b"\2" + up), key=lambda line: sum(min(c, 256 - c) for c in line[1:]))


def png(rows):
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))

    lines = [b"".join(straight(pixel, "rgba") for pixel in row) for row in rows]
    content = b"".join(filtered(line, above) for line, above in zip(lines, [bytes(len(lines[0]))] + lines))
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(content, 9)) + chunk(b"IEND", b""))


def bitmap(rows):
    """As an ICO file holds it: bottom row first, then one bit a pixel that nobody needs beside an opacity."""
    size = len(rows)
    mask = bytes((size + 31) // 32 * 4) * size
    pixels = b"".join(straight(pixel, "bgra") for row in reversed(rows) for pixel in row)
    return struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(pixels) + len(mask), 0, 0, 0, 0) + pixels + mask


def ico(pictures):
    """pictures: size and content of each. A size of 256 is written as 0."""
    place = 6 + 16 * len(pictures)
    entries, contents = b"", b""
    for size, content in pictures:
        entries += struct.pack("<BBBBHHII", size & 255, size & 255, 0, 0, 1, 32, len(content), place + len(contents))
        contents += content
    return struct.pack("<HHH", 0, 1, len(pictures)) + entries + contents


# --- files ---------------------------------------------------------------------------------------------------------------


def make():
    """Names and contents of all files."""
    files = {name: targa(layers) for name, layers in TYPE_ICONS.items()}
    pictures = [(size, paint(program_icon(size), size, size / 16)) for size in PROGRAM_SIZES]
    large = png(pictures[-1][1])
    files["tagwright.png"] = large
    for size in PNG_SIZES:
        files[f"tagwright_{size}.png"] = png(paint(program_icon(size), size, size / 16))
    files["tagwright.ico"] = ico([(size, bitmap(rows)) for size, rows in pictures[:-1]] + [(256, large)])
    return files


def unpacked(content):
    """The same with its PNG data unpacked and without what depends on them, since compressors differ and pictures don't."""
    if content[:4] == b"\0\0\1\0":
        entry = 6 + 16 * (len(PROGRAM_SIZES) - 1)   # Of the picture that is PNG; tells its size.
        content = content[:entry + 8] + content[entry + 12:]
    start = content.find(b"IDAT")
    if start < 0:
        return content
    size, = struct.unpack(">I", content[start - 4:start])
    data, rest = content[start + 4:start + 4 + size], content[start + 8 + size:]
    return content[:start - 4] + zlib.decompress(data) + rest


def same(content, path):
    try:
        with open(path, "rb") as file:
            return unpacked(file.read()) == unpacked(content)
    except (OSError, zlib.error, struct.error):
        return False


def main(words):
    check = words[:1] == ["--check"]
    words = words[check:]
    if len(words) > 1 or (check and not words) or words and words[0].startswith("-"):
        sys.exit("usage: make-icons.py [FOLDER] | --check FOLDER")
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    folder = words[0] if words else os.path.join(root, "Icons")
    files = make()
    if check:
        paths = [os.path.join(folder, name) for name in sorted(files)]
        differing = [path for path in paths if not same(files[os.path.basename(path)], path)]
        if differing:
            sys.exit("\n".join(f"{path} is not what make-icons.py makes" for path in differing))
        return
    os.makedirs(folder, exist_ok=True)
    for name, content in files.items():
        with open(os.path.join(folder, name), "wb") as file:
            file.write(content)


if __name__ == "__main__":
    main(sys.argv[1:])
