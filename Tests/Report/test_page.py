"""What a report holds, as a script reads it."""

import base64
import hashlib
import json
import os
import pathlib
import unittest

import page as pages
from program import ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, LEFT_OUT, ProgramTest, limit_file_size, run


class Report(ProgramTest):
    def setUp(self):
        super().setUp()
        self.adl = pages.mixed_project(self.folder)
        self.page = self.folder / "page.html"

    def spot(self, *more):
        done = run("spot", self.adl, "--quiet", "--skip-events", "4", "--copy-to", self.folder / "made", *more,
                   "--host", f"embedded:{self.folder / 'session.json'}", "--report", self.page)
        self.assert_status(done, LEFT_OUT)
        return pages.Page(self.page)

    def session(self):
        return json.loads((self.folder / "session.json").read_text(encoding="utf-8"))

    def test_the_facts_are_the_sessions(self):
        for how in (["--fades", "--gain"], ["--native"]):
            with self.subTest(how[0]):
                page, session = self.spot(*how), self.session()
                self.assertEqual(page.facts["summary"], session["summary"])
                number = {row["track"] - 1: row["track"] for row in page.facts["tracks"]}  # the first track is 1
                regions = [region | {"track": number[track["track"]]} for track in session["tracks"]
                           for region in track["regions"]]
                regions.sort(key=lambda region: region["index"])
                told = page.facts_of("regions")
                self.assertEqual(told, [{name: region[name] for name in row} for region, row in zip(regions, told, strict=True)])
                for made in (self.page, self.folder / "session.json"):
                    made.unlink()

    def test_each_table_tells_what_the_facts_tell(self):
        page = self.spot("--fades", "--gain", "--bounce", self.folder / "b.wav")
        self.assertEqual(page.column("events", "State"),
                         ["placed", "placed", "missing", "placed", "off", "not a cut"])
        for table, heading, name in (("events", "State", "state"), ("events", "Source", "source"),
                                     ("regions", "Name", "name"), ("regions", "Position", "position"),
                                     ("files", "Path", "path"), ("files", "SHA-256", "sha256"),
                                     ("messages", "What helps", "remedy"), ("tracks", "Regions", "regions")):
            with self.subTest(f"{table} {heading}"):
                facts = [row[name] for row in page.facts_of(table)]
                self.assertEqual(page.column(table, heading), ["" if fact is None else str(fact) for fact in facts])
        self.assertTrue(any("gone.wav" in text for text in page.column("messages", "Message")))
        self.assertFalse([row for row in page.facts_of("messages") if row["weight"] != "note" and not row["remedy"]])

    def test_files_have_size_and_checksum(self):
        page = self.spot("--fades", "--gain", "--bounce", self.folder / "b.wav")
        made = [file for file in page.facts_of("files") if not file["path"].endswith(".json")]
        self.assertEqual({file["what"] for file in made}, {"depth", "gain", "fade", "bounce"})
        for file in made:
            data = pathlib.Path(file["path"]).read_bytes()
            self.assertEqual((file["bytes"], file["sha256"]), (len(data), hashlib.sha256(data).hexdigest()))

    def test_a_file_too_large_for_a_checksum(self):
        """A bounce of two cuts hours apart holds gigabytes of silence, and nobody waits for its checksum."""
        bounce = self.folder / "b.wav"
        adl = pages.Adl().source(1, "URL:file://localhost/a/plain.wav").cut(1, 1, 1, 0, pages.HOUR, 100)
        adl.cut(2, 1, 1, 0, pages.HOUR + 12 * 3600 * 30, 100)
        done = run("spot", adl.write(self.folder / "day.adl"), "--quiet", "--bounce", bounce, "--report", self.page, seconds=60)
        self.assert_status(done, ALL_DONE)
        page, size = pages.Page(self.page), bounce.stat().st_size
        self.assertGreater(size, 4 << 30)
        why = f"not computed: {size / 1e9:.1f} GB"
        self.assertEqual([(row["bytes"], row["sha256"], row["noSha256"]) for row in page.facts_of("files") if row["what"] == "bounce"],
                         [(size, None, why)])
        self.assertEqual((page.column("files", "Bytes")[-1], page.column("files", "SHA-256")[-1]), (str(size), why))

    def test_texts_of_projects_never_become_markup(self):
        page = self.spot("--fades", "--gain")
        self.assertNotIn("img", [tag for tag, _ in page.elements])
        self.assertEqual(len(page.scripts), 2)
        self.assertFalse([attributes for _, attributes in page.elements
                          for name in attributes if name.startswith("on") or name == "style"])
        self.assertIn("<script>alert(1)</script>", page.facts["project"]["title"])
        self.assertIn(pages.HOSTILE_FILE, page.column("events", "Name"))

    def test_its_own_policy_lets_only_its_style_and_script_through(self):
        page = self.spot()
        policy = next(attributes["content"] for tag, attributes in page.elements
                      if tag == "meta" and attributes.get("http-equiv") == "Content-Security-Policy")

        def hash_of(text):
            return "'sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode() + "'"

        style = page.text.split("<style>")[1].split("</style>")[0]
        rules = dict(rule.strip().split(" ", 1) for rule in policy.split(";"))
        self.assertEqual(rules["default-src"], "'none'")
        self.assertEqual(rules["style-src"], hash_of(style))
        self.assertEqual(rules["script-src"], hash_of(page.scripts[1][1]))

    def test_tables_can_be_read_by_ear(self):
        page = self.spot()
        self.assertEqual([name for name in page.heads], ["messages", "tracks", "events", "regions", "files", "constants"])
        for table, caption in page.captions.items():
            self.assertTrue(caption, table)
        for tag, attributes in page.elements:
            if tag == "th":
                self.assertIn(attributes.get("scope"), ("col", "row"))
        ids = [attributes["id"] for _, attributes in page.elements if "id" in attributes]
        self.assertEqual(len(ids), len(set(ids)))
        named = [attributes.get("aria-labelledby") for _, attributes in page.elements]
        self.assertTrue(set(filter(None, named)) <= set(ids))

    def test_a_spot_that_places_nothing_has_its_report_all_the_same(self):
        for name, events in (("nothing placed", ["--only-events", "2"]), ("no event at all", ["--only-events", "99"])):
            with self.subTest(name):
                done = run("spot", self.adl, *events, "--quiet", "--bounce", self.folder / "b.wav", "--report", self.page)
                self.assert_status(done, LEFT_OUT)
                page = pages.Page(self.page)
                self.assertEqual((page.rows["regions"], len(page.facts["events"])), ([], 6))
                self.assertIn("No region was placed.", page.captions["regions"])
                self.assertFalse((self.folder / "b.wav").exists())
                self.assertTrue(any("b.wav" in message["text"] for message in page.facts_of("messages")))
                self.page.unlink()

    def test_a_project_without_a_cut_has_one_too(self):
        (self.folder / "none.adl").write_bytes(b"<ADL>\n<EVENT_LIST>\n(Entry) 1 (Silence) 1 1 _ _ _\n</EVENT_LIST>\n</ADL>\n")
        done = run("spot", self.folder / "none.adl", "--report", self.page)
        self.assert_status(done, LEFT_OUT)
        self.assertTrue(any("no cut" in text for text in pages.Page(self.page).column("messages", "Message")))

    def test_a_full_disk_leaves_no_page(self):
        done = run("report", self.adl, "-o", self.page, before=limit_file_size(4096))
        self.assert_status(done, LEFT_OUT)
        self.assertIn(f"{self.page} cannot be written", done.err)
        self.assertFalse([name for name in self.files() if "page" in name])


class ReportAlone(ProgramTest):
    def setUp(self):
        super().setUp()
        self.adl = pages.mixed_project(self.folder)
        self.page = self.folder / "page.html"

    def test_nothing_is_made_but_the_page(self):
        before = {name: (self.folder / name).read_bytes() for name in self.files()}
        done = run("report", self.adl, "--depth", "16", "--fades", "--gain", "--copy-to", self.folder / "made",
                   "--otio", self.folder / "x.otio", "--host", f"embedded:{self.folder / 's.json'}", "-o", self.page)
        self.assert_status(done, LEFT_OUT)
        self.assertEqual(self.files(), sorted([*before, "page.html"]))
        for name, data in before.items():
            self.assertEqual((self.folder / name).read_bytes(), data)
        page = pages.Page(self.page)
        self.assertTrue(page.facts["plan"])
        self.assertEqual({file["state"] for file in page.facts_of("files")}, {"planned"})

    def test_it_plans_what_a_spot_does(self):
        """Every region of the spot stands in the plan at its place, though its file is another."""
        for how in ([], ["--fades", "--gain"], ["--native"], ["--position", "first"], ["--depth", "16"]):
            with self.subTest(how):
                plan = self.folder / "plan.html"
                run("report", self.adl, *how, "-o", plan)
                run("spot", self.adl, "--quiet", "--copy-to", self.folder / "made", *how, "--report", self.page)
                planned, made = pages.Page(plan), pages.Page(self.page)

                def places(page):
                    return [[region["stop"] - region["start"]] +
                            [region[key] for key in ("event", "piece", "track", "position", "fadeIn", "gainDb")]
                            for region in page.facts_of("regions")]

                self.assertTrue(places(made))
                self.assertEqual(places(planned), places(made))
                self.assertEqual(planned.facts["events"], made.facts["events"])
                for page in (plan, self.page):
                    page.unlink()

    def test_a_project_that_does_not_load_has_a_page_that_says_why(self):
        bad = pages.Adl().source(1, "URL:file://localhost/a/plain.wav").cut(1, more="(Infade) 00:00:01:00 LIN _ _ _")
        adl = bad.write(self.folder / "bad.adl")
        done = run("report", adl, "-o", self.page)
        self.assert_status(done, DOES_NOT_LOAD)
        page = pages.Page(self.page)
        weights = page.column("messages", "Weight")
        self.assertEqual(weights[0], "failure")
        self.assertIn("(Infade)", page.column("messages", "Message")[0])
        self.assertTrue(all(page.column("messages", "What helps")[:weights.count("failure")]))
        self.assertIn("No region was placed.", page.captions["regions"])
        self.page.unlink()
        # A spot that does not begin makes nothing; nor is there anything to tell of what is no file.
        for command, project, option in (("spot", adl, "--report"), ("report", self.folder / "gone.adl", "-o"),
                                         ("report", self.folder, "-o")):
            with self.subTest(f"{command} {project.name}"):
                self.assert_status(run(command, project, option, self.page), DOES_NOT_LOAD)
                self.assertFalse(self.page.exists())

    def test_a_place_that_takes_no_page(self):
        (self.folder / "link.html").symlink_to("nowhere.html")
        (self.folder / "closed").mkdir(mode=0o555)
        self.addCleanup((self.folder / "closed").chmod, 0o755)
        places = [self.folder / "link.html", self.folder / "no" / "page.html"]
        if os.geteuid() != 0:
            places.append(self.folder / "closed" / "page.html")
        for place in places:
            with self.subTest(place.name):
                before = self.files()
                self.assert_bad_usage(run("report", self.adl, "-o", place), str(place.parent if "no" in place.parts else place))
                self.assertEqual(self.files(), before)

    def test_bad_usage(self):
        self.page.write_text("mine")
        for words, arguments in ((("-o is missing",), []), ((str(self.page),), ["-o", self.page]),
                                 (("-o", "empty"), ["-o", ""]), (("--prepare",), ["--prepare", "-o", "x.html"])):
            with self.subTest(arguments):
                done = run("report", self.adl, *arguments)
                self.assert_bad_usage(done, *words)
        self.assertEqual(self.page.read_text(), "mine")

    def test_a_long_project_is_small(self):
        """All rows stand in the page, and its facts have names, while that takes less than 5 MB. Where many
        waveforms are drawn in the time that they may take, the files are the first to give way."""
        adl = pages.long_project(self.folder)
        self.assert_status(run("report", adl, "--copy-to", self.folder / "made", "-o", self.page), ALL_DONE)
        self.assertLess(self.page.stat().st_size, 5_000_000)
        page = pages.Page(self.page)
        self.assertEqual([len(page.rows[table]) for table in ("events", "regions")], [5000] * 2)
        is_cut = "The first 200 of 5000 rows" in page.captions["files"]
        self.assertEqual(len(page.rows["files"]), 200 if is_cut else 5000)
        self.assertNotIn("columns", page.facts)

    def test_a_page_that_would_grow_too_large(self):
        """It says what it leaves to its script, and its facts have everything, if need be without names."""
        # How many waveforms fit is a matter of time, and with few of them more rows fit.
        for shaped, fewer, perhaps, has_names in ((3, {"regions", "files"}, {"regions"}, True),
                                                  (1, {"regions", "files", "messages"}, {"events"}, False)):
            with self.subTest(shaped):
                adl = pages.long_project(self.folder, shaped=shaped)
                how = ("--fades", "--gain", "--depth", "16", "--copy-to", self.folder / "made")
                done = run("report", adl, *how, "-o", self.page, seconds=60)
                self.assertIn(done.status, (ALL_DONE, LEFT_OUT))
                self.assertLess(self.page.stat().st_size, 5_000_000)
                page = pages.Page(self.page)
                self.assertEqual("columns" not in page.facts, has_names)
                cut = []
                for table in ("files", "regions", "messages", "events"):
                    with self.subTest(table):
                        facts = page.facts_of(table)
                        is_cut = f"The first 200 of {len(facts)} rows" in page.captions[table]
                        cut += [is_cut] if len(facts) > 200 else []
                        self.assertEqual(len(page.rows[table]), 200 if is_cut else len(facts))
                        if table not in perhaps:
                            self.assertEqual(is_cut, table in fewer)
                self.assertEqual(cut, sorted(cut, reverse=True), "tables give way in this order")
                regions = page.facts_of("regions")
                self.assertEqual(page.column("regions", "Position"), [str(row["position"]) for row in regions[:200]])
                self.assertEqual({row["path"] for row in regions}, {str(path) for path in self.folder.glob("Scene*.wav")})
                self.page.unlink()


if __name__ == "__main__":
    unittest.main()
