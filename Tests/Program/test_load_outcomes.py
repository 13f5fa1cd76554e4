"""What `velmora info` says of a project that does not load, and of one that loads with oddities: code, line, section
and label, whatever ends the lines of the file."""

import os
import unittest

from program import ALL_DONE, DOES_NOT_LOAD, ProgramTest, run

LINE_ENDS = {"LF": b"\n", "CR LF": b"\r\n", "CR": b"\r"}

HEAD = ["<ADL>", '/* a comment', "of two lines */", "<PROJECT>", '(PROJ_TITLE) "one', 'two"', "</PROJECT>"]
SOURCES = ["<SOURCE_INDEX>", "{}", "</SOURCE_INDEX>"]
EVENTS = ["<EVENT_LIST>", "{}", "</EVENT_LIST>"]
LINE = len(HEAD) + 2  # of what stands in the section

CUT = "(Cut) I 1 1 1 00|00:00:00/0000 01|00:00:00/0000 01|00:00:01/0000 _"
FADE = "00|00:00;01/0000"

# what stands in the section: text of several lines; code, line counted from the section's first, label
BAD_SOURCES = [
    ("(Index)", "index-missing", 0, "Index"),
    ("(Index) 1\n(F) a b c", "values-missing", 1, "F"),
    ("(Index) 1 (F) a b c d\n\n(T) 1 2 3 4", "values-missing", 2, "T"),
    ("(Index) 1 (F) a b c d\n(Index) 2\n(f) a", "values-missing", 2, "f"),
    ("(Index) 1 (F) a b c d\n(Index)\n2", None, 0, ""),
    ("(Index) 1 (F) a b c d\n(Index) (F) a b c d", "index-missing", 1, "Index"),
]
BAD_EVENTS = [
    ("(Entry)", "index-missing", 0, "Entry"),
    ("(Entry) 1 (Vid) a b c d\n(Entry)\n(Vid) a b c d", "index-missing", 1, "Entry"),
    ("(Entry) 1\n(Cut) I 1 1 1 a b c", "values-missing", 1, "Cut"),
    ("(Entry) 1\n(CUT)", "values-missing", 1, "CUT"),
    ("(Entry) 1\n(Silence) 1 2 3", "values-missing", 1, "Silence"),
    ("(Entry) 1\n(Aux) 1 2 3", "values-missing", 1, "Aux"),
    ("(Entry) 1\n(Vid) 1 2 3", "values-missing", 1, "Vid"),
    ("(Entry) 1\n(Alt) 1 2 3", "values-missing", 1, "Alt"),
    (f"(Entry) 1 {CUT}\n(Gain) 1", "values-missing", 1, "Gain"),
    (f"(Entry) 1 {CUT}\n(Xfade) 1 2 3 4 5", "values-missing", 1, "Xfade"),
    (f"(Entry) 1 {CUT}\n(Infade) {FADE} LIN 0 0", "values-missing", 1, "Infade"),
    (f"(Entry) 1 {CUT}\n(Outfade)", "values-missing", 1, "Outfade"),
    (f"(Entry) 1 {CUT}\n(Infade) 00|00:00:01/0000 LIN 0 0 0", "fade-separator", 1, "Infade"),
    (f"(Entry) 1 {CUT}\n(Infade) {FADE} LIN 0 0 0\n(Outfade) 00|00:00.01/0000 LIN 0 0 0", "fade-separator", 2,
     "Outfade"),
    (f"(Entry) 1 {CUT}\n(Infade) _ LIN 0 0 0", "fade-form", 1, "Infade"),
    (f"(Entry) 1 {CUT}\n(Outfade) 30|00:00;01/0000 LIN 0 0 0", "fade-form", 1, "Outfade"),
    (f"(Entry) 1 {CUT}\n(Outfade) 00|00:00;01/00 LIN 0 0 0", "fade-form", 1, "Outfade"),
    (f"(Entry) 1 {CUT}\n(Outfade) 00|00:00;01X0000 LIN 0 0 0", "fade-form", 1, "Outfade"),
]


class LoadOutcome(ProgramTest):
    def info(self, content, name="p.adl"):
        path = self.folder / name
        path.write_bytes(content)
        return run("info", path, "--json"), run("info", path)

    @staticmethod
    def lines(parts, text, end):
        whole = "\n".join(HEAD + [part.replace("{}", text) for part in parts] + ["</ADL>", ""])
        return whole.encode("latin-1").replace(b"\n", end)


class Failures(LoadOutcome):
    def check(self, parts, section, rows):
        for text, code, line, label in rows:
            for name, end in LINE_ENDS.items():
                with self.subTest(text=text, ends=name):
                    told, shown = self.info(self.lines(parts, text, end))
                    if code is None:
                        self.assert_status(told, ALL_DONE)
                        self.assertIsNone(told.json["failure"])
                        continue
                    self.assert_status(told, DOES_NOT_LOAD)
                    self.assertIs(told.json["ok"], False)
                    self.assertEqual(told.json["message"], "File NG.")
                    failure = told.json["failure"]
                    self.assertEqual(list(failure), ["code", "line", "section", "label", "reason"])
                    self.assertEqual((failure["code"], failure["line"], failure["section"], failure["label"]),
                                     (code, LINE + line, section, label))
                    self.assertTrue(failure["reason"])
                    self.assert_status(shown, DOES_NOT_LOAD)
                    everything = shown.out + shown.err
                    self.assertIn("File NG.", everything)
                    self.assertIn(str(LINE + line), everything)
                    self.assertIn(failure["reason"], everything)

    def test_sources(self):
        self.check(SOURCES, "SOURCE_INDEX", BAD_SOURCES)

    def test_events(self):
        self.check(EVENTS, "EVENT_LIST", BAD_EVENTS)

    def test_the_first_failure_counts(self):
        told, _ = self.info(b"<ADL>\n<EVENT_LIST>\n(Entry)\n</EVENT_LIST>\n<SOURCE_INDEX>\n(Index)\n</SOURCE_INDEX>\n</ADL>")
        self.assertEqual((told.json["failure"]["section"], told.json["failure"]["line"]), ("EVENT_LIST", 3))

    def test_names_stand_as_the_file_has_them(self):
        told, _ = self.info(b"<adl>\n<Event_List>\n(entry)\n</Event_List>\n</adl>")
        self.assertEqual((told.json["failure"]["section"], told.json["failure"]["label"]), ("Event_List", "entry"))

    def test_what_is_no_file(self):
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        loop = self.folder / "loop"
        loop.symlink_to("loop")
        rows = [(self.folder / "missing.adl", "file-not-opened"), (loop, "file-not-opened"),
                (self.folder, "file-not-regular"), (pipe, "file-not-regular"), ("/dev/null", "file-not-regular")]
        for path, code in rows:
            with self.subTest(str(path)):
                told = run("info", path, "--json")
                self.assert_status(told, DOES_NOT_LOAD)
                failure = told.json["failure"]
                self.assertEqual((failure["code"], failure["line"], failure["section"], failure["label"]),
                                 (code, 0, "", ""))
                self.assertTrue(failure["reason"])
                self.assertEqual(told.json["diagnostics"], [])
                self.assert_status(run("spot", path), DOES_NOT_LOAD)


class Oddities(LoadOutcome):
    def test_each_has_its_line(self):
        lines = [
            "<ADL>",
            "<VERSION>", "(ADL_ID) 1", "(FOO) 1", "(ADL_UID)", "</VERSION>",
            "<SYSTEM>", "(PROJ_TITLE) x", "</SYSTEM>",
            "<SOURCE_INDEX>", "(X) 1", "(Y)", '(Index) 1 (F) "a/b.wav" _ c d (Z) 1', "</SOURCE_INDEX>",
            "<EVENT_LIST>", "(Rem) early", "(Entry) 1", "(Vid) a b c d (What) 1", "(Cut) 1", "(Rem) fine",
            "(Entry) 2 (Alt) a b c d", "</EVENT_LIST>",
            "<OTHERS>", "(Any) thing", "</OTHERS>", "</ADL>"]
        expected = [
            ("unknown-identifier", 4, "Found unknown identifier: FOO in section VERSION"),
            ("unknown-identifier", 5, "Found unknown identifier: ADL_UID in section VERSION"),
            ("unknown-identifier", 8, "Found unknown identifier: PROJ_TITLE in section SYSTEM"),
            ("unexpected-entry", 11, "Found unexpected entry: X"),
            ("unexpected-entry", 12, "Found unexpected entry: Y"),
            ("unexpected-entry", 16, "Found unexpected entry: Rem"),
            ("unexpected-label", 18, "Encountered unexpected label: What"),
            ("unexpected-label", 19, "Encountered unexpected label: Cut"),
        ]
        for name, end in LINE_ENDS.items():
            with self.subTest(name):
                told, shown = self.info(end.join(line.encode() for line in lines) + end)
                self.assert_status(told, ALL_DONE)
                self.assertIsNone(told.json["failure"])
                self.assertEqual([list(each) for each in told.json["diagnostics"]], [["code", "line", "text"]] * 8)
                self.assertEqual([tuple(each.values()) for each in told.json["diagnostics"]], expected)
                for one in (told, shown):
                    lines_of_reader = [line for line in one.err.splitlines() if line.startswith(("Found", "Enc"))]
                    self.assertEqual(lines_of_reader, [text for _, _, text in expected])

    def test_a_failed_load_tells_what_came_before(self):
        told, _ = self.info(b"<ADL>\n<VERSION>\n(FOO) 1\n</VERSION>\n<EVENT_LIST>\n(Bar)\n(Entry)\n</EVENT_LIST>\n</ADL>\n")
        self.assertEqual([(each["code"], each["line"]) for each in told.json["diagnostics"]],
                         [("unknown-identifier", 3), ("unexpected-entry", 6)])
        self.assertEqual(told.json["failure"]["line"], 7)

    def test_bytes_of_no_encoding_are_told_in_utf_8(self):
        told, _ = self.info(b"<ADL> <VERSION> (\x8e\xe1\xff\x82) 1 </VERSION> </ADL>")
        self.assertEqual(told.json["ok"], True)  # the JSON itself is strictly read

    def test_lines_are_counted_in_the_file(self):
        """Also across what the reader cuts up: quotes, counted values and comments with line ends in them."""
        text = b'<ADL>\n<PROJECT>\n(PROJ_TITLE)12 a\nb\nc\nd\ne\nf\n(PROJ_NOTES) "x\ny" (FOO) 1\n</PROJECT></ADL>'
        told, _ = self.info(text)
        self.assertEqual([(each["code"], each["line"]) for each in told.json["diagnostics"]],
                         [("unknown-identifier", text[:text.index(b"(FOO)")].count(b"\n") + 1)])


class NoAdl(LoadOutcome):
    def test_it_is_said_that_there_is_none(self):
        rows = {"nothing": b"", "plain text": b"Dear Ada,\n\nthe foghorn is too loud.\n", "a blank first": b" <ADL>\n</ADL>\n",
                "a line end first": b"\n<ADL>\n</ADL>\n", "a byte order mark": b"\xef\xbb\xbf<ADL>\n</ADL>\n",
                "a comment first": b"/* x */ <ADL>\n</ADL>\n", "a wave file": b"RIFF\x24\0\0\0WAVEfmt ", "NULs": b"\0" * 100,
                "an open tag": b"<ADL", "UTF-16": "<ADL>\n</ADL>".encode("utf-16")}
        for name, content in rows.items():
            with self.subTest(name):
                told, shown = self.info(content)
                self.assert_status(told, ALL_DONE)
                self.assertIs(told.json["ok"], True)
                self.assertIsNone(told.json["failure"])
                self.assertEqual([(each["code"], each["line"]) for each in told.json["diagnostics"]], [("no-adl", 0)])
                self.assertEqual((told.json["sections"], told.json["events"], told.json["firstEvent"]), ([], [], None))
                self.assert_status(shown, ALL_DONE)
                self.assertRegex(shown.out + shown.err, r"\bADL\b")
                self.assertRegex((shown.out + shown.err).lower(), r"\bno\b|\bnot\b")
                self.assertNotRegex(shown.out, r"2147483647|2147483648")  # the limits of tracks that are not there

    def test_an_empty_adl_is_one(self):
        for content in (b"<ADL>", b"<adl></adl>", b"<ADL>xyz\n</ADL>", b"<ADL>\n<VERSION>\n</VERSION>\n</ADL>"):
            with self.subTest(content):
                told, _ = self.info(content)
                self.assertEqual(told.json["diagnostics"], [])


if __name__ == "__main__":
    unittest.main()
