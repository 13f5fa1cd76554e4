"""The JSON Lines that `spot --json` prints, one object a line and nothing else."""

import unittest

from material import HOUR, SAMPLES_PER_FRAME, Adl, decoded, fade, one_cut, stamp, wave, wave_of
from program import ALL_DONE, LEFT_OUT, ProgramTest, run, start

KEYS = {
    "warning": ["kind", "text"],
    "start": ["kind", "options", "steps"],
    "file": ["kind", "pass", "event", "path", "status"],
    "region": ["kind", "event", "piece", "attempt", "status", "message"],
    "log": ["kind", "text"],
    "end": ["kind", "aborted", "steps", "counted", "regions", "files"],
}
OPTION_KEYS = ["sessionRate", "positionMode", "frameRate", "doFades", "doGain", "offsetSamples", "startSamples",
               "bitDepth", "depthSuffix", "copyFolder", "copySource", "timelineOffset", "relativeTrack"]
MESSAGE_KEYS = ["class", "id", "target", "returnId", "transactionId", "sendMode", "timeout", "parameters", "region"]
PARAMETERS = [("FILE", "alis"), ("Trak", "shor"), ("FFrm", "shor"), ("TkOf", "shor"), ("SMSt", "long"), ("Strm", "shor")]
REGION = [("Star", "long"), ("Stop", "long"), ("Name", "TEXT")]

FIRST_ALERT = "This session is at %dHz, whereas the AES project is at %sHz. Misalignment is likely."
SECOND_ALERT = ("The framerate of this session does not match the AES31 project we are importing. "
                "The import will be offset to compensate.")


class SpotJsonTest(ProgramTest):
    def spot(self, project, *arguments, status=ALL_DONE):
        result = run("spot", project, "--json", *arguments)
        self.assert_status(result, status)
        self.check_form(result.lines)
        return result

    def check_form(self, lines):
        """What holds of every run."""
        for line in lines:
            self.assertEqual(list(line), KEYS[line["kind"]])
            if line["kind"] == "region" and line["message"] is not None:
                self.check_message(line["message"])
            if line["kind"] == "file":
                self.assertIn(line["pass"], ("depth", "gain", "fade"))
        kinds = [line["kind"] for line in lines]
        self.assertEqual((kinds.count("start"), kinds.count("end"), kinds[-1]), (1, 1, "end"))
        self.assertEqual(set(kinds[:kinds.index("start")]) - {"warning"}, set())
        self.assertNotIn("warning", kinds[kinds.index("start"):])
        start = next(line for line in lines if line["kind"] == "start")
        self.assertEqual(list(start["options"]), OPTION_KEYS)
        placed = sum(line["kind"] == "region" and line["status"] == 0 for line in lines)
        made = sum(line["kind"] == "file" and line["status"] == 0 for line in lines)
        self.assertEqual((lines[-1]["regions"], lines[-1]["files"]), (placed, made))
        self.assertEqual(lines[-1]["steps"], start["steps"])

    def check_message(self, message):
        self.assertEqual(list(message), MESSAGE_KEYS)
        self.assertEqual([message[key] for key in MESSAGE_KEYS[:7]], ["Sd2a", "SRgn", "PTul", -1, 0, 35, 100])
        self.assertEqual([(p["key"], p["type"]) for p in message["parameters"]], PARAMETERS)
        self.assertEqual([(p["key"], p["type"]) for p in message["region"]], REGION)
        self.assertEqual(list(message["parameters"][0]), ["key", "type", "hex", "path"])
        for parameter in message["parameters"][1:] + message["region"]:
            self.assertEqual(list(parameter), ["key", "type", "hex"])
            self.assertRegex(parameter["hex"], r"\A([0-9a-f]{2})*\Z")
        self.assertEqual(len(bytes.fromhex(message["region"][2]["hex"])), 256)
        self.assertEqual([len(bytes.fromhex(p["hex"])) for p in message["parameters"][1:]], [2, 2, 2, 8, 2])


class Lines(SpotJsonTest):
    def test_linesOfAWholeRunInOrder(self):
        (self.folder / "take.wav").write_bytes(wave(96000, bits=16))
        project = (Adl().source(1, "a/take.wav")
                   .cut(1, length=30, more=f"\n(Gain) 1 -6 (Outfade) {fade(5)} L _ _ _")
                   .cut(2, dest_in=HOUR + 25, more=f"\n(Infade) {fade(5)} L _ _ _")
                   .write(self.folder / "p.adl"))
        lines = self.spot(project, "--fades", "--gain").lines
        told = [(line["kind"], *(line[key] for key in ("pass", "piece", "event") if key in line)) for line in lines]
        self.assertEqual(told, [
            ("start",), ("file", "depth", 0), ("file", "depth", 1), ("file", "gain", 0),
            ("region", "main", 0), ("region", "main", 1),
            ("file", "fade", 0), ("region", "outfade", 0), ("file", "fade", 1), ("region", "crossfade", 1), ("end",)])
        names = [line["path"].rsplit("/", 1)[1] for line in lines if line["kind"] == "file"]
        self.assertEqual(names, ["take_24bit.wav", "take_24bit.1.wav", "take_Gain.wav", "take_FadeOut.wav",
                                 "take_XFade.wav"])
        self.assertEqual(lines[-1], {"kind": "end", "aborted": False, "steps": 10, "counted": 10, "regions": 4,
                                     "files": 5})

    def test_nothingElseOnStandardOutputAndNoBar(self):
        result = self.spot(one_cut(self.folder), "--session-rate", "44100")
        self.assertTrue(all(line.startswith("{") for line in result.out.split("\n")[:-1]))
        self.assertNotIn("[", result.err)

    def test_firstAttemptCountsAs1(self):
        region, = self.spot(one_cut(self.folder)).of("region")
        self.assertEqual((region["attempt"], region["status"], region["piece"], region["event"]), (1, 0, "main", 0))

    def test_eventsThatAreNoCutsCountStepsOnly(self):
        (self.folder / "take.wav").write_bytes(wave(1600))
        project = (Adl().source(1, "a/take.wav").entry(1, "(Silence) 1 a b c").cut(2, length=1)
                   .entry(3, "(Alt) I 1 1 x").write(self.folder / "p.adl"))
        result = self.spot(project)
        self.assertEqual([line["event"] for line in result.of("region")], [1])
        self.assertEqual(result.of("end")[0]["counted"], 9)


class Following(SpotJsonTest):
    def test_eachLineIsToldWhenItHappens(self):
        """A script can follow a long run: the first file is told while the second is being made."""
        (self.folder / "take.wav").write_bytes(wave_of(bytes(40_000_000)))
        adl = Adl().source(1, "a/take.wav")
        for number in range(20):
            adl.cut(number, length=1)
        process = start("spot", adl.write(self.folder / "p.adl"), "--json", "--depth", "16")
        try:
            while b'"file"' not in process.stdout.readline():
                self.assertIsNone(process.poll())
            self.assertLess(len(list(self.folder.glob("take_*.wav"))), 10)
        finally:
            process.terminate()
            process.communicate()


class Messages(SpotJsonTest):
    def message(self, *arguments, **cut):
        project = one_cut(self.folder, **cut)
        return decoded(self.spot(project, *arguments).of("region")[0]["message"])

    def test_fieldsOfAMainRegion(self):
        told = self.message(source_in=7, track=5, length=20)
        start = 7 * SAMPLES_PER_FRAME
        self.assertEqual(told, {
            "path": str(self.folder / "take.wav"), "Trak": 1, "FFrm": 1, "TkOf": 0,
            "SMSt": HOUR * SAMPLES_PER_FRAME, "Strm": 1, "Star": start, "Stop": start + 20 * SAMPLES_PER_FRAME,
            "Name": b"take"})

    def test_relativeToTheFirstTrack(self):
        told = self.message("--position", "first", track=5)
        self.assertEqual((told["Trak"], told["TkOf"], told["SMSt"]), (-99, 0, 0))

    def test_remainderOfTheTimestampsCounts(self):
        told = self.message(source_in=stamp(7, 11), dest_in=stamp(HOUR, 5), length=stamp(HOUR + 10, 1005))
        self.assertEqual((told["Star"], told["Stop"] - told["Star"], told["SMSt"]),
                         (7 * SAMPLES_PER_FRAME + 11, 10 * SAMPLES_PER_FRAME + 1000, HOUR * SAMPLES_PER_FRAME))

    def test_trackIndexWrapsAt16Bits(self):
        (self.folder / "take.wav").write_bytes(wave(1600))
        project = (Adl().source(1, "a/take.wav").cut(1, track=0, length=1).cut(2, track=40000, length=1)
                   .write(self.folder / "p.adl"))
        result = run("spot", project, "--json")
        tracks = [decoded(line["message"])["Trak"] for line in result.of("region")]
        self.assertEqual(tracks[0], 1)
        self.assertEqual(set(tracks[1:]), {40001 - 65536})

    def test_nameKeepsTheBytesOfTheStem(self):
        (self.folder / "嵐の予報.1.wav").write_bytes(wave(1600))
        project = (Adl().source(1, b"a/" + "嵐の予報.1.wav".encode("shift_jis")).cut(1, length=1)
                   .write(self.folder / "p.adl"))
        told = decoded(self.spot(project).of("region")[0]["message"])
        self.assertEqual((told["Name"], told["path"]),
                         ("嵐の予報".encode(), str(self.folder / "嵐の予報.1.wav")))

    def test_unusedBytesOfTheNameAreZero(self):
        message = self.spot(one_cut(self.folder)).of("region")[0]["message"]
        self.assertEqual(bytes.fromhex(message["region"][2]["hex"]), b"\x04take" + bytes(251))

    def test_aliasCarriesThePathOfAFolderWithOddName(self):
        folder = self.folder / "a: 嵐\\ b"
        project = one_cut(folder)
        told = decoded(self.spot(project).of("region")[0]["message"])
        self.assertEqual(told["path"], str(folder / "take.wav"))

    def test_aliasBytesHoldThePathInUtf8(self):
        message = self.spot(one_cut(self.folder)).of("region")[0]["message"]
        self.assertIn(str(self.folder / "take.wav").lstrip("/").encode(), bytes.fromhex(message["parameters"][0]["hex"]))


class Refusals(SpotJsonTest):
    """The embedded host refuses a region that no session can hold; the run goes on after it."""

    def setUp(self):
        super().setUp()
        (self.folder / "take.wav").write_bytes(wave(4800))
        self.project = (Adl().source(1, "a/take.wav")
                        .cut(1, track=40001, length=1)  # beyond the 16 bits of a track's number
                        .cut(2, length=1).write(self.folder / "p.adl"))

    def test_80AttemptsEachWithItsMessageAndLogLine(self):
        result = self.spot(self.project, status=LEFT_OUT)
        tries = [line for line in result.of("region") if line["event"] == 0]
        self.assertEqual([line["attempt"] for line in tries], list(range(1, 81)))
        status, = {line["status"] for line in tries}
        self.assertNotEqual(status, 0)
        self.assertEqual([line["text"] for line in result.of("log")],
                         [f"spot 5555555555555555  ttt={status}"] * 80)
        self.assertEqual(len({str(line["message"]) for line in tries}), 1)
        placed, = [line for line in result.of("region") if line["event"] == 1]
        self.assertEqual((placed["attempt"], placed["status"]), (1, 0))

    def test_refusedRegionStillEndsAtTheTotal(self):
        end, = self.spot(self.project, status=LEFT_OUT).of("end")
        self.assertEqual((end["steps"], end["counted"], end["regions"]), (6, 6, 1))


class Warnings(SpotJsonTest):
    """The two alerts in their words, and what the program adds on standard error."""

    def alerts(self, project, *arguments):
        result = self.spot(project, *arguments)
        return [line["text"] for line in result.of("warning")], result.err

    def test_noneWhenSessionAndProjectAgree(self):
        self.assertEqual(self.alerts(one_cut(self.folder)), ([], ""))

    def test_bothWhenTheRatesDiffer(self):
        alerts, plain = self.alerts(one_cut(self.folder), "--session-rate", "44100")
        self.assertEqual(alerts, [FIRST_ALERT % (44100, "44100"), SECOND_ALERT])
        for number in ("48000", "44100"):
            self.assertIn(number, plain)

    def test_rateAlertAloneAt96000IsNotAlone(self):
        """At 96000 Hz the positions agree with 48000, which the project has: one alert."""
        alerts, plain = self.alerts(one_cut(self.folder), "--session-rate", "96000")
        self.assertEqual(alerts, [FIRST_ALERT % (96000, "96000")])
        self.assertIn("48000", plain)
        self.assertIn("96000", plain)

    def test_frameRateAlertAlone(self):
        alerts, plain = self.alerts(one_cut(self.folder), "--session-frame-rate", "29.97")
        self.assertEqual(alerts, [SECOND_ALERT])
        moved = 172972800 - HOUR * SAMPLES_PER_FRAME
        self.assertIn(str(moved), plain)
        self.assertIn(str(172972800), plain)

    def test_remainderInTheFirstStampIsTold(self):
        alerts, plain = self.alerts(one_cut(self.folder, dest_in=stamp(HOUR, 77), length=stamp(HOUR + 9)))
        self.assertEqual(alerts, [SECOND_ALERT])
        self.assertIn("-77", plain)
        self.assertIn(str(HOUR * SAMPLES_PER_FRAME), plain)

    def test_firstNumberIsTheSessionRateCutToAnInteger(self):
        alerts, _ = self.alerts(one_cut(self.folder), "--session-rate", "47952.0479")
        self.assertEqual(alerts[0], FIRST_ALERT % (47952, "47952"))

    def test_unknownProjectRateIsWarnedOf(self):
        project = one_cut(self.folder, dest_in="01|00:00:00x0000", length="01|00:00:01x0010")
        alerts, _ = self.alerts(project)
        self.assertEqual(alerts[0], FIRST_ALERT % (48000, "48000"))

    def test_pulledRateOfTheProjectTakenOverAsA32BitFloat(self):
        """47952.04795... has no exact 32-bit float, so the session that follows it still differs a little."""
        alerts, plain = self.alerts(one_cut(self.folder, dest_in=stamp(HOUR, rate="-"), length=stamp(HOUR + 9, rate="-")))
        self.assertEqual(alerts[0], FIRST_ALERT % (47952, "47952"))

    def test_textFormShowsTheAlertsTooOnStandardError(self):
        result = run("spot", one_cut(self.folder), "--session-rate", "44100")
        self.assertIn(FIRST_ALERT % (44100, "44100"), result.err)
        self.assertIn(SECOND_ALERT, result.err)


class Text(ProgramTest):
    def test_tableTellsEveryRegionAndTheSum(self):
        result = run("spot", one_cut(self.folder))
        self.assert_status(result, ALL_DONE)
        for word in ("01:00:00:00", str(HOUR * SAMPLES_PER_FRAME), "take.wav", "1 region"):
            self.assertIn(word, result.out)
        self.assertEqual(result.err, "")

    def test_oneOfAThingIsNotCalledThings(self):
        out = run("spot", one_cut(self.folder), "--depth", "16").out
        self.assertNotRegex(out, r"\b1 (regions|tracks|files|events)\b")


if __name__ == "__main__":
    unittest.main()
