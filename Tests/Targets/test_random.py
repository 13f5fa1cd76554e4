"""Random projects go to every target in one run, and all targets say the same as a second reading of session and wave files."""

import os
import re
import unittest

import dawproject_reader
import otio_reader
import playing
import projects
from bounces import DEPTHS, BounceTest
from layout import checksums
from placing import Placed, placed

WAYS = ((), ("--native",), ("--fades", "--gain"), ("--fades",), ("--gain", "--depth", "16"), ("--native", "--depth", "16"))
# What a note says of a fade that clips with fades of their own cannot tell.
UNTOLD = r"^velmora: {}: note: region (\d+) .*: its fade-(in|out) of (\d+) samples? meets other regions"


class RandomProjects(BounceTest):
    """Each seed is a project of its own; VELMORA_SEEDS=FIRST-LAST tries others."""

    def test_seeds(self):
        first, last = map(int, os.environ.get("VELMORA_SEEDS", "1-18").split("-"))
        for seed in range(first, last + 1):
            way = WAYS[seed % len(WAYS)]
            depth = DEPTHS[seed // len(WAYS) % len(DEPTHS)]
            with self.subTest(seed=seed, way=way, depth=depth):
                self.one_seed(seed, way, depth)

    def one_seed(self, seed, way, depth):
        project = projects.make(seed, self.folder / f"project {seed}")
        before = checksums(project.path.parent)
        spot = self.spot(project.path, *way, "--bounce-depth", depth, into=f"out {seed}", status=(0, 3))
        after = checksums(project.path.parent)
        self.assertEqual({name: after.get(name) for name in before}, before)
        self.assert_session(spot, project, way)
        media = playing.Media()
        playback = playing.play(spot.regions, media, project.rate)
        self.assert_bounces(spot, project, depth, playback)
        if playback.first < 0:
            return  # before the timeline's beginning, where not every format can follow
        self.assert_dawproject(spot, project, playback, media)
        self.assert_otio(spot, project, playback, media)

    def assert_session(self, spot, project, way):
        """The session's JSON tells each region, where it came from and its shape, as the cuts have it."""
        found = [(region["index"], Placed(region["event"], region["entry"], region["source"], region["piece"], track["track"],
                                          region["position"], region["length"], region["start"], region["fadeIn"], region["fadeOut"],
                                          region["gainDb"]))
                 for track in spot.session["tracks"] for region in track["regions"]]
        self.assertEqual([region for _, region in sorted(found, key=lambda pair: pair[0])], placed(project, *way))

    def assert_dawproject(self, spot, project, playback, media):
        self.assertEqual(spot.target("dawproject")["status"], 0)
        untold = self.untold(spot, "dawproject")
        document = dawproject_reader.read(spot.folder / "d.dawproject", project.rate)
        self.assertEqual([name for name, _, _ in document.tracks], self.names(project, playback))
        for (name, width, clips), (number, channels) in zip(document.tracks, playback.tracks.items()):
            self.assertEqual(width, len(channels), name)
            for clip in clips:
                wave = media[clip.file["path"]]
                self.assertEqual((int(clip.file["channels"]), clip.file["frames"]), (wave.format.channels, wave.frames))
            self.assert_plays([clip.region for clip in clips], channels, playback, media, untold.get(number, ()),
                              f"dawproject, {name}")

    def assert_otio(self, spot, project, playback, media):
        self.assertEqual(spot.target("otio")["status"], 0)
        untold = self.untold(spot, "otio")
        document = otio_reader.read(spot.folder / "o.otio", project.rate)
        self.assertEqual([track.name for track in document.tracks], self.names(project, playback))
        for track, (number, channels) in zip(document.tracks, playback.tracks.items()):
            for clip in track.clips:
                self.assertEqual(clip.available, (0, media[clip.path].frames), clip)
            self.assert_plays(track.regions(), channels, playback, media, untold.get(number, ()), f"otio, {track.name}")

    @staticmethod
    def untold(spot, target):
        """Where the run says that a format cannot tell what is heard: by track, ranges of samples on the timeline."""
        regions = {region.index: region for region in playing.shaped(spot.regions)}
        found = {}
        for number, side, length in re.findall(UNTOLD.format(target), spot.run.err, re.M):
            region = regions[int(number)]
            first = region.position if side == "in" else region.end - int(length)
            found.setdefault(region.track, []).append(range(first, first + int(length)))
        return found

    @staticmethod
    def names(project, playback):
        return [f"Track {project.lowest_track + track}" for track in playback.tracks]

    def assert_plays(self, regions, channels, playback, media, untold, what):
        """These regions, in order, sound like the session's track, but for the places that were told."""
        heard = [[0] * playback.frames for _ in channels]
        for region in regions:
            at = region.position - playback.first
            self.assertTrue(0 <= at and at + region.length <= playback.frames, f"{what}: {region} lies outside the session")
            playing.place(region, at, heard, media)
        for number, (found, expected) in enumerate(zip(heard, channels)):
            places = [at for at, (one, other) in enumerate(zip(found, expected))
                      if one != other and not any(playback.first + at in place for place in untold)]
            if places:
                self.fail(f"{what}: {len(places)} samples of channel {number} differ, the first {places[0]} after the session's"
                          f" beginning, the last {places[-1]}: {float(found[places[0]])}, not {float(expected[places[0]])}")


if __name__ == "__main__":
    unittest.main()
