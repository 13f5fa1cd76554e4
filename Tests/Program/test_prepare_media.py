"""velmora prepare: audio that is linked, copied, converted, split and resampled, sample by sample."""

import os
import struct
import subprocess
import unittest

import material
import prepare_material as m
from program import ALL_DONE, LEFT_OUT, ProgramTest, run

LENGTH = 2 * m.SECOND
LEFT, RIGHT = m.samples(LENGTH, 1), m.samples(LENGTH, 2)


def sox(*arguments):
    subprocess.run(["sox", "-D", *[os.fspath(argument) for argument in arguments]], check=True, capture_output=True)


def time_reference_of(path):
    content = path.read_bytes()
    at = content.index(b"bext") + 8
    return struct.unpack("<Q", content[at + 338:at + 346])[0]


class Media(ProgramTest):
    def setUp(self):
        super().setUp()
        self.source = self.folder / "in"
        self.source.mkdir()
        self.out = self.folder / "out"

    def prepare(self, text, *options, status=ALL_DONE):
        (self.source / "Show.adl").write_text(text)
        prepared = run("prepare", self.source / "Show.adl", "--into", self.out, "--json", *options)
        self.assert_status(prepared, status)
        return prepared.json

    def made(self, prepared):
        return [(file["how"], os.path.basename(file["to"])) for file in prepared["files"]]

    def plain_stereo(self, name="take.wav"):
        path = self.source / name
        path.write_bytes(material.wave_of(m.packed(m.interleaved(LEFT, RIGHT)), channels=2, chunks=m.bext(7)))
        return path

    def test_channels_are_split_once_for_each_file(self):
        self.plain_stereo()
        prepared = self.prepare(m.project(events=m.cut(channels="1~2", tracks="1~2") +
                                          m.cut(2, channels="2", tracks="5") + m.cut(3, channels="1-2", tracks="8-9")))
        self.assertEqual(self.made(prepared), [("split", "take_ch1.wav"), ("split", "take_ch2.wav")])
        self.assertEqual(m.decoded(self.out / "Audio/take_ch1.wav"), LEFT)
        self.assertEqual(m.decoded(self.out / "Audio/take_ch2.wav"), RIGHT)
        self.assertEqual(time_reference_of(self.out / "Audio/take_ch2.wav"), 7)
        events = m.meant(self.out / "Show.adl")["events"]
        self.assertEqual([(event["tracks"], event["source"]) for event in events],
                         [([1], 1), ([2], 2), ([5], 2), ([8], 1), ([9], 2)])

    def test_whatever_is_read_is_written_without_loss(self):
        stereo = self.plain_stereo("plain.wav")
        mono = self.source / "mono.wav"
        sox(stereo, mono, "remix", "1")  # extensible, as sox writes 24 bits
        for name, options in (("take.flac", []), ("take.aif", []), ("take.w64", []), ("take.wav", []),
                              ("take.caf", []), ("take16.flac", ["-b", "16"]), ("take8.wav", ["-b", "8"]),
                              ("take32.wav", ["-b", "32", "-e", "signed-integer"])):
            with self.subTest(name=name):
                self.tearDownOut()
                try:
                    sox(mono, *options, self.source / name)
                except subprocess.CalledProcessError:
                    continue  # a format that this sox cannot write
                before = m.decoded(self.source / name, bits=32)
                prepared = self.prepare(m.project(sources=m.index(name=name)))
                self.assertEqual(self.made(prepared)[0][0], "converted")
                self.assertEqual(m.decoded(self.out / "Audio" / (name.partition(".")[0] + ".wav"), bits=32), before)
                self.assertIn("media-kind", m.codes(prepared["changes"]))

    def tearDownOut(self):
        subprocess.run(["rm", "-rf", os.fspath(self.out)], check=True)

    def test_floats_become_24_bits_and_a_peak_is_named(self):
        values = [0.0, 0.5, -1.0, 0.99999994, 1.5, -2.0, 3 / 2**24, 1 / 2**24, float("nan")] + [0.25] * LENGTH
        audio = struct.pack(f"<{len(values)}f", *values)
        (self.source / "take.wav").write_bytes(material.wave_of(audio, bits=32, format_tag=3))
        prepared = self.prepare(m.project())
        self.assertEqual(self.made(prepared), [("converted", "take.wav")])
        self.assertEqual(m.decoded(self.out / "Audio/take.wav")[:10],
                         [0, 1 << 22, -(1 << 23), (1 << 23) - 1, (1 << 23) - 1, -(1 << 23), 2, 0, 0, 1 << 21])
        text = next(change["text"] for change in prepared["changes"] if change["code"] == "media-kind")
        self.assertRegex(text, r"rounded to 24-bit PCM.*\+6\.02 dBFS")

    def test_headers_that_mislead_are_written_anew(self):
        audio = m.packed(LEFT)
        odd = struct.pack("<4sI", b"junk", 3) + b"abc\0"
        (self.source / "take.wav").write_bytes(material.wave_of(audio, chunks=odd))
        (self.source / "long.wav").write_bytes(material.wave_of(audio, claimed_data_size=len(audio) * 4))
        prepared = self.prepare(m.project(sources=m.index() + m.index(2, "long.wav"), events=m.cut() + m.cut(2, source=2)))
        self.assertEqual(m.codes(prepared["changes"]), ["media-chunks"])
        self.assertEqual(m.decoded(self.out / "Audio/take.wav"), LEFT)
        self.assertEqual(m.decoded(self.out / "Audio/long.wav"), LEFT)

    def test_resampled_media_agree_with_another_resampler(self):
        sox("-n", "-r", "44100", "-b", "24", self.source / "take.wav", "synth", "2", "sine", "500-2000", "vol", "0.5")
        text = m.project(events=m.cut(source_in=4800))
        left = self.prepare(text, status=LEFT_OUT)
        self.assertIn("media-rate", m.codes(left["left"]))
        self.tearDownOut()
        prepared = self.prepare(text, "--resample")
        self.assertEqual(self.made(prepared), [("resampled", "take.wav")])
        self.assertNotIn("media-rate", m.codes(prepared["left"]))
        sox(self.source / "take.wav", self.folder / "witness.wav", "rate", "-v", "48000")
        ours, witness = m.decoded(self.out / "Audio/take.wav"), m.decoded(self.folder / "witness.wav")
        self.assertEqual(len(ours), 96000)
        inner = range(2000, 94000)
        self.assertLess(max(abs(ours[i] - witness[i]) for i in inner), 1 << 8)  # of 2^23: below -90 dBFS
        self.assertEqual(m.meant(self.out / "Show.adl")["events"][0]["fileOffset"], 4800)

    def test_time_reference_moves_with_the_rate(self):
        audio = m.packed(m.samples(88200))
        (self.source / "take.wav").write_bytes(material.wave_of(audio, rate=44100, chunks=m.bext(44100 * 3600)))
        prepared = self.prepare(m.project(sources=m.index(start="_"), events=m.cut(source_in=3600 * m.SECOND + 480)),
                                "--resample")
        self.assertEqual(self.made(prepared), [("resampled", "take.wav")])
        self.assertEqual(time_reference_of(self.out / "Audio/take.wav"), 48000 * 3600)
        meant = m.meant(self.out / "Show.adl")
        self.assertEqual(meant["sources"][0]["fileStart"], 48000 * 3600)
        self.assertEqual(meant["events"][0]["fileOffset"], 480)

    def test_links_and_copies(self):
        take = self.source / "take.wav"
        take.write_bytes(material.wave_of(m.packed(LEFT)))
        self.assertEqual(self.made(self.prepare(m.project())), [("linked", "take.wav")])
        self.assertEqual(os.readlink(self.out / "Audio/take.wav"), os.fspath(take))
        self.tearDownOut()
        self.assertEqual(self.made(self.prepare(m.project(), "--copy-media")), [("copied", "take.wav")])
        copy = self.out / "Audio/take.wav"
        self.assertFalse(copy.is_symlink())
        self.assertEqual(copy.read_bytes(), take.read_bytes())

    def test_what_is_no_audio_is_never_copied(self):
        (self.source / "take.wav").write_bytes(b"passwords")
        prepared = self.prepare(m.project(), "--copy-media", status=LEFT_OUT)
        self.assertEqual(self.made(prepared), [("linked", "take.wav")])
        self.assertTrue((self.out / "Audio/take.wav").is_symlink())

    def test_folder_can_be_moved_and_leans_on_no_other(self):
        (self.source / "take.wav").write_bytes(material.wave_of(m.packed(LEFT)))
        self.prepare(m.project())
        again = self.folder / "again"
        self.assert_status(run("prepare", self.out / "Show.adl", "--into", again), ALL_DONE)
        self.tearDownOut()
        os.rename(again, self.folder / "deep")
        self.assert_status(run("check", self.folder / "deep/Show.adl"), ALL_DONE)

    def test_projects_and_media_behind_links(self):
        (self.source / "take.wav").write_bytes(material.wave_of(m.packed(LEFT)))
        (self.source / "Show.adl").write_text(m.project())
        (self.folder / "link").symlink_to("in")
        (self.folder / "other").symlink_to("link/Show.adl")
        told = run("prepare", "link/../link/Show.adl", "--into", "out", cwd=self.folder)
        self.assert_status(told, ALL_DONE)
        self.assertEqual(os.readlink(self.out / "Audio/take.wav"), os.fspath(self.source / "take.wav"))

    def test_names_of_one_file_share_it_and_files_of_one_name_do_not(self):
        for name, seed in (("A/take.wav", 3), ("B/take.wav", 4), ("B/Take.WAV", 5)):
            (self.source / name).parent.mkdir(exist_ok=True)
            (self.source / name).write_bytes(material.wave_of(m.packed(m.samples(LENGTH, seed))))
        (self.source / "same.wav").symlink_to("A/take.wav")
        where = "URL:file://localhost/Show/"
        prepared = self.prepare(m.project(
            sources="".join(m.index(i, location=where + name) for i, name in
                            enumerate(["A/take.wav", "B/take.wav", "same.wav", "B/Take.WAV"], 1)),
            events="".join(m.cut(i, source=i) for i in range(1, 5))))
        self.assertEqual(self.made(prepared), [("linked", "take.wav"), ("linked", "take_2.wav"), ("linked", "Take_3.WAV")])
        sources = m.meant(self.out / "Show.adl")["sources"]
        self.assertEqual([os.path.basename(source["file"]["path"]) for source in sources],
                         ["take.wav", "take_2.wav", "take.wav", "Take_3.WAV"])

    def test_media_folders_are_searched_in_their_order(self):
        for folder, seed in (("first", 3), ("second", 4)):
            (self.folder / folder).mkdir()
            (self.folder / folder / "take.wav").write_bytes(material.wave_of(m.packed(m.samples(LENGTH, seed))))
        prepared = self.prepare(m.project(), "--media", self.folder / "second", "--media", self.folder / "first")
        self.assertEqual(prepared["files"][0]["from"], os.fspath(self.folder / "second/take.wav"))

    def test_unused_sources_stay(self):
        self.plain_stereo()
        prepared = self.prepare(m.project(events=""))
        self.assertEqual(self.made(prepared), [("linked", "take.wav")])

    def test_files_beyond_2_gib_are_cut_to_what_is_used(self):
        # Two hours of stereo in an RF64 that takes no room on the disk but at its ends.
        frames = 48000 * 4500
        data = frames * 12
        path = self.source / "take.wav"
        head = struct.pack("<4sI4s4sIQQQI", b"RF64", 0xFFFFFFFF, b"WAVE", b"ds64", 28, data + 72, data, frames, 0)
        head += struct.pack("<4sIHHIIHH", b"fmt ", 16, 1, 4, 48000, 48000 * 12, 12, 24) + struct.pack("<4sI", b"data", 0xFFFFFFFF)
        first = 48000 * 4000
        with path.open("wb") as file:
            file.write(head)
            file.truncate(len(head) + data)
            file.seek(len(head) + first * 12)
            file.write(m.packed(m.interleaved(LEFT, RIGHT, LEFT, RIGHT)))
        text = m.project(events=m.cut(source_in=first + 480, length=480))
        # One channel of it fits as it is; all four do not.
        prepared = self.prepare(text.replace(" 1 1 1 ", " 1 1~4 1~4 "), "--keep-stereo", status=LEFT_OUT)
        self.assertEqual(self.made(prepared), [("converted", "take.wav")])
        self.assertIn("480 samples from sample", str(prepared["changes"]))
        made = self.out / "Audio/take.wav"
        self.assertLess(made.stat().st_size, 10000)
        self.assertEqual(m.decoded(made)[:8], m.interleaved(LEFT, RIGHT, LEFT, RIGHT)[480 * 4:480 * 4 + 8])
        event = m.meant(self.out / "Show.adl")["events"][0]
        self.assertEqual(event["fileOffset"], 0)


if __name__ == "__main__":
    unittest.main()
