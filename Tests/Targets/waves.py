"""Wave files read and made byte by byte, from the format's own rules: nothing of the program or its libraries is asked.

Samples are whole numbers of 1/2^31 of full scale, or fractions of it where floats are finer than that.
"""

import array
import dataclasses
import struct
import sys
from fractions import Fraction

FULL_SCALE = 1 << 31

PCM = 1
FLOAT = 3
EXTENSIBLE = 0xFFFE
SIZE_ELSEWHERE = 0xFFFFFFFF  # the true size stands in ds64, or nobody knew it yet


class BadWave(ValueError):
    pass


@dataclasses.dataclass
class Bext:
    description: bytes
    originator: bytes
    reference: bytes
    date: bytes
    time: bytes
    time_reference: int
    version: int
    umid: bytes
    history: bytes

    @classmethod
    def of(cls, body):
        if len(body) < 602:
            raise BadWave(f"bext of {len(body)} bytes")
        texts = struct.unpack("<256s32s32s10s8s", body[:338])
        return cls(*(_text(text) for text in texts), *struct.unpack("<QH", body[338:348]), body[348:412], body[602:])


def _text(field):
    text, _, rest = field.partition(b"\0")
    if rest.strip(b"\0"):
        raise BadWave(f"something stands after the end of a text: {field!r}")
    return text


@dataclasses.dataclass
class Format:
    tag: int
    channels: int
    rate: int
    bytes_per_second: int
    block: int
    bits: int
    size: int  # of the chunk

    @classmethod
    def of(cls, body):
        tag, channels, rate, per_second, block, bits = struct.unpack("<HHIIHH", body[:16])
        if tag == EXTENSIBLE:
            tag = struct.unpack("<H", body[24:26])[0]
        if block != channels * (bits // 8) or per_second != block * rate:
            raise BadWave(f"a format at odds with itself: {body!r}")
        return cls(tag, channels, rate, per_second, block, bits, len(body))


@dataclasses.dataclass
class Wave:
    form: str  # RIFF or RF64
    riff_size: int
    chunks: list  # of (name, offset of the body, size)
    format: Format
    bext: Bext
    facts: int  # sample frames as the fact chunk has them, or None
    fact_frames: int  # the same as ds64 has them
    data: tuple  # offset, size
    end: int  # of the last chunk, padding included
    path: object

    @property
    def frames(self):
        return self.data[1] // self.format.block

    def bytes(self):
        with open(self.path, "rb") as file:
            file.seek(self.data[0])
            return file.read(self.data[1])

    def channels(self, first=0, count=None):
        """A list of samples for each channel."""
        block = self.format.block
        count = self.frames - first if count is None else max(0, min(count, self.frames - first))
        with open(self.path, "rb") as file:
            file.seek(self.data[0] + first * block)
            audio = file.read(count * block)
        samples = decoded(audio, self.format.tag, self.format.bits)
        return [samples[channel::self.format.channels] for channel in range(self.format.channels)]


def chunk_heads(file, size):
    """Every chunk of a file in order: name, offset of its body, size, read by the rule that odd ones are padded."""
    at = 12
    sizes = {}
    while at + 8 <= size:
        file.seek(at)
        name, length = struct.unpack("<4sI", file.read(8))
        if name == b"ds64":
            riff, data, frames, count = struct.unpack("<QQQI", file.read(28))
            sizes = {b"RIFF": riff, b"data": data, b"fact": frames}
            if count:
                raise BadWave("a table in ds64")
        if length == SIZE_ELSEWHERE and name == b"data" and sizes:
            length = sizes[name]
        yield name, at + 8, length, sizes
        at += 8 + length + length % 2


def read_wave(path):
    """The whole of a file that was written to its end. One that is at odds with the format's rules is an error."""
    with open(path, "rb") as file:
        size = file.seek(0, 2)
        file.seek(0)
        form, riff_size, kind = struct.unpack("<4sI4s", file.read(12))
        if form not in (b"RIFF", b"RF64") or kind != b"WAVE":
            raise BadWave(f"{form!r} {kind!r}")
        bodies, chunks, sizes, end = {}, [], {}, 12
        for name, offset, length, sizes in chunk_heads(file, size):
            if offset + length > size:
                raise BadWave(f"{name!r} ends at {offset + length} of {size} bytes")
            if name in bodies:
                raise BadWave(f"two chunks {name!r}")
            chunks.append((name, offset, length))
            end = offset + length + length % 2
            file.seek(offset)
            bodies[name] = file.read(length) if name != b"data" else (offset, length)
            if length % 2 and name != b"data":
                if file.read(1) != b"\0":
                    raise BadWave(f"the padding of {name!r} is not 0")
        if form == b"RF64":
            if riff_size != SIZE_ELSEWHERE or chunks[0][0] != b"ds64":
                raise BadWave("an RF64 without ds64 as its first chunk")
            riff_size = sizes[b"RIFF"]
    fact = bodies.get(b"fact")
    return Wave(form.decode(), riff_size, chunks, Format.of(bodies[b"fmt "]),
                Bext.of(bodies[b"bext"]) if b"bext" in bodies else None,
                struct.unpack("<I", fact)[0] if fact else None, sizes.get(b"fact"), bodies[b"data"], end, path)


def decoded(audio, tag, bits):
    """Samples of all channels, one after the other."""
    if tag == FLOAT:
        values = array.array({32: "f", 64: "d"}[bits])
        values.frombytes(audio)
        _swap(values)
        return [_scaled(value) for value in values]
    if tag != PCM:
        raise BadWave(f"format tag {tag}")
    if bits == 8:
        return [(byte - 128) << 24 for byte in audio]
    if bits == 24:
        wide = bytearray(len(audio) // 3 * 4)
        wide[1::4], wide[2::4], wide[3::4] = audio[0::3], audio[1::3], audio[2::3]
        audio, bits = bytes(wide), 32
    values = array.array({16: "h", 32: "i"}[bits])
    values.frombytes(audio)
    _swap(values)
    return [value << 16 for value in values] if bits == 16 else list(values)


def _swap(values):
    if sys.byteorder == "big":
        values.byteswap()


def _scaled(value):
    exact = Fraction(value) * FULL_SCALE
    return exact.numerator if exact.denominator == 1 else exact


def encoded(samples, depth):
    """As a target of "16", "24" or "32f" holds them: rounded to nearest, ties to even, and clipped; floats never."""
    if depth == "32f":
        values = array.array("f", [float(Fraction(sample) / FULL_SCALE) for sample in samples])
        _swap(values)
        return values.tobytes()
    bits = int(depth)
    step, top = 1 << (32 - bits), (1 << (bits - 1)) - 1
    rounded = [max(-top - 1, min(top, _nearest(sample, step))) for sample in samples]
    if bits == 16:
        values = array.array("h", rounded)
        _swap(values)
        return values.tobytes()
    values = array.array("i", [value << 8 for value in rounded])
    if sys.byteorder == "big":
        values.byteswap()
    wide = values.tobytes()
    narrow = bytearray(len(wide) // 4 * 3)
    narrow[0::3], narrow[1::3], narrow[2::3] = wide[1::4], wide[2::4], wide[3::4]
    return bytes(narrow)


def _nearest(sample, step):
    if isinstance(sample, int):
        whole, rest = divmod(sample, step)
        if rest * 2 > step or (rest * 2 == step and whole & 1):
            whole += 1
        return whole
    return round(Fraction(sample) / step)  # Python's round takes ties to even


def interleaved(channels):
    frames = len(channels[0])
    if len(channels) == 1:
        return channels[0]
    out = [0] * (frames * len(channels))
    for channel, samples in enumerate(channels):
        out[channel::len(channels)] = samples
    return out
