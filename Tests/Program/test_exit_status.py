"""The exit status, and what standard error names for each of them."""

import errno
import os
import pathlib
import signal
import time
import unittest

from material import HOUR, Adl, fade, stamp, wave, wave_of
from program import (ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, INTERRUPTED, LEFT_OUT, ProgramTest, limit_file_size, run,
                     start, strict_json)


class LeftOutCuts(ProgramTest):
    """Status 3; each cut, file or piece that was left out is named by its event."""

    def project(self, *cuts, sources=("take.wav",)):
        (self.folder / "take.wav").write_bytes(wave(96000))
        adl = Adl()
        for index, name in enumerate(sources):
            adl.source(index + 1, f"URL:file://localhost/a/{name}")
        for index, cut in enumerate(cuts):
            adl.cut(index + 1, **cut)
        return adl.write(self.folder / "p.adl")

    def spot(self, project, *arguments, **how):
        """Both forms tell the same on standard error and end alike."""
        result = run("spot", project, "--json", *arguments, **how)
        self.assert_status(result, LEFT_OUT)
        return result

    def assert_named(self, result, *words):
        named = [line for line in result.err.split("\n") if all(word in line for word in words)]
        self.assertEqual(len(named), 1, f"{words} in one line of\n{result.err}")

    def test_allDone(self):
        result = run("spot", self.project({}))
        self.assert_status(result, ALL_DONE)
        self.assertEqual(result.err, "")

    def test_missingFile(self):
        project = self.project({}, {"source": 2}, sources=("take.wav", "gone.wav"))
        result = self.spot(project)
        self.assert_named(result, "event 1", "gone.wav")
        self.assertEqual(len(result.of("region")), 1)
        self.assert_named(result, "this project loses something", f"velmora check {project}")
        self.assertEqual(len(result.err.split("\n")), 3)

    def test_sourceNumberThatTheIndexLacks(self):
        self.assert_named(self.spot(self.project({"source": 7})), "event 0", "source 7")

    def test_textFormNamesTheSameAndEndsAlike(self):
        project = self.project({}, {"source": 2}, sources=("take.wav", "gone.wav"))
        result = run("spot", project)
        self.assert_status(result, LEFT_OUT)
        self.assert_named(result, "event 1", "gone.wav")

    def test_invalidWaveFile(self):
        (self.folder / "bad.wav").write_bytes(b"RIFF\x04\0\0\0JUNK")
        result = self.spot(self.project({"source": 2}, {}, sources=("take.wav", "bad.wav")))
        self.assert_named(result, "left out", "event 0", "bad.wav")
        self.assertEqual([line["event"] for line in result.of("region")], [1])

    def test_emptyWaveFile(self):
        (self.folder / "empty.wav").write_bytes(b"")
        self.assert_named(self.spot(self.project({"source": 2}, sources=("take.wav", "empty.wav"))),
                          "left out", "event 0", "empty.wav", "no valid wave file")

    def test_sourceOfAnotherFormatThanPlainPcm(self):
        (self.folder / "float.wav").write_bytes(wave(9600, bits=32, format_tag=3))
        (self.folder / "wide.wav").write_bytes(wave(9600, bits=24, format_tag=0xFFFE))
        project = self.project({"source": 2, "length": 1}, {"source": 3, "length": 1}, {},
                               sources=("take.wav", "float.wav", "wide.wav"))
        result = run("spot", project, "--json")
        self.assert_status(result, LEFT_OUT)
        for event, name in [("event 0", "float.wav"), ("event 1", "wide.wav")]:
            lines = [line for line in result.err.split("\n") if event in line and name in line]
            self.assertTrue(any("PCM" in line and "silence" in line for line in lines), result.err)
        self.assertNotIn("event 2", result.err)

    def test_anotherFormatOfACutThatIsOffIsNothing(self):
        (self.folder / "float.wav").write_bytes(wave(9600, bits=32, format_tag=3))
        project = self.project({"source": 2, "track": 4}, {}, sources=("take.wav", "float.wav"))
        for off in (["--skip-events", "0"], ["--only-tracks", "1"]):
            self.assert_status(run("spot", project, *off), ALL_DONE)

    def test_refusedRegion(self):
        """A track 40000 above the lowest has no number of 16 bits, so no host can take its regions."""
        result = self.spot(self.project({}, {"track": 40001}))
        self.assert_named(result, "left out", "event 1", "region", "refused")
        self.assertNotIn("event 0", result.err)

    def test_refusedFadePiecesAreNamedEach(self):
        fades = f"\n(Infade) {fade(2)} L 0 0 0 (Outfade) {fade(3)} L 0 0 0"
        result = self.spot(self.project({}, {"track": 40001, "more": fades}), "--fades")
        self.assert_named(result, "left out", "event 1", "fade-in", "refused")
        self.assert_named(result, "left out", "event 1", "fade-out", "refused")
        self.assert_named(result, "left out", "event 1", "the region", "refused")

    def test_failedConversionGoesOutAsTheSourceAndIsNamed(self):
        """On a full disk the region is placed from the source in its own depth."""
        project = self.project({})
        result = self.spot(project, "--depth", "16", before=limit_file_size(1000))
        made, = result.of("file")
        self.assertNotEqual(made["status"], 0)
        self.assert_named(result, "left out", "event 0", "take_16bit.wav")
        region, = result.of("region")
        self.assertEqual(region["status"], 0)
        self.assertEqual(region["message"]["parameters"][0]["path"], str(self.folder / "take.wav"))
        self.assertEqual(result.of("end")[0]["files"], 0)

    def test_fileThatCameOutShortStaysAndIsToldWithItsCause(self):
        project = self.project({})
        result = self.spot(project, "--depth", "16", before=limit_file_size(1000))
        short = self.folder / "take_16bit.wav"
        self.assertTrue(short.is_file())
        self.assertLessEqual(short.stat().st_size, 1000)
        told, = result.of("log")
        self.assertIn(str(short), told["text"])
        self.assertIn(os.strerror(errno.EFBIG), told["text"])
        result = run("spot", project, "--depth", "16", before=limit_file_size(1000))
        self.assert_named(result, str(short.with_suffix(".1.wav")), os.strerror(errno.EFBIG))

    def test_failedRenderOfAGain(self):
        project = self.project({"more": "\n(Gain) 1 -6"})
        result = self.spot(project, "--gain", before=limit_file_size(1000))
        self.assert_named(result, "left out", "event 0", "take_Gain.wav")
        self.assertEqual([(line["pass"], line["status"]) for line in result.of("file")], [("gain", 2)])
        self.assertEqual(len(result.of("region")), 1)

    def test_failedRenderOfAFadePiece(self):
        project = self.project({"more": f"\n(Infade) {fade(10)} L 0 0 0"})
        result = self.spot(project, "--fades", before=limit_file_size(1000))
        self.assert_named(result, "left out", "event 0", "take_FadeIn.wav")
        self.assertEqual([line["piece"] for line in result.of("region")], ["main"])

    def test_diskThatFillsUpOnlyOnClosing(self):
        """Small files are written when they are closed."""
        project = self.project({"more": f"\n(Infade) {stamp(0, 20, separator=';')} L 0 0 0"})
        result = self.spot(project, "--fades", before=limit_file_size(30))
        self.assert_named(result, "left out", "event 0", "take_FadeIn.wav")

    def test_targetThatCannotBeCreated(self):
        """The suffix makes its name too long."""
        name = "n" * 248 + ".wav"
        (self.folder / name).write_bytes(wave(100))
        project = self.project({"source": 2, "length": 1}, sources=("take.wav", name))
        result = self.spot(project, "--depth", "16")
        made, = result.of("file")
        self.assertEqual(made["status"], 1)
        self.assert_named(result, "left out", "event 0", "_16bit.wav")

    def test_sessionFileThatCannotBeWritten(self):
        result = run("spot", self.project({}), "--host", "embedded:/dev/full")
        self.assert_status(result, LEFT_OUT)
        self.assertIn("/dev/full", result.err)

    def test_sessionFileOnAFullDiskLeavesAnEarlierOne(self):
        project = self.project({})
        target = self.folder / "s.json"
        self.assert_status(run("spot", project, "--host", f"embedded:{target}"), ALL_DONE)
        earlier = target.read_bytes()
        result = run("spot", project, "--host", f"embedded:{target}", before=limit_file_size(50))
        self.assert_status(result, LEFT_OUT)
        self.assertIn("s.json", result.err)
        self.assertEqual(target.read_bytes(), earlier)
        self.assertEqual(self.files(), ["p.adl", "s.json", "take.wav"])

    def test_standardOutputThatTakesNoMore(self):
        project = self.project({})
        for command in (["info", project], ["info", project, "--json"], ["info", project, "--summary"],
                        ["spot", project], ["spot", project, "--json"], ["check", project],
                        ["check", project, "--json"], ["prepare", project, "--into", self.folder / "new"]):
            with self.subTest(command[0]), open("/dev/full", "wb") as full:
                result = run(*command, stdout=full)
                self.assert_status(result, LEFT_OUT)
                self.assertIn("standard output", result.err)

    def test_whatDoesNotLoadWinsOverStandardOutputThatTakesNoMore(self):
        gone = self.folder / "gone.adl"
        for command in (["info", gone, "--json"], ["check", gone], ["check", self.project({}), gone, "--json"],
                        ["prepare", gone, "--into", self.folder / "new", "--json"]):
            with self.subTest(command), open("/dev/full", "wb") as full:
                result = run(*command, stdout=full)
                self.assert_status(result, DOES_NOT_LOAD)
                self.assertIn("standard output", result.err)

    def test_everyCauseOfOneCutAndEveryCutOfOneCause(self):
        project = self.project({"source": 9}, {"source": 9}, {"track": 40001}, {})
        result = self.spot(project)
        for event in ("event 0", "event 1", "event 2"):
            self.assert_named(result, "left out", event)
        self.assertNotIn("event 3", result.err)


class Interrupted(ProgramTest):
    """Ctrl-C stops between two events, as the cancel button does."""

    EVENTS = 60

    def setUp(self):
        super().setUp()
        # 20 MB to convert for each event, so that the run takes seconds.
        (self.folder / "take.wav").write_bytes(wave_of(bytes(range(256)) * 80000))
        adl = Adl().source(1, "a/take.wav")
        for index in range(self.EVENTS):
            adl.cut(index + 1, dest_in=HOUR + index)
        self.project = adl.write(self.folder / "p.adl")

    def interrupt(self, *arguments):
        """Sends the signal while the second file is being made."""
        process = start("spot", self.project, "--depth", "16", *arguments)
        while process.poll() is None and not (self.folder / "take_16bit.1.wav").exists():
            time.sleep(0.005)
        sent = time.monotonic()
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=60)
        return process.returncode, out, err, time.monotonic() - sent

    def test_endsSoonWith130AndSaysAborted(self):
        status, out, err, seconds = self.interrupt("--json")
        self.assertEqual(status, INTERRUPTED, err)
        self.assertLess(seconds, 10)
        lines = [strict_json(line) for line in out.decode().split("\n")[:-1]]
        end = lines[-1]
        self.assertEqual((end["kind"], end["aborted"], end["regions"]), ("end", True, 0))
        self.assertEqual(end["steps"], 3 * self.EVENTS)
        self.assertLess(end["counted"], self.EVENTS)

    def test_filesMadeSoFarStayAndAreWhole(self):
        status, out, err, _ = self.interrupt("--json")
        self.assertEqual(status, INTERRUPTED)
        lines = [strict_json(line) for line in out.decode().split("\n")[:-1]]
        told = {line["path"] for line in lines if line["kind"] == "file"}
        on_disk = {str(path) for path in self.folder.glob("take_*.wav")}
        self.assertEqual(told, on_disk)
        sizes = {pathlib.Path(path).stat().st_size for path in on_disk}
        self.assertEqual(len(sizes), 1, "a file was cut off")
        self.assertEqual(lines[-1]["files"], len(told))

    def test_textFormSaysThatItStopped(self):
        status, out, err, _ = self.interrupt()
        self.assertEqual(status, INTERRUPTED, err)
        self.assertIn(b"Stopped", out)

    def test_sessionOfAnInterruptedRunIsWritten(self):
        target = self.folder / "s.json"
        status, *_ = self.interrupt("--json", "--host", f"embedded:{target}")
        self.assertEqual(status, INTERRUPTED)
        self.assertEqual(strict_json(target.read_text("utf-8"))["summary"]["regions"], 0)


class Reader(ProgramTest):
    def test_readerThatGoesAwayEndsTheProgram(self):
        """`velmora info | head -1` neither hangs nor crashes."""
        adl = Adl()
        for index in range(20000):
            adl.cut(index)
        project = adl.write(self.folder / "p.adl")
        for command in (["info", project], ["info", project, "--json"], ["spot", project, "--json"]):
            with self.subTest(command[0]):
                process = start(*command)
                process.stdout.read(10)
                process.stdout.close()
                process.stdout = None
                _, err = process.communicate(timeout=60)
                self.assertIn(process.returncode, (-signal.SIGPIPE, DOES_NOT_LOAD, LEFT_OUT), err[-500:])


if __name__ == "__main__":
    unittest.main()
