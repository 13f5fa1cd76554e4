"""Where a source's file is looked for: rule by rule, folder by folder, never guessing between two."""

import os
import unittest

import audio
from field_tools import FieldTest, brief
from layout import PLACE, adl, cut, lay_out
from meaning import Reading, differences

TAKE = audio.wave(audio.noise(24000, seed="take"))
OTHER = audio.wave(audio.noise(24000, seed="other"))
SHORT = audio.wave(audio.noise(20000, seed="short"))
SHORTER = audio.wave(audio.noise(19000, seed="shorter"))


def referenced(reference, frames=24000, time_reference=0):
    return audio.wave(audio.noise(frames, seed=reference), head=audio.bext(time_reference, reference))


class Row:
    """The files, and what finds which: a rule and a path, or a code and None."""

    def __init__(self, name, files, rule, path=None, *, location=PLACE + "take.wav", reference="_", media=(),
                 start="00.00:00:00/0000"):
        self.name = name
        self.files = files
        self.rule = rule
        self.path = path
        self.location = location
        self.reference = reference
        self.media = media
        self.start = start


ROWS = [
    Row("as the system does it", {"take.wav": TAKE, "a/take.wav": OTHER}, "location", "take.wav"),
    Row("as the system does it, with a folder of the location", {"proj/take.wav": TAKE, "a/take.wav": OTHER}, "location",
        "proj/take.wav"),
    Row("directly beside the project", {"take.wav": TAKE}, "beside", "take.wav", location="take.wav"),
    Row("further down", {"a/b/take.wav": TAKE}, "name", "a/b/take.wav"),
    Row("media in the order given", {"../m2/take.wav": TAKE, "../m1/take.wav": OTHER}, "name", "../m1/take.wav",
        media=["../m1", "../m2"]),
    Row("own folder before media", {"a/take.wav": TAKE, "../m/take.wav": OTHER}, "name", "a/take.wav", media=["../m"]),
    Row("exact name in media before another case beside", {"TAKE.WAV": TAKE, "../m/take.wav": OTHER}, "name", "../m/take.wav",
        media=["../m"]),
    Row("another case", {"a/Take.WAV": TAKE}, "name-case", "a/Take.WAV"),
    Row("another case beyond ASCII", {"a/ÜBER.wav": TAKE}, "name-case", "a/ÜBER.wav", location=PLACE + "über.wav"),
    Row("another extension", {"a/take.aif": audio.aiff(audio.noise(24000, seed="take"))}, "stem", "a/take.aif"),
    Row("another extension of what is no audio", {"a/take.txt": b"notes"}, "media-missing"),
    Row("another extension, no audio beside audio", {"a/take.txt": b"notes", "a/take.bwf": TAKE}, "stem", "a/take.bwf"),
    Row("originator reference", {"a/renamed.wav": referenced("REF-A")}, "reference", "a/renamed.wav", reference="REF-A"),
    Row("another originator reference", {"a/renamed.wav": referenced("REF-B", 20000)}, "media-missing", reference="REF-A"),
    Row("length and time reference", {"a/renamed.wav": referenced("", 24000, 96000)}, "length", "a/renamed.wav",
        start="00.00:02:00/0000"),
    Row("length alone is not enough", {"a/renamed.wav": referenced("", 24000, 96001)}, "media-missing", start="00.00:02:00/0000"),
    Row("of two the one whose length fits", {"a/take.wav": SHORT, "b/take.wav": TAKE}, "name", "b/take.wav"),
    Row("of two the one whose reference fits", {"a/take.wav": referenced("REF-A", 20000), "b/take.wav": referenced("REF-B", 20000)},
        "name", "b/take.wav", reference="REF-B"),
    Row("two that both fit", {"a/take.wav": TAKE, "b/take.wav": OTHER}, "media-ambiguous"),
    Row("two of which none fits", {"a/take.wav": SHORT, "b/take.wav": SHORTER}, "media-ambiguous"),
    Row("an ambiguous step ends the search", {"a/take.wav": SHORT, "b/take.wav": SHORTER, "../m/take.wav": TAKE}, "media-ambiguous",
        media=["../m"]),
    Row("equal contents count as one", {"a/take.wav": TAKE, "b/take.wav": TAKE}, "name", "a/take.wav"),
    Row("one that contradicts in both is passed over", {"a/take.wav": referenced("REF-B", 20000), "../m/take.wav": TAKE}, "name",
        "../m/take.wav", reference="REF-A", media=["../m"]),
    Row("one that contradicts in its length alone is taken", {"a/take.wav": referenced("REF-A", 20000), "../m/take.wav": TAKE},
        "name", "a/take.wav", reference="REF-A", media=["../m"]),
    Row("a missing reference contradicts nothing", {"a/take.wav": SHORT, "../m/take.wav": TAKE}, "name", "a/take.wav",
        reference="REF-A", media=["../m"]),
    Row("escapes undone", {"a/my take.wav": TAKE}, "name", "a/my take.wav", location=PLACE + "my%20take.wav"),
    Row("escapes in UTF-8", {"a/Überfahrt.wav": TAKE}, "name", "a/Überfahrt.wav", location=PLACE + "%C3%9Cberfahrt.wav"),
    Row("a name that holds an escape", {"a/my%20take.wav": TAKE}, "name", "a/my%20take.wav", location=PLACE + "my%20take.wav"),
    Row("a percent sign that escapes nothing", {"a/100% take.wav": TAKE}, "name", "a/100% take.wav", location=PLACE + "100% take.wav"),
    Row("backslashes", {"a/take.wav": TAKE}, "name", "a/take.wav", location="D:\\proj\\take.wav"),
    Row("scheme in any case", {"a/take.wav": TAKE}, "name", "a/take.wav", location="uRl:FILE:///C:/take.wav"),
]


def _place(folder, path):
    return os.path.normpath(os.path.join(folder, path))


class Search(FieldTest):
    def lay(self, row, number):
        text = adl([f'(Index) 1 (F) "{row.location}" {row.reference} {row.start} 00.00:00:12/0960 "_" N'],
                   [cut(1, 1, 1, row.start, "01.00:00:00/0000", "01.00:00:01/0000")])
        return lay_out(self.folder / str(number) / "p", text, row.files)

    def assert_found(self, row, project):
        media = [_place(project.parent, folder) for folder in row.media]
        told = self.check(project, *[part for folder in media for part in ("--media", folder)])
        file = told["meant"]["sources"][0]["file"]
        if row.path is None:
            self.assertIsNone(file)
            self.assertIn(row.rule, [finding["code"] for finding in told["findings"]], brief(told["findings"]))
        else:
            self.assertIsNotNone(file, brief(told["findings"]))
            self.assertEqual((file["found"], os.path.realpath(file["path"])),
                             (row.rule, os.path.realpath(_place(project.parent, row.path))))
        mine = Reading(project, media).meant["sources"]
        if row.name != "equal contents count as one":
            self.assertEqual(differences(mine, told["meant"]["sources"]), [])

    def test_eachRow(self):
        self.assertEqual(len({row.name for row in ROWS}), len(ROWS))
        for number, row in enumerate(ROWS):
            with self.subTest(row.name):
                self.assert_found(row, self.lay(row, number))

    def test_pathAsWritten(self):
        (self.folder / "far").mkdir()
        (self.folder / "far" / "my take.wav").write_bytes(TAKE)
        for location in (f"file://localhost{self.folder}/far/my%20take.wav", f"URL:file://{self.folder}/far/my take.wav"):
            with self.subTest(location):
                row = Row("path", {}, "path", "../../far/my take.wav", location=location)
                self.assert_found(row, self.lay(row, location[:4]))

    def test_linksAreFollowedAndRoundsEnd(self):
        row = Row("links", {}, "name", "a/link/take.wav")
        project = self.lay(row, 1)
        (self.folder / "far").mkdir()
        (self.folder / "far" / "take.wav").write_bytes(TAKE)
        (self.folder / "far" / "round").symlink_to(self.folder)
        (project.parent / "a").mkdir()
        (project.parent / "a" / "link").symlink_to(self.folder / "far")
        self.assert_found(row, project)


if __name__ == "__main__":
    unittest.main()
