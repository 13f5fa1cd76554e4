"""What each option of a spot does, seen in its JSON Lines."""

import json
import pathlib
import unittest

from material import HOUR, SAMPLES_PER_FRAME, Adl, decoded, fade, one_cut, stamp, wave
from program import ALL_DONE, ProgramTest, run

HOUR_SAMPLES = HOUR * SAMPLES_PER_FRAME


class SpotTest(ProgramTest):
    def spot(self, project, *arguments, status=ALL_DONE):
        result = run("spot", project, "--json", *arguments)
        self.assert_status(result, status)
        return result

    def options(self, project, *arguments):
        return self.spot(project, *arguments).of("start")[0]["options"]

    def regions(self, project, *arguments, status=ALL_DONE):
        return [decoded(line["message"]) for line in self.spot(project, *arguments, status=status).of("region")]


class Defaults(SpotTest):
    def test_defaultsOfEveryOption(self):
        self.assertEqual(self.options(one_cut(self.folder)), {
            "sessionRate": 48000, "positionMode": 0, "frameRate": 5, "doFades": 0, "doGain": 0,
            "offsetSamples": 0, "startSamples": 0, "bitDepth": 24, "depthSuffix": "_24bit",
            "copyFolder": "", "copySource": 0, "timelineOffset": 0, "relativeTrack": False})

    def test_withoutOptionsNothingIsMadeOfSourcesOfTheSameDepth(self):
        project = one_cut(self.folder)
        before = self.files()
        self.assertEqual(self.spot(project).of("file"), [])
        self.assertEqual(self.files(), before)

    def test_sessionFollowsTheEarliestCutByCodeTableReadBackwards(self):
        """Mark and separator of the timestamp, the session's code; 0 where no code has the two."""
        rows = [("?", ":", 0), ("=", ":", 1), (".", ":", 2), (":", ":", 3), (":", ";", 4), ("|", ":", 5),
                ("|", ";", 6), ("-", ":", 7), ("#", ":", 0), ("!", ":", 0), ("/", ":", 0), ("x", ":", 0),
                ("?", ";", 0), ("=", ";", 0), (":", ",", 0), ("|", ",", 0), ("|", ".", 0)]
        for mark, separator, code in rows:
            with self.subTest(mark=mark, separator=separator):
                project = one_cut(self.folder, dest_in=stamp(HOUR, mark=mark, separator=separator),
                                  length=stamp(HOUR + 20, mark=mark, separator=separator))
                self.assertEqual(self.options(project)["frameRate"], code)

    def test_sessionRateFollowsTheEarliestCutCutToAnInteger(self):
        rows = [("/", 48000), ("|", 44100), ("*", 96000), ("@", 88200), ("~", 44055), ("-", 47952), ("+", 48048),
                ("(", 30720), (")", 33333), ("]", 45937), ("}", 100000), ("x", 48000), ("0", 48000)]
        for mark, rate in rows:
            with self.subTest(mark):
                project = one_cut(self.folder, dest_in=stamp(HOUR, rate=mark), length=stamp(HOUR + 20, rate=mark))
                self.assertEqual(self.options(project)["sessionRate"], rate)

    def test_sessionFollowsTheEarliestAndNotTheFirstCut(self):
        (self.folder / "take.wav").write_bytes(wave(4800))
        project = (Adl().source(1, "a/take.wav")
                   .cut(1, dest_in=stamp(HOUR, mark="|"), length=stamp(HOUR + 2, mark="|"))
                   .cut(2, dest_in=stamp(10, mark=".", rate="|"), length=stamp(12, mark=".", rate="|"))
                   .write(self.folder / "p.adl"))
        options = self.options(project)
        self.assertEqual((options["sessionRate"], options["frameRate"]), (44100, 2))

    def test_shortTimestampFitsNothing(self):
        project = one_cut(self.folder, dest_in="01|00", length="02|00")
        options = self.options(project)
        self.assertEqual((options["sessionRate"], options["frameRate"]), (48000, 0))


class Position(SpotTest):
    def test_positionsByNameAreTheTags(self):
        project = one_cut(self.folder)
        rows = [("project", 0, False, HOUR_SAMPLES), ("offset", 1, False, HOUR_SAMPLES),
                ("start", 2, False, 0), ("first", 3, True, 0)]
        for name, tag, relative, position in rows:
            with self.subTest(name):
                result = self.spot(project, "--position", name)
                options = result.of("start")[0]["options"]
                self.assertEqual((options["positionMode"], options["relativeTrack"]), (tag, relative))
                self.assertEqual(options["timelineOffset"], position - HOUR_SAMPLES)
                self.assertEqual(decoded(result.of("region")[0]["message"])["SMSt"], position)

    def test_offsetIsLimitedAsItsEntryFieldLimitsIt(self):
        """The signed field ends at 12 hours; each number of it saturates, none carries."""
        second = 48000
        rows = [("00:00:01:00", second), ("+00:00:01:00", second), ("-00:00:01:00", -second),
                ("-01:00:00:00", -3600 * second), ("+25:00:00:00", 12 * 3600 * second),
                ("-12:30:15:10", -12 * 3600 * second), ("12:00:00:01", 12 * 3600 * second),
                ("+11:61:00:00", (11 * 3600 + 59 * 60) * second), ("00:00:90:00", 59 * second),
                ("00:00:00:30", 29 * SAMPLES_PER_FRAME), ("1:2:3:4", (3723 * 30 + 4) * SAMPLES_PER_FRAME),
                ("-00:00:00:00", 0)]
        project = one_cut(self.folder)
        for text, samples in rows:
            with self.subTest(text):
                self.assertEqual(self.options(project, "--offset", text)["offsetSamples"], samples)
                self.assertEqual(self.options(project, f"--offset={text}")["offsetSamples"], samples)

    def test_startIsLimitedAsItsEntryFieldLimitsIt(self):
        second = 48000
        rows = [("12:30:00:00", (12 * 3600 + 30 * 60) * second), ("00:00:00:01", SAMPLES_PER_FRAME),
                ("25:61:61:40", ((23 * 3600 + 59 * 60 + 59) * 30 + 29) * SAMPLES_PER_FRAME)]
        project = one_cut(self.folder)
        for text, samples in rows:
            with self.subTest(text):
                self.assertEqual(self.options(project, "--start", text)["startSamples"], samples)

    def test_framesOf25To29PassTheFieldAndAreReducedByTheSession(self):
        project = one_cut(self.folder, dest_in=stamp(0, mark="."), length=stamp(20, mark="."))
        self.assertEqual(self.options(project, "--start", "00:00:00:27")["startSamples"], 2 * 1920)

    def test_offsetCountsOnlyWithItsPosition(self):
        project = one_cut(self.folder)
        for position, moved in [("project", 0), ("offset", 48000), ("start", -HOUR_SAMPLES), ("first", -HOUR_SAMPLES)]:
            with self.subTest(position):
                options = self.options(project, "--position", position, "--offset", "00:00:01:00")
                self.assertEqual(options["timelineOffset"], moved)

    def test_optionsThatChangeNothingAreNamed(self):
        """By a note; they change nothing else, the status least of all."""
        project = one_cut(self.folder)
        rows = [
            (["--start", "10:00:00:00"], "--start counts only with --position start"),
            (["--start", "10:00:00:00", "--position", "offset"], "--start counts only with --position start"),
            (["--start", "10:00:00:00", "--position", "start"], ""),
            (["--offset", "00:00:01:00"], "--offset counts only with --position offset"),
            (["--offset", "00:00:01:00", "--position", "offset"], ""),
            (["--embed-media", "--otio", "new.otio"], "--embed-media counts only with --dawproject"),
            (["--embed-media", "--dawproject", "new.dawproject"], ""),
            (["--bounce-depth", "24", "--report", "new.html"],
             "--bounce-depth counts only with --bounce or --bounce-tracks"),
            (["--bounce-depth", "16", "--bounce", "new.wav"], ""),
            (["--bounce-depth", "16", "--bounce-tracks", "new"], ""),
        ]
        for number, (arguments, note) in enumerate(rows):
            with self.subTest(arguments):
                folder = self.folder / str(number)
                folder.mkdir()
                result = run("spot", project, "--quiet", *arguments, cwd=folder)
                self.assert_status(result, ALL_DONE)
                told = [line for line in result.err.split("\n") if "counts only" in line]
                self.assertEqual(told, [f"velmora: note: {note}"] if note else [])

    def test_negativeOffsetMovesBelowZero(self):
        project = one_cut(self.folder, dest_in=0)
        region, = self.regions(project, "--position", "offset", "--offset", "-00:00:01:00")
        self.assertEqual(region["SMSt"], -48000)

    def test_startEqualToTheProjectsMovesNothing(self):
        project = one_cut(self.folder)
        options = self.options(project, "--position", "start", "--start", "01:00:00:00")
        self.assertEqual(options["timelineOffset"], 0)

    def test_firstCountsTracksFromTheFirstTrackOn(self):
        (self.folder / "take.wav").write_bytes(wave(4800))
        project = (Adl().source(1, "a/take.wav").cut(1, track=3, length=2).cut(2, track=6, length=2)
                   .write(self.folder / "p.adl"))
        self.assertEqual([(r["Trak"], r["TkOf"]) for r in self.regions(project, "--position", "first")],
                         [(-99, 0), (-99, 3)])
        self.assertEqual([(r["Trak"], r["TkOf"]) for r in self.regions(project)], [(1, 0), (4, 0)])


class Session(SpotTest):
    def test_frameRateByCodeAndByName(self):
        rows = [("0", 0), ("1", 1), ("2", 2), ("3", 3), ("4", 4), ("5", 5), ("6", 6), ("7", 7), ("24", 1),
                ("25", 2), ("29.97", 3), ("29.97df", 4), ("30", 5), ("30df", 6), ("23.976", 7)]
        project = one_cut(self.folder)
        for text, code in rows:
            with self.subTest(text):
                self.assertEqual(self.options(project, "--session-frame-rate", text)["frameRate"], code)

    def test_sessionRateIsCutToAnInteger(self):
        project = one_cut(self.folder)
        for text, rate in [("44100", 44100), ("96000", 96000), ("47952.9", 47952), ("4.8e4", 48000)]:
            with self.subTest(text):
                self.assertEqual(self.options(project, "--session-rate", text)["sessionRate"], rate)

    def test_sessionRatesAtTheLimitsAreTaken(self):
        """Others are refused: see test_command_line.py."""
        project = one_cut(self.folder)
        for text, rate in (("1", 1), ("1e7", 10000000)):
            with self.subTest(text):
                self.assertEqual(self.options(project, "--session-rate", text)["sessionRate"], rate)

    def test_compensationReadsTheFirstStampInTheSessionsTimebase(self):
        """One hour of 30 frames, read at 29.97, is 3.6 s longer; a remainder is dropped on that side."""
        project = one_cut(self.folder, dest_in=stamp(HOUR, 123), length=stamp(HOUR + 20, 123))
        for code, moved in [("29.97", 172972800 - HOUR_SAMPLES - 123), ("30", -123),
                            ("29.97df", 172799828 - HOUR_SAMPLES - 123)]:
            with self.subTest(code):
                self.assertEqual(self.options(project, "--session-frame-rate", code)["timelineOffset"], moved)


class Depth(SpotTest):
    def test_depth16MakesAFileBesideTheSource(self):
        project = one_cut(self.folder)
        result = self.spot(project, "--depth", "16")
        self.assertEqual(result.of("file"), [{"kind": "file", "pass": "depth", "event": 0,
                                              "path": str(self.folder / "take_16bit.wav"), "status": 0}])
        region = decoded(result.of("region")[0]["message"])
        self.assertEqual((region["path"], region["Name"]), (str(self.folder / "take_16bit.wav"), b"take_16bit"))

    def test_depth24LiftsA16BitSource(self):
        project = one_cut(self.folder, wave_bytes=wave(4800, bits=16), length=2)
        made, = self.spot(project).of("file")
        self.assertEqual(made["path"], str(self.folder / "take_24bit.wav"))

    def test_copyIsMadeWhateverTheDepth(self):
        project = one_cut(self.folder / "a")
        copies = self.folder / "copies"
        made, = self.spot(project, "--copy-to", copies).of("file")
        self.assertEqual(made["path"], str(copies / "take.wav"))
        self.assertTrue(copies.is_dir())

    def test_secondSpotNumbersItsFiles(self):
        project = one_cut(self.folder)
        paths = [self.spot(project, "--depth", "16").of("file")[0]["path"] for _ in range(3)]
        self.assertEqual([pathlib.Path(path).name for path in paths],
                         ["take_16bit.wav", "take_16bit.1.wav", "take_16bit.2.wav"])


class FadesAndGain(SpotTest):
    def setUp(self):
        super().setUp()
        (self.folder / "take.wav").write_bytes(wave(96000))
        self.project = (
            Adl().source(1, "a/take.wav")
            .cut(1, dest_in=HOUR, length=30, more=f"\n(Gain) 1 -6.0\n(Outfade) {fade(5)} LIN _ _ _")
            .cut(2, dest_in=HOUR + 25, length=30, more=f"\n(Infade) {fade(5)} LIN _ _ _")
            .write(self.folder / "p.adl"))

    def pieces(self, *arguments):
        return [line["piece"] for line in self.spot(self.project, *arguments).of("region")]

    def test_fadesAndGainAreOffUnlessAskedFor(self):
        result = self.spot(self.project)
        self.assertEqual([line["piece"] for line in result.of("region")], ["main", "main"])
        self.assertEqual(result.of("file"), [])
        self.assertEqual(result.of("start")[0]["steps"], 6)

    def test_fadesMakePieces(self):
        result = self.spot(self.project, "--fades")
        self.assertEqual([(line["event"], line["piece"]) for line in result.of("region")],
                         [(0, "main"), (1, "main"), (0, "outfade"), (1, "crossfade")])
        self.assertEqual([line["pass"] for line in result.of("file")], ["fade", "fade"])
        self.assertEqual(result.of("start")[0]["steps"], 8)

    def test_gainMakesAFile(self):
        result = self.spot(self.project, "--gain")
        self.assertEqual([(line["pass"], line["event"]) for line in result.of("file")], [("gain", 0)])
        self.assertEqual(result.of("start")[0]["steps"], 8)

    def test_bothAddTwoStepsAnEvent(self):
        result = self.spot(self.project, "--gain", "--fades")
        self.assertEqual(result.of("start")[0]["steps"], 10)
        self.assertEqual(result.of("end")[0]["counted"], 10)


class Boxes(SpotTest):
    """Lists of tracks go by track number, lists of events by index; what the project lacks is passed over."""

    TRACKS = [-3, 1, 2, 5, 5]

    def setUp(self):
        super().setUp()
        (self.folder / "take.wav").write_bytes(wave(1600))
        project = Adl().source(1, "a/take.wav")
        for index, track in enumerate(self.TRACKS):
            project.cut(10 * index + 7, track=track, length=1)
        self.project = project.write(self.folder / "p.adl")

    def events(self, *arguments):
        return [line["event"] for line in self.spot(self.project, *arguments).of("region")]

    def test_lists(self):
        rows = [
            ("noListTakesAll", [], [0, 1, 2, 3, 4]),
            ("skipOneTrack", ["--skip-tracks", "5"], [0, 1, 2]),
            ("skipARange", ["--skip-tracks", "1-2"], [0, 3, 4]),
            ("onlyListAndRange", ["--only-tracks", "1,3-5"], [1, 3, 4]),
            ("onlyWhatTheProjectLacks", ["--only-tracks", "7-9"], []),
            ("skipWhatTheProjectLacks", ["--skip-tracks", "3,4,99"], [0, 1, 2, 3, 4]),
            ("negativeTrack", ["--only-tracks=-3"], [0]),
            ("negativeTrackAsNextWord", ["--only-tracks", "-3"], [0]),
            ("negativeRange", ["--only-tracks=-5--1"], [0]),
            ("rangeThroughZero", ["--skip-tracks=-3-1"], [2, 3, 4]),
            ("rangeOfOne", ["--only-tracks", "2-2"], [2]),
            ("theWholeRangeOf32Bits", ["--only-tracks=-2147483648-2147483647"], [0, 1, 2, 3, 4]),
            ("numbersBeyond32Bits", ["--only-tracks", "1,99999999999999999999"], [1]),
            ("skipEvents", ["--skip-events", "0,4"], [1, 2, 3]),
            ("onlyEventsGoByIndex", ["--only-events", "1,3-9"], [1, 3, 4]),
            ("entryNumbersAreNoIndices", ["--only-events", "7,17"], []),
            ("repeated", ["--only-events", "1,1,1-2"], [1, 2]),
            ("tracksAndEvents", ["--only-tracks", "5", "--skip-events", "3"], [4]),
            ("onlyEventsOfATrackThatIsOff", ["--skip-tracks", "5", "--only-events", "2-4"], [2]),
            ("leadingZeros", ["--only-events", "0001"], [1]),
        ]
        for name, arguments, expected in rows:
            with self.subTest(name):
                self.assertEqual(self.events(*arguments), expected)

    def test_tracksCountFromTheLowestOfTheProjectWhateverIsTicked(self):
        self.assertEqual([r["Trak"] for r in self.regions(self.project, "--only-tracks", "5")], [9, 9])

    def test_whatIsNotTickedStillCounts(self):
        end, = self.spot(self.project, "--only-events", "0").of("end")
        self.assertEqual((end["steps"], end["counted"], end["regions"]), (15, 15, 1))

    def test_aMissingFileOfACutThatIsOffIsNotLeftOut(self):
        project = (Adl().source(1, "a/take.wav").source(2, "a/gone.wav").cut(1, length=1).cut(2, source=2, track=2)
                   .write(self.folder / "q.adl"))
        self.assertEqual(len(self.regions(project, "--skip-tracks", "2")), 1)
        self.assertEqual(len(self.regions(project, "--skip-events", "1")), 1)


class EmbeddedSession(SpotTest):
    def test_sessionIsWrittenForAnEmptyFileAndOverAnEarlierOne(self):
        project = one_cut(self.folder)
        target = self.folder / "s.json"
        target.write_bytes(b"")
        for _ in range(2):
            result = self.spot(project, "--host", f"embedded:{target}")
            self.assertTrue(target.stat().st_size > 0)
        self.assertEqual(len(result.of("region")), 1)

    def test_sessionTellsWhatTheMessagesTold(self):

        project = one_cut(self.folder)
        target = self.folder / "s.json"
        message = decoded(self.spot(project, "--host", f"embedded:{target}").of("region")[0]["message"])
        session = json.loads(target.read_text("utf-8"))
        self.assertEqual(session["summary"], {"tracks": 1, "regions": 1, "files": 1, "first": HOUR_SAMPLES,
                                              "end": HOUR_SAMPLES + 48000})
        region, = session["tracks"][0]["regions"]
        self.assertEqual((region["path"], region["position"], region["start"], region["stop"]),
                         (message["path"], message["SMSt"], message["Star"], message["Stop"]))

    def test_targetMayHaveColons(self):
        target = self.folder / "a:b:c.json"
        self.spot(one_cut(self.folder), "--host", f"embedded:{target}")
        self.assertTrue(target.is_file())

    def test_noHalfWrittenNeighbourStays(self):
        project = one_cut(self.folder)
        self.spot(project, "--host", f"embedded:{self.folder / 's.json'}")
        self.assertEqual(self.files(), ["p.adl", "s.json", "take.wav"])

    def test_hostNameAloneWritesNothing(self):
        project = one_cut(self.folder)
        self.spot(project, "--host", "embedded")
        self.assertEqual(self.files(), ["p.adl", "take.wav"])


if __name__ == "__main__":
    unittest.main()
