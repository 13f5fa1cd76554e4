"""The text of a random ADL file: its blanks, its letters, its comments, and the damage that is done to it."""

# What a scanner stumbles over.
_SOUP = (b'<A>', b'</A>', b'<A', b'<', b'<>', b'</', b'</>', b'>', b'<ADL>', b'</ADL>', b'<REF_LIST>', b'</REF_LIST>',
         b'<REF>', b'</REF>', b'<REF_LIST>', b'<REF>', b'</REF>', b'(', b')', b'()', b'(B)', b'(B)', b'(B)5', b'(B)2',
         b'(B)1', b'(B)0', b'(B)-3', b'(B)999', b'(B)+4', b'(B', b'(B)(C)', b'x', b'y z', b')7', b') 7', b'"', b'"q r"',
         b'""', b'"a\x1b"b"', b'"q"r', b'a"b c"', b'/*', b'*/', b'/*/', b'/**/', b'/* c */', b'/* (B) */', b'*', b'/',
         b'\0', b'\x1b', b'\x81', b'<VERSION>', b'</VERSION>', b'</VERSIONS>', b'(ADL_ID)', b'<ref>', b'<Ref_List>',
         b'<REF>x', b'<EVENT_LIST>', b'(Entry)', b'(Gain)', b'</EVENT_LIST>')

_INSERTED = (b'(', b')', b'<', b'>', b'"', b'/*', b'*/', b' ', b'\n', b'\x1b', b'\0', b'x', b'\x85', b'/',
             b'(X)5 a(b)c', b'(X', b'</', b'<REF_LIST>', b'<REF>')

# Names with bytes that need care: a second byte that is a backslash or a bar, two code points for one character.
JAPANESE = ('嵐', '予報', 'ソ', '表示', 'ポ', 'ｱｲｳ', 'か゚', '効果音')


def shift_jis(text):
    return text.encode('shift_jisx0213')


class AdlText:
    """Turns labels and values into text. `rng` gives the chances, `themes` say what may be odd."""

    def __init__(self, rng):
        self.rng = rng
        self.themes = set()
        self.line_end = b'\n'

    def chance(self, likelihood):
        return self.rng.random() < likelihood

    def oddly(self, theme, likelihood):
        return theme in self.themes and self.rng.random() < likelihood

    def _constants(self, *names):
        rng = self.rng
        entries = []
        for name in names:
            if self.chance(0.15):
                continue
            value = rng.choice((b'1234', b'"some text"', b'"' + shift_jis(rng.choice(JAPANESE)) + b'"', b'01.00'))
            if self.oddly('text', 0.1):
                value = b'"' + rng.randbytes(rng.randrange(8)).replace(b'"', b'q').replace(b'\0', b'z') + b'"'
            values = [value]
            if self.oddly('text', 0.1):
                values = rng.choice(([], [value, b'2', b'3'], [b'"a\x1b"b"'], [b'""'], [b'"ab"cd'], [b'abc"d', b'e"']))
            label = name.encode()
            if self.oddly('text', 0.1):
                label = rng.choice((label.lower(), label + b'X', b'UNKNOWN', b''))
            entries.append((label, values))
        return entries

    def _cased(self, text):
        return self.rng.choice((text.lower(), text.title())) if self.oddly('text', 0.15) else text

    def _between(self):
        """What may stand between two sections."""
        rng = self.rng
        out = []
        if self.chance(0.1):
            out.append(rng.choice((b'/* a comment */', b'/* two', b'/**/', b'/* < ( " */')) if 'text' in self.themes
                       else b'/* a comment */')
            if out[-1] == b'/* two':
                out.append(b'lines */')
        if self.oddly('text', 0.08):
            out.append(self._reference_list(0))
        if self.oddly('text', 0.01):
            out.append(rng.choice((b'stray', b'/*/', b'</SYSTEM>', b'(Label) x', b'<', b'<>', b'</>')))
        return out

    def _reference_list(self, depth):
        rng = self.rng
        out = [b'<REF_LIST>']
        for _ in range(rng.randrange(4)):
            out.append(b'<REF>' if not self.chance(0.1) else b'passed over')
            if out[-1] != b'<REF>':
                continue
            for _ in range(rng.randrange(3)):
                out.append(self._section(rng.choice((b'VERSION', b'SOURCE_INDEX', b'X')), [(b'A', [b'1', b'2'])]))
            if depth < 3 and self.chance(0.3):
                out.append(self._reference_list(depth + 1))
            if self.chance(0.1):
                out.append(b'/* inside */')
            if self.chance(0.03):
                out.append(b'stray')
            out.append(b'</REF>')
        out.append(b'</REF_LIST>')
        return self.line_end.join(out)

    def _section(self, name, entries):
        rng = self.rng
        opening, closing = self._cased(b'<' + name + b'>'), self._cased(b'</' + name + b'>')
        if self.oddly('text', 0.02):
            opening, closing = rng.choice(((opening, closing[:-1] + b'S>'), (opening[:-1], closing), (opening, b'</>'),
                                           (b'<', b'</'), (opening, b'')))
        out = [opening]
        if self.oddly('text', 0.08):
            out.append(rng.choice((b'/* first */', b'/*/', b'/* a */ /* b */')))
        for label, values in entries:
            out.append(self._entry(label, values))
            if self.oddly('text', 0.01):
                out.append(rng.choice((b'/* behind (an entry) */', b'<NESTED>', b'</OTHER>')))
        out.append(closing)
        if rng.random() < 0.5 and 'text' not in self.themes:
            return (b'\n    ').join(out[:-1]) + b'\n' + out[-1]
        return self.line_end.join(out)

    def _entry(self, label, values):
        rng = self.rng
        if self.oddly('text', 0.03) and len(values) == 1:
            return self._counted(label, values[0])
        if self.oddly('text', 0.03):
            label = label.lower()
        blank = rng.choice((b'  ', b'\t', b'\n', b'\r\n', b'\x01', b'\x81', b'\xe3\x81\x82', b' \0 ')) if (
            self.oddly('text', 0.1)) else b' '
        return blank.join([b'(' + label + b')'] + values)

    def _counted(self, label, value):
        rng = self.rng
        count = len(value) + 1
        if self.oddly('text', 0.3):
            count = rng.choice((0, 1, -5, count + 1, 99999, 5000000000, count - 1))
        text = b'(%s)%d%c%s' % (label, count, rng.choice(b' \n'), value)
        if self.oddly('text', 0.1):
            text = b'(' + label
        return text + b' '

    def _damage(self, text):
        rng = self.rng
        content = bytearray(text)
        for _ in range(rng.choice((1, 1, 1, 2, 5))):
            at = max(rng.randrange(len(content) + 1), rng.randrange(len(content) + 1))
            kind = rng.randrange(6)
            if kind == 0:
                del content[at:at + rng.choice((1, 1, 3, rng.randrange(200)))]
            elif kind == 1:
                content[at:at] = rng.choice(_INSERTED)
            elif kind == 2:
                content[at:at + 1] = bytes((rng.randrange(256),))
            elif kind == 3 and self.chance(0.5):
                del content[at:]
            elif kind == 4:
                piece = content[at:at + rng.randrange(120)]
                to = rng.randrange(len(content) + 1)
                content[to:to] = piece
            else:
                content[at:at + 1] = rng.choice((b' ', b')', b'(', b'<', b'9', b'"'))
        return bytes(content)

    def _soup(self):
        """Marks and words in no order at all, for the scanner alone."""
        rng = self.rng
        words = rng.choices(_SOUP, k=rng.randrange(4, 40)) if self.chance(0.5) else []
        if not words:
            favourites = rng.choices(_SOUP, k=rng.randrange(2, 9))
            words = rng.choices(favourites, k=rng.randrange(3, 30))
        blanks = rng.choice(((b' ',), (b' ', b'', b'\n'), (b'\n', b' ', b'\x80'), (b' ', b' ', b'  ', b'')))
        return b'<ADL>' + b''.join(rng.choice(blanks) + word for word in words) + rng.choice((b'', b' ', b'\n</ADL>'))
