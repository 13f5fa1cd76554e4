"""`--bounce` and `--bounce-tracks`, held against a renderer of their own: the session as its JSON tells it, played
sample by sample."""

import json
import pathlib
import shutil
import struct
import tempfile
import unittest

from program import BAD_USAGE, LEFT_OUT, run

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "Examples"
BITS = {"16": 16, "24": 24}


def chunks(data):
    """The chunks of a wave file by identifier."""
    assert data[:4] == b"RIFF" and data[8:12] == b"WAVE"
    found, at = {}, 12
    while at + 8 <= len(data):
        name, size = data[at:at + 4].decode(), struct.unpack_from("<I", data, at + 4)[0]
        found[name] = data[at + 8:at + 8 + size]
        at += 8 + size + size % 2
    return found


def samples(path):
    """The bits and the samples of a mono wave file."""
    parts = chunks(pathlib.Path(path).read_bytes())
    channels, bits = struct.unpack_from("<H", parts["fmt "], 2)[0], struct.unpack_from("<H", parts["fmt "], 14)[0]
    assert channels == 1
    width, data = bits // 8, parts["data"]
    return bits, [int.from_bytes(data[at:at + width], "little", signed=True) for at in range(0, len(data), width)]


def fades_of(region, regions):
    fade_in = min(region["fadeIn"], region["length"])
    fade_out = min(region["fadeOut"], region["length"] - fade_in)
    end = region["position"] + region["length"]
    for later in regions:
        over = min(later["fadeIn"], later["length"])
        if later["index"] > region["index"] and over > 0 and later["position"] + over == end and fade_out <= over:
            fade_out = 0
    return fade_in, fade_out


def render(track, first, end, bits):
    """One track by the law, as integers of so many bits."""
    heard = [0.0] * (end - first)
    regions = sorted(track["regions"], key=lambda region: region["index"])
    for region in regions:
        source_bits, source = samples(region["path"])
        scale = 2.0 ** (bits - source_bits)
        gain = 10 ** (region["gainDb"] / 20)
        length, (fade_in, fade_out) = region["length"], fades_of(region, regions)
        for i in range(length):
            at, frame = region["position"] - first + i, region["start"] + i
            x = source[frame] * scale * gain if 0 <= frame < len(source) else 0.0
            if i < fade_in:
                heard[at] = (x * i + heard[at] * (fade_in - i)) / fade_in
            elif length - i <= fade_out:
                heard[at] = (x * (length - i) + heard[at] * (fade_out - length + i)) / fade_out
            else:
                heard[at] = x
    most = 1 << (bits - 1)
    return [max(-most, min(most - 1, round(sample))) for sample in heard]  # round: ties to even


class Bounce(unittest.TestCase):
    def setUp(self):
        held = tempfile.TemporaryDirectory()
        self.addCleanup(held.cleanup)
        self.folder = pathlib.Path(held.name)
        for path in [*EXAMPLES.glob("*.adl"), *EXAMPLES.glob("*.wav")]:
            shutil.copy(path, self.folder)

    def spot(self, *options):
        return run("spot", self.folder / "Storm.adl", *options)

    def bounced(self, depth, *options):
        """Bounces both ways; gives the session and the samples by track number, as rendered here."""
        done = self.spot("--host", f"embedded:{self.folder}/s.json", "--bounce", self.folder / "one.wav",
                         "--bounce-tracks", self.folder / "each", "--bounce-depth", depth, *options)
        self.assertEqual(done.status, LEFT_OUT, done.err)  # the example lacks a file on purpose
        session = json.loads((self.folder / "s.json").read_text())
        first, end = session["summary"]["first"], session["summary"]["end"]
        return session, {track["track"] + 1: render(track, first, end, BITS[depth]) for track in session["tracks"]}

    def assert_bounced(self, depth, *options):
        session, expected = self.bounced(depth, *options)
        parts = chunks((self.folder / "one.wav").read_bytes())
        self.assertEqual(struct.unpack_from("<Q", parts["bext"], 338)[0], session["summary"]["first"])
        width = BITS[depth] // 8
        frames = zip(*(expected[number] for number in sorted(expected)))
        audio = b"".join(s.to_bytes(width, "little", signed=True) for frame in frames for s in frame)
        self.assertTrue(any(audio))
        self.assertTrue(parts["data"] == audio, "the one file differs")
        names = sorted(path.name for path in (self.folder / "each").iterdir())
        self.assertEqual(names, [f"Track {number}.wav" for number in sorted(expected)])
        for number, track in expected.items():
            bits, written = samples(self.folder / "each" / f"Track {number}.wav")
            self.assertEqual(bits, BITS[depth])
            self.assertTrue(written == track, f"track {number} differs")

    def test_rendered_pieces(self):
        self.assert_bounced("24", "--fades", "--gain")

    def test_native_to_a_smaller_depth(self):
        self.assert_bounced("16", "--native")

    def test_standard_output_gets_the_file_alone(self):
        piped = self.spot("--native", "--bounce", "-")
        self.assertEqual(piped.status, LEFT_OUT, piped.err)
        self.spot("--native", "--bounce", self.folder / "one.wav")
        file = chunks((self.folder / "one.wav").read_bytes())
        self.assertTrue(chunks(piped.out_bytes)["data"] == file["data"])
        self.assertEqual(len(piped.out_bytes), (self.folder / "one.wav").stat().st_size)

    def test_what_is_there_is_refused_before_anything_is_made(self):
        (self.folder / "one.wav").write_bytes(b"mine")
        before = sorted(self.folder.iterdir())
        done = self.spot("--fades", "--bounce", self.folder / "one.wav")
        self.assertEqual(done.status, BAD_USAGE)
        self.assertIn("one.wav is there", done.err)
        self.assertEqual(sorted(self.folder.iterdir()), before)
        self.assertEqual((self.folder / "one.wav").read_bytes(), b"mine")


if __name__ == "__main__":
    unittest.main()
