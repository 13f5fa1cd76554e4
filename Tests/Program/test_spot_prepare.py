"""spot --prepare and spot --true-position."""

import json
import os
import unittest

import material
import prepare_material as m
from program import ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, LEFT_OUT, ProgramTest, environment, run

HOUR = 3600 * m.SECOND
STEREO = material.wave_of(m.packed(m.samples(10 * m.SECOND)), channels=2)


def positions(spot):
    return [material.decoded(line["message"])["SMSt"] for line in spot.of("region") if line["status"] == 0]


class TruePosition(ProgramTest):
    """Positions worked out by hand: the cut's own place, whatever the session's timebase makes of its digits."""

    def project(self, place, rate="/", mark=".", frames=25, hz=48000):
        per_frame = hz // frames
        begin, end = (material.stamp(at // per_frame, at % per_frame, mark, rate=rate, frames_per_second=frames)
                      for at in (place, place + 4800))
        path = self.folder / "Show.adl"
        (self.folder / "take.wav").write_bytes(material.wave_of(bytes(3 * 9600), rate=hz))
        start = material.stamp(0, 0, mark, rate=rate, frames_per_second=frames)
        path.write_text('<ADL>\n<SOURCE_INDEX>\n(Index) 1 (F) "a/take.wav" _ %s _ "n" N\n</SOURCE_INDEX>\n<EVENT_LIST>\n'
                        "(Entry) 1 (Cut) I 1 1 1 %s %s %s _\n</EVENT_LIST>\n</ADL>\n" % (start, start, begin, end))
        return path

    def test_as_the_project_has_it(self):
        rows = [
            ("off the frames", dict(place=HOUR + 123), [], HOUR + 123),
            ("at 96 kHz", dict(place=3600 * 96000, rate="*", hz=96000), [], 3600 * 96000),
            ("at 88.2 kHz", dict(place=3600 * 88200, rate="@", hz=88200), [], 3600 * 88200),
            ("pulled down", dict(place=HOUR, rate="-"), [], None),
            ("in a session of other frames", dict(place=HOUR + 1920), ["--session-frame-rate", "29.97df"], HOUR + 1920),
            ("in a session of another rate", dict(place=HOUR + 1920), ["--session-rate", "44100"], HOUR + 1920),
        ]
        for name, facts, options, expected in rows:
            with self.subTest(name):
                path = self.project(**facts)
                if expected is None:
                    expected = m.meant(path)["events"][0]["position"]
                moved = run("spot", path, "--json", *options)
                self.assertNotEqual(positions(moved), [expected])
                true = run("spot", path, "--json", "--true-position", *options)
                self.assert_status(true, ALL_DONE)
                self.assertEqual(positions(true), [expected])
                self.assertEqual(true.of("start")[0]["options"]["timelineOffset"], 0)

    def test_each_position_loses_its_compensation(self):
        path = self.project(HOUR + 123)
        rows = [
            (["--position", "project"], HOUR + 123),
            (["--position", "offset", "--offset", "-00:00:01:00"], HOUR + 123 - m.SECOND),
            (["--position", "start", "--start", "02:00:00:00"], 2 * HOUR),
            (["--position", "first"], 0),
        ]
        for options, expected in rows:
            with self.subTest(options=options):
                self.assertEqual(positions(run("spot", path, "--json", "--true-position", *options)), [expected])

    def test_nothing_changes_where_nothing_is_compensated(self):
        path = self.project(HOUR)
        plain, true = (run("spot", path, "--json", *options) for options in ([], ["--true-position"]))
        self.assertEqual(positions(plain), positions(true))

    def test_text_says_that_it_is_taken_back(self):
        told = run("spot", self.project(HOUR + 123), "--true-position")
        self.assert_status(told, ALL_DONE)
        self.assertIn("-123 samples away", told.err)
        self.assertIn("taken back", told.err)
        self.assertIn("moved by 0 samples", told.out)


class SpotPrepare(ProgramTest):
    def setUp(self):
        super().setUp()
        self.source = self.folder / "in"
        self.source.mkdir()
        (self.source / "my take.wav").write_bytes(STEREO)
        self.project = self.source / "Show.adl"
        # Does not load as it is; muted, escaped, stereo, and off the frames.
        self.project.write_text(m.project(
            sources=m.index(name="my%20take.wav"),
            events=m.cut(position=HOUR + 123, channels="1~2", tracks="1~2", more=f"(Infade) {m.stamp(1920)} LIN _ _ _") +
            m.cut(2, status="M")))
        self.before = m.checksums(self.source)

    def assert_spotted(self, spot, folder):
        self.assert_status(spot, ALL_DONE)
        self.assertEqual(positions(spot), [HOUR + 123, HOUR + 123])
        for line in spot.of("region"):
            path = material.decoded(line["message"])["path"]
            self.assertEqual(os.path.dirname(path), str(folder / "Audio"))
            self.assertTrue(os.path.exists(path))

    def test_into_a_folder(self):
        out = self.folder / "out"
        spot = run("spot", self.project, f"--prepare={out}", "--json")
        self.assert_spotted(spot, out)
        self.assertIn(str(out), spot.err)
        self.assertEqual(m.checksums(self.source), self.before)

    def test_folder_of_its_own_stays_beside_the_session(self):
        (self.folder / "sessions").mkdir()
        target = self.folder / "sessions/mix.json"
        for name in ("Show prepared", "Show prepared 2"):
            target.unlink(missing_ok=True)
            spot = run("spot", self.project, "--prepare", "--json", "--host", f"embedded:{target}")
            self.assert_spotted(spot, self.folder / "sessions" / name)
            self.assertIn(name, spot.err)
            regions = [region for track in json.loads(target.read_text())["tracks"] for region in track["regions"]]
            self.assertEqual(len(regions), 2)
            for region in regions:
                self.assertTrue(os.path.isfile(region["path"]), region["path"])
        self.assertEqual(m.checksums(self.source), self.before)

    def test_folder_of_its_own_leans_on_nothing(self):
        (self.source / "plain.wav").write_bytes(material.wave_of(m.packed(m.samples(m.SECOND))))
        self.project.write_text(m.project(sources=m.index(name="plain.wav"), events=m.cut(length=480)))
        before = m.checksums(self.source)
        temporary = self.folder / "tmp"
        temporary.mkdir()
        env = environment(TMPDIR=temporary)
        copies = self.folder / "copies"
        self.assert_status(run("spot", self.project, "--prepare", "--copy-to", copies, env=env), ALL_DONE)
        self.assertEqual(list(temporary.iterdir()), [])
        for _ in range(2):
            spot = run("spot", self.project, "--prepare", "--json", env=env)
            self.assert_status(spot, ALL_DONE)
            self.assertTrue(os.path.exists(material.decoded(spot.of("region")[0]["message"])["path"]))
        folders = [self.folder / "Show prepared", *temporary.iterdir()]
        self.assertEqual(len(folders), 3)
        for folder in folders:
            self.assertFalse((folder / "Audio/plain.wav").is_symlink(), folder)
            self.assertTrue((folder / "Audio/plain.wav").is_file(), folder)
        self.assertEqual(m.checksums(self.source), before)

    def test_failed_preparation_leaves_no_temporary_folder(self):
        temporary = self.folder / "tmp"
        temporary.mkdir()
        self.project.write_text("hello")
        self.assert_status(run("spot", self.project, "--prepare", env=environment(TMPDIR=temporary)), DOES_NOT_LOAD)
        self.assertEqual(list(temporary.iterdir()), [])
        self.assert_status(run("spot", self.project, "--prepare", env=environment(TMPDIR=self.folder / "none")), BAD_USAGE)

    def test_very_long_names(self):
        for length in (226, 240, 251):
            with self.subTest(length=length):
                project = self.source / ("n" * length + ".adl")
                project.write_text(self.project.read_text())
                copies = self.folder / f"{length}/copies"
                self.assert_status(run("spot", project, "--prepare", "--copy-to", copies), ALL_DONE)
                made = [path.name for path in copies.parent.iterdir() if path != copies]
                self.assertEqual(made, ["n" * min(length, 239) + " prepared"])
                self.assert_status(run("spot", project, "--prepare", env=environment(TMPDIR=self.folder)), ALL_DONE)

    def test_folders_for_copies_go_with_what_does_not_begin(self):
        full = self.folder / "full"
        full.mkdir()
        (full / "mine").touch()
        copies = self.folder / "new/deep"
        self.assert_bad_usage(run("spot", self.project, f"--prepare={full}", "--copy-to", copies), "--prepare")
        self.assertFalse(copies.parent.exists())
        no_adl = self.source / "None.adl"
        no_adl.write_text("hello")
        for project, options in ((no_adl, ["--prepare"]), (no_adl, [f"--prepare={self.folder / 'out'}"]), (self.project, [])):
            with self.subTest(options=options):
                self.assert_status(run("spot", project, *options, "--copy-to", copies), DOES_NOT_LOAD)
                self.assertFalse(copies.parent.exists())

    def test_other_options_keep_working(self):
        out = self.folder / "out"
        spot = run("spot", self.project, f"--prepare={out}", "--json", "--fades", "--gain", "--depth", "16",
                   "--only-tracks", "2", "--position", "start", "--start", "00:00:10:00")
        self.assert_status(spot, ALL_DONE)
        self.assertEqual(min(positions(spot)), 10 * m.SECOND)
        self.assertGreater(len(spot.of("file")), 0)
        self.assertEqual(m.checksums(self.source), self.before)

    def test_what_is_left_is_said_and_counts(self):
        self.project.write_text(m.project(sources=m.index(name="my%20take.wav"),
                                          events=m.cut(channels="1~2", tracks="1~2") + m.cut(2, source=9) +
                                          m.cut(3, source_in=90 * m.SECOND)))
        spot = run("spot", self.project, f"--prepare={self.folder / 'out'}", "--json")
        self.assert_status(spot, LEFT_OUT)
        self.assertIn("cut-outside-file", spot.err)
        self.assertIn("source-missing", spot.err)
        self.assertEqual(len(positions(spot)), 2)

    def test_options_of_prepare_go_with_it_alone(self):
        (self.folder / "takes").mkdir()
        os.rename(self.source / "my take.wav", self.folder / "takes/my take.wav")
        spot = run("spot", self.project, f"--prepare={self.folder / 'out'}", "--json", "--media", self.folder / "takes",
                   "--keep-off", "--copy-media", "--trust", "marks")
        self.assertEqual(len(positions(spot)), 3)
        for options in (["--media", self.folder], ["--trust", "header"], ["--encoding", "GBK"], ["--keep-off"],
                        ["--keep-stereo"], ["--copy-media"], ["--resample"]):
            with self.subTest(options=options):
                self.assert_bad_usage(run("spot", self.project, *options), options[0], "--prepare")
        self.assert_bad_usage(run("spot", self.project, "--prepare", "--media", self.folder / "none"), "--media")

    def test_statuses(self):
        full = self.folder / "full"
        full.mkdir()
        (full / "mine").touch()
        for value in (f"--prepare={full}", "--prepare="):
            told = run("spot", self.project, value)
            self.assert_status(told, BAD_USAGE)
            self.assertIn("--prepare", told.err)
        self.project.write_text("hello")
        self.assert_status(run("spot", self.project, f"--prepare={self.folder / 'out'}"), DOES_NOT_LOAD)
        self.assertFalse((self.folder / "out").exists())


if __name__ == "__main__":
    unittest.main()
