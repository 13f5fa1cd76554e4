"""Projects made at random, from a number that makes each again: cuts that overlap, fades, crossfades and gains on files of many
kinds, timed by every frame rate."""

import dataclasses
import random

from layout import PLACE
from material import wave_of
from reference.timecode import FRAME_MARKS
from stamps import stamp

SAMPLE_RATES = {"/": 48000, "|": 44100, "*": 96000, "@": 88200, "=": 32000}
NAMES = ["take.wav", "Take 2.wav", "a&b.wav", "it's.wav", "<i>.wav", "50%.wav", "#1?.wav", "semi;colon.wav", "no extension",
         "two..dots.wav", "{curly}.WAV", "Grüße.wav", "嵐.wav", "plus+.wav", "tilde~.wav", "a%20b.wav", "]]>.wav", "-->.wav"]
GAINS = ("-6.0", "3", "-60.25", "0.0", "-0.5", "20")
HOUR = 3600


@dataclasses.dataclass
class Cut:
    """Times in samples."""

    source: int  # from 1
    track: int
    start: int  # inside the file
    position: int  # on the project's timeline
    length: int
    fade_in: int = 0
    fade_out: int = 0
    gain_db: str = None
    entry: int = 0


@dataclasses.dataclass
class Project:
    path: object
    clock: object
    cuts: list  # by entry

    @property
    def rate(self):
        return self.clock.rate

    @property
    def lowest_track(self):
        return min(cut.track for cut in self.cuts)


class Clock:
    """Writes times in the marks of one project."""

    def __init__(self, mark="|", separator=":", rate_mark="/"):
        self.mark, self.separator, self.rate_mark = mark, separator, rate_mark
        self.rate = SAMPLE_RATES[rate_mark]

    def time(self, samples):
        return stamp(samples, self.mark, self.separator, self.rate_mark)

    def length(self, samples):
        return stamp(samples, self.mark, ";", self.rate_mark)


def make(seed, folder):
    """A project and its wave files in `folder`, which is made."""
    dice = random.Random(seed)
    folder.mkdir(parents=True)
    mark = list(FRAME_MARKS)[seed % len(FRAME_MARKS)]
    clock = Clock(mark, dice.choice(":;") if FRAME_MARKS[mark][0] == 30 else ":", dice.choice(list(SAMPLE_RATES)))
    clock.origin = dice.choice((0, 1, 10, 23)) * HOUR * clock.rate
    names = dice.sample(NAMES, dice.randint(1, 5))
    lengths = {index: dice.randint(500, 9000) for index in range(1, len(names) + 1)}
    for index, name in enumerate(names, 1):
        (folder / name).write_bytes(noise(dice, lengths[index], clock.rate))
    cuts = [cut for track in dice.sample(range(1, 12), dice.randint(1, 4)) for cut in cuts_of_track(dice, track, lengths, clock)]
    return write(folder / "p.adl", names, cuts, clock)


def write(path, names, cuts, clock):
    """The ADL of these cuts on these files, which lie beside it. The cuts get their numbers here."""
    cuts = [dataclasses.replace(cut, entry=entry) for entry, cut in enumerate(cuts, 1)]
    sources = [f'(Index) {index} (F) "{PLACE}{name}" _ {clock.time(0)} {clock.time(0)} "_" N'
               for index, name in enumerate(names, 1)]
    text = "\n".join(["<ADL>", "<SOURCE_INDEX>", *sources, "</SOURCE_INDEX>", "<EVENT_LIST>",
                      *(lines_of(cut, clock) for cut in cuts), "</EVENT_LIST>", "</ADL>", ""])
    path.write_bytes(shift_jis(text))
    return Project(path, clock, cuts)


def shift_jis(text):
    """As projects hold it: what is ASCII stays as it is, the two characters that the encoding has no place for too."""
    return b"".join(letter.encode("ascii" if letter.isascii() else "shift_jisx0213") for letter in text)


def noise(dice, frames, rate):
    """A wave file in which no two places are alike, with the loudest samples of all among them."""
    bits, channels = dice.choice((16, 24)), dice.choice((1, 1, 1, 2, 6))
    return wave_of(dice.randbytes(frames * channels * bits // 8), bits, rate, channels)


def cuts_of_track(dice, track, lengths, clock):
    """One after another: half of them begin where the fade-out of the one before them does, and fade in as long."""
    at = clock.origin + dice.randint(0, 3000)
    fade_out = 0
    for _ in range(dice.randint(1, 7)):
        source = dice.choice(list(lengths))
        start = dice.randint(0, lengths[source] - 100)
        room = lengths[source] - start
        length = dice.randint(1, 2 * room) if dice.random() < 0.2 else dice.randint(1, room)
        fade_in = fade_out if dice.random() < 0.6 else dice.choice((0, 0, 1, 7, 300, 999, length + 5))
        fade_out = dice.choice((0, 1, 64, 500, 1000))
        yield Cut(source, track, start, at, length, fade_in, fade_out, dice.choice((None,) * 3 + GAINS))
        end = at + length
        at = max(clock.origin, end - fade_out if dice.random() < 0.7 else end + dice.randint(-length - 200, 2000))


def lines_of(cut, clock):
    lines = [f"(Entry) {cut.entry}",
             f"(Cut) I {cut.source} 1 {cut.track} {clock.time(cut.start)} {clock.time(cut.position)} "
             f"{clock.time(cut.position + cut.length)} _"]
    if cut.fade_in:
        lines.append(f"(Infade) {clock.length(cut.fade_in)} LIN _ _ _")
    if cut.fade_out:
        lines.append(f"(Outfade) {clock.length(cut.fade_out)} LIN _ _ _")
    if cut.gain_db is not None:
        lines.append(f"(Gain) _ {cut.gain_db}")
    return "\n".join(lines)
