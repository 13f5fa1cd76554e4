"""DAWproject and OpenTimelineIO where they are hard: far positions at high rates, names, audio inside, what was left out."""

import os
import pathlib
import unittest
import zipfile

import dawproject_reader
import otio_reader
import playing
from program import ALL_DONE, LEFT_OUT, run
from projects import NAMES, Cut
from targets import HOUR, SECOND, TargetTest, noise

HOSTILE = ("<b>&amp;\"'.wav", "]]><!--.wav", "%41 %zz%.wav", "a?b#c;d.wav", " leading and trailing .wav", "ｗｉｄｅ.wav", "a\tb.wav")


class FormatTest(TargetTest):
    def formats(self, project, *options, into="out", status=(ALL_DONE,), rate=None):
        spot = self.spot(project.path, *options, into=into, status=status, targets=("dawproject", "otio"))
        rate = rate or project.rate
        return (spot, dawproject_reader.read(spot.folder / "d.dawproject", rate), otio_reader.read(spot.folder / "o.otio", rate))


class Times(FormatTest):
    def test_everySampleOfADayAtEveryRate(self):
        """Seconds as text give the sample back by plain double arithmetic too, as other programs do it."""
        places = [number * 86399 * SECOND // 97 + number * number for number in range(98)]
        for rate in (32000, 44100, 48000, 88200, 96000, 176400, 192000):
            with self.subTest(rate=rate):
                project = self.project({"a.wav": noise(2000, rate=rate)}, *(Cut(1, 1, number % 777, place, 1 + number, number % 2)
                                       for number, place in enumerate(places)), name=f"p{rate}")
                spot, daw, otio = self.formats(project, "--native", "--session-rate", str(rate), "--true-position", into=f"o{rate}",
                                               rate=rate)
                expected = [(place, 1 + number, number % 777) for number, place in enumerate(places)]
                clips = daw.tracks[0][2]
                self.assertEqual([(clip.time, clip.duration, clip.region.start) for clip in clips], expected)
                self.assertEqual([(clip.time, clip.duration, clip.start) for clip in otio.tracks[0].clips], expected)
                text = daw.members["project.xml"].decode("utf-8")
                times = [float(part.split('"')[1]) for part in text.split("<Clip ")[1:] for part in [part.split("time=")[1]]]
                self.assertEqual([int(time * rate + 0.5) for time in times], places)

    def test_beforeTheTimelineBegins(self):
        """Each tells the same place, and a line says that it is before 0, or the format is refused."""
        project = self.project({"a.wav": noise(900)}, Cut(1, 1, 0, SECOND, 900), Cut(1, 1, 0, 5 * SECOND, 900))
        spot, daw, otio = self.formats(project, "--position", "offset", "--offset", "-00:00:02:00", status=(ALL_DONE, LEFT_OUT))
        self.assertEqual([clip.time for clip in daw.tracks[0][2]], [-SECOND, 3 * SECOND])
        self.assertEqual([clip.time for clip in otio.tracks[0].clips], [-SECOND, 3 * SECOND])


class Names(FormatTest):
    def test_pathsAndNames(self):
        for name in NAMES + list(HOSTILE):
            with self.subTest(name):
                folder = f"project {NAMES.index(name)}" if name in NAMES else f"<&'\"%20#> {HOSTILE.index(name)}"
                project = self.project({"x.wav": noise(900)}, Cut(1, 1, 0, HOUR, 900), name=folder)
                try:
                    target = self.folder / f"copies {name}"
                    result = run("spot", project.path, "--quiet", "--copy-to", target, "--host", f"embedded:{self.folder / 's.json'}",
                                 "--dawproject", self.folder / "d", "--otio", self.folder / "o")
                    self.assert_status(result, ALL_DONE)
                    path = str(target / "x.wav")
                    daw = dawproject_reader.read(self.folder / "d", SECOND)
                    self.assertEqual(daw.tracks[0][2][0].file["path"], path)
                    self.assertEqual(otio_reader.read(self.folder / "o", SECOND).tracks[0].clips[0].path, path)
                finally:
                    for made in ("d", "o", "s.json"):
                        (self.folder / made).unlink(missing_ok=True)

    def test_aPathThatIsNoText(self):
        """Bytes that no encoding has: a URL can tell them; XML cannot, and says so."""
        folder = os.fsdecode(b"not \xff text")
        project = self.project({"x.wav": noise(900)}, Cut(1, 1, 0, HOUR, 900), name=folder)
        spot = self.spot(project.path, targets=("dawproject", "otio"), status=(ALL_DONE, LEFT_OUT))
        otio = otio_reader.read(spot.folder / "o.otio", SECOND)
        self.assertEqual(otio.tracks[0].clips[0].path, str(project.path.parent / "x.wav"))
        if (spot.folder / "d.dawproject").exists():
            daw = dawproject_reader.read(spot.folder / "d.dawproject", SECOND)
            if daw.tracks[0][2]:
                self.assertIn("velmora: dawproject: ", spot.run.err)


class Contents(FormatTest):
    def test_audioInside(self):
        """Whole files, byte for byte, each once, told apart where two have one name; nothing refers outside."""
        files = {"a.wav": noise(900), "b.wav": noise(700, channels=2, seed=2)}
        project = self.project(files, Cut(1, 1, 0, HOUR, 500), Cut(2, 1, 9, HOUR + 300, 500), Cut(1, 2, 400, HOUR, 500, 20, 30, "-6"))
        other = project.path.parent / "deep"
        other.mkdir()
        (other / "a.wav").write_bytes(noise(900, seed=3))
        text = project.path.read_bytes().replace(b"proj/b.wav", b"proj/deep/a.wav")
        project.path.write_bytes(text)
        spot, daw, _ = self.formats(project, "--embed-media", "--native")
        paths = {region.path for region in spot.regions}
        with zipfile.ZipFile(spot.folder / "d.dawproject") as archive:
            inside = {name: archive.read(name) for name in archive.namelist() if not name.endswith(".xml")}
        clips = [clip for _, _, clips in daw.tracks for clip in clips]
        self.assertTrue(all(not clip.file["external"] for clip in clips))
        self.assertEqual({clip.file["path"] for clip in clips}, set(inside))
        self.assertEqual(sorted(inside.values()), sorted(pathlib.Path(path).read_bytes() for path in paths))
        # By the content that each names, the clips are those of the session.
        contents = {region.index: pathlib.Path(region.path).read_bytes() for region in spot.regions}
        self.assertEqual(sorted(inside[clip.file["path"]] for clip in clips), sorted(contents.values()))

    def test_audioInsideSoundsTheSame(self):
        project = self.project({"a.wav": noise(900), "b.wav": noise(700, 16, 2, seed=2)}, Cut(1, 1, 0, HOUR, 500, 10, 100),
                               Cut(2, 1, 9, HOUR + 400, 500, 100, 20, "-6"), Cut(1, 2, 400, HOUR, 500))
        spot, daw, _ = self.formats(project, "--embed-media", "--native")
        with zipfile.ZipFile(spot.folder / "d.dawproject") as archive:
            archive.extractall(spot.folder / "inside")
        media = playing.Media()
        playback = playing.play(spot.regions, media, project.rate)
        for (_, _, clips), channels in zip(daw.tracks, playback.tracks.values()):
            heard = [[0] * playback.frames for _ in channels]
            for clip in clips:
                clip.region.path = str(spot.folder / "inside" / clip.file["path"])
                playing.place(clip.region, clip.region.position - playback.first, heard, media)
            self.assertTrue(heard == channels)

    def test_whatWasLeftOutIsMarked(self):
        project = self.project({"a.wav": noise(900), "none.wav": b""}, Cut(1, 1, 0, HOUR, 900), Cut(2, 3, 0, HOUR + 77, 900),
                               Cut(2, 1, 0, HOUR + 5 * SECOND, 900))
        (project.path.parent / "none.wav").unlink()
        spot, daw, otio = self.formats(project, status=(LEFT_OUT,))
        self.assertEqual([time for time, _ in daw.markers], [HOUR + 77, HOUR + 5 * SECOND])
        self.assertEqual([time for time, _, _ in otio.markers], [HOUR + 77, HOUR + 5 * SECOND])
        for name in [name for _, name in daw.markers] + [name for _, _, name in otio.markers]:
            self.assertIn("none.wav", name)

    def test_anotherRate(self):
        """DAWproject leaves the region out, with a marker; OpenTimelineIO keeps it and tells."""
        project = self.project({"a.wav": noise(900), "b.wav": noise(900, rate=44100)}, Cut(1, 1, 0, HOUR, 900), Cut(2, 1, 0, HOUR + 2000, 900))
        spot, daw, otio = self.formats(project, status=(LEFT_OUT,))
        self.assertEqual([clip.time for clip in daw.tracks[0][2]], [HOUR])
        self.assertEqual([time for time, _ in daw.markers], [HOUR + 2000])
        self.assertEqual([clip.time for clip in otio.tracks[0].clips], [HOUR, HOUR + 2000])
        self.assertEqual([spot.target(name)["status"] for name in ("dawproject", "otio")], [LEFT_OUT, ALL_DONE])
        for name in ("dawproject", "otio"):
            self.assertRegex(spot.run.err, rf"velmora: {name}: .*b\.wav.*44100")

    def test_fadePiecesOf8Bits(self):
        """Their samples have signs, which no wave file of 8 bits has: every target that refers to them says so."""
        project = self.project({"a.wav": noise(900, 8)}, Cut(1, 1, 0, HOUR, 900, 100, 50))
        spot = self.spot(project.path, "--fades", targets=("dawproject", "otio", "bounce"))
        for target in ("dawproject", "otio", "bounce"):
            for piece in ("a_FadeIn", "a_FadeOut"):
                self.assertRegex(spot.run.err, rf'velmora: {target}: note: .*"{piece}".*8 bits')

    def test_theProjectsConstants(self):
        project = self.project({"a.wav": noise(900)}, Cut(1, 1, 0, HOUR, 900))
        text = project.path.read_bytes().replace(
            b"<SOURCE_INDEX>", b'<VERSION>\n(ADL_ID) 1234\n</VERSION>\n<PROJECT>\n(PROJ_TITLE) "</script><b>&\\ \x97\x92"\n</PROJECT>\n'
            b'<SEQUENCE>\n(SEQ_TITLE) "One & two"\n(SEQ_SAMPLE_RATE) S48000\n</SEQUENCE>\n<SOURCE_INDEX>', 1)
        project.path.write_bytes(text)
        spot, daw, otio = self.formats(project)
        constants = run("info", project.path, "--json").json["constants"]
        self.assertEqual(len(constants), 24)
        bare = {key: text and text.removeprefix('"').removesuffix('"') for key, text in constants.items()}
        self.assertEqual((bare["SEQ_TITLE"], bare["PROJ_NOTES"]), ("One & two", None))
        self.assertEqual(otio.metadata["velmora"]["constants"], bare)
        self.assertEqual((daw.title, otio.name), ("One & two", "One & two"))

    def test_eachClipTellsItsEvent(self):
        project = self.project({"a.wav": noise(3000)}, Cut(1, 1, 0, HOUR, 900, 100, 100, "-7.5"), Cut(1, 1, 9, HOUR + 800, 900, 100, 0))
        for way in ((), ("--fades",), ("--native",)):
            with self.subTest(way):
                spot, _, otio = self.formats(project, *way, into=f"out {way}")
                regions = {region["index"]: region for track in spot.session["tracks"] for region in track["regions"]}
                for clip in otio.tracks[0].clips:
                    facts = clip.metadata["velmora"]
                    region = regions[facts["region"]]
                    self.assertEqual({key: facts[key] for key in ("gainDb", "event", "entry", "source", "piece")},
                                     {key: region[key] for key in ("gainDb", "event", "entry", "source", "piece")})
                    self.assertEqual(clip.name, region["name"])

    def test_gainIsNoFactOfOtherPrograms(self):
        project = self.project({"a.wav": noise(900)}, Cut(1, 1, 0, HOUR, 900, 0, 0, "-7.5"))
        spot, daw, otio = self.formats(project, "--native")
        self.assertEqual(otio.tracks[0].clips[0].metadata["velmora"]["gainDb"], -7.5)
        self.assertEqual(daw.tracks[0][2][0].region.factor, 10 ** (-7.5 / 20))
        self.assertRegex(spot.run.err, r"velmora: otio: note: .*[Gg]ain")


if __name__ == "__main__":
    unittest.main()
