"""Whole projects in the habits of those who write them. Every position is worked out by hand beside its stamp.

At 25 frames and 48000 Hz a frame has 1920 samples and an hour 172800000; at 29.97 frames a frame has 1601.6 samples, rounded
up; at 30 frames and 44100 Hz a frame has 1470 samples and an hour 158760000.
"""

import audio
import shift_jis
from known import Cut, Fade
from layout import PLACE, adl, cut, source

HOUR = 172800000
FRAMES = 24000
VOICE = audio.noise(FRAMES, seed="voice")
ROOM = audio.noise(FRAMES, seed="room")
WIDE = audio.noise(FRAMES, channels=2, seed="wide")
SHALLOW = audio.noise(FRAMES, bits=16, seed="shallow")

FAILS, MISPLACED, LOST, NOTE = "fails", "misplaced", "lost", "note"


class Writer:
    """`findings` are (code, severity, entry, source), null where none is meant, of all that harms; `notes` the codes of
    notes that must be told. `sounds` by index of source; what is left after prepare stands in `left`."""

    def __init__(self, name, text, files, cuts, sounds, findings=(), *, notes=(), encoding="ASCII", options=(), rate=48000,
                 left=(), media=(), whole=(), prepare_options=()):
        self.name = name
        self.text = text
        self.files = files
        self.cuts = cuts
        self.sounds = sounds
        self.findings = set(findings)
        self.notes = set(notes)
        self.encoding = encoding
        self.options = list(options)
        self.rate = rate
        self.left = set(left)
        self.media = list(media)
        # Codes that concern the project as a whole, however often they are told.
        self.whole = set(whole)
        self.prepare_options = list(prepare_options)


_BOTH = {"voice.wav": audio.wave(VOICE), "room.wav": audio.wave(ROOM)}
_SOUNDS = {1: VOICE, 2: ROOM}
_TWO = [source(1, "voice.wav"), source(2, "room.wav")]


def _two_cuts(**more):
    """Frames 1 to 6 of the voice at one hour, frames 2 to 7 of the room five frames later."""
    return [Cut(1, 1, HOUR, HOUR + 9600, 1920, **more), Cut(2, 2, HOUR + 9600, HOUR + 19200, 3840, tracks=(2,))]


_TWO_EVENTS = [cut(1, 1, 1, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000"),
               cut(2, 2, 2, "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:10/0000")]
_TWO_TEXT = adl(_TWO, _TWO_EVENTS)


# Timestamps

FULL_STOPS = Writer(
    "full-stop marks",
    adl([source(1, "voice.wav", "00.00.00.00/0000", "00.00.00.12/0960")],
        [cut(1, 1, 1, "00.00.00.01/0000", "01.00.00.00/0000", "01.00.00.05/0000", "R"),
         "(Infade) 00.00.00.02/0000 LIN _ _ _", "(Outfade) 00.00.00.01/0080 LIN _ _ _",
         cut(2, 1, 1, "00.00.00.02/0500", "01.00.01.00/0007", "01.00.01.05/0007", "R")]),
    {"voice.wav": audio.wave(VOICE)},
    [Cut(1, 1, HOUR, HOUR + 9600, 1920, fade_in=Fade(3840), fade_out=Fade(2000)),
     Cut(2, 1, HOUR + 48007, HOUR + 57607, 4340)],
    _SOUNDS, [("fade-separator", FAILS, 1, None)])

COLONS = Writer(
    "colon marks",
    # 172972800 is one hour at 29.97 frames; ten frames are 16016 samples, five 8008, one 1602.
    adl([source(1, "voice.wav", "00:00:00:00/0000", "00:00:00:14/1577")],
        [cut(1, 1, 1, "00:00:00:01/0000", "01:00:00:10/0000", "01:00:00:15/0000"),
         "(Infade) 00:00:00:05/0000 LIN _ _ _",
         cut(2, 1, 2, "00:00:00:05/0000", "01:00:10:10/0003", "01:00:10:15/0003"),
         "(Outfade) 00:00:00:01/0398 LIN _ _ _"], frame_rate="29.97"),
    {"voice.wav": audio.wave(VOICE)},
    [Cut(1, 1, 172988816, 172996824, 1602, fade_in=Fade(8008)),
     Cut(2, 1, 173469299, 173477307, 8008, tracks=(2,), fade_out=Fade(2000))],
    _SOUNDS, [("fade-separator", FAILS, 1, None), ("fade-separator", FAILS, 2, None)])

DROP_MARKS = Writer(
    "drop marks",
    # Drop-frame: one hour is 107892 frames, 172799828 samples; 00:01:00;02 is frame 1800, 2882880 samples.
    adl([source(1, "voice.wav", "00:01:00;02/0000", "00:00:00;14/1577")],
        [cut(1, 1, 1, "00:01:00;03/0000", "01:00:00;00/0000", "01:00:00;05/0000"),
         "(Infade) 00:00:00;02/0000 LIN _ _ _", "(Outfade) 00:00:00,01/0398 LIN _ _ _"], frame_rate="29.97"),
    {"voice.wav": audio.wave(VOICE, head=audio.bext(2882880))},
    # Frame 1801 is 2884481.6; five frames after the hour is 107897 frames, 172807835.2.
    [Cut(1, 1, 172799828, 172807836, 1602, fade_in=Fade(3204), fade_out=Fade(2000))], _SOUNDS)

# A recorder that writes "|" for every mark: 30 frames at 44100 Hz to whoever believes the marks.
_BARS = adl([source(1, "voice.wav", "10|30|00|00|0000", "00|00|00|16|0480")],
            [cut(1, 1, 1, "10|30|00|01|0000", "10|30|00|00|0000", "10|30|00|05|0000"),
             "(Infade) 00|00|00|01|0000 LIN _ _ _"])
BARS = Writer(
    "bars everywhere, the marks believed", _BARS, {"voice.wav": audio.wave(VOICE, rate=44100, head=audio.bext(1666980000))},
    # Ten and a half hours: 1666980000.
    [Cut(1, 1, 1666980000, 1666987350, 1470, fade_in=Fade(1470))], _SOUNDS,
    [("fade-separator", FAILS, 1, None)], whole=["marks-differ"], rate=44100)
BARS_HEADER = Writer(
    "bars everywhere, the header believed", _BARS, {"voice.wav": audio.wave(VOICE, head=audio.bext(1814400000))},
    # 25 frames at 48000 Hz: 1814400000, a frame being 1920.
    [Cut(1, 1, 1814400000, 1814409600, 1920, fade_in=Fade(1920))], _SOUNDS,
    [("fade-separator", FAILS, 1, None)], whole=["marks-differ", "rate-compensated", "rate-mixed"],
    options=["--trust", "header"])

SHORT_STAMPS = Writer(
    "remainder left out",
    adl([source(1, "voice.wav", "00.00.00.00", "00.00.00.12")],
        [cut(1, 1, 1, "00.00.00.01", "01.00.00.00", "01.00.00.05"), "(Infade) 00.00.00;02 LIN _ _ _",
         cut(2, 1, 1, "00.00.00.02", "01.00.01.00", "01.00.01.05")]),
    {"voice.wav": audio.wave(VOICE)},
    [Cut(1, 1, HOUR, HOUR + 9600, 1920, fade_in=Fade(3840)), Cut(2, 1, HOUR + 48000, HOUR + 57600, 3840)],
    _SOUNDS, [("fade-form", FAILS, 1, None)], whole=["rate-mixed", "marks-differ", "rate-compensated"])

SHORT_AFTER_FULL = Writer(
    "remainder left out, the rate of the first full stamp",
    # The header says 48000, the one full stamp 44100: 30 frames of 1470 samples.
    adl([source(1, "voice.wav", "00|00:00:00|0000", "00|00:00:16|0480")],
        [cut(1, 1, 1, "00|00:00:01", "01|00:00:00", "01|00:00:05")], frame_rate="30"),
    {"voice.wav": audio.wave(VOICE, rate=44100)}, [Cut(1, 1, 158760000, 158767350, 1470)], _SOUNDS,
    whole=["rate-mixed", "marks-differ", "rate-compensated"], rate=44100)

HEADER_DISAGREES = Writer(
    "header of 44100 and 25, stamps of 48000 and 29.97",
    adl([source(1, "voice.wav", "00:00:00:00/0000", "00:00:00:14/1577")],
        [cut(1, 1, 1, "00:00:00:01/0000", "01:00:00:00/0000", "01:00:00:05/0000")], rate="44100"),
    {"voice.wav": audio.wave(VOICE)}, [Cut(1, 1, 172972800, 172980808, 1602)], _SOUNDS, whole=["marks-differ"])

HIGH_RATE = Writer(
    "project at 96 kHz",
    # 25 frames at 96000 Hz: a frame has 3840 samples, an hour 345600000.
    adl([source(1, "voice.wav", "00.00:00:00*0000", "00.00:00:06*0960")],
        [cut(1, 1, 1, "00.00:00:01*0000", "01.00:00:00*0000", "01.00:00:05*0000")], rate="96000"),
    {"voice.wav": audio.wave(VOICE, rate=96000)}, [Cut(1, 1, 345600000, 345619200, 3840)], _SOUNDS,
    whole=["rate-compensated"], rate=96000, left=["rate-compensated"])

MIXED = Writer(
    "sources of another rate than the timeline",
    # The source's stamps at 44100 Hz: frame 1 is 1764 samples, 1920 at the project's rate.
    adl([source(1, "voice.wav", "00.00:00:00|0000", "00.00:00:12|0882")],
        [cut(1, 1, 1, "00.00:00:01|0000", "01.00:00:00/0000", "01.00:00:05/0000")]),
    {"voice.wav": audio.wave(VOICE)}, [Cut(1, 1, HOUR, HOUR + 9600, 1920)], _SOUNDS, whole=["rate-mixed", "marks-differ"])

# What is not given

UNDERSCORES = Writer(
    "underscores wherever they may stand, source in from the first sample",
    adl(['(Index) 1 (F) "' + PLACE + 'voice.wav" _ _ _ _ _'],
        [cut(1, 1, 1, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000", channels="_"),
         "(Infade) 00.00:00;02/0000 LIN _ _ _"]),
    {"voice.wav": audio.wave(VOICE, head=audio.bext(HOUR))},
    [Cut(1, 1, HOUR, HOUR + 9600, 1920, fade_in=Fade(3840))], _SOUNDS, [("file-start-missing", MISPLACED, None, 1)])

FROM_REFERENCE = Writer(
    "file start not given, source in from the time reference",
    adl(['(Index) 1 (F) "' + PLACE + 'voice.wav" _ _ _ _ _'],
        [cut(1, 1, 1, "01.00:00:01/0000", "02.00:00:00/0000", "02.00:00:05/0000"),
         cut(2, 1, 1, "01.00:00:02/0000", "02.00:00:05/0000", "02.00:00:06/0000")]),
    {"voice.wav": audio.wave(VOICE, head=audio.bext(HOUR))},
    [Cut(1, 1, 2 * HOUR, 2 * HOUR + 9600, 1920), Cut(2, 1, 2 * HOUR + 9600, 2 * HOUR + 11520, 3840)], _SOUNDS,
    [("file-start-missing", MISPLACED, None, 1)])

# Names and places

_FORMS = [("URL:file://localhost/D:\\proj\\audio\\drive.wav", "drive.wav", "location-form"),
          ("url:file:///C:/gone/away/with%20blank.wav", "with blank.wav", "location-form"),
          ("URL:file://localhost/Volumes/Gone/100% live.wav", "100% live.wav", None),
          ("URL:file://localhost/Volumes/Gone/a%20b.wav", "a%20b.wav", None),
          ("URL:file://localhost/Volumes/{1F0E-22}   take  2.wav", "{1F0E-22}   take  2.wav", None),
          ("file:///tmp-that-is-gone/plain.wav", "plain.wav", None),
          ("bare.wav", "bare.wav", "bare"),
          ("URL:file://localhost/Volumes/Gone/Audio/deep.wav", "Audio/deep.wav", None)]
LOCATIONS = Writer(
    "locations of every form",
    adl([f'(Index) {at} (F) "{place}" _ 00.00:00:00/0000 00.00:00:12/0960 "_" N'
         for at, (place, _, _) in enumerate(_FORMS, 1)],
        [cut(at, at, at, "00.00:00:00/0000", "01.00:00:00/0000", "01.00:00:01/0000") for at in range(1, len(_FORMS) + 1)]),
    {name: audio.wave(audio.noise(FRAMES, seed=name)) for _, name, _ in _FORMS},
    [Cut(at, at, HOUR, HOUR + 1920, 0, tracks=(at,)) for at in range(1, len(_FORMS) + 1)],
    {at: audio.noise(FRAMES, seed=name) for at, (_, name, _) in enumerate(_FORMS, 1)},
    # A bare name is never searched by the system. It may be told as a form or as a place.
    [("location-form", LOST, None, 1), ("location-form", LOST, None, 2), (("location-form", "media-elsewhere"), LOST, None, 7)])

SEVERAL_FOLDERS = Writer(
    "media in several folders, one file under two names",
    adl([source(1, "voice.wav"), source(2, "room.wav"), source(3, "again.wav")],
        [*_TWO_EVENTS, cut(3, 3, 3, "00.00:00:00/0000", "01.00:00:00/0000", "01.00:00:01/0000")]),
    {"media/day 1/voice.wav": audio.wave(VOICE), "media/day 1/sub/room.wav": audio.wave(ROOM),
     "media/day 2/again.wav": audio.wave(VOICE)},
    [*_two_cuts(), Cut(3, 1 + 2, HOUR, HOUR + 1920, 0, tracks=(3,))], {1: VOICE, 2: ROOM, 3: VOICE},
    [("media-elsewhere", LOST, None, at) for at in (1, 2, 3)], media=["media/day 1", "media/day 2"])

SAME_NAMES = Writer(
    "takes of one name, told apart by their reference and their length",
    adl([source(1, "T01.wav", reference="REF-A"), source(2, "T01.wav", "00.00:00:00/0000", "00.00:00:11/0000", "REF-B"),
         source(3, "T02.wav", length="00.00:00:10/0000")],
        [cut(at, at, at, "00.00:00:00/0000", "01.00:00:00/0000", "01.00:00:01/0000") for at in (1, 2, 3)]),
    {"media/a/T01.wav": audio.wave(VOICE, head=audio.bext(0, "REF-A")),
     "media/b/T01.wav": audio.wave(audio.noise(21120, seed="b"), head=audio.bext(0, "REF-B")),
     "media/a/T02.wav": audio.wave(VOICE), "media/b/T02.wav": audio.wave(audio.noise(19200, seed="other"))},
    [Cut(at, at, HOUR, HOUR + 1920, 0, tracks=(at,)) for at in (1, 2, 3)],
    {1: VOICE, 2: audio.noise(21120, seed="b"), 3: audio.noise(19200, seed="other")},
    [("media-elsewhere", LOST, None, at) for at in (1, 2, 3)], media=["media"])

FILE_NAME_INDEX = Writer(
    "a file name in place of the index, two channels",
    adl([source(1, "wide take.wav")],
        ['(Entry) 1 (Cut) I "wide take.wav" 1~2 1~2 00.00:00:01/0000 01.00:00:00/0000 01.00:00:05/0000 R']),
    {"wide take.wav": audio.wave(WIDE)}, [Cut(1, 1, HOUR, HOUR + 9600, 1920, tracks=(1, 2), channels=(1, 2))], {1: WIDE},
    [("index-name", LOST, 1, None), ("channels", LOST, 1, None)])

# Channels, levels, status

STEREO = Writer(
    "stereo cuts, tracks in pairs",
    adl([source(1, "wide.wav"), source(2, "voice.wav")],
        [cut(1, 1, "1~2", "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000", channels="1~2"),
         "(Gain) 1 -6.02", "(Gain) 2 -3.00", "(Infade) 00.00:00;02/0000 LIN _ _ _",
         cut(2, 1, "3-4", "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:10/0000", channels="1-2"), "(Gain) _ +5.00",
         cut(3, 1, "5", "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:06/0000", channels="2"),
         cut(4, 2, "7~8", "00.00:00:00/0000", "01.00:00:05/0000", "01.00:00:06/0000", channels="1")]),
    {"wide.wav": audio.wave(WIDE), "voice.wav": audio.wave(VOICE)},
    [Cut(1, 1, HOUR, HOUR + 9600, 1920, tracks=(1, 2), channels=(1, 2), fade_in=Fade(3840),
         gains=[((1,), -6.02), ((2,), -3.0)]),
     Cut(2, 1, HOUR + 9600, HOUR + 19200, 3840, tracks=(3, 4), channels=(1, 2), gains=[(None, 5.0)]),
     Cut(3, 1, HOUR + 9600, HOUR + 11520, 3840, tracks=(5,), channels=(2,)),
     Cut(4, 2, HOUR + 9600, HOUR + 11520, 0, tracks=(7, 8), channels=(1,))],
    {1: WIDE, 2: VOICE},
    [("channels", LOST, at, None) for at in (1, 2, 3, 4)] + [("gain-channels", LOST, 1, None)])

STATUSES = Writer(
    "every status",
    adl([source(1, "voice.wav")],
        [cut(at, 1, 1, "00.00:00:00/0000", f"01.00:00:{at:02d}/0000", f"01.00:00:{at + 1:02d}/0000", status)
         for at, status in enumerate(("R", "D", "M", "E", "X", "_"), 1)]),
    {"voice.wav": audio.wave(VOICE)},
    [Cut(at, 1, HOUR + 1920 * at, HOUR + 1920 * (at + 1), 0, enabled=at not in (2, 3, 4)) for at in range(1, 7)], _SOUNDS,
    [("event-off", MISPLACED, 2, None), ("event-off", MISPLACED, 3, None), ("event-error", LOST, 4, None)])

FADES = Writer(
    "fades of every shape, names of events",
    adl([source(1, "voice.wav"), source(2, "room.wav")],
        [cut(1, 1, 1, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000") + ' (Rem) NAME "Ada, off"',
         "(Infade) 00.00:00;02/0000 LIN _ _ _", "(Outfade) 00.00:00;01/0000 CURVE -12.50 -6.00 -2.50",
         cut(2, 1, 1, "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:10/0000"), '(Rem) NAME "Ada, on"',
         "(Infade) 00.00:00;02/0000 CURVE -12.0 _ -2.5 I 2 00.00:00:03/0000",
         cut(3, 1, 1, "00.00:00:02/0000", "01.00:00:10/0000", "01.00:00:11/0000"), "(Outfade) 00.00:00;03/0000 LIN _ _ _"]),
    _BOTH,
    [Cut(1, 1, HOUR, HOUR + 9600, 1920, name="Ada, off", fade_in=Fade(3840), fade_out=Fade(1920, "CURVE", (-12.5, -6.0, -2.5))),
     Cut(2, 1, HOUR + 9600, HOUR + 19200, 3840, name="Ada, on", fade_in=Fade(3840, "CURVE", (-12.0, None, -2.5), (2, 5760))),
     Cut(3, 1, HOUR + 19200, HOUR + 21120, 3840, fade_out=Fade(5760))],
    _SOUNDS, [("fade-overlong", LOST, 3, None)], notes=["fade-curve", "fade-rendered", "names-unused"])

OUTSIDE = Writer(
    "cuts that reach outside their file",
    # The file has 12 frames and 960 samples, 24000 in all.
    adl([source(1, "voice.wav", "00.00:00:10/0000")],
        [cut(1, 1, 1, "00.00:00:09/0000", "01.00:00:00/0000", "01.00:00:05/0000"),
         cut(2, 1, 1, "00.00:00:20/0000", "01.00:00:05/0000", "01.00:00:10/0000"),
         cut(3, 1, 1, "00.00:02:00/0000", "01.00:00:10/0000", "01.00:00:11/0000"),
         cut(4, 1, 1, "00.00:00:11/0000", "01.00:00:11/0000", "01.00:00:12/0000")]),
    {"voice.wav": audio.wave(VOICE)},
    [Cut(1, 1, HOUR, HOUR + 9600, -1920), Cut(2, 1, HOUR + 9600, HOUR + 19200, 19200),
     Cut(3, 1, HOUR + 19200, HOUR + 21120, 76800), Cut(4, 1, HOUR + 21120, HOUR + 23040, 1920)],
    _SOUNDS, [("cut-outside-file", LOST, at, None) for at in (1, 2, 3)], left=["cut-outside-file"])

# Text

_LISTS = """<TRACKLIST>
(Track) 1 "Voices"
(Track) 2 "Rooms"
</TRACKLIST>
<SYSTEM>
(SYS_SRC_OFFSET) 01.00:00:00/0000
</SYSTEM>
<VENDOR_DATA>
17 23 no label here
(Colour) 3
</VENDOR_DATA>"""
_AUTOMATION = """<FADER_LIST>
(FP) 1 01.00:00:00/0000 -6.0
</FADER_LIST>
<PAN_LIST>
(PP) 1 01.00:00:00/0000 0.5
</PAN_LIST>
<MUTE_LIST>
(MP) 1 01.00:00:00/0000 1
</MUTE_LIST>
<MARK_LIST>
(Mark) 1 01.00:00:00/0000 "Start"
</MARK_LIST>"""
LISTS = Writer(
    "lists of tracks, automation and markers, and a vendor's list without labels",
    adl(_TWO, _TWO_EVENTS, sections=_LISTS, after=_AUTOMATION), _BOTH, _two_cuts(), _SOUNDS,
    notes=["tracks-unused", "automation-unused", "markers-unused", "offset-unused"], whole=["stray-text"])

NEXT_LINE = Writer(
    "values on the next line, tabs between them",
    adl(['(Index)\n 1\n(F)\n\t"' + PLACE + 'voice.wav"\n\t_ 00.00:00:00/0000\n 00.00:00:12/0960\t"_"\tN', source(2, "room.wav")],
        ["(Entry)\n1\n(Cut)\nI\t1 1\t1\n00.00:00:01/0000\n01.00:00:00/0000 01.00:00:05/0000\n_", _TWO_EVENTS[1]]),
    _BOTH, _two_cuts(), _SOUNDS)

CUT_OFF = Writer(
    "text cut off inside its third cut",
    adl(_TWO, [*_TWO_EVENTS, "(Entry) 3\n(Cut) I 1 1 3 00.00:00:02/0000 01.0#"]).split(b"#")[0],
    _BOTH, _two_cuts(), _SOUNDS, [("text-cut-off", FAILS, 3, None)], left=["text-cut-off"])

LINE_ENDS = [Writer(f"lines that end in {name}", adl(_TWO, _TWO_EVENTS, end=end), _BOTH, _two_cuts(), _SOUNDS)
             for name, end in (("CR LF", "\r\n"), ("LF", "\n"), ("CR", "\r"))]

_COMMENTED = _TWO_TEXT.decode()
for _old, _new in (("<SEQUENCE>\n", "/* a */\n<SEQUENCE>\n/* b (no label) */\n"),
                   ("<SOURCE_INDEX>\n", "<SOURCE_INDEX>\n/* < two\nlines > */\n"),
                   ("I 1 1 1 00", "I 1 /* voice */ 1 1 00"), ("(Entry) 2\n", "(Entry) 2 /* <rain> */\n"),
                   ("01.00:00:10/0000 _", "01.00:00:10/0000 _ /* last */")):
    _COMMENTED = _COMMENTED.replace(_old, _new)
COMMENTS = Writer("comments anywhere", _COMMENTED.encode(), _BOTH, _two_cuts(), _SOUNDS, whole=["stray-text"])

UNQUOTED = Writer(
    "values with blanks but no quotation marks",
    _TWO_TEXT.replace(b'"Reel one"', b"Reel one of many").replace(b"</SEQUENCE>", b"(SEQ_TITLE) A long night\n</SEQUENCE>"),
    _BOTH, _two_cuts(), _SOUNDS)

REFERENCES = Writer(
    "reference lists",
    adl(_TWO, _TWO_EVENTS, sections="<REF_LIST>\n<REF>\n<VERSION>\n(ADL_ID) 1\n</VERSION>\n<EVENT_LIST>\n(Entry) 9\n"
        "(Cut) I 1 1 1 a b c _\n</EVENT_LIST>\n</REF>\n</REF_LIST>"), _BOTH, _two_cuts(), _SOUNDS)


def _encoded(name, encoding, python_name, word, severity, mark=b"", further=()):
    text = adl([source(1, f"{word}.wav")], [cut(1, 1, 1, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000")])
    return Writer(name, mark + shift_jis.encode_as(text.decode(), python_name), {f"{word}.wav": audio.wave(VOICE)},
                  [Cut(1, 1, HOUR, HOUR + 9600, 1920)], {1: VOICE}, encoding=encoding,
                  whole=([("text-encoding")] if severity else []) + list(further))


ENCODINGS = [
    _encoded("names in UTF-8", "UTF-8", "utf-8", "Überfahrt", LOST),
    _encoded("names in UTF-8 after a byte order mark", "UTF-8", "utf-8", "嵐の海", LOST, b"\xef\xbb\xbf", ["stray-text"]),
    _encoded("names in GBK", "GBK", "gbk", "录音电话", LOST),
    _encoded("names in Windows-1252", "Windows-1252", "cp1252", "Möwe über Räumen", LOST),
    _encoded("names in Shift-JIS", "Shift-JIS", shift_jis.NAME, "効果音ソ", None),
    Writer("a byte order mark before ASCII", b"\xef\xbb\xbf" + _TWO_TEXT, _BOTH, _two_cuts(), _SOUNDS, encoding="UTF-8",
           whole=["stray-text"])]

# Media

_KINDS = [("pcm16.wav", audio.wave(SHALLOW, bits=16), SHALLOW, None),
          ("pcm24.wav", audio.wave(VOICE), VOICE, None),
          ("extensible.wav", audio.wave(VOICE, extensible=True, head=audio.bext(7)), VOICE, "media-kind"),
          ("float.wav", audio.floats(VOICE), VOICE, "media-kind"),
          ("rf64.wav", audio.rf64(VOICE), VOICE, "media-kind"),
          ("bw64.wav", audio.rf64(VOICE, mark=b"BW64"), VOICE, "media-kind"),
          ("odd.wav", audio.wave(VOICE, head=audio.chunk(b"iXML", b"<odd/>\n")), VOICE, "media-chunks"),
          ("claims.wav", audio.wave(VOICE, claimed=3 * FRAMES + 30000), VOICE, "media-chunks"),
          ("beside.aif", audio.aiff(VOICE), VOICE, "media-kind"),
          ("eight.wav", audio.wave(audio.noise(FRAMES, bits=8, seed="eight"), bits=8), audio.noise(FRAMES, bits=8, seed="eight"),
           "media-kind")]


def kinds(further=()):
    """One source for each kind of file; `further` are those that other programs made, in the same form."""
    rows = [*_KINDS, *further]
    numbers = range(1, len(rows) + 1)
    return Writer(
        "files of every kind",
        adl([source(at, row[0]) for at, row in zip(numbers, rows)],
            [cut(at, at, at, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000") for at in numbers]),
        {name: content for name, content, _, _ in rows},
        [Cut(at, at, HOUR, HOUR + 9600, 1920, tracks=(at,)) for at in numbers],
        {at: row[2] for at, row in zip(numbers, rows)},
        [(row[3], LOST, None, at) for at, row in zip(numbers, rows) if row[3]])


OTHER_RATE = Writer(
    "a file of another rate than the project's", adl(_TWO, _TWO_EVENTS),
    {"voice.wav": audio.wave(VOICE), "room.wav": audio.wave(ROOM, rate=44100)}, _two_cuts(), {1: VOICE, 2: None},
    [("media-rate", MISPLACED, None, 2)], left=["media-rate"])

NOWHERE = Writer(
    "a file that is nowhere, and one source too few",
    adl(_TWO, [*_TWO_EVENTS, cut(3, 9, 3, "00.00:00:00/0000", "01.00:00:00/0000", "01.00:00:01/0000")]),
    {"voice.wav": audio.wave(VOICE)},
    [*_two_cuts(), ], {1: VOICE, 2: None}, [("media-missing", LOST, None, 2), ("source-missing", LOST, 3, None)],
    left=["media-missing", "source-missing"])

ALL = [FULL_STOPS, COLONS, DROP_MARKS, BARS, BARS_HEADER, SHORT_STAMPS, SHORT_AFTER_FULL, HEADER_DISAGREES, HIGH_RATE, MIXED,
       UNDERSCORES, FROM_REFERENCE, LOCATIONS, SEVERAL_FOLDERS, SAME_NAMES, FILE_NAME_INDEX, STEREO, STATUSES, FADES, OUTSIDE,
       LISTS, NEXT_LINE, CUT_OFF, *LINE_ENDS, COMMENTS, UNQUOTED, REFERENCES, *ENCODINGS, OTHER_RATE, NOWHERE]
