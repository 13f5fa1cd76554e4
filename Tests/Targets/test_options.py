"""The targets of a spot from the command line: what is refused before any work, what becomes of the others when one fails, and
what is left on the disk."""

import os
import signal
import time
import unittest

import playing
import waves
from layout import checksums
from program import (ALL_DONE, BAD_USAGE, INTERRUPTED, LEFT_OUT, SLOWNESS, limit_file_size, run, start, strict_json)
from projects import Cut
from targets import HOUR, SECOND, TARGETS, TargetTest, noise, targets_in

NOBODY = 65534
ORDER = list(TARGETS)  # in which they are told


def give_up_root():
    if os.geteuid() == 0:
        os.setuid(NOBODY)


class OptionTest(TargetTest):
    def setUp(self):
        super().setUp()
        self.adl = self.project({"a.wav": noise(2000), "b.wav": noise(2000, 16, 2, seed=2)}, Cut(1, 1, 0, HOUR, 900, 0, 100),
                                Cut(2, 1, 0, HOUR + 800, 900, 100, 50, "-3"), Cut(1, 5, 7, HOUR, 500)).path

    def spot_here(self, *options, **how):
        """In the test's folder, for short relative paths."""
        return run("spot", self.adl, "--quiet", *options, cwd=self.folder, seconds=60, **how)


class Refused(OptionTest):
    """Status 1 before the spot begins; nothing has been made or changed."""

    def refuse(self, options, *words, **how):
        before = checksums(self.folder), self.files()
        result = self.spot_here(*options, **how)
        with self.subTest(options):
            self.assert_status(result, BAD_USAGE)
            self.assert_bad_usage(result, *words)
            self.assertEqual((checksums(self.folder), self.files()), before)

    def test_aPathGivenTwice(self):
        (self.folder / "sub").mkdir()
        (self.folder / "link").symlink_to("sub")
        spellings = (("x", "x"), ("x", "./x"), ("x", str(self.folder / "x")), ("x", "x/"), ("sub/x", "sub//x"), ("sub/x", "./sub/./x"),
                     ("x", "sub/../x"), ("sub/x", "link/x"), ("link/../x", "x"))
        for one, other in spellings:
            self.refuse(("--bounce-tracks", one, "--otio", other.rstrip("/")), "given twice")
            self.refuse(("--report", one.rstrip("/"), "--host", f"embedded:{other.rstrip('/')}"), "given twice")
        for pair in (("--otio", "x", "--otio", "x"), ("--bounce", "x", "--dawproject", "x"),
                     ("--copy-to", "x", "--bounce-tracks", "x"), ("--prepare=x", "--bounce-tracks", "x"),
                     ("--host", "ardour:x", "--bounce-tracks", "x")):
            self.refuse(pair, "given twice")

    def test_whatExists(self):
        (self.folder / "file").write_bytes(b"precious")
        (self.folder / "empty").write_bytes(b"")
        (self.folder / "folder").mkdir()
        (self.folder / "to nothing").symlink_to("nowhere")
        os.mkfifo(self.folder / "fifo")
        for option in ("--bounce", "--bounce-tracks", "--dawproject", "--otio", "--report"):
            for name in ("file", "empty", "folder", "to nothing", "fifo", "project/p.adl", "project/a.wav"):
                self.refuse((option, name), option, name)
        for name in ("file", "folder"):
            self.refuse(("--host", f"ardour:{name}"), "--host", name)
        self.refuse(("--otio", "x.otio", "--bounce", "file"), "file")

    def test_whereNothingCanBe(self):
        (self.folder / "file").write_bytes(b"")
        (self.folder / "loop").symlink_to("loop")
        for option in ("--bounce", "--bounce-tracks", "--dawproject", "--otio", "--report"):
            for name in ("none/x", "file/x", "loop/x", "", "n" * 300, "none/../x"):
                self.refuse((option, name), option)
        self.refuse(("--bounce-tracks", "t", "--otio", "t/o.otio"), "t/o.otio")
        self.refuse(("--host", "ardour:t", "--bounce", "t/b.wav"), "t/b.wav")

    def test_aFolderWithoutRights(self):
        self.folder.chmod(0o755)
        (self.folder / "locked").mkdir(mode=0o555)
        for option in ("--bounce", "--bounce-tracks", "--dawproject", "--otio", "--report"):
            self.refuse((option, "locked/x"), option, "locked/x", before=give_up_root)

    def test_standardOutputIsForABounceAlone(self):
        for options in (("--otio", "-"), ("--report", "-"), ("--dawproject", "-"), ("--bounce-tracks", "-"), ("--host", "embedded:-"),
                        ("--host", "ardour:-")):
            self.refuse(options, options[0], "standard output")
        result = run("report", self.adl, "-o", "-", cwd=self.folder)
        self.assert_bad_usage(result, "-o", "standard output")

    def test_whatDoesNotGoTogether(self):
        self.refuse(("--native", "--fades", "--otio", "x"), "--native")
        self.refuse(("--gain", "--native"), "--native")
        for depth in ("32", "8", "24f", "", "-16", "16 ", "32F"):
            self.refuse(("--bounce", "x.wav", "--bounce-depth", depth), "--bounce-depth")
        self.refuse(("--bounce", "-", "--json"), "--json")
        self.refuse(("--bounce", "-", "--bounce", "-"))


class Outcomes(OptionTest):
    def lines(self, result):
        found = result.of("target")
        for line in found:
            self.assertEqual(set(line), {"kind", "name", "path", "status", "reason"})
            self.assertIn(line["status"], (ALL_DONE, LEFT_OUT))
            self.assertEqual(line["reason"] is None, line["status"] == ALL_DONE, line)
        return found

    def test_allAreTold(self):
        os.umask(0o027)
        self.addCleanup(os.umask, 0o022)
        spot = self.spot(self.adl)
        kinds = [line["kind"] for line in spot.run.lines]
        self.assertEqual(kinds[-len(ORDER) - 1:], ["end"] + ["target"] * len(ORDER))
        self.assertEqual([(line["name"], line["path"], line["status"]) for line in self.lines(spot.run)],
                         [(name, str(spot.folder / TARGETS[name][1]), ALL_DONE) for name in ORDER])
        self.assertEqual(sorted(os.listdir(spot.folder)), sorted(["s.json"] + [TARGETS[name][1] for name in ORDER]))
        for path in spot.folder.rglob("*"):
            self.assertEqual(oct(path.stat().st_mode & 0o777), oct(0o750 if path.is_dir() else 0o640), path)

    def test_twoOfAKind(self):
        result = self.spot_here("--otio", "1.otio", "--otio", "2.otio", "--bounce", "1.wav", "--bounce", "2.wav")
        self.assert_status(result, ALL_DONE)
        for one, other in (("1.otio", "2.otio"), ("1.wav", "2.wav")):
            self.assertEqual((self.folder / one).read_bytes(), (self.folder / other).read_bytes())

    def test_nothingPlaced(self):
        (self.folder / "out").mkdir()
        result = self.spot_here("--skip-tracks", "1,5", "--json", *targets_in(self.folder / "out", *TARGETS))
        self.assert_status(result, LEFT_OUT)
        self.assertEqual({line["name"]: line["status"] for line in self.lines(result)},
                         {name: ALL_DONE if name == "report" else LEFT_OUT for name in ORDER})
        self.assertEqual(os.listdir(self.folder / "out"), ["r.html"])

    def test_oneThatFailsLeavesTheOthers(self):
        """The bounces do not fit, all else does."""
        long = self.project({"a.wav": noise(2000)}, Cut(1, 1, 0, HOUR, 900), Cut(1, 2, 0, HOUR + 90 * SECOND, 900), name="long").path
        (self.folder / "out").mkdir()
        result = run("spot", long, "--quiet", "--json", "--host", "embedded:s.json", *targets_in(self.folder / "out", *TARGETS),
                     cwd=self.folder, before=limit_file_size(2 << 20))
        self.assert_status(result, LEFT_OUT)
        failed = {line["name"]: line["reason"] for line in self.lines(result) if line["status"]}
        self.assertEqual(sorted(failed), ["bounce", "bounce-tracks"])
        for name, reason in failed.items():
            self.assertIn(str(self.folder / "out" / TARGETS[name][1]), reason)
            self.assertIn("File too large", reason)
            self.assertIn(f"velmora: {name}: {reason}", result.err)
        self.assertEqual(sorted(os.listdir(self.folder / "out")), ["d.dawproject", "o.otio", "r.html"])
        self.assertTrue((self.folder / "s.json").exists())

    def test_namesReachNoTerminalRaw(self):
        odd = "a\x1b[31mb\x07c"
        (self.folder / odd).mkdir()
        result = self.spot_here("--otio", f"{odd}/x.otio", "--bounce", f"{odd}/none/b.wav")
        self.assert_status(result, BAD_USAGE)
        result = self.spot_here("--otio", f"{odd}/x.otio", "--skip-tracks", "1,5")
        self.assert_status(result, LEFT_OUT)
        for text in (result.out_bytes, result.err_bytes):
            self.assertNotIn(b"\x1b", text)
            self.assertNotIn(b"\x07", text)


class Meanwhile(OptionTest):
    """What happens between the spot and its targets: the run is held at a pipe that nobody reads."""

    CUTS = 200  # more lines of JSON than a pipe holds

    def held(self, *options):
        self.files_of_it = {"a.wav": noise(500), "gone.wav": noise(500, seed=2)}
        cuts = [Cut(2, 1, 0, HOUR, 300)] + [Cut(1, 2, 0, HOUR + 10 * number, 300) for number in range(self.CUTS)]
        self.long = self.project(self.files_of_it, *cuts, name="long")
        self.out = self.folder / "out"
        self.out.mkdir()
        process = start("spot", self.long.path, "--json", "--host", f"embedded:{self.out / 's.json'}",
                        *targets_in(self.out, *TARGETS), *options)
        self.addCleanup(process.kill)
        self.assertEqual(os.read(process.stdout.fileno(), 1), b"{")
        time.sleep(0.5 * SLOWNESS)  # until the pipe is full
        return process

    def end(self, process):
        out, err = process.communicate(timeout=60 * SLOWNESS)
        return process.returncode, [strict_json(line) for line in (b"{" + out).decode("utf-8").splitlines()], err.decode("utf-8")

    def test_aSourceVanishes(self):
        process = self.held()
        gone = self.long.path.parent / "gone.wav"
        gone.unlink()
        status, lines, err = self.end(process)
        self.assertEqual(status, LEFT_OUT, err)
        session = strict_json((self.out / "s.json").read_text("utf-8"))
        regions = playing.regions_of(session)
        self.assertEqual((regions[0].path, len(regions)), (str(gone), self.CUTS + 1))
        playback = playing.play(regions, playing.Media(), self.long.rate)
        found = waves.read_wave(self.out / "b.wav")
        self.assertTrue(found.channels() == [channel for channels in playback.tracks.values() for channel in channels])
        for target in ("bounce", "bounce-tracks", "dawproject", "otio"):
            self.assertRegex(err, rf"velmora: {target}: .*{gone}.*No such file")
        self.assertEqual(sorted(os.listdir(self.out)), sorted(["s.json"] + [TARGETS[name][1] for name in ORDER]))

    def test_interrupted(self):
        process = self.held()
        before = checksums(self.long.path.parent)
        process.send_signal(signal.SIGINT)
        status, lines, err = self.end(process)
        self.assertEqual(status, INTERRUPTED, err)
        self.assertTrue(set(os.listdir(self.out)) <= {"s.json"}, os.listdir(self.out))
        self.assertEqual(checksums(self.long.path.parent), before)

    def test_interruptedWhileItBounces(self):
        project = self.project({"a.wav": noise(800)}, Cut(1, 1, 0, HOUR, 800), Cut(1, 1, 0, HOUR + 60 * SECOND, 800), name="long")
        process = start("spot", project.path, "--bounce", "-", "--report", self.folder / "r.html")
        self.addCleanup(process.kill)
        self.assertEqual(len(process.stdout.read(100)), 100)
        time.sleep(0.2 * SLOWNESS)
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=60 * SLOWNESS)
        self.assertEqual(process.returncode, INTERRUPTED)
        self.assertFalse((self.folder / "r.html").exists())

    def test_whatAppearsIsNotWrittenOver(self):
        process = self.held()
        (self.out / "b.wav").write_bytes(b"precious")
        (self.out / "tracks").mkdir()
        (self.out / "r.html").symlink_to("precious")
        status, lines, err = self.end(process)
        self.assertEqual(status, LEFT_OUT)
        told = {line["name"]: line["status"] for line in lines if line["kind"] == "target"}
        self.assertEqual(told, {"dawproject": 0, "otio": 0, "bounce": 3, "bounce-tracks": 3, "report": 3})
        self.assertEqual((self.out / "b.wav").read_bytes(), b"precious")
        self.assertEqual(os.listdir(self.out / "tracks"), [])
        self.assertEqual(os.readlink(self.out / "r.html"), "precious")
        self.assertFalse((self.out / "precious").exists())


if __name__ == "__main__":
    unittest.main()
