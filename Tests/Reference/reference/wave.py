"""Wave files: what a reader makes of their bytes, how samples decode and convert, and what is written."""

import struct
import sys
from array import array

from .numbers import INT32_MIN, float32, wrap32

assert array('i').itemsize == 4 and sys.byteorder == 'little'

_SCALE = 2.0 ** -31
_BLOCK = 20000


class _Bytes:
    """Reads numbers byte by byte; a byte past the end reads as all ones."""

    def __init__(self, content):
        self.content = content
        self.at = 0

    def take(self, count):
        taken = self.content[self.at:self.at + count]
        self.at += len(taken)
        return taken.ljust(count, b'\xff')

    def u16(self):
        return int.from_bytes(self.take(2), 'little')

    def u32(self):
        return int.from_bytes(self.take(4), 'little')

    def s32(self):
        return wrap32(self.u32())


class Wave:
    """One wave file. `stream` is null or where the open file stands; `position` is where the reader believes it to
    stand, which after a seek is not the same."""

    def __init__(self, path):
        self.path = path
        self.content = b''
        self.valid = False
        self.format_tag = 0
        self.channels = 0
        self.rate = 0
        self.block_align = 0
        self.bits = 0
        self.sample_bytes = 0
        self.data_offset = 0
        self.frames = 0
        self.riff_end = 0
        self.stream = None
        self.position = 0

    @classmethod
    def read(cls, path, content=None):
        wave = cls(path)
        if content is None:
            with open(path, 'rb') as file:
                content = file.read()
        wave.content = content
        wave._parse()
        return wave

    def _parse(self):
        source = _Bytes(self.content)
        if source.take(4) != b'RIFF':
            return
        self.riff_end = source.s32() + 8
        if source.take(4) != b'WAVE':
            return
        has_format = has_data = False
        data_size = 0
        while True:
            identifier = source.take(4)
            size = source.s32()
            body = source.at
            if size < 0 or body >= self.riff_end % (1 << 64):
                break
            if identifier == b'fmt ':
                self.format_tag, self.channels = source.u16(), source.u16()
                self.rate = source.u32()
                source.u32()
                self.block_align = source.u16()
                if self.format_tag == 1:
                    self.bits = source.u16()
                self.sample_bytes = self.block_align // self.channels if self.channels else 0
                has_format = True
            elif identifier == b'data':
                self.data_offset = body
                has_data = True
                data_size = size
            source.at = body + size
        if has_format and has_data and self.channels and self.block_align:
            self.frames = data_size // self.block_align
            self.valid = True

    def open_at_data(self):
        if self.stream is None:
            self.position = self.data_offset
        self.stream = self.data_offset

    def close(self):
        self.stream = None

    def sample_at(self, frame, channel):
        if self.stream is None:
            self.open_at_data()
        if not self.valid or self.format_tag != 1 or not 0 <= frame < self.frames or channel >= self.channels:
            return 0.0
        offset = self.data_offset + wrap32(frame * self.block_align) + channel * self.sample_bytes
        if offset != self.position:
            self.stream = offset
        value = 0.0
        if self.bits >= 8:
            count = self.bits // 8
            taken = self.content[self.stream:self.stream + count]
            self.stream += len(taken)
            last = taken.ljust(count, b'\xff')[-4:]
            whole = int.from_bytes(last, 'little', signed=True) << 8 * (4 - len(last))
            value = (float32(whole) if count >= 4 else whole) * _SCALE
        self.position += self.sample_bytes
        return value

    def converted(self, bits, factor=None):
        """All samples at another depth, through 32-bit floats; with a factor, through a gain too."""
        total = self.channels * self.frames
        if bits < 8:
            return b''
        if self.bits < 8:
            return bytes(bits // 8 * total)
        width = self.bits // 8
        raw = self.content[self.data_offset:self.data_offset + width * total].ljust(width * total, b'\0')
        out = []
        for first in range(0, total, _BLOCK):
            values = array('f', _left_justified(raw[first * width:(first + _BLOCK) * width], width))
            if factor is None:
                scaled = [value * _SCALE for value in values]
            else:
                scaled = array('f', [value * _SCALE * factor for value in values])
            out.append(encode(scaled, bits, bits // 8))
        return b''.join(out)


def _left_justified(raw, width):
    """Samples of any width as signed 32-bit numbers, their top bits first."""
    count = len(raw) // width
    wide = bytearray(4 * count)
    for byte in range(1, min(4, width) + 1):
        wide[4 - byte::4] = raw[width - byte::width]
    whole = array('i')
    whole.frombytes(wide)
    return whole


def full_scale(bits):
    return float32(wrap32(wrap32(1 << bits - 1) - 1))


def _truncated(value):
    """The whole number of a float; what no 32-bit number holds is the most negative one."""
    if -2147483649.0 < value < 2147483648.0:
        return int(value)
    return INT32_MIN


def encode(values, bits, width):
    """Floats as samples: scaled in 32-bit floats, truncated, and the low bytes of what comes out."""
    scale = full_scale(bits)
    products = array('f', [value * scale for value in values])
    whole = array('i', [_truncated(product) for product in products]).tobytes()
    if width == 4:
        return whole
    out = bytearray(len(products) * width)
    for byte in range(width):
        # Beyond four bytes there is nothing left of the number but its sign.
        out[byte::width] = whole[byte::4] if byte < 4 else bytes(len(products))
    return bytes(out)


def header(rate, channels, bits, frames):
    width = bits // 8
    size = frames * channels * width
    return b''.join((
        b'RIFF', struct.pack('<I', size + 660 & 0xFFFFFFFF), b'WAVE',
        b'bext', struct.pack('<I', 616), bytes(616),
        b'fmt ', struct.pack('<I', 16),
        struct.pack('<HHIIHH', 1, channels & 0xFFFF, rate, rate * channels * width & 0xFFFFFFFF,
                    width * channels & 0xFFFF, bits & 0xFFFF),
        b'data', struct.pack('<I', size & 0xFFFFFFFF)))
