"""Tracks that no session has: told before the spot, with what saves the time."""

import unittest

from material import Adl, wave
from program import ALL_DONE, LEFT_OUT, ProgramTest, run

ATTEMPTS = 80


class RefusedTracks(ProgramTest):
    def setUp(self):
        super().setUp()
        (self.folder / "take.wav").write_bytes(wave(9600))

    def write(self, *tracks):
        adl = Adl().source(1, "a/take.wav")
        for number, track in enumerate(tracks):
            adl.cut(number, track=track, length=2)
        return adl.write(self.folder / "p.adl")

    def note(self, result):
        lines = [line for line in result.err.split("\n") if "will be refused" in line]
        self.assertLessEqual(len(lines), 1)
        return lines[0] if lines else None

    def test_are_told_before_the_spot_and_tried_all_the_same(self):
        result = run("spot", self.write(1, 40000, 40000, 32769), "--json")
        self.assert_status(result, LEFT_OUT)
        self.assertEqual(
            self.note(result),
            "velmora: 3 cuts on tracks 32769, 40000 will be refused, each after 80 attempts: a session counts at most "
            "32767 tracks from the project's lowest, 1. Skip such tracks to save the time.")
        self.assertLess(result.err.index("will be refused"), result.err.index("left out"))
        tried = result.of("region")
        for event in (1, 2, 3):
            attempts = [line for line in tried if line["event"] == event]
            self.assertEqual([line["attempt"] for line in attempts], list(range(1, ATTEMPTS + 1)))
            self.assertTrue(all(line["status"] != 0 for line in attempts))
            self.assertTrue(all(line == {**attempts[0], "attempt": line["attempt"]} for line in attempts))

    def test_skipping_them_saves_the_attempts(self):
        result = run("spot", self.write(1, 40000, 40001), "--json", "--skip-tracks", "40000-40001")
        self.assert_status(result, ALL_DONE)
        self.assertIsNone(self.note(result))
        self.assertEqual(len(result.of("region")), 1)

    def test_the_last_track_that_a_message_can_name(self):
        # 16 bits with a sign, from 1: index 32766 is track 32767. Counted from the first, index 32767 has its place too.
        for track, position, refused in ((32767, "project", False), (32768, "project", True),
                                         (32768, "first", False), (32769, "first", True)):
            with self.subTest(track=track, position=position):
                result = run("spot", self.write(1, track), "--position", position)
                self.assert_status(result, LEFT_OUT if refused else ALL_DONE)
                self.assertEqual(self.note(result) is not None, refused)

    def test_of_many_only_a_few_are_named(self):
        result = run("spot", self.write(1, *range(40000, 40010)))
        self.assertIn("10 cuts on tracks 40000, 40001, 40002, 40003, 40004 and 5 more will be refused", self.note(result))

    def test_a_report_tells_them(self):
        page = self.folder / "page.html"
        result = run("report", self.write(1, 40000), "-o", page)
        self.assertIsNotNone(self.note(result))
        self.assertIn("will be refused", page.read_text())


if __name__ == "__main__":
    unittest.main()
