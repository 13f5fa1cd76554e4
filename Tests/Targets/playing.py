"""What a session sounds like, by the rules alone: which region is heard where, and what its fades and gain make of it.

All arithmetic is exact, so that a sample that is rounded the wrong way shows.
"""

import dataclasses
from fractions import Fraction

import waves


@dataclasses.dataclass
class Region:
    """As the session's JSON has it. Positions and lengths in samples."""

    index: int
    track: int
    name: str
    path: str
    position: int
    length: int
    start: int
    fade_in: int = 0
    fade_out: int = 0
    gain_db: float = 0.0
    factor: Fraction = None  # in place of gain_db, where the gain is told as a factor

    @property
    def gain(self):
        if self.factor is not None:
            return self.factor
        return Fraction(10 ** (self.gain_db / 20)) if self.gain_db else 1

    @property
    def end(self):
        return self.position + self.length


def regions_of(session):
    """Every region of a session's JSON, in order of arrival."""
    found = [Region(region["index"], track["track"], region["name"], region["path"], region["position"],
                    region["length"], region["start"], region["fadeIn"], region["fadeOut"], region["gainDb"])
             for track in session["tracks"] for region in track["regions"]]
    return sorted(found, key=lambda region: region.index)


class Media:
    """The wave files of a session, each opened once."""

    def __init__(self):
        self._waves = {}

    def __getitem__(self, path):
        """None for a file that is no wave file."""
        if path not in self._waves:
            self._waves[path] = self._read(path)
        return self._waves[path]

    @staticmethod
    def _read(path):
        try:
            return waves.read_wave(path)
        except (OSError, waves.BadWave):
            return None


def shaped(regions):
    """The regions with their fades as they are played: cut to what a region holds, and without the fade-outs that a
    later region's fade-in takes over."""
    cut = []
    for region in regions:
        fade_in = min(region.fade_in, region.length)
        cut.append(dataclasses.replace(region, fade_in=fade_in, fade_out=min(region.fade_out, region.length - fade_in)))
    for place, region in enumerate(cut):
        if region.fade_out and any(
                later.track == region.track and later.position + later.fade_in == region.end
                and region.fade_out <= later.fade_in for later in cut[place + 1:]):
            cut[place] = dataclasses.replace(region, fade_out=0)
    return cut


def usable(regions, media, rate):
    """Those that the audio is made of: of some length, from a file of the session's rate."""
    return [region for region in regions
            if region.length > 0 and media[region.path] and media[region.path].format.rate == rate]


@dataclasses.dataclass
class Playing:
    """The audio of a session."""

    first: int  # the first region's position
    frames: int
    tracks: dict  # by track in rising order: a list of samples for each channel


def play(regions, media, rate):
    """`regions` in order of arrival. All of them span the session, and each of their tracks is there, silent if need be."""
    first = min(region.position for region in regions)
    frames = max(max(region.position, region.end) for region in regions) - first
    heard = usable(regions, media, rate)
    tracks = {}
    for track in sorted({region.track for region in regions}):
        own = shaped([region for region in heard if region.track == track])
        width = max((media[region.path].format.channels for region in own), default=1)
        channels = [[0] * frames for _ in range(width)]
        for region in own:
            place(region, region.position - first, channels, media)
        tracks[track] = channels
    return Playing(first, frames, tracks)


def samples_of(region, media):
    """Each channel of a region, silent where its file has nothing."""
    wave = media[region.path]
    before = min(max(0, -region.start), region.length)
    sounding = wave.channels(min(region.start + before, wave.frames), region.length - before)
    return [[0] * before + channel + [0] * (region.length - before - len(channel)) for channel in sounding]


def place(region, at, channels, media):
    sound = samples_of(region, media)
    gain = region.gain
    faded = set(range(region.fade_in)) | set(range(region.length - region.fade_out, region.length))
    inner = slice(region.fade_in, region.length - region.fade_out)
    for number, under in enumerate(channels):
        own = sound[number % len(sound)]
        below = under[at:at + region.length]
        over = own if gain == 1 else [sample * gain for sample in own]
        under[at + inner.start:at + inner.stop] = over[inner]
        for sample in faded:
            factor = weight(region, sample)
            under[at + sample] = below[sample] * (1 - factor) + over[sample] * factor


def weight(region, sample):
    """How much of a region is heard: its fade-in times its fade-out."""
    factor = Fraction(1)
    if sample < region.fade_in:
        factor *= Fraction(sample, region.fade_in)
    left = region.length - sample
    if left < region.fade_out:
        factor *= Fraction(left, region.fade_out)
    return factor
