"""The file that a session goes to: it never costs what was there."""

import json
import os
import pathlib
import unittest

from material import Adl, one_cut
from program import ALL_DONE, LEFT_OUT, SLOWNESS, ProgramTest, limit_file_size, run, start

NOBODY = 65534


def give_up_root():
    if os.geteuid() == 0:
        os.setuid(NOBODY)


class SessionFileTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.project = one_cut(self.folder / "project")
        self.target = self.folder / "s.json"
        self.part = self.folder / "s.json.part"

    def spot(self, target=None, **how):
        return run("spot", self.project, "--quiet", "--host", f"embedded:{target or self.target}", **how)

    def assert_session(self, path=None):
        self.assertEqual(json.loads((path or self.target).read_text("utf-8"))["summary"]["regions"], 1)

    def names(self):
        """What the folder holds beside the project."""
        return sorted(name for name in os.listdir(self.folder) if name != "project")


class Neighbours(SessionFileTest):
    """A file of another name is nobody's to touch."""

    def test_aFileNamedLikeAPartOfTheSessionStays(self):
        self.part.write_text("mine")
        self.assert_status(self.spot(), ALL_DONE)
        self.assert_session()
        self.assertEqual(self.part.read_text(), "mine")
        self.assertEqual(self.names(), ["s.json", "s.json.part"])

    def test_aLinkThereIsNotFollowed(self):
        victim = self.folder / "victim"
        victim.write_text("precious")
        for target in (victim, self.folder / "none"):
            with self.subTest(target.name):
                self.part.symlink_to(target)
                self.assert_status(self.spot(), ALL_DONE)
                self.assert_session()
                self.assertEqual(os.readlink(self.part), str(target))
                self.assertEqual(victim.read_text(), "precious")
                self.assertFalse((self.folder / "none").exists())
                self.part.unlink()

    def test_aFailedRunDeletesNothing(self):
        self.part.write_text("mine")
        result = self.spot(before=limit_file_size(50))  # the session, longer than this, does not fit
        self.assert_status(result, LEFT_OUT)
        self.assertIn(str(self.target), result.err)
        self.assertEqual(self.names(), ["s.json.part"])


class Refused(SessionFileTest):
    """Before the spot begins: bad usage, and nothing has been made or changed."""

    def refuse(self, *words, **how):
        before = self.files()
        result = self.spot(**how)
        self.assert_bad_usage(result, "--host", str(self.target), *words)
        self.assertEqual(self.files(), before)

    def test_aFileThatCannotBeRead(self):
        self.folder.chmod(0o777)
        (self.folder / "project").chmod(0o777)
        self.target.write_text('{\n  "summary": {}\n}\n')
        self.target.chmod(0o200)
        before = self.target.stat()
        self.refuse("cannot be read", before=give_up_root)
        self.assertEqual(self.target.stat().st_mtime_ns, before.st_mtime_ns)

    def test_aLinkToNothing(self):
        self.target.symlink_to(self.folder / "none")
        self.refuse("link")
        self.assertTrue(self.target.is_symlink())

    def test_aLinkToItself(self):
        self.target.symlink_to(self.target)
        self.refuse("link")

    def test_aFileThatIsNoSession(self):
        self.target.write_text("my diary")
        self.refuse("no session")
        self.assertEqual(self.target.read_text(), "my diary")


class Meanwhile(SessionFileTest):
    """What comes to stand under the session's name while a run works is not written over, and the run says so."""

    CUTS = 200  # more lines of JSON than a pipe holds

    def setUp(self):
        super().setUp()
        adl = Adl().source(1, "a/take.wav")
        for entry in range(self.CUTS):
            adl.cut(entry + 1, length=2)
        self.long_project = adl.write(self.folder / "project" / "long.adl")

    def working(self):
        """A run that has looked at the session's name, and stops at a full pipe until it is let go on."""
        process = start("spot", self.long_project, "--json", "--host", f"embedded:{self.target}")
        self.addCleanup(process.kill)
        self.assertEqual(process.stdout.read(1), b"{")
        return process

    def end(self, process):
        _, err = process.communicate(timeout=60 * SLOWNESS)
        return process.returncode, err.decode()

    def assert_refused(self, process, words):
        status, err = self.end(process)
        self.assertEqual(status, LEFT_OUT, err)
        self.assertIn(f"the session {self.target} {words}", err)

    def assert_whole_session(self):
        self.assertEqual(json.loads(self.target.read_text("utf-8"))["summary"]["regions"], self.CUTS)
        self.assertEqual(self.names(), ["s.json"])

    def test_aFileThatAppears(self):
        process = self.working()
        self.target.write_text("my diary")
        self.assert_refused(process, "has appeared meanwhile")
        self.assertEqual(self.target.read_text(), "my diary")
        self.assertEqual(self.names(), ["s.json"])

    def test_aLinkThatAppears(self):
        process = self.working()
        self.target.symlink_to(self.folder / "none")
        self.assert_refused(process, "has appeared meanwhile")
        self.assertTrue(self.target.is_symlink())
        self.assertEqual(self.names(), ["s.json"])

    def test_aSessionThatChanges(self):
        self.assert_status(self.spot(), ALL_DONE)
        process = self.working()
        self.target.write_text("my diary")
        self.assert_refused(process, "has changed meanwhile")
        self.assertEqual(self.target.read_text(), "my diary")

    def test_twoRunsOnOneName(self):
        for there in (False, True):
            with self.subTest(there=there):
                if there:
                    self.target.unlink()
                    self.assert_status(self.spot(), ALL_DONE)
                first, second = self.working(), self.working()
                status, err = self.end(second)
                self.assertEqual((status, err), (ALL_DONE, ""))
                written = self.target.read_bytes()
                self.assert_refused(first, "has changed meanwhile" if there else "has appeared meanwhile")
                self.assertEqual(self.target.read_bytes(), written)
                self.assert_whole_session()


class Devices(SessionFileTest):
    def test_standardOutputAsAPipe(self):
        result = self.spot("/dev/stdout")
        self.assert_status(result, ALL_DONE)
        self.assertEqual(json.loads(result.out[result.out.index("{"):])["summary"]["regions"], 1)

    def test_standardOutputAsAFile(self):
        out = self.folder / "out.txt"
        with open(out, "wb") as stream:
            self.assert_status(self.spot("/dev/stdout", stdout=stream), ALL_DONE)
        text = out.read_text("utf-8")
        self.assertIn("1 region placed", text)
        self.assertEqual(json.loads(text[text.index("{"):])["summary"]["regions"], 1)
        self.assertTrue(pathlib.Path("/dev/stdout").is_symlink())

    def test_nullDevice(self):
        self.assert_status(self.spot("/dev/null"), ALL_DONE)
        self.assertTrue(pathlib.Path("/dev/null").is_char_device())


if __name__ == "__main__":
    unittest.main()
