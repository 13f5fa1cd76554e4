"""Makes projects that are valid enough to be read and far from what anybody would write: by shape and size, by text, by
number; and wave files of which one field lies. The tests use them small, Bench/hostile large.
"""

import random
import struct

from material import wave

# --- One thing over and over, up to a size ---------------------------------------------------------------------------

_CUT = b"(Entry) %d (Cut) I 1 1 %d 00|00:00:00/0000 01|00:00:00/0000 01|00:00:01/0000 _\n"
_SOURCE = b'(Index) %d (F) "URL:file://localhost/a/t%d.wav" _ 00|00:00:00/0000 00|00:01:00/0000 "n" N\n'
_SOURCES = b"<ADL>\n<SOURCE_INDEX>\n" + _SOURCE % (1, 1) + b"</SOURCE_INDEX>\n"
_EVENTS = _SOURCES + b"<EVENT_LIST>\n"
_EVENTS_END = b"</EVENT_LIST>\n</ADL>\n"
_INDEX = b"<ADL>\n<SOURCE_INDEX>\n"
_INDEX_END = b"</SOURCE_INDEX>\n<EVENT_LIST>\n" + _CUT % (1, 1) + _EVENTS_END
_HEAD = b"<ADL>\n<PROJECT>\n"
_HEAD_END = b"\n</PROJECT>\n<EVENT_LIST>\n" + _CUT % (1, 1) + _EVENTS_END
_TOP = b"<ADL>\n"
_TOP_END = b"\n<EVENT_LIST>\n" + _CUT % (1, 1) + _EVENTS_END
_ONE_CUT = _EVENTS + _CUT % (1, 1)
_FAR = [b"-2147483648", b"2147483647", b"4294967296", b"-9223372036854775809", b"9" * 30, b"1e999", b"nan", b"-inf", b"0x7f"]


def _numbered(unit, numbers):
    """A unit that holds its number `numbers` times."""
    return lambda number: unit % ((number,) * numbers)


def _far_cut(number):
    far = _FAR[number % len(_FAR)]
    return b"(Entry) %s (Cut) I %s %s %s 99:99:99:99/9999 99|99:99:99/9999 99;99:99;99/9999 _\n(Gain) %s %s\n" % (
        b"%d" % (number * 2654435761 - (1 << 40)), far, far, far, far, far)


def _noise(number):
    return random.Random(number).randbytes(1 << 12)


# What stands before, the unit (bytes, or a function of its number), what stands after.
SHAPES = {
    # one text
    "label": (_HEAD + b"(", b"x", b") v" + _HEAD_END),
    "value": (_HEAD + b'(PROJ_TITLE) "', b"x", b'"' + _HEAD_END),
    "escapes": (_HEAD + b'(PROJ_TITLE) "', b'\x1b"', b'"' + _HEAD_END),
    "location": (_INDEX + b'(Index) 1 (F) "URL:file://localhost', b"/..", b'/t.wav" _ 00|00:00:00/0000\n' + _INDEX_END),
    "values": (_HEAD + b"(PROJ_TITLE) ", b"v ", _HEAD_END),
    "event-values": (_EVENTS + b"(Entry) 1 (Cut) I 1 1 1 ", b"v ", _EVENTS_END),
    # many things of one kind
    "cuts": (_EVENTS, _numbered(_CUT, 2), _EVENTS_END),
    "one-number": (_EVENTS, _CUT % (7, 1), _EVENTS_END),
    "bare-cuts": (_EVENTS, b"(Cut) I\n", _EVENTS_END),
    "bare-entries": (_EVENTS, b"(Entry)\n", _EVENTS_END),
    "far-numbers": (_EVENTS, _far_cut, _EVENTS_END),
    "channel-ranges": (_EVENTS, lambda n: b"(Entry) %d (Cut) I 1 1~65535 1~65535 _ _ _ _\n" % n, _EVENTS_END),
    "fades": (_ONE_CUT, b"(Infade) 00|00:00;01/0000 L 0 0 0\n", _EVENTS_END),
    "gains": (_ONE_CUT, b"(Gain) 1 -6\n", _EVENTS_END),
    "sources": (_INDEX, _numbered(_SOURCE, 2), _INDEX_END),
    "one-source": (_INDEX, _SOURCE % (7, 7), _INDEX_END),
    "bare-sources": (_INDEX, b"(Index)\n", _INDEX_END),
    "sections": (_TOP, b"<A>\n(B) c\n</A>\n", _TOP_END),
    "event-lists": (_TOP, b"<EVENT_LIST>\n(Entry) 1\n</EVENT_LIST>\n", _TOP_END),
    "unknown-labels": (_HEAD, _numbered(b"(Odd%d) x\n", 1), _HEAD_END),
    "unknown-in-event": (_ONE_CUT, _numbered(b"(Odd%d) x\n", 1), _EVENTS_END),
    "lists": (_TOP, b"<REF_LIST>\n<REF>\n(A) b\n</REF>\n</REF_LIST>\n", _TOP_END),
    "nested": (_TOP, b"<REF_LIST>\n<REF>\n", b""),
    "comments": (_TOP, b"/* c */\n", _TOP_END),
    "event-comments": (_EVENTS, b"/* c */\n", _EVENTS_END),
    # beginnings without an end, ends without a beginning
    "open-comment": (_ONE_CUT + b"/*", b" /* x", b""),
    "open-labels": (_EVENTS, b"(x\n", b""),
    "open-counted": (_EVENTS, b"(A)999999999 x\n", b""),
    "counted": (_HEAD, b"(A)3 x\n", _HEAD_END),
    "open-tags": (_TOP, b"<x\n", b""),
    "deep-tags": (_TOP, b"<x>\n", b""),
    "closing-tags": (_TOP, b"</x>\n", b""),
    "closing-labels": (_HEAD, b") 1 ", b""),
    "quotes": (_EVENTS, b'"', b""),
    "open-quotes": (_EVENTS, b'(A) "x\n', b""),
    "numbers": (_EVENTS, b"12 ", b""),
    "slashes": (_EVENTS, b"/", b""),
    "stray-text": (_ONE_CUT, b"stray\n", b""),
    "before": (b"", b"stray\n", _ONE_CUT + _EVENTS_END),
    # no text
    "noise": (_EVENTS, _noise, b""),
    "noise-alone": (b"", _noise, b""),
    "nuls": (_EVENTS, b"\0", b""),
    "nuls-in-cuts": (_EVENTS, b"(Entry)\0 1 (Cut)\0 I 1\0 1 1\n", _EVENTS_END),
    "high-bytes": (_HEAD + b'(PROJ_TITLE) "', b"\x81\xff\xc0\x80", b'"' + _HEAD_END),
    "line-feeds": (_EVENTS, b"\n", b""),
}


def shape_bytes(name, size):
    """A project of one shape, of about `size` bytes."""
    return b"".join(_pieces(name, size))


def write_shape(path, name, size):
    with open(path, "wb") as file:
        file.writelines(_pieces(name, size))


def _pieces(name, size):
    before, unit, after = SHAPES[name]
    yield before
    left = size - len(before) - len(after)
    if callable(unit):
        number = 1
        while left > 0:
            piece = unit(number)
            yield piece
            left -= len(piece)
            number += 1
    else:
        block = unit * (65536 // len(unit))
        while left > 0:
            yield block if left >= len(block) else unit * (left // len(unit) + 1)
            left -= len(block)
    yield after


# --- Texts that must not come out as they are -----------------------------------------------------------------------

TEXTS = {
    "escapeSequence": b"\x1b[35mviolet\x1b]0;title\x07\x1bc",
    "controls": b"a\x01\x07\x08\x0b\x0c\x7fb",
    "lines": b"a\r\nb\rc\nd",
    "nul": b"a\0b",
    "c1InUtf8": "a\u0085\u009b35m\u009d0;t\u009cb".encode(),
    "c1Bare": b"a\x85\x9b35mb",
    "bidi": "a\u202eb\u2066c\u200fd\u061ce".encode(),
    "format": "a\u200b\u2060\ufeff\u00adb\U000e0041".encode(),
    "separators": "a\u2028b\u2029c".encode(),
    "noncharacters": "a\ufffe\uffff\U0010ffff".encode(),
    "surrogates": b"a\xed\xa0\x80b\xed\xb0\x80",
    "invalid": b"a\xff\xfe\xc0\x80\xf5\x80b\xe3\x81",
    "script": b"</script><script>alert(1)</script><!--",
    "cdata": b"]]><x/><![CDATA[",
    "markup": b"&<>'&amp;&#0;&#x1b;<?xml?>",
    "quotes": b"a'b\x1b\"c\\\"d`e$(f)%n%s{}",
    "dots": b"../../../../../../etc/passwd",
}


def text_project(text):
    """A project that has the text wherever a text can stand: labels, tags, values, names, locations, numbers, times."""
    quoted = b'"' + text.replace(b'"', b"") + b'"'
    inside = quoted.strip(b'"')
    template = b"""<ADL>
<PROJECT>
(PROJ_TITLE) QUOTED
(PROJ_NOTES) QUOTED
</PROJECT>
<TRACK_LIST>
(Track) 1 QUOTED
</TRACK_LIST>
<SOURCE_INDEX>
(Index) 1 (F) "URL:file://localhost/a/t1.wav" QUOTED 00|00:00:00/0000 00|00:01:00/0000 QUOTED N
(Index) 2 (F) "URL:file://localhost/a/INSIDE.wav" QUOTED _ _ QUOTED N
(Index) 3 (F) QUOTED _ 00|00:00:00/0000 _ QUOTED N
</SOURCE_INDEX>
<EVENT_LIST>
(Entry) 1 (Cut) I 1 1 1 00|00:00:00/0000 01|00:00:00/0000 01|00:00:01/0000 QUOTED
(Rem) NAME QUOTED
(Entry) 2 (Cut) I 2 1 2 00|00:00:00/0000 01|00:00:00/0000 01|00:00:01/0000 _
(Rem) NAME QUOTED
(Entry) 3 (Cut) I 3 1 QUOTED 00|00:00:00/0000 01|00:00:00/0000 01|00:00:01/0000 _
(Entry) 4 (Cut) I QUOTED QUOTED 1 QUOTED QUOTED QUOTED QUOTED
(Infade) 00|00:00;00/0100 QUOTED QUOTED QUOTED QUOTED (Gain) QUOTED QUOTED
(Entry) 5 (QUOTED) QUOTED (OddINSIDE) QUOTED
(Entry) 6 (Cut) I 1 1 4 00|00:00:00/0000 01|00:00:00/0000 01|00:00:01/0000 _
(OddTEXT) TEXT
</EVENT_LIST>
<OddTEXT>
(ATEXT) TEXT
</OddTEXT>
</ADL>
"""
    return template.replace(b"QUOTED", quoted).replace(b"INSIDE", inside).replace(b"TEXT", text)


# Names that a folder can hold, for sources that are found.
FILE_NAMES = [b"es\x1b[35mc.wav", b"c1\xc2\x9b.wav", b"bi\xe2\x80\xaedi.wav", b"&<>'.wav", b"]]>.wav", b"%00%1b%0a.wav", b"<!--.wav",
              b"\xff\xfe.wav", b"a\x01\x7fb.wav", b"$(x)`y`.wav", b"-rf.wav"]


def named_project(names):
    index = b"".join(_SOURCE.replace(b"t%d.wav", names[i].replace(b"%", b"%%")) % (i + 1) for i in range(len(names)))
    cuts = b"".join(_CUT.replace(b"I 1", b"I %d" % (i + 1)) % (i + 1, i % 4 + 1) for i in range(len(names)))
    return _INDEX + index + b"</SOURCE_INDEX>\n<EVENT_LIST>\n" + cuts + _EVENTS_END


# --- Numbers ---------------------------------------------------------------------------------------------------------

NUMBERS = ["0", "-1", "-0", "32767", "32768", "65536", "2147483647", "-2147483648", "4294967296", "9223372036854775807",
           "-9223372036854775809", "9" * 40, "1e999", "-1e999", "1e-999", "nan", "-inf", "0x7fffffff", "+", "-", "1~2147483647",
           "2147483647~1", "-5~5", "1~2~3"]
STAMPS = ["99:99:99:99/9999", "99|99:99;99/9999", "00|00:00:00/0000", "99;99:99,99/9999", "23|59:59:29/1600", "-1|00:00:00/0000",
          "::::::::::::::::", "99?99:99.99?9999", "_"]


def number_project(number, time):
    """A project that has the number and the time wherever one can stand."""
    return (f"<ADL>\n<VERSION>\n(ADL_ID) {number}\n(VER_ADL_VERSION) {number}\n</VERSION>\n<SEQUENCE>\n(SEQ_SAMPLE_RATE) S{number}\n"
            f"(SEQ_FRAME_RATE) {number}\n(SEQ_ADL_LEVEL) {number}\n(SEQ_DEST_START) {time}\n</SEQUENCE>\n<SYSTEM>\n"
            f"(SYS_SRC_OFFSET) {number}\n(SYS_BIT_DEPTH) {number}\n(SYS_GAIN) {number}\n</SYSTEM>\n<TRACK_LIST>\n(Track) {number} \"n\"\n"
            f"</TRACK_LIST>\n<SOURCE_INDEX>\n(Index) {number} (F) \"URL:file://localhost/a/take.wav\" _ {time} {time} \"n\" N\n"
            f"(Index) 1 (F) \"URL:file://localhost/a/take.wav\" _ {time} {time} \"n\" N\n"
            f"(T) {number} {number} {number} {time} {number}\n</SOURCE_INDEX>\n<EVENT_LIST>\n"
            f"(Entry) {number} (Cut) I {number} {number} {number} {time} {time} {time} _\n"
            f"(Infade) {time} {number} {number} {number} {number} (Outfade) {time} {number} {number} {number} {number}\n"
            f"(Xfade) {time} {number} {number} {number} {number} (Gain) {number} {number}\n"
            f"(Entry) 5 (Cut) I 1 1 {number} 00|00:00:00/0000 01|00:00:00/0000 {time} _ (Gain) _ {number}\n"
            f"(Entry) 6 (Silence) {number} {time} {time} {number}\n(Entry) 7 (Aux) {number} {number} {time} {time} {number}\n"
            f"(Entry) 8 (Vid) {number} {number} {time} {time} {number}\n(Entry) 9 (Alt) {number} {number} {time} {time} {number}\n"
            "</EVENT_LIST>\n</ADL>\n").encode()


# --- Wave headers that lie -------------------------------------------------------------------------------------------

LIES = [0, 1, 7, 13, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF]
_AUDIO = wave(200)[44:]


def _header(rf64):
    """The fields of a wave file in order: name, form, value; with bext, a list and a cue before the audio."""
    size = len(_AUDIO)
    fields = [("riff id", "4s", b"RF64" if rf64 else b"RIFF"), ("riff size", "I", 0xFFFFFFFF if rf64 else 4 + 24 + 610 + 20 + 8 + size),
              ("form", "4s", b"WAVE")]
    if rf64:
        fields += [("ds64 id", "4s", b"ds64"), ("ds64 size", "I", 28), ("ds64 riff size", "Q", 700 + size),
                   ("ds64 data size", "Q", size), ("ds64 frames", "Q", size // 3), ("ds64 table", "I", 0)]
    fields += [("fmt id", "4s", b"fmt "), ("fmt size", "I", 16), ("tag", "H", 1), ("channels", "H", 1), ("rate", "I", 48000),
               ("byte rate", "I", 144000), ("block align", "H", 3), ("bits", "H", 24),
               ("bext id", "4s", b"bext"), ("bext size", "I", 602), ("bext text", "338s", b"d" * 338), ("bext time", "Q", 0),
               ("bext version", "H", 1), ("bext rest", "254s", bytes(254)),
               ("list id", "4s", b"LIST"), ("list size", "I", 4), ("list form", "4s", b"INFO"),
               ("data id", "4s", b"data"), ("data size", "I", 0xFFFFFFFF if rf64 else size)]
    return fields


def lying_waves():
    """Every field but names and texts with every lie in turn: pairs of a name and the bytes."""
    for rf64 in (False, True):
        fields = _header(rf64)
        for lied, (what, form, _) in enumerate(fields):
            if form.endswith("s"):
                continue
            for lie in LIES + ([1 << 63, (1 << 64) - 1] if form == "Q" else []):
                head = b"".join(struct.pack("<" + form, (lie & ((1 << 8 * struct.calcsize(form)) - 1)) if at == lied else value)
                                for at, (_, form, value) in enumerate(fields))
                yield f"{'rf64' if rf64 else 'riff'} {what} {lie:x}", head + _AUDIO


def _chunk(name, content, claimed=None):
    return name + struct.pack("<I", len(content) if claimed is None else claimed) + content


def shuffled_waves():
    """Chunks that are twice there, in another order, missing, or that lead astray: pairs of a name and the bytes."""
    def fmt(bits=24, channels=1, tag=1):
        block = channels * bits // 8
        return _chunk(b"fmt ", struct.pack("<HHIIHH", tag, channels, 48000, 48000 * block, block, bits))

    data, bext = _chunk(b"data", _AUDIO), _chunk(b"bext", bytes(602))
    orders = {
        "data before fmt": data + fmt(), "data alone": data, "fmt alone": fmt(), "nothing": b"",
        "two fmt": fmt() + fmt(16, 2) + data, "fmt before and after": fmt() + data + fmt(16, 2),
        "two data": fmt() + data + _chunk(b"data", b"\x7f" * 600), "empty data first": fmt() + _chunk(b"data", b"") + data,
        "two bext": fmt() + bext + _chunk(b"bext", b"b" * 602) + data, "bext after data": fmt() + data + bext,
        "short bext": fmt() + _chunk(b"bext", b"b" * 600) + data, "bext of one byte": fmt() + _chunk(b"bext", b"b") + data,
        "short fmt": _chunk(b"fmt ", b"\1\0\1\0") + data, "odd fmt": fmt()[:4] + struct.pack("<I", 17) + fmt()[8:] + b"\0" + data,
        "long fmt": fmt()[:4] + struct.pack("<I", 4096) + fmt()[8:] + bytes(4080) + data,
        "chunk past the end": fmt() + _chunk(b"junk", b"j" * 10, 1 << 20) + data,
        "last chunk past the end": fmt() + data + _chunk(b"junk", b"j" * 10, 0xFFFFFFFF),
        "chunk that leads back": fmt() + _chunk(b"junk", b"j" * 10, 0xFFFFFFF0) + data,
        "chunk of the size of its head": fmt() + _chunk(b"junk", b"", 0xFFFFFFF8) + data,
        "a thousand empty chunks": fmt() + _chunk(b"junk", b"") * 1000 + data,
        "a name of NULs": fmt() + _chunk(b"\0\0\0\0", b"") + data,
        "half a head": fmt() + data + b"jun", "ds64 without RF64": _chunk(b"ds64", bytes(28)) + fmt() + data,
        "extensible without its end": fmt(tag=0xFFFE) + data, "no known tag": fmt(tag=0x4711) + data,
    }
    for name, body in orders.items():
        yield f"riff {name}", b"RIFF" + struct.pack("<I", len(body) + 4) + b"WAVE" + body
        yield f"rf64 {name}", (b"RF64\xff\xff\xff\xffWAVE" + _chunk(b"ds64", struct.pack("<QQQI", len(body) + 40, len(_AUDIO), 200, 0))
                              + body)  # fmt: skip
    whole = b"RIFF" + struct.pack("<I", 4 + len(fmt() + data)) + b"WAVE" + fmt() + data
    for end in (0, 1, 4, 8, 11, 12, 16, 20, 35, 36, 40, 43, 44, 45, len(whole) - 1):
        yield f"cut off at {end}", whole[:end]
