"""Projects that nobody would write: every command ends soon, by itself, in bounded memory, and lets none of it out raw.

How the cost grows with the size is measured by Bench/hostile, with the same shapes.
"""

import html.parser
import os
import re
import resource
import shutil
import signal
import socket
import unicodedata
import unittest
import xml.etree.ElementTree
import zipfile

from hostile_material import (FILE_NAMES, NUMBERS, SHAPES, STAMPS, TEXTS, lying_waves, named_project, number_project,
                              shuffled_waves, text_project, write_shape)
from material import Adl, one_cut, wave
from program import (ALL_DONE, DOES_NOT_LOAD, LEFT_OUT, SANITIZED, SLOWNESS, ProgramTest, Run, environment, start,
                     strict_json)
from test_terminal import on_terminal

SECONDS = 10
SHAPE_BYTES = 1 << 16 if SANITIZED else 1 << 18
MOST_MEMORY_BYTES = 128 << 20  # of a project of SHAPE_BYTES; the programs alone take some 10 MB
LARGEST_FILE_BYTES = 1 << 27

INFO = {"info": ["info", "FILE"], "info --json": ["info", "FILE", "--json"], "info --summary": ["info", "FILE", "--summary"]}
OTHERS = {"check --json": ["check", "FILE", "--json"], "spot --json": ["spot", "FILE", "--json", "--quiet"],
          "prepare": ["prepare", "FILE", "--into", "FOLDER", "--json"]}
ALL = INFO | OTHERS
FEW = {name: ALL[name] for name in ("info --json", "check --json", "prepare")} if SANITIZED else ALL  # where there are many
STATUSES = {"info": (ALL_DONE, DOES_NOT_LOAD)}  # of the others: LEFT_OUT too


def _limits():
    """A disk that fills up early. The program itself is asked to live with the signal of that."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (LARGEST_FILE_BYTES, LARGEST_FILE_BYTES))
    resource.setrlimit(resource.RLIMIT_CPU, (SECONDS * SLOWNESS, SECONDS * SLOWNESS))


class HostileTest(ProgramTest):
    def ends(self, command, file, *more, is_measured=False):
        """Runs a command of ALL to its end: no signal, its documented status, a reason for any but 0."""
        words = [{"FILE": file, "FOLDER": self.folder / "made"}.get(word, word) for word in ALL[command]]
        out, err = self.folder / "out", self.folder / "err"
        with open(out, "wb") as out_file, open(err, "wb") as err_file:
            process = start(*words, *more, before=_limits, stdout=out_file, stderr=err_file,
                            env=environment(ASAN_OPTIONS=os.environ.get("ASAN_OPTIONS", "") + ":allocator_may_return_null=1"))
            _, status, used = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        result = Run(process.returncode, out.read_bytes(), err.read_bytes())
        shutil.rmtree(self.folder / "made", ignore_errors=True)
        what = f"{command}: {result.err_bytes[-500:]!r}"
        self.assertIn(result.status, STATUSES.get(words[0], (ALL_DONE, DOES_NOT_LOAD, LEFT_OUT)), what)
        if "--json" in words:
            told = result.lines
            # A spot of nothing, and a preparation of what is no project, have no line.
            self.assertTrue(told or result.status != ALL_DONE and words[0] not in ("check", "info"), what)
        if words[0] == "check":
            self.assertEqual(told[0]["verdict"] == "unreadable", result.status == DOES_NOT_LOAD, what)
        elif words[0] in ("info", "spot") and result.status != ALL_DONE or result.status == DOES_NOT_LOAD:
            self.assertIn("velmora", result.err, what)
        if is_measured and not SANITIZED:
            self.assertLess(used.ru_maxrss * 1024, MOST_MEMORY_BYTES, what)
        return result


class Shapes(HostileTest):
    def test_everyShapeInEveryCommand(self):
        file = self.folder / "p.adl"
        for shape in SHAPES:
            write_shape(file, shape, SHAPE_BYTES)
            for command in FEW:
                with self.subTest(shape=shape, command=command):
                    self.ends(command, file, is_measured=True)

    def test_everyShapeThatEndsAnywhere(self):
        file = self.folder / "p.adl"
        for shape in SHAPES:
            write_shape(file, shape, 3000)
            whole = file.read_bytes()
            file.write_bytes(whole[:2000 + len(shape) * 7])
            for command in ("info --json", "check --json"):
                with self.subTest(shape=shape, command=command):
                    self.ends(command, file)


class Numbers(HostileTest):
    def test_extremeNumbersEverywhere(self):
        (self.folder / "take.wav").write_bytes(wave(3000))
        file = self.folder / "p.adl"
        for position, number in enumerate(NUMBERS):
            file.write_bytes(number_project(number, STAMPS[position % len(STAMPS)]))
            for command in FEW:
                with self.subTest(number=number, command=command):
                    self.ends(command, file, *(["--fades", "--gain", "--depth", "16"] if command.startswith("spot") else []),
                              is_measured=True)

    def test_timesAndGainsInATarget(self):
        (self.folder / "take.wav").write_bytes(wave(3000))
        for position, number in enumerate(("1e999", "nan", "-inf", "-1e999", "1e-999", "2147483647")):
            time = STAMPS[position]
            fades = f"\n(Infade) {time} L {number} {number} {number} (Outfade) {time} L _ _ _ (Gain) _ {number}"
            project = one_cut(self.folder / number, 3000, length=1, more=fades)
            targets = [self.folder / f"{number}.{kind}" for kind in ("dawproject", "otio", "html", "json", "wav")]
            with self.subTest(number=number):
                self.ends("spot --json", project, "--native", "--dawproject", targets[0], "--otio", targets[1],
                          "--report", targets[2], "--host", f"embedded:{targets[3]}", "--bounce", targets[4])
                strict_targets(self, targets[:4])


class Sources(HostileTest):
    def project(self, location):
        adl = Adl().source(1, location, start="_", length="_").cut(1, length=1)
        return adl.write(self.folder / "project" / "p.adl")

    def test_whatIsNoFileIsNeverRead(self):
        take = self.folder / "project/take.wav"
        take.parent.mkdir()
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)

        def loop():
            take.symlink_to("other.wav")
            take.with_name("other.wav").symlink_to("take.wav")

        def in_folder(make):
            make()
            (self.folder / "project/up").symlink_to("..")  # a loop of folders for whoever searches below

        kinds = {"device": lambda: take.symlink_to("/dev/zero"), "terminal": lambda: take.symlink_to("/dev/tty"),
                 "socket": lambda: listener.bind(str(take)), "fifo": lambda: os.mkfifo(take), "folder": take.mkdir,
                 "loopOfLinks": loop, "linkToFifo": lambda: (os.mkfifo(take.with_name("f")), take.symlink_to("f")),
                 "descriptor": lambda: take.symlink_to("/dev/fd/0")}
        for kind, make in kinds.items():
            in_folder(make)
            for command in FEW:
                with self.subTest(kind=kind, command=command):
                    result = self.ends(command, self.project("URL:file://localhost/a/take.wav"))
                    if command == "info --json":
                        self.assertIsNone(result.json["sources"][0]["file"])
            for path in take.parent.iterdir():
                path.rmdir() if path.is_dir() and not path.is_symlink() else path.unlink()

    def test_locationsThatGoFar(self):
        for location in ("../" * 5000 + "etc/passwd", "URL:file://localhost/" + "../" * 40 + "dev/zero", "/dev/zero",
                         "URL:file:///dev/zero", "/proc/self/fd/1", "a/" * 30000 + "t.wav",
                         "URL:file://localhost/" + "n" * 70000, "%2e%2e%2f" * 3000 + "t.wav",
                         "URL:file://localhost/a/%00t.wav", "C:\\" + "..\\" * 9000 + "t.wav",
                         ".", "/", "..", "//", "URL:", "%", "%%%%1"):
            for command in FEW:
                with self.subTest(location=location[:40], command=command):
                    self.ends(command, self.project(location), is_measured=True)

    def assert_told(self, checked, waves):
        """Each wave has a finding, or is one whose frames it can hold."""
        found = {finding["source"] for finding in checked["findings"] if finding["severity"] != "note"}
        found |= {finding["entry"] for finding in checked["findings"] if finding["severity"] != "note"}  # numbered alike
        for source, (name, content) in zip(checked["meant"]["sources"], waves):
            if source["index"] in found:
                continue
            file = source["file"]
            self.assertIsNotNone(file, name)
            held = file["frames"] * file["channels"] * file["bitsPerSample"] // 8
            self.assertTrue(0 < held <= len(content), f"{name}: {file}")

    def test_waveHeadersThatLieInEveryField(self):
        self.takes_waves(list(lying_waves()))

    def test_wavesWhoseChunksAreOutOfOrder(self):
        self.takes_waves(list(shuffled_waves()))

    def takes_waves(self, waves):
        """A 16-bit copy of what claims more than it holds may ask for gigabytes: here it meets a full disk. What the check
        has no finding for is what the system reads, and what it reads is told with facts that the file can hold."""
        project = self.folder / "project"
        project.mkdir()
        for at in range(0, len(waves), 40):
            part = waves[at:at + 40]
            adl = Adl()
            for number, (name, content) in enumerate(part):
                (project / f"{name}.wav").write_bytes(content)
                adl.source(number + 1, f"URL:file://localhost/a/{name}.wav").cut(number + 1, source=number + 1, length=1)
            file = adl.write(project / "p.adl")
            for command, more in [("info --json", []), ("info", []), ("check --json", []), ("spot --json", ["--fades", "--gain"]),
                                  ("spot --json", ["--depth", "16", "--bounce-tracks", self.folder / "tracks"]),
                                  ("prepare", ["--copy-media"])]:
                with self.subTest(at=at, command=command, more=more):
                    result = self.ends(command, file, *more, is_measured=True)
                    if command == "check --json":
                        self.assert_told(result.lines[0], part)
            shutil.rmtree(project)
            shutil.rmtree(self.folder / "tracks", ignore_errors=True)
            project.mkdir()


# What a terminal or a reader could act on or not see: controls, directions and other format characters, separators.
_ACTIVE = ("Cc", "Cf", "Zl", "Zp", "Cs")
# What some scripts need to join their letters, and what Shift-JIS has.
_NEEDED = "\u200c\u200d\u00ad"
_DIRECTION_MARKS = "\u061c\u200e\u200f"  # of a page's texts: each has a direction of its own, so that they turn nothing else
_DELETE = "\x7f"  # which terminals pass over: JSON has it as it stands


def active(text, allowed="\n"):
    return sorted({f"U+{ord(c):04X}" for c in text
                   if c not in allowed and c not in _NEEDED and unicodedata.category(c) in _ACTIVE})


class _Page(html.parser.HTMLParser):
    """The tags of a page, and what stands in its scripts."""

    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.tags, self.scripts, self.texts, self._in_script = set(), [], [], False
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attrs):
        self.tags.add(tag)
        for name, _ in attrs:
            self.tags.add(f"@{name}")
        if tag == "script":
            self.scripts.append((dict(attrs), ""))
        self._in_script = tag == "script"

    def handle_endtag(self, tag):
        self._in_script = False

    def handle_data(self, data):
        if self._in_script:
            attributes, text = self.scripts.pop()
            self.scripts.append((attributes, text + data))
        else:
            self.texts.append(data)


def strict_targets(test, targets):
    """Parses each file with a reader that forgives nothing. Files that were not made are passed over."""
    made = [path for path in targets if path.exists()]
    for path in made:
        if path.suffix == ".dawproject":
            with zipfile.ZipFile(path) as archive:
                test.assertIsNone(archive.testzip())
                for name in archive.namelist():
                    if name.endswith(".xml"):
                        xml.etree.ElementTree.fromstring(archive.read(name))
        elif path.suffix == ".html":
            page = _Page(path.read_bytes().decode("utf-8"))
            for attributes, text in page.scripts:
                if attributes.get("type") == "application/json":
                    strict_json(text)
        else:
            strict_json(path.read_bytes().decode("utf-8"))
    return made


class Texts(HostileTest):
    def project(self, text):
        folder = self.folder / "project"
        folder.mkdir(exist_ok=True)
        (folder / "t1.wav").write_bytes(wave(48000))
        (folder / "p.adl").write_bytes(text_project(text))
        return folder / "p.adl"

    def names_project(self):
        folder = self.folder / "project"
        folder.mkdir()
        for name in FILE_NAMES:
            with open(os.path.join(os.fsencode(folder), name), "wb") as file:
                file.write(wave(48000))
        (folder / "p.adl").write_bytes(named_project(FILE_NAMES))
        return folder / "p.adl"

    def test_jsonIsStrictAndTextIsClean(self):
        for name, text in TEXTS.items():
            project = self.project(text)
            for command in FEW:
                with self.subTest(text=name, command=command):
                    result = self.ends(command, project)  # which parses JSON
                    if command in ("info", "info --summary"):
                        self.assertEqual(active(result.out), [])

    def test_terminalGetsNothingThatItActsOn(self):
        projects = [*TEXTS, "names"]
        for name in projects:
            project = self.names_project_again() if name == "names" else self.project(TEXTS[name])
            for words in (["info", project], ["info", project, "--summary"], ["check", project], ["spot", project, "--fades"],
                          ["prepare", project, "--into", self.folder / "made"], ["info", project, "--json"],
                          ["check", project, "--json"], ["spot", project, "--json"]):
                with self.subTest(text=name, command=words[0], form=words[-1]):
                    _, out, err = on_terminal(*words)
                    shutil.rmtree(self.folder / "made", ignore_errors=True)
                    for stream in (out, err):
                        text = re.sub(r"\x1b\[(\d+(;\d+)*)?[mK]", "", stream.decode("utf-8"))
                        self.assertEqual(active(text, "\r\n" + (_DELETE if "--json" in words else "")), [], text[:2000])
                        self.assertNotIn(b"\x1b[35m", stream, "a colour that the program does not have")

    def names_project_again(self):
        shutil.rmtree(self.folder / "project")
        return self.names_project()

    def targets_of(self, project, *more):
        kinds = ("dawproject", "otio", "html", "json")
        paths = [self.folder / f"made.{kind}" for kind in kinds]
        result = self.ends("spot --json", project, "--dawproject", paths[0], "--otio", paths[1], "--report", paths[2],
                           "--host", f"embedded:{paths[3]}", *more)
        return result, paths

    def harmless(self):
        _, paths = self.targets_of(self.project(b"harmless"))
        page = _Page(paths[2].read_text("utf-8"))
        for path in paths:
            path.unlink()
        return page

    def test_filesThatAreMadeParseStrictly(self):
        plain = self.harmless()
        for name in [*TEXTS, "names"]:
            project = self.names_project_again() if name == "names" else self.project(TEXTS[name])
            with self.subTest(text=name):
                result, paths = self.targets_of(project, "--native", "--embed-media")
                self.assertEqual(strict_targets(self, paths), paths, result.err)
                page = _Page(paths[2].read_text("utf-8"))
                self.assertEqual({tag for tag in page.tags - plain.tags if tag == "x" or tag.startswith("@on")}, set())
                self.assertEqual(len(page.scripts), len(plain.scripts))
                self.assertEqual(active("".join(page.texts), "\n\t" + _DIRECTION_MARKS), [])
                with zipfile.ZipFile(paths[0]) as archive:
                    for entry in archive.namelist():
                        self.assertNotIn("..", entry.split("/"))
                        self.assertFalse(entry.startswith("/"))
                        self.assertEqual(active(entry), [])
            for path in paths:
                path.unlink(missing_ok=True)

    def test_preparedFilesStayInTheirFolder(self):
        for name in [*TEXTS, "names"]:
            project = self.names_project_again() if name == "names" else self.project(TEXTS[name])
            into = self.folder / "made"
            before = {path for path in self.folder.rglob("*")}
            with self.subTest(text=name):
                process = start("prepare", project, "--into", into, "--copy-media")
                process.communicate(timeout=SECONDS * SLOWNESS)
                self.assertIn(process.returncode, (ALL_DONE, LEFT_OUT, DOES_NOT_LOAD))
                made = {path for path in self.folder.rglob("*")} - before
                for path in made:
                    self.assertTrue(path == into or into in path.parents, path)
                    self.assertEqual(active(os.fsencode(path.name).decode("utf-8")), [])
            shutil.rmtree(into, ignore_errors=True)


if __name__ == "__main__":
    unittest.main()
