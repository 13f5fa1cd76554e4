"""Audio files made byte by byte, and what their headers say, read by this module alone.

Sound is held as one array of 32-bit numbers for each channel, left-justified: a sample of fewer bits has zeros below. So
samples of different depths compare equal when they sound equal.
"""

import array
import random
import struct
import sys

assert array.array("i").itemsize == 4 and sys.byteorder == "little"

_PCM_GUID = bytes.fromhex("0100000000001000800000aa00389b71")
_FLOAT_GUID = bytes.fromhex("0300000000001000800000aa00389b71")
# A size field that says: the true size stands in the ds64 chunk (EBU Tech 3306).
_IN_DS64 = 0xFFFFFFFF


def noise(frames, channels=1, bits=24, seed=0):
    """Sound in which every stretch is like no other."""
    rng = random.Random(f"{seed} {frames} {channels} {bits}")
    mask = -1 << (32 - bits)
    return [array.array("i", [value & mask for value in array.array("i", rng.randbytes(4 * frames))])
            for _ in range(channels)]


def _interleaved(channels):
    out = array.array(channels[0].typecode, bytes(channels[0].itemsize * len(channels) * len(channels[0])))
    for number, channel in enumerate(channels):
        out[number::len(channels)] = channel
    return out


def _little(channels, width):
    """The top `width` bytes of each sample, low byte first."""
    raw = _interleaved(channels).tobytes()
    out = bytearray(len(raw) // 4 * width)
    for byte in range(width):
        out[byte::width] = raw[4 - width + byte::4]
    return bytes(out)


def _unsigned8(channels):
    return bytes(value + 128 & 0xFF for value in _little(channels, 1))


def chunk(identifier, body, size=None, pad=True):
    """RIFF asks for a byte of padding after an odd-sized body."""
    return (identifier + struct.pack("<I", len(body) if size is None else size) + body
            + (b"\0" if pad and len(body) % 2 else b""))


def bext(time_reference=0, reference="", description=b""):
    """A bext chunk of version 1 (EBU Tech 3285)."""
    body = struct.pack("<256s32s32s10s8sQH254s", description, b"", reference.encode(), b"2024-02-29", b"23:59:59",
                       time_reference, 1, b"")
    return chunk(b"bext", body)


def _format(tag, channels, rate, bits, width, extra=b""):
    block = channels * width
    return chunk(b"fmt ", struct.pack("<HHIIHH", tag, channels, rate, rate * block, block, bits) + extra)


def _extensible(channels, rate, bits, width, guid):
    return _format(0xFFFE, channels, rate, 8 * width, width, struct.pack("<HHI16s", 22, bits, 0, guid))


def wave(sound, bits=24, rate=48000, *, head=b"", tail=b"", extensible=False, width=None, claimed=None, riff_size=None):
    """Plain PCM. `head` are chunks before the audio, `tail` after it; `claimed` is what the data chunk says that it holds."""
    width = width or (bits + 7) // 8
    form = (_extensible(len(sound), rate, bits, width, _PCM_GUID) if extensible
            else _format(1, len(sound), rate, bits, width))
    audio = _unsigned8(sound) if width == 1 else _little(sound, width)
    body = b"WAVE" + form + head + chunk(b"data", audio, claimed) + tail
    return b"RIFF" + struct.pack("<I", len(body) if riff_size is None else riff_size) + body


def floats(sound, rate=48000, *, head=b"", scale=2.0 ** -31, extensible=False):
    """32-bit float, full scale being 1. Exact for samples of up to 24 bits."""
    form = (_extensible(len(sound), rate, 32, 4, _FLOAT_GUID) if extensible else _format(3, len(sound), rate, 32, 4))
    values = [array.array("f", [value * scale for value in channel]) for channel in sound]
    body = (b"WAVE" + form + chunk(b"fact", struct.pack("<I", len(sound[0]))) + head
            + chunk(b"data", _interleaved(values).tobytes()))
    return b"RIFF" + struct.pack("<I", len(body)) + body


def rf64(sound, bits=24, rate=48000, *, head=b"", mark=b"RF64"):
    """The form for files beyond 4 GiB, small all the same (EBU Tech 3306, ITU-R BS.2088 for BW64)."""
    audio = _little(sound, bits // 8)
    form = _format(1, len(sound), rate, bits, bits // 8)
    rest = form + head + b"data" + struct.pack("<I", _IN_DS64) + audio
    ds64 = chunk(b"ds64", struct.pack("<QQQI", 4 + 36 + len(rest), len(audio), len(sound[0]), 0))
    return mark + struct.pack("<I", _IN_DS64) + b"WAVE" + ds64 + rest


def _extended(value):
    """A positive whole number as an 80-bit float, high byte first."""
    exponent = value.bit_length() - 1
    return struct.pack(">HQ", 16383 + exponent, value << (63 - exponent))


def aiff(sound, bits=24, rate=48000):
    width = bits // 8
    little = _little(sound, width)
    big = bytearray(len(little))
    for byte in range(width):
        big[byte::width] = little[width - 1 - byte::width]

    def big_chunk(identifier, body):
        return identifier + struct.pack(">I", len(body)) + body + b"\0" * (len(body) % 2)

    common = struct.pack(">hIh", len(sound), len(sound[0]), bits) + _extended(rate)
    body = b"AIFF" + big_chunk(b"COMM", common) + big_chunk(b"SSND", bytes(8) + bytes(big))
    return b"FORM" + struct.pack(">I", len(body)) + body


# Reading


class Facts:
    """What a header says. `kind` as `check --json` names it."""

    def __init__(self, kind, rate, channels, bits, frames, time_reference=None, reference=None):
        self.kind = kind
        self.rate = rate
        self.channels = channels
        self.bits = bits
        self.frames = frames
        self.time_reference = time_reference
        self.reference = reference


def facts(content):
    """Of a whole file's bytes; None for what is no audio that this module knows."""
    if content[:4] in (b"RIFF", b"RF64", b"BW64") and content[8:12] == b"WAVE":
        return _wave_facts(content)
    if content[:4] == b"FORM" and content[8:12] in (b"AIFF", b"AIFC"):
        return _aiff_facts(content)
    if content[:4] == b"fLaC":
        packed = int.from_bytes(content[18:26], "big")
        return Facts("other", packed >> 44, (packed >> 41 & 7) + 1, (packed >> 36 & 31) + 1, packed & (1 << 36) - 1)
    return None


def _wave_chunks(content):
    """Identifier, offset of the body and its size, cut to what the file holds; ds64 sizes and padding heeded."""
    at, true_size = 12, None
    while at + 8 <= len(content):
        identifier, size = content[at:at + 4], struct.unpack_from("<I", content, at + 4)[0]
        if identifier == b"ds64":
            true_size = struct.unpack_from("<Q", content, at + 16)[0]
        if identifier == b"data" and size == _IN_DS64 and true_size is not None:
            size = true_size
        yield identifier, at + 8, min(size, len(content) - at - 8)
        at += 8 + size + size % 2


def _wave_facts(content):
    form = data = broadcast = None
    at_format = 0
    for identifier, at, size in _wave_chunks(content):
        if identifier == b"fmt " and size >= 16:
            form, at_format = struct.unpack_from("<HHIIHH", content, at), at
        elif identifier == b"data" and data is None:
            data = size
        elif identifier == b"bext" and size >= 602:
            broadcast = content[at:at + size]
    if form is None or data is None or not form[4]:
        return None
    tag, channels, rate, _, block, bits = form
    kind = {1: "pcm", 3: "float", 0xFFFE: "extensible"}.get(tag, "other")
    if tag == 0xFFFE and content[at_format + 24:at_format + 40] == _FLOAT_GUID:
        kind = "float"
    if content[:4] != b"RIFF":
        kind = "rf64"
    if broadcast is None:
        return Facts(kind, rate, channels, bits, data // block)
    return Facts(kind, rate, channels, bits, data // block, struct.unpack_from("<Q", broadcast, 338)[0],
                 broadcast[288:320].split(b"\0")[0].decode("latin-1").strip())


def _aiff_facts(content):
    at = 12
    while at + 8 <= len(content):
        identifier, size = content[at:at + 4], struct.unpack_from(">I", content, at + 4)[0]
        if identifier == b"COMM":
            channels, frames, bits = struct.unpack_from(">hIh", content, at + 8)
            exponent, mantissa = struct.unpack_from(">HQ", content, at + 16)
            return Facts("other", mantissa >> (63 - (exponent - 16383)), channels, bits, frames)
        at += 8 + size + size % 2
    return None


def plain_sound(content):
    """The sound of a wave file as the system reads one: plain PCM, no padding after odd-sized chunks."""
    if content[:4] != b"RIFF" or content[8:12] != b"WAVE":
        raise AssertionError(f"no wave file: {content[:12]!r}")
    end = struct.unpack_from("<I", content, 4)[0] + 8
    at, form, data = 12, None, None
    while at + 8 <= min(end, len(content)):
        identifier, size = content[at:at + 4], struct.unpack_from("<I", content, at + 4)[0]
        if identifier == b"fmt ":
            form = struct.unpack_from("<HHIIHH", content, at + 8)
        elif identifier == b"data":
            data = content[at + 8:at + 8 + size]
            if len(data) != size:
                raise AssertionError(f"the data chunk claims {size} bytes and has {len(data)}")
        at += 8 + size
    if form is None or data is None:
        raise AssertionError("no format or no data")
    tag, channels, rate, _, block, bits = form
    if tag != 1 or bits not in (16, 24, 32) or block != channels * bits // 8:
        raise AssertionError(f"not what the system reads: format {form}")
    width = bits // 8
    wide = bytearray(len(data) // width * 4)
    for byte in range(width):
        wide[4 - width + byte::4] = data[byte::width]
    samples = array.array("i")
    samples.frombytes(bytes(wide))
    return rate, [samples[number::channels] for number in range(channels)]
