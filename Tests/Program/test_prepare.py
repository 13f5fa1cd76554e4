"""velmora prepare: what becomes of each thing that stands in a project's way."""

import json
import re
import subprocess
import unittest

import material
import prepare_material as m
from holding import as_somebody
from program import ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, LEFT_OUT, ProgramTest, environment, run

HOUR = 3600 * m.SECOND
WAVE = material.wave_of(m.packed(m.samples(5 * m.SECOND)))
STEREO = material.wave_of(m.packed(m.samples(10 * m.SECOND)), channels=2)

FADE = f"(Infade) {m.stamp(1920, separator=';')} LIN _ _ _ "


class Case:
    """A project that has something in its way, and what prepare is to make of it."""

    def __init__(self, code, dirty, options=(), left=(), status=ALL_DONE, files=None, **meant):
        self.code = code
        self.dirty = dirty if isinstance(dirty, bytes) else dirty.encode()
        self.options = options
        self.left = list(left)
        self.status = status
        self.files = files or {"take.wav": WAVE}
        self.meant = meant  # facts of the first event


PLAIN = dict(position=HOUR, end=HOUR + m.SECOND, fileOffset=0, tracks=[1], sourceChannels=[1])

CASES = [
    Case("fade-separator", m.project(events=m.cut(more=f"(Infade) {m.stamp(3000)} LIN _ _ _")),
         fadeIn=3000),
    Case("fade-separator", m.project(events=m.cut(
        length=200 * m.SECOND, more=f"(Outfade) {m.stamp(150 * m.SECOND, separator='.')} LIN _ _ _")),
         files={"take.wav": material.wave_of(m.packed(m.samples(210 * 48000, bits=16), 16), bits=16)},
         end=HOUR + 200 * m.SECOND, fadeOut=150 * m.SECOND),
    Case("fade-form", m.project(events=m.cut(more="(Infade) _ LIN _ _ _")), fadeIn=None),
    Case("fade-form", m.project(events=m.cut(more=f"(Outfade) {m.stamp(1920, separator=';')[:11]} LIN _ _ _")),
         fadeOut=1920),
    Case("values-missing", m.project(events=m.cut(more=f"(Infade) {m.stamp(1920, separator=';')} LIN")), fadeIn=1920),
    Case("values-missing", m.project(sources='(Index) 0001 (F) "URL:file://localhost/V/take.wav" _ '
                                             f'{m.stamp(0)}\n')),
    Case("values-missing", m.project(events=m.cut().replace(" _ \n", "\n"))),
    Case("index-missing", m.project(events=m.cut().replace("(Entry) 0001", "(Entry)"))),
    Case("index-missing", m.project(sources=m.index().replace("(Index) 0001", "(Index)"))),
    Case("index-name", m.project(events=m.cut(source="take.wav"))),
    Case("index-twice", m.project(sources=m.index(name="gone.wav") + m.index())),
    Case("entry-twice", m.project(events=m.cut() + m.cut(position=HOUR + m.SECOND))),
    Case("stray-text", m.project(events="stray words here\n" + m.cut())),
    Case("stray-text", "\ufeff" + m.project()),
    Case("stray-text", "\n" + m.project()),
    Case("stray-text", m.project(sources=m.index() + "<VENDOR>\n1 2 3\n</VENDOR>\n")),
    Case("text-cut-off", m.project().partition("</EVENT_LIST>")[0]),
    Case("file-start-missing", m.project(sources=m.index(start="_")),
         files={"take.wav": material.wave_of(m.packed(m.samples(96000)), chunks=m.bext(HOUR))}),
    Case("file-start-missing",
         m.project(sources=m.index(start="_"), events=m.cut(source_in=HOUR + 4800)), fileOffset=4800,
         files={"take.wav": material.wave_of(m.packed(m.samples(96000)), chunks=m.bext(HOUR))}),
    Case("media-elsewhere", m.project(), files={"Sub/take.wav": WAVE}),
    Case("media-elsewhere", m.project(), files={"Sub/TAKE.wav": WAVE}),
    Case("location-form", m.project(sources=m.index(name="my%20take.wav")), files={"my take.wav": WAVE}),
    Case("location-form", m.project(sources=m.index(location="URL:file://localhost/D:\\\\show\\\\take.wav"))),
    Case("cut-outside-file", m.project(events=m.cut(length=6 * m.SECOND)), end=HOUR + 5 * m.SECOND),
    Case("cut-outside-file",
         m.project(sources=m.index(start=m.stamp(HOUR)), events=m.cut(source_in=HOUR - 3840, length=5 * m.SECOND)),
         position=HOUR + 3840, end=HOUR + 5 * m.SECOND),
    Case("channels", m.project(events=m.cut(channels="1~2", tracks="3-4")), files={"take.wav": STEREO},
         tracks=[3]),
    Case("channels", m.project(events=m.cut(channels="2", tracks="7")), files={"take.wav": STEREO},
         tracks=[7]),
    Case("channels", m.project(events=m.cut(channels="1", tracks="7~9")), tracks=[7]),
    Case("event-off", m.project(events=m.cut(status="D", position=HOUR - 9) + m.cut(2))),
    Case("event-off", m.project(events=m.cut(status="M", position=HOUR - 9) + m.cut(2))),
    # Of two with one number, one is left out: that is told, though an event of that number stays.
    Case("event-off", m.project(events=m.cut(status="D", position=HOUR - 9) + m.cut())),
    Case("event-empty", m.project(events=m.cut() + m.cut(length=0))),
    Case("event-error", m.project(events=m.cut(status="E", position=HOUR - 9) + m.cut(2))),
    Case("event-empty", m.project(events=m.cut(length=0) + m.cut(2))),
    Case("fade-overlong", m.project(events=m.cut(more=f"(Infade) {m.stamp(60000, separator=';')} LIN _ _ _")),
         fadeIn=m.SECOND),
    Case("gain-channels", m.project(events=m.cut(more="(Gain) _ +1.00 (Gain) 1 -6.02")), gains=-6.02),
    Case("rate-mixed", m.project(events=m.cut() + m.cut(2).replace(
        m.stamp(HOUR), material.stamp(3600 * 25, 0, ".", rate="|", frames_per_second=25)))),
    Case("marks-differ", m.project(header=m.HEADER.replace("48000", "44100"))),
    Case("marks-differ", m.project(header=m.HEADER.replace("FRAME_RATE) 25", "FRAME_RATE) 29.97"))),
    Case("rate-compensated", m.project(events=m.cut(position=HOUR + 1920).replace(".", "!"), header=""),
         position=HOUR + 1920, end=HOUR + 1920 + m.SECOND),
    Case("text-encoding", m.project(sources=m.index(name="\u6ce2.wav")), files={"\u6ce2.wav": WAVE}),
    Case("text-encoding", m.project(events=m.cut(more='(Rem) NAME "\u6ce2"'))),
]


# The first is a stamp no more when the text around it is one value.
OTHER_STAMPS = ("<PROJECT>\n(PROJ_NOTES) at 01.00.00:00/0000\n</PROJECT>\n"
                "<OTHER>\n(X) 01:00:00:00-0001\n</OTHER>\n")
REFERENCE = "<REF_LIST>\n<REF>\n<A>\n(B) 1\n</A>\n</REF>\n</REF_LIST>\n"

# Texts that one preparation must write so that the next one reads the same.
TEXTS = [
    Case("name-and-last-on-two-lines", m.project(sources=m.index().replace('"n" N', "n\n00.00.00)"))),
    Case("name-and-quoted-last", m.project(sources=m.index().replace('"n" N', 'n\n"N"'))),
    Case("name-of-two-words", m.project(sources=m.index().replace('"n" N', "n m N"))),
    Case("no-name-and-a-long-last", m.project(sources=m.index().replace('"n" N', "_\nlast"))),
    Case("comment-of-control-bytes", m.project(header=m.HEADER + "/* \x7f\x01 two \x02 words \x7f */\n")),
    # Names that are made safe must not become ones that are read.
    Case("strange-list-of-sources", m.project(header=m.HEADER + f"<SOURCE\xffINDEX>\n{m.index(name='other.wav')}"
                                              "</SOURCE\xffINDEX>\n").encode("latin-1")),
    Case("strange-list-of-events", m.project(header=m.HEADER + f"<EVENT\xffLIST>\n{m.cut(2, position=HOUR - 9)}"
                                             "</EVENT\xffLIST>\n").encode("latin-1")),
    Case("strange-rate", m.project(header=m.HEADER.replace(
        "(SEQ_SAMPLE", "(SEQ\xffSAMPLE_RATE) S44100\n(SEQ_SAMPLE")).encode("latin-1")),
    # The rates are those of the timestamps, wherever another one stands; without a cut those of the sources.
    Case("rates-in-another-section", m.project(header="<VERSION>\n(SEQ_SAMPLE_RATE) S44307\n(SEQ_FRAME_RATE) 24\n</VERSION>\n")),
    Case("rate-outside-sections", m.project(header=m.HEADER.replace("S48000", "S4800") + "(SEQ_SAMPLE_RATE) S48000\n")),
    Case("rates-of-others", m.project(header=OTHER_STAMPS, sources=m.index(start="_"), events="")),
    Case("rates-of-nothing", m.project(header=OTHER_STAMPS + "<SEQUENCE>\n(SEQ_SAMPLE_RATE) S44100\n</SEQUENCE>\n", sources="",
                                       events="")),
    Case("rates-of-a-cut-that-is-left-out", m.project(header="", sources="", events=m.cut(length=0).replace("/", "=") +
         f"(Entry) 0002 (Silence) 1 1 {m.stamp(HOUR)} {m.stamp(HOUR + 1920)}\n")),
    Case("offset-with-a-strange-separator", m.project(header=m.HEADER + "<SYSTEM>\n(SYS_SRC_OFFSET) 00.00:00\xb100/0000\n"
                                                      "</SYSTEM>\n").encode("latin-1")),
    Case("strange-mark", m.project(header=m.HEADER + "<SYSTEM>\n(SYS_SRC_OFFSET) 00.00:00:00\x830000\n</SYSTEM>\n")
         .encode("latin-1")),
    Case("separator-of-three-bytes", m.project(header=m.HEADER + "<SYSTEM>\n(SYS_SRC_OFFSET) 00.00:00\uff7100/0000\n</SYSTEM>\n")),
    Case("strange-status", m.project(events=m.cut(status="\xd2")).encode("latin-1")),
    Case("event-that-goes-on-after-a-section", m.project(events=m.cut() + "(Entry) 0002\n<SOURCE_INDEX>\n(Index) 0002\n(Entry) 3\n"
                                                         "(Cut) I\n</SOURCE_INDEX>\n(Gain) _ -3.00\n")),
    Case("location-after-a-control-byte", m.project(sources=m.index(location="\x00URL:file://localhost/V/take.wav"))),
    Case("value-that-touches-a-tag", m.project(sources=m.index().replace('"n" N', '"n" x</SOURCE_INDEX> y'))),
    Case("references-around-a-second-list", m.project().replace(
        "</ADL>", f"{REFERENCE}<EVENT_LIST>\n{m.cut(2, position=HOUR - 9)}</EVENT_LIST>\n{REFERENCE}</ADL>")),
    Case("references-with-names-made-alike", m.project(header=m.HEADER + "<REF_LIST>\n<REF>\n<A\xff>\n(B) 1\n</A\xff>\n"
                                                       "<A->\n(B) 2\n</A->\n</REF>\n</REF_LIST>\n").encode("latin-1")),
]


class EachCode(ProgramTest):
    def lay_out(self, case):
        folder = self.folder / "in"
        for name, content in case.files.items():
            path = folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
        (folder / "Show.adl").write_bytes(case.dirty)
        return folder / "Show.adl"

    def test_each_code(self):
        for number, case in enumerate(CASES):
            with self.subTest(number=number, code=case.code):
                self.setUp()
                self.check_case(case)

    def check_case(self, case):
        project = self.lay_out(case)
        before = m.checksums(self.folder / "in")
        findings = json.loads(run("check", project, "--json").out)["findings"]
        self.assertIn(case.code, m.codes(findings))
        out = self.folder / "out"
        prepared = run("prepare", project, "--into", out, "--json", *case.options)
        self.assert_status(prepared, case.status)
        self.assertIn(case.code, m.codes(prepared.json["changes"]))
        serious = [item for item in prepared.json["left"] if item["severity"] != "note"]
        self.assertEqual(m.codes(serious), sorted(case.left), prepared.json["left"])
        self.assertEqual(m.checksums(self.folder / "in"), before)
        self.check_result(out / "Show.adl", case)

    def check_result(self, project, case):
        text = project.read_bytes()
        self.assertEqual(text.count(b"\n"), text.count(b"\r\n"))
        for line in text.decode("shift-jis").splitlines():
            self.assertLessEqual(line.count("("), 1 + line.count("\u6ce2"), line)
        checked = json.loads(run("check", project, "--json").out)
        self.assertEqual(checked["verdict"], "loses" if case.left else "clean", checked["findings"])
        event = checked["meant"]["events"][0]
        expected = {**PLAIN, **case.meant}
        for key, value in expected.items():
            fact = event[key]
            if key in ("fadeIn", "fadeOut") and fact is not None:
                fact = fact["length"]
            if key == "gains":
                fact = fact[0]["dB"]
            self.assertEqual(fact, value, key)
        # The system is the witness.
        spot = run("spot", project, "--json")
        self.assert_status(spot, ALL_DONE)
        placed = material.decoded(spot.of("region")[0]["message"])
        self.assertEqual(placed["SMSt"], expected["position"])


class Leftovers(ProgramTest):
    """What cannot be put right is named, and the exit status says so."""

    def prepare(self, text, *options, files=None):
        folder = self.folder / "in"
        folder.mkdir()
        for name, content in (files or {"take.wav": WAVE}).items():
            (folder / name).parent.mkdir(parents=True, exist_ok=True)
            (folder / name).write_bytes(content)
        (folder / "Show.adl").write_text(text)
        return run("prepare", folder / "Show.adl", "--into", self.folder / "out", "--json", *options)

    def left_of(self, prepared):
        return m.codes(item for item in prepared.json["left"] if item["severity"] != "note")

    def events(self):
        return m.meant(self.folder / "out/Show.adl")["events"]

    def test_missing_media_keep_their_cut_and_location(self):
        prepared = self.prepare(m.project(sources=m.index() + m.index(2, "gone.wav"),
                                          events=m.cut() + m.cut(2, source=2, channels="1~2", tracks="2~3")))
        self.assert_status(prepared, LEFT_OUT)
        self.assertEqual(self.left_of(prepared), ["media-missing"])
        text = (self.folder / "out/Show.adl").read_text()
        self.assertIn('"URL:file://localhost/Volumes/Show/gone.wav"', text)
        self.assertEqual([event["tracks"] for event in self.events()], [[1], [2], [3]])

    def test_a_file_of_another_source_is_not_taken_for_a_missing_one(self):
        # The first take is found by its path; for the second there are two of its name, and none is taken.
        prepared = self.prepare(m.project(
            sources=m.index(location=f"file://{self.folder}/in/A/take.wav") +
            m.index(2, location="URL:file://localhost/Volumes/Audio/Take.aif", length=m.stamp(7)),
            events=m.cut() + m.cut(2, source=2)), files={"A/take.wav": WAVE, "B/take.wav": STEREO})
        self.assert_status(prepared, LEFT_OUT)
        self.assertEqual(self.left_of(prepared), ["media-ambiguous", "media-missing"])
        told = str([item for item in prepared.json["left"] if item["code"] == "media-ambiguous"])
        self.assertIn("A/take.wav", told)
        self.assertIn("B/take.wav", told)
        sources = m.meant(self.folder / "out/Show.adl")["sources"]
        self.assertIsNotNone(sources[0]["file"])
        self.assertIsNone(sources[1]["file"])

    def test_no_file_is_guessed_where_a_folder_could_not_be_read(self):
        """Two takes of one name differ. With one of them out of sight the other is not taken for the only one, nor is
        what is missing called nowhere."""
        dirty = m.project(sources=m.index() + m.index(2, "gone.wav"), events=m.cut() + m.cut(2, source=2))
        (self.folder / "in").mkdir()
        (self.folder / "in/Show.adl").write_text(dirty)
        for name, data in (("A", WAVE), ("B", STEREO)):
            (self.folder / "media" / name).mkdir(parents=True)
            (self.folder / "media" / name / "take.wav").write_bytes(data)
        (self.folder / "made").mkdir()
        self.folder.chmod(0o755)
        program, before = as_somebody(self.folder)
        closed = self.folder / "media" / "B"
        closed.chmod(0)
        self.addCleanup(closed.chmod, 0o755)
        done = subprocess.run([program, "prepare", self.folder / "in/Show.adl", "--media", self.folder / "media",
                               "--into", self.folder / "made/out", "--json"],
                              capture_output=True, text=True, env=environment(), preexec_fn=before)
        self.assertEqual(done.returncode, LEFT_OUT, done.stderr)
        told = json.loads(done.stdout)
        left = {(item["code"], item["source"]): item["text"] for item in told["left"] if item["severity"] != "note"}
        self.assertEqual(sorted(left), [("media-ambiguous", 1), ("media-missing", 1), ("media-missing", 2)])
        self.assertIn(f"{self.folder}/media/A/take.wav", left["media-ambiguous", 1])
        for finding in (("media-ambiguous", 1), ("media-missing", 2)):
            self.assertIn(f"not read: {closed} (Permission denied)", left[finding])
        self.assertEqual(told["files"], [])

    def test_source_that_is_not_listed(self):
        prepared = self.prepare(m.project(events=m.cut() + m.cut(2, source=9)))
        self.assert_status(prepared, LEFT_OUT)
        self.assertEqual(self.left_of(prepared), ["source-missing"])
        self.assertEqual(len(self.events()), 2)

    def test_cut_of_which_nothing_is_in_its_file(self):
        prepared = self.prepare(m.project(events=m.cut() + m.cut(2, source_in=9 * m.SECOND)))
        self.assert_status(prepared, LEFT_OUT)
        self.assertEqual(self.left_of(prepared), ["cut-outside-file"])
        self.assertEqual(len(self.events()), 1)

    def test_incomplete_cut(self):
        text = m.project(events=m.cut() + m.cut(2))
        prepared = self.prepare(text[:text.rindex(" _ ") - 20])
        self.assert_status(prepared, LEFT_OUT)
        self.assertEqual(self.left_of(prepared), ["text-cut-off"])
        self.assertEqual(len(self.events()), 1)

    def test_channels_without_a_partner(self):
        prepared = self.prepare(m.project(events=m.cut(channels="1~2", tracks="1") + m.cut(2, channels="3", tracks="2")),
                                files={"take.wav": STEREO})
        self.assert_status(prepared, LEFT_OUT)
        self.assertEqual(self.left_of(prepared), ["channels"])
        self.assertEqual([item["entry"] for item in prepared.json["left"] if item["code"] == "channels"], [1, 2])
        self.assertEqual(len(self.events()), 1)

    def test_endless_runs_of_channels(self):
        prepared = self.prepare(m.project(events=m.cut(channels="1", tracks="1~2147483647")))
        self.assert_status(prepared, LEFT_OUT)
        self.assertEqual(self.left_of(prepared), ["channels"])
        self.assertEqual(len(self.events()), 1024)

    def test_options_that_keep(self):
        prepared = self.prepare(m.project(events=m.cut(channels="1~2", tracks="1~2") + m.cut(2, status="M", channels="1~2",
                                                                                       tracks="1~2")),
                                "--keep-stereo", "--keep-off", files={"take.wav": STEREO})
        self.assert_status(prepared, LEFT_OUT)
        self.assertEqual(self.left_of(prepared), ["channels", "event-off"])
        self.assertEqual([event["tracks"] for event in self.events()], [[1, 2], [1, 2]])
        self.assertEqual([file["how"] for file in prepared.json["files"]], ["linked"])

    def test_what_a_session_cannot_have_is_left_but_all_is_well(self):
        # 96 kHz: a session's timecode counts at 48 kHz.
        text = m.project(header="").replace("/0000", "*0000").replace("/1920", "*1920")
        prepared = self.prepare(text, files={"take.wav": material.wave_of(m.packed(m.samples(600000)), rate=96000)})
        self.assert_status(prepared, ALL_DONE)
        self.assertEqual(self.left_of(prepared), ["rate-compensated"])
        self.assertEqual([item["remedy"] for item in prepared.json["left"] if item["code"] == "rate-compensated"],
                         ["Spot it with velmora spot --true-position."])

    def test_changes_say_what_became_of_each(self):
        prepared = self.prepare(m.project(
            header=m.HEADER.replace("01.00:00:00/0000", "01.00.00.00/0000"),
            events=m.cut(more=f"(Infade) _ LIN _ _ _ (Outfade) {m.stamp(3840, separator='.')} LIN _ _ _ "
                               "(Rem) NAME _") +
            m.cut(2, channels="2", tracks="3", more='(Rem) NAME "\uc74c\u6ce2"')), files={"take.wav": STEREO})
        texts = {(item["code"], item["entry"]): item["text"] for item in prepared.json["changes"]}
        self.assertEqual(texts["fade-form", 1], "Fade left out: it has no length.")
        self.assertEqual(texts["fade-separator", 1],
                         f"Fade length written as {m.stamp(3840, separator=';')}.")
        self.assertEqual(texts["channels", 2], "Made a mono cut of a mono file.")
        self.assertIn("?\u6ce2", texts["text-encoding", 2])
        self.assertIn("(Rem) NAME _\n", (self.folder / "out/Show.adl").read_text("shift-jis"))
        self.assertIn("(SEQ_DEST_START) 01.00.00.00/0000", (self.folder / "out/Show.adl").read_text("shift-jis"))

    def test_notes_are_kept_and_carried_over(self):
        text = m.project(
            header=m.HEADER + '<TRACKLIST>\n(Track) 1 "Dialogue"\n</TRACKLIST>\n<FADER>\n(Level) 1 0.5 00.00\n'
            "1 2 3\n</FADER>\n/* a comment */\n",
            events=m.cut(more=f"(Infade) {m.stamp(1920, separator=';')} CURVE -12.04 -6.02 -2.50 I 1 {m.stamp(9)} "
                              '(Rem) NAME "take (one)" (Rem) "by hand"') +
            "(Entry) 0002 (Silence) 1 1 " + m.stamp(HOUR) + " " + m.stamp(HOUR + 1) + "\n")
        prepared = self.prepare(text)
        self.assert_status(prepared, ALL_DONE)
        self.assertEqual(self.left_of(prepared), [])
        kept = (self.folder / "out/Show.adl").read_text()
        for piece in ('(Track) 1 "Dialogue"', "(Level) 1 0.5 00.00", "1 2 3", "/* a comment */", "(Rem) NAME \"take (one)\"",
                      '(Rem) "by hand"', "CURVE -12.04 -6.02 -2.50 I 1 " + m.stamp(9), "(Silence) 1 1 "):
            self.assertIn(piece, kept)

    def test_comments_stay_where_they_are(self):
        """Once, also where a section stands inside another, and those of a list that goes into the first."""
        text = m.project(header=m.HEADER + "<A>\n/* one */\n(X) 1\n<B>\n/* two */\n(Y) 2\n</B>\n/* three */\n(Z) 3\n</A>\n"
                                           "/* four */\n").replace(
            "</ADL>", f"<EVENT_LIST>\n/* five */\n{m.cut(2, position=HOUR + m.SECOND)}</EVENT_LIST>\n</ADL>")
        self.assert_status(self.prepare(text), ALL_DONE)
        kept = (self.folder / "out/Show.adl").read_text()
        self.assertEqual(re.findall(r"/\* (\w+) \*/|<([AB]|EVENT_LIST)>", kept),
                         [("", "A"), ("one", ""), ("", "B"), ("two", ""), ("three", ""), ("", "A"), ("four", ""),
                          ("", "EVENT_LIST"), ("five", "")])

    def test_second_prepare_changes_nothing(self):
        for number, case in enumerate(CASES + TEXTS):
            with self.subTest(number=number, code=case.code):
                self.setUp()
                project = EachCode.lay_out(self, case)
                run("prepare", project, "--into", self.folder / "out", *case.options)
                again = run("prepare", self.folder / "out/Show.adl", "--into", self.folder / "again", "--json",
                            *case.options)
                self.assert_status(again, case.status)
                self.assertEqual(again.json["changes"], [])
                self.assertEqual((self.folder / "again/Show.adl").read_bytes(),
                                 (self.folder / "out/Show.adl").read_bytes())
                self.assertEqual(sorted(path.name for path in (self.folder / "again/Audio").iterdir()),
                                 sorted(path.name for path in (self.folder / "out/Audio").iterdir()))


class Usage(ProgramTest):
    def setUp(self):
        super().setUp()
        self.project = self.folder / "Show.adl"
        self.project.write_text(m.project())
        (self.folder / "take.wav").write_bytes(WAVE)

    def test_folder_is_needed_and_must_be_free(self):
        self.assert_bad_usage(run("prepare", self.project), "--into")
        self.assert_bad_usage(run("prepare", self.project, "--into", ""), "--into")
        full = self.folder / "full"
        full.mkdir()
        (full / "mine").write_text("mine")
        self.assert_bad_usage(run("prepare", self.project, "--into", full), "--into", "full", "not empty")
        self.assertEqual([path.name for path in full.iterdir()], ["mine"])
        self.assert_bad_usage(run("prepare", self.project, "--into", self.project), "--into", "no folder")

    def test_empty_folder_is_taken(self):
        (self.folder / "out").mkdir()
        self.assert_status(run("prepare", "Show.adl", "--into", "out", cwd=self.folder), ALL_DONE)
        self.assertTrue((self.folder / "out/Show.adl").is_file())

    def test_what_is_no_adl(self):
        for content in (b"", b"hello\n", bytes(range(256)) * 100):
            with self.subTest(content=content[:10]):
                self.project.write_bytes(content)
                told = run("prepare", self.project, "--into", self.folder / "out", "--json")
                self.assert_status(told, DOES_NOT_LOAD)
                self.assertEqual(told.json["exit"], DOES_NOT_LOAD)
                self.assertIsNone(told.json["project"])
                self.assertFalse((self.folder / "out").exists())
        self.assert_status(run("prepare", self.folder / "none.adl", "--into", self.folder / "out"), DOES_NOT_LOAD)

    def test_text_tells_changes_files_and_leftovers(self):
        self.project.write_text(m.project(sources=m.index() + m.index(2, "go\u001b[31mne.wav"),
                                          events=m.cut(status="D") + m.cut(2) + m.cut(3, source=2)))
        told = run("prepare", self.project, "--into", self.folder / "out")
        self.assert_status(told, LEFT_OUT)
        for words in ("event-off", "line 19, entry 1", "linked", "take.wav", "media-missing", str(self.folder / "out/Show.adl")):
            self.assertIn(words, told.out)
        self.assertNotIn("\u001b", told.out)

    def test_json_is_one_object_of_these_members(self):
        told = run("prepare", self.project, "--into", self.folder / "out", "--json")
        self.assert_status(told, ALL_DONE)
        self.assertEqual(told.out.count("\n"), 1)
        self.assertEqual(list(told.json), ["project", "changes", "files", "left", "exit"])
        self.assertEqual(told.json["project"], str(self.folder / "out/Show.adl"))
        self.assertEqual(told.json["files"], [{"from": str(self.folder / "take.wav"),
                                               "to": str(self.folder / "out/Audio/take.wav"), "how": "linked"}])
        self.assertEqual(told.json["exit"], ALL_DONE)
        self.assertNotIn("preparing", told.out)

    def test_bad_options(self):
        for options in (("--trust", "luck"), ("--encoding", "no-such"), ("--session-rate", "fast"), ("--media", "")):
            with self.subTest(options=options):
                told = run("prepare", self.project, "--into", self.folder / "out", *options)
                self.assert_bad_usage(told, options[0])


if __name__ == "__main__":
    unittest.main()
