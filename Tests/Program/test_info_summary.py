"""`info --summary`: what a project holds, without its rows."""

import os
import re
import unittest

from material import HOUR, Adl, one_cut, stamp, wave
from program import ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, LEFT_OUT, ProgramTest, run
from test_terminal import on_terminal

HEAD = ('<VERSION>\n(ADL_ID) 1234\n</VERSION>\n<PROJECT>\n(PROJ_TITLE) "Title"\n</PROJECT>\n'
        "<SEQUENCE>\n(SEQ_SAMPLE_RATE) S48000\n</SEQUENCE>\n")


def many(sources, tracks, events, head=HEAD):
    """Sources of which the first is there, and cuts that take tracks and sources in turn."""
    adl = Adl(head)
    for index in range(1, sources + 1):
        adl.source(index, f"a/take{index}.wav")
    for number in range(events):
        adl.cut(number, source=number % sources + 1, track=number % tracks + 1, dest_in=HOUR + number)
    return adl


class SummaryTest(ProgramTest):
    def project_of(self, content):
        project = self.folder / "p.adl"
        project.write_bytes(content if isinstance(content, bytes) else content.bytes)
        return project

    def summary(self, project):
        result = run("info", project, "--summary")
        self.assert_status(result, ALL_DONE)
        return result

    def count_of(self, out, part):
        """The one number that stands alone on the part's line, beside times."""
        lines = [line for line in out.split("\n") if re.match(part + r"\b", line)]
        self.assertEqual(len(lines), 1, out)
        numbers = re.findall(r"(?<![\w:|.;,/?=#!-])-?\d+(?![\w:|;,/?=#!])", lines[0])
        self.assertTrue(numbers, lines[0])
        return int(numbers[0])

    def assert_counts(self, project):
        """The counts are those of the JSON, and of it alone."""
        told = run("info", project, "--json").json
        out = self.summary(project).out
        self.assertEqual([self.count_of(out, part) for part in ("Sources", "Tracks", "Events")],
                         [len(told["sources"]), max(told["trackCount"], 0), len(told["events"])], out)
        return out


class Content(SummaryTest):
    def setUp(self):
        super().setUp()
        (self.folder / "take1.wav").write_bytes(wave(10))

    def test_headerAndConstantsAreThoseOfTheWholeText(self):
        project = self.project_of(many(3, 7, 41))
        plain = run("info", project).out
        head = plain[:plain.index("\nSources")]
        for word in ("Project", "Constants", '"Title"', "S48000", "1234"):
            self.assertIn(word, head)
        self.assertTrue(self.summary(project).out.startswith(head), self.summary(project).out)

    def test_countsAreThoseOfTheJson(self):
        for sources, tracks, events in ((1, 1, 1), (3, 7, 41), (23, 2, 250), (5, 97, 1203)):
            with self.subTest((sources, tracks, events)):
                out = self.assert_counts(self.project_of(many(sources, tracks, events)))
                self.assertEqual([self.count_of(out, part) for part in ("Sources", "Tracks", "Events")],
                                 [sources, tracks, events])

    def test_countsOfOddProjects(self):
        cases = {
            "noEvents": b"<ADL>\n</ADL>\n",
            "noCuts": Adl().source(1, "a/b.wav").entry(1, "(Silence) 1 a b c"),
            "otherEvents": Adl().entry(1, "(Silence) 1 a b c").cut(2).entry(3, "(Gain) 1 2"),
            "farTracks": Adl().cut(1, track=0).cut(2, track=250000),
            "everyTrack": Adl().cut(1, track=-2147483648).cut(2, track=2147483640),
            "oneNumberTwice": Adl().cut(1).cut(1),
            "cutOff": Adl().cut(1).cut(2).bytes[:-20],
        }
        for name, content in cases.items():
            with self.subTest(name):
                project = self.project_of(content)
                if run("info", project, "--json").json["firstEvent"] is None:
                    # Without a cut tracks are a matter of wording, the rest is not.
                    out = self.summary(project).out
                    told = run("info", project, "--json").json
                    self.assertEqual([self.count_of(out, part) for part in ("Sources", "Events")],
                                     [len(told["sources"]), len(told["events"])])
                else:
                    self.assert_counts(project)

    def test_fileThatIsNoAdlHasNoCounts(self):
        for content in (b"", b" <ADL>\n</ADL>\n", b"noise"):
            with self.subTest(content):
                project = self.project_of(content)
                plain, short = run("info", project), self.summary(project)
                self.assertEqual((short.out_bytes, short.err_bytes), (plain.out_bytes, plain.err_bytes))
                self.assertIn("no ADL", short.out)

    def test_spanOfTheCuts(self):
        out = self.summary(self.project_of(many(1, 2, 30))).out
        start_text, end_text = stamp(HOUR)[:11], stamp(HOUR + 59)[:11]
        self.assertRegex(out, re.escape(start_text) + ".*" + re.escape(end_text))

    def test_noRows(self):
        out = self.summary(self.project_of(many(3, 7, 41))).out
        for word in ("take1.wav", "take2.wav", "0007", stamp(HOUR + 10)[:11]):
            self.assertNotIn(word, out)
        self.assertEqual([line for line in out.split("\n") if line != line.rstrip()], [])

    def test_messageLineAndHintAreThoseOfTheWholeText(self):
        cases = {"found": one_cut(self.folder / "found"), "missing": self.project_of(many(3, 7, 41))}
        for name, project in cases.items():
            with self.subTest(name):
                plain, short = run("info", project), self.summary(project)
                self.assertEqual(short.err_bytes, plain.err_bytes)
                self.assertEqual("Some files not found. Check event list." in short.out, name == "missing")
                if name == "missing":
                    self.assertEqual(short.out.rstrip("\n").split("\n")[-1], plain.out.rstrip("\n").split("\n")[-1])


class Failures(SummaryTest):
    def test_whatDoesNotLoadIsToldAsByTheWholeText(self):
        cases = {
            "values": b"<ADL>\n<EVENT_LIST>\n(Entry) 1\n (Cut) I 1 1 1 a b c\n</EVENT_LIST>\n</ADL>",
            "fade": Adl().cut(1, more="(Infade) _ L 0 0 0").bytes,
            "index": b"<ADL>\n<SOURCE_INDEX>\n(Index)\n</SOURCE_INDEX>\n",
        }
        for name, content in cases.items():
            with self.subTest(name):
                project = self.project_of(content)
                plain, short = run("info", project), run("info", project, "--summary")
                self.assert_status(short, DOES_NOT_LOAD)
                self.assertIn("File NG.", short.err)
                self.assertEqual((short.out_bytes, short.err_bytes), (plain.out_bytes, plain.err_bytes))

    def test_fileThatIsNotThere(self):
        for path in (self.folder / "gone.adl", self.folder):
            with self.subTest(path.name):
                plain, short = run("info", path), run("info", path, "--summary")
                self.assert_status(short, DOES_NOT_LOAD)
                self.assertEqual(short.err_bytes, plain.err_bytes)

    def test_summaryOfTheJsonIsBadUsage(self):
        project = self.project_of(Adl().cut(1))
        for arguments in (("--json", "--summary"), ("--summary", "--json")):
            with self.subTest(arguments):
                self.assert_bad_usage(run("info", project, *arguments), "--summary", "--json")

    def test_summaryBelongsToInfo(self):
        project = self.project_of(Adl().cut(1))
        for command in ("spot", "check"):
            with self.subTest(command):
                self.assert_bad_usage(run(command, project, "--summary"), "--summary")

    def test_standardOutputThatTakesNoMore(self):
        project = self.project_of(Adl().cut(1))
        with open("/dev/full", "wb") as full:
            result = run("info", project, "--summary", stdout=full)
        self.assert_status(result, LEFT_OUT)
        self.assertIn("standard output", result.err)

    def test_otherSideIsClosed(self):
        project = self.project_of(Adl().cut(1))
        reading, writing = os.pipe()
        os.close(reading)
        with os.fdopen(writing, "wb") as closed:
            self.assertNotIn(run("info", project, "--summary", stdout=closed).status, (ALL_DONE, BAD_USAGE))


class Sizes(SummaryTest):
    def test_hugeProjectIsAsShort(self):
        project = self.folder / "p.adl"
        with open(project, "wb") as file:
            file.write(b"<ADL>\n<EVENT_LIST>\n")
            for number in range(120000):
                file.write(b"(Entry) %d (Cut) I 1 1 %d 00|00:00:00/0000 01|00:00:00/0000 01|00:00:01/0000 _\n"
                           % (number, number % 64 + 1))
            file.write(b"</EVENT_LIST>\n</ADL>\n")
        out = self.summary(project).out
        self.assertEqual([self.count_of(out, part) for part in ("Sources", "Tracks", "Events")], [0, 64, 120000])
        self.assertLess(len(out), 8000)


class OddTexts(SummaryTest):
    ODD = (b'<ADL>\n<PROJECT>\n(PROJ_TITLE) "a\x1b[31mred\x07\x08\r\n\x9bx\x7f"\n(PROJ_NOTES) "\x8d\x8f \xff\xfe \x85\xa0"\n'
           b"</PROJECT>\n<EVENT_LIST>\n(Entry) 1 (Cut) I 1 1 1 \"\x1b]0;t\x07\" \"\x1b[2J\x9b1m\" \"\x1b[2J\x90\" _\n"
           b"</EVENT_LIST>\n</ADL>")

    def test_controlBytesNeverReachTheTerminal(self):
        project = self.project_of(self.ODD)
        self.assertNotRegex(self.summary(project).out, r"[\x00-\x09\x0b-\x1f\x7f\x80-\x9f]")
        status, out, _ = on_terminal("info", project, "--summary", NO_COLOR="1")
        self.assertEqual(status, ALL_DONE)
        self.assertNotRegex(out.decode("utf-8").replace("\r\n", "\n"), r"[\x00-\x09\x0b-\x1f\x7f\x80-\x9f]")

    def test_textsAreUtf8(self):
        title = "嵐の予報ソ表ｱ"
        project = self.project_of(b'<ADL>\n<PROJECT>\n(PROJ_TITLE) "' + title.encode("shift_jis") + b'"\n</PROJECT>\n</ADL>')
        self.assertIn(title, self.summary(project).out)


if __name__ == "__main__":
    unittest.main()
