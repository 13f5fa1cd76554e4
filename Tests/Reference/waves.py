"""Random wave files: sound ones, odd ones and broken ones."""

import struct


def chunk(identifier, body, size=None):
    return identifier + struct.pack('<I', (len(body) if size is None else size) & 0xFFFFFFFF) + body


def format_chunk(tag, channels, rate, bits, width, block_align=None, extra=b''):
    if block_align is None:
        block_align = width * channels
    return chunk(b'fmt ', struct.pack('<HHIIHH', tag, channels, rate, rate * block_align & 0xFFFFFFFF, block_align,
                                      bits) + extra)


def form(chunks, size=None):
    body = b'WAVE' + b''.join(chunks)
    return b'RIFF' + struct.pack('<I', (len(body) if size is None else size) & 0xFFFFFFFF) + body


_ODDITIES = ('channels', 'depth', 'depth', 'tag', 'align', 'claim', 'claim', 'claim', 'format', 'twice', 'chunks',
             'order', 'size', 'size', 'size')


class WaveMaker:
    def __init__(self, rng):
        self.rng = rng
        self.frames = 0

    def _frames(self, channels):
        self.frames = self._choose_frames(channels)
        return self.frames

    def _choose_frames(self, channels):
        rng = self.rng
        if rng.random() < 0.02:
            return rng.choice((20001, 20000, 19999, 6667, 6666)) if channels < 3 else 6667
        return rng.choice((0, 1, 2, rng.randrange(40), rng.randrange(300), rng.randrange(300), rng.randrange(700)))

    def _audio(self, length, width):
        rng = self.rng
        kind = rng.random()
        if kind < 0.7:
            return rng.randbytes(length)
        if kind < 0.8:
            return bytes(length)
        top = b'\xff' * (width - 1) + b'\x7f'
        bottom = bytes(width - 1) + b'\x80'
        pattern = top if kind < 0.87 else bottom if kind < 0.94 else top + bottom
        return (pattern * (length // len(pattern) + 1))[:length]

    def sound(self):
        """A file that any program would take."""
        rng = self.rng
        channels = rng.choices((1, 2, 3), (6, 3, 1))[0]
        bits, width = rng.choice(((16, 2), (24, 3), (24, 3), (32, 4)))
        frames = self._frames(channels)
        chunks = [format_chunk(1, channels, rng.choice((48000, 48000, 44100, 96000)), bits, width),
                  chunk(b'data', self._audio(frames * channels * width, width))]
        if rng.random() < 0.5:
            chunks.insert(rng.randrange(2), self._bext())
        if rng.random() < 0.3:
            chunks.insert(rng.randrange(len(chunks) + 1), self._other(even=True))
        return form(chunks)

    def _bext(self, size=None):
        rng = self.rng
        if size is None:
            size = rng.choice((602, 602, 616, 640, 603, 700))
        return chunk(b'bext', rng.randbytes(size))

    def _other(self, even=False):
        rng = self.rng
        size = rng.choice((0, 4, 26, 4 + rng.randrange(40)))
        if even:
            size &= ~1
        return chunk(rng.choice((b'LIST', b'iXML', b'cue ', b'junk', b'\xff\xfe\x00a')), rng.randbytes(size))

    def odd(self):
        """A file with one to three oddities."""
        rng = self.rng
        odd = {rng.choice(_ODDITIES) for _ in range(rng.choice((1, 1, 2, 3)))}
        channels = rng.choices((1, 2, 3), (6, 4, 1))[0]
        if 'channels' in odd:
            channels = rng.choice((5, 5, 8, 0))
        bits, width = rng.choice(((16, 2), (24, 3), (32, 4)))
        if 'depth' in odd:
            bits, width = rng.choice(((8, 1), (8, 1), (20, 3), (20, 3), (12, 2), (28, 4), (4, 1), (9, 2), (17, 3)))
        frames = self._frames(max(1, channels))
        tag = rng.choice((3, 3, 0xFFFE, 0)) if 'tag' in odd else 1
        block_align = None
        if 'align' in odd:
            block_align = rng.choice((0, 1, width * channels + 1, width * channels - 1, 7, 2 * width * channels))
            block_align = max(0, block_align)
        audio = self._audio(frames * channels * width, width)
        claimed = None
        if 'claim' in odd:
            claimed = rng.choice((len(audio) + rng.randrange(1, 900), max(0, len(audio) - rng.randrange(200)), -1,
                                  len(audio) + 1, 0x80000000, len(audio) + 200))
        extra = rng.choice((b'\0\0', rng.randbytes(24), b'\0')) if 'format' in odd else b''
        sound_format = format_chunk(tag, channels, rng.choice((48000, 44100, 8000, 1)), bits, width, block_align, extra)
        chunks = [sound_format, chunk(b'data', audio, claimed)]
        if 'twice' in odd:
            second = format_chunk(1, rng.choice((1, 2)), 32000, *rng.choice(((16, 2), (24, 3))))
            if self.rng.random() < 0.5:
                second = chunk(b'data', self._audio(rng.randrange(300) * 2, 2))
            chunks.insert(rng.randrange(3), second)
        if 'chunks' in odd:
            for _ in range(rng.randrange(1, 4)):
                chunks.insert(rng.randrange(len(chunks) + 1), self._bext(rng.choice((None, None, 100, 601, 0)))
                              if rng.random() < 0.5 else self._other())
        if 'order' in odd:
            rng.shuffle(chunks)
        return form(chunks, self._false_size(sum(map(len, chunks)) + 4) if 'size' in odd else None)

    def _false_size(self, size):
        rng = self.rng
        return rng.choice((size + rng.randrange(1, 2000), max(0, size - rng.randrange(1, 400)), size - 1, size - 2,
                           size - rng.randrange(3, 9), 0, 4, -1, -8,
                           -100, -100, -9, -rng.randrange(9, 1 << 30), 0x7FFFFFFF, rng.randrange(size + 1)))

    def broken(self):
        rng = self.rng
        content = self.odd()
        kind = rng.randrange(6)
        if kind == 0:
            return b''
        if kind == 1:
            return rng.choice((b'RIFX', b'riff', b'FORM')) + content[4:]
        if kind == 2:
            return content[:8] + b'WAVX' + content[12:]
        if kind == 3:
            return rng.randbytes(rng.randrange(100))
        if kind == 4:
            return content[:rng.randrange(len(content) + 1)]
        return content[:rng.randrange(1, 60)]

    def any(self, oddity):
        """`oddity` from 0 (all files are sound) to 1."""
        if self.rng.random() >= oddity:
            return self.sound()
        return self.broken() if self.rng.random() < 0.25 else self.odd()
