"""Whatever check and prepare are given: clear words, the right status, bounded time and memory, and nothing lost."""

import os
import random
import subprocess
import unittest

import audio
from field_tools import UNREADABLE, FieldTest
from layout import adl, checksums, cut, lay_out, source
from program import ALL_DONE, BAD_USAGE, INTERRUPTED, LEFT_OUT, environment, limit_file_size, limit_memory, run, start
from twins import CLEAN, FILES

SECONDS = 10


class BoundedTest(FieldTest):
    def bounded(self, *arguments, seconds=SECONDS, **how):
        # A sanitizer ends the program at an allocation that fails, unless it is told to let it fail as the system does.
        options = os.environ.get("ASAN_OPTIONS", "") + ":allocator_may_return_null=1"
        result = run(*arguments, before=limit_memory, seconds=seconds, env=environment(ASAN_OPTIONS=options), **how)
        self.assertGreaterEqual(result.status, 0, f"ended by a signal: {result.err_bytes[-500:]!r}")
        return result

    def lay_clean(self, where="clean"):
        return lay_out(self.folder / where, CLEAN, FILES)

    def unreadable(self, path):
        """Check says in words and in JSON that this is no ADL; prepare refuses it and makes nothing."""
        text = self.bounded("check", path)
        self.assert_status(text, UNREADABLE)
        self.assertTrue((text.out + text.err).strip(), "not a word")
        told = self.bounded("check", path, "--json")
        self.assert_status(told, UNREADABLE)
        for line in told.lines:
            self.assertEqual((line["verdict"], line["meant"]), ("unreadable", None))
            self.assertTrue(line["findings"])
        into = self.folder / "into"
        self.assert_status(self.bounded("prepare", path, "--into", into), UNREADABLE)
        self.assertFalse(into.exists())
        return told


class NoAdl(BoundedTest):
    def write(self, content):
        path = self.folder / "p.adl"
        path.write_bytes(content)
        return path

    def test_textThatIsNoAdl(self):
        for name, content in (("empty", b""), ("blank", b" \r\n\t"), ("nul", bytes(1000)), ("words", b"Dear diary"),
                              ("wave", audio.wave(audio.noise(100))), ("xml", b"<?xml version='1.0'?><adls><x/></adls>"),
                              ("noise", random.Random(1).randbytes(100000).replace(b"<", b"x")), ("bracket", b"<"), ("quote", b'"')):
            with self.subTest(name):
                told = self.unreadable(self.write(content))
                self.assertEqual([f["code"] for f in told.lines[0]["findings"]], ["not-an-adl"])

    def test_fileThatIsNotThere(self):
        self.unreadable(self.folder / "gone.adl")

    def test_devices(self):
        self.unreadable("/dev/null")
        self.unreadable("/dev/zero")

    def test_fifoThatNobodyWrites(self):
        fifo = self.folder / "fifo.adl"
        os.mkfifo(fifo)
        self.unreadable(fifo)

    def test_linkToItself(self):
        loop = self.folder / "loop.adl"
        loop.symlink_to(loop)
        self.unreadable(loop)

    def test_fileThatHasNoEndInMemory(self):
        path = self.folder / "huge.adl"
        with open(path, "wb") as file:
            file.truncate(1 << 40)
        self.unreadable(path)

    def test_folderWithoutAny(self):
        (self.folder / "empty").mkdir()
        self.unreadable(self.folder / "empty")

    def test_noiseAfterTheOpeningTag(self):
        alphabet = b'()<>"/*\x1b \n0159-_~' + bytes(range(256))
        for seed in range(12):
            noise = random.Random(seed)
            body = bytes(noise.choice(alphabet) for _ in range(3000))
            path = self.write(b"<ADL>\n<EVENT_LIST>\n(Entry) 1 (Cut) " + body)
            with self.subTest(seed=seed):
                told = self.bounded("check", path, "--json")
                self.assertIn(told.status, (ALL_DONE, LEFT_OUT))
                self.assertEqual(len(told.lines), 1)
                into = self.folder / f"into{seed}"
                self.assertIn(self.bounded("prepare", path, "--into", into).status, (ALL_DONE, LEFT_OUT))
                self.assertTrue((into / "p.adl").is_file())

    def test_everyTruncationOfAProject(self):
        path = self.lay_clean("whole")
        whole = path.read_bytes()
        for length in range(0, len(whole), 97):
            path.write_bytes(whole[:length])
            with self.subTest(length=length):
                told = self.bounded("check", path, "--json")
                self.assertIn(told.status, (ALL_DONE, UNREADABLE, LEFT_OUT))
                self.assertEqual(told.status == UNREADABLE, length < 5, whole[:length])


class Statuses(BoundedTest):
    def test_worstOfSeveral(self):
        clean, dirty, none = self.lay_clean(), self.folder / "dirty.adl", self.folder / "none.adl"
        dirty.write_bytes(CLEAN)
        none.write_bytes(b"Dear diary")
        for projects, status in (((clean,), ALL_DONE), ((clean, clean), ALL_DONE), ((clean, dirty), LEFT_OUT),
                                 ((dirty, none, clean), UNREADABLE), ((none,), UNREADABLE)):
            with self.subTest(projects=[path.name for path in projects]):
                result = self.bounded("check", *projects, "--json", "--jobs", "2")
                self.assert_status(result, status)
                # In the order given.
                self.assertEqual([line["path"] for line in result.lines], [str(path) for path in projects])

    def test_badUsage(self):
        clean = self.lay_clean()
        for arguments in ((), (clean, "--trust", "luck"), (clean, "--encoding", "no-such-code"), (clean, "--jobs", "0"),
                          (clean, "--jobs", "x"), (clean, "--session-rate", "x"), (clean, "--session-frame-rate", "31"),
                          (clean, "--media", self.folder / "gone"), (clean, "--what")):
            with self.subTest(arguments=[str(argument) for argument in arguments[1:]]):
                self.assert_status(self.bounded("check", *arguments), BAD_USAGE)
        for arguments in ((clean,), ("--into", self.folder / "a"), (clean, clean, "--into", self.folder / "a")):
            with self.subTest(arguments=arguments):
                self.assert_status(self.bounded("prepare", *arguments), BAD_USAGE)
                self.assertFalse((self.folder / "a").exists())

    def test_foldersAreReadInOrderOfPath(self):
        for name in ("b/x.adl", "b/y.ADL", "a/z.Adl", "B/q.adl", "a/no.txt", "b-c/d.adl"):
            self.lay_clean("tree/" + name.split("/")[0])
            (self.folder / "tree" / name).write_bytes(CLEAN)
        for part in ("a", "b", "B", "b-c"):
            (self.folder / "tree" / part / "p.adl").unlink()
        result = self.bounded("check", self.folder / "tree", "--json")
        paths = [os.path.relpath(line["path"], self.folder / "tree") for line in result.lines]
        self.assertEqual(paths, sorted(["b/x.adl", "b/y.ADL", "a/z.Adl", "B/q.adl", "b-c/d.adl"], key=os.fsencode))
        self.assert_status(result, ALL_DONE)


class TakenFolder(BoundedTest):
    def test_takenIsBadUsageAndStaysAsItWas(self):
        clean = self.lay_clean()
        into = self.folder / "into"
        into.mkdir()
        (into / "mine.txt").write_text("mine", encoding="ascii")
        before = checksums(into)
        self.assert_status(self.bounded("prepare", clean, "--into", into), BAD_USAGE)
        self.assertEqual(checksums(into), before)
        self.assert_status(self.bounded("prepare", clean, "--into", into / "mine.txt"), BAD_USAGE)
        self.assertEqual(checksums(into), before)

    def test_emptyFolderIsFree(self):
        into = self.folder / "into"
        into.mkdir()
        self.assert_status(self.bounded("prepare", self.lay_clean(), "--into", into), ALL_DONE)
        self.assertTrue((into / "p.adl").is_file())

    def test_linkToNothingIsTaken(self):
        into = self.folder / "into"
        into.symlink_to(self.folder / "gone")
        self.assert_status(self.bounded("prepare", self.lay_clean(), "--into", into), BAD_USAGE)
        self.assertTrue(into.is_symlink())

    def test_folderThatCannotBeMade(self):
        clean = self.lay_clean()
        for into in (clean / "below-a-file", "/proc/prepared", self.folder / ("n" * 300)):
            with self.subTest(into=str(into)[-40:]):
                self.assertIn(self.bounded("prepare", clean, "--into", into).status, (BAD_USAGE, LEFT_OUT))

    def test_fullDiskLeavesNoFolder(self):
        project = lay_out(self.folder / "float", CLEAN, dict(FILES, **{"voice.wav": audio.floats(audio.noise(24000))}))
        before = checksums(self.folder / "float")
        into = self.folder / "into"
        result = run("prepare", project, "--into", into, before=limit_file_size(20000))
        self.assert_status(result, LEFT_OUT)
        self.assertTrue(result.err.strip())
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), ["float"])
        self.assertEqual(checksums(self.folder / "float"), before)


class OddMedia(BoundedTest):
    def project(self, name="voice.wav"):
        return lay_out(self.folder / "odd", adl([source(1, name)],
                       [cut(1, 1, 1, "00.00:00:01/0000", "01.00:00:00/0000", "01.00:00:05/0000")]), {})

    def lost(self, project, *options):
        told = self.bounded("check", project, "--json", *options)
        self.assert_status(told, LEFT_OUT)
        prepared = self.bounded("prepare", project, "--into", self.folder / "into", *options)
        self.assert_status(prepared, LEFT_OUT)
        return {finding["code"] for finding in told.lines[0]["findings"]}

    def test_fifoForAFile(self):
        project = self.project()
        os.mkfifo(project.parent / "voice.wav")
        self.assertIn("media-missing", self.lost(project))

    def test_loopOfLinksForAFile(self):
        project = self.project()
        (project.parent / "voice.wav").symlink_to("voice.wav")
        self.assertIn("media-missing", self.lost(project))

    def test_deviceForAFile(self):
        project = self.project()
        (project.parent / "voice.wav").symlink_to("/dev/zero")
        self.assertIn("media-missing", self.lost(project))

    def test_foldersThatGoInCircles(self):
        project = self.project()
        (project.parent / "a").mkdir()
        (project.parent / "a" / "up").symlink_to("..")
        (project.parent / "a" / "self").symlink_to(".")
        self.assertIn("media-missing", self.lost(project, "--media", project.parent / "a"))
        lay_out(project.parent / "a", b"", {"voice.wav": FILES["voice.wav"]}, "none.txt")
        told = self.bounded("check", project, "--json").lines[0]
        self.assertEqual([f["code"] for f in told["findings"]], ["media-elsewhere"])

    def test_namesThatAreNoText(self):
        """Names in bytes that no encoding has, in the project's folder and in the project's own path."""
        folder = os.fsencode(self.folder) + b"/\xff\xfe\x80odd"
        os.mkdir(folder)
        for name, content in ((b"p\xff.adl", CLEAN), (b"\x80\x81.wav", FILES["voice.wav"]), (b"voice.wav", FILES["voice.wav"]),
                              (b"room.wav", FILES["room.wav"])):
            with open(folder + b"/" + name, "wb") as file:
                file.write(content)
        path = folder + b"/p\xff.adl"
        told = self.bounded("check", path, "--json")
        self.assertEqual(len(told.lines), 1)
        self.assert_status(told, ALL_DONE)
        self.assert_status(self.bounded("prepare", path, "--into", self.folder / "into"), ALL_DONE)

    def test_noRights(self):
        if os.geteuid() == 0:
            self.skipTest("root reads everything")
        project = self.lay_clean()
        os.chmod(project.parent / "voice.wav", 0)
        self.assertIn(self.bounded("check", project).status, (LEFT_OUT,))
        os.chmod(project, 0)
        self.unreadable(project)

    def test_folderThatNothingCanBeWrittenTo(self):
        folder = self.folder / "frozen"
        folder.mkdir()
        frozen = subprocess.run(["chattr", "+i", folder], capture_output=True, check=False)
        if frozen.returncode != 0:
            self.skipTest("this file system freezes no folder")
        self.addCleanup(subprocess.run, ["chattr", "-i", folder], check=True)
        result = self.bounded("prepare", self.lay_clean(), "--into", folder / "into")
        self.assertIn(result.status, (BAD_USAGE, LEFT_OUT))
        self.assertTrue(result.err.strip())

    def test_thousandsOfTakesOfOneName(self):
        """No two alike, in as many folders: never guessed between, and never read whole."""
        project = self.project("T01.wav")
        for number in range(2000):
            folder = project.parent / "takes" / f"{number:04d}"
            folder.mkdir(parents=True)
            (folder / "T01.wav").write_bytes(audio.wave(audio.noise(10, seed=number)))
        self.assertIn("media-ambiguous", self.lost(project, "--media", project.parent / "takes"))

    def test_headersThatLie(self):
        sound = audio.noise(2000, seed="lie")
        good = audio.wave(sound)
        rng = random.Random(7)
        for number in range(25):
            broken = bytearray(good)
            for _ in range(rng.choice((1, 2, 5))):
                broken[rng.randrange(48)] = rng.choice((0, 1, 0x7F, 0x80, 0xFF, rng.randrange(256)))
            project = lay_out(self.folder / f"lie{number}", CLEAN, dict(FILES, **{"voice.wav": bytes(broken[:rng.choice((40, 44, 6000))])}))
            with self.subTest(number=number):
                told = self.bounded("check", project, "--json")
                self.assertIn(told.status, (ALL_DONE, LEFT_OUT))
                into = self.folder / f"into{number}"
                self.assertIn(self.bounded("prepare", project, "--into", into).status, (ALL_DONE, LEFT_OUT))


class Large(BoundedTest):
    def test_hundredThousandStrayWords(self):
        project = self.lay_clean()
        text = CLEAN.replace(b"<SOURCE_INDEX>", b"<VENDOR>\n" + b"stray words\n" * 100000 + b"</VENDOR>\n<SOURCE_INDEX>")
        project.write_bytes(text)
        told = self.bounded("check", project, "--json")
        self.assert_status(told, LEFT_OUT)
        self.assertEqual(len(told.lines[0]["meant"]["events"]), 2)

    def test_heapsOfQuotationMarksAndBrackets(self):
        path = self.folder / "p.adl"
        for text in (b'"', b"(", b"<", b"<REF_LIST><REF>", b"/*", b"(X)9 ", b"(Entry) 1\n", b"(Cut) I 1 1 1 a b c _ ", b"\x1b\""):
            with self.subTest(text):
                path.write_bytes(b"<ADL>\n<EVENT_LIST>\n" + text * (1 << 15))
                self.assertIn(self.bounded("check", path, "--json", seconds=30).status, (ALL_DONE, LEFT_OUT))

    def test_interruptedPrepareLeavesNoFolder(self):
        """Ended at once, and while it works; whatever happens there is no half folder."""
        import signal
        import time
        files = {f"f{number}.wav": audio.floats(audio.noise(200000, seed=number)) for number in range(8)}
        project = lay_out(self.folder / "many", adl(
            [source(number + 1, name) for number, name in enumerate(files)],
            [cut(number + 1, number + 1, 1, "00.00:00:00/0000", "01.00:00:00/0000", "01.00:00:05/0000")
             for number in range(len(files))]), files)
        for wait in (0.02, 0.05, 0.1, 0.2):
            into = self.folder / "into"
            process = start("prepare", project, "--into", into)
            time.sleep(wait)
            process.send_signal(signal.SIGINT)
            process.communicate(timeout=60)
            with self.subTest(wait=wait):
                self.assertIn(process.returncode, (ALL_DONE, INTERRUPTED, -signal.SIGINT))
                # A signal may also end it while it tells of a folder that stands.
                whole = process.returncode != INTERRUPTED and into.exists()
                if whole:
                    self.assertEqual(len(list((into / "Audio").iterdir())), len(files))
                    subprocess.run(["rm", "-r", into], check=True)
                self.assertTrue(process.returncode != ALL_DONE or whole)
                left = [path.name for path in self.folder.iterdir() if path.name != "many"]
                self.assertEqual(left, [])


if __name__ == "__main__":
    unittest.main()
