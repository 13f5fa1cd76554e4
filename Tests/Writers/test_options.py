"""What the options of check, prepare and spot change, and what a converted file holds by the witness of other programs."""

import array
import math
import os
import struct
import subprocess
import unittest

import audio
from field_tools import FieldTest, brief, harmful, session_regions
from layout import adl, checksums, cut, lay_out, source
from program import ALL_DONE, BAD_USAGE, LEFT_OUT, run
from twins import CLEAN, FADES, FILES, VOICE

HOUR = 172800000
ONE = [cut(1, 1, 1, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000")]


def decoded(path):
    """The samples as ffmpeg decodes them, left-justified in 32 bits."""
    raw = subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-f", "s32le", "-c:a", "pcm_s32le", "-"],
                         capture_output=True, check=True).stdout
    samples = array.array("i")
    samples.frombytes(raw)
    return samples


def bext_of(path):
    """The fixed part of the bext chunk, but for the version and what newer versions have put into the reserved bytes."""
    content = path.read_bytes()
    at = content.index(b"bext") + 8
    return content[at:at + 346]


class OptionTest(FieldTest):
    def lay(self, text=CLEAN, where="source", **files):
        return lay_out(self.folder / where, text, {**FILES, **{name + ".wav": content for name, content in files.items()}})

    def one_voice(self, content, name="voice.wav"):
        return lay_out(self.folder / "source", adl([source(1, name)], ONE), {name: content})

    def made(self, into=None):
        return sorted((into or self.folder / "into").joinpath("Audio").iterdir())


class Media(OptionTest):
    def test_whatCanStayIsLinked(self):
        told = self.prepare(self.lay(), self.folder / "into")
        self.assertEqual({file["how"] for file in told["files"]}, {"linked"})
        self.assertEqual([path.is_symlink() for path in self.made()], [True, True])
        for path in self.made():
            self.assertEqual(path.resolve().parent, self.folder / "source")

    def test_copiedWhenAsked(self):
        told = self.prepare(self.lay(), self.folder / "into", "--copy-media")
        self.assertEqual({file["how"] for file in told["files"]}, {"copied"})
        self.assertEqual([path.is_symlink() for path in self.made()], [False, False])
        self.assertEqual(sorted(path.read_bytes() for path in self.made()), sorted(FILES.values()))

    def test_sourcesThatShareAFileShareTheCopy(self):
        text = CLEAN.replace(b"room.wav", b"voice.wav")
        told = self.prepare(self.lay(text, voice=audio.floats(VOICE)), self.folder / "into")
        self.assertEqual([file["how"] for file in told["files"]].count("converted"), 1)
        self.assertEqual(len(self.made()), 1)

    def test_convertedFilesSoundAsTheyDid(self):
        """By ffmpeg on both sides."""
        wide = audio.noise(5000, channels=1, bits=16, seed="w")
        for name, content in (("extensible", audio.wave(VOICE, extensible=True)), ("float", audio.floats(VOICE)),
                              ("rf64", audio.rf64(VOICE)), ("eight", audio.wave(audio.noise(24000, bits=8, seed="e"), bits=8)),
                              ("twenty", audio.wave(audio.noise(24000, bits=20, seed="t"), bits=20)),
                              ("sixteen", audio.wave(wide * 1, bits=16, extensible=True)),
                              ("thirtytwo", audio.wave(audio.noise(24000, bits=32, seed="f"), bits=32, extensible=True))):
            with self.subTest(name):
                project = lay_out(self.folder / name, adl([source(1, "voice.wav")],
                                  [cut(1, 1, 1, "00.00:00:00/0000", "01.00:00:00/0000", "01.00:00:02/0000")]), {"voice.wav": content})
                into = self.folder / ("into " + name)
                told = self.prepare(project, into)
                self.assertEqual([file["how"] for file in told["files"]], ["converted"])
                made, = self.made(into)
                self.assertFalse(made.is_symlink())
                self.assertEqual(decoded(made), decoded(project.parent / "voice.wav"))

    def test_floatsAreRoundedToNearestAndClipped(self):
        """Value times 2^23. What is beyond full scale is clipped, and told."""
        step = 2.0 ** -23
        wanted = [(0.0, 0), (0.5, 1 << 22), (-1.0, -(1 << 23)), (step, 1), (0.6 * step, 1), (0.4 * step, 0), (-0.6 * step, -1),
                  (1.0, (1 << 23) - 1), (1.5, (1 << 23) - 1), (-3.0, -(1 << 23)), (3.4 * step, 3), (-3.4 * step, -3)]
        values = array.array("f", [value for value, _ in wanted] * 1000)
        body = (b"WAVE" + audio.chunk(b"fmt ", struct.pack("<HHIIHH", 3, 1, 48000, 192000, 4, 32))
                + audio.chunk(b"data", values.tobytes()))
        project = self.one_voice(b"RIFF" + struct.pack("<I", len(body)) + body)
        told = self.prepare(project, self.folder / "into")
        made, = self.made()
        rate, sound = audio.plain_sound(made.read_bytes())
        self.assertEqual((rate, list(sound[0][:len(wanted)])), (48000, [value << 8 for _, value in wanted]))
        self.assertEqual(len(sound[0]), len(values))
        words = " ".join(change["text"] for change in told["changes"] if change["code"] == "media-kind")
        self.assertRegex(words, r"(?i)clip|full scale|over|peak")

    def test_bextIsKept(self):
        """The reference and the time reference are what people find a take by."""
        head = audio.bext(123456, "REF-A", b"Scene 7")
        project = self.one_voice(audio.floats(VOICE, head=head))
        self.prepare(project, self.folder / "into")
        made, = self.made()
        self.assertEqual(bext_of(made), bext_of(project.parent / "voice.wav"))

    def test_bextIsKeptInBothHalves(self):
        wide = audio.noise(24000, channels=2, seed="wide")
        text = adl([source(1, "voice.wav")], [cut(1, 1, "1~2", "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000",
                                                  channels="1~2")])
        project = lay_out(self.folder / "source", text, {"voice.wav": audio.wave(wide, head=audio.bext(99, "REF-B"))})
        told = self.prepare(project, self.folder / "into")
        self.assertEqual({file["how"] for file in told["files"]}, {"split"})
        self.assertEqual([bext_of(path) for path in self.made()], [bext_of(project.parent / "voice.wav")] * 2)
        both = decoded(project.parent / "voice.wav")
        self.assertEqual([decoded(path) for path in self.made()], [both[0::2], both[1::2]])


class Resampling(OptionTest):
    TONE, LEVEL = 997.0, 0.5

    def tone(self, rate, frames):
        return [array.array("i", [round(self.LEVEL * math.sin(2 * math.pi * self.TONE * n / rate) * (1 << 23)) << 8
                                  for n in range(frames)])]

    def test_toneKeepsItsPitchAndPlace(self):
        """Against the tone itself at the new rate: nothing is off by more than a part in 100,000 of full scale."""
        start = 44100 * 3600
        content = audio.wave(self.tone(44100, 22050), rate=44100, head=audio.bext(start, "REF"))
        project = self.one_voice(content)
        without = self.prepare(project, self.folder / "without", status=LEFT_OUT)
        self.assertEqual({f["code"] for f in harmful(without["left"])}, {"media-rate"})
        told = self.prepare(project, self.folder / "into", "--resample")
        self.assertEqual([file["how"] for file in told["files"]], ["resampled"])
        self.assertEqual(harmful(told["left"]), [])
        made, = self.made()
        rate, sound = audio.plain_sound(made.read_bytes())
        self.assertEqual((rate, len(sound)), (48000, 1))
        self.assertLessEqual(abs(len(sound[0]) - 24000), 1)
        self.assertEqual(struct.unpack_from("<Q", bext_of(made), 338)[0], HOUR)
        for n in range(2000, 22000):
            wanted = self.LEVEL * math.sin(2 * math.pi * self.TONE * n / 48000)
            self.assertAlmostEqual(sound[0][n] / (1 << 31), wanted, delta=1e-5)
        self.assert_clean(self.folder / "into" / "p.adl")


class Kept(OptionTest):
    def test_keepStereo(self):
        wide = audio.noise(24000, channels=2, seed="wide")
        text = adl([source(1, "voice.wav")], [cut(1, 1, "1~2", "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000",
                                                  channels="1~2")])
        project = lay_out(self.folder / "source", text, {"voice.wav": audio.wave(wide)})
        result = run("prepare", project, "--into", self.folder / "into", "--keep-stereo", "--json")
        self.assertIn(result.status, (ALL_DONE, LEFT_OUT))
        placed, = self.prepared_cuts(self.folder / "into" / "p.adl")
        rate, sound = placed.sound
        self.assertEqual((placed.track, placed.position, rate), (1, HOUR, 48000))
        self.assertEqual(sound, [channel[1920:11520] for channel in wide])

    def test_keepOff(self):
        project = self.lay(CLEAN.replace(b"01.00:00:10/0000 _", b"01.00:00:10/0000 D"))
        self.prepare(project, self.folder / "into")
        self.assertEqual([placed.position for placed in self.prepared_cuts(self.folder / "into" / "p.adl")], [HOUR])
        result = run("prepare", project, "--into", self.folder / "kept", "--keep-off", "--json")
        self.assertIn(result.status, (ALL_DONE, LEFT_OUT))
        placed = self.prepared_cuts(self.folder / "kept" / "p.adl")
        self.assertEqual([cut.position for cut in placed], [HOUR, HOUR + 9600])
        meant = self.check(self.folder / "kept" / "p.adl")["meant"]["events"]
        self.assertEqual([event["enabled"] for event in meant], [True, False])


class Session(OptionTest):
    def codes(self, *options):
        return {finding["code"] for finding in harmful(self.check(self.lay(), *options)["findings"])}

    def test_anotherSessionMovesEverything(self):
        self.assertEqual(self.codes(), set())
        self.assertEqual(self.codes("--session-rate", "48000", "--session-frame-rate", "25"), set())
        self.assertEqual(self.codes("--session-frame-rate", "2"), set())
        self.assertEqual(self.codes("--session-frame-rate", "29.97"), {"rate-compensated"})
        self.assertEqual(self.codes("--session-rate", "44100"), {"rate-compensated"})

    def test_encodingIsOverridden(self):
        text = CLEAN.replace(b"voice.wav", "Möwe.wav".encode("cp850"))
        project = lay_out(self.folder / "source", text, {"Möwe.wav": FILES["voice.wav"], "room.wav": FILES["room.wav"]})
        told = self.check(project, "--encoding", "CP850")
        self.assertEqual(told["encoding"], "CP850")
        self.assertIn("Möwe.wav", told["meant"]["sources"][0]["location"])
        self.assertEqual({f["code"] for f in harmful(told["findings"])}, {"text-encoding"}, brief(told["findings"]))
        self.prepare(project, self.folder / "into", "--encoding", "CP850")
        self.assertEqual(self.prepared_cuts(self.folder / "into" / "p.adl")[0].sound[1][0], VOICE[0][1920:11520])


class Spot(OptionTest):
    def spot(self, project, *options, status=ALL_DONE):
        session = self.folder / "session.json"
        session.unlink(missing_ok=True)
        result = run("spot", project, "--quiet", "--host", f"embedded:{session}", *options)
        self.assert_status(result, status)
        return result, session_regions(session)

    def test_truePositionCancelsTheCompensation(self):
        """A first cut between two frames, and a project at 96 kHz that starts at one hour."""
        between = CLEAN.replace(b"/0000 01.00:00:00/0000 01.00:00:05/0000", b"/0000 01.00:00:00/0007 01.00:00:05/0007")
        project = self.lay(between)
        self.assertEqual([region[1] for region in self.spot(project)[1]], [HOUR, HOUR + 9600 - 7])
        self.assertEqual([region[1] for region in self.spot(project, "--true-position")[1]], [HOUR + 7, HOUR + 9600])
        high = adl([source(1, "voice.wav", "00.00:00:00*0000", "00.00:00:06*0960")],
                   [cut(1, 1, 1, "00.00:00:01*0000", "01.00:00:00*0000", "01.00:00:05*0000")], rate="96000")
        project = self.lay(high, "high", voice=audio.wave(VOICE, rate=96000))
        self.assertEqual([region[1] for region in self.spot(project)[1]], [HOUR])
        self.assertEqual([region[1] for region in self.spot(project, "--true-position")[1]], [2 * HOUR])

    def dirty(self):
        """Fails to load, and its file is a float one under another name than the system looks for."""
        text = CLEAN.replace(FADES[0].encode(), FADES[0].replace(";", ":").encode()).replace(b"proj/voice.wav", b"D:\\x\\voice.wav")
        return self.lay(text.replace(b"01.00:00:00/0000", b"01.00:00:00/0003"), voice=audio.floats(VOICE))

    def test_preparedOnTheWay(self):
        project = self.dirty()
        before = checksums(project.parent)
        for option in (f"--prepare={self.folder / 'into'}", "--prepare"):
            with self.subTest(option):
                _, regions = self.spot(project, option)
                self.assertEqual([(track, position, stop - start) for track, position, start, stop, _ in regions],
                                 [(0, HOUR + 3, 9597), (1, HOUR + 9600, 9600)])
                for _, _, start, stop, path in regions:
                    with open(path, "rb") as file:
                        rate, sound = audio.plain_sound(file.read())
                    self.assertEqual(rate, 48000)
                    self.assertGreaterEqual(len(sound[0]), stop)
                self.assertEqual(checksums(project.parent), before)
        self.assertTrue((self.folder / "into" / "p.adl").is_file())

    def test_takenFolderIsBadUsage(self):
        (self.folder / "into").mkdir()
        (self.folder / "into" / "mine").write_bytes(b"mine")
        result = run("spot", self.dirty(), "--quiet", f"--prepare={self.folder / 'into'}")
        self.assert_status(result, BAD_USAGE)

    def test_hintNamesCheck(self):
        dirty = self.dirty()
        for command in ("info", "spot"):
            with self.subTest(command):
                result = run(command, dirty)
                told = [line for line in (result.out + result.err).splitlines() if "velmora check" in line]
                self.assertEqual(len(told), 1, result.out + result.err)
                clean = run(command, self.lay(where="clean " + command))
                self.assertNotIn("velmora check", clean.out + clean.err)


class Words(OptionTest):
    def test_headLineAndFindings(self):
        project = self.lay(CLEAN.replace(b";05/0000", b".05/0000").replace(b";02/0100", b".02/0100"))
        result = run("check", project)
        self.assert_status(result, LEFT_OUT)
        self.assertIn(project.name, result.out.splitlines()[0])
        self.assertRegex(result.out, r"\b2\b")
        clean = run("check", self.lay(where="clean"))
        self.assert_status(clean, ALL_DONE)
        self.assertIn("clean", clean.out.lower())

    def test_nothingOfAProjectReachesATerminalRaw(self):
        evil = "evil\x1b[31m\x07.wav"
        text = CLEAN.decode().replace("voice.wav", evil).replace('"Reel one"', '"\x1b]0;title\x07"').encode()
        project = lay_out(self.folder / "\x1b[2J", text, FILES)
        for arguments in (("check", project), ("prepare", project, "--into", self.folder / "into")):
            with self.subTest(arguments[0]):
                result = run(*arguments)
                for raw in (b"\x1b", b"\x07"):
                    self.assertNotIn(raw, result.out_bytes + result.err_bytes)

    def test_jsonPathsOfPrepare(self):
        project = self.lay(voice=audio.floats(VOICE))
        told = self.prepare(project, self.folder / "into")
        self.assertTrue(os.path.samefile(told["project"], self.folder / "into" / "p.adl")
                        or os.path.samefile(told["project"], project))
        for change in told["changes"]:
            self.assertEqual(set(change), {"code", "line", "entry", "source", "text"})
        for file in told["files"]:
            self.assertEqual(set(file), {"from", "to", "how"})
            self.assertTrue(os.path.exists(os.path.join(self.folder / "into", file["to"])))


if __name__ == "__main__":
    unittest.main()
