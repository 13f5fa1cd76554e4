"""What a project, a file name or an argument holds is shown, and never obeyed by the terminal that shows it."""

import os
import re
import unicodedata
import unittest

from material import Adl, wave
from program import ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, LEFT_OUT, ProgramTest, limit_file_size, run
from terminals import on_terminal

# A new title, a cleared screen, the same two with one-byte introducers in raw form and in UTF-8, a deleted character,
# and a line that goes backwards.
HOSTILE = (b"\x1b]0;owned\x07", b"\x1b[2J", b"\x9b2J", b"\x9d0;owned\x9c", b"\xc2\x9b2J", b"\xc2\x9d0;owned\xc2\x9c",
           b"\x7f\x08", "\u202e".encode())
EVIL = b"".join(HOSTILE)
NAME = b"evil" + EVIL + b"name"

OWN = re.compile(r"\x1b\[[0-9;]*m|\r\x1b\[K|\r\n|\r\[[#.]+\] +[0-9]+ %")
CONTROLS = "\x00-\x09\x0b-\x1f\x7f-\x9f"
HARMFUL = re.compile(f"[{CONTROLS}\u200e\u200f\u2028-\u202e\u2066-\u2069]")
HARMFUL_IN_JSON = re.compile("[\x00-\x09\x0b-\x1f\x80-\x9f]")  # where terminals pass DEL over


def hostile_adl():
    """Hostile texts wherever a project has any. Labels end at such bytes, but for one: a counted label without its
    closing parenthesis takes the number after the one before, and then reaches as far as its value."""
    adl = Adl(b'<PROJECT>\n(PROJ_TITLE) "T%s"\n</PROJECT>\n' % EVIL)
    adl.source(1, b"URL:file://localhost/a/%s.wav" % NAME).source(2, b"URL:file://localhost/a/gone" + EVIL)
    for number, source, at in ((1, 1, 108000), (2, 2, 120000)):
        adl.cut(number, source=source, dest_in=at)
        adl.entries[-1] = adl.entries[-1].rstrip() + b' (Rem) "NAME c%sut"\n' % EVIL
    count = 1 + len(EVIL) + len(" end")
    adl.entries[-1] += b'(Rem) "x)%d" (UNKNOWN %s end\n' % (count, EVIL)
    return adl


class HostileTest(ProgramTest):
    def setUp(self):
        super().setUp()
        self.home = os.fsencode(self.folder)
        self.sound = self.home + b"/" + NAME + b".wav"
        with open(self.sound, "wb") as file:
            file.write(wave(48000, bits=16))
        self.path = self.home + b"/" + NAME + b".adl"
        with open(self.path, "wb") as file:
            file.write(hostile_adl().bytes)

    def assert_harmless(self, *arguments, status=None, shows=b"evil", **how):
        """Runs on a terminal. What both streams got, as text without the program's own sequences."""
        got, out, err = on_terminal(*arguments, **how)
        if status is not None:
            self.assertEqual(got, status, (out, err))
        texts = []
        for stream in (out, err):
            text = OWN.sub("\n", stream.decode("utf-8"))  # which fails for what is no UTF-8
            bad = (HARMFUL_IN_JSON if "--json" in arguments else HARMFUL).search(text)
            if bad:
                self.fail(f"{bad.group()!r} in {text[max(bad.start() - 60, 0):bad.end() + 60]!r}")
            texts.append(text)
        if shows:
            self.assertIn(shows.decode(), texts[0] + texts[1])
        return texts


class Projects(HostileTest):
    def test_every_command_shows_a_hostile_project(self):
        target = self.home + b"/made"
        for status, *words in [
                (ALL_DONE, "info"), (ALL_DONE, "info", "--json"), (ALL_DONE, "info", "--summary"),
                (LEFT_OUT, "check"), (LEFT_OUT, "check", "--json"),
                (LEFT_OUT, "prepare", "--into", target), (LEFT_OUT, "prepare", "--json", "--into", target + b"2"),
                (LEFT_OUT, "spot", "--fades", "--gain", "--copy-to", target + b"3"),
                (LEFT_OUT, "spot", "--json", "--depth", "24"),
                (LEFT_OUT, "spot", "--prepare=" + os.fsdecode(target + b"4"), "--otio", target + b".otio"),
                (LEFT_OUT, "report", "-o", target + b".html")]:
            with self.subTest(words):
                self.assert_harmless(words[0], self.path, *words[1:], status=status)

    def test_readers_lines_are_made_fit_for_a_terminal_alone(self):
        _, err = self.assert_harmless("info", self.path, status=ALL_DONE)
        self.assertIn("unexpected label: UNKNOWN", err)
        piped = run("info", self.path)
        self.assertIn(b"unexpected label: UNKNOWN %s end\n" % EVIL, piped.err_bytes)
        # One line for each: a control byte must not hide where one ends.
        self.assertEqual(len(err.strip("\n").split("\n")), len(piped.err_bytes.strip(b"\n").split(b"\n")))

    def test_a_dumb_terminal_gets_no_control_bytes_either(self):
        self.assert_harmless("info", self.path, TERM="dumb")
        self.assert_harmless("spot", self.path, TERM=None)

    def test_project_without_a_cut(self):
        with open(self.path, "wb") as file:
            file.write(b"<ADL>\n<EVENT_LIST>\n</EVENT_LIST>\n</ADL>\n")
        _, err = self.assert_harmless("spot", self.path, status=LEFT_OUT)
        self.assertIn("there is no cut to place", err)

    def test_project_that_does_not_load(self):
        with open(self.path, "wb") as file:
            file.write(b"<ADL>\n<EVENT_LIST>\n(En%stry) 1\n(Entry) x%s (Cut) 1\n</EVENT_LIST>\n</ADL>\n" % (EVIL, EVIL))
        self.assert_harmless("info", self.path)
        self.assert_harmless("check", self.path)
        os.remove(self.path)
        for command in ("info", "spot", "check"):
            self.assert_harmless(command, self.path, status=DOES_NOT_LOAD)


class Paths(HostileTest):
    def spot(self, *more, **how):
        return self.assert_harmless("spot", self.path, *more, **how)

    def test_files_that_cannot_be_written(self):
        (self.folder / "take.wav").write_bytes(wave(9600))
        project = Adl().source(1, "a/take.wav").cut(1).write(self.folder / "plain.adl")
        _, err = self.assert_harmless("spot", project, "--copy-to", self.home + b"/evil" + EVIL, status=LEFT_OUT,
                                      before=limit_file_size(3000))
        self.assertIn("cannot be written in full", err)

    def test_folders_that_cannot_be_made(self):
        _, err = self.spot("--copy-to", self.sound + b"/below", status=BAD_USAGE)
        self.assertIn("cannot be made", err)

    def test_targets_that_are_there_or_cannot_be(self):
        for option in ("--otio", "--bounce", "--report", "--dawproject", "--host=embedded:"):
            for place in (self.sound, self.sound + b"/below", self.home + b"/no" + EVIL + b"where/file"):
                with self.subTest(option):
                    words = [os.fsencode(option) + place] if option.endswith(":") else [option, place]
                    self.spot(*words, status=BAD_USAGE, shows=None)

    def test_targets_given_twice(self):
        place = self.home + b"/twice" + EVIL
        self.spot("--otio", place, "--report", place, status=BAD_USAGE, shows=b"twice")

    def test_media_folders(self):
        media = ["--media", self.home + b"/evil" + EVIL]
        for words in (["check"], ["prepare", "--into", self.home + b"/made"], ["spot", "--prepare"]):
            self.assert_harmless(words[0], self.path, *words[1:], *media, status=BAD_USAGE)


class Arguments(HostileTest):
    def test_usage_errors_that_quote_the_arguments(self):
        evil = b"evil" + EVIL
        rows = [[evil], [b"--" + evil], ["info", self.path, evil], ["info", b"--" + evil + b"=1"], ["spot", evil, evil],
                ["check", evil, b"--encoding", evil], ["check", evil, b"--jobs", evil], ["prepare", evil, "--into", evil, evil]]
        for option in ("--depth", "--position", "--offset", "--start", "--session-rate", "--session-frame-rate",
                       "--skip-tracks", "--only-events", "--host", "--bounce-depth", "--media", "--trust"):
            rows.append(["spot", self.path, option, evil])
        for words in rows:
            with self.subTest(words):
                self.assert_harmless(*words, shows=None)

    def test_nothing_readable_is_taken_away(self):
        """The filter is for what a terminal obeys; names in any script pass."""
        for name in ("Größe", "録音 一", "قياس", "é̂", "🎙"):
            self.assertFalse(any(unicodedata.category(c) == "Cc" for c in name))
            self.assert_harmless("info", self.folder / f"{name}.adl", status=DOES_NOT_LOAD, shows=name.encode())


if __name__ == "__main__":
    unittest.main()
