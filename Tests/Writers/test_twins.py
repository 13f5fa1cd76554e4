"""Every code of check on the smallest project that has it, and its twin that has not."""

import unittest

from field_tools import HARMFUL, FieldTest, brief, harmful
from layout import lay_out
from meaning import Reading, differences
from program import ALL_DONE, run
from tokens import column_of, line_of
from twins import ROWS, Side

# What the table of findings promises.
CODES = {
    "not-an-adl", "fade-separator", "fade-form", "values-missing", "index-missing", "index-name", "index-twice", "stray-text",
    "entry-twice", "text-cut-off", "file-start-missing", "source-missing", "media-missing", "media-ambiguous",
    "media-elsewhere", "location-form", "media-kind", "media-chunks", "media-broken", "media-rate", "cut-outside-file",
    "channels", "event-off", "event-error", "event-empty", "fade-curve", "fade-rendered", "xfade-label", "fade-overlong",
    "gain-channels", "rate-mixed", "marks-differ", "rate-compensated", "text-encoding", "names-unused", "tracks-unused",
    "automation-unused", "markers-unused", "offset-unused"}


class TwinTest(FieldTest):
    def lay(self, side, name):
        return lay_out(self.folder / name, side.text, side.files)

    def of_code(self, told, row):
        return [finding for finding in told["findings"] if finding["code"] == row.code and finding["severity"] == row.severity]

    def test_theCleanProjectIsClean(self):
        told = self.assert_clean(self.lay(Side(), "clean"))
        self.assertEqual(told["findings"], [])

    def test_everyCodeHasItsTwins(self):
        self.assertEqual({row.code for row in ROWS}, CODES)
        self.assertEqual(len({row.name for row in ROWS}), len(ROWS))

    def test_theOneHasItAndTheOtherHasNot(self):
        for number, row in enumerate(ROWS):
            with self.subTest(row.name, code=row.code):
                dirty = self.lay(row.dirty, f"{number}-dirty")
                told = self.check(dirty)
                found = self.of_code(told, row)
                self.assertTrue(found, f"{row.code} ({row.severity}) is not told:\n{brief(told['findings'])}")
                if row.count is not None:
                    self.assertEqual(len(found), row.count, brief(told["findings"]))
                self.assert_place(row, found[0])
                others = {finding["code"] for finding in harmful(told["findings"])} - {row.code}
                self.assertEqual(others, row.beside, brief(told["findings"]))
                if told["meant"] is not None:
                    self.assertEqual(differences(Reading(dirty).meant, told["meant"]), [])
                clean = self.check(self.lay(row.clean, f"{number}-clean"))
                self.assertEqual(self.of_code(clean, row), [], "told of the twin too")

    def assert_place(self, row, finding):
        if row.at == 0:
            self.assertEqual((finding["line"], finding["column"]), (0, 0))
        elif row.at is not None:
            needle = row.at if isinstance(row.at, bytes) else row.at.encode("utf-8")
            self.assertEqual(row.dirty.text.count(needle), 1, f"{needle!r} does not stand in the text once")
            at = row.dirty.text.index(needle)
            self.assertEqual((finding["line"], finding["column"]),
                             (line_of(row.dirty.text, at), column_of(row.dirty.text, at)), brief([finding]))
        if row.entry is not None:
            self.assertEqual(finding["entry"], row.entry, brief([finding]))
        if row.source is not None:
            self.assertEqual(finding["source"], row.source, brief([finding]))

    def test_whatCheckCallsCleanSpotsWhole(self):
        """Every twin that is clean: each of its cuts as one region of its length."""
        for number, row in enumerate(ROWS):
            with self.subTest(row.name):
                project = self.lay(row.clean, f"{number}-spot")
                if self.check(project)["verdict"] == "clean":
                    self.assert_spots_whole(project)

    def assert_spots_whole(self, project):
        result = run("spot", project, "--json")
        self.assert_status(result, ALL_DONE)
        cuts = [event for event in Reading(project).events if event["kind"] == "cut"]
        self.assertEqual(len([region for region in result.of("region") if region["status"] == 0]), len(cuts))


if __name__ == "__main__":
    unittest.main()
