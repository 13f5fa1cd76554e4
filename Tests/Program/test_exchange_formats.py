"""--dawproject and --otio: both are rendered here, by what the formats say alone, and held against the bounce."""

import functools
import json
import pathlib
import struct
import unittest
import urllib.parse
import xml.etree.ElementTree as xml
import zipfile

from material import HOUR, Adl, fade, stamp, wave
from program import ALL_DONE, BAD_USAGE, ProgramTest, run

RATE = 48000
FRAME = RATE // 30
# Both ramps are worked out in another order than the bounce does it, which then keeps 32-bit floats.
TOLERANCE = 2.0 ** -24


def chunks_of(bytes_):
    place = 12
    while place + 8 <= len(bytes_):
        name, size = struct.unpack_from("<4sI", bytes_, place)
        yield name, bytes_[place + 8:place + 8 + size]
        place += 8 + size + size % 2


def decoded(bytes_):
    """Frames of a wave file of 24 bits or floats, as tuples of numbers up to 1."""
    chunks = dict(chunks_of(bytes_))
    tag, channels, _, _, _, bits = struct.unpack_from("<HHIIHH", chunks[b"fmt "])
    audio = chunks[b"data"]
    if (tag, bits) == (3, 32):
        flat = struct.unpack(f"<{len(audio) // 4}f", audio)
    else:
        flat = [int.from_bytes(audio[i:i + 3], "little", signed=True) / 2 ** 23 for i in range(0, len(audio), 3)]
    return [tuple(flat[i:i + channels]) for i in range(0, len(flat), channels)]


class Placed:
    """A clip: its file, where it is opaque on the timeline, and its ramps. All in samples."""

    def __init__(self, source, start, position, end, fade_in=0, fade_out=0, lead=0, gain=1.0):
        self.source, self.start, self.position, self.end = source, start, position, end
        self.fade_in, self.fade_out, self.lead, self.gain = fade_in, fade_out, lead, gain


def rendered(clips, first, end, media):
    """A track as clips play it: one after the other, each crossfade over the end of the clip before it."""
    track = [0.0] * (end - first)
    before = None
    for clip in clips:
        assert before is None or before.end <= clip.position, "clips overlap"
        assert not clip.lead or before.end == clip.position, "a crossfade leads out of nothing"
        audio = media(clip.source)
        for at in range(clip.position - clip.lead, clip.end):
            factor = 1.0
            if at < clip.position:
                factor = (at - clip.position + clip.lead) / clip.lead
                track[at - first] *= 1 - factor
            elif at < clip.position + clip.fade_in:
                factor = (at - clip.position) / clip.fade_in
            elif at >= clip.end - clip.fade_out:
                factor = (clip.end - at) / clip.fade_out
            track[at - first] += audio[clip.start + at - clip.position][0] * clip.gain * factor
        before = clip
    return track


def samples(element, name, default="0"):
    exact = float(element.get(name, default)) * RATE
    assert abs(exact - round(exact)) < 1e-3, f"{name} of {exact} samples"
    return round(exact)


def dawproject_tracks(path):
    """By track name, the clips; sources are paths, or names in the file."""
    project = xml.fromstring(zipfile.ZipFile(path).read("project.xml"))
    names = {track.get("id"): track.get("name") for track in project.iter("Track")}
    tracks = {}
    for lane in project.findall("Arrangement/Lanes/Lanes"):
        clips = tracks.setdefault(names[lane.get("track")], [])
        for clip in lane.findall("Clips/Clip"):
            fade_in, position = samples(clip, "fadeInTime"), samples(clip, "time")
            point = clip.find("Lanes/Points/RealPoint")
            clips.append(Placed(next(clip.iter("File")).get("path"), samples(clip, "playStart"), position,
                                position + samples(clip, "duration"), max(fade_in, 0), samples(clip, "fadeOutTime"),
                                max(-fade_in, 0), 1.0 if point is None else float(point.get("value"))))
    return tracks


def value(time):
    assert time["rate"] == RATE and isinstance(time["value"], int), time
    return time["value"]


def otio_tracks(path):
    timeline = json.loads(pathlib.Path(path).read_text(encoding="utf-8"))
    tracks = {}
    for track in timeline["tracks"]["children"]:
        clips = tracks.setdefault(track["name"], [])
        at, transition, item = value(timeline["global_start_time"]), None, None
        for child in track["children"]:
            if child["OTIO_SCHEMA"] == "Transition.1":
                assert transition is None, "two transitions side by side"
                transition = child
                if value(child["out_offset"]) == 0 and isinstance(item, Placed):
                    item.fade_out = value(child["in_offset"])  # unless a clip follows
                continue
            start, length = (value(child["source_range"][name]) for name in ("start_time", "duration"))
            if child["OTIO_SCHEMA"] == "Gap.1":
                item = "gap"
            else:
                media = child["media_references"][child["active_media_reference_key"]]
                source = urllib.parse.unquote(urllib.parse.urlparse(media["target_url"]).path)
                clip = Placed(source, start, at, at + length,
                              gain=10 ** (child["metadata"]["velmora"]["gainDb"] / 20))
                if transition is not None and isinstance(item, Placed):
                    clip.lead, item.fade_out = value(transition["in_offset"]), 0
                elif transition is not None:
                    clip.fade_in = value(transition["out_offset"])
                clips.append(clip)
                item = clip
            at, transition = at + length, None
    return tracks


def media_by(read):
    """Decodes each file once; `read` gives its bytes."""
    return functools.lru_cache(maxsize=None)(lambda name: decoded(read(name)))


class ExchangeFormats(ProgramTest):
    def setUp(self):
        super().setUp()
        (self.folder / "take & <1>.wav").write_bytes(wave(60 * FRAME))
        (self.folder / "stereo.wav").write_bytes(wave(60 * FRAME, channels=2))
        adl = Adl().source(1, "URL:file://localhost/a/take & <1>.wav").source(2, "URL:file://localhost/a/stereo.wav")
        cuts = [  # source, track, source in, from, length, what more
            (1, 1, 3, 0, 10, f"(Infade) {fade(1)} LIN _ _ _ (Outfade) {fade(2)} LIN _ _ _"),
            (2, 1, 7, 8, 12, f"(Infade) {fade(2)} LIN _ _ _ (Outfade) {fade(1, 77)} LIN _ _ _ (Gain) 1 -6.5"),
            (1, 2, 0, 1, 20, ""),
            (2, 2, 0, 5, 6, f"(Infade) {fade(1)} LIN _ _ _ (Outfade) {fade(1)} LIN _ _ _"),
            (1, 2, 9, 21, 4, "(Gain) 1 3"),
            (1, 4, 0, stamp(HOUR + 30, 333), stamp(HOUR + 34, 999), ""),
        ]
        for number, (source, track, source_in, position, length, more) in enumerate(cuts, 1):
            start = position if isinstance(position, str) else HOUR + position
            adl.cut(number, source, track, source_in, start, length, more)
        self.adl = adl.write(self.folder / "p.adl")

    def spot(self, *more):
        done = run("spot", self.adl, "--quiet", "--bounce-tracks", self.folder / "bounce", "--bounce-depth", "32f",
                   "--dawproject", self.folder / "s.dawproject", "--otio", self.folder / "s.otio", *more)
        self.assert_status(done, ALL_DONE)

    def assert_sounds_as_the_bounce(self, tracks, media):
        bounced = sorted((self.folder / "bounce").iterdir())
        self.assertEqual(sorted(tracks), [path.stem for path in bounced])
        first = min(clip.position - clip.lead for clips in tracks.values() for clip in clips)
        for path in bounced:
            expected = [frame[0] for frame in decoded(path.read_bytes())]
            heard = rendered(tracks[path.stem], first, first + len(expected), media)
            apart = max(abs(one - other) for one, other in zip(heard, expected, strict=True))
            self.assertLessEqual(apart, TOLERANCE, path.stem)
            self.assertGreater(max(map(abs, expected)), 0.1)

    def test_both_sound_as_the_session_does(self):
        for how in (["--native"], ["--fades", "--gain", "--copy-to", self.folder / "made"]):
            with self.subTest(how[0]):
                self.spot(*how)
                read = media_by(lambda path: pathlib.Path(path).read_bytes())
                tracks = dawproject_tracks(self.folder / "s.dawproject")
                if how[0] == "--native":
                    self.assertTrue(any(clip.lead for clips in tracks.values() for clip in clips))
                self.assert_sounds_as_the_bounce(tracks, read)
                self.assert_sounds_as_the_bounce(otio_tracks(self.folder / "s.otio"), read)
                for made in [*(self.folder / "bounce").iterdir(), *self.folder.glob("s.*")]:
                    made.unlink()
                (self.folder / "bounce").rmdir()

    def test_embedded_media_are_all_that_a_dawproject_needs(self):
        self.spot("--native", "--embed-media")
        file = zipfile.ZipFile(self.folder / "s.dawproject")
        self.assertIsNone(file.testzip())
        project = xml.fromstring(file.read("project.xml"))
        self.assertEqual({element.get("external") for element in project.iter("File")}, {"false"})
        self.assertEqual({element.get("path") for element in project.iter("File")},
                         {name for name in file.namelist() if not name.endswith(".xml")})
        self.assert_sounds_as_the_bounce(dawproject_tracks(self.folder / "s.dawproject"), media_by(file.read))

    def test_a_name_that_is_held_is_refused_before_anything_is_done(self):
        for name in ("s.dawproject", "s.otio"):
            with self.subTest(name):
                held = self.folder / name
                held.write_text("mine")
                before = self.files()
                option = "--dawproject" if name.endswith("dawproject") else "--otio"
                done = run("spot", self.adl, option, held)
                self.assert_status(done, BAD_USAGE)
                self.assertIn(str(held), done.err)
                self.assertEqual((self.files(), held.read_text()), (before, "mine"))


if __name__ == "__main__":
    unittest.main()
