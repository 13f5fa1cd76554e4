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

from program import ALL_DONE, BAD_USAGE, INTERRUPTED, LEFT_OUT, environment, limit_file_size, run, start

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


class Ardour(unittest.TestCase):
    def setUp(self):
        self.assertIsNotNone(ARDOUR, "the package ardour is not installed")
        held = tempfile.TemporaryDirectory()
        self.addCleanup(held.cleanup)
        self.folder = pathlib.Path(held.name)
        self.projects = self.folder / "projects"
        shutil.copytree(ROOT / "Examples", self.projects, ignore=shutil.ignore_patterns("Sound Rolls"))
        self.session, self.tracks = self.folder / "My session", self.folder / "tracks"

    def spot(self, project, *options, **how):
        return run("spot", self.projects / project, *options, "--json", "--host", f"ardour:{self.session}",
                   seconds=100, **how)

    def sums(self):
        return {path: hashlib.sha256(path.read_bytes()).digest() for path in self.projects.rglob("*")
                if path.is_file()}

    def session_xml(self):
        return xml.etree.ElementTree.parse(self.session / "My session.ardour").getroot()

    def assert_sounds_as_bounced(self, block, most):
        """Compares all samples; but the last of a region, which Ardour reads alone as silence."""
        read = self.folder / "read"
        read.mkdir()
        bounced = {path.stem: bounce(path) for path in self.tracks.iterdir()}
        self.assertTrue(bounced)
        first, samples = next(iter(bounced.values()))
        done = subprocess.run([ARDOUR, READ_SESSION, self.session, self.session.name, str(first),
                               str(first + len(samples)), read, str(block)],
                              capture_output=True, timeout=300, check=False)
        self.assertEqual(done.returncode, 0, done)
        ends = self.region_ends()
        for name, (_, expected) in bounced.items():
            heard = array.array("f", (read / f"{name}.0").read_bytes())
            self.assertEqual(len(heard), len(expected))
            self.assertTrue(any(heard))
            lasts = {end - 1 - first for end in ends[name]} if most > 0 else set()
            worst = max((abs(a - b) for i, (a, b) in enumerate(zip(heard, expected)) if i not in lasts))
            self.assertLessEqual(worst, most, name)

    def region_ends(self):
        root = self.session_xml()
        unit = int(root.find("TempoMap").get("superclocks-per-second")) // int(root.get("sample-rate"))
        ends = {}
        for playlist in root.iter("Playlist"):
            lengths = [region.get("length").split("@") for region in playlist.iter("Region")]
            ends[playlist.get("name")] = {(int(a[1:]) + int(b[1:])) // unit for a, b in lengths}
        return ends

    def test_examples_with_rendered_fades_and_gain_sound_as_the_bounce(self):
        for project in ("Storm.adl", "Ferry/Ferry.adl"):
            with self.subTest(project):
                before = self.sums()
                done = self.spot(project, "--fades", "--gain", "--bounce-tracks", self.tracks, "--bounce-depth", "32f")
                self.assertEqual(done.status, ALL_DONE, done.err)
                target = next(line for line in done.of("target") if line["name"] == "ardour")
                self.assertEqual(target, {"kind": "target", "name": "ardour", "path": str(self.session), "status": 0,
                                          "reason": None})
                self.assert_sounds_as_bounced(4096, 0)
                after = self.sums()
                self.assertEqual({path: after[path] for path in before}, before)
                for path in (self.session, self.tracks, self.folder / "read"):
                    shutil.rmtree(path)

    def test_native_fades_and_gain_sound_as_the_bounce(self):
        done = self.spot("Ferry/Ferry.adl", "--native", "--bounce-tracks", self.tracks, "--bounce-depth", "32f")
        self.assertEqual(done.status, ALL_DONE, done.err)
        self.assert_sounds_as_bounced(1, SILENT)

    def test_the_session_belongs_to_the_user_and_the_media_stay_where_they_are(self):
        self.assertEqual(self.spot("Ferry/Ferry.adl").status, ALL_DONE)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["My session", "projects"])
        root = self.session_xml()
        self.assertIsNone(root.find("EngineHints"))
        names = [route.get("name") for route in root.iter("Route")]
        self.assertEqual(names, ["Master", "Track 1", "Track 2"])
        for source in root.iter("Source"):
            self.assertNotIn("Writable", source.get("flags"))
            self.assertTrue(pathlib.Path(source.get("origin")).is_file())
            self.assertTrue(source.get("origin").startswith(str(self.projects)))

    def test_what_cannot_be_is_refused_before_anything_is_made(self):
        before = self.sums()
        rows = [
            ({}, self.projects, "is there"),
            ({}, self.folder / "no" / "such" / "folder", "no/such"),
            ({"ARDOUR_LUA": "/nowhere/ardour"}, self.session, "ARDOUR_LUA names /nowhere/ardour"),
            ({"PATH": "/nowhere"}, self.session, "apt install ardour"),
        ]
        for changes, folder, words in rows:
            with self.subTest(words):
                done = run("spot", self.projects / "Storm.adl", "--host", f"ardour:{folder}",
                           env={**environment(), **changes})
                self.assertEqual(done.status, BAD_USAGE)
                self.assertIn(words, done.err)
                self.assertEqual(self.sums(), before)

    def test_a_folder_given_twice_is_bad_usage(self):
        done = self.spot("Storm.adl", "--bounce-tracks", self.session)
        self.assertEqual(done.status, BAD_USAGE, done.err)

    def test_when_ardour_crashes_the_others_are_still_made(self):
        crash = self.folder / "crash"
        crash.write_text("#!/bin/sh\necho 'no such device' >&2\nkill -ABRT $$\n")
        crash.chmod(0o700)
        done = self.spot("Ferry/Ferry.adl", "--bounce-tracks", self.tracks, env=environment(ARDOUR_LUA=crash))
        self.assertEqual(done.status, LEFT_OUT)
        self.assertIn(str(self.session), done.err)
        self.assertIn("no such device", done.err)
        ardour, tracks = done.of("target")
        self.assertEqual((ardour["status"], tracks["status"]), (3, 0))
        self.assertFalse(self.session.exists())
        self.assertTrue(self.tracks.is_dir())

    def test_a_session_that_does_not_fit_on_the_disk_is_not_made(self):
        # The limit holds for Ardour too. It is reached when the session is saved, which tells no one.
        done = self.spot("Ferry/Ferry.adl", "--native", before=limit_file_size(30_000))
        self.assertEqual(done.status, LEFT_OUT, done.err)
        self.assertIn(f"{self.session} is not made", done.err)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["projects"])

    def test_an_interrupt_ends_ardour_and_leaves_nothing(self):
        hang = self.folder / "hang"
        hang.write_text(f"#!/bin/sh\necho $$ > {self.folder}/started\nsleep 100\n")
        hang.chmod(0o700)
        process = start("spot", self.projects / "Ferry/Ferry.adl", "--host", f"ardour:{self.session}",
                        env=environment(ARDOUR_LUA=hang))
        started = self.folder / "started"
        for _ in range(400):
            if started.exists() and started.read_text():
                break
            time.sleep(0.05)
        process.send_signal(signal.SIGINT)
        process.communicate(timeout=20)
        self.assertEqual(process.returncode, INTERRUPTED)
        with self.assertRaises(ProcessLookupError):
            os.kill(int(started.read_text()), 0)
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["hang", "projects", "started"])


if __name__ == "__main__":
    unittest.main()
