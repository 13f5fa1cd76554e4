"""Random projects with a known meaning: clean ones are called clean and spot whole; dirty ones mean the same once prepared.

As a program: test_dirt.py --seeds 1-5000 runs that many of each, with VELMORA naming the program.
"""

import shutil
import sys
import unittest

from dirt import Project
from field_tools import FieldTest, brief, harmful, session_regions
from hand import Hand
from known import placed
from layout import checksums, lay_out
from meaning import Reading, differences
from program import ALL_DONE, run

SEEDS = range(1, 41)


class RandomProjects(FieldTest):
    def lay(self, seed, dirty):
        project = Project(seed, dirty)
        hand = Hand(project)
        path = lay_out(self.folder / "source", hand.text, hand.files)
        return project, hand, path

    def clear(self):
        for item in self.folder.iterdir():
            shutil.rmtree(item) if item.is_dir() else item.unlink()

    def clean(self, seed):
        project, _, path = self.lay(seed, dirty=False)
        told = self.assert_clean(path)
        self.assert_meant(project, told, Reading(path))
        self.assert_spots(project, path)
        self.clear()

    def dirty(self, seed):
        project, hand, path = self.lay(seed, dirty=True)
        before = checksums(self.folder / "source")
        media = [part for folder in hand.media for part in ("--media", self.folder / "source" / folder)]
        told = self.check(path, *media)
        self.assert_meant(project, told, Reading(path, [self.folder / "source" / folder for folder in hand.media]))
        into = self.folder / "prepared"
        result = self.prepare(path, into, *media)
        self.assertEqual({f["code"] for f in harmful(result["left"])} - {"rate-compensated"}, set(), brief(result["left"]))
        again = self.check(into / "p.adl")
        self.assertEqual({f["code"] for f in harmful(again["findings"])} - {"rate-compensated"}, set(), brief(again["findings"]))
        self.assert_prepared(project, into / "p.adl")
        second = self.prepare(into / "p.adl", self.folder / "second")
        self.assertEqual((self.folder / "second" / "p.adl").read_bytes(), (into / "p.adl").read_bytes(), second["changes"])
        if seed % 3 == 0 or "off grid" in project.habits or "high rate" in project.habits:
            self.assert_spots(project, into / "p.adl", "--true-position")
        self.assertEqual(checksums(self.folder / "source"), before)
        if told["verdict"] == "clean":
            # Not every habit harms. Then it must arrive as it is. A spot makes files beside its sources.
            self.assert_spots(project, path)
        self.clear()

    def assert_meant(self, project, told, reading):
        self.assertEqual(told["meant"]["sampleRate"], project.rate)
        self.assertEqual(told["encoding"], reading.encoding)
        events = [event for event in told["meant"]["events"] if event["kind"] == "cut"]
        for cut in project.cuts:
            wanted = cut.told
            del wanted["entry"]
            self.assertTrue(any(not differences(wanted, event) for event in events), f"{wanted} is not told")
        mine, theirs = reading.meant, told["meant"]
        self.assertEqual(differences(_by_index(mine["sources"]), _by_index(theirs["sources"]), "sources"), [])
        # Events without a number of their own stand anywhere.
        for event in mine["events"]:
            self.assertTrue(any(not differences(event, other) for other in theirs["events"]), f"{event} is not told")
        self.assertEqual(len(mine["events"]), len(theirs["events"]))

    def assert_prepared(self, project, path):
        mine = sorted(placed(project.cuts, project.sounds), key=lambda known: (str(known.key), known.sound.tobytes()))
        theirs = [(cut, cut.sound) for cut in self.prepared_cuts(path)]
        for cut, (rate, sound) in theirs:
            self.assertEqual((rate, len(sound)), (project.rate, 1), cut.path)
        theirs.sort(key=lambda pair: (str(_key(pair[0])), pair[1][1][0].tobytes()))
        self.assertEqual([known.key for known in mine], [_key(cut) for cut, _ in theirs])
        for known, (cut, (_, sound)) in zip(mine, theirs):
            self.assertEqual(sound[0], known.sound, f"entry {cut.entry}: {cut.path} at {cut.offset}")

    def assert_spots(self, project, path, *options):
        session = self.folder / "session.json"
        self.assert_status(run("spot", path, "--quiet", "--host", f"embedded:{session}", *options), ALL_DONE)
        cuts = placed(project.cuts, project.sounds)
        lowest = min(cut.track for cut in cuts)
        mine = sorted((cut.track - lowest, cut.position, cut.end - cut.position) for cut in cuts)
        theirs = sorted((track, position, stop - start) for track, position, start, stop, _ in session_regions(session))
        self.assertEqual(mine, theirs)


def _key(cut):
    return cut.track, cut.position, cut.end, cut.fade_in, cut.fade_out, cut.gain


def _by_index(sources):
    return sorted(sources, key=lambda source: source["index"])


def _test(kind, seed):
    def hold(self):
        with self.subTest(seed=seed, habits=sorted(Project(seed, kind == "dirty").habits)):
            getattr(self, kind)(seed)
    return hold


def add_tests(seeds):
    for seed in seeds:
        for kind in ("clean", "dirty"):
            setattr(RandomProjects, f"test_{kind}{seed:05d}", _test(kind, seed))


if __name__ == "__main__":
    if len(sys.argv) > 2 and sys.argv[1] == "--seeds":
        first, last = sys.argv[2].split("-")
        SEEDS = range(int(first), int(last) + 1)
        del sys.argv[1:3]
    add_tests(SEEDS)
    unittest.main()
else:
    add_tests(SEEDS)
