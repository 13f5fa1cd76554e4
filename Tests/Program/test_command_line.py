"""Bad usage, help and paths: what a person meets before anything is spotted."""

import os
import unittest

from material import Adl, one_cut
from program import ALL_DONE, LEFT_OUT, ProgramTest, run


class BadUsage(ProgramTest):
    """Each ends with status 1 and a message that says what to do, and makes nothing."""

    def setUp(self):
        super().setUp()
        self.project = one_cut(self.folder)
        self.before = self.files()

    def refuse(self, *arguments, words=()):
        result = run("spot", self.project, "--quiet", *arguments)
        self.assert_bad_usage(result, *words)
        self.assertEqual(self.files(), self.before, "something was made")
        return result

    def test_everyBadValueOfEveryOption(self):
        rows = [
            ("positionOfAnotherName", ["--position", "end"], "--position"),
            ("positionIsNoNumber", ["--position", "1"], "--position"),
            ("positionInAnotherCase", ["--position", "Start"], "--position"),
            ("positionWithoutValue", ["--position"], "--position"),
            ("offsetOfThreeFields", ["--offset", "01:00:00"], "--offset"),
            ("offsetOfFiveFields", ["--offset", "01:00:00:00:00"], "--offset"),
            ("offsetOfWords", ["--offset", "soon"], "--offset"),
            ("offsetEmpty", ["--offset="], "--offset"),
            ("offsetWithTwoSigns", ["--offset=--01:00:00:00"], "--offset"),
            ("startWithSign", ["--start=-01:00:00:00"], "--start"),
            ("startOfWords", ["--start", "noon"], "--start"),
            ("startEmpty", ["--start="], "--start"),
            ("depth32", ["--depth", "32"], "--depth"),
            ("depth8", ["--depth", "8"], "--depth"),
            ("depthOfWords", ["--depth", "deep"], "--depth"),
            ("listOfWords", ["--skip-tracks", "one"], "--skip-tracks"),
            ("listEmpty", ["--only-tracks="], "--only-tracks"),
            ("listWithGap", ["--only-tracks", "1,,2"], "--only-tracks"),
            ("listEndsOpen", ["--skip-events", "1-"], "--skip-events"),
            ("listEndsWithComma", ["--skip-events", "1,"], "--skip-events"),
            ("rangeOfTracksRunsDown", ["--only-tracks", "5-3"], "--only-tracks"),
            ("rangeOfEventsRunsDown", ["--skip-events", "1,9-8"], "--skip-events"),
            ("negativeRangeRunsDown", ["--skip-tracks=-1--3"], "--skip-tracks"),
            ("skipWithOnlyTracks", ["--skip-tracks", "1", "--only-tracks", "2"], "--only-tracks"),
            ("skipWithOnlyEvents", ["--skip-events", "1", "--only-events", "2"], "--only-events"),
            ("rateZero", ["--session-rate", "0"], "--session-rate"),
            ("rateNegative", ["--session-rate=-48000"], "--session-rate"),
            ("rateOfWords", ["--session-rate", "fast"], "--session-rate"),
            ("rateNotANumber", ["--session-rate", "nan"], "--session-rate"),
            ("rateInfinite", ["--session-rate", "inf"], "--session-rate"),
            ("rateBelowOne", ["--session-rate", "0.4"], "from 1 to 10000000 Hz"),
            ("rateOfManyMegahertz", ["--session-rate", "1.1e7"], "from 1 to 10000000 Hz"),
            ("rateBeyondAnything", ["--session-rate", "1e30"], "from 1 to 10000000 Hz"),
            ("frameRateAboveSeven", ["--session-frame-rate", "8"], "--session-frame-rate"),
            ("frameRateNegative", ["--session-frame-rate=-1"], "--session-frame-rate"),
            ("frameRateOfAnotherName", ["--session-frame-rate", "60"], "--session-frame-rate"),
            ("frameRateEmpty", ["--session-frame-rate="], "--session-frame-rate"),
            ("hostUnknown", ["--host", "tape"], "--host"),
            ("hostUnknownWithTarget", ["--host", "tape:reel"], "--host"),
            ("hostEmpty", ["--host="], "--host"),
            ("hostWithEmptyTarget", ["--host", "embedded:"], "--host"),
            ("hostTargetInNoFolder", ["--host", "embedded:/nowhere/at/all/s.json"], "--host"),
            ("hostTargetIsAFolder", ["--host", "embedded:/tmp"], "--host"),
            ("copyFolderOfNoName", ["--copy-to="], "--copy-to"),
            ("copyFolderBelowADevice", ["--copy-to", "/dev/null/audio"], "--copy-to"),
            ("copyFolderNameTooLong", ["--copy-to", "n" * 300], "--copy-to"),
            ("unknownOption", ["--loud"], "--loud"),
            ("aSecondProject", ["other.adl"], "other.adl"),
        ]
        for name, arguments, word in rows:
            with self.subTest(name):
                self.refuse(*arguments, words=[word])

    def test_copyFolderThatIsAFile(self):
        result = self.refuse("--copy-to", self.folder / "take.wav", words=["--copy-to", "take.wav"])
        self.assertNotIn("Success", result.err)

    def test_copyFolderBelowAFile(self):
        result = self.refuse("--copy-to", self.folder / "take.wav" / "audio", words=["--copy-to"])
        self.assertNotIn("Success", result.err)

    def test_copyFolderThatFailsHalfWayLeavesNothing(self):
        self.refuse("--copy-to", self.folder / "new" / ("n" * 300), words=["--copy-to"])

    def test_badHostMakesNoCopyFolder(self):
        self.refuse("--copy-to", self.folder / "new", "--host", "tape", words=["--host"])

    def test_badTargetOfAHostMakesNoCopyFolder(self):
        self.refuse("--copy-to", self.folder / "new", "--host", f"embedded:{self.folder}", words=["--host"])

    def test_badNumberMakesNoCopyFolder(self):
        self.refuse("--copy-to", self.folder / "new", "--depth", "20", words=["--depth"])

    def test_existingFileThatIsNoSessionStaysUntouched(self):
        for name, content in [("text", b"my diary"), ("otherJson", b'{"a": 1}'), ("list", b"[]"),
                              ("wave", bytes(range(256)))]:
            with self.subTest(name):
                target = self.folder / "session.json"
                target.write_bytes(content)
                result = run("spot", self.project, "--quiet", "--host", f"embedded:{target}")
                self.assert_bad_usage(result, "--host", str(target))
                self.assertEqual(target.read_bytes(), content)
                target.unlink()
                self.assertEqual(self.files(), self.before)

    def test_theProjectItselfIsNoSession(self):
        content = self.project.read_bytes()
        self.refuse("--host", f"embedded:{self.project}", words=[str(self.project)])
        self.assertEqual(self.project.read_bytes(), content)


class WhatIsWrong(ProgramTest):
    """Every complaint names what is wrong in words of its own, not in the parser's."""

    def test_complaints(self):
        rows = [
            ([], "a command is missing; commands: info, spot, report, check, prepare"),
            (["frob"], "there is no command 'frob'; commands: info, spot, report, check, prepare"),
            (["frob", "spot", "p"], "there is no command 'frob'; commands: info, spot, report, check, prepare"),
            (["Info", "p"], "there is no command 'Info'; commands: info, spot, report, check, prepare"),
            (["--frob"], "there is no option '--frob'"),
            (["-x", "info", "p"], "there is no option '-x'"),
            (["--json", "info", "p"], "there is no option '--json'"),
            (["info"], "the project is missing: name an ADL file"),
            (["spot", "--fades"], "the project is missing: name an ADL file"),
            (["info", "--frob", "p"], "there is no option '--frob'"),
            (["info", "p", "--depth", "16"], "there is no option '--depth'"),
            (["spot", "p", "--depht", "16"], "there is no option '--depht'"),
            (["spot", "--depht", "16"], "there is no option '--depht'"),
            (["spot", "p", "--depht=16"], "there is no option '--depht'"),
            (["spot", "p", "q", "r"], "'q' is one word too many"),
            (["spot", "p", "--", "q"], "'q' is one word too many"),
            (["info", "p", "spot", "q"], "'spot' is one word too many"),
            (["spot", "p", "--depth"], "--depth: a value must follow: 16|24"),
            (["spot", "p", "--session-rate"], "--session-rate: a value must follow: HZ"),
            (["spot", "p", "--depth", "x"], "--depth: 'x' is none of: 16, 24"),
            (["spot", "p", "--position", "end"], "--position: 'end' is none of: project, offset, start, first"),
            (["spot", "p", "--depth", "16", "--depth", "24"], "--depth: given more than once"),
            (["spot", "p", "--json=frob"], "--json: takes no value"),
            (["spot", "p", "--offset", "1"], "--offset: '1' is no timecode of the form [+-]HH:MM:SS:FF"),
            (["spot", "p", "--skip-tracks", "1", "--only-tracks", "2"],
             "--skip-tracks and --only-tracks exclude each other"),
            (["spot", "p", "--skip-events", "1", "--only-events", "2"],
             "--skip-events and --only-events exclude each other"),
            (["spot", "p", "--host", "tape"], "--host: there is no host 'tape'; hosts: embedded, ardour"),
            (["spot", "p", "--host", "embedded:"],
             "--host: no target stands after embedded; write embedded:FILE.json"),
            (["spot", "p", "--host", "ardour"], "--host: no target stands after ardour; write ardour:DIR"),
            (["spot", "p", "--host", "embedded:/"], "--host: / is a folder"),
        ]
        for arguments, complaint in rows:
            with self.subTest(" ".join(arguments)):
                result = run(*arguments, cwd=self.folder)
                self.assert_bad_usage(result)
                self.assertEqual(result.err.split("\n")[0], f"velmora: {complaint}")

    def test_theHelpPointedToIsThatOfTheCommand(self):
        for arguments, help_ in [(["frob"], "velmora --help"), (["info"], "velmora info --help"),
                                 (["spot", "p", "--frob"], "velmora spot --help")]:
            with self.subTest(help_):
                self.assertIn(f"Try '{help_}'.", run(*arguments).err)

    def test_emptyProjectNameIsTold(self):
        one_cut(self.folder)
        for command in (["info"], ["info", "--json"], ["spot"], ["spot", "--prepare"], ["report", "-o", "x.html"],
                        ["check"], ["check", "p.adl"], ["prepare", "--into", "new"]):
            with self.subTest(command):
                before = self.files()
                result = run(*command, "", cwd=self.folder)
                self.assert_bad_usage(result)
                self.assertEqual(result.err, "velmora: the name of the project is empty\n"
                                             f"Try 'velmora {command[0]} --help'.\n")
                self.assertEqual(self.files(), before)


class Commands(ProgramTest):
    def test_noCommandIsBadUsage(self):
        self.assert_bad_usage(run())

    def test_unknownCommandIsBadUsage(self):
        self.assert_bad_usage(run("play", "x.adl"))

    def test_infoWithoutProjectIsBadUsage(self):
        self.assert_bad_usage(run("info"), "project")

    def test_spotWithoutProjectIsBadUsage(self):
        self.assert_bad_usage(run("spot"), "project")

    def test_infoTakesNoOptionOfSpot(self):
        self.assert_bad_usage(run("info", one_cut(self.folder), "--depth", "16"), "--depth")

    def test_versionNamesTheProgramAndAVersion(self):
        result = run("--version")
        self.assert_status(result, ALL_DONE)
        self.assertRegex(result.out, r"\Avelmora \d+\.\d+\.\d+\n\Z")
        self.assertEqual(result.err, "")


class Help(ProgramTest):
    SPOT_OPTIONS = ["--position", "--offset", "--start", "--depth", "--fades", "--gain", "--copy-to",
                    "--skip-tracks", "--only-tracks", "--skip-events", "--only-events",
                    "--session-rate", "--session-frame-rate", "--host", "--json", "--quiet"]

    def help(self, *command):
        result = run(*command, "--help")
        self.assert_status(result, ALL_DONE)
        self.assertEqual(result.err, "")
        return result.out

    def test_programHelpListsCommandsExamplesAndStatuses(self):
        text = self.help()
        for word in ("info", "spot", "--version", "Examples", "Exit status"):
            self.assertIn(word, text)

    def test_spotHelpListsEveryOption(self):
        text = self.help("spot")
        for option in self.SPOT_OPTIONS:
            self.assertRegex(text, rf"(?m)^  {option}\b")

    def test_reportHelpListsWhatItTakes(self):
        text = self.help("report")
        for option in self.SPOT_OPTIONS:
            self.assertRegex(text, rf"(?m)^  {option}\b")
        for option in ("--prepare", "--media", "--trust", "--encoding", "--copy-media", "--keep-stereo", "--keep-off",
                       "--resample"):
            self.assertNotRegex(text, rf"(?m)^  {option}\b")
            self.assert_bad_usage(run("report", "p.adl", "-o", "x.html", option, cwd=self.folder), option)

    def test_helpTellsWhatIsRequired(self):
        for command, option in (("report", "-o,--output FILE.html"), ("prepare", "--into DIR")):
            self.assertRegex(self.help(command), rf"(?m)^  {option} +Required: ")

    def test_helpTellsTheLimitsOfASampleRate(self):
        for command in ("spot", "report", "check", "prepare"):
            self.assertIn("1 to 10000000", self.help(command))

    def test_lostOutputIsTold(self):
        """On a full disk, and where standard output is closed."""
        for words in (["--help"], ["--version"], ["spot", "--help"], ["check", "--help"]):
            with self.subTest(words, stdout="full"), open("/dev/full", "wb") as full:
                self.assert_lost(run(*words, stdout=full))
            with self.subTest(words, stdout="closed"):
                self.assert_lost(run(*words, stdout=None, before=lambda: os.close(1)))

    def assert_lost(self, result):
        self.assert_status(result, LEFT_OUT)
        self.assertEqual(result.err, "velmora: standard output takes no more\n")

    def test_infoHelpHasJsonAndNothingOfSpot(self):
        text = self.help("info")
        self.assertRegex(text, r"(?m)^  --json\b")
        self.assertNotRegex(text, r"(?m)^  --depth\b")

    def test_helpTellsTheDefaults(self):
        text = self.help("spot")
        for default in ("project", "24", "embedded"):
            self.assertIn(default, text)

    def test_spotHelpTellsEachHostWithItsTarget(self):
        self.assertRegex(self.help("spot"), r"(?m)^ +embedded\[:FILE\.json\]$")

    def test_examplesOfTheHelpAreGoodUsage(self):
        """Each line of the examples runs as it stands, on a project of that name."""
        one_cut(self.folder).rename(self.folder / "Radio.adl")
        (self.folder / "Takes").mkdir()
        lines = [line.strip() for line in self.help().split("\n") if line.startswith("  velmora ")]
        self.assertGreaterEqual(len(lines), 4)
        for line in lines:
            command = line.split("|")[0].split("   ")[0].split()[1:]
            with self.subTest(line):
                self.assert_status(run(*command, cwd=self.folder), ALL_DONE)


class Paths(ProgramTest):
    """A relative path means what it means in the caller's folder, and reaches the project absolute."""

    def test_relativeProjectPath(self):
        one_cut(self.folder / "a")
        for given, cwd in [("p.adl", "a"), ("./p.adl", "a"), ("a/p.adl", "."), ("a//p.adl", "."), ("./a/./p.adl", ".")]:
            with self.subTest(given):
                told = run("info", given, "--json", cwd=self.folder / cwd).json
                self.assertEqual(told["path"], str(self.folder / "a" / "p.adl"))
                self.assertEqual(told["folder"], str(self.folder / "a"))
                self.assertEqual(told["sources"][0]["file"]["path"], str(self.folder / "a" / "take.wav"))

    def test_pathThroughTheFolderAboveOpensTheSameFile(self):
        one_cut(self.folder / "a")
        (self.folder / "b").mkdir()
        told = run("info", "../a/p.adl", "--json", cwd=self.folder / "b").json
        self.assertTrue(told["path"].startswith("/"))
        self.assertTrue(os.path.samefile(told["path"], self.folder / "a" / "p.adl"))
        self.assertTrue(os.path.samefile(told["sources"][0]["file"]["path"], self.folder / "a" / "take.wav"))

    def test_relativeCopyFolderAndSessionFile(self):
        project = one_cut(self.folder / "a")
        elsewhere = self.folder / "b"
        elsewhere.mkdir()
        result = run("spot", project, "--quiet", "--json", "--copy-to", "x/y", "--host", "embedded:s.json",
                     cwd=elsewhere)
        self.assert_status(result, ALL_DONE)
        self.assertEqual(result.of("start")[0]["options"]["copyFolder"], str(elsewhere / "x" / "y"))
        self.assertEqual(result.of("file")[0]["path"], str(elsewhere / "x" / "y" / "take.wav"))
        self.assertTrue((elsewhere / "s.json").is_file())

    def test_projectWithoutExtensionOrWithBlanksAndNonAsciiName(self):
        for name in ("project", "my project.adl", "嵐.adl", "-dash.adl"):
            with self.subTest(name):
                project = one_cut(self.folder)
                project.rename(self.folder / name)
                self.assert_status(run("info", self.folder / name), ALL_DONE)
                self.assert_status(run("spot", self.folder / name, "--quiet"), ALL_DONE)

    def test_projectBehindTwoDashes(self):
        one_cut(self.folder).rename(self.folder / "-dash.adl")
        self.assert_status(run("info", "--", "-dash.adl", cwd=self.folder), ALL_DONE)

    def test_fileNameThatIsNoUtf8(self):
        project = one_cut(self.folder)
        odd = os.path.join(os.fsencode(self.folder), b"odd\xff.adl")
        os.rename(project, odd)
        told = run("info", odd, "--json")
        self.assert_status(told, ALL_DONE)
        self.assertIn("\ufffd", told.json["path"])


class NothingToPlace(ProgramTest):
    def test_projectWithoutCutSaysSoAndEndsWith3(self):
        project = Adl().entry(1, "(Silence) 1 a b c").write(self.folder / "p.adl")
        result = run("spot", project)
        self.assert_status(result, LEFT_OUT)
        self.assertIn("no cut", result.err)
        self.assertIn(str(project), result.err)

    def test_projectWithoutCutIsAGoodInfo(self):
        project = Adl().entry(1, "(Silence) 1 a b c").write(self.folder / "p.adl")
        for more in ([], ["--json"]):
            self.assert_status(run("info", project, *more), ALL_DONE)


if __name__ == "__main__":
    unittest.main()
