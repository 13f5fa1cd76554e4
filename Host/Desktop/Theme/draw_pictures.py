#!/usr/bin/env python3
"""Draws the theme's small pictures (check boxes, radio buttons, arrows) as PNG files.

    ./draw_pictures.py            writes into ThemeImages/ beside this script

The colours that the window has too are read from Palette.h. Nothing but the Python standard library is needed. Each picture is a list of shapes, given by their
signed distance in pixels, and edges are smooth because coverage is what the distance says it is.
"""

import math
import pathlib
import re
import struct
import zlib

HERE = pathlib.Path(__file__).resolve().parent


def tone(name):
    """A colour of the window, as red, green and blue."""
    number = re.search(rf"^  {name} = 0x(\w{{6}}),", (HERE / "Palette.h").read_text(encoding="utf-8"), re.MULTILINE)
    return tuple(bytes.fromhex(number[1]))


ACCENT = tone("Accent")
WHITE = tone("Surface")
OUTLINE = (160, 170, 182)
INK = (84, 96, 110)
FAINT = (176, 184, 194)
PALE = tone("MarkedText")
FOLDER = (126, 168, 236)
FOLDER_BACK = (92, 138, 214)


def rounded_box(cx, cy, half_width, half_height, radius):
    def distance(x, y):
        dx = abs(x - cx) - half_width + radius
        dy = abs(y - cy) - half_height + radius
        outside = math.hypot(max(dx, 0.0), max(dy, 0.0))
        return outside + min(max(dx, dy), 0.0) - radius
    return distance


def disc(cx, cy, radius):
    return lambda x, y: math.hypot(x - cx, y - cy) - radius


def stroke(points, width):
    """A line through points, with round ends."""
    def distance(x, y):
        nearest = math.inf
        for (ax, ay), (bx, by) in zip(points, points[1:]):
            length = (bx - ax) ** 2 + (by - ay) ** 2
            t = max(0.0, min(1.0, ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / length))
            nearest = min(nearest, math.hypot(x - ax - t * (bx - ax), y - ay - t * (by - ay)))
        return nearest - width / 2
    return distance


def render(width, height, shapes):
    """Lays the shapes over each other, the first at the bottom. Returns rows of RGBA bytes."""
    rows = []
    for row in range(height):
        line = bytearray([0])  # PNG filter: none
        for column in range(width):
            red = green = blue = alpha = 0.0
            for distance, colour in shapes:
                cover = max(0.0, min(1.0, 0.5 - distance(column + 0.5, row + 0.5)))
                red, green, blue = (c * cover + old * (1 - cover)
                                    for c, old in zip(colour, (red, green, blue)))
                alpha = cover + alpha * (1 - cover)
            # Colours were laid down already weighted by their cover; PNG wants them unweighted.
            scale = 1 / alpha if alpha > 0 else 0
            line += bytes(min(255, round(c * scale)) for c in (red, green, blue))
            line.append(round(alpha * 255))
        rows.append(bytes(line))
    return rows


def write_png(path, width, height, rows):
    def chunk(kind, data):
        body = kind + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                     + chunk(b"IDAT", zlib.compress(b"".join(rows), 9)) + chunk(b"IEND", b""))


def box(outer, inner):
    return [(rounded_box(8, 8, 6.5, 6.5, 3), outer), (rounded_box(8, 8, 5.5, 5.5, 2), inner)]


def folder(size):
    """A folder in two tones, drawn on a grid of 24 units."""
    unit = size / 24
    tab = rounded_box(8 * unit, 7.5 * unit, 5 * unit, 2.5 * unit, 1.5 * unit)
    back = rounded_box(12 * unit, 13 * unit, 9 * unit, 6 * unit, 1.5 * unit)
    front = rounded_box(12 * unit, 14 * unit, 9 * unit, 5 * unit, 1.5 * unit)
    return size, size, [(tab, FOLDER_BACK), (back, FOLDER_BACK), (front, FOLDER)]


def document():
    sheet = rounded_box(24, 24, 15, 19, 3)
    inner = rounded_box(24, 24, 13.8, 17.8, 2)
    lines = [(stroke([(16, y), (32, y)], 2), FAINT) for y in (16, 22, 28)]
    return 48, 48, [(sheet, OUTLINE), (inner, WHITE)] + lines


def home():
    roof = stroke([(3, 11), (12, 4), (21, 11)], 2.2)
    walls = stroke([(6, 10.5), (6, 19), (18, 19), (18, 10.5)], 2.2)
    return 24, 24, [(roof, INK), (walls, INK)]


def drive(arrow):
    """A drive with an arrow that points into it or out of it."""
    tip = 9.5 if arrow == "in" else 4.5
    box = stroke([(5, 15), (5, 20), (19, 20), (19, 15)], 2)
    shaft = stroke([(12, 4), (12, 11 if arrow == "in" else 12)], 2)
    sign = 1 if arrow == "in" else -1
    head = stroke([(8.5, tip - 2 * sign), (12, tip + 2 * sign), (15.5, tip - 2 * sign)], 2)
    return 24, 24, [(box, INK), (shaft, INK), (head, INK)]


def application(size):
    """The program's icon: three tracks with a region on each."""
    unit = size / 48
    shapes = [(rounded_box(24 * unit, 24 * unit, 22 * unit, 22 * unit, 9 * unit), ACCENT)]
    for row, (left, right) in enumerate(((8, 26), (18, 40), (11, 33))):
        middle = (left + right) / 2
        shapes.append((rounded_box(middle * unit, (14 + 10 * row) * unit,
                                   (right - left) / 2 * unit, 3.4 * unit, 2 * unit),
                       WHITE if row != 1 else PALE))
    return size, size, shapes


def chevron(size, points, colour):
    return size, size, [(stroke(points, 1.6), colour)]


def pictures():
    tick = (stroke([(4.8, 8.3), (7.1, 10.6), (11.3, 5.6)], 1.9), WHITE)
    ring = [(disc(8, 8, 6.5), OUTLINE), (disc(8, 8, 5.5), WHITE)]
    dot = [(disc(8, 8, 6.5), ACCENT), (disc(8, 8, 2.6), WHITE)]
    down = [(2, 3.5), (5, 6.5), (8, 3.5)]
    up = [(2, 6.5), (5, 3.5), (8, 6.5)]
    left = [(6.5, 2), (3.5, 5), (6.5, 8)]
    right = [(3.5, 2), (6.5, 5), (3.5, 8)]
    drawn = {
        "common_SwitchOff": (16, 16, box(OUTLINE, WHITE)),
        "common_SwitchOn": (16, 16, box(ACCENT, ACCENT) + [tick]),
        "common_RadioOff": (16, 16, ring),
        "common_RadioOn": (16, 16, dot),
        "common_Nibble": chevron(10, down, INK),
        "common_3DArrowDown": chevron(10, down, INK),
        "NSComboArrow": chevron(10, down, INK),
        "common_3DArrowRight": chevron(10, right, INK),
        "common_3DArrowRightH": chevron(10, right, INK),
        "common_2DCheckMark": (10, 10, [(stroke([(1.5, 5.2), (4, 7.7), (8.5, 2.4)], 1.6), INK)]),
    }
    for name in ("Folder", "HomeDirectory", "GSFolder", "DocsFolder", "Desktop"):
        drawn["common_" + name] = folder(48)
    drawn["common_Unknown"] = document()
    drawn["common_Home"] = home()
    drawn["common_Mount"] = drive("in")
    drawn["common_Unmount"] = drive("out")
    drawn["common_ret"] = drawn["common_retH"] = (1, 1, [])  # buttons go without a return key
    drawn["VelmoraDesktop"] = application(48)
    for name, points in (("Up", up), ("Down", down), ("Left", left), ("Right", right)):
        drawn["common_Arrow" + name] = chevron(10, points, INK)
        drawn["common_Arrow" + name + "H"] = chevron(10, points, FAINT)
    return drawn


def main():
    folder = HERE / "ThemeImages"
    folder.mkdir(exist_ok=True)
    for name, (width, height, shapes) in pictures().items():
        write_png(folder / (name + ".png"), width, height, render(width, height, shapes))
    print(f"{len(pictures())} pictures in {folder.name}/")


if __name__ == "__main__":
    main()
