"""Reads PNG pictures of 8-bit RGBA, as far as the tests look at them."""

import struct
import zlib


class Picture:
    """Width, height and the rows of bytes, four for each pixel; `rows` may be limited to the topmost."""

    def __init__(self, path, most_rows=None):
        data = path.read_bytes()
        position, packed = 8, b""
        while position < len(data):
            size, kind = struct.unpack(">I4s", data[position:position + 8])
            part = data[position + 8:position + 8 + size]
            if kind == b"IHDR":
                self.width, self.height, depth, colour = struct.unpack(">IIBB", part[:10])
                assert (depth, colour) == (8, 6), "no RGBA"
            elif kind == b"IDAT":
                packed += part
            position += 12 + size
        stride = 4 * self.width + 1
        raw = zlib.decompress(packed)
        self.rows = []
        before = bytes(4 * self.width)
        for row in range(min(self.height, most_rows or self.height)):
            before = _unfiltered(raw[row * stride:(row + 1) * stride], before)
            self.rows.append(bytes(before))

    def cut(self, left, top, width, height):
        return [row[4 * left:4 * (left + width)] for row in self.rows[top:top + height]]

    def shows(self, block):
        """Whether the block of rows stands somewhere in the picture, byte for byte."""
        for top in range(len(self.rows) - len(block) + 1):
            at = self.rows[top].find(block[0])
            while at >= 0:
                if all(self.rows[top + i][at:at + len(line)] == line for i, line in enumerate(block)):
                    return True
                at = self.rows[top].find(block[0], at + 1)
        return False


def _unfiltered(line, above):
    """Takes back what PNG's filters did to a row: each byte is told by its neighbours left, above and left of above."""
    kind, row = line[0], bytearray(line[1:])
    for x, value in enumerate(row):
        left = row[x - 4] if x >= 4 else 0
        corner = above[x - 4] if x >= 4 else 0
        if kind == 1:
            row[x] = (value + left) & 255
        elif kind == 2:
            row[x] = (value + above[x]) & 255
        elif kind == 3:
            row[x] = (value + (left + above[x]) // 2) & 255
        elif kind == 4:
            guess = left + above[x] - corner
            nearest = min((left, above[x], corner), key=lambda near: abs(guess - near))
            row[x] = (value + nearest) & 255
    return row
