"""Cuts the bytes of an ADL into labels with their values, as its writer meant them.

Comments vanish wherever they stand. A label's values run over any number of lines, up to the next label or tag. What
belongs to no label is passed over.
"""

import re

_TOKEN = re.compile(
    rb'(?P<comment>/\*.*?(?:\*/|\Z))'
    rb'|(?P<tag><[^\s>]*>?)'
    rb'|\((?P<counted>[^()\s]*)\)(?P<count>[+-]?\d+)(?=\s)'
    rb'|\((?P<label>[^()\s]*)\)'
    rb'|(?P<quoted>"(?:[^"]|(?<=\x1b)")*(?:"|\Z))'
    rb'|(?P<word>[^\x00-\x20]+)', re.DOTALL)

# Blanks inside a tag's and a label's pattern are the same as between tokens.
_BLANK = re.compile(rb'[\x00-\x20]*')


class Entry:
    """A label, upper case, with its values as bytes: `values` without their quotation marks, `raw` as they stand."""

    def __init__(self, section, label, at):
        self.section = section
        self.label = label
        self.at = at
        self.values = []
        self.raw = []

    def value(self, number):
        return self.values[number] if number < len(self.values) else None


def _bare(quoted):
    text = quoted[1:-1] if len(quoted) > 1 and quoted.endswith(b'"') else quoted[1:]
    return text.replace(b'\x1b"', b'"')


def entries(content):
    """All entries of the sections directly inside <ADL>, in the text's order; reference lists are passed over."""
    out, sections, current, references = [], [], None, 0
    opening = re.search(rb'<ADL>', content, re.IGNORECASE)
    at = opening.end() if opening else 0
    while True:
        at = _BLANK.match(content, at).end()
        match = _TOKEN.match(content, at)
        if not match:
            return out
        start, at = at, match.end()
        kind = match.lastgroup
        if kind == 'comment':
            continue
        if kind == 'tag':
            name = match['tag'].strip(b'<>').upper().decode('latin-1')
            current = None
            if name == '/ADL':
                return out
            if name in ('REF_LIST', '/REF_LIST'):
                references += 1 if name == 'REF_LIST' else -1 if references else 0
            elif name.startswith('/'):
                if name[1:] in sections:
                    del sections[sections.index(name[1:]):]
            else:
                sections.append(name)
        elif kind == 'label' or kind == 'count':
            label = match['label'] if kind == 'label' else match['counted']
            current = Entry(sections[-1] if sections else '', label.decode('latin-1').upper(), start)
            if not references:
                out.append(current)
            if kind == 'count':
                # The count holds the one byte between the number and the value.
                length = max(0, int(match['count']))
                current.values.append(content[at + 1:at + length])
                current.raw.append(current.values[-1])
                at += length
                current = None
        elif current is not None:
            current.values.append(_bare(match['quoted']) if kind == 'quoted' else match['word'])
            current.raw.append(match[kind])


def line_of(content, at):
    """From 1; a line ends as any system ends it."""
    before = content[:at]
    return 1 + before.count(b'\n') + before.count(b'\r') - before.count(b'\r\n')


def column_of(content, at):
    """In bytes, from 1."""
    return at - max(content.rfind(b'\n', 0, at), content.rfind(b'\r', 0, at))
