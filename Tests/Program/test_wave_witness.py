"""Other programs read what a spot made."""

import re
import subprocess
import unittest

from material import HOUR, Adl, fade, wave
from program import ALL_DONE, ProgramTest, run

PIECES = {"_FadeIn": 4800, "_XFade": 8000, "_FadeOut": 8000}


def soxi(path):
    """Rate, channels, depth and frames as sox sees them, and what it complains of."""
    values = []
    for flag in ("-r", "-c", "-b", "-s"):
        told = subprocess.run(["soxi", flag, path], capture_output=True, text=True, check=True)
        if told.stderr:
            raise AssertionError(told.stderr)
        values.append(int(told.stdout))
    return tuple(values)


def sndfile_info(path):
    told = subprocess.run(["sndfile-info", path], capture_output=True, text=True, check=True).stdout
    if "*** " in told or "Error" in told:
        raise AssertionError(told)

    def number(pattern):
        return int(re.search(pattern, told).group(1).replace(",", ""))

    return (number(r"Sample Rate\s*:\s*(\d+)"), number(r"Channels\s*:\s*(\d+)"),
            number(r"Bit Width\s*:\s*(\d+)"), number(r"Frames\s*:\s*(\d+)"))


def samples(path, bits):
    """The samples as sox decodes them, as integers of that depth."""
    raw = subprocess.run(["sox", path, "-t", "raw", "-e", "signed-integer", "-b", str(bits), "-L", "-"],
                         capture_output=True, check=True).stdout
    width = bits // 8
    return [int.from_bytes(raw[i:i + width], "little", signed=True) for i in range(0, len(raw), width)]


class Witness(ProgramTest):
    def spot(self, bits, rate, channels, *arguments):
        folder = self.folder / f"{bits}-{rate}-{channels}"
        folder.mkdir()
        (folder / "take.wav").write_bytes(wave(48000, bits=bits, rate=rate, channels=channels))
        project = (Adl().source(1, "a/take.wav")
                   .cut(1, length=20, more=f"\n(Infade) {fade(3)} L _ _ _ (Outfade) {fade(5)} L _ _ _ (Gain) 1 -6")
                   .cut(2, dest_in=HOUR + 15, length=15, more=f"\n(Infade) {fade(5)} L _ _ _")
                   .write(folder / "p.adl"))
        result = run("spot", project, "--json", "--fades", "--gain", *arguments)
        self.assert_status(result, ALL_DONE)
        return [(line["pass"], line["path"]) for line in result.of("file")]

    def test_rateChannelsDepthAndFramesOfEveryFile(self):
        for bits in (16, 24):
            for rate, channels in ((48000, 1), (44100, 2), (96000, 1)):
                for number, depth in enumerate((16, 24)):
                    with self.subTest(bits=bits, rate=rate, channels=channels, depth=depth):
                        self.folder = self.folder / str(number)
                        self.folder.mkdir(parents=True, exist_ok=True)
                        made = self.spot(bits, rate, channels, "--depth", str(depth), "--copy-to", self.folder / "out")
                        self.assertEqual([made_in for made_in, _ in made], ["depth"] * 2 + ["gain"] + ["fade"] * 3)
                        for made_in, path in made:
                            frames = next((n for suffix, n in PIECES.items() if suffix in path), 48000)
                            expected = (rate, channels, depth if made_in == "depth" else bits, frames)
                            self.assertEqual(soxi(path), expected, path)
                            self.assertEqual(sndfile_info(path), expected, path)

    def test_copyOfTheSameDepthSoundsTheSame(self):
        made = dict(self.spot(24, 48000, 1, "--copy-to", self.folder / "out"))
        copy = made["depth"]
        self.assertEqual(samples(copy, 24), samples(str(self.folder / "24-48000-1" / "take.wav"), 24))

    def test_fadeInRisesInAStraightLine(self):
        """Sample i of a piece of n frames is that of the source times i / n, at most one step of the scale off."""
        made = self.spot(24, 48000, 1)
        piece = samples(next(path for _, path in made if "_FadeIn" in path), 24)
        source = samples(str(self.folder / "24-48000-1" / "take.wav"), 24)
        self.assertEqual(len(piece), 4800)
        self.assertEqual(piece[0], 0)
        worst = max(abs(piece[i] - source[i] * i / 4800) for i in range(4800))
        self.assertLess(worst, 2)

    def test_depth16KeepsTheUpperBits(self):
        made = self.spot(24, 48000, 1, "--depth", "16")
        narrow = samples(next(path for made_in, path in made if made_in == "depth"), 16)
        source = samples(str(self.folder / "24-48000-1" / "take.wav"), 24)
        self.assertEqual(len(narrow), len(source))
        self.assertLess(max(abs(a - b / 256) for a, b in zip(narrow, source)), 2)

    def test_filesOfOtherProgramsAreRead(self):
        """A tone that sox makes, with the chunks that it likes to write."""
        for bits in (16, 24):
            path = self.folder / "take.wav"
            subprocess.run(["sox", "-n", "-t", "wavpcm", "-b", str(bits), "-r", "48000", "-c", "1", path, "synth",
                            "0.5", "sine", "440"], check=True)
            project = Adl().source(1, "a/take.wav").cut(1, length=10).write(self.folder / "p.adl")
            source = run("info", project, "--json").json["sources"][0]["file"]
            with self.subTest(bits=bits):
                self.assertEqual((source["sampleRate"], source["channels"], source["bitsPerSample"], source["frames"]),
                                 soxi(str(path)))


if __name__ == "__main__":
    unittest.main()
