"""The view model behind the four tables, and the object that `info --json` prints of it."""

import math

from . import timecode
from .numbers import INT32_MAX, INT32_MIN, wrap32
from .project import CONSTANT_NAMES
from .text import shift_jis_text

ROW_LIMIT = 100000
_MISSING = 'Some files not found. Check event list.'
_TITLES = ('Project Title', 'Proj Orijinator', 'Proj Create Data', 'Proj Note', 'Proj Client Data', '',
           'Sequence Title', 'Seq Sample Rate', 'Seq Frame Rate', 'Seq ADL Level', 'Seq Clean', 'Seq Multichan',
           'Seq Dest Start')
_ROW_CONSTANTS = ('PROJ_TITLE', 'PROJ_ORIGINATOR', 'PROJ_CREATE_DATE', 'PROJ_NOTES', 'PROJ_CLIENT_DATA', None,
                  'SEQ_TITLE', 'SEQ_SAMPLE_RATE', 'SEQ_FRAME_RATE', 'SEQ_ADL_LEVEL', 'SEQ_CLEAN', 'SEQ_MULTICHAN',
                  'SEQ_DEST_START')
_WIDTHS = ('Mono', 'Stereo', '3 Ch.', '4 Ch.', '5 Ch.', '6 Ch.', '7 Ch.', '8 Ch.')


def path_text(path):
    """A path is in UTF-8 already."""
    return None if path is None else path.decode('utf-8', 'replace')


def project_text(text):
    return None if text is None else shift_jis_text(text)


class _Span:
    """The earliest start and the latest end among some cuts; of equal ones the first stays."""

    def __init__(self):
        self.first = None
        self.last = None

    def take(self, cut):
        if self.first is None or timecode.difference(self.first, cut['destIn']) < 0:
            self.first = cut['destIn']
        if self.last is None or timecode.difference(self.last, cut['destOut']) > 0:
            self.last = cut['destOut']


class Model:
    """The model right after a load."""

    def __init__(self, project):
        self.project = project
        self.ok = project.failure is None
        self.data = [''] * len(_TITLES)
        self.message = ''
        self.first_event = None
        self.last_event = None
        self.min_track = 0
        self.max_track = 0
        self.track_count = 0
        self.tracks = {}
        self.event_rows = []
        if not self.ok:
            self.message = 'File NG.'
            return
        for row, name in enumerate(_ROW_CONSTANTS):
            if name and project.constants[name] is not None:
                self.data[row] = project_text(project.constants[name])
        self._take_span()
        if self.first_event is None:
            return
        for event in project.events:
            event.event_on = event.track_on = 1
        self._take_rows()

    def _take_span(self):
        self.min_track, self.max_track = INT32_MAX, INT32_MIN
        whole = _Span()
        for event in self.project.events:
            if event.is_cut:
                track = event.edit['destChannel']
                whole.take(event.edit)
                self.tracks.setdefault(track, _Span()).take(event.edit)
                self.min_track = min(self.min_track, track)
                self.max_track = max(self.max_track, track)
        self.first_event, self.last_event = whole.first, whole.last
        self.track_count = wrap32(self.max_track + 1 - self.min_track)

    def _take_rows(self):
        cuts = [event for event in self.project.events if event.is_cut]
        for row, event in enumerate(self.project.events):
            cut = cuts[row].edit if row < len(cuts) else None
            found = event.source_file is not None
            self.event_rows.append({
                'Space': 1, 'Type': project_text(event.label) or '', 'Event': '%04d\n' % row, 'Ch': 'Mono',
                'In': project_text(timecode.shown(cut['destIn'])) if cut else None,
                'Out': project_text(timecode.shown(cut['destOut'])) if cut else None,
                'Track': '%d' % cut['destChannel'] if cut else None,
                'Name': path_text(event.source_file.path.rsplit(b'/', 1)[-1]) if found else ''})
            if not found:
                self.message = _MISSING

    def _track_rows(self):
        rows = []
        for row in range(max(0, min(self.track_count, ROW_LIMIT))):
            track = wrap32(self.min_track + row)
            cells = {'Space': None, 'Track': '%d' % track, 'Type': 'Mono', 'Start': None, 'End': None}
            if self.first_event is not None:
                span = self.tracks.get(track)
                cells['Space'] = 1
                cells['Start'] = project_text(timecode.shown(span.first if span else self.first_event))
                cells['End'] = project_text(timecode.shown(span.last if span else self.last_event))
            rows.append(cells)
        return rows

    def tables(self):
        return {
            'ProjectInfomationTable': [{'Title': title, 'Data': data} for title, data in zip(_TITLES, self.data)],
            'TrackTable': self._track_rows(),
            'EventListTable': self.event_rows[:ROW_LIMIT],
            'numberOfTracksTable': [{'ItemName': name, 'Number': '0' if row else '%d' % self.track_count}
                                    for row, name in enumerate(_WIDTHS)]}


def _plain(value):
    """A field of an event as JSON has it."""
    if isinstance(value, bytes):
        return project_text(value)
    if isinstance(value, float) and not math.isfinite(value):
        return None
    if isinstance(value, dict):
        return {key: _plain(part) for key, part in value.items()}
    if isinstance(value, (list, tuple)):
        return [_plain(part) for part in value]
    return value


def _file(wave):
    if wave is None:
        return None
    return {'path': path_text(wave.path), 'valid': wave.valid, 'sampleRate': wave.rate, 'channels': wave.channels,
            'bitsPerSample': wave.bits, 'formatTag': wave.format_tag, 'frames': wave.frames}


def _event(index, event):
    return {'index': index, 'entryNumber': event.number, 'label': _plain(event.label), 'edit': _plain(event.edit),
            'infade': _plain(event.infade), 'outfade': _plain(event.outfade), 'xfade': _plain(event.xfade),
            'gain': _plain(event.gain), 'sourceFile': path_text(event.source_file.path) if event.source_file else None,
            'sourceStart': _plain(event.source_start), 'sourceLength': _plain(event.source_length)}


def _tree(project, sections):
    return [{'name': _plain(name), 'entries': [{'label': _plain(label), 'values': _plain(values)}
                                               for label, values in entries]}
            for name, entries in project.tree(sections)]


def info(model):
    """What `info --json` prints. A load that failed leaves nothing of the project in it."""
    project = model.project
    held = model.ok
    failure = project.failure
    return {
        'path': path_text(project.path), 'folder': path_text(project.folder), 'ok': held, 'message': model.message,
        'diagnostics': [{'code': code, 'line': line, 'text': project_text(text)}
                        for code, line, text in project.diagnostics],
        'failure': None if held else {'code': failure.code, 'line': failure.line, 'section': _plain(failure.section),
                                      'label': _plain(failure.label)},
        'constants': {name: _plain(project.constants[name]) if held else None for name in CONSTANT_NAMES},
        'sources': [{'index': index, 'f': _plain(source.f), 't': _plain(source.t), 'file': _file(source.file)}
                    for index, source in sorted(project.sources.items())] if held else [],
        'events': [_event(index, event) for index, event in enumerate(project.events)] if held else [],
        'sections': _tree(project, project.scanner.sections) if held else [],
        'refLists': [_tree(project, sections) for sections in project.scanner.reference_lists] if held else [],
        'comments': [_plain(project.scanner.text(comment)) for comment in project.scanner.comments] if held else [],
        'firstEvent': _plain(model.first_event), 'lastEvent': _plain(model.last_event),
        'minTrack': model.min_track, 'maxTrack': model.max_track, 'trackCount': model.track_count,
        'totalStart': '' if model.first_event is None else project_text(timecode.shown(model.first_event)),
        'totalEnd': '' if model.last_event is None else project_text(timecode.shown(model.last_event)),
        'tables': model.tables()}
