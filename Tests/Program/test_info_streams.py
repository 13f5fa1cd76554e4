"""`info --json` of large projects: written as it goes, whole, and told where it cannot be."""

import os
import random
import signal
import subprocess
import unittest

from material import HOUR, Adl, fade, stamp, wave
from program import (ALL_DONE, BAD_USAGE, LEFT_OUT, PROGRAM, SANITIZED, SLOWNESS, ProgramTest, environment, limit_file_size, run,
                     start, strict_json)

CUTS = 100000
# What may be held beside the loaded project: buffers of what is on its way to the output.
MARGIN_BYTES = 24 << 20


def write_cuts(path, cuts, more=b""):
    with open(path, "wb") as file:
        file.write(b'<ADL>\n<SOURCE_INDEX>\n(Index) 1 (F) "URL:file://localhost/a/take.wav" _ 00|00:00:00/0000 '
                   b"00|10:00:00/0000\n</SOURCE_INDEX>\n<EVENT_LIST>\n")
        for number in range(cuts):
            time = stamp(HOUR + number % 100000).encode()
            file.write(b"(Entry) %06d (Cut) I 1 1 %d 00|00:00:00/0000 %s %s _ %s\n"
                       % (number, number % 48 + 1, time, time, more))
        file.write(b"</EVENT_LIST>\n</ADL>\n")
    return path


def peak_bytes(*arguments):
    """The most memory that a run held."""
    with open(os.devnull, "wb") as nothing:
        process = subprocess.Popen([PROGRAM, *map(str, arguments)], stdin=subprocess.DEVNULL, stdout=nothing,
                                   stderr=nothing, env=environment())
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != ALL_DONE:
        raise AssertionError(f"exit status {process.returncode}: {arguments}")
    return usage.ru_maxrss * 1024


class Memory(ProgramTest):
    @unittest.skipIf(SANITIZED, "the sanitizers' own memory is many times that of the program")
    def test_objectOfManyCutsIsNotHeld(self):
        """The object of these cuts is 90 MB: what is held is the project, which the short text needs as well."""
        project = write_cuts(self.folder / "p.adl", CUTS)
        self.assertLess(peak_bytes("info", project, "--json"), peak_bytes("info", project, "--summary") + MARGIN_BYTES)

    @unittest.skipIf(SANITIZED, "the sanitizers' own memory is many times that of the program")
    def test_rowsOfManyCutsAreNotHeld(self):
        project = write_cuts(self.folder / "p.adl", CUTS)
        self.assertLess(peak_bytes("info", project), peak_bytes("info", project, "--summary") + MARGIN_BYTES)


class Whole(ProgramTest):
    def assert_same(self, got, expected):
        """Lists that may be long: the first difference alone is told."""
        for at, pair in enumerate(zip(got, expected)):
            if pair[0] != pair[1]:
                self.fail(f"{pair[0]!r}, not {pair[1]!r}, at {at}")
        self.assertEqual(len(got), len(expected))

    def test_objectOfManyCuts(self):
        cuts = CUTS + 5 if not SANITIZED else 5000
        project = write_cuts(self.folder / "p.adl", cuts)
        result = run("info", project, "--json", seconds=60)
        self.assert_status(result, ALL_DONE)
        told = strict_json(result.out)
        self.assertEqual(result.out.count("\n"), 1)
        self.assert_same([event["entryNumber"] for event in told["events"]], list(range(cuts)))
        self.assert_same([event["edit"]["destIn"] for event in told["events"]],
                         [stamp(HOUR + number % 100000) for number in range(cuts)])
        rows = told["tables"]["EventListTable"]
        self.assert_same([row["Event"] for row in rows], [f"{number:04d}\n" for number in range(min(cuts, 100000))])
        self.assertEqual(len(told["sections"][1]["entries"]), 2 * cuts)

    def test_everyRowOfTheText(self):
        cuts = CUTS + 5 if not SANITIZED else 5000
        result = run("info", write_cuts(self.folder / "p.adl", cuts), seconds=60)
        self.assert_status(result, ALL_DONE)
        rows = [line.split() for line in result.out[result.out.index("\nEvents"):].split("\n") if " Mono " in line]
        self.assert_same([row[1] for row in rows], [f"{number:04d}" for number in range(cuts)])
        self.assert_same([row[-2] for row in rows], [stamp(HOUR + number % 100000)[:11] for number in range(cuts)])

    def test_textsOfEveryLengthComeOutWhole(self):
        """Wherever what is written is divided, no text is: escapes, characters of two and three bytes, and bytes that are none."""
        pieces = ["a", "嵐", "ソ", "\x01", "\\", "\x1b", "é", "/", "\x7f", "ｱ", "<", "(b)", "\n", "\t"]
        for seed in range(3):
            chance = random.Random(seed)
            # An escape byte before the closing mark would open it again.
            words = ["".join(chance.choice(pieces) for _ in range(chance.randrange(60))) + "." for _ in range(2500)]
            adl = Adl()
            for number, word in enumerate(words):
                adl.entry(number, b'(Cut) "%s" 1 1 1 a b c d' % word.encode("shift_jis", "ignore"))
            project = self.folder / "p.adl"
            project.write_bytes(adl.bytes)
            told = run("info", project, "--json").json
            kept = [word.encode("shift_jis", "ignore").decode("shift_jis") for word in words]
            self.assert_same([event["edit"]["sourceType"] for event in told["events"]], [f'"{word}"' for word in kept])
            self.assert_same([entry["values"][0] for entry in told["sections"][1]["entries"][1::2]],
                             [f'"{word}"' for word in kept])

    def test_bytesThatAreNoText(self):
        for seed in range(4):
            with self.subTest(seed=seed):
                noise = random.Random(seed).randbytes(200000).replace(b'"', b"")
                text = b"".join(b'(Entry) %d (Cut) "%s" 1 1 1 a b c d (Gain) 1 1e999\n' % (at, noise[at:at + at % 90])
                                for at in range(0, len(noise), 90))
                project = self.folder / "p.adl"
                project.write_bytes(b"<ADL>\n<EVENT_LIST>\n" + text + b"</EVENT_LIST>\n</ADL>\n")
                result = run("info", project, "--json")
                self.assert_status(result, ALL_DONE)
                self.assertIsNone(result.json["events"][0]["gain"]["gainDb"])

    def test_fadesAndSourcesOfManyEvents(self):
        adl = Adl().source(1, "a/take.wav")
        for number in range(1500):
            adl.cut(number, more=f"(Infade) {fade(1)} L 0.1 -2 1e-7 5 6 7 (Xfade) 1 2 3 4 5 6 (Gain) 1 -{number}.25")
        (self.folder / "take.wav").write_bytes(wave(10))
        told = run("info", adl.write(self.folder / "p.adl"), "--json").json
        self.assert_same([event["gain"]["gainDb"] for event in told["events"]],
                         [-(number + 0.25) for number in range(1500)])
        self.assertEqual({event["infade"]["fadeParam4"] for event in told["events"]}, {1e-7})
        self.assertEqual({event["sourceFile"] for event in told["events"]}, {str(self.folder / "take.wav")})


class OutputThatFails(ProgramTest):
    def setUp(self):
        super().setUp()
        self.project = write_cuts(self.folder / "p.adl", 6000)

    def test_fullDisk(self):
        for arguments in ((), ("--json",)):
            with self.subTest(arguments), open("/dev/full", "wb") as full:
                result = run("info", self.project, *arguments, stdout=full)
                self.assert_status(result, LEFT_OUT)
                self.assertIn("standard output", result.err)

    def test_diskThatFillsUpMeanwhile(self):
        for arguments in ((), ("--json",)):
            for limit in (1, 4096, 65536, 100001):
                with self.subTest((arguments, limit)), open(self.folder / "out", "wb") as out:
                    result = run("info", self.project, *arguments, stdout=out, before=limit_file_size(limit))
                    self.assert_status(result, LEFT_OUT)
                    self.assertIn("standard output", result.err)
                    self.assertEqual(os.path.getsize(self.folder / "out"), limit)

    def test_otherSideIsClosedFromTheFirst(self):
        for arguments in ((), ("--json",)):
            with self.subTest(arguments):
                self.read_some(0, *arguments)

    def test_otherSideIsClosedMeanwhile(self):
        for arguments in ((), ("--json",)):
            for size in (1, 5000, 150000):
                with self.subTest((arguments, size)):
                    self.read_some(size, *arguments)

    def read_some(self, size, *arguments):
        """The program ends soon, and not as though all had been written."""
        process = start("info", self.project, *arguments, stderr=subprocess.DEVNULL)
        got = process.stdout.read(size)
        process.stdout.close()
        self.assertEqual(len(got), size)
        status = process.wait(timeout=30 * SLOWNESS)
        self.assertNotIn(status, (ALL_DONE, BAD_USAGE))

    def test_closedPipeWhereNobodyIsKilledForIt(self):
        """Some shells and services start programs with SIGPIPE ignored."""

        def ignore():
            signal.signal(signal.SIGPIPE, signal.SIG_IGN)

        for arguments in ((), ("--json",)):
            with self.subTest(arguments):
                reading, writing = os.pipe()
                os.close(reading)
                with os.fdopen(writing, "wb") as closed:
                    result = run("info", self.project, *arguments, stdout=closed, before=ignore)
                self.assert_status(result, LEFT_OUT)
                self.assertIn("standard output", result.err)

    def test_noStandardOutputAtAll(self):
        for arguments in ((), ("--json",)):
            with self.subTest(arguments):
                result = run("info", self.project, *arguments, stdout=None, before=lambda: os.close(1))
                self.assert_status(result, LEFT_OUT)

    def test_slowReaderGetsAll(self):
        """A pipe that is read in small pieces gives the same bytes as a file."""
        whole = run("info", self.project, "--json").out_bytes
        process = start("info", self.project, "--json", stderr=subprocess.DEVNULL)
        got = bytearray()
        while piece := os.read(process.stdout.fileno(), 7919):
            got += piece
        process.stdout.close()
        self.assertEqual(process.wait(timeout=30 * SLOWNESS), ALL_DONE)
        self.assertEqual(bytes(got), whole)


if __name__ == "__main__":
    unittest.main()
