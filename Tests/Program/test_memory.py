"""Whatever allocation fails, the program says so and ends with its own status; what it made is whole, or told."""

import hashlib
import json
import os
import re
import shutil
import subprocess
import unittest
from collections import Counter

from holding import project
from program import ALL_DONE, DOES_NOT_LOAD, LEFT_OUT, PROGRAM, ProgramTest, environment

SHIM = os.environ.get("FAILING_MEMORY")
# Allocations tried for each command and kind of failure; with VELMORA_EVERY_ALLOCATION all of them.
TRIED = 10**9 if os.environ.get("VELMORA_EVERY_ALLOCATION") else 60


@unittest.skipUnless(SHIM, "no library to preload in this build")
class LackOfMemory(ProgramTest):
    def setUp(self):
        super().setUp()
        self.given = self.folder / "given"
        self.adl = project(self.given)
        self.work = self.folder / "work"
        self.count = self.folder / "count"

    def run_with(self, words, allocation, for_good):
        """In a fresh copy of the project's folder. Exit status, both streams, and what lies in the folder then."""
        shutil.rmtree(self.work, ignore_errors=True)
        shutil.copytree(self.given, self.work)
        env = environment(LD_PRELOAD=SHIM, FAILING_ALLOCATION=allocation, FAILING_COUNT=self.count,
                          FAILING_FOR_GOOD=1 if for_good else None)
        done = subprocess.run([PROGRAM, *words], cwd=self.work, env=env, stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=60)
        # A file that was not finished has a hidden name.
        held = {str(path.relative_to(self.work)): hashlib.sha256(path.read_bytes()).hexdigest()
                for path in self.work.rglob("*") if path.is_file() and "/.velmora-" not in str(path)}
        return done.returncode, done.stdout, done.stderr, held

    def sweep(self, words, bad, made=lambda held: held, shown=lambda out: out, lacks=lambda out: False):
        """`bad` are the statuses of a run that says what it lacks. Of a whole one what is `shown` and `made` is the
        same as of an undisturbed one, unless what is shown `lacks` something."""
        status, out, err, held = self.run_with(words, 0, False)
        self.assertEqual(status, ALL_DONE, err)
        allocations = int(self.count.read_text())
        self.assertGreater(allocations, 300)
        failed = 0
        for for_good in (False, True):
            for allocation in range(1, allocations + 1, max(allocations // TRIED, 1)):
                with self.subTest(words[0], allocation=allocation, for_good=for_good):
                    got, got_out, got_err, got_held = self.run_with(words, allocation, for_good)
                    self.assertIn(got, (ALL_DONE, *bad), got_err)
                    if got == ALL_DONE and not lacks(got_out):
                        self.assertTrue(shown(got_out) == shown(out), got_out[-1000:])
                        self.assertEqual(made(got_held), made(held))
                    elif got == ALL_DONE:
                        self.assertFalse(lacks(out))
                    else:
                        failed += 1
                        self.assertTrue(got_err or got_out != out, "nothing said")
                    for name in ("take.wav", "p.adl"):
                        self.assertEqual(got_held[name], held[name])
        self.assertGreater(failed, TRIED // 2)

    def test_info(self):
        # A source that does not open, for whatever reason, is shown as missing.
        self.sweep(["info", "p.adl"], [DOES_NOT_LOAD], lacks=lambda out: b"MISSING" in out or b"no wave file" in out)

    def test_info_json(self):
        self.sweep(["info", "--json", "p.adl"], [DOES_NOT_LOAD],
                   lacks=lambda out: not (json.loads(out)["sources"][0]["file"] or {}).get("valid"))

    def test_check(self):
        # A library that had no memory to read a file with makes it a finding.
        self.sweep(["check", "--jobs", "2", "p.adl"], [DOES_NOT_LOAD, LEFT_OUT])

    def test_prepare(self):
        self.sweep(["prepare", "--copy-media", "--into", "ready", "p.adl"], [DOES_NOT_LOAD, LEFT_OUT],
                   lambda held: {name: what for name, what in held.items() if name.startswith("ready/")},
                   # A file that a reader could not open is written anew, one that could not be copied is linked.
                   lacks=lambda out: b"[media-chunks]" in out or b"linked" in out)

    def test_spot(self):
        self.sweep(["spot", "p.adl", "--fades", "--gain", "--copy-to", "audio"], [LEFT_OUT, DOES_NOT_LOAD], sounds,
                   without_names)

    def test_spot_json(self):
        self.sweep(["spot", "p.adl", "--fades", "--gain", "--json", "--host", "embedded:session.json"],
                   [LEFT_OUT, DOES_NOT_LOAD], sounds, steps)


def sounds(held):
    """What wave files hold: one that could not be opened has the next number."""
    return Counter(what for name, what in held.items() if name.endswith(".wav"))


def without_names(out):
    return re.sub(rb"take[_A-Za-z]*(\.[0-9]+)?", b"take", out)


def steps(out):
    """What was placed where, less the names of files and what follows from them."""
    lines = [json.loads(line) for line in out.splitlines()]
    for line in lines:
        line.pop("path", None)
        if line["kind"] == "region":
            message = line.pop("message")
            line["where"] = message["parameters"][1:] + message["region"][:2]
    return lines


if __name__ == "__main__":
    unittest.main()
