"""A whole spot: the passes over the events, the files that they make and the messages that they send.

The answers of the host are not this module's to know: `answer` gives them, asked with the number of the line.
"""

import struct

from . import names, renderers, timecode
from .numbers import wrap16, wrap32, wrap64
from .wave import Wave

ATTEMPTS = 80
_REFUSED_MAIN = 'spot 5555555555555555  ttt=%d'
_REFUSED_FADE_OUT = 'SPOT Error outfade!!!!!!!!!!!!!!!!!!!!!!!'
_RATE_WARNING = 'This session is at %dHz, whereas the AES project is at %gHz. Misalignment is likely.'
_FRAME_WARNING = ('The framerate of this session does not match the AES31 project we are importing.'
                  ' The import will be offset to compensate.')
FREE, WITH_OFFSET, AT_START, FROM_FIRST = range(4)


class Options:
    """What a spot is asked for; `rate` is the host's 32-bit float."""

    def __init__(self):
        self.mode = FREE
        self.offset_text = '+00:00:00:00'
        self.start_text = ' 00:00:00:00'
        self.bits = 24
        self.fades = False
        self.gain = False
        self.copy_folder = b''
        self.rate = 48000.0
        self.code = 0


def warnings(first, options):
    told = []
    if timecode.sample_rate(first) != options.rate:
        told.append(_RATE_WARNING % (int(options.rate), options.rate))
    if timecode.timecode_to_samples(first, options.code, int(options.rate)) != timecode.to_samples(first):
        told.append(_FRAME_WARNING)
    return told


def timeline_offset(first, options, offset, start):
    own = timecode.to_samples(first)
    session = timecode.timecode_to_samples(first, options.code, int(options.rate))
    return wrap64({FREE: session - own, WITH_OFFSET: session - own + offset,
                   AT_START: session - own + start - own, FROM_FIRST: -own}[options.mode])


def message(path, track, position, name, start, stop, relative):
    def short(key, value):
        return {'key': key, 'type': 'shor', 'hex': struct.pack('<h', value).hex()}

    pascal = bytes((len(name) & 0xFF,)) + name[:255].ljust(255, b'\0')
    return {
        'class': 'Sd2a', 'id': 'SRgn', 'target': 'PTul', 'returnId': -1, 'transactionId': 0, 'sendMode': 35,
        'timeout': 100,
        'parameters': [
            {'key': 'FILE', 'type': 'alis', 'path': path},
            short('Trak', -99 if relative else wrap16(track + 1)), short('FFrm', 1),
            short('TkOf', track if relative else 0),
            {'key': 'SMSt', 'type': 'long', 'hex': struct.pack('<q', wrap64(position)).hex()},
            short('Strm', 1)],
        'region': [
            {'key': 'Star', 'type': 'long', 'hex': struct.pack('<i', wrap32(start)).hex()},
            {'key': 'Stop', 'type': 'long', 'hex': struct.pack('<i', wrap32(stop)).hex()},
            {'key': 'Name', 'type': 'TEXT', 'hex': pascal.hex()}]}


class Spot:
    """Runs at once. `lines` are what is told of it, in order; `left_out` the events of which something is missing."""

    def __init__(self, model, options, disk, answer):
        self.model = model
        self.events = model.project.events
        self.options = options
        self.disk = disk
        self.answer = answer
        self.lines = []
        self.left_out = set()
        self.counted = 0
        self.regions = 0
        self.files = 0
        self.folder = options.copy_folder or None
        self._start()
        self._depth_pass()
        if options.gain:
            self._gain_pass()
        self._region_pass()
        self._release_pass()
        if options.fades:
            self._fade_pass()
        self.lines.append({'kind': 'end', 'aborted': False, 'steps': self.steps, 'counted': self.counted,
                           'regions': self.regions, 'files': self.files})

    def _start(self):
        options = self.options
        first = self.model.first_event
        for text in warnings(first, options):
            self.lines.append({'kind': 'warning', 'text': text})
        rate = int(options.rate)
        offset = timecode.timecode_to_samples(options.offset_text.encode(), options.code, rate)
        start = timecode.timecode_to_samples(options.start_text.encode(), options.code, rate)
        self.offset = timeline_offset(first, options, offset, start)
        self.relative = options.mode == FROM_FIRST
        self.steps = wrap32(len(self.events) * (3 + bool(options.fades) + bool(options.gain)))
        self.lines.append({'kind': 'start', 'steps': self.steps, 'options': {
            'sessionRate': rate, 'positionMode': options.mode, 'frameRate': options.code,
            'doFades': int(options.fades), 'doGain': int(options.gain), 'offsetSamples': offset,
            'startSamples': start, 'bitDepth': options.bits,
            'depthSuffix': '_16bit' if options.bits == 16 else '_24bit', 'copyFolder': options.copy_folder,
            'copySource': 1 if options.copy_folder else 0, 'timelineOffset': self.offset,
            'relativeTrack': self.relative}})

    def _derived(self, event, suffix):
        path = event.source_file.path
        return self.disk.free_name(names.derived_base(path, self.folder, suffix), names.extension(path))

    def _told_file(self, kind, index, path, status):
        self.lines.append({'kind': 'file', 'pass': kind, 'event': index, 'path': path, 'status': status})
        if status == 0:
            self.files += 1
        else:
            self.left_out.add(index)

    def _depth_pass(self):
        options = self.options
        for index, event in enumerate(self.events):
            self.counted += 1
            source = event.source_file
            if not event.live or source is None:
                continue
            if self.folder is not None:
                path = self.disk.free_name(names.copy_base(source.path, self.folder), names.extension(source.path))
            elif source.bits != options.bits:
                path = self._derived(event, b'_16bit' if options.bits == 16 else b'_24bit')
            else:
                continue
            status = self._copy(source, path)
            self._told_file('depth', index, path, status)
            if status == 0:
                event.rendered = Wave.read(path, self.disk.written[self.disk.plain(path)])

    def _copy(self, source, path):
        if source.valid and not self.disk.can_create(path):
            return 1
        status, content = renderers.copied(source, self.options.bits)
        if content is not None:
            self.disk.write(path, content)
        return status

    def _gain_pass(self):
        for index, event in enumerate(self.events):
            self.counted += 1
            source = event.source_file
            if not event.live or event.gain is None or source is None:
                continue
            path = self._derived(event, b'_Gain')
            made = source.valid and self.disk.can_create(path)
            if made:
                self.disk.write(path, renderers.gain_file(source, event.gain['gainDb']))
                event.rendered = Wave(path)
                event.rendered.valid = True
            self._told_file('gain', index, path, 0 if made else 2)

    def _start_in_source(self, event):
        return timecode.difference(event.source_start, event.edit['sourceIn'])

    @staticmethod
    def _length(event):
        return timecode.difference(event.edit['destIn'], event.edit['destOut'])

    def _track(self, event):
        return wrap16(wrap32(event.edit['destChannel'] - self.model.min_track))

    def _send(self, index, event, piece, attempt, path, position, start, stop):
        """One attempt; answers its status."""
        text = message(path, self._track(event), position, names.base_name(path), start, stop, self.relative)
        status = self.answer(len(self.lines))
        self.lines.append({'kind': 'region', 'event': index, 'piece': piece, 'attempt': attempt, 'status': status,
                           'message': text})
        if status == 0:
            self.regions += 1
        return status

    def _region_pass(self):
        for index, event in enumerate(self.events):
            self.counted += 1
            if not event.live:
                continue
            file = event.rendered or event.source_file
            if file is None or not file.valid:
                self.left_out.add(index)
                continue
            if event.source_file.format_tag != 1:
                self.left_out.add(index)
            start = self._start_in_source(event)
            for attempt in range(1, ATTEMPTS + 1):
                status = self._send(index, event, 'main', attempt, file.path,
                                    timecode.to_samples(event.edit['destIn']) + self.offset, start,
                                    start + self._length(event))
                if status == 0:
                    break
                self.lines.append({'kind': 'log', 'text': _REFUSED_MAIN % status})
            else:
                self.left_out.add(index)
            file.close()

    def _release_pass(self):
        for event in self.events:
            self.counted += 1
            event.rendered = None

    def _crosses(self, previous, event):
        if previous is None or previous.edit['destChannel'] != event.edit['destChannel']:
            return False
        if event.infade is None or previous.outfade is None or event.infade['length'] != previous.outfade['length']:
            return False
        return (timecode.difference(event.edit['destIn'], previous.edit['destOut'])
                == timecode.to_samples(event.infade['length']))

    def _fade_pass(self):
        previous = None
        for index, event in enumerate(self.events):
            self.counted += 1
            if not event.live:
                continue
            source = event.source_file
            begins = timecode.to_samples(event.edit['destIn']) + self.offset
            if self._crosses(previous, event):
                if source is not None and previous.source_file is not None:
                    self._crossfade(index, previous, event, begins)
            elif event.infade is not None and source is not None:
                length = timecode.to_samples(event.infade['length'])
                self._piece(index, event, 'infade', b'_FadeIn', length, begins, source.valid, lambda: (
                    renderers.fade_file(source, length, True, self._start_in_source(event))))
            if event.outfade is not None and source is not None:
                tail = timecode.to_samples(event.outfade['length'])
                first = wrap64(self._start_in_source(event) - tail + self._length(event))
                ends = timecode.to_samples(event.edit['destOut']) + self.offset
                self._piece(index, event, 'outfade', b'_FadeOut', tail, ends - tail, source.valid, lambda: (
                    renderers.fade_file(source, tail, False, first)))
            previous = event

    def _crossfade(self, index, previous, event, begins):
        length = timecode.to_samples(event.infade['length'])
        first = wrap64(self._start_in_source(previous) - length + self._length(previous))
        self._piece(index, event, 'crossfade', b'_XFade', length, begins,
                    previous.source_file.valid and event.source_file.valid, lambda: (
                        renderers.crossfade_file(previous.source_file, event.source_file, first,
                                                 self._start_in_source(event), length)))

    def _piece(self, index, event, piece, suffix, length, position, valid, render):
        path = self._derived(event, suffix)
        made = valid and self.disk.can_create(path)
        if made:
            self.disk.write(path, render())
        self._told_file('fade', index, path, 0 if made else 2)
        if not made:
            return
        for attempt in range(1, ATTEMPTS + 1):
            if self._send(index, event, piece, attempt, path, position, 0, length) == 0:
                return
        self.left_out.add(index)
        if piece == 'outfade':
            self.lines.append({'kind': 'log', 'text': _REFUSED_FADE_OUT})
