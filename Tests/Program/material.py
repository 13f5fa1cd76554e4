"""Makes ADL projects and wave files for the tests, byte by byte."""

import math
import struct

NTSC = ":"  # the frame-rate mark of 29.97 frames


def stamp(frames_from_zero, remainder=0, mark="|", separator=":", rate="/", frames_per_second=30):
    """A timestamp of 16 characters: 30 frames at 48000 Hz unless told, 1600 samples to the frame."""
    seconds, frames = divmod(frames_from_zero, frames_per_second)
    minutes, seconds = divmod(seconds, 60)
    hours, minutes = divmod(minutes, 60)
    return f"{hours:02d}{mark}{minutes:02d}:{seconds:02d}{separator}{frames:02d}{rate}{remainder:04d}"


SAMPLES_PER_FRAME = 1600
HOUR = 30 * 3600  # frames


def fade(frames, remainder=0):
    """The length of a fade, which is a timestamp with the drop-frame separator."""
    return stamp(frames, remainder, separator=";")


class Adl:
    """An ADL project in the making. Texts are bytes or ASCII."""

    def __init__(self, head=""):
        self.head = _bytes(head)
        self.sources = []
        self.entries = []

    def source(self, index, location, start=None, length=None):
        """`location` as it stands between the quotes."""
        text = b'(Index) %d (F) "%s" _ %s %s "n" N\n' % (
            index, _bytes(location), _bytes(start or stamp(0)), _bytes(length or stamp(300)))
        self.sources.append(text)
        return self

    def cut(self, number, source=1, track=1, source_in=0, dest_in=HOUR, length=30, more=""):
        """Times in frames, or timestamps."""
        out = dest_in + length if isinstance(dest_in, int) else length
        times = [time if isinstance(time, str) else stamp(time) for time in (source_in, dest_in, out)]
        return self.entry(number, f"(Cut) I {source} 1 {track} {' '.join(times)} _ {more}")

    def entry(self, number, text):
        self.entries.append(b"(Entry) %s %s\n" % (_bytes(str(number)), _bytes(text)))
        return self

    @property
    def bytes(self):
        return (b"<ADL>\n" + self.head
                + b"<SOURCE_INDEX>\n" + b"".join(self.sources) + b"</SOURCE_INDEX>\n"
                + b"<EVENT_LIST>\n" + b"".join(self.entries) + b"</EVENT_LIST>\n</ADL>\n")

    def write(self, path):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(self.bytes)
        return path


def _bytes(text):
    return text if isinstance(text, bytes) else text.encode("ascii")


def wave(frames, bits=24, rate=48000, channels=1, format_tag=1, claimed_data_size=None, chunks=b""):
    """A wave file of a tone that never comes to rest, so that every sample tells where it belongs."""
    audio = b"".join(
        _sample(int(((1 << (bits - 1)) - 1) * 0.5 * math.sin(0.05 * frame * (channel + 1))), bits)
        for frame in range(frames) for channel in range(channels))
    return wave_of(audio, bits, rate, channels, format_tag, claimed_data_size, chunks)


def wave_of(audio, bits=24, rate=48000, channels=1, format_tag=1, claimed_data_size=None, chunks=b""):
    block = channels * bits // 8 & 0xFFFF
    format_chunk = struct.pack("<4sIHHIIHH", b"fmt ", 16, format_tag, channels, rate, rate * block & 0xFFFFFFFF, block, bits)
    size = len(audio) if claimed_data_size is None else claimed_data_size
    data = struct.pack("<4sI", b"data", size) + audio
    body = b"WAVE" + format_chunk + chunks + data
    return b"RIFF" + struct.pack("<I", min(len(body) - len(audio) + size, 0xFFFFFFFF)) + body


def _sample(value, bits):
    return value.to_bytes(bits // 8, "little", signed=True)


def decoded(message):
    """The fields of a region message, read from its bytes alone."""
    fields = {"path": message["parameters"][0].get("path")}
    for parameter in message["parameters"][1:] + message["region"]:
        fields[parameter["key"]] = _value(parameter)
    return fields


def _value(parameter):
    data = bytes.fromhex(parameter["hex"])
    if parameter["type"] == "TEXT":
        return data[1:1 + data[0]]
    form = {2: "=h", 4: "=i", 8: "=q"}[len(data)]
    return struct.unpack(form, data)[0]


def one_cut(folder, frames=96000, wave_bytes=None, **cut):
    """A project of one cut on one wave file, which is what most rules need. Its path."""
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "take.wav").write_bytes(wave_bytes or wave(frames))
    return Adl().source(1, "URL:file://localhost/a/take.wav").cut(1, **cut).write(folder / "p.adl")
