"""Cuts an ADL file into sections, entries and values.

A text is a position in the block, good until the next NUL: the marks of later entries can still shorten a text that
was found before, so nothing is copied out before the whole block has been walked.
"""

from .numbers import atoi
from .text import fold

_BLANK = bytes(1 if value <= 0x20 or value >= 0x80 else 0 for value in range(256))
_ESCAPE = 0x1B


class Entry:
    def __init__(self, label):
        self.label = label
        self.values = []


class Section:
    def __init__(self, name):
        self.name = name
        self.entries = []


class Scanner:
    """After `run`: `sections`, `reference_lists` and `comments`, all texts being positions for `text`."""

    def __init__(self, content):
        self.original = content
        self.end = len(content)
        self.block = bytearray(content) + b'\0'
        self.sections = []
        self.reference_lists = []
        self.comments = []

    def run(self):
        self._scan_section(self.sections, 0, b'ADL')

    def text(self, position):
        if position is None:
            return None
        if position > self.end:
            return b''
        return bytes(self.block[position:self.block.index(0, position)])

    def line(self, position):
        """The line, from 1, that a position of the file stands on; a line ends as any system ends it."""
        before = self.original[:position]
        return 1 + before.count(b'\n') + before.count(b'\r') - before.count(b'\r\n')

    def _skip_blanks(self, at):
        while at < self.end and _BLANK[self.block[at]]:
            at += 1
        return at

    def _token_end(self, at):
        at += 1
        while at < self.end and not _BLANK[self.block[at]]:
            at += 1
        return min(at, self.end)

    def _begins(self, at, text):
        return fold(bytes(self.block[at:min(at + len(text), self.end)])) == fold(text)

    def _begins_exactly(self, at, text):
        return bytes(self.block[at:min(at + len(text), self.end)]) == text

    def _terminate(self, at):
        self.block[min(at, self.end)] = 0

    def _scan_section(self, target, at, tag):
        closing = b'</' + tag + b'>'
        if not self._begins(at, b'<' + tag + b'>'):
            return None
        at = self._token_end(at)
        while at < self.end:
            start = self._skip_blanks(at)
            if start >= self.end:
                # Blanks alone up to the end are no token that a section could go on with.
                return None
            at = self._token_end(start)
            if self._begins(start, closing):
                return at
            if self._begins(start, b'<REF_LIST>'):
                at = self._scan_references(at)
                if at is None:
                    return None
            elif self.block[start] == 0x3C:
                self._terminate(at - 1)
                section = Section(min(start + 1, at - 1))
                at = self._scan_entries(section, at)
                target.append(section)
                if at == self.end:
                    return None
            elif self._begins_exactly(start, b'/*'):
                at = self._take_comment(start)
            else:
                return None
        return at

    def _scan_references(self, at):
        while at < self.end:
            start = self._skip_blanks(at)
            if start >= self.end:
                return start
            at = self._token_end(start)
            if self._begins(start, b'</REF_LIST>'):
                break
            if self._begins(start, b'<REF>'):
                found = []
                at = self._scan_section(found, start, b'REF')
                if at is None:
                    return None
                self.reference_lists.append(found)
        return at

    def _take_comment(self, start):
        self.comments.append(start + 2)
        stop = bytes(self.block[:self.end]).find(b'*/', start)
        if stop < 0:
            stop = self.end
        self._terminate(stop)
        return stop + 2

    def _scan_entries(self, section, at):
        while at < self.end:
            start = self._skip_blanks(at)
            if start >= self.end:
                return start
            at = self._token_end(start)
            if self.block[start] == 0x28:
                entry = Entry(start + 1)
                if self.block[at - 1] == 0x29:
                    self._terminate(at - 1)
                    at = self._take_values(entry, at)
                else:
                    after = self._take_counted(entry, at)
                    if after is None:
                        return self.end
                    at = after
                section.entries.append(entry)
            elif self._begins_exactly(start, b'</') and self._begins(start + 2, self.text(section.name)):
                return at
            elif self._begins_exactly(start, b'/*'):
                at = self._take_comment(start)
            else:
                return self.end
        return at

    def _take_values(self, entry, at):
        while at < self.end:
            start = self._skip_blanks(at)
            if start >= self.end or self.block[start] in b'(<':
                return start
            if self.block[start] == 0x22:
                at = self._quote_end(start)
            else:
                at = self._token_end(start)
            self._terminate(at)
            entry.values.append(start)
        return at

    def _quote_end(self, start):
        at = start + 1
        while at < self.end:
            if self.block[at] == 0x22 and self.block[at - 1] != _ESCAPE:
                return at + 1
            at += 1
        return self.end

    def _take_counted(self, entry, at):
        """A label with a count after it. The bracket that ends it may stand before the label itself."""
        bracket = self.block.rfind(b')', 0, at - 1)
        if bracket < 0:
            return None
        self.block[bracket] = 0
        count = max(0, atoi(self.text(bracket + 1)))
        stop = min(at + count, self.end)
        entry.values.append(at + 1)
        self._terminate(stop)
        return stop + 1
