"""Runs check, prepare, info and spot, and compares what they say with what is known."""

import json

from audio import plain_sound
from program import ALL_DONE, LEFT_OUT, ProgramTest, run
from reference import timecode

UNREADABLE = 2
HARMFUL = ("fails", "misplaced", "lost")
FINDING_KEYS = {"code", "severity", "line", "column", "entry", "source", "text", "effect", "remedy"}
CHECK_KEYS = {"path", "verdict", "counts", "encoding", "findings", "meant"}
PREPARE_KEYS = {"project", "changes", "files", "left", "exit"}


def harmful(findings):
    return [finding for finding in findings if finding["severity"] in HARMFUL]


def brief(findings):
    """Findings as lines, for a failure's text."""
    return "\n".join(f"  {f['severity']} {f['code']} line {f['line']}:{f['column']} entry {f['entry']} source {f['source']}: "
                     f"{f['text']}" for f in findings)


class FieldTest(ProgramTest):
    def check(self, project, *options, status=None):
        """The object that `check --json` tells of one project, its form tested."""
        result = run("check", project, "--json", *options)
        self.assertEqual(len(result.lines), 1, result.err)
        told = result.lines[0]
        self.assertEqual(set(told), CHECK_KEYS)
        counts = dict.fromkeys(("fails", "misplaced", "lost", "note"), 0)
        for finding in told["findings"]:
            self.assertEqual(set(finding), FINDING_KEYS)
            counts[finding["severity"]] += 1
            for words in ("text", "effect", "remedy"):
                self.assertTrue(finding[words].strip(), f"{finding['code']} has no {words}")
        self.assertEqual(told["counts"], counts)
        verdict = told["verdict"]
        if verdict != "unreadable":
            self.assertEqual(verdict, "loses" if harmful(told["findings"]) else "clean", brief(told["findings"]))
        else:
            self.assertIsNone(told["meant"])
        expected = {"clean": ALL_DONE, "loses": LEFT_OUT, "unreadable": UNREADABLE}[verdict]
        self.assert_status(result, expected if status is None else status)
        return told

    def assert_clean(self, project, *options):
        told = self.check(project, *options, status=None)
        self.assertEqual(told["verdict"], "clean", brief(told["findings"]))
        return told

    def prepare(self, project, into, *options, status=ALL_DONE):
        result = run("prepare", project, "--into", into, "--json", *options)
        self.assert_status(result, status)
        told = result.json
        self.assertEqual(set(told), PREPARE_KEYS)
        self.assertEqual(told["exit"], status)
        return told

    def prepared_cuts(self, prepared_adl):
        """What the system reads in a prepared project: a list of PlacedCut in list order."""
        result = run("info", prepared_adl, "--json")
        self.assert_status(result, ALL_DONE)
        told = result.json
        self.assertTrue(told["ok"])
        self.assertEqual(told["diagnostics"], [])
        files = {source["index"]: source for source in told["sources"]}
        return [PlacedCut(event, files) for event in told["events"] if (event["label"] or "").lower() == "cut"]


def samples(text):
    return timecode.to_samples(text.encode("latin-1"))


class PlacedCut:
    """A cut as the system takes it: all numbers in samples, the sound as the wave file holds it."""

    def __init__(self, event, sources):
        edit = event["edit"]
        self.entry = event["entryNumber"]
        self.track = edit["destChannel"]
        self.position = samples(edit["destIn"])
        self.end = samples(edit["destOut"])
        start = event["sourceStart"]
        self.offset = samples(edit["sourceIn"]) - samples(start) if start else None
        self.path = event["sourceFile"]
        self.rates = {timecode.sample_rate(edit[key].encode("latin-1")) for key in ("sourceIn", "destIn", "destOut")}
        self.fade_in = self._fade(event["infade"])
        self.fade_out = self._fade(event["outfade"])
        self.gain = event["gain"]["gainDb"] if event["gain"] else None
        self.dest_in_text = edit["destIn"]

    @staticmethod
    def _fade(fade):
        return samples(fade["length"]) if fade else 0

    @property
    def sound(self):
        """Of the stretch that the cut plays, one array for each channel."""
        with open(self.path, "rb") as file:
            content = file.read()
        rate, channels = plain_sound(content)
        return rate, [channel[self.offset:self.offset + self.end - self.position] for channel in channels]


def session_regions(path):
    """The regions of a session file, as (track, position, start, stop, path), in order of arrival."""
    with open(path, encoding="utf-8") as file:
        told = json.load(file)
    regions = [(region["index"], track["track"], region["position"], region["start"], region["stop"], region["path"])
               for track in told["tracks"] for region in track["regions"]]
    return [region[1:] for region in sorted(regions)]
