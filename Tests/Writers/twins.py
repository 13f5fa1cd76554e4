"""For every code of check the smallest project that has it, and a twin that differs in that one respect and has not.

Both begin as the same clean project; a row says what is changed in the one and what, if anything, in the other.
"""

import audio
import shift_jis
from layout import PLACE, adl, cut, source

RATE = 48000
FRAMES = 24000
VOICE = audio.noise(FRAMES, seed="voice")
ROOM = audio.noise(FRAMES, seed="room")
STEREO = audio.noise(FRAMES, channels=2, seed="stereo")

FADES = ["(Infade) 00.00:00;05/0000 LIN _ _ _", "(Outfade) 00.00:00;02/0100 LIN _ _ _"]

# 25 frames, 1920 samples each. Both cuts play 9600 samples.
CLEAN = adl(
    [source(1, "voice.wav"), source(2, "room.wav")],
    [cut(1, 1, 1, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000"), *FADES, "(Gain) _ -6.00",
     cut(2, 2, 2, "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:10/0000")])

FILES = {"voice.wav": audio.wave(VOICE), "room.wav": audio.wave(ROOM)}

FIRST_CUT = "(Cut) I 1 1 1 00.00:00:01/0000 01.00:00:00/0000 01.00:00:05/0000 _"
SECOND_CUT = "(Cut) I 2 1 2 00.00:00:02/0000 01.00:00:05/0000 01.00:00:10/0000 _"


class Side:
    """One of two twins: the clean project with changes. A file of None is taken away."""

    def __init__(self, *edits, files=None, text=None):
        self.text = CLEAN if text is None else text
        for old, new in edits:
            old, new = _bytes(old), _bytes(new)
            if old not in self.text:
                raise AssertionError(f"{old!r} is not in the text")
            self.text = self.text.replace(old, new)
        self.files = dict(FILES)
        self.files.update(files or {})
        self.files = {name: content for name, content in self.files.items() if content is not None}


def _bytes(text):
    return text if isinstance(text, bytes) else text.encode("utf-8")


class Twins:
    """`at` is the text where the finding stands, in the one that has it: 0 for the file as a whole, None where the rules
    leave it open. `beside` are further codes that the same change must bring."""

    def __init__(self, name, code, severity, dirty, clean=None, *, at=None, entry=None, source=None, beside=(), count=1):
        self.name = name
        self.code = code
        self.severity = severity
        self.dirty = dirty
        self.clean = clean or Side()
        self.at = at
        self.entry = entry
        self.source = source
        self.beside = set(beside)
        self.count = count


def _voice(content):
    return Side(files={"voice.wav": content})


def _named(name, content):
    return Side(("voice.wav", name), files={"voice.wav": None, name: content})


_INFADE, _OUTFADE = FADES
_STRAY = "<VENDOR_LIST>\nstray words here\n</VENDOR_LIST>\n"
_CLEAR = "<VENDOR_LIST>\n(Vendor) words here\n</VENDOR_LIST>\n"
_SOURCES = "<SOURCE_INDEX>\n"
_AT_96 = Side(("/0000", "*0000"), ("/0960", "*1920"), ("/0100", "*0100"), ("(SEQ_SAMPLE_RATE) 48000", "(SEQ_SAMPLE_RATE) 96000"),
              files={"voice.wav": audio.wave(audio.noise(2 * FRAMES, seed="voice"), rate=96000),
                     "room.wav": audio.wave(audio.noise(2 * FRAMES, seed="room"), rate=96000)})


def _placed_files(*places):
    """The voice in other folders than beside the project, which no file there has the name of."""
    return {"voice.wav": None, **dict(places)}


ROWS = [
    Twins("text without sections", "not-an-adl", "fails", Side(text=b"Dear diary, (Cut) me some slack.\n"), at=0),
    Twins("event list alone is a project", "not-an-adl", "fails", Side(text=b"<ADX>\n</ADX>\n"),
          Side(text=CLEAN.replace(b"<ADL>\n", b"").replace(b"</ADL>\n", b"")), at=0),

    # Fades that fail the load
    Twins("full stop before a fade's frames", "fade-separator", "fails",
          Side((_INFADE, _INFADE.replace(";05", ".05"))), at="00.00:00.05/0000", entry=1),
    Twins("colon before a fade's frames", "fade-separator", "fails",
          Side((_OUTFADE, _OUTFADE.replace(";02", ":02"))), at="00.00:00:02/0100", entry=1),
    Twins("bar before a fade's frames", "fade-separator", "fails",
          Side((_OUTFADE, _OUTFADE.replace(";02", "|02"))), at="00.00:00|02/0100", entry=1),
    Twins("comma before a fade's frames is good", "fade-separator", "fails",
          Side((_INFADE, _INFADE.replace(";05", ".05"))), Side((_INFADE, _INFADE.replace(";05", ",05"))),
          at="00.00:00.05/0000", entry=1),
    Twins("no length", "fade-form", "fails", Side((_INFADE, "(Infade) _ LIN _ _ _")), at="_ LIN", entry=1),
    Twins("length without remainder", "fade-form", "fails",
          Side((_INFADE, "(Infade) 00.00:00;05 LIN _ _ _")), at="00.00:00;05 ", entry=1),
    Twins("length in words", "fade-form", "fails", Side((_OUTFADE, "(Outfade) short LIN _ _ _")), at="short", entry=1),
    Twins("thirty hours", "fade-form", "fails", Side((_INFADE, "(Infade) 30.00:00;05/0000 LIN _ _ _")), at="30.00:00;05/0000",
          entry=1, beside={"fade-overlong"}),

    # Too few values
    Twins("cut without status", "values-missing", "fails", Side((FIRST_CUT, FIRST_CUT[:-2])), at="(Cut) I 1", entry=1),
    Twins("source without length", "values-missing", "fails",
          Side(('room.wav" _ 00.00:00:00/0000 00.00:00:12/0960 "_" N', 'room.wav" _ 00.00:00:00/0000')),
          at='(F) "' + PLACE + "room", source=2),
    Twins("fade without levels", "values-missing", "fails", Side((_INFADE, _INFADE[:-6])), at="(Infade)", entry=1),
    Twins("short (T)", "values-missing", "fails",
          Side(('(Index) 2', '(T) 1 2 3\n(Index) 2')), Side(('(Index) 2', '(T) 1 2 3 4 5\n(Index) 2')), at="(T)", source=1),
    Twins("index without number", "index-missing", "fails", Side(("(Index) 2", "(Index)")), at="(Index) (F)", source=2),
    Twins("entry without number", "index-missing", "fails", Side(("(Entry) 2", "(Entry)")), at="(Entry)\n"),
    Twins("file name for an index", "index-name", "lost", Side((SECOND_CUT, SECOND_CUT.replace("I 2", "I room.wav"))),
          at="room.wav 1", entry=2),
    Twins("index twice", "index-twice", "lost", Side((_SOURCES, _SOURCES + source(2, "old.wav") + "\n"))),
    Twins("entry twice", "entry-twice", "lost", Side(("(Entry) 2", "(Entry) 1")), entry=1, count=None),

    # Text that ends the reading
    Twins("line without label", "stray-text", "lost", Side((_SOURCES, _STRAY + _SOURCES)),
          Side((_SOURCES, _CLEAR + _SOURCES)), at="stray"),
    Twins("line without label after the cuts", "stray-text", "lost", Side((_SOURCES, _STRAY + _SOURCES)),
          Side(("</EVENT_LIST>\n", "</EVENT_LIST>\n" + _STRAY)), at="stray"),
    Twins("between sections", "stray-text", "lost", Side((_SOURCES, "===\n" + _SOURCES)),
          Side((_SOURCES, "/* === */\n" + _SOURCES)), at="==="),
    Twins("byte order mark", "stray-text", "lost", Side(text=b"\xef\xbb\xbf" + CLEAN), at=b"\xef\xbb\xbf"),
    Twins("words before the project", "stray-text", "lost", Side(text=b"Exported today\n" + CLEAN),
          Side(text=CLEAN + b"Exported today\n"), at="Exported"),
    Twins("blank line before the project", "stray-text", "lost", Side(text=b"\n" + CLEAN)),
    Twins("comment among a cut's values", "stray-text", "lost",
          Side((FIRST_CUT, FIRST_CUT.replace(" 01.00:00:00", " /* in */ 01.00:00:00"))),
          Side((FIRST_CUT, FIRST_CUT + " /* in */")), at="/* in */", entry=1),
    Twins("closing tag of another section", "stray-text", "lost", Side(("</PROJECT>", "</PROJEKT>")), count=None),
    Twins("closing tags missing", "text-cut-off", "note", Side(("</EVENT_LIST>\n</ADL>\n", ""))),
    Twins("cut incomplete", "text-cut-off", "fails",
          Side(text=CLEAN[:CLEAN.index(b"01.00:00:05/0000 01.00:00:10/0000")]), entry=2),

    # Sources
    Twins("file start not given", "file-start-missing", "misplaced",
          Side(("voice.wav\" _ 00.00:00:00/0000", "voice.wav\" _ _")), source=1),
    Twins("file start that no cut fits", "file-start-missing", "misplaced",
          Side(("voice.wav\" _ 00.00:00:00/0000", "voice.wav\" _ 02.00:00:00/0000")),
          Side(("voice.wav\" _ 00.00:00:00/0000", "voice.wav\" _ 02.00:00:00/0000"),
               ("1 1 00.00:00:01/0000", "1 1 02.00:00:01/0000")), source=1),
    Twins("no such source", "source-missing", "lost", Side((SECOND_CUT, SECOND_CUT.replace("I 2", "I 9"))), at="9 1 2", entry=2),
    Twins("file is nowhere", "media-missing", "lost", Side(files=_placed_files()), source=1),
    Twins("words of the name beside", "media-missing", "lost", Side(files=_placed_files(("voice.txt", b"words"))),
          source=1),
    Twins("two files of the name", "media-ambiguous", "lost",
          Side(files=_placed_files(("a/voice.wav", audio.wave(VOICE)), ("b/voice.wav", audio.wave(ROOM)))), source=1),
    Twins("file in another folder", "media-elsewhere", "lost", Side(files=_placed_files(("Takes/voice.wav", FILES["voice.wav"]))),
          Side(("proj/voice.wav", "Takes/voice.wav"), files=_placed_files(("Takes/voice.wav", FILES["voice.wav"]))), source=1),
    Twins("name in another case", "media-elsewhere", "lost", Side(files=_placed_files(("VOICE.WAV", FILES["voice.wav"]))),
          source=1),
    Twins("escaped blank", "location-form", "lost",
          Side(("voice.wav", "my%20voice.wav"), files={"voice.wav": None, "my voice.wav": FILES["voice.wav"]}),
          Side(("voice.wav", "my%20voice.wav"), files={"voice.wav": None, "my%20voice.wav": FILES["voice.wav"]}), source=1),
    Twins("backslashes and a drive letter", "location-form", "lost",
          Side(("URL:file://localhost/proj/voice.wav", "URL:file://localhost/D:\\proj\\voice.wav")), source=1),

    # Media
    Twins("extensible", "media-kind", "lost", _voice(audio.wave(VOICE, extensible=True)), source=1),
    Twins("32-bit float", "media-kind", "lost", _voice(audio.floats(VOICE)), source=1),
    Twins("RF64", "media-kind", "lost", _voice(audio.rf64(VOICE)), source=1),
    Twins("AIFF", "media-kind", "lost", _named("voice.aif", audio.aiff(VOICE)), source=1),
    Twins("8 bits", "media-kind", "lost", _voice(audio.wave(VOICE, bits=8)), source=1),
    Twins("20 bits in 3 bytes", "media-kind", "lost", _voice(audio.wave(VOICE, bits=20)), source=1),
    Twins("odd-sized chunk before the audio", "media-chunks", "lost", _voice(audio.wave(VOICE, head=audio.chunk(b"note", b"odd"))),
          _voice(audio.wave(VOICE, head=audio.chunk(b"note", b"even"))), source=1),
    Twins("odd-sized chunk after the audio is harmless", "media-chunks", "lost",
          _voice(audio.wave(VOICE, head=audio.chunk(b"note", b"odd"))),
          _voice(audio.wave(VOICE, tail=audio.chunk(b"note", b"odd"))), source=1),
    Twins("data longer than the file", "media-chunks", "lost", _voice(audio.wave(VOICE, claimed=3 * FRAMES + 3000)), source=1),
    Twins("size field of 0", "media-chunks", "lost", _voice(audio.wave(VOICE, riff_size=0)), source=1),
    Twins("noise for a file", "media-broken", "lost", _voice(bytes(range(256)) * 9), source=1),
    Twins("empty file", "media-broken", "lost", _voice(b""), source=1),
    Twins("another sample rate", "media-rate", "misplaced", _voice(audio.wave(VOICE, rate=44100)), source=1),

    # Events
    Twins("cut runs past its file", "cut-outside-file", "lost",
          Side((FIRST_CUT, FIRST_CUT.replace("00.00:00:01/0000 ", "00.00:00:07/0961 "))),
          Side((FIRST_CUT, FIRST_CUT.replace("00.00:00:01/0000 ", "00.00:00:07/0960 "))), entry=1),
    Twins("cut begins before its file", "cut-outside-file", "lost",
          Side(('voice.wav" _ 00.00:00:00/0000', 'voice.wav" _ 00.00:00:01/0001'),
               ("</EVENT_LIST>", cut(3, 1, 3, "00.00:00:02/0000", "01.00:00:20/0000", "01.00:00:21/0000") + "\n</EVENT_LIST>")),
          Side(('voice.wav" _ 00.00:00:00/0000', 'voice.wav" _ 00.00:00:01/0000')), entry=1),
    Twins("stereo cut", "channels", "lost",
          Side((FIRST_CUT, FIRST_CUT.replace("1 1 1 00", "1 1~2 3~4 00")), files={"voice.wav": audio.wave(STEREO)}), entry=1),
    Twins("mono cut of a stereo file", "channels", "lost", Side(files={"voice.wav": audio.wave(STEREO)}), entry=1),
    Twins("stereo cut of a mono file", "channels", "lost", Side((FIRST_CUT, FIRST_CUT.replace("1 1 1 00", "1 1-2 3-4 00"))),
          entry=1),
    Twins("disabled", "event-off", "misplaced", Side((FIRST_CUT, FIRST_CUT[:-1] + "D")), Side((FIRST_CUT, FIRST_CUT[:-1] + "R")),
          entry=1),
    Twins("muted", "event-off", "misplaced", Side((SECOND_CUT, SECOND_CUT[:-1] + "M")), Side((SECOND_CUT, SECOND_CUT[:-1] + "X")),
          entry=2),
    Twins("in error", "event-error", "lost", Side((FIRST_CUT, FIRST_CUT[:-1] + "E")), entry=1),
    Twins("no length on the timeline", "event-empty", "misplaced",
          Side((SECOND_CUT, SECOND_CUT.replace("01.00:00:10", "01.00:00:05"))), entry=2),
    Twins("ends before it begins", "event-empty", "misplaced",
          Side((SECOND_CUT, SECOND_CUT.replace("01.00:00:10", "01.00:00:04"))), entry=2),
    Twins("curved fade", "fade-curve", "note", Side((_INFADE, "(Infade) 00.00:00;05/0000 CURVE -12.0 -6.0 -2.5")), entry=1),
    Twins("rendered fade", "fade-rendered", "note",
          Side((_INFADE, "(Infade) 00.00:00;05/0000 CURVE -12.0 -6.0 -2.5 I 2 00.00:00:03/0000")),
          Side((_INFADE, "(Infade) 00.00:00;05/0000 CURVE -12.0 -6.0 -2.5")), entry=1),
    Twins("label of a crossfade", "xfade-label", "note",
          Side((_INFADE, _INFADE + "\n(Xfade) 1 00.00:00;05/0000 LIN _ 1 _")), at="(Xfade)", entry=1),
    Twins("fade longer than its cut", "fade-overlong", "lost", Side((_INFADE, _INFADE.replace(";05/0000", ";05/0001"))), entry=1),
    Twins("gains that differ", "gain-channels", "lost",
          Side((FIRST_CUT, FIRST_CUT.replace("1 1 1 00", "1 1~2 3~4 00")), ("(Gain) _ -6.00", "(Gain) 3 -6.00\n(Gain) 4 -3.00"),
               files={"voice.wav": audio.wave(STEREO)}),
          Side((FIRST_CUT, FIRST_CUT.replace("1 1 1 00", "1 1~2 3~4 00")), files={"voice.wav": audio.wave(STEREO)}),
          entry=1, beside={"channels"}),
    Twins("gain of one channel of two", "gain-channels", "lost",
          Side((FIRST_CUT, FIRST_CUT.replace("1 1 1 00", "1 1~2 3~4 00")), ("(Gain) _ -6.00", "(Gain) 4 -6.00"),
               files={"voice.wav": audio.wave(STEREO)}),
          Side((FIRST_CUT, FIRST_CUT.replace("1 1 1 00", "1 1~2 3~4 00")), files={"voice.wav": audio.wave(STEREO)}),
          entry=1, beside={"channels"}),

    # Rates
    Twins("stamps of two sample rates", "rate-mixed", "misplaced",
          Side((SECOND_CUT, SECOND_CUT.replace("/", "|"))), count=None),
    Twins("header of another sample rate", "marks-differ", "misplaced", Side(("RATE) 48000", "RATE) 44100")), count=None),
    Twins("header of another frame rate", "marks-differ", "misplaced", Side(("RATE) 25", "RATE) 30")), count=None),
    Twins("high sample rate", "rate-compensated", "misplaced", _AT_96, count=None),
    Twins("first cut between two frames", "rate-compensated", "misplaced",
          Side((" 01.00:00:00/0000 01.00:00:05/0000 _", " 01.00:00:00/0001 01.00:00:05/0001 _")),
          Side((" 01.00:00:00/0000 01.00:00:05/0000 _", " 01.00:00:01/0000 01.00:00:06/0000 _")), count=None),
    Twins("separator that no session has", "rate-compensated", "misplaced",
          Side((" 01.00:00:00/0000 01.00:00:05/0000 _", " 01.00:00.01/0000 01.00:00.06/0000 _")),
          Side((" 01.00:00:00/0000 01.00:00:05/0000 _", " 01.00:00:01/0000 01.00:00:06/0000 _")), count=None),

    # Text and what is only told
    Twins("title in UTF-8", "text-encoding", "note", Side(("Reel one", "Spule für")), Side(("Reel one", "Spule fur")), count=None),
    Twins("title in Shift-JIS is good", "text-encoding", "note", Side(("Reel one", "嵐の予報")),
          Side((b"Reel one", shift_jis.encode("嵐の予報"))), count=None),
    Twins("name in UTF-8", "text-encoding", "lost",
          Side(("voice.wav", "嵐.wav"), files={"voice.wav": None, "嵐.wav": FILES["voice.wav"]}),
          Side((b"voice.wav", shift_jis.encode("嵐.wav")), files={"voice.wav": None, "嵐.wav": FILES["voice.wav"]}),
          count=None),
    Twins("name of an event", "names-unused", "note", Side((SECOND_CUT, SECOND_CUT + '\n(Rem) NAME "Rain"')),
          Side((SECOND_CUT, SECOND_CUT + '\n(Rem) COMMENT "Rain"')), count=None),
    Twins("names of tracks", "tracks-unused", "note",
          Side((_SOURCES, '<TRACKLIST>\n(Track) 1 "Voices"\n</TRACKLIST>\n' + _SOURCES)), count=None),
    Twins("names of tracks, as the system spells the list", "tracks-unused", "note",
          Side((_SOURCES, '<TRACK_LIST>\n(Track) 1 "Voices"\n</TRACK_LIST>\n' + _SOURCES)), count=None),
    Twins("faders", "automation-unused", "note",
          Side(("</ADL>", "<FADER_LIST>\n(FP) 1 01.00:00:00/0000 -6.0\n</FADER_LIST>\n</ADL>")), count=None),
    Twins("pans", "automation-unused", "note",
          Side(("</ADL>", "<PAN_LIST>\n(PP) 1 01.00:00:00/0000 0.5\n</PAN_LIST>\n</ADL>")), count=None),
    Twins("mutes", "automation-unused", "note",
          Side(("</ADL>", "<MUTE_LIST>\n(MP) 1 01.00:00:00/0000 1\n</MUTE_LIST>\n</ADL>")), count=None),
    Twins("markers", "markers-unused", "note",
          Side(("</ADL>", '<MARK_LIST>\n(Mark) 1 01.00:00:00/0000 "Start"\n</MARK_LIST>\n</ADL>')), count=None),
    Twins("offset of sources", "offset-unused", "note",
          Side(("<SEQUENCE>", "<SYSTEM>\n(SYS_SRC_OFFSET) 01.00:00:00/0000\n</SYSTEM>\n<SEQUENCE>")),
          Side(("<SEQUENCE>", "<SYSTEM>\n(SYS_SRC_OFFSET) 00.00:00:00/0000\n</SYSTEM>\n<SEQUENCE>")), at="01.00:00:00/0000\n</SYSTEM>"),
]
