"""`velmora check`: many projects and folders, the order in which they are told, JSON, and how it ends."""

import errno
import json
import os
import pty
import re
import signal
import subprocess
import time
import unittest

import failing
from holding import as_somebody
from material import Adl, fade, one_cut, stamp, wave
from program import (ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, INTERRUPTED, LEFT_OUT, PROGRAM, SANITIZED, ProgramTest,
                     environment, run, start)

KEYS = ["path", "verdict", "counts", "encoding", "findings", "meant"]
FINDING_KEYS = ["code", "severity", "line", "column", "entry", "source", "text", "effect", "remedy"]
SOURCE_KEYS = ["index", "location", "name", "file", "fileStart", "length"]
FILE_KEYS = ["path", "found", "kind", "sampleRate", "channels", "bitsPerSample", "frames", "timeReference"]
EVENT_KEYS = ["entry", "kind", "name", "enabled", "source", "sourceChannels", "tracks", "position", "end",
              "fileOffset", "fadeIn", "fadeOut", "gains"]


# What a terminal obeys, and what turns the direction of a line.
HARMFUL = "[\\x00-\\x1f\\x7f-\\x9f\\u200e\\u200f\\u2028-\\u202e\\u2066-\\u2069]"


class CheckTest(ProgramTest):
    def dirty(self, folder):
        """A project whose only fault is the mark before the frames of a fade."""
        return one_cut(folder, more=f"\n(Infade) {stamp(2)} LIN _ _ _")

    def told(self, *arguments, **how):
        return [json.loads(line) for line in run("check", *arguments, "--json", **how).out.splitlines()]


class ExitStatus(CheckTest):
    def test_ofOneProject(self):
        self.assert_status(run("check", one_cut(self.folder / "clean")), ALL_DONE)
        self.assert_status(run("check", self.dirty(self.folder / "dirty")), LEFT_OUT)
        letter = self.folder / "letter.adl"
        letter.write_bytes(b"Dear diary")
        self.assert_status(run("check", letter), DOES_NOT_LOAD)
        self.assert_status(run("check", self.folder / "gone.adl"), DOES_NOT_LOAD)

    def test_unreadableWins(self):
        (self.folder / "letter.adl").write_bytes(b"Dear diary")
        for names in (["clean", "dirty"], ["dirty", "clean"]):
            paths = [one_cut(self.folder / "clean"), self.dirty(self.folder / "dirty")]
            self.assert_status(run("check", *paths), LEFT_OUT)
            self.assert_status(run("check", *paths, self.folder / "letter.adl"), DOES_NOT_LOAD)

    def test_aNoteIsClean(self):
        project = one_cut(self.folder, more='\n(Rem) NAME "Storm"')
        self.assert_status(run("check", project), ALL_DONE)
        self.assertEqual(self.told(project)[0]["verdict"], "clean")

    def test_aFolderWithoutAnyIsUnreadable(self):
        (self.folder / "empty").mkdir()
        result = run("check", self.folder / "empty")
        self.assert_status(result, DOES_NOT_LOAD)
        self.assertIn("no *.adl", result.err)

    def test_badUsage(self):
        project = one_cut(self.folder)
        for arguments, word in [(["--jobs", "0"], "--jobs"), (["--jobs", "many"], "--jobs"), (["--trust", "me"], "--trust"),
                                (["--encoding", "Klingon"], "--encoding"), (["--session-rate", "0"], "--session-rate"),
                                (["--session-frame-rate", "9"], "--session-frame-rate"), (["--media="], "--media"),
                                (["--media", "/nowhere/at/all"], "--media"), (["--loud"], "--loud")]:
            with self.subTest(arguments):
                self.assert_bad_usage(run("check", project, *arguments), word)
        self.assert_bad_usage(run("check"), "project")


class Projects(CheckTest):
    def test_aFolderStandsForAllBelowIt(self):
        """In bytewise order of path, and whatever the case of the extension."""
        for name in ("b/one.adl", "b-2/two.ADL", "a/deep/er/three.Adl", "b/.adl", "b/four.adl.bak", "five.txt"):
            path = self.folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(b"<ADL>\n</ADL>\n")
        names = [os.path.relpath(told["path"], self.folder) for told in self.told(self.folder)]
        self.assertEqual(names, ["a/deep/er/three.Adl", "b-2/two.ADL", "b/one.adl"])

    def test_linksAreFollowedAndNotInCircles(self):
        one_cut(self.folder / "top" / "real")
        one_cut(self.folder / "outside")
        (self.folder / "top" / "circle").symlink_to(self.folder / "top")
        (self.folder / "top" / "a-link").symlink_to(self.folder / "top" / "real")
        (self.folder / "top" / "beyond").symlink_to(self.folder / "outside")
        names = [os.path.relpath(told["path"], self.folder / "top") for told in self.told(self.folder / "top")]
        self.assertEqual(names, ["beyond/p.adl", "real/p.adl"])

    def test_folderThatIsNotReadToItsEndIsTold(self):
        if not failing.SHIM or SANITIZED:
            self.skipTest("no library that lets calls fail")
        for name in ("a", "b"):
            one_cut(self.folder / "arch" / name)
        # Each folder takes two calls: one for its names, one that says that there are no more.
        told = set()
        for call in range(1, 7):
            env = environment(**failing.variables("list", call, errno.EIO, self.folder / "counts",
                                                  FAILING_BELOW=self.folder / "arch"))
            with self.subTest(call):
                result = run("check", self.folder / "arch", "--jobs", "1", env=env)
                self.assert_status(result, DOES_NOT_LOAD)
                line = result.err.split("\n")[0]
                self.assertRegex(line, rf"velmora: {self.folder}/arch(/[ab])?: {os.strerror(errno.EIO)}$")
                told.add(line)
        self.assertEqual(len(told), 3, told)

    def test_folderThatCannotBeLookedAtIsTold(self):
        """Its names can be read, and nothing more."""
        for name in ("a", "b"):
            one_cut(self.folder / "arch" / name)
        one_cut(self.folder / "beyond")
        (self.folder / "arch" / "link").symlink_to(self.folder / "closed" / "beyond")
        (self.folder / "closed").mkdir()
        (self.folder / "arch" / "dangling").symlink_to("nowhere")
        (self.folder / "arch" / "circle").symlink_to("circle")
        self.folder.chmod(0o755)
        program, before = as_somebody(self.folder)
        (self.folder / "arch" / "b").chmod(0o000)
        (self.folder / "closed").chmod(0o000)
        done = subprocess.run([program, "check", self.folder / "arch"], capture_output=True, text=True,
                              env=environment(), preexec_fn=before)
        for name in ("arch/b", "closed"):
            (self.folder / name).chmod(0o755)
        self.assertEqual(done.returncode, DOES_NOT_LOAD)
        self.assertEqual(sorted(done.stderr.splitlines()),
                         [f"velmora: {self.folder}/arch/{name}: Permission denied" for name in ("b", "link")])

    def test_pipesDoNotHang(self):
        os.mkfifo(self.folder / "pipe.adl")
        result = run("check", self.folder, "--json", seconds=10)
        self.assert_status(result, DOES_NOT_LOAD)
        self.assertIn("no regular file", result.json["findings"][0]["text"])

    def test_areToldInTheOrderGivenHoweverManyJobs(self):
        paths = []
        for number in range(60):
            folder = self.folder / f"p{number * 37 % 60:02d}"
            paths.append(self.dirty(folder) if number % 3 else one_cut(folder))
        one = run("check", *paths, "--json", "--jobs", "1")
        self.assertEqual([json.loads(line)["path"] for line in one.out.splitlines()], [str(path) for path in paths])
        for jobs in ("2", "7"):
            self.assertEqual(run("check", *paths, "--json", "--jobs", jobs).out, one.out)
        self.assertEqual(run("check", *paths, "--jobs", "5").out, run("check", *paths, "--jobs", "1").out)

    def test_largeProjectsAreToldWhole(self):
        adl = Adl().source(1, "URL:file://localhost/a/take.wav")
        for number in range(1, 5001):
            adl.cut(number, dest_in=108000 + 40 * number)
        (self.folder / "take.wav").write_bytes(wave(96000))
        project = adl.write(self.folder / "p.adl")
        told = self.told(project)[0]
        self.assertEqual(len(told["meant"]["events"]), 5000)
        self.assertEqual((told["verdict"], told["findings"]), ("clean", []))
        self.assertEqual(told["meant"]["events"][4999]["position"], (108000 + 40 * 5000) * 1600)


class Json(CheckTest):
    def test_membersInOrder(self):
        project = one_cut(self.folder, more=f"\n(Infade) {fade(2)} LIN -12 _ -2.5\n(Gain) _ -3\n(Rem) NAME \"Storm\"")
        told = self.told(project)[0]
        self.assertEqual(list(told), KEYS)
        self.assertEqual(list(told["counts"]), ["fails", "misplaced", "lost", "note"])
        self.assertEqual(list(told["findings"][0]), FINDING_KEYS)
        self.assertEqual(list(told["meant"]), ["sampleRate", "frameRate", "sources", "events"])
        source, event = told["meant"]["sources"][0], told["meant"]["events"][0]
        self.assertEqual(list(source), SOURCE_KEYS)
        self.assertEqual(list(source["file"]), FILE_KEYS)
        self.assertEqual(list(event), EVENT_KEYS)
        self.assertEqual(source["file"], {"path": str(self.folder / "take.wav"), "found": "location", "kind": "pcm",
                                          "sampleRate": 48000, "channels": 1, "bitsPerSample": 24, "frames": 96000,
                                          "timeReference": None})
        self.assertEqual(event, {"entry": 1, "kind": "cut", "name": "Storm", "enabled": True, "source": 1,
                                 "sourceChannels": [1], "tracks": [1], "position": 172800000, "end": 172848000,
                                 "fileOffset": 0,
                                 "fadeIn": {"length": 3200, "shape": "LIN", "levels": [-12, None, -2.5], "rendered": None},
                                 "fadeOut": None, "gains": [{"channels": None, "dB": -3}]})

    def test_numbersAreWholeWhereTheyAre(self):
        for mark, rate, expected in [("|", "/", '"sampleRate":48000,"frameRate":30,'),
                                     (":", "/", '"sampleRate":48000,"frameRate":29.97002997002997,'),
                                     (".", "-", '"sampleRate":47952.04795204795,"frameRate":25,')]:
            with self.subTest(mark):
                first = stamp(0, mark=mark, rate=rate)
                adl = Adl().source(1, "URL:file://localhost/a/take.wav", start=first)
                adl.cut(1, source_in=first, dest_in=first, length=stamp(20, mark=mark, rate=rate))
                self.assertIn(expected, run("check", adl.write(self.folder / "p.adl"), "--json").out)

    def test_isUtf8WhateverTheProjectHolds(self):
        for noise in (b"\xff\xfe\x80", b"\xe4\xf6\xfc", "日本".encode("shift_jis"), "ä".encode("utf-8"), b"\x1b[31m\x07\x7f",
                      "\u009b31m \u202e drawkcab \u2028 \u2066".encode("utf-8")):
            with self.subTest(noise):
                project = one_cut(self.folder, more=b"\n(Rem) NAME \"" .decode() + "X\"")
                project.write_bytes(project.read_bytes().replace(b"X", noise))
                result = run("check", project, "--json")
                json.loads(result.out_bytes.decode("utf-8"))
                text = run("check", project).out_bytes.decode("utf-8")
                self.assertFalse([c for c in text if c != "\n" and re.match(HARMFUL, c)])

    def test_meantIsNullForWhatIsNoAdl(self):
        letter = self.folder / "letter.adl"
        letter.write_bytes(b"Dear diary")
        told = self.told(letter)[0]
        self.assertEqual((told["verdict"], told["meant"]), ("unreadable", None))
        self.assertEqual([(f["code"], f["line"], f["column"]) for f in told["findings"]], [("not-an-adl", 0, 0)])


class Text(CheckTest):
    def test_cleanProjectsAreOneLine(self):
        project = one_cut(self.folder)
        self.assertEqual(run("check", project).out, f"{project}: clean\n")

    def test_findingsAreGroupedAndCounted(self):
        adl = Adl().source(1, "URL:file://localhost/a/take.wav")
        for number in range(1, 31):
            adl.cut(number, dest_in=108000 + 40 * number, more=f"\n(Infade) {stamp(2)} LIN _ _ _")
        (self.folder / "take.wav").write_bytes(wave(96000))
        text = run("check", adl.write(self.folder / "p.adl")).out
        self.assertEqual(text.count("[fade-separator]"), 1)
        for words in ("30 times", "line 7, entry 1", "and 26 more", "Effect: ", "Remedy: ", "does not load"):
            self.assertIn(words, text)

    def test_severalProjectsEndWithTheirTotals(self):
        paths = [one_cut(self.folder / "a"), self.dirty(self.folder / "b"), self.folder / "gone.adl"]
        self.assertEqual(run("check", *paths).out.splitlines()[-1],
                         "3 projects: 1 clean, 1 that would not arrive whole, 1 that cannot be read")

    def test_onATerminalThereAreColoursAndABar(self):
        paths = [self.dirty(self.folder / f"p{number}") for number in range(3)]
        master, slave = pty.openpty()
        environment = {**os.environ, "TERM": "xterm"}
        environment.pop("NO_COLOR", None)
        with subprocess.Popen([PROGRAM, "check", *map(str, paths)], stdout=slave, stderr=slave, env=environment) as process:
            os.close(slave)
            shown = b""
            while True:
                try:
                    piece = os.read(master, 65536)
                except OSError:  # the other side is closed
                    break
                if not piece:
                    break
                shown += piece
        os.close(master)
        self.assertEqual(process.returncode, LEFT_OUT)
        self.assertIn(b"\x1b[1;31mfails\x1b[0m", shown)
        self.assertIn(b"project 3 of 3", shown)
        self.assertTrue(shown.rstrip().endswith(b"0 that cannot be read"), shown[-200:])


class Interrupt(CheckTest):
    def test_endsWith130(self):
        folder = self.folder / "many"
        project = one_cut(folder / "first").read_bytes()
        for number in range(3000):
            (folder / f"{number:04d}.adl").write_bytes(project)
        process = start("check", folder, "--json", "--jobs", "1")
        process.stdout.readline()
        time.sleep(0.05)
        process.send_signal(signal.SIGINT)
        out, err = process.communicate(timeout=60)
        self.assertEqual(process.returncode, INTERRUPTED, err)
        # The first line may be the rest of one that was read before; no line is broken off.
        self.assertTrue(out.endswith(b"\n"))
        for line in out.splitlines()[1:]:
            json.loads(line)


class Hint(CheckTest):
    """`info` and `spot` point to check in one line, their last, if something fails, is misplaced or lost."""

    def test_standsLast(self):
        project = self.dirty(self.folder)
        for command in (["info"], ["info", "--json"], ["spot"], ["spot", "--json"]):
            with self.subTest(command):
                lines = run(command[0], project, *command[1:]).err.splitlines()
                self.assertIn("File NG.", lines[0])
                self.assertEqual(lines[1:], [f"velmora: this project does not load; velmora check {project} says why and what helps"])

    def test_isNotThereForACleanProject(self):
        project = one_cut(self.folder)
        for command in ("info", "spot"):
            self.assertEqual(run(command, project).err, "")

    def test_goesBySessionOfTheSpot(self):
        project = one_cut(self.folder)
        result = run("spot", project, "--session-rate", "44100")
        self.assertIn("this project misplaces cuts; velmora check", result.err.splitlines()[-1])

    def test_doesNotTryAgainWhatCannotBeRead(self):
        self.assertNotIn("velmora check", run("info", self.folder / "gone.adl").err)


if __name__ == "__main__":
    unittest.main()
