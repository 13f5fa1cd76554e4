"""No file that exists is ever written over, whatever holds a name and whatever fails on the way."""

import errno
import json
import os
import subprocess
import unittest
from collections import Counter

from failing import SHIM, Counts, variables
from holding import (BESIDE, COPIED, MADE, Spot, as_somebody, give_away, kinds_of_holders, picture, placed, remove)
from program import ALL_DONE, BAD_USAGE, LEFT_OUT, environment, start


class HeldNames(Spot):
    def test_a_name_held_in_any_form_is_passed_over(self):
        sounds, _ = self.undisturbed()
        program, before = as_somebody(self.folder)
        for kind, hold in kinds_of_holders(self.outside).items():
            with self.subTest(kind):
                into = self.folder / kind.replace(" ", "-")
                into.mkdir()
                for name in COPIED:
                    hold(into / name)
                give_away(into)
                held = picture(self.folder)
                process = subprocess.run(
                    [program, "spot", self.adl, "--fades", "--gain", "--json", "--copy-to", into],
                    stdin=subprocess.DEVNULL, capture_output=True, preexec_fn=before, env=environment(), timeout=60)
                self.assertEqual(process.returncode, ALL_DONE, process.stderr)
                made = self.assert_kept(held, kind)
                self.assertEqual(self.sounds(made, "."), sounds)
                lines = [json.loads(line) for line in process.stdout.splitlines()]
                self.assertEqual(sorted(line["path"] for line in lines if line["kind"] == "file"),
                                 sorted(str(self.folder / name) for name in made))
        self.assertFalse(self.outside.with_name("nowhere").exists())

    def test_beside_the_sources_too(self):
        """Each run finds the names of the one before held in yet another form."""
        for number, (kind, hold) in enumerate(kinds_of_holders(self.outside).items()):
            with self.subTest(kind):
                for name in BESIDE:
                    hold(self.adl.parent / name)
                before = picture(self.folder)
                self.assert_status(self.spot("--depth", "24", into=None), ALL_DONE)
                made = self.assert_kept(before, kind)
                self.assertEqual(len(made), MADE, number)
                for name in [*made, *(f"project/{name}" for name in BESIDE)]:
                    remove(self.folder / name)
        self.assertFalse(self.outside.with_name("nowhere").exists())

    def test_the_folder_for_copies_itself(self):
        """A folder is used, through a link too; nothing else is touched or made into one."""
        for kind, hold in kinds_of_holders(self.outside).items():
            with self.subTest(kind):
                into = self.folder / "into"
                hold(into)
                before = picture(self.folder)
                done = self.spot(into="into")
                made = self.assert_kept(before, kind)
                if kind in ("a folder", "a link to a folder"):
                    self.assert_status(done, ALL_DONE)
                    self.assertEqual(len(made), MADE)
                else:
                    self.assert_bad_usage(done, "--copy-to", str(into))
                    self.assertEqual(made, [])
                for name in made:
                    remove(self.folder / name)
                remove(into)


class RunsAtOnce(Spot):
    def test_runs_into_one_folder_lose_nothing(self):
        sounds, regions = self.undisturbed()
        for trial in range(6):
            for runs in (2, 4):
                with self.subTest(trial=trial, runs=runs):
                    into = self.folder / f"{trial}-{runs}"
                    processes = [start("spot", self.adl, "--fades", "--gain", "--json", "--copy-to", into)
                                 for _ in range(runs)]
                    told = []
                    for process in processes:
                        out, err = process.communicate(timeout=120)
                        self.assertEqual(process.returncode, ALL_DONE, err)
                        lines = [json.loads(line) for line in out.splitlines()]
                        told += [line["path"] for line in lines if line["kind"] == "file"]
                    made = sorted(path.name for path in into.iterdir())
                    self.assertEqual(len(made), runs * MADE)
                    self.assertEqual(sorted(told), [str(into / name) for name in made])
                    self.assertEqual(self.sounds(made, into.name), Counter({k: v * runs for k, v in sounds.items()}))


@unittest.skipUnless(SHIM, "no library to preload in this build")
class PassingErrors(Spot):
    """One call after the other fails once, as it does when descriptors run out or a disk is tired."""

    def failing(self, kind, call, error):
        count = self.folder / "count"
        done = self.spot(env=environment(**variables(kind, call, error, count, FAILING_BELOW=self.audio)))
        return done, sum(Counts(count).of.values())

    def hold_names(self):
        for name in ("take.wav", "take_Gain.wav", "take_FadeOut.wav"):
            (self.audio / name).write_bytes(b"precious")
        (self.audio / "take_XFade.wav").symlink_to(self.outside)

    def sweep(self, kind, error):
        sounds, regions = self.undisturbed()
        self.hold_names()
        before = picture(self.folder)
        call, calls = 0, 1
        while call <= calls:
            with self.subTest(call=call, error=errno.errorcode[error]):
                done, counted = self.failing(kind, call, error)
                calls = counted if call == 0 else calls
                made = self.assert_kept(before, f"call {call}")
                self.assertIn(done.status, (ALL_DONE, LEFT_OUT, BAD_USAGE), done.err)
                told = [line["path"] for line in done.of("file") if line["status"] == 0]
                self.assertEqual(sorted(told), sorted(str(self.folder / name) for name in made))
                if done.status == ALL_DONE:
                    self.assertEqual(self.sounds(made, "."), sounds)
                    self.assertEqual(placed(done), regions)
                else:
                    self.assertTrue(done.err)
                for name in made:
                    self.assertGreater((self.folder / name).stat().st_size, 0)
                    (self.folder / name).unlink()
            call += 1
        self.assertGreater(calls, MADE)

    def test_opens_that_find_the_table_full(self):
        self.sweep("open,create", errno.EMFILE)

    def test_opens_that_find_a_tired_disk(self):
        self.sweep("open,create", errno.EIO)

    def test_look_ups_that_find_a_tired_disk(self):
        self.sweep("look", errno.EIO)

    def test_names_that_appear_before_they_are_taken(self):
        """Another program takes the name between the look and the creation, with a file or with a link."""
        sounds, regions = self.undisturbed()
        for kind in ("file", "link"):
            for call in range(1, MADE + 1):
                with self.subTest(kind=kind, call=call):
                    before = picture(self.folder)
                    done, _ = self.failing("create", call, kind)
                    self.assert_status(done, ALL_DONE)
                    made = self.assert_kept(before, kind)
                    foreign = [name for name in made if (self.folder / name).is_symlink()
                               or (self.folder / name).read_bytes() == b"foreign"]
                    self.assertEqual(len(foreign), 1)
                    self.assertFalse((self.audio / "nowhere").exists())
                    made.remove(foreign[0])
                    self.assertEqual(self.sounds(made, "."), sounds)
                    self.assertEqual(placed(done), regions)
                    for name in made + foreign:
                        (self.folder / name).unlink()


if __name__ == "__main__":
    unittest.main()
