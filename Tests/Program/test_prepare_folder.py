"""velmora prepare: the folder appears whole or not at all, and what was there stays as it was."""

import os
import pathlib
import random
import signal
import subprocess
import tempfile
import time
import unittest

import material
import prepare_material as m
from program import (ALL_DONE, BAD_USAGE, INTERRUPTED, LEFT_OUT, SLOWNESS, ProgramTest, limit_file_size, run, start,
                     strict_json)

FRAMES = 20 * m.SECOND


class Folder(ProgramTest):
    def setUp(self):
        super().setUp()
        self.source = self.folder / "in"
        self.source.mkdir()
        for number in range(4):
            (self.source / f"take{number}.wav").write_bytes(material.wave_of(os.urandom(FRAMES * 6), channels=2))
        self.project = self.source / "Show.adl"
        self.project.write_text(m.project(
            sources="".join(m.index(number + 1, f"take{number}.wav") for number in range(4)),
            events="".join(m.cut(number + 1, source=number + 1, channels="1~2", tracks="1~2") for number in range(4))))
        self.out = self.folder / "out"

    def assert_whole_or_none(self):
        if self.out.exists():
            self.assertEqual(sorted(path.name for path in self.out.iterdir()), ["Audio", "Show.adl"])
            self.assertEqual(len(list((self.out / "Audio").iterdir())), 8)
            self.assert_status(run("check", self.out / "Show.adl"), ALL_DONE)

    def test_kills_at_random_moments(self):
        before = m.checksums(self.source)
        chance = random.Random(7)
        started = time.monotonic()
        self.assert_status(run("prepare", self.project, "--into", self.out), ALL_DONE)
        takes = time.monotonic() - started
        subprocess.run(["rm", "-rf", os.fspath(self.out)], check=True)
        killed = 0
        for _ in range(20):
            process = start("prepare", self.project, "--into", self.out)
            try:
                process.communicate(timeout=chance.uniform(0, takes))
            except subprocess.TimeoutExpired:
                process.kill()
                process.communicate()
                killed += 1
            self.assert_whole_or_none()
            for path in self.folder.iterdir():
                self.assertRegex(path.name, r"\A(in|out|\.velmora-\d+-\d+\.part)\Z")
                if path.name != "in":
                    subprocess.run(["rm", "-rf", os.fspath(path)], check=True)
        self.assertGreater(killed, 0)
        self.assertEqual(m.checksums(self.source), before)

    def wait_for_audio(self, process, beside):
        """Until the preparation has begun to make audio, or is done."""
        deadline = time.monotonic() + 20 * SLOWNESS
        while not list(beside.glob(".velmora-*.part/Audio/*")) and process.poll() is None:
            self.assertLess(time.monotonic(), deadline)
            time.sleep(0.001)

    def test_requests_that_were_ignored_at_the_start_pass_by(self):
        for signal_number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            for name, words in (("prepare", ["--into"]), ("spot", ["--prepare"])):
                out = self.folder / f"{name}{signal_number}"
                with self.subTest(signal=signal_number, command=name):
                    process = start(name, self.project, "=".join([*words, os.fspath(out)]),
                                    before=lambda: signal.signal(signal_number, signal.SIG_IGN))
                    self.wait_for_audio(process, self.folder)
                    process.send_signal(signal_number)
                    _, err = process.communicate(timeout=60 * SLOWNESS)
                    self.assertEqual(process.returncode, ALL_DONE, err)
                    self.assertTrue((out / "Show.adl").exists())

    def test_requests_to_end_leave_nothing(self):
        before = m.checksums(self.source)
        for signal_number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=signal_number):
                process = start("prepare", self.project, "--into", self.folder / "new/out")
                self.wait_for_audio(process, self.folder / "new")
                process.send_signal(signal_number)
                out, err = process.communicate(timeout=20 * SLOWNESS)
                if process.returncode == ALL_DONE:
                    self.skipTest("it was done before the signal came")
                self.assertEqual(process.returncode, INTERRUPTED, err)
                self.assertEqual(out, b"")
                self.assertEqual([path.name for path in self.folder.iterdir()], ["in"])
        self.assertEqual(m.checksums(self.source), before)

    def test_what_others_made_under_such_names_stays(self):
        theirs = ["out.preparing-v2.txt", "out.preparing-backup/mix.wav", "out.preparing-abcdef/Audio/take.wav",
                  "out.preparing-abcdef/Show.adl", ".velmora-backup.part", ".velmora-2026-11-22.part/notes"]
        for name in theirs:
            (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
            (self.folder / name).write_text("theirs")
        taken = self.folder / "taken"
        (taken / ".preparing-backup").mkdir(parents=True)
        refused = run("prepare", self.project, "--into", taken)
        self.assert_bad_usage(refused, "--into", "not empty")
        self.assert_status(run("prepare", self.project, "--into", self.out), ALL_DONE)
        for name in theirs:
            self.assertEqual((self.folder / name).read_text(), "theirs", name)
        self.assertTrue((taken / ".preparing-backup").is_dir())

    def test_names_as_long_as_names_can_be(self):
        for length in (238, 239, 245, 255):
            with self.subTest(length=length):
                out = self.folder / ("n" * length)
                self.assert_status(run("prepare", self.project, "--into", out), ALL_DONE)
                self.assertEqual(sorted(os.listdir(out)), ["Audio", "Show.adl"])

    def test_way_through_missing_folders_makes_none(self):
        told = run("prepare", self.project, "--into", f"{self.folder}/a/b/../../out", "--json")
        self.assert_status(told, ALL_DONE)
        self.assertEqual(told.json["project"], os.fspath(self.out / "Show.adl"))
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["in", "out"])

    def test_json_tells_what_was_not_made_too(self):
        nothing = {"project": None, "changes": [], "files": [], "left": [], "exit": BAD_USAGE}
        told = run("prepare", self.project, "--into", self.source, "--json")
        self.assert_status(told, BAD_USAGE)
        self.assertEqual(told.json, nothing)
        self.assertIn("is not empty", told.err)
        process = start("prepare", self.project, "--into", self.out, "--json")
        self.wait_for_audio(process, self.folder)
        process.send_signal(signal.SIGINT)
        out, _ = process.communicate(timeout=20 * SLOWNESS)
        if process.returncode == ALL_DONE:
            self.skipTest("it was done before the signal came")
        self.assertEqual(process.returncode, INTERRUPTED)
        self.assertEqual(strict_json(out.decode()), {**nothing, "exit": INTERRUPTED})

    def test_file_that_appears_meanwhile_stays(self):
        with tempfile.TemporaryDirectory(dir=self.folder) as mount:
            mounted = subprocess.run(["mount", "-t", "tmpfs", "tmpfs", mount], capture_output=True)
            if mounted.returncode != 0:
                self.skipTest(f"no file system of its own: {mounted.stderr.decode().strip()}")
            try:
                process = start("prepare", self.project, "--into", mount)
                self.wait_for_audio(process, pathlib.Path(mount))
                process.send_signal(signal.SIGSTOP)
                made = os.listdir(mount)
                theirs = pathlib.Path(mount) / "Show.adl"
                if theirs.exists():
                    self.skipTest("it was done before the file came")
                theirs.write_text("theirs")
                process.send_signal(signal.SIGCONT)
                _, err = process.communicate(timeout=20 * SLOWNESS)
                self.assertEqual(process.returncode, LEFT_OUT, (made, err))
                self.assertIn(b"Show.adl has appeared meanwhile; it is not written over", err)
                self.assertEqual(os.listdir(mount), ["Show.adl"])
                self.assertEqual(theirs.read_text(), "theirs")
            finally:
                process.kill()
                process.communicate()
                subprocess.run(["umount", mount], check=True)

    def test_files_that_come_out_short(self):
        told = run("prepare", self.project, "--into", self.out, "--json", before=limit_file_size(FRAMES * 2))
        self.assert_status(told, LEFT_OUT)
        self.assertIn("take0_ch1.wav", told.err)
        self.assertIsNone(told.json["project"])
        self.assertEqual([path.name for path in self.folder.iterdir()], ["in"])

    def test_full_disk(self):
        with tempfile.TemporaryDirectory(dir=self.folder) as mount:
            mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=8m", "tmpfs", mount], capture_output=True)
            if mounted.returncode != 0:
                self.skipTest(f"no file system of its own: {mounted.stderr.decode().strip()}")
            try:
                for name in ("out", "."):  # beside, and a file system of its own as the folder itself
                    told = run("prepare", self.project, "--into", os.path.join(mount, name))
                    self.assert_status(told, LEFT_OUT)
                    self.assertIn("No space", told.err)
                    self.assertNotIn(".part", told.err)
                    self.assertEqual(os.listdir(mount), [])
                small = self.source / "Small.adl"
                small.write_text(m.project(sources=m.index(name="take0.wav"), events=m.cut(channels="1", tracks="1")))
                self.assert_status(run("prepare", small, "--into", mount), ALL_DONE)
                self.assertEqual(sorted(os.listdir(mount)), ["Audio", "Small.adl"])
            finally:
                subprocess.run(["umount", mount], check=True)

    def test_folder_that_cannot_be_made(self):
        told = run("prepare", self.project, "--into", self.project / "below")
        self.assert_bad_usage(told, "--into", "Show.adl")
        told = run("prepare", self.project, "--into", "/proc/none/out")
        self.assert_bad_usage(told, "--into")

    def test_results_are_the_same_each_time(self):
        for name in ("out", "other"):
            self.assert_status(run("prepare", self.project, "--into", self.folder / name), ALL_DONE)
        other = m.checksums(self.folder / "other")
        for name, facts in m.checksums(self.out).items():
            self.assertEqual(facts[:2], other[name][:2], name)


if __name__ == "__main__":
    unittest.main()
