"""What an ADL means, read from its bytes by this module alone: what `meant` of `check --json` must say.

Where the rules leave a field open, the field holds ANY, which equals everything.
"""

import fractions
import math
import os
import re

import search
import shift_jis
import stamps
from reference.timecode import FRAME_MARKS, RATE_MARKS
from tokens import entries

_STAMP = re.compile(r'\d\d(.)\d\d.\d\d(.)\d\d(?:(.)(\d{4}))?\Z', re.DOTALL)
_NOT_GIVEN = (None, '_', '')


class _Any:
    def __eq__(self, other):
        return True

    def __repr__(self):
        return 'ANY'


ANY = _Any()


def encoding_of(content, file_exists):
    """The name of the encoding and Python's name of it. `file_exists` asks of a decoder whether a named file is there."""
    if content.isascii():
        return 'ASCII', 'ascii'
    if _decodes(content, 'utf-8'):
        return 'UTF-8', 'utf-8'
    whole = [pair for pair in (('Shift-JIS', shift_jis.NAME), ('Windows-1252', 'cp1252'), ('GBK', 'gbk'))
             if _decodes(content, pair[1])]
    for pair in whole:
        if file_exists(pair[1]):
            return pair
    return whole[0] if whole else ('Shift-JIS', shift_jis.NAME)


def _decodes(content, encoding):
    try:
        shift_jis.decode_as(content, encoding, 'strict')
        return True
    except UnicodeDecodeError:
        return False


def nearest(ratio):
    """Halves up."""
    return math.floor(ratio + fractions.Fraction(1, 2))


def _number(text):
    """A level in dB; what is written in another way than people write one is not judged."""
    return float(text) if re.match(r'[+-]?\d+(\.\d*)?\Z', text) else ANY


class Clock:
    """Turns stamps into samples at the project's rate."""

    def __init__(self, default_rate, trust_header=False, header_rate=None, header_frames=None):
        self.default_rate = default_rate
        self.trust_header = trust_header
        self.header_rate = header_rate
        self.header_frames = header_frames
        self.project_rate = None

    def own(self, text):
        """Samples at the stamp's own rate, and that rate; None for what is no timestamp."""
        if text in _NOT_GIVEN:
            return None
        match = _STAMP.match(text)
        if not match or match[1] not in FRAME_MARKS or (match[3] and match[3] not in RATE_MARKS):
            return None
        rate_mark = match[3] or self.default_rate
        rate = stamps.exact_rate(rate_mark) if isinstance(rate_mark, str) else fractions.Fraction(rate_mark)
        nominal, per_second = FRAME_MARKS[match[1]][0], stamps.frames_per_second(match[1])
        if self.trust_header:
            rate = self.header_rate or rate
            nominal, per_second = self.header_frames or (nominal, per_second)
        numbers = [int(text[at:at + 2]) for at in (0, 3, 6, 9)]
        frames = stamps.frame_count(*numbers, nominal, match[2] in stamps.DROP)
        return math.ceil(frames * rate / per_second) + int(match[4] or 0), rate

    def samples(self, text):
        told = self.own(text)
        return None if told is None else self.brought(*told)

    def brought(self, count, rate):
        return count if rate == self.project_rate else nearest(count * self.project_rate / rate)


def channel_list(text):
    if text in _NOT_GIVEN:
        return [1]
    match = re.match(r'(\d+)(?:[~-](\d+))?\Z', text)
    if not match:
        return [1]
    first, last = int(match[1]), int(match[2] or match[1])
    return list(range(first, last + 1))


_HEADER_FRAMES = {'24': '=', '25': '.', '30': '|', '29.97': ':', '23.976': '-', '23.98': '-', '24.975': '/'}


class Reading:
    """`meant` and `encoding` of one ADL, and what its parts mean."""

    def __init__(self, path, media=(), trust='marks'):
        path = os.path.abspath(path)
        with open(path, 'rb') as file:
            self.content = file.read()
        self.entries = entries(self.content)
        self.folder = os.path.dirname(path)
        self.encoding, self.codec = encoding_of(self.content, self._names_a_file)
        self.clock = self._clock(trust)
        self.folders = search.Folders(self.folder, [os.path.abspath(folder) for folder in media])
        self.groups = self._event_groups()
        self.sources = self._sources()
        self._set_project_rate()
        self._finish_sources()
        self.events = [self._event(number, group) for number, group in self.groups]

    @property
    def meant(self):
        first = self._first_cut()
        return {'sampleRate': float(self.clock.project_rate) if first else ANY,
                'frameRate': ANY,
                'sources': [source.told for source in self.sources.values()],
                'events': self.events}

    def _text(self, value):
        return None if value is None else shift_jis.decode_as(value, self.codec)

    def _names_a_file(self, codec):
        """Whether a location with bytes beyond ASCII, read so, names a file in the ADL's folder."""
        for entry in self.entries:
            location = entry.value(0)
            if entry.section != 'SOURCE_INDEX' or entry.label != 'F' or not location or location.isascii():
                continue
            parts = re.split(r'[/\\]', shift_jis.decode_as(location, codec))
            if any(os.path.isfile(os.path.join(self.folder, *parts[at:])) for at in range(len(parts))):
                return True
        return False

    def _constant(self, keyword):
        found = None
        for entry in self.entries:
            if entry.label == keyword and entry.values:
                found = self._text(entry.values[0])
        return found

    def _clock(self, trust):
        rate_text, frames_text = self._constant('SEQ_SAMPLE_RATE'), self._constant('SEQ_FRAME_RATE')
        rate = re.match(r'\d+(\.\d+)?', rate_text or '')
        header_rate = fractions.Fraction(rate[0]) if rate else None
        mark = _HEADER_FRAMES.get(frames_text)
        header_frames = (FRAME_MARKS[mark][0], stamps.frames_per_second(mark)) if mark else None
        default = header_rate or 48000
        for entry in self.entries:
            for value in entry.values:
                match = _STAMP.match(self._text(value))
                if match and match[3] in RATE_MARKS and match[1] in FRAME_MARKS:
                    return Clock(match[3], trust == 'header', header_rate, header_frames)
        return Clock(default, trust == 'header', header_rate, header_frames)

    # Sources

    def _sources(self):
        found, place, current = {}, 0, None
        for entry in self.entries:
            if entry.section != 'SOURCE_INDEX':
                continue
            if entry.label == 'INDEX':
                place += 1
                number = self._text(entry.value(0)) or ''
                index = int(number) if re.match(r'\d+\Z', number) else place
                found.pop(index, None)
                current = found[index] = _Source(index)
            elif entry.label == 'F' and current:
                current.values = [self._text(value) for value in entry.values]
                current.location = entry.value(0)
                # The system takes the first and the last byte for quotation marks, whatever they are.
                current.seen_by_system = entry.raw[0][1:-1] if entry.raw else None
        return found

    def _set_project_rate(self):
        first = self._first_cut()
        for value in (5, 6, 4) if first else ():
            told = self.clock.own(self._text(first.value(value)))
            if told:
                self.clock.project_rate = told[1]
                return
        self.clock.project_rate = fractions.Fraction(48000)

    def _first_cut(self):
        return next((entry for entry in self.entries if entry.section == 'EVENT_LIST' and entry.label == 'CUT'), None)

    def _finish_sources(self):
        for source in self.sources.values():
            own_start, own_length = self.clock.own(source.value(2)), self.clock.own(source.value(3))
            source.path, source.rule = None, None
            if source.location:
                source.path, source.rule = self.folders.find(search.Wanted(
                    source.seen_by_system, source.value(0), None if source.value(1) in _NOT_GIVEN else source.value(1),
                    own_length and own_length[0], own_start and own_start[0]))
            source.facts = self.folders.facts_of(source.path) if source.path else None
            source.start = self._file_start(source)
            source.told = source.as_told(own_length and self.clock.samples(source.value(3)))

    def _file_start(self, source):
        """The third (F) value, unless all cuts say that it cannot be; then the time reference or 0."""
        told = self.clock.samples(source.value(2))
        if source.facts is None:
            return told
        spans = [(self.clock.samples(self._text(cut.value(4))), self.clock.samples(self._text(cut.value(6)))
                  - self.clock.samples(self._text(cut.value(5)))) for cut in self._cuts_of(source)]
        frames = self.clock.brought(source.facts.frames, fractions.Fraction(source.facts.rate))

        def inside(start):
            return sum(1 for begin, length in spans if 0 <= begin - start and begin - start + length <= frames)

        reference = None
        if source.facts.time_reference is not None:
            reference = self.clock.brought(source.facts.time_reference, fractions.Fraction(source.facts.rate))
        guesses = ([reference] if reference is not None else []) + [0]
        if told is not None and not (spans and inside(told) == 0 and any(inside(guess) == len(spans) for guess in guesses)):
            return told
        best = max(guesses, key=inside)
        return best if inside(best) else 0

    def _cuts_of(self, source):
        for _, group in self.groups:
            cut = _edit(group, 'CUT')
            if cut and self._source_of(cut) is source and self._enabled(cut):
                try:
                    if None not in [self.clock.samples(self._text(cut.value(at))) for at in (4, 5, 6)]:
                        yield cut
                except TypeError:
                    continue

    def _source_of(self, cut):
        text = self._text(cut.value(1)) or ''
        if re.match(r'\d+\Z', text):
            return self.sources.get(int(text))
        for source in self.sources.values():
            if source.location and text.casefold() in [name.casefold() for name in search.spelled_names(source.value(0))]:
                return source
        return None

    # Events

    def _event_groups(self):
        groups = []
        for entry in self.entries:
            if entry.section != 'EVENT_LIST':
                continue
            if entry.label == 'ENTRY':
                number = self._text(entry.value(0)) or ''
                groups.append((int(number) if re.match(r'\d+\Z', number) else ANY, []))
            elif groups:
                groups[-1][1].append(entry)
        return groups

    def _enabled(self, cut):
        return self._text(cut.value(7)) not in ('D', 'M', 'E')

    def _event(self, number, group):
        cut = _edit(group, 'CUT')
        if cut is None:
            kind = next((name for label, name in (('SILENCE', 'silence'), ('AUX', 'aux'), ('VID', 'video'))
                         if _edit(group, label)), 'other')
            return {'entry': number, 'kind': kind}
        source = self._source_of(cut)
        begin, position, end = (self.clock.samples(self._text(cut.value(at))) for at in (4, 5, 6))
        # What the end of the text has cut is left out in any case.
        known = source is not None and None not in (source.start, begin, position, end)
        return {'entry': number, 'kind': 'cut', 'name': self._name(group), 'enabled': self._enabled(cut),
                'source': source.index if source else ANY,
                'sourceChannels': channel_list(self._text(cut.value(2))),
                'tracks': channel_list(self._text(cut.value(3))),
                'position': position, 'end': end, 'fileOffset': begin - source.start if known else ANY,
                'fadeIn': self._fade(group, 'INFADE'), 'fadeOut': self._fade(group, 'OUTFADE'),
                'gains': self._gains(group)}

    def _name(self, group):
        for entry in group:
            if entry.label == 'REM' and len(entry.values) > 1 and self._text(entry.values[0]).upper() == 'NAME':
                return self._text(entry.values[1])
        return None

    def _fade(self, group, label):
        entry = _edit(group, label, last=True)
        length = self.clock.samples(self._text(entry.value(0))) if entry else None
        if not length:
            return None
        texts = [self._text(value) for value in entry.values]
        levels = [None if text in _NOT_GIVEN else _number(text) for text in (texts[2:5] + [None] * 3)[:3]]
        rendered = None
        if len(texts) > 6:
            index = int(texts[6]) if re.match(r'\d+\Z', texts[6]) else ANY
            rendered = {'source': index, 'in': self.clock.samples(texts[7]) if len(texts) > 7 else None}
        return {'length': length, 'shape': texts[1] if len(texts) > 1 else ANY, 'levels': levels, 'rendered': rendered}

    def _gains(self, group):
        """Of several lines for a channel the last."""
        told = {}
        for entry in group:
            if entry.label == 'GAIN' and len(entry.values) > 1:
                channels = self._text(entry.values[0])
                key = None if channels in _NOT_GIVEN else tuple(channel_list(channels))
                told.pop(key, None)
                told[key] = _number(self._text(entry.values[1]))
        return [{'channels': None if key is None else list(key), 'dB': level} for key, level in told.items()]


def _edit(group, label, last=False):
    found = [entry for entry in group if entry.label == label]
    return found[-1 if last else 0] if found else None


class _Source:
    def __init__(self, index):
        self.index = index
        self.location = self.seen_by_system = None
        self.values = []
        self.told = self.path = self.rule = self.facts = self.start = None

    def value(self, number):
        return self.values[number] if number < len(self.values) else None

    def as_told(self, length):
        file = None
        if self.path and self.facts:
            file = {'path': self.path, 'found': self.rule, 'kind': self.facts.kind, 'sampleRate': self.facts.rate,
                    'channels': self.facts.channels, 'bitsPerSample': self.facts.bits, 'frames': self.facts.frames,
                    'timeReference': self.facts.time_reference}
        elif self.path:
            file = ANY
        return {'index': self.index, 'location': self.value(0), 'name': ANY, 'file': file,
                'fileStart': self.start if self.facts or self.start is not None else ANY, 'length': length}


def differences(mine, theirs, where='meant'):
    """What two readings do not share, as lines. What one leaves out counts as null, so that kinds of events compare."""
    if mine is ANY:
        return []
    if isinstance(mine, dict) and isinstance(theirs, dict):
        return [line for key in mine for line in differences(mine[key], theirs.get(key), f'{where}.{key}')]
    if isinstance(mine, list) and isinstance(theirs, list) and len(mine) == len(theirs):
        return [line for at, pair in enumerate(zip(mine, theirs)) for line in differences(*pair, f'{where}[{at}]')]
    if isinstance(mine, float) and isinstance(theirs, (int, float)) and abs(mine - theirs) < 1e-6:
        return []
    return [] if mine == theirs else [f'{where}: {mine!r} by the rules, {theirs!r} told']
