"""What the tests of packages share: the paths that CMake hands over, running things, and what `--help` names."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

SOURCE = pathlib.Path(os.environ["VELMORA_SOURCE"])
BUILD = pathlib.Path(os.environ["VELMORA_BUILD"])
VERSION = os.environ["VELMORA_VERSION"]
EXAMPLES = SOURCE / "Examples"
UNDER_XVFB = SOURCE / "Tests/View/under-xvfb"

# The built programs by their names.
PROGRAMS = {path.name: path for path in
            map(pathlib.Path, filter(None, (os.environ["VELMORA"], os.environ.get("VELMORA_DESKTOP"))))}


def run(*command, timeout=120, **options):
    """Runs a command to its end and gives what came of it, the texts as str."""
    return subprocess.run([str(word) for word in command], capture_output=True, encoding="utf-8", errors="replace",
                          stdin=subprocess.DEVNULL, timeout=timeout, check=False, **options)


class StrangerTest(unittest.TestCase):
    """A test with a folder of its own, which is gone afterwards."""

    maxDiff = None

    def setUp(self):
        # Python removes it in any case, also when the test is interrupted, which runs no clean-up.
        temporary = tempfile.TemporaryDirectory(prefix="velmora-stranger-", ignore_cleanup_errors=True)
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name)

    def succeed(self, *command, **options):
        """Runs a command that has to end with 0, and gives its standard output."""
        result = run(*command, **options)
        if result.returncode != 0:
            words = " ".join(map(str, command))
            self.fail(f"{words}\nended with {result.returncode}:\n{result.stdout}{result.stderr}")
        return result.stdout


def need(*programs):
    """Skips a test, with the reason, where programs that it uses are not installed."""
    missing = [program for program in programs if not shutil.which(program)]
    return unittest.skipIf(missing, "not installed: " + ", ".join(missing))


class Help:
    """What a program's own --help names."""

    def __init__(self, name, command=""):
        words = [PROGRAMS[name], *command.split(), "--help"]
        result = run(*words)
        if result.returncode != 0:
            raise AssertionError(f"{words} ended with {result.returncode}: {result.stderr}")
        self.text = result.stdout
        self.options = set()
        self.choices = {}  # by option, of those that take one of a few words
        for names, value in re.findall(r"^  (-[^\s]+)(?: (\S+))?", self.text, re.MULTILINE):
            names = names.partition("[")[0].split(",")  # --option[=VALUE]: with a value or without
            self.options.update(names)
            if re.fullmatch(r"[\w.]+(\|[\w.]+)+", value):
                self.choices[names[-1]] = value.split("|")
        # Hosts by their names, each with what stands after the colon: "embedded[:FILE.json]", "ardour:DIR".
        told = re.search(r"^  --host .*\n((?:    .*\n)*)", self.text, re.MULTILINE)
        self.hosts = dict(re.findall(r"^ +([a-z][\w-]*)\[?:([A-Z][\w.]*)\]?$", told[1], re.MULTILINE)) if told else {}
        listed = re.search(r"^Subcommands:\n((?:  .*\n)+)", self.text, re.MULTILINE)
        self.commands = re.findall(r"^  (\w+)", listed[1], re.MULTILINE) if listed else []


def commands_of(name):
    """A program's commands, the empty text first for the program itself."""
    return ["", *Help(name).commands]
