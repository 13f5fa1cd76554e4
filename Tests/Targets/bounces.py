"""What a bounce has to be, sample by sample and field by field."""

import os

import waves
from program import ALL_DONE, LEFT_OUT
from targets import TargetTest

DEPTHS = ("16", "24", "32f")
BITS = {"16": 16, "24": 24, "32f": 32}


class BounceTest(TargetTest):
    def assert_samples(self, path, channels, depth, rate, first):
        """The file holds these samples and is a Broadcast Wave file by every rule."""
        wave = waves.read_wave(path)
        expected = waves.encoded(waves.interleaved(channels), depth)
        found = wave.bytes()
        if found != expected:
            self.fail(f"{path}: {self.difference(found, expected, wave)}")
        self.assert_header(wave, len(channels), depth, rate, first)

    @staticmethod
    def difference(found, expected, wave):
        if len(found) != len(expected):
            return f"{len(found)} bytes, not {len(expected)}"
        step = wave.format.bits // 8
        places = [at for at in range(0, len(found), step) if found[at:at + step] != expected[at:at + step]]
        first = places[0]
        frame, channel = divmod(first // step, wave.format.channels)
        return (f"{len(places)} samples differ, the first in channel {channel} of frame {frame} of {wave.frames}: "
                f"{found[first:first + step].hex()}, not {expected[first:first + step].hex()}")

    def assert_header(self, wave, channels, depth, rate, first):
        form = wave.format
        tag = waves.FLOAT if depth == "32f" else waves.PCM
        self.assertEqual((form.tag, form.channels, form.rate, form.bits), (tag, channels, rate, BITS[depth]))
        self.assertEqual(wave.form, "RIFF")
        size = os.path.getsize(wave.path)
        self.assertEqual((wave.riff_size + 8, wave.end), (size, size), f"sizes of {wave.path}: {wave.chunks}")
        self.assertEqual(wave.bext.time_reference, first)
        self.assertRegex(wave.bext.date, rb"\A\d{4}-\d\d-\d\d\Z")
        self.assertRegex(wave.bext.time, rb"\A\d\d:\d\d:\d\d\Z")
        self.assertTrue(wave.bext.description)
        self.assertTrue(wave.bext.originator)
        if depth == "32f":
            self.assertEqual(wave.facts, wave.frames)
        else:
            self.assertEqual(form.size, 16)

    def assert_bounces(self, spot, project, depth, playback, complete=True):
        """Both bounces of a spot, or their refusal where the session begins before the timeline does."""
        if playback.first < 0:
            self.assert_refused(spot, "bounce", "bounce-tracks")
            return
        for name in ("bounce", "bounce-tracks"):
            told = spot.target(name)
            self.assertEqual((told["status"], told["reason"] is None), (ALL_DONE if complete else LEFT_OUT, complete), told)
        every = [channel for channels in playback.tracks.values() for channel in channels]
        self.assert_samples(spot.folder / "b.wav", every, depth, project.rate, playback.first)
        names = {f"Track {project.lowest_track + track}.wav": channels for track, channels in playback.tracks.items()}
        self.assertEqual(sorted(os.listdir(spot.folder / "tracks")), sorted(names))
        for name, channels in names.items():
            self.assert_samples(spot.folder / "tracks" / name, channels, depth, project.rate, playback.first)
