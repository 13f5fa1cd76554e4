"""What bounces make of odd sessions and odd files, by the rules alone."""

import os
import struct
import unittest

import playing
import waves
from bounces import DEPTHS, BounceTest
from material import wave_of
from program import ALL_DONE, LEFT_OUT, limit_memory, run, start
from projects import Cut
from targets import HOUR, SECOND, noise


def floats(values):
    """Samples of which 1 is full scale."""
    return wave_of(struct.pack(f"<{len(values)}f", *values), 32, format_tag=waves.FLOAT)


def extensible(frames, channels):
    """The form of format chunk that names speakers, whose samples the project's own reading passes by."""
    plain = noise(frames, channels=channels)
    head = struct.pack("<HHIIHHHHIH14s", waves.EXTENSIBLE, channels, SECOND, SECOND * 3 * channels, 3 * channels, 24, 22, 24, 3, 1,
                       bytes.fromhex("000000001000800000aa00389b71"))
    body = b"WAVE" + b"fmt " + struct.pack("<I", len(head)) + head + plain[36:]
    return b"RIFF" + struct.pack("<I", len(body)) + body


class HandMade(BounceTest):
    def bounced(self, project, *options, depth="24", status=(ALL_DONE,), into="out", complete=True):
        spot = self.spot(project.path, "--bounce-depth", depth, *options, into=into, status=status,
                         targets=("bounce", "bounce-tracks"))
        self.assert_bounces(spot, project, depth, playing.play(spot.regions, playing.Media(), project.rate), complete)
        return spot


class Files(HandMade):
    """Sources that the project's own reading passes by unchanged: each sounds as a wave file says."""

    def test_depthsSideBySide(self):
        files = {"a.wav": noise(900, 24), "b.wav": noise(900, 16, seed=2), "c.wav": noise(900, 32, seed=3),
                 "d.wav": noise(900, 8, seed=4)}
        cuts = [Cut(source, source, 10, HOUR + 100 * source, 700) for source in (1, 2, 3, 4)]
        for depth in DEPTHS:
            for way in ((), ("--depth", "16")):
                with self.subTest(depth=depth, way=way):
                    self.bounced(self.project(files, *cuts, name=f"p {depth} {way}"), *way, depth=depth, into=f"o {depth} {way}")

    def test_extensibleAndFloatFilesSoundWhenPrepared(self):
        files = {"a.wav": extensible(900, 1), "b.wav": noise(900), "c.wav": floats([0.25, -1.5, 0.75] * 300)}
        project = self.project(files, *(Cut(source, source, 10, HOUR, 700) for source in (1, 2, 3)))
        spot = self.bounced(project, f"--prepare={self.folder / 'prepared'}")
        heard = waves.read_wave(spot.folder / "b.wav").channels()
        self.assertTrue(heard[0] == waves.read_wave(project.path.parent / "a.wav").channels(10, 700)[0])
        quarter = waves.FULL_SCALE // 4
        self.assertEqual(heard[2][:3], [-4 * quarter, 3 * quarter, quarter])

    def test_everyNumberOfChannelsOnOneTrack(self):
        """The track is as wide as its widest region; narrower ones begin again with their first channel."""
        widths = (1, 2, 3, 6, 8, 5)
        files = {f"{width}.wav": noise(600, 24, width, seed=width) for width in widths}
        cuts = [Cut(source, 4, source, HOUR + 500 * source, 600) for source in range(1, len(widths) + 1)]
        cuts += [Cut(source, 9, source, HOUR + 500 * source, 400) for source in (1, 3)]
        spot = self.bounced(self.project(files, *cuts))
        self.assertEqual(waves.read_wave(spot.folder / "b.wav").format.channels, 11)
        self.assertEqual(sorted(os.listdir(spot.folder / "tracks")), ["Track 4.wav", "Track 9.wav"])

    def test_theLoudestSamplesAndTies(self):
        """Every sample half a step of 16 bits away from the next, on both sides of zero and at both ends."""
        steps = [-0x800000, -0x7FFF80, -0x7FFF7F, -384, -128, -127, -1, 0, 1, 127, 128, 129, 384, 640, 0x7FFF7F, 0x7FFF80, 0x7FFFFF]
        audio = b"".join(step.to_bytes(3, "little", signed=True) for step in steps)
        project = self.project({"a.wav": wave_of(audio)}, Cut(1, 1, 0, HOUR, len(steps)))
        for depth in DEPTHS:
            with self.subTest(depth=depth):
                self.bounced(project, depth=depth, into=depth)
        found = waves.read_wave(self.folder / "16" / "b.wav").channels()[0]
        self.assertEqual([sample >> 16 for sample in found],
                         [-32768, -32768, -32767, -2, 0, 0, 0, 0, 0, 0, 0, 1, 2, 2, 32767, 32767, 32767])

    def test_anOddNumberOfBytes(self):
        """A chunk of odd size is followed by a byte that belongs to none."""
        for frames in (1, 2, 3):
            with self.subTest(frames):
                project = self.project({"a.wav": noise(10)}, Cut(1, 1, 0, HOUR, frames), name=f"p{frames}")
                spot = self.bounced(project, into=f"o{frames}")
                wave = waves.read_wave(spot.folder / "b.wav")
                self.assertEqual(wave.data[1], 3 * frames)
                self.assertEqual(wave.end % 2, 0)


class Edges(HandMade):
    def test_beyondBothEndsOfTheFile(self):
        """Silence, that covers what lies under it, and a line that names the file."""
        files = {"a.wav": noise(3000), "b.wav": noise(500, seed=2)}
        project = self.project(files, Cut(1, 1, 0, HOUR, 3000), Cut(2, 1, 400, HOUR + 500, 800), Cut(2, 2, 600, HOUR, 90),
                               Cut(2, 3, 0, HOUR, 500))
        text = project.path.read_bytes()
        # The file of the first source begins later than its cut.
        project.path.write_bytes(text.replace(b'a.wav" _ 00|00:00:00/0000', b'a.wav" _ 00|00:00:00/0200'))
        spot = self.bounced(project)
        self.assertEqual([region.start for region in spot.regions], [-200, 400, 600, 0])
        for name in ("a.wav", "b.wav"):
            self.assertRegex(spot.run.err, rf"velmora: bounce: note: .*{name}")

    def test_regionsOfNoLength(self):
        project = self.project({"a.wav": noise(300), "b.wav": noise(300)}, Cut(1, 1, 0, HOUR + 100, 200), Cut(2, 1, 0, HOUR + 150, 0),
                               Cut(2, 2, 0, HOUR + 200, -50), Cut(2, 3, 0, HOUR + 500, 0))
        spot = self.bounced(project, status=(ALL_DONE, LEFT_OUT))
        self.assertEqual([region.length for region in spot.regions], [200, 0, -50, 0])
        notes = [line for line in spot.run.err.splitlines() if line.startswith("velmora: bounce: ") and '"b"' in line]
        self.assertEqual(len(notes), 3, spot.run.err)

    def test_regionsOfAnotherRate(self):
        project = self.project({"a.wav": noise(300), "b.wav": noise(900, rate=44100)}, Cut(1, 1, 0, HOUR, 300),
                               Cut(2, 1, 0, HOUR + 100, 100), Cut(2, 2, 0, HOUR + 100, 700))
        spot = self.bounced(project, status=(LEFT_OUT,), complete=False)
        for target in ("bounce", "bounce-tracks"):
            self.assertRegex(spot.run.err, rf"velmora: {target}: .*b\.wav.*44100")

    def test_beforeTheTimelineBegins(self):
        project = self.project({"a.wav": noise(300)}, Cut(1, 1, 0, SECOND, 300))
        spot = self.bounced(project, "--position", "offset", "--offset", "-00:00:02:00", status=(LEFT_OUT,))
        self.assertEqual(spot.regions[0].position, -SECOND)
        self.assertEqual(sorted(os.listdir(spot.folder)), ["s.json"])

    def test_eachTrackSpansTheSession(self):
        project = self.project({"a.wav": noise(300)}, Cut(1, 2, 0, HOUR, 100), Cut(1, 30, 0, HOUR + 40000, 100))
        spot = self.bounced(project)
        for track in (2, 30):
            self.assertEqual(waves.read_wave(spot.folder / "tracks" / f"Track {track}.wav").frames, 40100)


class Shapes(HandMade):
    """Fades, crossfades and gains that are facts of the regions."""

    FILES = {"a.wav": noise(4000), "b.wav": noise(4000, 16, 2, seed=2)}

    def shaped(self, *cuts, depth="24", into="out"):
        project = self.project(self.FILES, *cuts, name=f"project {into}")
        spot = self.bounced(project, "--native", depth=depth, into=into)
        facts = [(region.fade_in, region.fade_out) for region in spot.regions]
        self.assertEqual(facts, [(cut.fade_in, cut.fade_out) for cut in project.cuts])
        self.assertEqual([region.gain_db for region in spot.regions], [float(cut.gain_db or 0) for cut in project.cuts])
        return spot

    def test_byHand(self):
        """Numbers that anyone can work out: a file of the one value 1000, then one of 3000, crossfaded over four samples."""
        files = {name: wave_of(value.to_bytes(3, "little") * 8) for name, value in (("a.wav", 1000), ("b.wav", 3000))}
        project = self.project(files, Cut(1, 1, 0, HOUR, 8, fade_in=2, fade_out=4), Cut(2, 1, 0, HOUR + 4, 8, 4, 3))
        spot = self.bounced(project, "--native")
        found = [sample >> 8 for sample in waves.read_wave(spot.folder / "b.wav").channels()[0]]
        self.assertEqual(found, [0, 500, 1000, 1000, 1000, 1500, 2000, 2500, 3000, 3000, 2000, 1000])

    def test_shapesThatMeet(self):
        """Each row: what the second region does to the first, on one track. Position, length, fade-in, fade-out."""
        rows = {
            "crossfade": ((0, 1000, 10, 300), (700, 1000, 300, 20)),
            "the fade-out is shorter": ((0, 1000, 0, 200), (700, 1000, 300, 0)),
            "the fade-out is longer": ((0, 1000, 0, 301), (700, 1000, 300, 0)),
            "one sample beside": ((0, 1000, 0, 300), (701, 1000, 300, 0)),
            "over the middle": ((0, 3000, 0, 0), (700, 1000, 300, 200)),
            "over a fade-in": ((500, 2000, 1000, 0), (0, 1000, 0, 300)),
            "over a fade-out": ((0, 1000, 0, 800), (500, 300, 100, 100)),
            "a fade of one sample": ((0, 1000, 1, 1), (999, 1000, 1, 1)),
            "fades that meet in the middle": ((0, 1000, 500, 500), (2000, 100, 0, 0)),
            "fades longer than the region": ((0, 100, 300, 50), (90, 400, 10, 500)),
            "a fade-out cut to what is left": ((0, 1000, 900, 300), (900, 500, 100, 0)),
            "over two": ((0, 1000, 0, 0), (900, 1100, 0, 0), (600, 1000, 800, 0)),
            "under a later one": ((0, 1000, 0, 300), (700, 1000, 300, 0), (0, 3000, 0, 0)),
        }
        for number, (name, regions) in enumerate(rows.items()):
            for depth in ("24", "32f"):
                with self.subTest(name, depth=depth):
                    cuts = [Cut(1 + index % 2, 1, 7 * index, HOUR + position, length, fade_in, fade_out)
                            for index, (position, length, fade_in, fade_out) in enumerate(regions)]
                    self.shaped(*cuts, depth=depth, into=f"{number} {depth}")

    def test_gains(self):
        """Far above and far below: clipped in whole numbers, kept in floats."""
        cuts = [Cut(1 + index % 2, index + 1, 0, HOUR, 1000, 100, 100, gain)
                for index, gain in enumerate(("6", "-6.02", "40", "-120", "-0.0001", "0"))]
        for depth in DEPTHS:
            with self.subTest(depth=depth):
                self.shaped(*cuts, depth=depth, into=depth)
        loudest = max(abs(sample) for channel in waves.read_wave(self.folder / "32f" / "b.wav").channels() for sample in channel)
        self.assertGreater(loudest, 50 * waves.FULL_SCALE)

    def test_cutFadesAreNamed(self):
        project = self.project(self.FILES, Cut(1, 1, 0, HOUR, 100, 130, 7))
        spot = self.bounced(project, "--native", into="out")
        self.assertRegex(spot.run.err, r'velmora: bounce: note: .*"a".*fade-in of 130 ')
        self.assertRegex(spot.run.err, r'velmora: bounce: note: .*"a".*fade-out of 7 ')


class Pipe(HandMade):
    """A bounce on standard output, where sizes may have been unknown when the header went out."""

    def streamed(self, path):
        """Format and audio of what came through a pipe."""
        content = path.read_bytes()
        self.assertIn(content[:4], (b"RIFF", b"RF64"))
        self.assertEqual(content[8:12], b"WAVE")
        at, form = 12, None
        while content[at:at + 4] != b"data":
            name, size = struct.unpack("<4sI", content[at:at + 8])
            if name == b"fmt ":
                form = waves.Format.of(content[at + 8:at + 8 + size])
            at += 8 + size + size % 2
        size = struct.unpack("<I", content[at + 4:at + 8])[0]
        audio = content[at + 8:]
        if size != waves.SIZE_ELSEWHERE:
            self.assertEqual(len(audio), size + size % 2)
            audio = audio[:size]
        return form, audio

    def test_holdsTheSameAudio(self):
        project = self.project({"a.wav": noise(3001, channels=2), "b.wav": noise(800)}, Cut(1, 1, 0, HOUR, 3001),
                               Cut(2, 3, 0, HOUR + SECOND, 301))
        for depth in DEPTHS:
            with self.subTest(depth=depth):
                result = run("spot", project.path, "--bounce", "-", "--bounce-depth", depth)
                self.assert_status(result, ALL_DONE)
                spot = self.bounced(project, depth=depth, into=depth)
                (self.folder / "piped").write_bytes(result.out_bytes)
                form, audio = self.streamed(self.folder / "piped")
                written = waves.read_wave(spot.folder / "b.wav")
                self.assertEqual(form, written.format)
                self.assertEqual(audio, written.bytes())

    def test_aReaderThatLeaves(self):
        """Enough audio that a pipe does not hold it: the program ends by itself and says what was not made."""
        project = self.project({"a.wav": noise(800)}, Cut(1, 1, 0, HOUR, 800), Cut(1, 1, 0, HOUR + 60 * SECOND, 800))
        process = start("spot", project.path, "--bounce", "-")
        self.assertEqual(len(process.stdout.read(100)), 100)
        process.stdout.close()
        error = process.stderr.read()
        process.stderr.close()
        self.assertEqual(process.wait(timeout=60), LEFT_OUT, error)
        self.assertIn(b"bounce", error)


class Large(HandMade):
    """Sizes at the limits of what a header can say; nearly all of it is silence, that takes no room and no time."""

    def large(self, project, *options):
        path = self.folder / "b.wav"
        path.unlink(missing_ok=True)
        result = run("spot", project.path, "--quiet", "--bounce", path, *options, seconds=60, before=limit_memory)
        self.assert_status(result, ALL_DONE)
        self.assertLess(os.stat(path).st_blocks * 512, 64 << 20, "silence takes room on the disk")
        wave = waves.read_wave(path)
        size = os.path.getsize(path)
        self.assertEqual((wave.riff_size + 8, wave.end), (size, size))
        return wave

    def test_rf64(self):
        apart = 8 * HOUR
        project = self.project({"a.wav": noise(1000, channels=6), "b.wav": noise(1000, seed=2)}, Cut(1, 1, 0, HOUR, 1000),
                               Cut(2, 2, 0, HOUR + apart, 999))
        wave = self.large(project)
        self.assertEqual((wave.form, wave.frames, wave.format.channels, wave.bext.time_reference), ("RF64", apart + 999, 7, HOUR))
        first, second = (waves.read_wave(project.path.parent / name).channels() for name in ("a.wav", "b.wav"))
        silence = [0] * 1000
        self.assertTrue(wave.channels(0, 1000) == first + [silence])
        self.assertTrue(wave.channels(apart, 999) == [silence[:999]] * 6 + [second[0][:999]])
        self.assertTrue(wave.channels(apart // 2, 1000) == [silence] * 7)

    def test_theLastSizeOfRiff(self):
        """Sizes of 32 bits, of which the largest stands for one that is told elsewhere."""
        around = 0xFFFFFFFF // 3
        forms = set()
        for frames in (around - 1000, around - 225, around - 222, around - 219, around - 210, around, around + 1, around + 1000):
            with self.subTest(frames):
                wave = self.large(self.project({"a.wav": noise(9)}, Cut(1, 1, 0, 0, 5), Cut(1, 1, 1, frames - 5, 5), name=f"p{frames}"))
                self.assertEqual(wave.frames, frames)
                self.assertEqual(wave.channels(frames - 5)[0], waves.read_wave(self.folder / f"p{frames}" / "a.wav").channels(1, 5)[0])
                if wave.form == "RIFF":
                    self.assertLess(max(wave.riff_size, wave.data[1]), waves.SIZE_ELSEWHERE)
                forms.add((frames, wave.form))
        self.assertEqual([form for _, form in sorted(forms)][::len(forms) - 1], ["RIFF", "RF64"])

    def test_moreFramesThanAFactChunkCanSay(self):
        wave = self.large(self.project({"a.wav": noise(9)}, Cut(1, 1, 0, 0, 5), Cut(1, 1, 1, 25 * HOUR, 5)), "--bounce-depth", "32f")
        self.assertGreater(wave.frames, 1 << 32)
        self.assertEqual((wave.frames, wave.facts), (25 * HOUR + 5, waves.SIZE_ELSEWHERE))
        self.assertEqual(wave.fact_frames, wave.frames)

    def test_moreChannelsThanAHeaderCanSay(self):
        """A frame of 66,000 bytes: no file, and a reason; the tracks by themselves are made."""
        project = self.project({"a.wav": noise(20, channels=1000)}, *(Cut(1, track, 0, HOUR, 20) for track in range(1, 23)))
        spot = self.spot(project.path, targets=("bounce", "bounce-tracks"), status=(LEFT_OUT,))
        self.assert_refused(spot, "bounce")
        self.assertIn("22000 channels", spot.target("bounce")["reason"])
        self.assertEqual(len(os.listdir(spot.folder / "tracks")), 22)

    def test_aTitleLongerThanItsField(self):
        """It is cut between two characters, and ends with a NUL or at the end of its 256 bytes."""
        project = self.project({"a.wav": noise(20)}, Cut(1, 1, 0, HOUR, 20))
        title = b"<SEQUENCE>\n(SEQ_TITLE) \"%s\"\n</SEQUENCE>\n<SOURCE_INDEX>"
        project.path.write_bytes(project.path.read_bytes().replace(b"<SOURCE_INDEX>", title % ("嵐" * 300).encode("shift_jis"), 1))
        spot = self.bounced(project)
        description = waves.read_wave(spot.folder / "b.wav").bext.description
        self.assertEqual(description.decode("utf-8"), "嵐" * 85)


if __name__ == "__main__":
    unittest.main()
