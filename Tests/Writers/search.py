"""Finds the file that a source names, step by step, never guessing between two."""

import os
import re

import audio
import shift_jis

_ESCAPES = re.compile(r'(?:%[0-9A-Fa-f]{2})+')


def unescaped(text):
    """Percent escapes stand for the bytes of UTF-8."""
    return _ESCAPES.sub(lambda match: bytes.fromhex(match[0].replace('%', '')).decode('utf-8', 'replace'), text)


def _without_scheme(text):
    """A location's path: no URL:, no file:, no host; a drive letter stays."""
    text = re.sub(r'^url:', '', text, flags=re.IGNORECASE)
    match = re.match(r'^file://[^/]*', text, re.IGNORECASE)
    if match:
        text = text[match.end():]
        # After the host a drive letter has a slash before it that is not part of the path.
        if re.match(r'^/[A-Za-z]:', text):
            text = text[1:]
    return text


def spelled_names(location):
    """The last part of a location, as it stands and with its escapes undone."""
    path = _without_scheme(location)
    names = []
    for form in (path, unescaped(path)):
        name = re.split(r'[/\\]', form)[-1]
        if name and name not in names:
            names.append(name)
    return names


def system_tails(location):
    """What the system tries below the project's folder, shortest first. The first byte never starts one."""
    at = location.rfind('/')
    while at > 0:
        yield location[at:]
        at = location.rfind('/', 0, at)


def _below(root):
    """Every file below a folder, links followed, each folder once."""
    seen, waiting, out = set(), [root], []
    while waiting:
        folder = waiting.pop(0)
        try:
            status = os.stat(folder)
            listed = sorted(os.scandir(folder), key=lambda item: item.name)
        except OSError:
            continue
        if (status.st_dev, status.st_ino) in seen:
            continue
        seen.add((status.st_dev, status.st_ino))
        for item in listed:
            if item.is_dir():
                waiting.append(item.path)
            elif item.is_file():
                out.append(item.path)
    return out


class Wanted:
    """What the ADL tells about a source: its location as bytes and as text; `length` and `start` in samples at their own
    rate, or None."""

    def __init__(self, raw, location, reference, length, start):
        self.raw = raw
        self.location = location
        self.reference = reference
        self.length = length
        self.start = start

    @property
    def names(self):
        return spelled_names(self.location)


class Folders:
    """The ADL's folder and the media folders, each listed once."""

    def __init__(self, adl_folder, media):
        self.adl_folder = adl_folder
        self.listed = [_below(root) for root in (adl_folder, *media)]
        self.facts = {}

    def facts_of(self, path):
        if path not in self.facts:
            with open(path, 'rb') as file:
                self.facts[path] = audio.facts(file.read())
        return self.facts[path]

    def find(self, wanted):
        """The path and the rule that found it; None for the path if nothing did, 'ambiguous' for the rule if two did."""
        direct = self._direct(wanted)
        if direct:
            return direct
        for rule, fits in self._rules(wanted):
            for listed in self.listed:
                candidates = [path for path in listed if fits(path)]
                if not candidates:
                    continue
                found = self._one_of(candidates, wanted)
                if found == 'ambiguous':
                    return None, found
                if found:
                    beside = rule == 'name' and os.path.dirname(found) == self.adl_folder
                    return found, 'beside' if beside else rule
        return None, None

    def _direct(self, wanted):
        # The system reads every location as Shift-JIS.
        for tail in system_tails(shift_jis.decode(wanted.raw)):
            path = self.adl_folder + tail
            if os.path.isfile(path):
                return path, 'location'
        for form in (wanted.location, unescaped(wanted.location)):
            path = _without_scheme(form)
            if path.startswith('/') and os.path.isfile(path):
                return path, 'path'
        return None

    def _rules(self, wanted):
        names = wanted.names
        lower = [name.casefold() for name in names]
        stems = [os.path.splitext(name)[0] for name in lower]

        def sounds(path):
            return self.facts_of(path) is not None

        yield 'name', lambda path: os.path.basename(path) in names
        yield 'name-case', lambda path: os.path.basename(path).casefold() in lower
        yield 'stem', lambda path: (os.path.splitext(os.path.basename(path))[0].casefold() in stems and sounds(path))
        if wanted.reference:
            yield 'reference', lambda path: sounds(path) and self.facts_of(path).reference == wanted.reference
        if wanted.length is not None and wanted.start is not None:
            yield 'length', lambda path: (sounds(path) and self.facts_of(path).frames == wanted.length
                                          and self.facts_of(path).time_reference == wanted.start)

    def _one_of(self, candidates, wanted):
        def agreement(path):
            told = self.facts_of(path)
            if told is None:
                return None, None
            reference = told.reference == wanted.reference if wanted.reference and told.reference else None
            length = told.frames == wanted.length if wanted.length is not None else None
            return reference, length

        if len(candidates) > 1:
            fitting = [path for path in candidates if True in agreement(path)]
            candidates = fitting or candidates
        elif agreement(candidates[0]) == (False, False):
            return None
        contents = set()
        for path in candidates:
            with open(path, 'rb') as file:
                contents.add(file.read())
        return candidates[0] if len(contents) == 1 else 'ambiguous'
