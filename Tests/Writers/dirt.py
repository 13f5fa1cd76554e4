"""Random projects with a known meaning, written cleanly or in dirty habits that do not change what they mean.

One seed always gives the same project. A clean one must be called clean and spot whole; a dirty one, prepared, must hold the
same cuts at the same places with the same sound.
"""

import random

import audio
import shift_jis
import stamps
from known import Cut, Fade

# Each changes how the project is written, or adds what a prepared project must not hold.
HABITS = (
    "fade marks", "fade short", "marks alike", "other frames", "other rates", "short stamps", "no start", "byte order mark",
    "preface", "stray section", "stray line", "comments", "next line", "cut off", "entry twice", "entry missing", "index name",
    "index twice", "index missing", "locations", "elsewhere", "kinds", "chunks", "stereo", "off", "empty", "curves", "overlong",
    "gains", "encoding", "outside", "silence", "lists", "status missing", "header", "names",
    "off grid", "high rate", "rendered", "any order")

_MARKS = [(mark, separator) for mark, separator in stamps.TABLE_MARKS]
_RATES = {"/": 48000, "|": 44100, "*": 96000, "@": 88200}
_WORDS = ("voice", "sea", "gale", "take 7", "room-tone", "x", "amb_L")
_JAPANESE = ("嵐の夜", "効果音ソ", "表示", "予報")
_FOREIGN = {"utf-8": ("嵐の夜", "Überfahrt", "録音"), "gbk": ("录音电话", "声音文件"), "cp1252": ("Möwe über Räumen", "Fähre nach Süden")}


class Source:
    def __init__(self, index, name, sound, bits, start, reference):
        self.index = index
        self.name = name
        self.folder = ""
        self.sound = sound
        self.bits = bits
        self.start = start
        # The time reference in the file's bext chunk, or none.
        self.reference = reference
        self.known_as = None

    @property
    def frames(self):
        return len(self.sound[0])


class Project:
    """What is meant: sources, cuts and rates. Dirty ones may hold what a clean one may not: several channels."""

    def __init__(self, seed, dirty):
        self.rng = random.Random(f"{seed} {'dirty' if dirty else 'clean'}")
        self.seed = seed
        self.habits = self._some_habits() if dirty else set()
        rng = self.rng
        self.rate_mark = rng.choice("*@" if "high rate" in self.habits else "//|")
        self.rate = _RATES[self.rate_mark]
        self.mark, self.separator = rng.choice(_MARKS)
        self.codec = shift_jis.NAME
        if "encoding" in self.habits:
            self.codec = rng.choice(tuple(_FOREIGN))
        self.origin = self._on_grid(rng.choice((0, 3600, 3600, 36000)) * self.rate + rng.randrange(10 * self.rate))
        if "off grid" in self.habits:
            self.origin += rng.randrange(1, 1400)
        self.sources = [self._source(index) for index in rng.sample(range(1, 40), rng.randrange(1, 5))]
        self.cuts = []
        self._make_cuts()

    def has(self, habit, likelihood=1.0):
        return habit in self.habits and self.rng.random() < likelihood

    def _some_habits(self):
        rng = random.Random(f"{self.seed} habits")
        habits = set(rng.sample(HABITS, rng.choice((1, 2, 3, 5, 9))))
        # A source without a number is its place in the list, which a second source of a number would shift.
        return habits - {"index twice"} if "index missing" in habits else habits

    def stamp(self, count):
        return stamps.stamp(count, self.mark, self.separator, self.rate_mark)

    def _on_grid(self, count):
        """The first frame that begins there or before."""
        return stamps.samples(self.stamp(count)[:12] + "0000")

    def _source(self, index):
        rng = self.rng
        bits = rng.choice((16, 24, 24))
        channels = 2 if self.has("stereo", 0.6) else 1
        start = rng.choice((0, self.origin, rng.randrange(20 * 3600) * self.rate + rng.randrange(self.rate)))
        if "no start" in self.habits and rng.random() < 0.3:
            start = 0
        sound = audio.noise(rng.randrange(800, 6000), channels, bits, seed=f"{self.seed} {index}")
        return Source(index, f"{self._word()} {index}.wav".replace(" ", rng.choice((" ", "_"))), sound, bits, start,
                      start if start and ("no start" in self.habits or rng.random() < 0.5) else None)

    def _word(self):
        rng = self.rng
        if "encoding" in self.habits:
            return rng.choice(_FOREIGN[self.codec])
        return rng.choice(_JAPANESE if rng.random() < 0.15 else _WORDS)

    def _make_cuts(self):
        rng = self.rng
        at, number = self.origin, 0
        for place in range(rng.randrange(1, 9)):
            number += rng.choice((1, 1, 1, 3))
            source = rng.choice(self.sources)
            offset = rng.choice((0, rng.randrange(source.frames // 2)))
            most = source.frames - offset
            length = rng.choice((most, rng.randrange(1, most + 1), rng.randrange(1, most + 1)))
            # The first is the earliest: its stamp decides by how much a spot would move everything.
            position = at if place == 0 else at + rng.randrange(0, 40000)
            if "outside" in self.habits and place > 0 and rng.random() < 0.5:
                offset, length = self._reach_outside(source, offset, length)
            track = rng.choice((1, 1, 2, 5))
            cut = Cut(number, source.index, position, position + length, offset, tracks=(track,))
            if len(source.sound) == 2:
                cut.channels, cut.tracks = rng.choice((([1, 2], [track, track + 1]), ([1], [track]), ([2], [track]),
                                                       ([1], [track, track + 1])))
            cut.fade_in, cut.fade_out = self._fade(length), self._fade(length)
            self._level(cut)
            if "names" in self.habits or rng.random() < 0.2:
                cut.name = rng.choice(("Ada, off", "rain", "x (2)"))
            self.cuts.append(cut)
        if "any order" in self.habits:
            # The earliest cut is not the first in the text, whose rate is the project's.
            positions = [(cut.position, cut.end) for cut in self.cuts]
            rng.shuffle(positions)
            for cut, (position, _) in zip(self.cuts, positions):
                cut.position, cut.end = position, position + cut.end - cut.position

    def _reach_outside(self, source, offset, length):
        """Past the end, before the beginning, or both; something is always left inside. No source whose start is in
        question: what lies inside decides it."""
        if "no start" in self.habits or source.start < 2000 or not any(cut.source == source.index for cut in self.cuts):
            return offset, length
        before, after = self.rng.choice(((0, 500), (300, 0), (100, 100)))
        return (-before, source.frames + before + after) if before else (offset, source.frames - offset + after)

    def _fade(self, length):
        rng = self.rng
        if rng.random() < 0.6:
            return None
        most = length + 700 if "overlong" in self.habits else length
        count = rng.choice((most, rng.randrange(1, most + 1)))
        if "fade short" in self.habits:
            frame = stamps.samples(stamps.stamp(count, self.mark, ";", self.rate_mark)[:12] + "0000")
            count = frame or count
        if "rendered" in self.habits and rng.random() < 0.5:
            return Fade(count, "CURVE", (-12.5, None, -2.5), (rng.choice(range(1, 50)), rng.randrange(100000)))
        if "curves" in self.habits:
            return Fade(count, "CURVE", (-12.5, -6.0, rng.choice((None, -2.5))))
        return Fade(count)

    def _level(self, cut):
        rng = self.rng
        if rng.random() < 0.4:
            cut.gains = [(None, rng.choice((-6.02, 5.0, 0.5, -60.0)))]
        if "gains" in self.habits and len(cut.tracks) == 2:
            cut.gains = [((cut.tracks[0],), -6.5), ((cut.tracks[1],), rng.choice((-6.5, 3.25)))][:rng.choice((1, 2, 2))]

    @property
    def sounds(self):
        return {source.index: source.sound for source in self.sources}
