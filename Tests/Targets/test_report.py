"""The report: one page that tells the run's facts in its tables and as JSON, and that no text of a project can take apart."""

import hashlib
import os
import re
import unittest

import projects
import report_reader
from layout import checksums
from placing import placed
from program import ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, LEFT_OUT, run
from projects import Cut, shift_jis
from targets import HOUR, TargetTest, noise

TABLES = ("events", "regions", "files", "messages")
# Each breaks out of one place or another of a page or a script.
HOSTILE = ("</script><script>alert(1)</script>", "</title><svg onload=alert(1)>", "'><img src=x onerror=alert(1)>", "<!--", "-->", "]]>",
           "&lt;b&gt; &amp; &#60;", "${alert(1)}", "{{1}}", "javascript:alert(1)", "</style>", "\\u003c/script\\u003e", "<plaintext>",
           "&quot; onclick=&quot;alert(1)", "</td></tr></table>", "＜ｓｃｒｉｐｔ＞", "--><!--<script>", "a\tb")


def bare(text):
    return text and text.removeprefix('"').removesuffix('"')


class ReportTest(TargetTest):
    def constants(self, project, values):
        """Writes header texts into a project that has none."""
        lines = b"".join(shift_jis(f'({keyword}) "{text}"\n') for keyword, text in values.items())
        text = project.path.read_bytes()
        project.path.write_bytes(text.replace(b"<SOURCE_INDEX>", b"<PROJECT>\n" + lines + b"</PROJECT>\n<SOURCE_INDEX>", 1))


class Facts(ReportTest):
    def assert_page(self, project, spot, way):
        page = report_reader.read(spot.folder / "r.html")
        facts = page.facts
        self.assertEqual(facts["summary"], spot.session["summary"])
        self.assertEqual(facts["regions"], self.told(spot.session, project))
        placed_tracks = {track["track"]: track["regions"] for track in facts["tracks"] if track["regions"]}
        self.assertEqual(placed_tracks, {track["track"] + project.lowest_track: len(track["regions"])
                                         for track in spot.session["tracks"]})
        info = run("info", project.path, "--json").json
        self.assertEqual(facts["project"]["constants"], {key: bare(text) for key, text in info["constants"].items()})
        self.assertEqual((facts["project"]["path"], facts["rates"]["sampleRate"]), (str(project.path), project.rate))
        self.assertEqual([event["entry"] for event in facts["events"]], [event["entryNumber"] for event in info["events"]])
        self.assert_events(facts, project, way)
        self.assert_files(facts, spot)
        self.assert_messages(facts, spot)
        for name in TABLES:
            self.assertEqual(len(page.tables[name]), len(facts[name]), name)
            self.assertTrue(all(len(row) == len(page.heads[name]) for row in page.tables[name]), name)
        self.assertEqual([row[page.heads["regions"].index("Position")] for row in page.tables["regions"]],
                         [str(region["position"]) for region in facts["regions"]])
        self.assertEqual([row[page.heads["messages"].index("Message")].startswith(message["text"])
                          for row, message in zip(page.tables["messages"], facts["messages"])], [True] * len(facts["messages"]))
        return page

    @staticmethod
    def told(session, project):
        """The regions of a session's JSON in the words of a report."""
        names = ("index", "name", "path", "position", "start", "stop", "event", "piece", "fadeIn", "fadeOut", "gainDb")
        return sorted(({**{name: region[name] for name in names}, "track": track["track"] + project.lowest_track}
                       for track in session["tracks"] for region in track["regions"]), key=lambda region: region["index"])

    def assert_events(self, facts, project, way):
        where = {region.event: (region.position, region.position + region.length) for region in placed(project, *way)
                 if region.piece == "main"}
        self.assertEqual({event["index"]: (event["position"], event["end"]) for event in facts["events"]}, where)
        self.assertEqual({event["track"] for event in facts["events"]}, {cut.track for cut in project.cuts})
        self.assertEqual({event["state"] for event in facts["events"]}, {"placed"})

    def assert_files(self, facts, spot):
        made = {line["path"] for line in spot.run.of("file") if line["status"] == 0}
        told = {}
        for file in facts["files"]:
            told.setdefault(file["what"], set()).add(file["path"])
            if file["state"] != "made" or not os.path.isfile(file["path"]):
                continue
            with open(file["path"], "rb") as opened:
                content = opened.read()
            self.assertEqual((file["bytes"], file["sha256"]), (len(content), hashlib.sha256(content).hexdigest()), file)
        every = set().union(*told.values())
        self.assertTrue(made <= every, made - every)
        for name in ("s.json", "b.wav", "d.dawproject", "o.otio"):
            self.assertIn(str(spot.folder / name), every)

    def assert_messages(self, facts, spot):
        """Whatever standard error says of this spot stands in the page too."""
        texts = [message["text"] for message in facts["messages"]]
        for line in spot.run.err.splitlines():
            said = re.sub(r"\Avelmora: (note: |left out: )?(event \d+ \([^)]*\): )?((?:[a-z-]+): )?(note: |left out: )?", "", line)
            if "velmora check" in said:
                continue  # it names what else tells
            self.assertTrue(any(said in text for text in texts), f"not in the page: {line}")

    def test_randomProjects(self):
        for seed, way in ((7, ("--native",)), (8, ("--fades", "--gain")), (3, ())):
            with self.subTest(seed=seed):
                project = projects.make(seed, self.folder / f"project {seed}")
                spot = self.spot(project.path, *way, into=f"out {seed}", status=(ALL_DONE, LEFT_OUT))
                self.assert_page(project, spot, way)

    def test_whatIsNotHeard(self):
        """A missing file, an event that is switched off and one of no length are told apart."""
        project = self.project({"a.wav": noise(900), "none.wav": b""}, Cut(1, 1, 0, HOUR, 900), Cut(2, 1, 0, HOUR + 1000, 900),
                               Cut(1, 2, 0, HOUR, 900), Cut(1, 3, 0, HOUR, 900))
        (project.path.parent / "none.wav").unlink()
        spot = self.spot(project.path, "--skip-events", "2", "--skip-tracks", "3", status=(LEFT_OUT,))
        page = report_reader.read(spot.folder / "r.html")
        states = [event["state"] for event in page.facts["events"]]
        self.assertEqual((states[0], states[1], states[2], states[3]), ("placed", "missing", states[3], states[2]))
        self.assertNotIn(states[2], ("placed", "missing"))
        remedies = [message["remedy"] for message in page.facts["messages"] if "none.wav" in message["text"]]
        self.assertTrue(remedies and all(remedies), page.facts["messages"])

    def test_aTargetThatFailed(self):
        project = self.project({"a.wav": noise(900)}, Cut(1, 1, 0, 48000, 900))
        spot = self.spot(project.path, "--position", "offset", "--offset", "-00:00:02:00", status=(LEFT_OUT,))
        page = report_reader.read(spot.folder / "r.html")
        failures = [message["text"] for message in page.facts["messages"] if message["weight"] == "failure"]
        self.assertTrue(any(str(spot.folder / "b.wav") in text for text in failures), failures)


class Hostile(ReportTest):
    def page(self, number, text):
        """The page of a project in which a text stands wherever texts can stand."""
        name = text.replace("/", "／")
        project = self.project({"a.wav": noise(900), f"{name}.wav": noise(900)}, Cut(1, 1, 0, HOUR, 900), Cut(2, 1, 0, HOUR + 900, 900),
                               name=f"{number} {name}")
        content = project.path.read_bytes()
        # A source that is not there, whose location says it too, and a name of the event.
        gone = f'(Index) 3 (F) "URL:file://localhost/{text}/none.wav" _ 00|00:00:00/0000 00|00:00:00/0000 "{text}" N\n</SOURCE_INDEX>'
        content = content.replace(b"</SOURCE_INDEX>", shift_jis(gone))
        event = (f'(Entry) 3\n(Cut) I 3 1 1 00|00:00:00/0000 01|00:01:00/0000 01|00:02:00/0000 _\n(Rem) NAME "{text}"\n'
                 f'(Remark) "{text}"\n</EVENT_LIST>')
        project.path.write_bytes(content.replace(b"</EVENT_LIST>", shift_jis(event)))
        self.constants(project, {keyword: text for keyword in ("PROJ_TITLE", "PROJ_NOTES", "PROJ_ORIGINATOR")})
        out = self.folder / f"{number}.html"
        result = run("spot", project.path, "--quiet", "--report", out, "--copy-to", self.folder / f"audio {number} {name}")
        self.assert_status(result, LEFT_OUT)
        return report_reader.read(out)

    def test_textNeverBecomesMarkup(self):
        """The same project with a harmless text has the same elements and attributes in the same order."""
        harmless = self.page(99, "harmless")
        for number, text in enumerate(HOSTILE):
            with self.subTest(text):
                page = self.page(number, text)
                self.assertEqual(page.shape, harmless.shape)
                self.assertEqual(page.facts["project"]["constants"]["PROJ_NOTES"], text)
                self.assertEqual({name: len(rows) for name, rows in page.tables.items()},
                                 {name: len(rows) for name, rows in harmless.tables.items()})
                self.assertIn(text, "\n".join(cell for row in page.tables["constants"] for cell in row))

    def test_bytesThatAreNoText(self):
        project = self.project({"a.wav": noise(900)}, Cut(1, 1, 0, HOUR, 900), name=os.fsdecode(b"\xff\xfe <b>"))
        raw = project.path.read_bytes()
        project.path.write_bytes(raw.replace(b"<SOURCE_INDEX>", b'<PROJECT>\n(PROJ_TITLE) "\xfd\xff\x01\x1b[31m\x07<b>"\n</PROJECT>\n<SOURCE_INDEX>'))
        out = self.folder / "r.html"
        self.assert_status(run("spot", project.path, "--quiet", "--report", out), ALL_DONE)
        self.assertIn("<b>", report_reader.read(out).facts["project"]["constants"]["PROJ_TITLE"])


class Planned(ReportTest):
    """`velmora report` makes the page of a spot, and nothing but that page."""

    def setUp(self):
        super().setUp()
        self.made = self.project({"a.wav": noise(2000), "b.wav": noise(2000, 16, 2, seed=2)}, Cut(1, 1, 0, HOUR, 900, 0, 100),
                                 Cut(2, 1, 0, HOUR + 800, 900, 100, 50, "-3"))
        self.page = self.folder / "page.html"

    def report(self, *options, status=ALL_DONE, project=None):
        before = checksums(self.folder), self.files()
        result = run("report", project or self.made.path, "-o", self.page, *options, cwd=self.folder)
        self.assert_status(result, status)
        after = checksums(self.folder), self.files()
        self.page.unlink(missing_ok=True)
        after[0].pop("page.html", None)
        self.assertEqual((after[0], self.files()), before, options)
        return result

    def test_nothingButThePage(self):
        for options in ((), ("--fades", "--gain"), ("--native",), ("--depth", "16"), ("--copy-to", "Copies"), ("--json",),
                        ("--position", "first"), ("--copy-to", "Copies", "--fades"), ("--skip-tracks", "1")):
            with self.subTest(options):
                self.report(*options)

    def test_theSameRegionsAsTheSpot(self):
        for way in (("--native",), ("--fades", "--gain"), ()):
            with self.subTest(way):
                self.assert_status(run("report", self.made.path, "-o", self.page, *way), ALL_DONE)
                planned = report_reader.read(self.page).facts
                self.page.unlink()
                spot = self.spot(self.made.path, *way, into=f"out {way}", targets=("report",))
                done = report_reader.read(spot.folder / "r.html").facts
                # Where a piece of its own file would begin at 0, the plan names the place in the source.
                keys = ("index", "position", "event", "piece", "fadeIn", "fadeOut", "gainDb", "track")
                self.assertEqual([[region["stop"] - region["start"], *(region[key] for key in keys)] for region in planned["regions"]],
                                 [[region["stop"] - region["start"], *(region[key] for key in keys)] for region in done["regions"]])
                self.assertEqual((planned["plan"], done["plan"]), (True, False))
                self.assertEqual({**planned["summary"], "files": 0}, {**done["summary"], "files": 0})

    def test_refused(self):
        self.assert_status(run("report", self.made.path), BAD_USAGE)
        self.report("--native", "--fades", status=BAD_USAGE)
        self.page.write_bytes(b"precious")
        result = run("report", self.made.path, "-o", self.page)
        self.assert_bad_usage(result, str(self.page))
        self.assertEqual(self.page.read_bytes(), b"precious")
        self.page.unlink()
        self.report(status=DOES_NOT_LOAD, project=self.folder / "none.adl")


if __name__ == "__main__":
    unittest.main()
