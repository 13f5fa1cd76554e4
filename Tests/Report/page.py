"""Reads a report as a parser of HTML sees it, and makes the projects that reports are made of."""

import html.parser
import json

from material import HOUR, Adl, fade, stamp, wave

# What a text of a project may try: none of it may become markup.
HOSTILE = '</script><script>alert(1)</script><img src=x onerror=alert(1)>&amp;"\''
HOSTILE_FILE = "<img src=x onerror=alert(1)>&amp;'.wav"  # a file's name holds no slash


# What a row of the facts may lack, and what that says.
TELLS = {
    "events": dict(source=None, track=None, position=None, end=None, fadeIn=0, fadeOut=0, gainDb=0),
    "regions": dict(path=None, event=None, piece=None, fadeIn=0, fadeOut=0, gainDb=0),
    "files": dict(event=None, path=None, bytes=None, sha256=None, noSha256=None, folder=False),
    "messages": dict(code=None, line=None, event=None, entry=None, effect=None, remedy=None),
    "sources": dict(path=None),
    "tracks": dict(first=None, end=None),
}


def named_rows(facts, table):
    """A table's rows as objects with whole paths; a page that would grow too large has arrays instead."""
    columns = facts.get("columns")
    if columns is None:
        return [dict(row) for row in facts[table]]
    rows = [{name: value for name, value in zip(columns[table], row) if value is not None} for row in facts[table]]
    for row in rows:
        if "path" in row:
            folder, name = facts["paths"][row["path"]]
            row["path"] = facts["folders"][folder] + name
    return rows


class Page(html.parser.HTMLParser):
    """The page's tables by id: `heads` and `rows` of cell texts; and every element with its attributes."""

    def __init__(self, path):
        super().__init__(convert_charrefs=True)
        self.text = path.read_text(encoding="utf-8")
        self.heads, self.rows, self.captions, self.elements, self.scripts = {}, {}, {}, [], []
        self._table = self._cell = self._script = None
        self._is_caption = False
        self.feed(self.text)
        self.close()
        facts = [text for attributes, text in self.scripts if attributes.get("id") == "facts"]
        self.facts = json.loads(facts[0])

    def facts_of(self, table):
        """A table of the facts, what rows lack as None or 0, in either of its forms."""
        return [TELLS[table] | row for row in named_rows(self.facts, table)]

    def handle_starttag(self, tag, attrs):
        attributes = dict(attrs)
        self.elements.append((tag, attributes))
        if tag == "table":
            self._table = attributes["id"]
            self.heads[self._table], self.rows[self._table] = [], []
        elif tag == "tr" and self._table:
            self.rows[self._table].append([])
        elif tag in ("td", "th"):
            self._cell = ""
        elif tag == "caption":
            self._is_caption = True
            self.captions[self._table] = ""
        elif tag == "script":
            self._script = [attributes, ""]
            self.scripts.append(self._script)

    def handle_endtag(self, tag):
        if tag in ("td", "th") and self._table:
            self.rows[self._table][-1].append(self._cell)
            self._cell = None
        elif tag == "thead":
            self.heads[self._table] = self.rows[self._table].pop()
        elif tag == "table":
            self._table = None
        elif tag == "caption":
            self._is_caption = False
        elif tag == "script":
            self._script = None

    def handle_data(self, data):
        if self._script is not None:
            self._script[1] += data
        elif self._is_caption:
            self.captions[self._table] += data
        elif self._cell is not None:
            self._cell += data

    def column(self, table, heading):
        place = self.heads[table].index(heading)
        return [row[place] for row in self.rows[table]]


def mixed_project(folder):
    """Two files of hostile names, a missing one, an event that is off by --skip-events 4, fades and a gain."""
    (folder / HOSTILE_FILE).write_bytes(wave(300 * 1600))
    (folder / "plain.wav").write_bytes(wave(300 * 1600, bits=16))
    adl = Adl('<SEQUENCE>\n(SEQ_TITLE) "%s"\n</SEQUENCE>\n' % HOSTILE.replace('"', ""))
    adl.source(1, "URL:file://localhost/a/" + HOSTILE_FILE).source(2, "URL:file://localhost/a/plain.wav")
    adl.source(3, "URL:file://localhost/a/gone.wav")
    cross = f"(Infade) {fade(20)} LIN _ _ _"
    adl.cut(1, 1, 1, 3, HOUR, 100, f"(Infade) {fade(10)} LIN _ _ _ (Outfade) {fade(20)} LIN _ _ _")
    adl.cut(2, 2, 1, 50, HOUR + 80, 150, cross + " (Gain) 1 -6.5")
    adl.cut(3, 3, 1, 0, HOUR + 240, 60)
    adl.cut(4, 1, 2, 0, HOUR + 30, 200)
    adl.cut(5, 2, 4, 0, HOUR + 10, 40)
    adl.entry(6, "(Silence) 1 1 _ _ _")
    return adl.write(folder / "p.adl")


def long_project(folder, events=5000, shaped=3):
    """Each cut in so many has fades; with 1 each has a gain too."""
    adl = Adl()
    for number in range(20):
        (folder / f"Scene {number:02}.wav").write_bytes(wave(28 * 1600))
        adl.source(number + 1, f"URL:file://localhost/a/Scene {number:02}.wav")
    shape = f"(Infade) {fade(2)} LIN _ _ _ (Outfade) {fade(2)} LIN _ _ _"
    for number in range(events):
        adl.cut(number + 1, number % 20 + 1, number % 12 + 1, stamp(number % 9), HOUR + number // 12 * 30, 19,
                (shape if number % shaped == 0 else "") + (" (Gain) 1 -6.5" if shaped == 1 else ""))
    return adl.write(folder / "long.adl")
