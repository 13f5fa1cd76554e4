"""Runs of the program that make targets, and what they leave."""

import dataclasses
import pathlib
import random

import playing
from material import wave_of
from program import LEFT_OUT, ProgramTest, run, strict_json
from projects import Clock, write

SECOND = 48000
HOUR = 3600 * SECOND


@dataclasses.dataclass
class Spot:
    """One run with its targets."""

    run: object
    session: dict
    folder: pathlib.Path

    @property
    def regions(self):
        return playing.regions_of(self.session)

    def target(self, name):
        """What the run said of a target."""
        found = [line for line in self.run.of("target") if line["name"] == name]
        if len(found) != 1:
            raise AssertionError(f"{len(found)} lines tell of {name}: {found}")
        return found[0]


# By target: the option and the name of what it makes.
TARGETS = {"dawproject": ("--dawproject", "d.dawproject"), "otio": ("--otio", "o.otio"), "bounce": ("--bounce", "b.wav"),
           "bounce-tracks": ("--bounce-tracks", "tracks"), "report": ("--report", "r.html")}


def targets_in(folder, *names):
    return [word for name in names for word in (TARGETS[name][0], str(folder / TARGETS[name][1]))]


def noise(frames, bits=24, channels=1, rate=48000, seed=1):
    """A wave file in which no two places are alike."""
    return wave_of(random.Random(seed).randbytes(frames * channels * bits // 8), bits, rate, channels)


class TargetTest(ProgramTest):
    def project(self, files, *cuts, name="project", clock=Clock()):
        """A project of these cuts. `files` by name: their bytes."""
        folder = self.folder / name
        folder.mkdir()
        for file, content in files.items():
            (folder / file).write_bytes(content)
        return write(folder / "p.adl", list(files), cuts, clock)

    def spot(self, project, *options, into="out", targets=tuple(TARGETS), status=(0,), seconds=60):
        """Spots with every target, the session's JSON among them, into a new folder."""
        folder = self.folder / into
        folder.mkdir()
        result = run("spot", project, "--quiet", "--json", "--host", f"embedded:{folder / 's.json'}",
                     *targets_in(folder, *targets), *options, seconds=seconds)
        if result.status not in status:
            self.fail(f"exit status {result.status}: {result.err}\n{result.out[-2000:]}")
        return Spot(result, strict_json((folder / "s.json").read_text("utf-8")), folder)

    def assert_refused(self, spot, *names):
        """These targets were not made, for a reason that names their path, and the run says so."""
        self.assert_status(spot.run, LEFT_OUT)
        for name in names:
            told = spot.target(name)
            self.assertEqual((told["status"], told["path"]), (LEFT_OUT, str(spot.folder / TARGETS[name][1])))
            self.assertIn(told["path"], told["reason"])
            self.assertIn(told["reason"], spot.run.err)
            self.assertFalse((spot.folder / TARGETS[name][1]).exists())
