"""More whole projects: rarer habits, and several at once. Positions by hand, as in writers.py."""

import audio

from known import Cut, Fade
from layout import PLACE, adl, cut, source
from writers import FAILS, FRAMES, HOUR, LOST, MISPLACED, ROOM, VOICE, WIDE, Writer

FOUR = audio.noise(FRAMES, channels=4, seed="four")
LONG = audio.noise(3400000, bits=16, seed="long")
_BOTH = {"voice.wav": audio.wave(VOICE), "room.wav": audio.wave(ROOM)}
_ONE_CUT = cut(1, 1, 1, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000")
_ONE = [Cut(1, 1, HOUR, HOUR + 9600, 1920)]

LONG_FADES = Writer(
    "fades of more than a minute",
    # 25 frames: a minute is 2880000 samples. Read as drop-frame, as the system reads every fade, a minute is two frames less.
    adl([source(1, "long.wav", "00.00:00:00/0000", "00.01:10:20/1600")],
        [cut(1, 1, 1, "00.00:00:00/0000", "01.00:00:00/0000", "01.01:10:00/0000"), "(Infade) 00.01:00.00/0000 LIN _ _ _",
         "(Outfade) 00.01:00:02/0001 LIN _ _ _"]),
    {"long.wav": audio.wave(LONG, bits=16)},
    [Cut(1, 1, HOUR, HOUR + 3360000, 0, fade_in=Fade(2880000), fade_out=Fade(2883841))], {1: LONG},
    [("fade-separator", FAILS, 1, None)])

LONG_DROP_FADE = Writer(
    "fade of more than a minute, drop-frame as the system counts",
    # 00.01:00;02 is frame 1500 of 25 drop-frame: 2880000 samples.
    adl([source(1, "long.wav", "00.00:00:00/0000", "00.01:10:20/1600")],
        [cut(1, 1, 1, "00.00:00:00/0000", "01.00:00:00/0000", "01.01:10:00/0000"), "(Infade) 00.01:00;02/0000 LIN _ _ _"]),
    {"long.wav": audio.wave(LONG, bits=16)}, [Cut(1, 1, HOUR, HOUR + 3360000, 0, fade_in=Fade(2880000))], {1: LONG})

LOWER_CASE = Writer(
    "everything in small letters",
    adl([source(1, "voice.wav")], [_ONE_CUT, "(Infade) 00.00:00;02/0000 LIN _ _ _"]).lower(),
    {"voice.wav": audio.wave(VOICE)}, [Cut(1, 1, HOUR, HOUR + 9600, 1920, fade_in=Fade(3840, "lin"))], {1: VOICE})

POLYPHONIC = Writer(
    "four channels, and one of them alone",
    adl([source(1, "four.wav")],
        [cut(1, 1, "1~4", "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000", channels="1~4"),
         cut(2, 1, "6", "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:06/0000", channels="3"),
         cut(3, 1, "7~8", "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:06/0000", channels="3~4")]),
    {"four.wav": audio.wave(FOUR, head=audio.bext(5))},
    [Cut(1, 1, HOUR, HOUR + 9600, 1920, tracks=(1, 2, 3, 4), channels=(1, 2, 3, 4)),
     Cut(2, 1, HOUR + 9600, HOUR + 11520, 3840, tracks=(6,), channels=(3,)),
     Cut(3, 1, HOUR + 9600, HOUR + 11520, 3840, tracks=(7, 8), channels=(3, 4))], {1: FOUR},
    [("channels", LOST, at, None) for at in (1, 2, 3)])

NO_PARTNER = Writer(
    "channels without a partner, and not in the file",
    adl([source(1, "wide.wav"), source(2, "voice.wav")],
        [cut(1, 1, "1~4", "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000", channels="1~2"),
         cut(2, 2, "5~6", "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000", channels="1~2")]),
    {"wide.wav": audio.wave(WIDE), "voice.wav": audio.wave(VOICE)},
    [Cut(1, 1, HOUR, HOUR + 9600, 1920, tracks=(1, 2, 3, 4), channels=(1, 2)),
     Cut(2, 2, HOUR, HOUR + 9600, 1920, tracks=(5, 6), channels=(1, 2))], {1: WIDE, 2: VOICE},
    [("channels", LOST, 1, None), ("channels", LOST, 2, None)], left=["channels"])

STEREO_FLOATS = Writer(
    "stereo float file without a start, escaped, in another folder, on tracks in pairs, one muted",
    adl(['(Index) 1 (F) "url:file:///D:/Rec/My%20Wide.wav" _ _ _ _ _'],
        [cut(1, 1, "1~2", "00:00:00:01/0000", "01:00:00:00/0000", "01:00:00:05/0000", "R", channels="1~2"),
         "(Infade) 00:00:00:02/0000 LIN _ _ _", "(Gain) 1 -6.00", "(Gain) 2 -3.00", '(Rem) NAME "Crowd"',
         cut(2, 1, "3~4", "00:00:00:02/0000", "01:00:00:05/0000", "01:00:00:06/0000", "M", channels="1~2")], frame_rate="29.97"),
    {"Rec/My Wide.wav": audio.floats(WIDE)},
    [Cut(1, 1, 172972800, 172980808, 1602, tracks=(1, 2), channels=(1, 2), fade_in=Fade(3204), name="Crowd",
         gains=[((1,), -6.0), ((2,), -3.0)]),
     Cut(2, 1, 172980808, 172982410, 3204, tracks=(3, 4), channels=(1, 2), enabled=False)], {1: WIDE},
    [("fade-separator", FAILS, 1, None), ("file-start-missing", MISPLACED, None, 1), ("location-form", LOST, None, 1),
     ("media-kind", LOST, None, 1), ("channels", LOST, None, None), ("gain-channels", LOST, 1, None),
     ("event-off", MISPLACED, 2, None)])

ONE_FILE_TWO_SOURCES = Writer(
    "one file under two numbers, one without a start",
    adl([source(1, "voice.wav", "01.00:00:00/0000"), '(Index) 2 (F) "' + PLACE + 'voice.wav" _ _ _ _ _'],
        [cut(1, 1, 1, "01.00:00:01/0000", "02.00:00:00/0000", "02.00:00:05/0000"),
         cut(2, 2, 2, "00.00:00:02/0000", "02.00:00:05/0000", "02.00:00:06/0000")]),
    {"voice.wav": audio.wave(VOICE, head=audio.bext(HOUR))},
    [Cut(1, 1, 2 * HOUR, 2 * HOUR + 9600, 1920), Cut(2, 2, 2 * HOUR + 9600, 2 * HOUR + 11520, 3840, tracks=(2,))],
    {1: VOICE, 2: VOICE}, [("file-start-missing", MISPLACED, None, 2)])

NAMES_THAT_MEET = Writer(
    "files of one name but for their extension",
    adl([source(1, "take.wav"), source(2, "take.aif"), source(3, "a/take.wav"), source(4, "take_L.wav")],
        [cut(at, at, at, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000") for at in (1, 2, 3, 4)]),
    {"take.wav": audio.floats(VOICE), "take.aif": audio.aiff(ROOM), "take_L.wav": audio.wave(ROOM)},
    [Cut(at, at, HOUR, HOUR + 9600, 1920, tracks=(at,)) for at in (1, 2, 3, 4)], {1: VOICE, 2: ROOM, 3: VOICE, 4: ROOM},
    [("media-kind", LOST, None, at) for at in (1, 2, 3)])

WIDE_CONTAINERS = Writer(
    "24 bits in four bytes, 20 in three, 12 in two",
    adl([source(at, f"w{at}.wav") for at in (1, 2, 3)],
        [cut(at, at, at, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000") for at in (1, 2, 3)]),
    {"w1.wav": audio.wave(VOICE, width=4), "w2.wav": audio.wave(audio.noise(FRAMES, bits=20, seed="w"), bits=20),
     "w3.wav": audio.wave(audio.noise(FRAMES, bits=12, seed="w"), bits=12)},
    [Cut(at, at, HOUR, HOUR + 9600, 1920, tracks=(at,)) for at in (1, 2, 3)],
    {1: VOICE, 2: audio.noise(FRAMES, bits=20, seed="w"), 3: audio.noise(FRAMES, bits=12, seed="w")},
    [("media-kind", LOST, None, at) for at in (1, 2, 3)])

ESCAPED_QUOTES = Writer(
    "quotation marks in a name",
    adl([source(1, 'take \x1b"A\x1b".wav')], [_ONE_CUT + ' (Rem) NAME "say \x1b"now\x1b""']),
    {'take "A".wav': audio.wave(VOICE)}, [Cut(1, 1, HOUR, HOUR + 9600, 1920, name='say "now"')], {1: VOICE},
    [("location-form", LOST, None, 1)])

_LONG_NAME = "n" * 245 + " take.wav"
LONG_NAMES = Writer(
    "names as long as a folder holds, of stereo floats",
    adl([source(1, _LONG_NAME)], [cut(1, 1, "1~2", "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000", channels="1~2")]),
    {_LONG_NAME: audio.floats(WIDE)}, [Cut(1, 1, HOUR, HOUR + 9600, 1920, tracks=(1, 2), channels=(1, 2))], {1: WIDE},
    [("media-kind", LOST, None, 1), ("channels", LOST, 1, None)])

UNWRITABLE_NAMES = Writer(
    "names that Shift-JIS has no characters for",
    adl([source(1, "한국어 🎤.wav"), source(2, "Ελλάδα ñ.wav")],
        [_ONE_CUT + ' (Rem) NAME "🎤"', cut(2, 2, 2, "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:10/0000")]),
    {"한국어 🎤.wav": audio.wave(VOICE), "Ελλάδα ñ.wav": audio.wave(ROOM)},
    [Cut(1, 1, HOUR, HOUR + 9600, 1920, name="🎤"), Cut(2, 2, HOUR + 9600, HOUR + 19200, 3840, tracks=(2,))],
    {1: VOICE, 2: ROOM}, [("text-encoding", LOST, None, 1), ("text-encoding", LOST, None, 2)], encoding="UTF-8")

HEADER_FORMS = [
    Writer(f"header of {rate} and {frames}", adl([source(1, "voice.wav")], [_ONE_CUT], rate=rate, frame_rate=frames),
           {"voice.wav": audio.wave(VOICE)}, _ONE, {1: VOICE})
    for rate, frames in (('"48000"', '"25"'), ("48000.0", "25.00"), ("S48000", "25fps"), ("_", "_"), ("48000", "25 ND"))]

SECTIONS_TWICE = Writer(
    "two lists of sources and two of events",
    adl([source(1, "voice.wav")], [_ONE_CUT],
        after="<SOURCE_INDEX>\n" + source(2, "room.wav") + "\n</SOURCE_INDEX>\n<EVENT_LIST>\n"
        + cut(2, 2, 2, "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:10/0000") + "\n</EVENT_LIST>"), _BOTH,
    [*_ONE, Cut(2, 2, HOUR + 9600, HOUR + 19200, 3840, tracks=(2,))], {1: VOICE, 2: ROOM})

COUNTED = Writer(
    "counted labels",
    adl([source(1, "voice.wav")], [_ONE_CUT], sections="<PROJECT>\n(PROJ_NOTES)12 (a) <b> /* \n</PROJECT>"),
    {"voice.wav": audio.wave(VOICE)}, _ONE, {1: VOICE})

OTHER_EVENTS = Writer(
    "silence, video and events without an edit between the cuts",
    adl([source(1, "voice.wav")],
        [_ONE_CUT, "(Entry) 2\n(Silence) 1 01.00:00:05/0000 01.00:00:06/0000 _",
         "(Entry) 3\n(Vid) a b c d", '(Entry) 4\n(Rem) NAME "nothing"', "(Entry) 5\n(Aux) 1 a b c",
         cut(6, 1, 1, "00.00:00:02/0000", "01.00:00:06/0000", "01.00:00:07/0000")]),
    {"voice.wav": audio.wave(VOICE)}, [*_ONE, Cut(6, 1, HOUR + 11520, HOUR + 13440, 3840)], {1: VOICE})

UNQUOTED_LOCATIONS = Writer(
    "locations without quotation marks",
    adl([f"(Index) 1 (F) {PLACE}voice.wav _ 00.00:00:00/0000 00.00:00:12/0960 _ N",
         f"(Index) 2 (F) {PLACE}room.wav _ 00.00:00:00/0000 00.00:00:12/0960 _ N"],
        [_ONE_CUT, cut(2, 2, 2, "00.00:00:02/0000", "01.00:00:05/0000", "01.00:00:10/0000")]), _BOTH,
    [*_ONE, Cut(2, 2, HOUR + 9600, HOUR + 19200, 3840, tracks=(2,))], {1: VOICE, 2: ROOM},
    # The system takes the first and the last letter for quotation marks.
    [("location-form", LOST, None, 1), ("location-form", LOST, None, 2)])

ALL = [LONG_FADES, LONG_DROP_FADE, LOWER_CASE, POLYPHONIC, NO_PARTNER, STEREO_FLOATS, ONE_FILE_TWO_SOURCES, NAMES_THAT_MEET,
       WIDE_CONTAINERS, ESCAPED_QUOTES, LONG_NAMES, UNWRITABLE_NAMES, *HEADER_FORMS, SECTIONS_TWICE, COUNTED, OTHER_EVENTS,
       UNQUOTED_LOCATIONS]
