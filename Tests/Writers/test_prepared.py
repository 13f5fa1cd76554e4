"""What a prepared folder holds: the form of its text, what of the project stays, and files beyond what one wave file can hold."""

import os
import struct
import unittest

import audio
from field_tools import FieldTest, brief, harmful
from further_writers import STEREO_FLOATS
from layout import PLACE, adl, cut, lay_out, source
from program import ALL_DONE, run
from twins import CLEAN, FILES
from writers import LISTS

HOUR = 172800000
GIB = 1 << 30


class Text(FieldTest):
    def prepared_text(self, text, files, *options):
        project = lay_out(self.folder / "source", text, files)
        self.prepare(project, self.folder / "into", *options)
        return (self.folder / "into" / "p.adl").read_bytes()

    def test_shiftJisWithOneLabelALine(self):
        text = self.prepared_text(CLEAN.replace(b"Reel one", "嵐の予報".encode()), FILES)
        self.assertIn("嵐の予報".encode("shift_jisx0213"), text)
        self.assertTrue(text.startswith(b"<ADL>\r\n"))
        self.assertTrue(text.rstrip().endswith(b"</ADL>"))
        self.assertEqual(text.count(b"\r\n"), text.count(b"\n"))
        self.assertEqual(text.count(b"\r\n"), text.count(b"\r"))
        for line in text.split(b"\r\n"):
            self.assertLessEqual(len([word for word in line.split() if word.startswith(b"(")]), 2, line)

    def test_namesTracksMarkersAndAutomationStay(self):
        text = self.prepared_text(LISTS.text, LISTS.files)
        for word in (b'"Voices"', b'"Rooms"', b"<FADER_LIST>", b"<PAN_LIST>", b"<MUTE_LIST>", b'"Start"', b"-6.0"):
            self.assertIn(word, text)
        self.assertIn(b'"Crowd"', self.prepared_text_of(STEREO_FLOATS))

    def prepared_text_of(self, writer):
        project = lay_out(self.folder / "other", writer.text, writer.files)
        self.prepare(project, self.folder / "other into")
        return (self.folder / "other into" / "p.adl").read_bytes()

    def test_everyChangeIsTold(self):
        project = lay_out(self.folder / "source", STEREO_FLOATS.text, STEREO_FLOATS.files)
        told = self.prepare(project, self.folder / "into")
        codes = {change["code"] for change in told["changes"]}
        wanted = {code for code, _, _, _ in STEREO_FLOATS.findings}
        self.assertEqual(wanted - codes, set(), told["changes"])
        separator = next(change for change in told["changes"] if change["code"] == "fade-separator")
        self.assertEqual((separator["line"], separator["entry"]), (19, 1))
        words = run("prepare", project, "--into", self.folder / "again")
        self.assert_status(words, ALL_DONE)
        self.assertRegex(words.out, r"\b19\b")


class Places(FieldTest):
    def test_relativePaths(self):
        lay_out(self.folder / "source", CLEAN.replace(b"room.wav", b"gone/elsewhere.wav"),
                {"voice.wav": FILES["voice.wav"]}, "My.show.ADL")
        lay_out(self.folder / "media" / "deep", b"", {"elsewhere.wav": FILES["room.wav"]}, "none")
        result = run("prepare", "source/My.show.ADL", "--into", "into", "--media", "media", cwd=self.folder)
        self.assert_status(result, ALL_DONE)
        self.assertEqual(len(self.prepared_cuts(self.folder / "into" / "My.show.adl")), 2)
        for placed in self.prepared_cuts(self.folder / "into" / "My.show.adl"):
            self.assertTrue(os.path.exists(placed.path))

    def test_movedFolderIsStillWhole(self):
        """What was copied or converted goes where the folder goes."""
        project = lay_out(self.folder / "source", STEREO_FLOATS.text, STEREO_FLOATS.files)
        self.prepare(project, self.folder / "into", "--copy-media")
        (self.folder / "into").rename(self.folder / "moved")
        (self.folder / "source").rename(self.folder / "gone")
        self.assert_clean(self.folder / "moved" / "p.adl")

    def test_crossfadesArrive(self):
        """Equal fades on an exact overlap make one crossfade, which the system knows by their texts."""
        text = adl([source(1, "voice.wav"), source(2, "room.wav")],
                   [cut(1, 1, 1, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000"),
                    "(Outfade) 00.00:00:02/0000 LIN _ _ _",
                    cut(2, 2, 1, "00.00:00:02/0000", "01.00:00:03/0000", "01.00:00:08/0000"), "(Infade) 00.00:00.02/0000 LIN _ _ _"])
        project = lay_out(self.folder / "source", text, FILES)
        result = run("spot", project, "--json", "--fades", f"--prepare={self.folder / 'into'}")
        self.assert_status(result, ALL_DONE)
        pieces = [region["piece"] for region in result.of("region")]
        self.assertEqual(pieces, ["main", "main", "outfade", "crossfade"])


def sparse_wave(path, seconds, at, sound, mark=b"RIFF"):
    """A file of silence that costs no disk, with sound from a frame on. 16 bits, one channel, 48000 Hz."""
    frames = 48000 * seconds
    size = 2 * frames
    head = mark + struct.pack("<I", 0xFFFFFFFF if mark != b"RIFF" else size + 36) + b"WAVE"
    if mark != b"RIFF":
        head += b"ds64" + struct.pack("<IQQQI", 28, size + 72, size, frames, 0)
    head += b"fmt " + struct.pack("<IHHIIHH", 16, 1, 1, 48000, 96000, 2, 16)
    head += b"data" + struct.pack("<I", 0xFFFFFFFF if mark != b"RIFF" else size)
    with open(path, "wb") as file:
        file.write(head)
        file.truncate(len(head) + size)
        file.seek(len(head) + 2 * at)
        file.write(audio.wave(sound, 16)[44:])


class Large(FieldTest):
    """Files beyond what the system reads: no field of a wave file holds more than 2 GiB of audio for it."""

    def test_onlyWhatTheCutsUseIsWritten(self):
        sound = audio.noise(96000, bits=16, seed="far")
        for mark, seconds, at_second in ((b"RIFF", 23000, 22000), (b"RF64", 50000, 46000)):
            with self.subTest(mark):
                folder = self.folder / mark.decode()
                hours, minutes = divmod(at_second, 3600)
                minutes, seconds_in = divmod(minutes, 60)
                into_file = f"{hours:02d}.{minutes:02d}:{seconds_in:02d}:00/0000"
                end = f"{hours:02d}.{minutes:02d}:{seconds_in:02d}:10/0000"
                text = adl(['(Index) 1 (F) "' + PLACE + 'far.wav" _ 00.00:00:00/0000 _ _ _'],
                           [cut(1, 1, 1, into_file, "01.00:00:00/0000", "01.00:01:00/0000"),
                            cut(2, 1, 1, end, "01.00:01:00/0000", "01.00:01:10/0000")])
                project = lay_out(folder, text, {})
                sparse_wave(project.parent / "far.wav", seconds, at_second * 48000, sound, mark)
                told = self.check(project)
                self.assertEqual({finding["code"] for finding in harmful(told["findings"])}, {"media-kind"},
                                 brief(told["findings"]))
                into = self.folder / ("into " + mark.decode())
                self.prepare(project, into)
                self.assertLess(sum(path.stat().st_size for path in (into / "Audio").iterdir()), GIB)
                placed = self.prepared_cuts(into / "p.adl")
                self.assertEqual([(cut.position, cut.end) for cut in placed],
                                 [(HOUR, HOUR + 48000), (HOUR + 48000, HOUR + 67200)])
                for at, cut_of_it, length in ((0, placed[0], 48000), (19200, placed[1], 19200)):
                    rate, channels = cut_of_it.sound
                    self.assertEqual((rate, len(channels)), (48000, 1))
                    self.assertEqual(channels[0], sound[0][at:at + length])


if __name__ == "__main__":
    unittest.main()
