"""`--host ardour:DIR` with the Ardour that is installed: what it has is held against the bounce of the same spot."""

import array
import hashlib
import os
import pathlib
import shutil
import signal
import struct
import subprocess
import tempfile
import time
import unittest
import xml.etree.ElementTree

from program import ALL_DONE, BAD_USAGE, INTERRUPTED, LEFT_OUT, SANITIZED, environment, limit_file_size, run, start

ROOT = pathlib.Path(__file__).resolve().parents[2]
READ_SESSION = ROOT / "Tests" / "Ardour" / "read_session.lua"
ARDOUR = next(filter(None, map(shutil.which, ("ardour9-lua", "ardour8-lua", "ardour7-lua"))), None)
SILENT = 1e-6  # -120 dBFS


def bounce(path):
    """The first sample and the samples of a mono bounce of 32-bit floats."""
    data, at, parts = path.read_bytes(), 12, {}
    while at + 8 <= len(data):
        name, size = data[at:at + 4], struct.unpack_from("<I", data, at + 4)[0]
        parts[name] = data[at + 8:at + 8 + size]
        at += 8 + size + size % 2
    return struct.unpack_from("<Q", parts[b"bext"], 338)[0], array.array("f", parts[b"data"])


class ArdourTest(unittest.TestCase):
    """Examples in a folder of their own, which goes when the test ends, and a home and a temporary folder beside them."""

    def setUp(self):
        held = tempfile.TemporaryDirectory()
        self.addCleanup(held.cleanup)
        self.folder = pathlib.Path(held.name).resolve()
        self.projects = self.folder / "projects"
        shutil.copytree(ROOT / "Examples", self.projects, ignore=shutil.ignore_patterns("Sound Rolls"))
        self.home, self.temporary = self.folder / "home", self.folder / "temporary"
        self.home.mkdir()
        self.temporary.mkdir()
        self.session, self.tracks = self.folder / "My session", self.folder / "tracks"

    def environment(self, **changes):
        homes = {name: None for name in os.environ if name.startswith("XDG_")}
        return environment(**homes, HOME=self.home, TMPDIR=self.temporary, **changes)

    def spot(self, project, *options, changes=None, **how):
        return run("spot", self.projects / project, *options, "--json", "--host", f"ardour:{self.session}",
                   seconds=100, env=self.environment(**(changes or {})), **how)

    def state(self):
        """The user's files: what is in them, and when they were written."""
        return {path: (hashlib.sha256(path.read_bytes()).digest(), path.stat().st_mtime_ns)
                for path in self.projects.rglob("*") if path.is_file()}

    def assert_unchanged(self, before):
        """Nothing of the user's is changed; files that the spot made may have come."""
        after = self.state()
        self.assertEqual({path: after.get(path) for path in before}, before)
        self.assertEqual(list(self.home.iterdir()) + list(self.temporary.iterdir()), [])

    def assert_left(self, *names):
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()),
                         sorted(["home", "projects", "temporary", *names]))

    def stand_in(self, commands):
        """A program in the place of Ardour's."""
        program = self.folder / "stand-in"
        program.write_text("#!/bin/sh\n" + commands)
        program.chmod(0o700)
        return program


@unittest.skipIf(SANITIZED, "the tests in C++ run Ardour in this build")
class RealArdour(ArdourTest):
    def setUp(self):
        self.assertIsNotNone(ARDOUR, "the package ardour is not installed")
        super().setUp()

    def session_xml(self):
        return xml.etree.ElementTree.parse(self.session / "My session.ardour").getroot()

    def assert_sounds_as_bounced(self, block, stride, most):
        """Compares samples; but the last of a region where Ardour reads it alone, as silence."""
        read = self.folder / "read"
        read.mkdir()
        bounced = {path.stem: bounce(path) for path in self.tracks.iterdir()}
        self.assertTrue(bounced)
        first, samples = next(iter(bounced.values()))
        done = subprocess.run([ARDOUR, READ_SESSION, self.session, self.session.name, str(first),
                               str(first + len(samples)), read, str(block), str(stride)],
                              capture_output=True, timeout=300, check=False)
        self.assertEqual(done.returncode, 0, done)
        ends = self.region_ends()
        for name, (_, every) in bounced.items():
            expected = every if stride == block else every[::stride]
            heard = array.array("f", (read / f"{name}.0").read_bytes())
            self.assertEqual(len(heard), len(expected))
            self.assertTrue(any(heard))
            lasts = {end - 1 - first for end in ends[name]} if block == 1 else set()
            worst = max(abs(a - b) for i, (a, b) in enumerate(zip(heard, expected)) if i * stride not in lasts)
            self.assertLessEqual(worst, most, name)

    def region_ends(self):
        root = self.session_xml()
        unit = int(root.find("TempoMap").get("superclocks-per-second")) // int(root.get("sample-rate"))
        ends = {}
        for playlist in root.iter("Playlist"):
            lengths = [region.get("length").split("@") for region in playlist.iter("Region")]
            ends[playlist.get("name")] = {(int(a[1:]) + int(b[1:])) // unit for a, b in lengths}
        return ends

    def assert_belongs_to_the_user(self, tracks):
        """No media of its own, no way to write to others, no question to who opens it."""
        self.assertEqual([path for path in self.session.rglob("*") if path.is_file()
                          and path.name not in ("My session.ardour", "instant.xml")], [])
        root = self.session_xml()
        self.assertIsNone(root.find("EngineHints"))
        self.assertEqual([route.get("name") for route in root.iter("Route")],
                         ["Master"] + [f"Track {number}" for number in range(1, tracks + 1)])
        for source in root.iter("Source"):
            self.assertNotIn("Writable", source.get("flags"))
            self.assertTrue(pathlib.Path(source.get("origin")).is_file())
            self.assertTrue(source.get("origin").startswith(str(self.projects)))

    def test_examples_sound_as_the_bounce(self):
        rendered = ("--fades", "--gain")
        rows = [  # samples at once, every so many, the largest difference
            ("Storm.adl", (*rendered, "--depth", "16"), 4, (4096, 4096, 0)),
            ("Storm.adl", ("--native",), 4, (1, 13, SILENT)),
            ("Ferry/Ferry.adl", rendered, 2, (4096, 4096, 0)),
        ]
        for project, options, tracks, comparison in rows:
            with self.subTest((project, *options)):
                before = self.state()
                done = self.spot(project, *options, "--bounce-tracks", self.tracks, "--bounce-depth", "32f")
                self.assertEqual(done.status, ALL_DONE, done.err)
                target = next(line for line in done.of("target") if line["name"] == "ardour")
                self.assertEqual(target, {"kind": "target", "name": "ardour", "path": str(self.session), "status": 0,
                                          "reason": None})
                self.assert_sounds_as_bounced(*comparison)
                self.assert_belongs_to_the_user(tracks)
                self.assert_unchanged(before)
                for path in (self.session, self.tracks, self.folder / "read"):
                    shutil.rmtree(path)

    def test_a_disk_that_fills_up_while_ardour_saves(self):
        disk = self.folder / "disk"
        disk.mkdir()
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=80k", "tmpfs", disk], capture_output=True)
        if mounted.returncode == 0:
            self.addCleanup(subprocess.run, ["umount", disk], check=True)
            before = None
        else:  # Where nobody may mount, a limit does, which holds for Ardour too.
            before = limit_file_size(30_000)
        state = self.state()
        self.session = disk / "My session"
        done = self.spot("Storm.adl", "--native", "--otio", self.folder / "s.otio", before=before)
        self.assertEqual(done.status, LEFT_OUT, done.err)
        self.assertIn(f"{self.session} is not made", done.err)
        self.assertIn("disk full", done.err)
        self.assertEqual([line["status"] for line in done.of("target")], [3, 0])
        self.assertEqual(list(disk.iterdir()), [])
        self.assert_left("disk", "s.otio")
        self.assert_unchanged(state)


class WithoutArdour(ArdourTest):
    """What is refused, and what becomes of a session when Ardour does not do what it should."""

    HANGS = "echo $$ > started.part; mv started.part started; sleep 100 & wait\n"

    def test_what_cannot_be_is_refused_before_anything_is_made(self):
        there = self.folder / "there"
        there.write_text("")
        link = self.folder / "link"
        link.symlink_to("nowhere")
        (self.folder / "empty").mkdir()
        plain = self.folder / "plain"
        plain.write_text("text")
        begins = {"ARDOUR_LUA": self.stand_in("exit 1\n")}
        before = self.state()
        rows = [
            (begins, self.projects, "is there"),
            (begins, there, "is there"),
            (begins, link, "is there"),
            (begins, self.folder / "empty", "is there"),
            (begins, str(self.folder / "empty") + "/", "is there"),
            (begins, self.folder / "no" / "such" / "folder", "No such file"),
            (begins, there / "below", "Not a directory"),
            ({"ARDOUR_LUA": "/nowhere/ardour"}, self.session, "ARDOUR_LUA names /nowhere/ardour"),
            ({"ARDOUR_LUA": plain}, self.session, "Permission denied"),
            ({"ARDOUR_LUA": self.home}, self.session, "it is a folder"),
            ({"PATH": "/nowhere"}, self.session, "apt install ardour"),
        ]
        for changes, folder, words in rows:
            with self.subTest(folder=folder, words=words):
                done = run("spot", self.projects / "Storm.adl", "--host", f"ardour:{folder}",
                           env=self.environment(**changes))
                self.assertEqual(done.status, BAD_USAGE)
                self.assertIn(words, done.err)
                self.assertEqual(self.state(), before)
                self.assert_left("there", "link", "empty", "plain", "stand-in")

    def test_a_folder_given_twice_is_bad_usage(self):
        done = self.spot("Storm.adl", "--bounce-tracks", self.session)
        self.assertEqual(done.status, BAD_USAGE, done.err)

    def test_when_ardour_crashes_the_others_are_still_made(self):
        crash = self.stand_in("echo 'no such \033[31mdevice' >&2\nkill -ABRT $$\n")
        before = self.state()
        done = self.spot("Ferry/Ferry.adl", "--bounce-tracks", self.tracks, changes={"ARDOUR_LUA": crash})
        self.assertEqual(done.status, LEFT_OUT)
        self.assertIn(f"velmora: ardour: {self.session} is not made: {crash}: Ardour crashed (signal 6", done.err)
        self.assertIn("device", done.err)
        self.assertNotIn("\033", done.err)
        ardour, tracks = done.of("target")
        self.assertEqual((ardour["status"], tracks["status"]), (3, 0))
        self.assertIn("crashed", ardour["reason"])
        self.assert_left("stand-in", "tracks")
        self.assert_unchanged(before)

    def test_a_place_that_takes_no_folder_is_named(self):
        self.session = pathlib.Path("/proc/session")
        done = self.spot("Ferry/Ferry.adl", changes={"ARDOUR_LUA": self.stand_in("exit 1\n")})
        self.assertIn(done.status, (BAD_USAGE, LEFT_OUT))  # root may write in every folder, by its rights
        self.assertIn("/proc/session", done.err)
        self.assertIn("No such file" if done.status == LEFT_OUT else "cannot be written", done.err)

    def test_another_program_is_told_to_be_one(self):
        done = self.spot("Ferry/Ferry.adl", changes={"ARDOUR_LUA": shutil.which("true")})
        self.assertEqual(done.status, LEFT_OUT)
        self.assertIn("is this Ardour's ardour<N>-lua?", done.err)
        self.assert_left()

    def test_a_disk_that_is_full_before_ardour_starts(self):
        program = self.stand_in(f"touch {self.folder}/started\n")
        done = self.spot("Ferry/Ferry.adl", "--native", before=limit_file_size(1000), changes={"ARDOUR_LUA": program})
        self.assertEqual(done.status, LEFT_OUT, done.err)
        self.assertIn(f"{self.session} is not made", done.err)
        self.assertIn("File too large", done.err)
        self.assert_left("stand-in")

    def hangs(self, signal_number):
        """Ends a run that hangs, and gives it back with the process that took Ardour's place."""
        hang = self.stand_in(f"cd '{self.folder}'\n" + self.HANGS)
        process = start("spot", self.projects / "Ferry/Ferry.adl", "--host", f"ardour:{self.session}",
                        env=self.environment(ARDOUR_LUA=hang))
        started = self.folder / "started"
        until = time.monotonic() + 60
        while not started.exists() and time.monotonic() < until:
            time.sleep(0.02)
        process.send_signal(signal_number)
        process.communicate(timeout=20)
        return process, int(started.read_text())

    def test_a_request_to_end_ends_ardour_and_leaves_nothing(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number):
                before = self.state()
                process, ardour = self.hangs(number)
                self.assertEqual(process.returncode, INTERRUPTED)
                with self.assertRaises(ProcessLookupError):
                    os.killpg(os.getpgid(ardour), 0)
                self.assert_left("stand-in", "started")
                self.assert_unchanged(before)
                (self.folder / "started").unlink()

    def test_a_kill_ends_ardour_too_and_leaves_one_hidden_folder(self):
        before = self.state()
        _, ardour = self.hangs(signal.SIGKILL)
        until = time.monotonic() + 20
        while time.monotonic() < until and self.is_alive(ardour):
            time.sleep(0.02)
        self.assertFalse(self.is_alive(ardour))
        hidden = [path for path in self.folder.iterdir() if path.name.startswith(".velmora-")]
        self.assertEqual(len(hidden), 1)
        self.assert_left(hidden[0].name, "stand-in", "started")
        self.assert_unchanged(before)

    @staticmethod
    def is_alive(process):
        # One that nobody has waited for yet has ended all the same.
        try:
            return pathlib.Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()[0] != "Z"
        except OSError:
            return False


if __name__ == "__main__":
    unittest.main()
