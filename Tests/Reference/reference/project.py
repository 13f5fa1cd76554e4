"""A loaded project: its constants, sources and events, and what the reader has to say about its oddities."""

import os

from . import timecode
from .numbers import atof, atoi
from .scanner import Scanner
from .text import same, shift_jis_to_utf8
from .wave import Wave

CONSTANTS = (
    (b'VERSION', ('ADL_ID', 'ADL_UID', 'VER_ADL_VERSION', 'VER_CREATOR', 'VER_CRTR')),
    (b'PROJECT', ('PROJ_TITLE', 'PROJ_ORIGINATOR', 'PROJ_CREATE_DATE', 'PROJ_NOTES', 'PROJ_CLIENT_DATA')),
    (b'SYSTEM', ('SYS_SRC_OFFSET', 'SYS_BIT_DEPTH', 'SYS_AUD_CODEC', 'SYS_XFADE_LEN', 'SYS_GAIN')),
    (b'SEQUENCE', ('SEQ_TITLE', 'SEQ_DESCRIPT', 'SEQ_SAMPLE_RATE', 'SEQ_FRAME_RATE', 'SEQ_ADL_LEVEL', 'SEQ_CLEAN',
                   'SEQ_SORT', 'SEQ_MULTICHAN', 'SEQ_DEST_START')),
)
CONSTANT_NAMES = [name for _, names in CONSTANTS for name in names]


class LoadFailure(Exception):
    def __init__(self, code, section, label):
        super().__init__()
        self.code = code
        self.section = section
        self.label = label
        self.line = 0


class Source:
    def __init__(self):
        self.f = [None] * 6
        self.t = [None] * 5
        self.file = None


class Event:
    def __init__(self, number):
        self.label = None
        self.edit = None
        self.infade = None
        self.outfade = None
        self.xfade = None
        self.gain = None
        self.number = number
        self.source_file = None
        self.source_start = None
        self.source_length = None
        self.event_on = 0
        self.track_on = 0
        self.rendered = None

    @property
    def is_cut(self):
        return same(self.label, b'Cut')

    @property
    def live(self):
        return self.is_cut and self.track_on != 0 and self.event_on != 0


class _Line:
    """One entry of the tree with its texts cut out."""

    def __init__(self, scanner, entry):
        self.label = scanner.text(entry.label)
        self.values = [scanner.text(value) for value in entry.values]
        self.line = scanner.line(entry.label)

    def is_label(self, keyword):
        return same(self.label, keyword)

    def need(self, section, count):
        if len(self.values) < count:
            self.fail('values-missing', section)

    def need_number(self, section):
        if not self.values:
            self.fail('index-missing', section)

    def fail(self, code, section):
        failure = LoadFailure(code, section, self.label)
        failure.line = self.line
        raise failure


def _cut(values):
    return {'kind': 'cut', 'sourceType': values[0], 'sourceIn': values[4], 'destIn': values[5], 'destOut': values[6],
            'cutTail': values[7], 'sourceIndex': atoi(values[1]), 'sourceChannel': atoi(values[2]),
            'destChannel': atoi(values[3]), 'cutMark1': 1, 'cutMark2': 1}


def _silence(values):
    return {'kind': 'silence', 'silenceText1': values[1], 'silenceText2': values[2], 'silenceText3': values[3],
            'silenceNumber': atoi(values[0]), 'silenceMark': 1}


def _vid(values):
    return {'kind': 'vid', 'vidText0': values[0], 'vidText1': values[1], 'vidText2': values[2], 'vidText3': values[3]}


def _alt(values):
    return {'kind': 'alt', 'altType': values[0], 'altTime': values[3], 'altIndex': atoi(values[1]),
            'altChannel': atoi(values[2]), 'altMark': 1}


_EDITS = ((b'Cut', 8, _cut), (b'Silence', 4, _silence), (b'Aux', 4, _silence), (b'Vid', 4, _vid), (b'Alt', 4, _alt))


def _fade(earlier, values):
    fade = {'present': True, 'length': values[0], 'fadeText1': values[1],
            'fadeText5': earlier['fadeText5'] if earlier else None,
            'fadeText7': earlier['fadeText7'] if earlier else None,
            'fadeNumber6': earlier['fadeNumber6'] if earlier else 0,
            'fadeParam2': atof(values[2]), 'fadeParam3': atof(values[3]), 'fadeParam4': atof(values[4])}
    if len(values) >= 8:
        fade.update(fadeText5=values[5], fadeNumber6=atoi(values[6]), fadeText7=values[7])
    return fade


def _xfade(values):
    return {'present': True, 'xfadeText1': values[1], 'xfadeText2': values[2], 'xfadeText3': values[3],
            'xfadeText5': values[5], 'xfadeNumber0': atoi(values[0]), 'xfadeNumber4': atoi(values[4])}


def _fade_fault(length):
    """What a fade length lacks: its separator alone, or the form of a timestamp."""
    mended = length[:8] + b';' + length[9:16]
    return 'fade-separator' if len(length) >= 16 and timecode.is_timestamp(mended) else 'fade-form'


class Project:
    """Loads at once. `failure` is null or tells what ended the load; `said` are the lines for standard error, and
    `diagnostics` the same as (code, line, text), with what standard error does not hear of."""

    def __init__(self, path):
        self.path = path
        self.folder = path.rsplit(b'/', 1)[0] if b'/' in path else path
        self.said = []
        self.diagnostics = []
        self.failure = None
        self.constants = {name: None for name in CONSTANT_NAMES}
        self.sources = {}
        self.events = []
        with open(path, 'rb') as file:
            self.scanner = Scanner(file.read())
        if not self.scanner.block.lower().startswith(b'<adl>'):
            self.diagnostics.append(('no-adl', 0, b'The file does not begin with <ADL>'))
        self.scanner.run()
        try:
            self._read_sections()
        except LoadFailure as failure:
            self.failure = failure
            return
        for index in sorted(self.sources):
            self._find(self.sources[index])
        self._link()

    def _tell(self, code, line, text):
        self.said.append(text)
        self.diagnostics.append((code, line.line, text))

    def tree(self, sections):
        return [(self.scanner.text(section.name),
                 [(self.scanner.text(entry.label), [self.scanner.text(value) for value in entry.values])
                  for entry in section.entries])
                for section in sections]

    def _read_sections(self):
        for section in self.scanner.sections:
            name = self.scanner.text(section.name)
            lines = [_Line(self.scanner, entry) for entry in section.entries]
            for keyword, labels in CONSTANTS:
                if same(name, keyword):
                    self._read_constants(name, labels, lines)
            if same(name, b'SOURCE_INDEX'):
                self._read_sources(name, lines)
            elif same(name, b'EVENT_LIST'):
                self._read_events(name, lines)

    def _read_constants(self, name, labels, lines):
        for line in lines:
            known = next((label for label in labels if line.is_label(label.encode())), None)
            if known is None or not line.values:
                self._tell('unknown-identifier', line,
                           b'Found unknown identifier: %s in section %s' % (line.label, name))
            else:
                self.constants[known] = line.values[0]

    def _until(self, keyword, lines, at):
        """The first position from `at` on with that label; what is passed over is told."""
        while at < len(lines) and not lines[at].is_label(keyword):
            self._tell('unexpected-entry', lines[at], b'Found unexpected entry: %s' % lines[at].label)
            at += 1
        return at

    def _read_sources(self, name, lines):
        at = self._until(b'Index', lines, 0)
        while at < len(lines):
            lines[at].need_number(name)
            index = atoi(lines[at].values[0])
            source = Source()
            at += 1
            while at < len(lines) and not lines[at].is_label(b'Index'):
                line = lines[at]
                if line.is_label(b'F'):
                    line.need(name, 4)
                    taken = 6 if len(line.values) >= 6 else 4
                    source.f[:taken] = line.values[:taken]
                elif line.is_label(b'T'):
                    line.need(name, 5)
                    source.t = line.values[:5]
                at += 1
            self.sources[index] = source

    def _read_events(self, name, lines):
        found = {}
        at = self._until(b'Entry', lines, 0)
        while at < len(lines):
            lines[at].need_number(name)
            event = Event(atoi(lines[at].values[0]))
            at += 1
            edited = False
            while at < len(lines) and not lines[at].is_label(b'Entry'):
                edited = self._read_event_line(name, lines[at], event, edited)
                at += 1
            found[event.number] = event
        self.events += [found[number] for number in sorted(found)]

    def _read_event_line(self, name, line, event, edited):
        """Takes one line into the event; answers whether the event has its edit now."""
        values = line.values
        if not edited:
            for keyword, count, take in _EDITS:
                if line.is_label(keyword):
                    line.need(name, count)
                    event.edit = take(values)
                    if keyword == b'Alt':
                        return False
                    event.label = line.label
                    return True
        if line.is_label(b'Infade') or line.is_label(b'Outfade'):
            line.need(name, 5)
            if not timecode.is_timestamp(values[0]):
                line.fail(_fade_fault(values[0]), name)
            if line.is_label(b'Infade'):
                event.infade = _fade(event.infade, values)
            else:
                event.outfade = _fade(event.outfade, values)
        elif line.is_label(b'Xfade'):
            line.need(name, 6)
            event.xfade = _xfade(values)
        elif line.is_label(b'Gain'):
            line.need(name, 2)
            event.gain = {'present': True, 'gainNumber': atoi(values[0]), 'gainDb': atof(values[1])}
        elif not line.is_label(b'Rem'):
            self._tell('unexpected-label', line, b'Encountered unexpected label: %s' % line.label)
        return edited

    def _find(self, source):
        if source.f[0] is None:
            return
        location = shift_jis_to_utf8(source.f[0][1:])
        if not location:
            return
        location = location[:-1]
        slash = location.rfind(b'/')
        while slash > 0:
            path = self.folder + location[slash:]
            if os.path.isfile(path) and os.access(path, os.R_OK):
                source.file = Wave.read(path)
                return
            slash = location.rfind(b'/', 0, slash)

    def _link(self):
        for event in self.events:
            if not event.is_cut or event.edit['sourceIndex'] == -1:
                continue
            source = self.sources.get(event.edit['sourceIndex'])
            if source:
                event.source_file = source.file
                event.source_start = source.f[2]
                event.source_length = source.f[3]
