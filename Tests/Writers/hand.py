"""Writes a project of dirt.py down: its text and its files, in the project's habits. Without habits the text is clean."""

import audio
import shift_jis
import stamps

_BLANK_LINES = ("\n", "\r\n", "\n", "\r\n", "\r")
_KINDS = ("extensible", "float", "rf64", "bw64", "aiff")
_HEADER_FRAMES = {"?": "30", "|": "30", ":": "29.97", "!": "25", ".": "25", "=": "24", "#": "24", "-": "23.976", "/": "24.975"}

# Rates that any sample of the project's rate survives.
_HIGHER_RATES = {"/": "*@", "|": "/*@", "@": "*"}


class Hand:
    """After construction: `text` as bytes, `files` by relative path, `media` folders, all relative to the ADL."""

    def __init__(self, project):
        self.project = project
        self.rng = project.rng
        self.has = project.has
        self.files = {}
        self.media = []
        self.full_stamp_written = False
        # Sections that come first decide which full stamp is the first, so the text is made in its order.
        parts = [self._head(), self._source_index(), self._event_list(), self._tail()]
        self.text = self._finish("\n".join(part for part in parts if part))

    # Stamps

    def stamp(self, count, first_cut=False):
        project, rng = self.project, self.rng
        mark, separator, rate, blank = project.mark, project.separator, project.rate_mark, ":"
        if first_cut:
            self.full_stamp_written = True
        elif rate in _HIGHER_RATES and "other rates" in project.habits and self.full_stamp_written and rng.random() < 0.3:
            rate = rng.choice(_HIGHER_RATES[rate])
            count = self._at_rate(count, rate)
        if self.has("other frames", 0.5):
            mark, separator = rng.choice("?|:!./=#-"), rng.choice(":;.,|")
        if "marks alike" in project.habits and mark in ".:|":
            separator, blank = mark, mark
        if not self.full_stamp_written:
            self.full_stamp_written = True
            return stamps.stamp(count, mark, separator, rate, blank)
        text = stamps.stamp(count, mark, separator, rate, blank)
        if self.has("short stamps", 0.7) and rate == project.rate_mark and text.endswith("0000") and not first_cut:
            return text[:11]
        return text

    def _at_rate(self, count, rate):
        """Rounded to the nearest sample of a higher rate, which the way back undoes."""
        ratio = stamps.exact_rate(rate) / stamps.exact_rate(self.project.rate_mark)
        return int(count * ratio + ratio.__class__(1, 2))

    def fade_length(self, count):
        project = self.project
        separator = ";"
        if self.has("fade marks", 0.8):
            separator = self.rng.choice(".:|")
        text = stamps.stamp(count, project.mark, separator, project.rate_mark)
        if "fade short" in project.habits and text.endswith("0000"):
            return text[:11]
        return text

    # Sections

    def _head(self):
        project, rng = self.project, self.rng
        rate, frames = str(project.rate), _HEADER_FRAMES[project.mark]
        if "header" in project.habits:
            rate, frames = rng.choice((("44100", "25"), ("48000", "24"), ("96000", "30")))
        lines = ["<ADL>", "<VERSION>", "(ADL_ID) 1234", "(VER_ADL_VERSION) 01.01", "</VERSION>"]
        if rng.random() < 0.5:
            lines += ["<PROJECT>", '(PROJ_TITLE) "Reel (one)"', "</PROJECT>"]
        lines += ["<SEQUENCE>", f"(SEQ_SAMPLE_RATE) {rate}", f"(SEQ_FRAME_RATE) {frames}", "</SEQUENCE>"]
        if rng.random() < 0.3:
            lines.append("/* between (two) sections */")
        if self.has("lists"):
            lines += ["<TRACKLIST>", '(Track) 1 "Voices"', "</TRACKLIST>"]
        if self.has("stray section"):
            lines += ["<VENDOR_DATA>", "17 23 of no label", "</VENDOR_DATA>"]
        if self.has("stray line"):
            lines += ["========"]
        return "\n".join(lines)

    def _source_index(self):
        lines = ["<SOURCE_INDEX>"]
        sources = list(self.project.sources)
        if self.has("index missing") and sorted(source.index for source in sources):
            # The place in the list is the number then, so the numbers are the places.
            self._number_by_place(sources)
        for source in sources:
            if self.has("index twice", 0.5):
                lines.append(f'(Index) {source.index} (F) "URL:file://localhost/old/gone {source.index}.wav" _ '
                             f"{self.stamp(0)} {self.stamp(48000)}")
            number = "" if "index missing" in self.project.habits and self.rng.random() < 0.6 else f" {source.index}"
            lines += [f"(Index){number}", self._file_line(source)]
        return "\n".join([*lines, "</SOURCE_INDEX>"])

    def _number_by_place(self, sources):
        numbers = {source.index: place for place, source in enumerate(sources, 1)}
        for source in sources:
            source.index = numbers[source.index]
        for cut in self.project.cuts:
            cut.source = numbers[cut.source]

    def _file_line(self, source):
        start, length = self.stamp(source.start), self.stamp(source.frames)
        if self.has("no start"):
            start = "_"
            length = self.rng.choice((length, "_"))
        location = self._place(source)
        tail = self.rng.choice(("", ' "_" N', " _ _"))
        return f'(F) "{location}" _ {start} {length}{tail}'

    def _place(self, source):
        """Writes the source's file somewhere and says how the ADL spells it."""
        project, rng = self.project, self.rng
        folder = rng.choice(("", "", "Audio/", "Audio/Reel 1/"))
        name = source.name
        location = "URL:file://localhost/Vol/" + folder + name
        if self.has("kinds", 0.7) and (kind := rng.choice(_KINDS)):
            content, name, location = self._of_kind(source, kind, name, location)
        else:
            content = self._plain(source)
        foreign = not name.isascii()
        if self.has("locations", 0.8) and not foreign:
            location = rng.choice((
                "URL:file://localhost/D:\\proj\\" + name, "url:file:///C:/proj/" + name.replace(" ", "%20"),
                "URL:file://localhost/Gone/Away/" + name, name, "URL:file://localhost/x/" + name.replace("o", "%6F")))
            folder = ""
        elif self.has("elsewhere", 0.8) and not foreign:
            folder = rng.choice(("Sub/Deeper/", "media/a/", "media/b/c/"))
            if folder.startswith("media/") and folder[:7] not in self.media:
                self.media.append(folder[:7])
            location = "URL:file://localhost/Gone/" + name
            if rng.random() < 0.2:
                name = name.upper()
        elif "encoding" in project.habits:
            location, folder = "URL:file://localhost/" + name, ""
        self.files[folder + name] = content
        return location

    def _plain(self, source):
        head = audio.bext(source.reference) if source.reference is not None else b""
        more = {}
        if self.has("chunks", 0.7):
            odd = audio.chunk(b"note", b"odd")
            head, more = self.rng.choice(((odd + head, {}), (head, {"claimed": 1 << 20}), (head, {"riff_size": 0})))
        return audio.wave(source.sound, source.bits, self.project.rate, head=head, **more)

    def _of_kind(self, source, kind, name, location):
        head = audio.bext(source.reference) if source.reference is not None else b""
        sound, bits, rate = source.sound, source.bits, self.project.rate
        if kind == "aiff" and source.reference is None:
            return audio.aiff(sound, bits, rate), name[:-4] + ".aif", location[:-4] + ".aif"
        if kind == "float":
            return audio.floats(sound, rate, head=head), name, location
        if kind in ("rf64", "bw64"):
            return audio.rf64(sound, bits, rate, head=head, mark=kind.upper().encode()), name, location
        return audio.wave(sound, bits, rate, head=head, extensible=True), name, location

    # Events

    def _event_list(self):
        lines, cuts = ["<EVENT_LIST>"], list(self.project.cuts)
        if self.has("comments"):
            lines.append("/* first (in) its section */")
        for place, cut in enumerate(cuts):
            lines += self._event(cut, place)
            if self.has("off", 0.4):
                lines += self._extra(cut, self.rng.choice("DME"), 100)
            if self.has("empty", 0.4):
                lines += self._extra(cut, "_", self.rng.choice((0, -50)))
            if self.has("silence", 0.4):
                lines += [f"(Entry) {1000 + len(lines)}", f"(Silence) 1 {self.stamp(cut.position)} {self.stamp(cut.end)} _"]
        return "\n".join([*lines, "</EVENT_LIST>"])

    def _extra(self, cut, status, length):
        """A cut that a spot must not place."""
        source = next(source for source in self.project.sources if source.index == cut.source)
        begin, position = source.start + 10, max(cut.position, self.project.origin)
        return [f"(Entry) {1000 + self.rng.randrange(100000)}",
                f"(Cut) I {source.index} 1 {cut.tracks[0]} {self.stamp(begin)} {self.stamp(position + 60)} "
                f"{self.stamp(position + 60 + length)} {status}"]

    def _event(self, cut, place):
        project, rng = self.project, self.rng
        first = place == 0
        number = cut.entry
        if place and self.has("entry twice", 0.5):
            number = project.cuts[place - 1].entry
        entry = "(Entry)" if place and self.has("entry missing", 0.4) else f"(Entry) {number:04d}"
        source = next(source for source in project.sources if source.index == cut.source)
        index = f'"{source.name}"' if self.has("index name", 0.6) and ".aif" not in str(self.files) else cut.source
        status = rng.choice(("_", "_", "R", "X"))
        if self.has("status missing", 0.3):
            status = ""
        times = [self.stamp(source.start + cut.offset, first), self.stamp(cut.position, first), self.stamp(cut.end, first)]
        if self.has("comments", 0.3):
            times.insert(rng.randrange(3), "/* a word */")
        line = f"(Cut) I {index} {_joined(cut.channels, rng)} {_joined(cut.tracks, rng)} {' '.join(times)} {status}".rstrip()
        lines = [entry, line]
        lines += [self._fade_line(label, fade) for label, fade in (("(Infade)", cut.fade_in), ("(Outfade)", cut.fade_out)) if fade]
        lines += [f"(Gain) {'_' if tracks is None else tracks[0]} {level:+.2f}" for tracks, level in cut.gains]
        if cut.name:
            lines.append(f'(Rem) NAME "{cut.name}"')
        if rng.random() < 0.3:
            lines = [" ".join(lines)]
        return lines

    def _fade_line(self, label, fade):
        levels = " ".join("_" if level is None else f"{level:.2f}" for level in fade.levels)
        rendered = f" I {fade.rendered[0]} {self.stamp(fade.rendered[1])}" if fade.rendered else ""
        return f"{label} {self.fade_length(fade.length)} {fade.shape} {levels}{rendered}"

    # The whole

    def _tail(self):
        lines = []
        if self.has("lists"):
            lines += ["<FADER_LIST>", "(FP) 1 -6.0", "</FADER_LIST>"]
        return "\n".join([*lines, "</ADL>", ""])

    def _finish(self, text):
        project, rng = self.project, self.rng
        if self.has("cut off"):
            text = text[:text.index("</EVENT_LIST>")]
        if self.has("next line"):
            text = text.replace("(Cut) ", "(Cut)\n  ").replace("(F) ", "(F)\n\t")
        if self.has("preface"):
            text = rng.choice(("Exported today\n", "\n\n", "/* head */\n")) + text
        raw = shift_jis.encode_as(text.replace("\n", rng.choice(_BLANK_LINES)), project.codec)
        if self.has("byte order mark") and (project.codec == "utf-8" or raw.isascii()):
            raw = b"\xef\xbb\xbf" + raw
        return raw


def _joined(numbers, rng):
    return str(numbers[0]) if len(numbers) == 1 else f"{numbers[0]}{rng.choice('~-')}{numbers[-1]}"
