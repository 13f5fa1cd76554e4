"""A project with a known meaning: its text, its files, and what both amount to, told by whoever made it."""


class Fade:
    def __init__(self, length, shape="LIN", levels=(None, None, None), rendered=None):
        self.length = length
        self.shape = shape
        self.levels = list(levels)
        self.rendered = rendered

    @property
    def told(self):
        rendered = self.rendered and {"source": self.rendered[0], "in": self.rendered[1]}
        return {"length": self.length, "shape": self.shape, "levels": self.levels, "rendered": rendered}


class Cut:
    """All numbers in samples at the project's rate. `gains` are pairs of tracks (None for all) and decibels."""

    def __init__(self, entry, source, position, end, offset, *, tracks=(1,), channels=(1,), fade_in=None, fade_out=None,
                 gains=(), name=None, enabled=True):
        self.entry = entry
        self.source = source
        self.position = position
        self.end = end
        self.offset = offset
        self.tracks = list(tracks)
        self.channels = list(channels)
        self.fade_in = fade_in
        self.fade_out = fade_out
        self.gains = list(gains)
        self.name = name
        self.enabled = enabled

    @property
    def told(self):
        """As `meant` has it."""
        return {"entry": self.entry, "kind": "cut", "name": self.name, "enabled": self.enabled, "source": self.source,
                "sourceChannels": self.channels, "tracks": self.tracks, "position": self.position, "end": self.end,
                "fileOffset": self.offset, "fadeIn": self.fade_in and self.fade_in.told,
                "fadeOut": self.fade_out and self.fade_out.told,
                "gains": [{"channels": None if tracks is None else list(tracks), "dB": level} for tracks, level in self.gains]}

    def gain_on(self, track):
        """Of several lines for a channel the last."""
        held = [level for tracks, level in self.gains if tracks is None or track in tracks]
        return held[-1] if held else None


class Placed:
    """One mono cut as a prepared project must hold it."""

    def __init__(self, cut, track, sound):
        begin, end = max(0, cut.offset), cut.offset + cut.end - cut.position
        if sound is not None:
            end = min(end, len(sound))
        self.position = cut.position + begin - cut.offset
        self.end = self.position + end - begin
        self.track = track
        self.sound = None if sound is None else sound[begin:end]
        length = self.end - self.position
        self.fade_in = min(cut.fade_in.length, length) if cut.fade_in else 0
        self.fade_out = min(cut.fade_out.length, length) if cut.fade_out else 0
        self.gain = cut.gain_on(track)

    @property
    def key(self):
        return self.track, self.position, self.end, self.fade_in, self.fade_out, self.gain


def placed(cuts, sounds):
    """What a prepared project must hold of the cuts, in entry order, channel by channel. `sounds` are the sources' channels
    by index; a source without sound keeps its cuts."""
    out = []
    for cut in cuts:
        if not cut.enabled or cut.end <= cut.position:
            continue
        channels = cut.channels if len(cut.channels) > 1 else cut.channels * len(cut.tracks)
        for channel, track in zip(channels, cut.tracks):
            sound = sounds.get(cut.source)
            if sound is None:
                out.append(Placed(cut, track, None))
            elif channel <= len(sound):
                mono = Placed(cut, track, sound[channel - 1])
                if mono.end > mono.position:
                    out.append(mono)
    return out
