"""One call after the other fails, in every task: nothing is lost, nothing is half-made, and what failed is named.

This is the share of the campaign that every test run has room for: each call of the cheap kinds in the tasks that have most
of the program in them. `campaign` does all of it.
"""

import subprocess
import tempfile
import unittest
from pathlib import Path

import driving
from failing import SHIM, Counts, variables
from faults import PROGRAM, environment
from program import SANITIZED, SLOWNESS
from tasks import BY_NAME

# By task: kinds of which every call is tried, with every error, and how far apart the others are.
EVERY = ["create", "list", "rename", "link", "remove", "folder", "change", "sync", "copy", "start", "pipe", "seek", "map"]
SHARE = {
    "spot": [*EVERY, "write"],
    "prepare": [*EVERY, "write"],
    "dawproject-whole": [*EVERY, "write", "open"],
    "otio": ["create", "write", "rename"],
    "bounce-tracks": [*EVERY, "write"],
    "report-alone": [*EVERY, "write"],
    "check": [*EVERY, "write", "open"],
    "check-folder": [*EVERY, "write", "open"],
    "ardour": ["rename", "remove", "list"],
}
APART = {"open": 5, "look": 11, "read": 29, "close": 9}


def why_not():
    """Why calls cannot be stopped here; empty if they can."""
    if not SHIM:
        return "the library to preload knows no other system than Linux on x86-64"
    with tempfile.TemporaryDirectory() as folder:
        count = Path(folder) / "count"
        done = subprocess.run([PROGRAM, "--version"], capture_output=True, env=environment(
            **variables("every", 0, 0, count)))
        return "" if done.returncode == 0 and Counts(count).of else done.stderr.decode("utf-8", "replace") or "no counts"


class Faults(unittest.TestCase):
    def setUp(self):
        reason = why_not()
        if reason:
            self.skipTest(reason)

    def drive(self, names, kinds_of, stride):
        counts = driving.counts_of(names)
        steps = [step for name in names for step in driving.steps_of(name, counts[name], kinds_of(name), stride)]
        found = []
        driving.run_all(steps, 1, lambda step, what: found.append(what) if what else None)
        self.assertGreater(len(steps), 50)
        if found:
            self.fail("\n".join([f"{len(found)} of {len(steps)} runs", *found]))

    def test_every_call_of_the_cheap_kinds(self):
        if SANITIZED:  # which looks for other things, and starts slowly
            self.drive(["spot", "prepare"], lambda name: ["create", "write", "folder"], {})
        else:
            self.drive(list(SHARE), SHARE.get, {})

    def test_calls_of_the_other_kinds_far_apart(self):
        apart = {kind: stride * SLOWNESS for kind, stride in APART.items()}
        self.drive(["spot", "prepare", "check-folder", "bounce", "report-alone"], lambda name: list(apart), apart)

    @unittest.skipIf(SANITIZED, "the sanitizer has requests for memory of its own")
    def test_requests_for_memory_far_apart(self):
        self.drive(list(BY_NAME), lambda name: ["memory"], {"memory": 127})


if __name__ == "__main__":
    unittest.main()
