"""The one object that `info --json` prints."""

import json
import random
import unittest

from material import HOUR, Adl, fade, one_cut, stamp, wave
from program import ALL_DONE, DOES_NOT_LOAD, ProgramTest, run

CONSTANTS = ["ADL_ID", "ADL_UID", "VER_ADL_VERSION", "VER_CREATOR", "VER_CRTR",
             "PROJ_TITLE", "PROJ_ORIGINATOR", "PROJ_CREATE_DATE", "PROJ_NOTES", "PROJ_CLIENT_DATA",
             "SYS_SRC_OFFSET", "SYS_BIT_DEPTH", "SYS_AUD_CODEC", "SYS_XFADE_LEN", "SYS_GAIN",
             "SEQ_TITLE", "SEQ_DESCRIPT", "SEQ_SAMPLE_RATE", "SEQ_FRAME_RATE", "SEQ_ADL_LEVEL",
             "SEQ_CLEAN", "SEQ_SORT", "SEQ_MULTICHAN", "SEQ_DEST_START"]
KEYS = ["path", "folder", "ok", "message", "diagnostics", "failure", "constants", "sources", "events", "sections",
        "refLists", "comments", "firstEvent", "lastEvent", "minTrack", "maxTrack", "trackCount", "totalStart", "totalEnd", "tables"]
SOURCE_KEYS = ["index", "f", "t", "file"]
FILE_KEYS = ["path", "valid", "sampleRate", "channels", "bitsPerSample", "formatTag", "frames"]
EVENT_KEYS = ["index", "entryNumber", "label", "edit", "infade", "outfade", "xfade", "gain", "sourceFile",
              "sourceStart", "sourceLength"]
EDIT_KEYS = {
    "cut": {"sourceType", "sourceIn", "destIn", "destOut", "cutTail", "sourceIndex", "sourceChannel", "destChannel",
            "cutMark1", "cutMark2"},
    "silence": {"silenceText1", "silenceText2", "silenceText3", "silenceNumber", "silenceMark"},
    "vid": {"vidText0", "vidText1", "vidText2", "vidText3"},
    "alt": {"altType", "altTime", "altIndex", "altChannel", "altMark"},
}
FADE_KEYS = {"present", "length", "fadeText1", "fadeText5", "fadeText7", "fadeNumber6", "fadeParam2", "fadeParam3",
             "fadeParam4"}
XFADE_KEYS = {"present", "xfadeText1", "xfadeText2", "xfadeText3", "xfadeText5", "xfadeNumber0", "xfadeNumber4"}
GAIN_KEYS = {"present", "gainNumber", "gainDb"}
TABLES = {"ProjectInfomationTable": {"Title", "Data"},
          "TrackTable": {"Space", "Track", "Type", "Start", "End"},
          "EventListTable": {"Space", "Type", "Event", "Ch", "In", "Out", "Track", "Name"},
          "numberOfTracksTable": {"ItemName", "Number"}}


class InfoTest(ProgramTest):
    def info(self, project, status=ALL_DONE):
        result = run("info", project, "--json")
        self.assert_status(result, status)
        self.assertEqual(result.out.count("\n"), 1, "one object, one line")
        self.check_form(result.json)
        return result.json

    def info_of(self, adl, status=ALL_DONE):
        project = self.folder / "p.adl"
        project.write_bytes(adl if isinstance(adl, bytes) else adl.bytes)
        return self.info(project, status)

    def check_form(self, told):
        """What holds of every object, whatever the project."""
        self.assertEqual(list(told), KEYS)
        self.assertEqual(list(told["constants"]), CONSTANTS)
        self.check_types(told, {"path": str, "folder": str, "ok": bool, "message": str, "diagnostics": list,
                                "sources": list, "events": list, "sections": list, "refLists": list, "comments": list,
                                "minTrack": int, "maxTrack": int, "trackCount": int, "tables": dict})
        for text in [*told["constants"].values(), told["firstEvent"], told["lastEvent"], *told["comments"]]:
            self.assertIsInstance(text, (str, type(None)))
        for diagnostic in told["diagnostics"]:
            self.assertEqual(list(diagnostic), ["code", "line", "text"])
            self.check_types(diagnostic, {"code": str, "line": int, "text": str})
        for source in told["sources"]:
            self.assertEqual(list(source), SOURCE_KEYS)
            self.assertEqual((len(source["f"]), len(source["t"])), (6, 5))
            if source["file"] is not None:
                self.assertEqual(list(source["file"]), FILE_KEYS)
                self.check_types(source["file"], {"path": str, "valid": bool, "sampleRate": int, "channels": int,
                                                  "bitsPerSample": int, "formatTag": int, "frames": int})
        self.assertEqual([source["index"] for source in told["sources"]],
                         sorted(source["index"] for source in told["sources"]))
        for index, event in enumerate(told["events"]):
            self.assertEqual(list(event), EVENT_KEYS)
            self.assertEqual(event["index"], index)
            self.check_event(event)
        for section in told["sections"] + [section for ref in told["refLists"] for section in ref]:
            self.assertEqual(list(section), ["name", "entries"])
            for entry in section["entries"]:
                self.assertEqual(list(entry), ["label", "values"])
        self.assertEqual(list(told["tables"]), list(TABLES))
        for name, rows in told["tables"].items():
            self.assertLessEqual(len(rows), 100000)
            for row in rows:
                self.assertEqual(set(row), TABLES[name])

    def check_event(self, event):
        if event["edit"] is not None:
            self.assertEqual(list(event["edit"])[0], "kind")
            self.assertEqual(set(event["edit"]) - {"kind"}, EDIT_KEYS[event["edit"]["kind"]])
        for key, members in [("infade", FADE_KEYS), ("outfade", FADE_KEYS), ("xfade", XFADE_KEYS),
                             ("gain", GAIN_KEYS)]:
            if event[key] is not None:
                self.assertEqual(set(event[key]), members, key)

    def check_types(self, told, types):
        for key, kind in types.items():
            self.assertIs(type(told[key]), kind, key)


class Form(InfoTest):
    def test_everyFieldOfEveryKindOfEvent(self):
        (self.folder / "take.wav").write_bytes(wave(10))
        adl = (Adl().source(1, "URL:file://localhost/a/take.wav", stamp(3), stamp(4))
               .cut(1, track=2, source_in=5, dest_in=6, length=7,
                    more=f'\n(Infade) {fade(2)} LIN 1.5 -2 3e2 v5 6 v7\n(Outfade) {fade(1)} EXP 0 0 0'
                         '\n(Xfade) 1 b c d 5 f\n(Gain) 9 -6.25\n(Rem) NAME "x"')
               .entry(2, "(Silence) 4 a b c").entry(3, "(aux) 5 a b c").entry(4, "(VID) a b c d")
               .entry(5, "(Alt) I 1 7 t").entry(6, "(Gain) 1 2"))
        cut, silence, aux, vid, alt, bare = self.info_of(adl)["events"]
        self.assertEqual(cut, {
            "index": 0, "entryNumber": 1, "label": "Cut",
            "edit": {"kind": "cut", "sourceType": "I", "sourceIn": stamp(5), "destIn": stamp(6), "destOut": stamp(13),
                     "cutTail": "_", "sourceIndex": 1, "sourceChannel": 1, "destChannel": 2,
                     "cutMark1": 1, "cutMark2": 1},
            "infade": {"present": True, "length": fade(2), "fadeText1": "LIN", "fadeText5": "v5", "fadeText7": "v7",
                       "fadeNumber6": 6, "fadeParam2": 1.5, "fadeParam3": -2, "fadeParam4": 300},
            "outfade": {"present": True, "length": fade(1), "fadeText1": "EXP", "fadeText5": None, "fadeText7": None,
                        "fadeNumber6": 0, "fadeParam2": 0, "fadeParam3": 0, "fadeParam4": 0},
            "xfade": {"present": True, "xfadeText1": "b", "xfadeText2": "c", "xfadeText3": "d", "xfadeText5": "f",
                      "xfadeNumber0": 1, "xfadeNumber4": 5},
            "gain": {"present": True, "gainNumber": 9, "gainDb": -6.25},
            "sourceFile": str(self.folder / "take.wav"), "sourceStart": stamp(3), "sourceLength": stamp(4)})
        self.assertEqual(silence["edit"], {"kind": "silence", "silenceText1": "a", "silenceText2": "b",
                                           "silenceText3": "c", "silenceNumber": 4, "silenceMark": 1})
        self.assertEqual((aux["label"], aux["edit"]["kind"]), ("aux", "silence"))
        self.assertEqual(vid["edit"], {"kind": "vid", "vidText0": "a", "vidText1": "b", "vidText2": "c",
                                       "vidText3": "d"})
        self.assertEqual(alt["label"], None)
        self.assertEqual(alt["edit"], {"kind": "alt", "altType": "I", "altTime": "t", "altIndex": 1, "altChannel": 7,
                                       "altMark": 1})
        self.assertEqual((bare["label"], bare["edit"]), (None, None))
        for event in (silence, aux, vid, alt, bare):
            self.assertEqual([event["sourceFile"], event["sourceStart"], event["sourceLength"]], [None] * 3)

    def test_sources(self):
        (self.folder / "mono.wav").write_bytes(wave(7))
        (self.folder / "float.wav").write_bytes(wave(3, bits=32, format_tag=3, channels=2, rate=44100))
        (self.folder / "junk.wav").write_bytes(b"junk")
        adl = (Adl().source(5, "a/gone.wav").source(2, "a/float.wav").source(1, "a/mono.wav").source(9, "a/junk.wav"))
        adl.sources[2] += b"(T) a b c d e\n"
        mono, floating, gone, junk = self.info_of(adl)["sources"]
        self.assertEqual(mono, {
            "index": 1, "f": ['"a/mono.wav"', "_", stamp(0), stamp(300), '"n"', "N"], "t": ["a", "b", "c", "d", "e"],
            "file": {"path": str(self.folder / "mono.wav"), "valid": True, "sampleRate": 48000, "channels": 1,
                     "bitsPerSample": 24, "formatTag": 1, "frames": 7}})
        self.assertEqual([floating["file"][key] for key in ("sampleRate", "channels", "bitsPerSample", "formatTag",
                                                            "frames")], [44100, 2, 0, 3, 3])
        self.assertIsNone(gone["file"])
        self.assertIs(junk["file"]["valid"], False)

    def test_scannedTree(self):
        told = self.info_of(b'<ADL>\n/* one */\n<VERSION>\n(ADL_ID) "1 2" x\n/* no comment */\n(VER_CRTR)\n</VERSION>\n'
                            b'<REF_LIST>\n<REF>\n<A>\n(B) 1\n</A>\n</REF>\n<REF>\n</REF>\n</REF_LIST>\n<EMPTY>\n</EMPTY>\n</ADL>')
        self.assertEqual(told["sections"], [
            {"name": "VERSION", "entries": [
                {"label": "ADL_ID", "values": ['"1 2"', "x", "/*", "no", "comment", "*/"]},
                {"label": "VER_CRTR", "values": []}]},
            {"name": "EMPTY", "entries": []}])
        self.assertEqual(told["refLists"], [[{"name": "A", "entries": [{"label": "B", "values": ["1"]}]}], []])
        self.assertEqual(told["comments"], [" one "])
        self.assertEqual(told["constants"]["ADL_ID"], '"1 2"')

    def test_totalsAndTracks(self):
        adl = Adl().cut(1, track=2, dest_in=HOUR + 1).cut(2, track=5, dest_in=HOUR, length=90)
        told = self.info_of(adl)
        self.assertEqual([told[key] for key in ("firstEvent", "lastEvent", "minTrack", "maxTrack", "trackCount",
                                                "totalStart", "totalEnd")],
                         [stamp(HOUR), stamp(HOUR + 90), 2, 5, 4, stamp(HOUR)[:11], stamp(HOUR + 90)[:11]])

    def test_messageLineTellsOfMissingFiles(self):
        self.assertEqual(self.info_of(Adl().cut(1))["message"], "Some files not found. Check event list.")
        self.assertEqual(self.info(one_cut(self.folder))["message"], "")

    def test_projectWithoutCut(self):
        told = self.info_of(Adl().entry(1, "(Silence) 1 a b c"))
        self.assertIs(told["ok"], True)
        self.assertEqual([told[key] for key in ("firstEvent", "lastEvent", "totalStart", "totalEnd")],
                         [None, None, "", ""])
        self.assertEqual((told["minTrack"], told["maxTrack"], told["trackCount"]), (2147483647, -2147483648, 2))

    def test_emptyProjectHasNothingAndIsOk(self):
        for content in (b"", b"hello", b" <ADL>\n</ADL>", b"<ADL>\n</ADL>"):
            with self.subTest(content):
                told = self.info_of(content)
                self.assertEqual((told["ok"], told["failure"], told["events"], told["sections"]), (True, None, [], []))
                self.assertEqual(set(told["constants"].values()), {None})


class WithoutAdl(InfoTest):
    """A text that does not begin with <ADL> loads as nothing: a person is told so, not shown tables of nothing."""

    def test_textSaysSoAndShowsNoTable(self):
        no_adl = "velmora: this is no ADL; velmora check {} says why and what helps\n"
        for content, hint in [(b"", no_adl), (b"hello", no_adl), (b"\xef\xbb\xbf<ADL>\n</ADL>\n", ""),
                              (b" <ADL>\n</ADL>\n", "")]:
            with self.subTest(content):
                project = self.folder / "p.adl"
                project.write_bytes(content)
                result = run("info", project)
                self.assert_status(result, ALL_DONE)
                self.assertEqual(result.out, f"{project}\n\n"
                                             "There is no ADL in this file: it does not begin with <ADL>.\n")
                self.assertEqual(result.err, hint.format(project))

    def test_emptyAdlShowsItsTables(self):
        project = self.folder / "p.adl"
        project.write_bytes(b"<adl>\n</adl>\n")
        result = run("info", project)
        self.assertIn("Project Title", result.out)
        self.assertNotIn("There is no ADL", result.out)

    def test_jsonStaysAsItIs(self):
        told = self.info_of(b"hello")
        self.assertEqual((told["ok"], told["message"], told["failure"]), (True, "", None))
        self.assertEqual((told["minTrack"], told["maxTrack"], told["trackCount"]), (2147483647, -2147483648, 2))
        self.assertEqual(len(told["tables"]["TrackTable"]), 2)


class Diagnostics(InfoTest):
    """Oddities that the load tolerates stand in the object, with code, line and the words of standard error."""

    def told_of(self, adl, status=ALL_DONE):
        return [(entry["code"], entry["line"], entry["text"]) for entry in self.info_of(adl, status)["diagnostics"]]

    def test_soundProjectHasNone(self):
        self.assertEqual(self.told_of(b"<ADL>\n<EVENT_LIST>\n(Entry) 1 (Vid) a b c d\n</EVENT_LIST>\n</ADL>"), [])

    def test_eachWithItsLine(self):
        self.assertEqual(self.told_of(b"<ADL>\n<PROJECT>\n(PROJ_TITEL) x\n</PROJECT>\n<SOURCE_INDEX>\n(F) a\n"
                                      b"</SOURCE_INDEX>\n<EVENT_LIST>\n(Entry) 1\n(Fader) 1\n</EVENT_LIST>\n</ADL>"),
                         [("unknown-identifier", 3, "Found unknown identifier: PROJ_TITEL in section PROJECT"),
                          ("unexpected-entry", 6, "Found unexpected entry: F"),
                          ("unexpected-label", 10, "Encountered unexpected label: Fader")])

    def test_textWithoutAnAdl(self):
        self.assertEqual(self.told_of(b"hello"), [("no-adl", 0, "The file does not begin with <ADL>")])

    def test_ofALoadThatFails(self):
        self.assertEqual(self.told_of(b"<ADL>\n<EVENT_LIST>\n(x)\n(Entry)\n</EVENT_LIST>\n", DOES_NOT_LOAD),
                         [("unexpected-entry", 3, "Found unexpected entry: x")])

    def test_fileThatDoesNotOpenHasNone(self):
        self.assertEqual(self.info(self.folder / "gone.adl", DOES_NOT_LOAD)["diagnostics"], [])


class Failure(InfoTest):
    """A load that fails still gives the whole object, and tells line, section, label and reason."""

    def fail_at(self, body, code, line, section, label):
        told = self.info_of(body, DOES_NOT_LOAD)
        self.assertEqual((told["ok"], told["message"]), (False, "File NG."))
        failure = told["failure"]
        self.assertEqual(list(failure), ["code", "line", "section", "label", "reason"])
        self.assertEqual((failure["code"], failure["line"], failure["section"], failure["label"]),
                         (code, line, section, label))
        self.assertTrue(failure["reason"])
        self.assertEqual((told["sources"], told["events"]), ([], []))

    def test_failures(self):
        cases = {
            "fadeWithAnotherSeparator": (b"<ADL>\n<EVENT_LIST>\n(Entry) 1\n(Infade) 00=00:01:00/0000 x 0 0 0\n"
                                         b"</EVENT_LIST>\n", "fade-separator", 4, "EVENT_LIST", "Infade"),
            "cutOfSevenValues": (b"<ADL>\n<EVENT_LIST>\n(Entry) 1\n (Cut) I 1 1 1 a b c\n</EVENT_LIST>\n</ADL>",
                                 "values-missing", 4, "EVENT_LIST", "Cut"),
            "fadeOfAnotherForm": (b"<ADL>\n<EVENT_LIST>\n(Entry) 1\n\n(infade) _ x 0 0 0\n</EVENT_LIST>\n</ADL>",
                                  "fade-form", 5, "EVENT_LIST", "infade"),
            "gainOfOneValue": (b"<ADL>\n<EVENT_LIST>\n(Entry) 1 (Gain) 1\n</EVENT_LIST>\n</ADL>", "values-missing", 3, "EVENT_LIST", "Gain"),
            "entryWithoutNumber": (b"<ADL>\n<EVENT_LIST>\n(Entry)\n(Cut) I 1 1 1 a b c d\n</EVENT_LIST>\n</ADL>",
                                   "index-missing", 3, "EVENT_LIST", "Entry"),
            "fileOfThreeValues": (b'<ADL>\n<SOURCE_INDEX>\n(Index) 1\n(F) "a/b" _ x\n</SOURCE_INDEX>\n</ADL>',
                                  "values-missing", 4, "SOURCE_INDEX", "F"),
            "takeOfFourValues": (b'<ADL>\n<SOURCE_INDEX>\n(Index) 1\n(T) a b c d\n</SOURCE_INDEX>\n</ADL>',
                                 "values-missing", 4, "SOURCE_INDEX", "T"),
            "indexWithoutNumber": (b'<ADL>\n<SOURCE_INDEX>\n(Index)\n(F) "a/b" _ x y\n</SOURCE_INDEX>\n</ADL>',
                                   "index-missing", 3, "SOURCE_INDEX", "Index"),
            "linesOfCarriageReturnAndLineFeed": (b"<ADL>\r\n<EVENT_LIST>\r\n(Entry) 1\r\n(Gain) 1\r\n</EVENT_LIST>\r\n",
                                                 "values-missing", 4, "EVENT_LIST", "Gain"),
            "lineAfterAQuotedLineFeed": (b'<ADL>\n<PROJECT>\n(PROJ_NOTES) "a\nb\nc"\n</PROJECT>\n<EVENT_LIST>\n'
                                          b"(Entry) 1 (Gain) 1\n</EVENT_LIST>\n", "values-missing", 8, "EVENT_LIST", "Gain"),
        }
        for name, (content, code, line, section, label) in cases.items():
            with self.subTest(name):
                self.fail_at(content, code, line, section, label)

    def test_fileThatIsNotThere(self):
        told = self.info(self.folder / "gone.adl", DOES_NOT_LOAD)
        self.assertEqual((told["ok"], told["message"]), (False, "File NG."))
        self.assertEqual((told["failure"]["code"], told["failure"]["line"]), ("file-not-opened", 0))
        self.assertTrue(told["failure"]["reason"])

    def test_textSaysFileNgThenLineAndReason(self):
        project = self.folder / "p.adl"
        project.write_bytes(b"<ADL>\n<EVENT_LIST>\n(Entry) 1\n (Cut) I 1 1 1 a b c\n</EVENT_LIST>\n</ADL>")
        for command in ("info", "spot"):
            with self.subTest(command):
                result = run(command, project)
                self.assert_status(result, DOES_NOT_LOAD)
                self.assertRegex(result.err, r"File NG\..*line 4.*Cut")
                self.assertNotIn("Regions", result.out)


class Texts(InfoTest):
    """Valid UTF-8 and JSON, whatever the bytes of the project."""

    def titled(self, title):
        return self.info_of(b'<ADL>\n<PROJECT>\n(PROJ_TITLE) "' + title + b'"\n</PROJECT>\n</ADL>')

    def test_shiftJisComesOutAsUtf8(self):
        told = self.titled("嵐の予報ソ表ｱ".encode("shift_jis"))
        self.assertEqual(told["constants"]["PROJ_TITLE"], '"嵐の予報ソ表ｱ"')
        self.assertEqual(told["sections"][0]["entries"][0]["values"], ['"嵐の予報ソ表ｱ"'])
        self.assertEqual(told["tables"]["ProjectInfomationTable"][0]["Data"], '"嵐の予報ソ表ｱ"')

    def test_backslashAndTildeStayThemselves(self):
        self.assertEqual(self.titled(b"a\\b~c")["constants"]["PROJ_TITLE"], '"a\\b~c"')

    def test_bytesThatCannotBeConvertedBecomeReplacements(self):
        self.assertEqual(self.titled(b"a\xffb")["constants"]["PROJ_TITLE"], '"a\ufffdb"')
        self.assertEqual(self.titled(b"\xfd\xfe\xff")["constants"]["PROJ_TITLE"], '"' + "\ufffd" * 3 + '"')

    def test_controlBytesAreEscaped(self):
        controls = bytes(code for code in range(1, 32) if code != 0x1B)
        self.assertEqual(self.titled(controls)["constants"]["PROJ_TITLE"], '"' + controls.decode() + '"')

    def test_everyByteOfRandomProjects(self):
        """Fixed seeds; every object is parsed and its form checked."""
        for seed in range(25):
            chance = random.Random(seed)

            def junk(most=40):
                return bytes(chance.choice([*range(1, 256)]) for _ in range(chance.randrange(most))).replace(b'"', b"")

            adl = Adl(b'<PROJECT>\n(PROJ_TITLE) "' + junk() + b'"\n(' + junk(8).replace(b")", b"") + b') "'
                      + junk() + b'"\n</PROJECT>\n/*' + junk() + b'*/\n')
            for index in range(4):
                adl.source(index, b"x/" + junk())
                adl.entry(index, b'(Cut) "%s" %d 1 %d "%s" "%s" "%s" "%s" (Rem) "%s"' % (
                    junk(), index, chance.randrange(-5, 5), junk(20), junk(20), junk(20), junk(20), junk()))
            with self.subTest(seed=seed):
                self.assertEqual(len(self.info_of(adl)["events"]) in range(5), True)

    def test_wholeFilesOfRandomBytes(self):
        for seed in range(15):
            with self.subTest(seed=seed):
                noise = random.Random(seed).randbytes(3000)
                for content in (noise, b"<ADL>\n" + noise, b"<ADL>\n<EVENT_LIST>\n(Entry) 1 " + noise):
                    project = self.folder / "p.adl"
                    project.write_bytes(content)
                    result = run("info", project, "--json")
                    self.assertIn(result.status, (ALL_DONE, DOES_NOT_LOAD))
                    self.check_form(result.json)

    def test_numbersThatAreNotFiniteAreNull(self):
        for text in ("inf", "-inf", "nan", "infinity", "1e999"):
            with self.subTest(text):
                event, = self.info_of(Adl().entry(1, f"(Gain) 1 {text} (Infade) {fade(1)} L {text} 0 {text}"))["events"]
                self.assertIsNone(event["gain"]["gainDb"])
                self.assertEqual([event["infade"][f"fadeParam{n}"] for n in (2, 3, 4)], [None, 0, None])

    def test_doublesKeepTheirLastDigit(self):
        event, = self.info_of(Adl().entry(1, "(Gain) 1 -0.1234567890123456789"))["events"]
        self.assertEqual(event["gain"]["gainDb"], -0.1234567890123456789)


class Tables(InfoTest):
    def test_rowsAreWhatTheTablesShow(self):
        (self.folder / "take.wav").write_bytes(wave(10))
        head = '<SEQUENCE>\n(SEQ_TITLE) "S"\n</SEQUENCE>\n'
        tables = self.info_of(Adl(head).source(1, "a/take.wav").cut(1, track=3).cut(2, source=2, track=4))["tables"]
        project = tables["ProjectInfomationTable"]
        self.assertEqual([row["Title"] for row in project], [
            "Project Title", "Proj Orijinator", "Proj Create Data", "Proj Note", "Proj Client Data", "",
            "Sequence Title", "Seq Sample Rate", "Seq Frame Rate", "Seq ADL Level", "Seq Clean", "Seq Multichan",
            "Seq Dest Start"])
        self.assertEqual([row["Data"] for row in project], [""] * 6 + ['"S"'] + [""] * 6)
        start, end = stamp(HOUR)[:11], stamp(HOUR + 30)[:11]
        self.assertEqual(tables["TrackTable"], [
            {"Space": 1, "Track": "3", "Type": "Mono", "Start": start, "End": end},
            {"Space": 1, "Track": "4", "Type": "Mono", "Start": start, "End": end}])
        self.assertEqual(tables["EventListTable"], [
            {"Space": 1, "Type": "Cut", "Event": "0000\n", "Ch": "Mono", "In": start, "Out": end, "Track": "3",
             "Name": "take.wav"},
            {"Space": 1, "Type": "Cut", "Event": "0001\n", "Ch": "Mono", "In": start, "Out": end, "Track": "4",
             "Name": ""}])
        self.assertEqual([(row["ItemName"], row["Number"]) for row in tables["numberOfTracksTable"]],
                         [("Mono", "2"), ("Stereo", "0")] + [(f"{n} Ch.", "0") for n in range(3, 9)])

    def test_cellsPastTheEndOfAnArrayAreNull(self):
        """Three columns get nothing for an event that is no cut, and run short at the list's end."""
        rows = self.info_of(Adl().entry(1, "(Silence) 1 a b c").cut(2, track=6))["tables"]["EventListTable"]
        self.assertEqual([rows[0][column] for column in ("In", "Out", "Track")],
                         [stamp(HOUR)[:11], stamp(HOUR + 30)[:11], "6"])
        self.assertEqual([rows[1][column] for column in ("In", "Out", "Track")], [None] * 3)

    def test_eventWithoutKeywordHasAnEmptyType(self):
        rows = self.info_of(Adl().entry(1, "(Gain) 1 2").cut(2))["tables"]["EventListTable"]
        self.assertEqual(rows[0]["Type"], "")

    def test_atMost100000RowsOfTracks(self):
        told = self.info_of(Adl().cut(1, track=0).cut(2, track=250000))
        self.assertEqual(told["trackCount"], 250001)
        rows = told["tables"]["TrackTable"]
        self.assertEqual((len(rows), rows[-1]["Track"]), (100000, "99999"))

    def test_atMost100000RowsOfEvents(self):
        project = self.folder / "p.adl"
        project.write_bytes(b"<ADL>\n<EVENT_LIST>\n" + b"".join(b"(Entry) %d\n" % n for n in range(100002))
                            + b"(Entry) 100002 (Cut) I 1 1 1 a b c d\n</EVENT_LIST>\n</ADL>\n")
        told = json.loads(run("info", project, "--json").out)  # its form is that of the smaller ones
        self.assertEqual((len(told["events"]), len(told["tables"]["EventListTable"])), (100003, 100000))

    def test_negativeTrackCountGivesNoRows(self):
        told = self.info_of(Adl().cut(1, track=-2147483648).cut(2, track=2147483640))
        self.assertEqual((told["trackCount"], told["tables"]["TrackTable"]), (-7, []))


class Text(InfoTest):
    """What a person sees without --json."""

    def test_everyPartHasItsHeading(self):
        result = run("info", one_cut(self.folder))
        self.assert_status(result, ALL_DONE)
        for word in ("Project", "Constants", "Sources", "Tracks", "Events", "take.wav", "01|00:00:00"):
            self.assertIn(word, result.out)
        self.assertEqual(result.err, "")

    def test_noLineEndsInBlanks(self):
        out = run("info", one_cut(self.folder)).out
        self.assertEqual([line for line in out.split("\n") if line != line.rstrip()], [])

    def test_missingFileAndMessageLineAreShown(self):
        project = Adl().source(1, "a/gone.wav").cut(1).write(self.folder / "p.adl")
        out = run("info", project).out
        self.assertIn("Some files not found. Check event list.", out)
        self.assertIn("gone.wav", out)

    def test_controlBytesOfAProjectNeverReachTheTerminal(self):
        project = self.folder / "p.adl"
        project.write_bytes(b'<ADL>\n<PROJECT>\n(PROJ_TITLE) "a\x1b[31mred\x07\x08\r\n\x9bx"\n</PROJECT>\n</ADL>')
        out = run("info", project).out
        self.assertNotRegex(out, r"[\x00-\x09\x0b-\x1f\x7f\x80-\x9f]")

    def test_everyEventHasItsRow(self):
        """However many there are: the limit is that of JSON alone."""
        count = 100003
        project = self.folder / "p.adl"
        project.write_bytes(b"<ADL>\n<EVENT_LIST>\n" + b"".join(b"(Entry) %d (Aux) 1 a b c\n" % n for n in range(count - 1))
                            + b"(Entry) 200000 (Cut) I 1 1 7 a b c d\n</EVENT_LIST>\n</ADL>\n")
        out = run("info", project).out
        self.assertNotIn("more rows", out)
        numbers = [line.split()[1] for line in out.split("\nEvents\n")[1].split("\n")[1:] if line.startswith("  x")]
        self.assertEqual(numbers, [f"{number:04}" for number in range(count)])


class Summary(InfoTest):
    """`info --summary`: the same page with counts in place of the rows of sources, tracks and events."""

    def summary(self, project):
        result = run("info", project, "--summary")
        self.assert_status(result, ALL_DONE)
        return result

    def counts(self, project):
        """What follows each of the three words."""
        lines = self.summary(project).out.split("\n")
        return [line.split(None, 1)[1] for word in ("Sources", "Tracks", "Events") for line in lines
                if line.startswith(word + " ")]

    def test_saysEverythingButTheRows(self):
        project = Adl("<PROJECT>\n(PROJ_TITLE) \"Storm\"\n</PROJECT>\n").source(1, "a/gone.wav").cut(1, track=3).write(
            self.folder / "p.adl")
        result, whole = self.summary(project), run("info", project)
        self.assertEqual(result.err, whole.err)
        head, rest = whole.out.split("\nSources\n")
        self.assertTrue(result.out.startswith(head + "\nSources  1 (1 missing)\n"), result.out)
        widths = rest[rest.index("\nWidths\n"):rest.index("\nEvents\n")]
        self.assertIn(widths, result.out)
        self.assertTrue(result.out.endswith("\n\nSome files not found. Check event list.\n"))
        self.assertNotIn("gone.wav", result.out)
        self.assertNotIn("0000", result.out.split("\nSources")[1].split("\nEvents")[1])

    def test_countsEachKind(self):
        for name, content in (("pcm.wav", wave(16)), ("float.wav", wave(16, format_tag=3, bits=32)), ("junk.wav", b"junk")):
            (self.folder / name).write_bytes(content)
        adl = Adl()
        for index, name in enumerate(("pcm.wav", "float.wav", "junk.wav", "gone.wav", "away.wav")):
            adl.source(index, f"a/{name}")
        adl.cut(1, track=2).cut(2, track=4).entry(3, "(Silence) 1 a b c")
        sources, tracks, events = self.counts(adl.write(self.folder / "p.adl"))
        self.assertEqual(sources, "5 (1 found, 1 not PCM, 1 no wave file, 2 missing)")
        self.assertRegex(tracks, r"\A3 \(\S+ to \S+\)\Z")
        self.assertEqual(events, "3 (2 cuts, 1 other)")

    def test_countsAreThoseOfTheRows(self):
        project = one_cut(self.folder)
        tables = self.info(project)["tables"]
        _, tracks, events = self.counts(project)
        self.assertEqual((tracks.split()[0], events), (str(len(tables["TrackTable"])), "1 (1 cut)"))

    def test_projectWithoutACut(self):
        project = Adl().entry(1, "(Silence) 1 a b c").write(self.folder / "p.adl")
        self.assertEqual(self.counts(project), ["0", "0", "1 (1 other)"])
        self.assertIn("There is no cut in this project", self.summary(project).out)

    def test_fileThatIsNoAdl(self):
        (self.folder / "p.adl").write_bytes(b"hello")
        self.assertIn("There is no ADL in this file", self.summary(self.folder / "p.adl").out)

    def test_loadThatFailsIsToldAsWithoutIt(self):
        project = self.folder / "p.adl"
        project.write_bytes(b"<ADL>\n<EVENT_LIST>\n(Entry)\n</EVENT_LIST>\n</ADL>")
        for path in (project, self.folder / "gone.adl"):
            result, plain = run("info", path, "--summary"), run("info", path)
            self.assertEqual((result.status, result.out, result.err), (DOES_NOT_LOAD, "", plain.err))
            self.assertEqual(plain.status, DOES_NOT_LOAD)

    def test_doesNotGoWithJson(self):
        self.assert_bad_usage(run("info", "p.adl", "--json", "--summary"), "--json and --summary exclude each other")


if __name__ == "__main__":
    unittest.main()
