"""Whatever the files are, the program ends soon, in bounded memory, with a clear line and the right status."""

import os
import random
import resource
import signal
import unittest

from material import Adl, one_cut, wave, wave_of
from program import ALL_DONE, DOES_NOT_LOAD, LEFT_OUT, ProgramTest, environment, limit_memory, run

SECONDS = 10
GOOD = b"<ADL>\n<EVENT_LIST>\n(Entry) 1 (Cut) I 1 1 1 a b c d\n</EVENT_LIST>\n</ADL>\n"


class BoundedTest(ProgramTest):
    def bounded(self, *arguments):
        # A sanitizer ends the program at an allocation that fails, unless it is told to let it fail as the system does.
        options = os.environ.get("ASAN_OPTIONS", "") + ":allocator_may_return_null=1"
        result = run(*arguments, before=limit_memory, seconds=SECONDS, env=environment(ASAN_OPTIONS=options))
        self.assertGreaterEqual(result.status, 0, f"ended by a signal: {result.err_bytes[-500:]!r}")
        return result

    def both_forms(self, path):
        """Of info, with the JSON object always there; and of spot."""
        text, told = self.bounded("info", path), self.bounded("info", path, "--json")
        self.assertEqual(text.status, told.status)
        return text, told.json, self.bounded("spot", path, "--quiet")


class NoProjects(BoundedTest):
    """Status 2, one line that names the path and says why."""

    def refused(self, path, *words):
        for command in (["info", path], ["info", path, "--json"], ["spot", path], ["spot", path, "--json"]):
            result = self.bounded(*command)
            self.assert_status(result, DOES_NOT_LOAD)
            # Lines that begin with "==" are a sanitizer's warning of the allocation that failed.
            told = [line for line in result.err.split("\n")[:-1] if not line.startswith("==")]
            self.assertEqual(len(told), 1, result.err)
            self.assertIn("File NG.", result.err)
            for word in (os.fspath(path), *words):
                self.assertIn(word, result.err)
            if command[0] == "spot":
                self.assertEqual(result.out, "")

    def test_fileThatIsNotThere(self):
        self.refused(self.folder / "gone.adl", os.strerror(2))

    def test_folder(self):
        self.refused(self.folder)

    def test_pathThatEndsInASlash(self):
        (self.folder / "p.adl").write_bytes(GOOD)
        self.refused(str(self.folder / "p.adl") + "/")

    def test_pathBelowAFile(self):
        (self.folder / "p.adl").write_bytes(GOOD)
        self.refused(self.folder / "p.adl" / "q.adl")

    def test_nameTooLong(self):
        self.refused(self.folder / ("n" * 300))

    def test_pathTooLong(self):
        self.refused(str(self.folder) + "/x" * 3000)

    def test_linkToItself(self):
        loop = self.folder / "loop.adl"
        loop.symlink_to(loop)
        self.refused(loop)

    def test_endlessDevice(self):
        self.refused("/dev/zero")
        self.refused("/dev/random")

    def test_emptyDevice(self):
        self.refused("/dev/null")

    def test_fifoThatNobodyWrites(self):
        fifo = self.folder / "fifo.adl"
        os.mkfifo(fifo)
        self.refused(fifo)

    def test_fileThatHasNoEndInMemory(self):
        """A terabyte without a byte on the disk."""
        path = self.folder / "huge.adl"
        with open(path, "wb") as file:
            file.truncate(1 << 40)
        self.refused(path)


class OddProjects(BoundedTest):
    def write(self, content):
        path = self.folder / "p.adl"
        path.write_bytes(content)
        return path

    def test_fileWithoutOpeningTagIsAnEmptyProject(self):
        for name, content in [("empty", b""), ("blank", b" \n"), ("nul", bytes(100)), ("byteOrderMark", b"\xef\xbb\xbf" + GOOD),
                              ("wave", wave(10)), ("oneByte", b"<"), ("text", b"Dear diary")]:
            with self.subTest(name):
                text, told, spot = self.both_forms(self.write(content))
                self.assert_status(text, ALL_DONE)
                self.assertEqual((told["ok"], told["sections"]), (True, []))
                self.assert_status(spot, LEFT_OUT)
                self.assertIn("no cut", spot.err)

    def test_everyTruncationOfAProject(self):
        whole = (Adl('<PROJECT>\n(PROJ_TITLE) "x y"\n</PROJECT>\n/* c */\n').source(1, "a/t.wav")
                 .cut(1, more="\n(Gain) 1 2").bytes)
        (self.folder / "t.wav").write_bytes(wave(100))
        for length in range(0, len(whole), 5):
            result = self.bounded("info", self.write(whole[:length]), "--json")
            with self.subTest(length=length):
                self.assertIn(result.status, (ALL_DONE, DOES_NOT_LOAD))
                self.assertEqual(result.json["ok"], result.status == ALL_DONE)

    def test_randomBytesBehindTheOpeningTag(self):
        for seed in range(20):
            noise = random.Random(seed)
            alphabet = b'()<>"/*\x1b \n0159-' + bytes(range(256))
            content = b"<ADL>\n<EVENT_LIST>\n" + bytes(noise.choice(alphabet) for _ in range(2000))
            with self.subTest(seed=seed):
                text, _, spot = self.both_forms(self.write(content))
                self.assertIn(text.status, (ALL_DONE, DOES_NOT_LOAD))
                self.assertIn(spot.status, (DOES_NOT_LOAD, LEFT_OUT))

    def test_hundredThousandUnknownLabels(self):
        lines = b"".join(b"(Odd%d) x\n" % n for n in range(100000))
        for section in (b"PROJECT", b"SOURCE_INDEX"):
            with self.subTest(section):
                path = self.write(b"<ADL>\n<" + section + b">\n" + lines + b"</" + section + b">\n</ADL>\n")
                text, told, spot = self.both_forms(path)
                self.assert_status(text, ALL_DONE)
                self.assertEqual(text.err.count("\n"), 100000)
                self.assertIn("Found un", text.err)
                self.assertEqual(len(told["sections"][0]["entries"]), 100000)
                self.assert_status(spot, LEFT_OUT)

    def test_hundredThousandUnknownLabelsInAnEvent(self):
        path = self.write(b"<ADL>\n<EVENT_LIST>\n(Entry) 1\n" + b"".join(b"(Odd%d) x\n" % n for n in range(100000))
                          + b"</EVENT_LIST>\n</ADL>\n")
        text, told, _ = self.both_forms(path)
        self.assertEqual(text.err.count("Encountered unexpected label: Odd"), 100000)
        self.assertEqual(len(told["events"]), 1)

    def test_entryNumbersOnBothEndsOf32Bits(self):
        project = (one_cut(self.folder)).read_bytes().replace(b"(Entry) 1 ", b"(Entry) -2147483648 ")
        project = project.replace(b"</EVENT_LIST>", b"(Entry) 2147483647 (Silence) 1 a b c\n"
                                                    b"(Entry) 99999999999999999999 (Aux) 1 a b c\n</EVENT_LIST>")
        text, told, spot = self.both_forms(self.write(project))
        self.assert_status(text, ALL_DONE)
        self.assertEqual([(event["entryNumber"], event["label"]) for event in told["events"]],
                         [(-2147483648, "Cut"), (2147483647, "Aux")])
        self.assert_status(spot, ALL_DONE)

    def test_trackNumbersOnBothEndsOf32Bits(self):
        (self.folder / "take.wav").write_bytes(wave(1600))
        adl = Adl().source(1, "a/take.wav")
        adl.cut(1, track=-2147483648, length=1).cut(2, track=2147483647, length=1)
        text, told, spot = self.both_forms(self.write(adl.bytes))
        self.assert_status(text, ALL_DONE)
        self.assertEqual((told["minTrack"], told["maxTrack"], told["trackCount"]), (-2147483648, 2147483647, 0))
        self.assertIn(spot.status, (ALL_DONE, LEFT_OUT))
        chosen = self.bounded("spot", self.folder / "p.adl", "--only-tracks=2147483647")
        self.assertIn(chosen.status, (ALL_DONE, LEFT_OUT))

    def test_tracksFarApart(self):
        path = self.write(Adl().cut(1, track=0).cut(2, track=2147483646).bytes)
        text = self.bounded("info", path)
        self.assert_status(text, ALL_DONE)
        self.assertLess(len(text.out_bytes), 10_000_000)
        self.assertIn("more rows", text.out)
        self.assert_status(self.bounded("spot", path), LEFT_OUT)

    def test_sourceNumbersOnBothEndsOf32Bits(self):
        adl = Adl().source(-2147483648, "a/x.wav").source(2147483647, "a/y.wav").cut(1, source=2147483647)
        _, told, _ = self.both_forms(self.write(adl.bytes))
        self.assertEqual([source["index"] for source in told["sources"]], [-2147483648, 2147483647])

    def test_referencesNestedAHundredThousandDeep(self):
        deep = 100000
        for name, tail in [("closed", b"</REF>\n</REF_LIST>\n" * deep), ("open", b"")]:
            with self.subTest(name):
                content = b"<ADL>\n" + b"<REF_LIST>\n<REF>\n" * deep + tail + b"</ADL>\n"
                text, told, _ = self.both_forms(self.write(content))
                self.assert_status(text, ALL_DONE)
                self.assertIs(told["ok"], True)

    def test_countedValueThatClaimsTheWorld(self):
        for count in (b"2147483647", b"-2147483648", b"99999999999999"):
            with self.subTest(count):
                text, *_ = self.both_forms(self.write(b"<ADL>\n<PROJECT>\n(PROJ_TITLE)" + count + b" x"))
                self.assert_status(text, ALL_DONE)

    def test_locationOfAMegabyte(self):
        adl = Adl().source(1, "a/" * 500000 + "t.wav").cut(1)
        text, _, spot = self.both_forms(self.write(adl.bytes))
        self.assert_status(text, ALL_DONE)
        self.assert_status(spot, LEFT_OUT)

    def test_timestampsOfAnyText(self):
        for text in ("x", "_", '""', "99|99:99:99/9999", "::::::::::::::::", '"' + "\x7f" * 16 + '"'):
            with self.subTest(text):
                info, _, spot = self.both_forms(one_cut(self.folder, source_in=text, dest_in=text, length=text))
                self.assert_status(info, ALL_DONE)
                self.assertIn(spot.status, (ALL_DONE, LEFT_OUT))


class OddSources(BoundedTest):
    def spot(self, *arguments, **cut):
        project = Adl().source(1, "URL:file://localhost/a/take.wav").cut(1, **cut).write(self.folder / "p.adl")
        return self.bounded("spot", project, "--json", *arguments)

    def source_of(self):
        return self.bounded("info", self.folder / "p.adl", "--json").json["sources"][0]["file"]

    def test_whatIsNoRegularFileIsNotFound(self):
        take = self.folder / "take.wav"
        for name, make in [("folder", take.mkdir), ("fifo", lambda: os.mkfifo(take)),
                           ("endlessDevice", lambda: take.symlink_to("/dev/zero")),
                           ("linkToNowhere", lambda: take.symlink_to("/nowhere")),
                           ("linkToItself", lambda: take.symlink_to(take))]:
            make()
            with self.subTest(name):
                result = self.spot("--depth", "16", "--fades", "--gain")
                self.assert_status(result, LEFT_OUT)
                self.assertIn("not found", result.err)
                self.assertIsNone(self.source_of())
            take.rmdir() if name == "folder" else take.unlink()

    def test_waveFileThatClaims2GiB(self):
        """What the file lacks counts as silence, so the target would have all of it: only the read side is asked."""
        for claim in (0x7FFFFFF0, 0xFFFFFFF0, 0xFFFFFFFF):
            with self.subTest(claim=claim):
                (self.folder / "take.wav").write_bytes(wave_of(bytes(300), claimed_data_size=claim))
                result = self.spot("--fades", length=1)
                self.assertIn(result.status, (ALL_DONE, LEFT_OUT))
                self.assertIsNotNone(self.source_of())

    def test_chunkThatClaims2GiB(self):
        for name in (b"bext", b"iXML", b"fmt ", b"JUNK"):
            with self.subTest(name):
                claim = name + (0x7FFFFFFE).to_bytes(4, "little") + bytes(50)
                (self.folder / "take.wav").write_bytes(wave(100, chunks=claim))
                self.assertIn(self.spot("--depth", "16").status, (ALL_DONE, LEFT_OUT))

    def test_formatOfZerosAndExtremes(self):
        for channels, bits in [(0, 24), (1, 0), (65535, 24), (1, 7), (1, 65528), (2, 8), (1, 32)]:
            with self.subTest(channels=channels, bits=bits):
                (self.folder / "take.wav").write_bytes(wave_of(bytes(3000), bits=bits, channels=channels))
                self.assertIn(self.spot("--depth", "16", "--fades", length=1).status, (ALL_DONE, LEFT_OUT))

    def test_everyTruncationOfAWaveFile(self):
        whole = wave(20, chunks=b"bext" + (602).to_bytes(4, "little") + bytes(602))
        for length in [*range(0, 60, 2), *range(60, len(whole), 97)]:
            (self.folder / "take.wav").write_bytes(whole[:length])
            result = self.spot("--depth", "16", length=1)
            with self.subTest(length=length):
                self.assertIn(result.status, (ALL_DONE, LEFT_OUT))

    def test_randomWaveFiles(self):
        for seed in range(20):
            noise = random.Random(seed)
            content = bytearray(wave(200))
            for _ in range(8):
                content[noise.randrange(60)] = noise.randrange(256)
            (self.folder / "take.wav").write_bytes(content)
            with self.subTest(seed=seed):
                self.assertIn(self.spot("--fades", length=1).status, (ALL_DONE, LEFT_OUT))

    def test_fadeLongerThanAnyDiskIsNoHang(self):
        """The length of a fade is the project's to claim; a limit on the file's size stands for the disk."""
        def limits():
            limit_memory()
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 20, 1 << 20))

        (self.folder / "take.wav").write_bytes(wave(100))
        project = (Adl().source(1, "a/take.wav")
                   .cut(1, length=1, more="\n(Infade) 23|59:59;29/0000 L 0 0 0").write(self.folder / "p.adl"))
        result = run("spot", project, "--json", "--fades", before=limits, seconds=SECONDS)
        self.assert_status(result, LEFT_OUT)
        self.assertIn("take_FadeIn.wav", result.err)


if __name__ == "__main__":
    unittest.main()
