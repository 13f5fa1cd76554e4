"""`--host embedded:s.json`: the session is written whole or not at all, and over an earlier session alone."""

import errno
import json
import os
import unittest

from failing import SHIM, variables
from holding import Spot, kinds_of_holders, picture
from material import wave
from program import ALL_DONE, BAD_USAGE, LEFT_OUT, environment, run, start


class SessionTarget(Spot):
    def folder_for(self, kind):
        folder = self.folder / "targets" / kind.replace(" ", "-")
        folder.mkdir(parents=True)
        return folder / "s.json"

    def spot_to(self, target, *more, **how):
        """A spot that makes no audio."""
        return run("spot", self.adl, "--depth", "16", "--host", f"embedded:{target}", *more, **how)

    def assert_refused(self, target, why, **how):
        before = picture(self.folder)
        done = self.spot_to(target, **how)
        self.assertEqual(self.assert_kept(before, why), [])
        self.assert_status(done, BAD_USAGE)
        self.assertIn("s.json", done.err)

    def test_a_part_file_of_that_name_stays(self):
        for kind, hold in kinds_of_holders(self.outside).items():
            with self.subTest(kind):
                target = self.folder_for(kind)
                hold(target.with_name("s.json.part"))
                before = picture(self.folder)
                done = self.spot_to(target)
                made = self.assert_kept(before, kind)
                self.assert_status(done, ALL_DONE)
                self.assertEqual(made, [str(target.relative_to(self.folder))])
                self.assertEqual(len(json.loads(target.read_text())["tracks"]), 1)

    def test_what_is_no_earlier_session_stays(self):
        contents = {"json of others": b'{"tracks": 3}', "a summary of others": b'{"summary": "two takes", "tracks": []}',
                    "text": b"to do: rehearse", "a list": b"[]", "sound": wave(10)}
        for kind, content in contents.items():
            with self.subTest(kind):
                target = self.folder_for(kind)
                target.write_bytes(content)
                self.assert_refused(target, kind)

    def test_what_is_no_file_stays(self):
        for kind, hold in kinds_of_holders(self.outside).items():
            # A file is told by what it holds. A pipe that nobody reads would be waited for in vain.
            if "file" in kind and "link" not in kind:
                continue
            with self.subTest(kind):
                target = self.folder_for(kind)
                hold(target)
                self.assert_refused(target, kind)
        self.assertFalse(self.outside.with_name("nowhere").exists())

    def test_a_pipe_that_is_read_takes_the_session(self):
        target = self.folder_for("read")
        os.mkfifo(target)
        # Opened before the spot looks for a reader. So small a session fits into the pipe.
        reader = os.open(target, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, reader)
        self.assert_status(self.spot_to(target), ALL_DONE)
        self.assertEqual(json.loads(os.read(reader, 65536))["summary"]["regions"], 2)

    @unittest.skipUnless(SHIM, "no library to preload in this build")
    def test_what_cannot_be_read_stays(self):
        for error in (errno.EACCES, errno.EIO, errno.EMFILE):
            kind = errno.errorcode[error]
            with self.subTest(kind):
                target = self.folder_for(kind)
                self.assert_status(self.spot_to(target), ALL_DONE)
                self.assert_refused(target, kind, env=environment(
                    **variables("open", 1, error, None, FAILING_BELOW=target)))

    def test_an_earlier_session_is_replaced(self):
        target = self.folder_for("earlier")
        self.assert_status(self.spot_to(target), ALL_DONE)
        first = target.read_bytes()
        self.assert_status(self.spot_to(target, "--position", "first"), ALL_DONE)
        self.assertNotEqual(target.read_bytes(), first)
        self.assertEqual([path.name for path in target.parent.iterdir()], ["s.json"])

    def test_two_runs_leave_one_whole_session(self):
        for trial in range(6):
            target = self.folder_for(str(trial))
            both = [start("spot", self.adl, "--depth", "16", "--host", f"embedded:{target}") for _ in range(2)]
            for process in both:
                _, err = process.communicate(timeout=60)
                self.assertIn(process.returncode, (ALL_DONE, BAD_USAGE, LEFT_OUT), err)
            self.assertEqual([path.name for path in target.parent.iterdir()], ["s.json"])
            self.assertEqual(json.loads(target.read_text())["summary"]["regions"], 2)


if __name__ == "__main__":
    unittest.main()
