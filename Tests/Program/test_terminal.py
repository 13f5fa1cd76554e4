"""Colours and the progress bar, which belong on a terminal and nowhere else."""

import re
import signal
import unittest

from material import Adl, wave
from program import ALL_DONE, INTERRUPTED, LEFT_OUT, ProgramTest, environment, run
from terminals import on_terminal

ESCAPE = b"\x1b"
RED = b"\x1b[31m"
PLAIN = b"\x1b[0m"


class TerminalTest(ProgramTest):
    def setUp(self):
        super().setUp()
        (self.folder / "take.wav").write_bytes(wave(9600))
        adl = Adl().source(1, "a/take.wav")
        for number in range(20):
            adl.cut(number, length=1)
        self.whole = adl.write(self.folder / "whole.adl")
        self.lacking = adl.source(2, "a/gone.wav").cut(20, source=2).write(self.folder / "lacking.adl")


class Colours(TerminalTest):
    def test_missingFilesAreRed(self):
        status, out, _ = on_terminal("info", self.lacking)
        self.assertEqual(status, ALL_DONE)
        lines = out.split(b"\r\n")
        red = [line for line in lines if RED in line]
        self.assertEqual(len(red), 2, "the source, and the event")
        self.assertIn(b"gone.wav", red[0])
        self.assertIn(b"0020", red[1])
        for line in red:
            self.assertTrue(line.endswith(PLAIN))

    def test_sourcesThatGiveNoSamplesAreRed(self):
        (self.folder / "junk.wav").write_bytes(b"junk")
        (self.folder / "float.wav").write_bytes(wave(16, format_tag=3, bits=32))
        adl = Adl().source(1, "a/take.wav").source(2, "a/junk.wav").source(3, "a/float.wav").source(4, "a/gone.wav")
        _, out, _ = on_terminal("info", adl.cut(1).write(self.folder / "p.adl"))
        red = [line for line in out.split(b"\r\n") if RED in line]
        self.assertEqual(len(red), 3, red)
        for line, words in zip(red, (b"no wave file", b"not PCM", b"MISSING")):
            self.assertIn(words, line)

    def test_noRedWhereNothingIsMissing(self):
        _, out, _ = on_terminal("info", self.whole)
        self.assertIn(ESCAPE, out)
        self.assertNotIn(RED, out)

    def test_noEscapeByteWithoutATerminal(self):
        for command in (["info", self.lacking], ["spot", self.lacking], ["info", self.lacking, "--json"]):
            with self.subTest(command[0]):
                result = run(*command, env=environment(TERM="xterm-256color"))
                self.assertNotIn(ESCAPE, result.out_bytes + result.err_bytes)

    def test_eachStreamIsAskedForItself(self):
        _, out, err = on_terminal("info", self.lacking, out=False)
        self.assertNotIn(ESCAPE, out)
        _, out, err = on_terminal("spot", self.lacking, err=False)
        self.assertNotIn(ESCAPE, err)
        self.assertIn(ESCAPE, out)

    def test_noColorSwitchesColoursOff(self):
        for value in ("1", "0", "yes"):
            with self.subTest(value):
                _, out, _ = on_terminal("info", self.lacking, NO_COLOR=value)
                self.assertNotIn(ESCAPE, out)

    def test_emptyNoColorDoesNot(self):
        """The variable counts only when it is not empty, by the convention of that name."""
        _, out, _ = on_terminal("info", self.lacking, NO_COLOR="")
        self.assertIn(RED, out)

    def test_dumbOrUnnamedTerminalHasNoColours(self):
        for name in ("dumb", None):
            with self.subTest(name):
                _, out, _ = on_terminal("info", self.lacking, TERM=name)
                self.assertNotIn(ESCAPE, out)

    def test_columnsLineUpWithAndWithoutColours(self):
        _, coloured, _ = on_terminal("info", self.lacking)
        plain = run("info", self.lacking).out_bytes
        self.assertEqual(re.sub(rb"\x1b\[[0-9;]*m", b"", coloured).replace(b"\r\n", b"\n"), plain)

    def test_jsonHasNoColoursOnATerminal(self):
        for command in (["info", self.lacking, "--json"], ["spot", self.lacking, "--json"]):
            with self.subTest(command[0]):
                _, out, _ = on_terminal(*command)
                self.assertNotIn(ESCAPE, out)


class Bar(TerminalTest):
    def test_barRunsOnStandardErrorAndIsTakenAway(self):
        status, out, err = on_terminal("spot", self.whole, out=False)
        self.assertEqual(status, ALL_DONE)
        self.assertIn(b"[", err)
        self.assertIn(b"100 %", err)
        self.assertIn(b"60 of 60", err)
        self.assertTrue(err.endswith(b"\r\x1b[K"), err[-80:])
        self.assertNotIn(b"%", out)

    def test_barNeverGoesBack(self):
        _, _, err = on_terminal("spot", self.whole)
        shown = [int(number) for number in re.findall(rb"(\d+) %", err)]
        self.assertGreater(len(shown), 10)
        self.assertEqual(shown, sorted(shown))

    def test_noBarWithoutATerminal(self):
        self.assertEqual(run("spot", self.whole).err, "")

    def test_quietHasNoBar(self):
        _, _, err = on_terminal("spot", self.whole, "--quiet", out=False)
        self.assertEqual(err, b"")

    def test_jsonLinesStayWholeBesideABar(self):
        status, out, _ = on_terminal("spot", self.whole, "--json")
        self.assertEqual(status, ALL_DONE)
        for line in out.split(b"\r\n")[:-1]:
            self.assertTrue(line.startswith(b"{") and line.endswith(b"}"), line[:80])

    def test_messagesDoNotStandBehindTheBar(self):
        status, _, err = on_terminal("spot", self.lacking, out=False)
        self.assertEqual(status, LEFT_OUT)
        self.assertIn(b"\r\x1b[Kvelmora: left out: event 20", err)

    def test_dumbTerminalGetsNoEscapeOfTheBar(self):
        _, _, err = on_terminal("spot", self.whole, out=False, TERM="dumb")
        self.assertNotIn(ESCAPE, err)


class Keyboard(TerminalTest):
    def test_interruptTakesTheBarAwayAndSaysStopped(self):
        (self.folder / "take.wav").write_bytes(wave(9600) + bytes(2_000_000))
        adl = Adl().source(1, "a/take.wav")
        for number in range(3000):
            adl.cut(number, length=1)
        project = adl.write(self.folder / "p.adl")
        sent = []

        def interrupt(process, masters):
            if not sent and any(b" %" in data for data in masters.values()):
                sent.append(process.send_signal(signal.SIGINT))

        status, out, err = on_terminal("spot", project, "--depth", "16", before_end=interrupt)
        self.assertEqual(status, INTERRUPTED)
        self.assertIn(b"Stopped", out)
        self.assertTrue(err.rstrip().endswith(b"\x1b[K"), err[-80:])


if __name__ == "__main__":
    unittest.main()
