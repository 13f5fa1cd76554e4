"""What the tests of prepare share: projects in the making, and what the prepared folder holds."""

import hashlib
import json
import os
import struct
import subprocess

import material
from program import run

SECOND = 48000


def stamp(samples, mark=".", separator=":", rate="/"):
    """A timestamp at 25 frames and 48000 Hz: 1920 samples to the frame."""
    return material.stamp(samples // 1920, samples % 1920, mark, separator, rate, 25)


HEADER = """<VERSION>
(ADL_ID) 1234
(VER_ADL_VERSION) 01.00
</VERSION>
<PROJECT>
(PROJ_TITLE) "Test"
</PROJECT>
<SEQUENCE>
(SEQ_SAMPLE_RATE) S48000
(SEQ_FRAME_RATE) 25
(SEQ_DEST_START) 01.00:00:00/0000
</SEQUENCE>
"""


def index(number=1, name="take.wav", reference="_", start=stamp(0), length="_", location=None):
    location = location or f"URL:file://localhost/Volumes/Show/{name}"
    return f'(Index) {number:04d} (F) "{location}" {reference} {start} {length} "n" N\n'


def cut(number=1, source=1, channels="1", tracks="1", source_in=0, position=3600 * SECOND, length=SECOND, status="_",
        more=""):
    """One entry. Times in samples."""
    return (f"(Entry) {number:04d} (Cut) I {source} {channels} {tracks} {stamp(source_in)} {stamp(position)} "
            f"{stamp(position + length)} {status} {more}\n")


def project(sources=None, events=None, header=HEADER):
    return (f"<ADL>\n{header}<SOURCE_INDEX>\n{index() if sources is None else sources}</SOURCE_INDEX>\n"
            f"<EVENT_LIST>\n{cut() if events is None else events}</EVENT_LIST>\n</ADL>\n")


def samples(count, seed=1, bits=24):
    """Sample values that a wrong byte, offset or channel changes."""
    high = 1 << (bits - 1)
    value = seed * 7919
    values = []
    for i in range(count):
        value = (value * 1103515245 + 12345 + i) & 0x7FFFFFFF
        values.append(value % (2 * high) - high)
    return values


def packed(values, bits=24):
    return b"".join(value.to_bytes(bits // 8, "little", signed=True) for value in values)


def interleaved(*channels):
    return [value for frame in zip(*channels) for value in frame]


def decoded(path, encoding="signed-integer", bits=24):
    """A file's samples as sox reads them, interleaved."""
    raw = subprocess.run(["sox", os.fspath(path), "-t", "raw", "-e", encoding, "-b", str(bits), "-L", "-"],
                         check=True, capture_output=True).stdout
    step = bits // 8
    return [int.from_bytes(raw[i:i + step], "little", signed=True) for i in range(0, len(raw), step)]


def checksums(folder):
    """Contents, sizes and times of all that stands below a folder."""
    facts = {}
    for path in sorted(folder.rglob("*")):
        info = path.lstat()
        digest = hashlib.sha256(path.read_bytes()).hexdigest() if path.is_file() else ""
        facts[str(path.relative_to(folder))] = (digest, info.st_size, info.st_mtime_ns, info.st_mode)
    return facts


def bext(time_reference, reference="REF"):
    fields = struct.pack("<256s32s32s10s8sQH", b"scene", b"recorder", reference.encode(), b"2026-11-01", b"10:00:00",
                         time_reference, 1)
    body = fields + bytes(602 - len(fields))
    return struct.pack("<4sI", b"bext", len(body)) + body


def meant(path, *options):
    """What the field reader makes of a project."""
    return json.loads(run("check", path, "--json", *options).out)["meant"]


def codes(items):
    return sorted({item["code"] for item in items})
