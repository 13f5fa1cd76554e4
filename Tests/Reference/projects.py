"""Random projects. One seed always gives the same ADL file, the same wave files and the same spots of it."""

import os
import random

from adltext import JAPANESE, AdlText, shift_jis
from plans import PlanMaker
from reference import timecode
from waves import WaveMaker

PLAIN, ODD, DAMAGED, SOUP = 'plain', 'odd', 'damaged', 'soup'

# What can be odd about a project. Too many oddities at once hide each other, so that each has only some of them.
_THEMES = ('text', 'stamps', 'sources', 'names', 'waves', 'events', 'marks')

_WORDS = ('voice', 'sea', 'gale', 'Take', 'room', 'x', 'ambience-left', 'a_24bit', 'b_Gain')


def stamp(samples, mark, separator, rate_mark):
    """A timestamp of that many samples: whole frames, and what is left as its remainder."""
    frames_second, pulled = timecode.FRAME_MARKS[mark]
    rate = timecode.RATE_MARKS[rate_mark]
    fps = frames_second * 1000.0 / 1001.0 if pulled else float(frames_second)
    frames = max(0, int(samples * fps / rate))
    for frame in range(frames, max(-1, frames - 300), -1):
        seconds, part = divmod(frame, frames_second)
        minutes = seconds // 60
        head = '%02d%c%02d:%02d%c%02d%c' % (minutes // 60 % 100, mark, minutes % 60, seconds % 60, separator, part,
                                            rate_mark)
        remainder = samples - timecode.to_samples((head + '0000').encode())
        if 0 <= remainder <= 9999:
            return (head + '%04d' % remainder).encode()
    return (head + '0000').encode()


class _Source:
    def __init__(self, index, name, frames, starts):
        self.index = index
        self.name = name
        self.frames = frames
        self.starts = starts


class ProjectMaker(AdlText):
    def __init__(self, seed, base):
        super().__init__(random.Random(seed))
        self.base = base
        self.folder = os.path.join(base, 'proj')
        self.kind = self.rng.choices((PLAIN, ODD, DAMAGED, SOUP), (36, 38, 16, 10))[0]
        self.themes = {theme for theme in _THEMES
                       if self.chance({PLAIN: 0.0, ODD: 0.4, DAMAGED: 0.15, SOUP: 0.0}[self.kind])}
        if self.kind == PLAIN and self.chance(0.3):
            self.themes = {'waves'}
        self.crossing = self.chance(0.5)
        self.sources = []

    # The whole

    def make(self):
        """Writes all files; answers the path of the ADL file and the spots to run, in order."""
        rng = self.rng
        os.makedirs(self.folder)
        self._choose_clock()
        self._make_sources()
        text = self._adl()
        if self.kind == DAMAGED:
            text = self._damage(text)
        elif self.kind == SOUP:
            text = self._soup()
        path = os.path.join(self.folder, rng.choice(('show.adl', 'Show.1.ADL', 'show')))
        with open(path, 'wb') as file:
            file.write(text)
        maker = PlanMaker(rng, self.base)
        plans = [maker.make() for _ in range(2 if self.chance(0.15) else 1)]
        self._stand_in_the_way(plans)
        return path, plans

    def _choose_clock(self):
        rng = self.rng
        if 'marks' not in self.themes or self.chance(0.2):
            self.mark, self.separator = rng.choice((('|', ':'), (':', ':'), (':', ';'), ('.', ':'), ('=', ':')))
            self.rate_mark = rng.choice('///|')
        else:
            self.mark = rng.choice(list(timecode.FRAME_MARKS))
            self.separator = rng.choice(':;,.')
            self.rate_mark = rng.choice(list(timecode.RATE_MARKS))
        self.origin = rng.choice((0, 0, 3600, 36000, rng.randrange(80000))) * 48000

    def _stamp(self, samples):
        mark, separator, rate_mark = self.mark, self.separator, self.rate_mark
        if self.oddly('stamps', 0.05):
            mark = self.rng.choice(list(timecode.FRAME_MARKS))
        if self.oddly('stamps', 0.05):
            rate_mark = self.rng.choice(list(timecode.RATE_MARKS))
        return stamp(samples, mark, separator, rate_mark)

    def _time(self, samples):
        """A timestamp, now and then one that only looks like it."""
        rng = self.rng
        text = self._stamp(samples)
        if not self.oddly('stamps', 0.06):
            return text
        kind = rng.randrange(8)
        if kind == 0:
            return text[:rng.randrange(1, 16)]
        if kind == 1:
            return text + b'junk/x'
        if kind == 2:
            return b'_'
        if kind == 3:
            return b'"' + text + b'"'
        if kind == 4:
            at = rng.randrange(15)
            return b'"' + text[1:at] + bytes((rng.randrange(0x80, 0x100),)) + text[at + 1:] + b'"'
        at = rng.randrange(16)
        return text[:at] + rng.choice((b'x', b'9', b'/', b'|', b';', b'-', b'5', b'A')) + text[at + 1:]

    # Sources

    def _make_sources(self):
        rng = self.rng
        makers = WaveMaker(rng)
        oddity = 0.7 if 'waves' in self.themes else 0.1 if self.kind == ODD else 0.05
        for number in range(rng.choice((1, 1, 2, 2, 3, 4, 6))):
            name = self._name()
            content = makers.any(oddity)
            index = number + 1
            if self.oddly('sources', 0.1):
                index = rng.choice((0, -1, -7, 1, 2147483647, rng.randrange(10000)))
            if not self.chance(0.04) and not self.oddly('sources', 0.1):
                self._write(name, content)
            starts = self._stamp(rng.choice((0, 0, self.origin, rng.randrange(1 << 30))))
            frames = min(makers.frames, 2000) or rng.randrange(20, 400)
            self.sources.append(_Source(index, name, frames, starts))

    def _name(self):
        rng = self.rng
        stem = rng.choice(_WORDS) + rng.choice(('', '', str(rng.randrange(20))))
        if self.chance(0.12):
            stem = rng.choice(JAPANESE) + rng.choice(('', 'a', '1'))
        if self.oddly('names', 0.3):
            stem = rng.choice(('take.1', 'a.b.c', '', 'with blank', 'per%20cent', "it's", 'back\\slash', 'n' * 247,
                               'n' * 200, 'tilde~'))
        tail = rng.choice(('.wav', '.wav', '.wav', '.WAV', '.bwf'))
        if self.oddly('names', 0.3):
            tail = rng.choice(('', '.', '.w.x'))
        name = (stem + tail) or 'bare'
        if name in ('.', '..'):
            name = 'dot.wav'
        folder = ''
        if self.chance(0.3):
            folder = rng.choice(('Audio/', 'Audio/Reel 1/', '音/', 'a.b/', 'My.Audio/'))
        return folder + name

    def _write(self, name, content):
        path = os.path.join(self.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        if os.path.exists(path):
            return
        with open(path, 'wb') as file:
            file.write(content)

    def _location(self, name):
        """The value of (F) that names a file."""
        rng = self.rng
        head = rng.choice(('URL:file://localhost/Vol/', 'file:///', 'URL:file://srv/Drama//', 'x/', '/Vol/'))
        text = shift_jis(head + name)
        if not self.oddly('sources', 0.25):
            return b'"' + text + b'"'
        return rng.choice((
            b'"' + shift_jis(name) + b'"', b'"' + shift_jis('/' + name) + b'"', b'""', b'"/"', b'"' + text + b'/"',
            b'_', b'x' + text.replace(b' ', b'') + b'y', b'"' + text.replace(b' ', b'%20') + b'"',
            b'"' + text + b'\x81"', b'"\x80\xa0' + text + b'"', b'"x/' + b'long/' * 1000 + b'"',
            b'"a/../' + shift_jis(name) + b'"', b'"' + shift_jis(head + 'none/' + name) + b'"',
            b'"a/' + text.upper() + b'"', b'"x/Audio"', b'"/x/Audio/Reel 1"'))

    def _source_index(self):
        rng = self.rng
        entries = []
        for source in self.sources:
            values = [self._location(source.name), b'_', source.starts, self._time(source.frames), b'"name"', b'N']
            values = values[:rng.choice((6, 6, 6, 4, 5))]
            group = [(b'F', values)]
            if self.chance(0.2):
                group.append((b'T', [b'_'] * 5))
            if self.oddly('sources', 0.1):
                group.append((b'F', [self._location(source.name), b'second', source.starts, b'_']))
            if self.oddly('sources', 0.05):
                group.append((rng.choice((b'Foo', b'Rem', b'Entry')), [b'1']))
            if self.oddly('sources', 0.03):
                group.append((b'F', [b'too', b'few', b'x'][:rng.randrange(4)]))
            if self.oddly('sources', 0.02):
                group.append((b'T', [b'1', b'2', b'3', b'4']))
            if self.oddly('sources', 0.05):
                group = []
            number = rng.choice((b'%04d' % source.index, b'%d' % source.index))
            if self.oddly('sources', 0.03):
                number = rng.choice((b'x', b'"1"', b'99999999999', b'-99999999999', b'+1'))
            entries += [(b'Index', [] if self.oddly('sources', 0.01) else [number])] + group
        if self.oddly('sources', 0.1):
            entries.insert(0, (rng.choice((b'F', b'Junk')), [b'a', b'b']))
        return entries

    # Events

    def _event_list(self):
        rng = self.rng
        entries = []
        count = rng.choice((1, 2, 3, 4, 6, 9, 14)) if not self.oddly('events', 0.05) else rng.choice((0, 0, 25))
        tracks = rng.choice(((1,), (1, 2), (1, 2, 3, 4), (3, 6), (0, 1)))
        if self.crossing and self.chance(0.7):
            tracks = tracks[:1]
        if self.oddly('events', 0.15):
            tracks = rng.choice(((-3, 2), (1, 40000), (2147483647, 2147483640), (-2147483648, 2147483647), (5, 33000),
                                 (-2147483648, 1), (1, 300), (-1, -2), (1, 300), (1, 40000), (7, 120007)))
        ends = {}
        for number in range(1, count + 1):
            label = b'%04d' % number
            if self.oddly('events', 0.1):
                label = b'%d' % rng.choice((rng.randrange(1, 20), -number, 1, rng.randrange(1 << 31), -(1 << 31)))
            if self.oddly('events', 0.03):
                label = rng.choice((b'x', b'"3"', b'9999999999', b'-9999999999'))
            entries.append((b'Entry', [] if self.oddly('events', 0.003) else [label]))
            lines = self._cut_lines(rng.choice(tracks), ends)
            if self.chance(0.12):
                lines = self._other_lines()
            if self.oddly('events', 0.08):
                rng.shuffle(lines)
            entries += lines
        if self.oddly('events', 0.1):
            entries.insert(0, (b'Junk', [b'1']))
        return entries

    def _cut_lines(self, track, ends):
        rng = self.rng
        source = rng.choice(self.sources)
        length = rng.choice((rng.randrange(1, 400), source.frames, rng.randrange(1, 60)))
        into = rng.choice((0, 0, rng.randrange(200), rng.randrange(2000)))
        begins = self.origin + rng.choice((0, rng.randrange(20000)))
        infade = outfade = None
        if self.chance(0.3):
            into = max(0, source.frames - length + rng.randrange(-20, 60))
        if self.chance(0.45):
            infade = self._fade_length(length)
        if self.chance(0.9 if self.crossing else 0.45):
            outfade = self._fade_length(length)
        if track in ends and self.chance(0.9 if self.crossing else 0.6):
            end, last_fade = ends[track]
            begins = end
            if last_fade is not None and self.chance(0.8):
                infade = last_fade
                begins = max(0, end - timecode.to_samples(infade) + rng.choice((0, 0, 0, 0, 0, 1, -1)))
                if self.chance(0.15) and infade[:2] == b'00':
                    # As long, but not in the same words.
                    infade = infade[:2] + (b'=' if infade[2:3] == b'|' else b'|') + infade[3:]
        source_in = self._add(source.starts, into if not self.oddly('events', 0.05) else -into)
        index = source.index
        if self.oddly('events', 0.05):
            index = rng.choice((-1, 77, 0))
        values = [b'I', b'%d' % index, b'1', b'%d' % track, self._quoted(source_in), self._time(begins),
                  self._time(begins + length if not self.oddly('events', 0.04) else max(0, begins - length)), b'_']
        if self.oddly('events', 0.03):
            values = values[:rng.choice((7, 8, 8))] + [b'more', b'words'] * rng.randrange(2)
        ends[track] = (begins + length, outfade)
        lines = [(rng.choice((b'Cut', b'Cut', b'Cut', b'CUT', b'cut')), values)]
        lines += self._fade_lines(b'Infade', infade) + self._fade_lines(b'Outfade', outfade)
        if self.chance(0.25):
            lines.append((b'Gain', [b'1', self._level()]))
        if self.chance(0.3):
            lines.append((b'Rem', [b'NAME', b'"a remark"']))
        if self.oddly('events', 0.08):
            lines += self._stray_lines()
        return lines

    def _add(self, text, samples):
        """A timestamp that many samples after another, with the same marks."""
        try:
            mark, separator, rate_mark = chr(text[2]), chr(text[8]), chr(text[11])
            return stamp(max(0, timecode.to_samples(text) + samples), mark, separator, rate_mark)
        except (IndexError, KeyError):
            return text

    def _quoted(self, text):
        return b'"' + text + b'"' if self.oddly('stamps', 0.02) else text

    def _fade_length(self, length):
        rng = self.rng
        samples = rng.choice((rng.randrange(1, 200), length, rng.randrange(0, 4), rng.randrange(1, 500), 2000))
        if not self.chance(0.7):
            return stamp(samples, rng.choice('|:.='), ';', rng.choice('/|'))
        return b'00%c00:00%c00%c%04d' % (ord(rng.choice('|:.=?')), ord(rng.choice(';;;,')),
                                         ord(rng.choice('///|')), samples % 10000)

    def _fade_lines(self, label, length):
        rng = self.rng
        if length is None:
            return []
        values = [length, b'LIN', b'_', b'-3.5', rng.choice((b'_', b'1e-3', b'0x1.8p1', b'inf', b'.5'))]
        if self.chance(0.4):
            values += [b'CURVE', rng.choice((b'12', b'_')), b'end']
        elif self.oddly('events', 0.3):
            values += [b'five', b'six'][:rng.randrange(3)]
        if self.oddly('events', 0.008):
            values = values[:rng.randrange(5)]
        if self.oddly('events', 0.008):
            values[0:1] = [rng.choice((b'_', b'00|00:00:00/0100', b'30|00:00;00/0000', b'00|00:00;00x0000'))]
        lines = [(label, values)]
        if self.oddly('events', 0.05):
            lines.append((label, [length, b'again', b'7', b'8', b'nan']))
        return lines

    def _level(self):
        rng = self.rng
        if self.oddly('events', 0.2):
            return rng.choice((b'nan', b'inf', b'-inf', b'1e400', b'-1e400', b'0x1p3', b'abc', b'"-6"', b'1e-400',
                               b'200', b'+12.5dB', b'.', b'-.5e1', b'infinity', b'3e'))
        return rng.choice((b'-6.00', b'0', b'3.01', b'-60', b'+6', b'%.2f' % rng.uniform(-30, 12)))

    def _stray_lines(self):
        rng = self.rng
        return [rng.choice((
            (b'Cut', [b'I', b'1', b'1', b'1', b'a', b'b', b'c', b'd']), (b'Silence', [b'1', b'a', b'b', b'c']),
            (b'Alt', [b'I', b'1', b'1', b'a']), (b'Xfade', [b'1', b'a', b'b', b'c', b'4', b'e']),
            (b'Xfade', [b'x', b'a', b'b', b'c', b'4x', b'e', b'more']), (b'Foo', []), (b'Rem', []), (b'Gain', [b'1']),
            (b'Xfade', [b'1']), (b'Index', [b'1']), (b'Source', [b'"x"'])))]

    def _other_lines(self):
        rng = self.rng
        silence = (rng.choice((b'Silence', b'Aux', b'silence')), [b'2', self._time(5), self._time(9), b'_'])
        vid = (b'Vid', [b'a', b'b', b'c', b'd'])
        alt = (b'Alt', [b'I', b'%d' % rng.choice(self.sources).index, b'2', self._time(3)])
        if 'events' not in self.themes:
            return [rng.choice((silence, vid))]
        cut = (b'Cut', [b'I', b'1', b'1', b'1', self._time(0), self._time(0), self._time(90), b'_'])
        return list(rng.choice(((silence,), (vid,), (alt,), (), (alt, alt), (alt, cut), (cut, alt), (cut, silence),
                                (alt, vid), (alt, silence, cut), ((b'Silence', [b'1']),),
                                ((b'Gain', [b'2', b'-3']), (b'Rem', [])))))

    # The text

    def _adl(self):
        rng = self.rng
        parts = [(b'VERSION', self._constants('ADL_ID', 'ADL_UID', 'VER_ADL_VERSION', 'VER_CREATOR')),
                 (b'PROJECT', self._constants('PROJ_TITLE', 'PROJ_ORIGINATOR', 'PROJ_NOTES', 'PROJ_CLIENT_DATA')),
                 (b'SYSTEM', self._constants('SYS_BIT_DEPTH', 'SYS_GAIN')),
                 (b'SEQUENCE', self._constants('SEQ_TITLE', 'SEQ_SAMPLE_RATE', 'SEQ_FRAME_RATE', 'SEQ_CLEAN',
                                               'SEQ_DEST_START')),
                 (b'TRACK_LIST', [(b'Track', [b'1', b'"Ada"'])]),
                 (b'SOURCE_INDEX', self._source_index()), (b'EVENT_LIST', self._event_list())]
        if self.oddly('text', 0.2):
            rng.shuffle(parts)
        if self.oddly('text', 0.1):
            parts.append((b'EVENT_LIST', self._event_list()))
        if self.oddly('text', 0.1):
            parts.insert(rng.randrange(len(parts)), (rng.choice((b'OTHER', b'VERSION', b'A)B', b'SOURCE_INDEX')), []))
        self.line_end = rng.choice((b'\n', b'\r\n', b'\n', b'\r')) if 'text' in self.themes else b'\n'
        out = [self._cased(b'<ADL>')]
        if self.oddly('text', 0.05):
            out[0] = rng.choice((b'<ADL>xyz', b' <ADL>', b'\xef\xbb\xbf<ADL>', b'<ADX>', b'', b'/* c */<ADL>'))
        for name, entries in parts:
            out += self._between()
            out.append(self._section(name, entries))
        out += self._between()
        if not self.oddly('text', 0.1):
            out.append(self._cased(b'</ADL>'))
        out.append(rng.choice((b'', self.line_end, b'<TAIL> never read')))
        return self.line_end.join(out)

    def _stand_in_the_way(self, plans):
        """Puts files and folders where made files would like to go."""
        rng = self.rng
        for source in self.sources:
            if not self.chance(0.15):
                continue
            stem, tail = os.path.splitext(os.path.join(self.folder, source.name))
            path = stem + rng.choice(('_24bit', '_16bit', '_Gain', '_FadeIn', '_XFade', '_FadeOut')) + rng.choice(
                ('', '', '.1')) + tail
            if not os.path.isdir(os.path.dirname(path)) or os.path.exists(path) or len(os.path.basename(path)) > 250:
                continue
            if self.chance(0.3):
                os.mkdir(path)
            else:
                with open(path, 'wb') as file:
                    file.write(b'taken')
        for plan in plans:
            if plan.copy_to and self.chance(0.4):
                os.makedirs(plan.copy_to, exist_ok=True)
