"""Disturbs the program's tasks and judges what came of it.

`Place.disturbed` lets one call fail, by the library FailingCalls.cpp.
"""

import contextlib
import errno
import hashlib
import json
import os
import pathlib
import re
import shutil
import signal
import stat
import struct
import subprocess
import time
import zipfile

from tasks import BESIDE, OUTPUT  # which also finds what Tests/Program has
from failing import SHIM, Counts, variables
from program import ALL_DONE, BAD_USAGE, PROGRAM, SANITIZED, SLOWNESS, environment

TIME_LIMIT = 20 * SLOWNESS

# By kind: what may go wrong there. "short" is a read or write of less than was asked for.
ERRORS = {
    "open": (errno.EMFILE, errno.EACCES, errno.EIO, errno.EINTR),
    "create": (errno.ENOSPC, errno.EACCES, errno.EMFILE),
    "look": (errno.EIO, errno.EACCES),
    "list": (errno.EIO,),
    "read": (errno.EIO, errno.EINTR, "short"),
    "write": (errno.ENOSPC, errno.EIO, errno.EINTR, "short"),
    "seek": (errno.EIO,),
    "close": (errno.EIO, errno.ENOSPC),
    "rename": (errno.EIO, errno.EACCES),
    "link": (errno.EIO, errno.ENOSPC),
    "remove": (errno.EIO,),
    "folder": (errno.ENOSPC, errno.EACCES),
    "change": (errno.EIO,),
    "sync": (errno.EIO,),
    "map": (errno.ENOMEM,),  # as memory, but seldom; whose memory it is cannot be told
    "copy": (errno.EIO, errno.ENOSPC),
    "memory": (errno.ENOMEM,),
    "start": (errno.EAGAIN,),
    "pipe": (errno.EMFILE,),
}

# Names that a run may leave that could not tidy up or was killed.
LEFT_OVER = re.compile(r"\.velmora-\d+-\d+\.part(/.*)?")

# The number that tells files of one name apart.
NUMBER = re.compile(rb"((?:take|other|mono|stereo|float|rate)[A-Za-z0-9_]*)\.\d+")
# The line of a source in a prepared project: location, reference, start, length, name.
LENGTH = re.compile(rb'(\(F\) "[^"]*" \S+ \S+) \S+ ("[^"]*" N)')

# What a page and lines are made of, and how a cause is called where there is no path.
PARTS = re.compile(r"\n|<[^>]*>")
CAUSES = ("there is not enough memory", "standard output",
          *{os.strerror(error) for errors in ERRORS.values() for error in errors if error != "short"})

LIBRARIES = ("libsndfile", "libsoxr", "libFLAC", "libvorbis", "libopus", "libmpg123", "libmp3lame", "libogg")


class Fault(Exception):
    """The program did what it must not do."""


class Run:
    def __init__(self, status, out, err, counts=None):
        self.status, self.out, self.err, self.counts = status, out, err, counts


def picture(folder):
    """Every name below a folder with its kind, rights, times and contents."""
    held = {}

    def look(path, name):
        for entry in os.scandir(path):
            below = f"{name}{entry.name}"
            facts = entry.stat(follow_symlinks=False)
            what = ""
            if stat.S_ISLNK(facts.st_mode):
                what = os.readlink(entry.path)
            elif stat.S_ISREG(facts.st_mode):
                with open(entry.path, "rb") as file:
                    what = hashlib.sha256(file.read()).hexdigest()
            is_folder = stat.S_ISDIR(facts.st_mode)
            held[below] = (facts.st_mode, what, 0 if is_folder else facts.st_mtime_ns)
            if is_folder:
                look(entry.path, below + "/")

    look(folder, "")
    return held


# An alias record holds a file's number and times.
ALIAS = re.compile(rb'("type":"alis","hex":)"[0-9a-f]*"')


def without_numbers(text):
    """Names that an error hides are passed over: the next free number is as good."""
    return ALIAS.sub(rb"\1", NUMBER.sub(rb"\1", text))


def heard(path):
    """The samples of a wave file and its time, whatever else stands around them and whether it is linked."""
    data = path.read_bytes()

    def chunk(identifier):
        at = data.find(identifier)
        return data[at + 8:at + 8 + struct.unpack_from("<I", data, at + 4)[0]] if at > 0 else b""

    return chunk(b"data"), chunk(b"bext")


def contents(path):
    """What results are compared by: not when they were made, nor the times in a ZIP file.

    Prepared audio is compared by what is heard: after a read that failed in passing a file may be converted that would
    have been linked, and the length that the project tells of it, which is for people, may be left open."""
    if path.parent.name == "Audio" and path.suffix == ".wav" and path.exists():
        return heard(path)
    if path.suffix == ".adl":
        return LENGTH.sub(rb"\1 _ \2", path.read_bytes())
    if path.is_symlink():
        return os.readlink(path)
    if path.is_dir():
        return sorted(map(named_contents, path.iterdir()))
    if not path.exists():
        return None
    if path.suffix == ".dawproject":
        try:
            with zipfile.ZipFile(path) as archive:
                return [(without_numbers(entry.filename.encode()), without_numbers(archive.read(entry)))
                        for entry in archive.infolist()]
        except (zipfile.BadZipFile, ValueError, OSError, EOFError):
            pass
    return without_numbers(path.read_bytes())


def named_contents(path):
    return without_numbers(path.name.encode()), contents(path)


def what_is_half(path):
    """Why a file is not whole in itself, or one of a folder's; empty if it is whole, or not there."""
    if path.is_symlink() or not path.exists() or LEFT_OVER.fullmatch(path.name):
        return ""
    if path.is_dir():
        return next(filter(None, map(what_is_half, sorted(path.iterdir()))), "")
    data = path.read_bytes()
    ends = {".html": b"</html>\n", ".adl": b"</ADL>\r\n", ".json": b"}\n", ".otio": b"}\n", ".ardour": b"</Session>\n"}
    if path.suffix in ends:
        return "" if data.endswith(ends[path.suffix]) else f"{path} ends in {data[-20:]!r}"
    if path.suffix == ".dawproject":
        try:
            with zipfile.ZipFile(path) as archive:
                return archive.testzip() or ""
        except (zipfile.BadZipFile, ValueError, OSError, EOFError) as error:
            return f"{path}: {error}"
    if path.suffix == ".wav" and data != b"earlier":
        size = struct.unpack_from("<I", data, 4)[0] if len(data) > 44 else -1
        return "" if data[:4] == b"RIFF" and size + 8 == len(data) else f"{path}: {len(data)} bytes of {size + 8}"
    return ""


def objects(value):
    """What the objects of JSON say, each with its own members only."""
    below = value.values() if isinstance(value, dict) else value if isinstance(value, list) else ()
    if isinstance(value, dict):
        yield str({name: member for name, member in value.items() if not isinstance(member, (dict, list))})
    for member in below:
        yield from objects(member)


def parts(text):
    """What a text tells: a document of JSON, or lines, each of them JSON or not."""
    for line in [text] if text.startswith("{\n") else text.splitlines():
        try:
            yield from objects(json.loads(line))
        except ValueError:
            yield from PARTS.split(line)


def remove(path):
    if path.is_dir() and not path.is_symlink():
        shutil.rmtree(path)
    else:
        path.unlink(missing_ok=True)


class Place:
    """A task in a folder of its own, which it always finds as it was."""

    def __init__(self, task, folder, scale=1):
        self.task = task
        self.program, self.preexec = PROGRAM, None
        self.folder = folder / "place"
        self.counts = folder / "counts"
        self.temporary = folder / "temporary"
        self.temporary.mkdir(parents=True)
        task.make(self.folder, scale)
        self.arguments = task.arguments(self.folder)
        self.before = picture(self.folder)
        started = time.monotonic()
        self.undisturbed = self.run()
        self.seconds = time.monotonic() - started
        if self.undisturbed.status != task.fine:
            raise Fault(f"undisturbed: status {self.undisturbed.status}, {self.undisturbed.err}")
        self.made, self.links, self.come = self.results(), self.linked(), self.assert_kept()
        missing = [name for name, what in self.made.items() if what is None]
        if missing:
            raise Fault(f"undisturbed: not made: {missing}")
        self.restore()

    def environment(self, **changes):
        return environment(TMPDIR=self.temporary, SOURCE_DATE_EPOCH="1700000000", **self.task.environment(self.folder),
                           **changes)

    def start(self, **changes):
        with contextlib.ExitStack() as held:
            out = subprocess.PIPE
            if self.task.into:
                out = held.enter_context(open(self.folder / "out" / self.task.into, "wb"))
            return subprocess.Popen([self.program, *self.arguments], stdin=subprocess.DEVNULL, stdout=out,
                                    stderr=subprocess.PIPE, cwd=self.folder, preexec_fn=self.preexec,
                                    env=self.environment(**changes))

    def run(self, **changes):
        process = self.start(**changes)
        try:
            out, err = process.communicate(timeout=TIME_LIMIT)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            raise Fault(f"still running after {TIME_LIMIT} s") from None
        return Run(process.returncode, without_numbers(out or b""), err.decode("utf-8", "replace"))

    def disturbed(self, kind, call, how, span=1):
        run = self.run(**variables(kind, call, how, self.counts, FAILING_SPAN=span))
        run.counts = Counts(self.counts)
        return run

    def calls(self):
        """How many calls of each kind an undisturbed run makes."""
        run = self.disturbed("every", 0, 0)
        self.restore()
        if run.status != self.task.fine or not run.counts.of:
            raise Fault(f"counting: status {run.status}, {run.err}")
        return run.counts.of

    def paths_of(self, name):
        """Where a result of the task is; one that is not there has no path or one that leads nowhere."""
        path = self.folder / "out" / name
        if name != BESIDE:
            return [path]
        return sorted(file for file in (self.folder / "in").rglob("*")
                      if os.fspath(file.relative_to(self.folder)) not in self.before)

    def results(self):
        made = {name: contents(self.folder / "out" / name) for name in self.task.results if name != BESIDE}
        if BESIDE in self.task.results:
            made[BESIDE] = sorted(map(named_contents, self.paths_of(BESIDE))) or None
        return made

    def assert_kept(self):
        """What was there is there. Returns the names that have come."""
        after = picture(self.folder)
        changed = [name for name, what in self.before.items() if after.get(name) != what]
        if changed:
            raise Fault(f"changed: {changed}")
        return [name for name in after if name not in self.before]

    def restore(self):
        for name in self.assert_kept():
            remove(self.folder / name)
        for path in self.temporary.iterdir():
            remove(path)

    def linked(self):
        """Links among what has come. What was to be copied must not lean on its source."""
        return {name for name in self.assert_kept() if (self.folder / name).is_symlink()}

    def remove_results(self):
        for name in self.task.results:
            for path in self.paths_of(name):
                remove(path)

    def judge(self, run):
        """What every disturbed run must hold to."""
        if self.is_a_librarys_fault(run):
            self.assert_kept()
            self.assert_whole()
            return self.judge_following()
        if run.status < 0:
            raise Fault(f"ended by {signal.Signals(-run.status).name}: {run.err[-300:]}")
        if run.status not in self.task.statuses:
            raise Fault(f"status {run.status}: {run.err[-600:]}")
        self.assert_kept()
        made = self.results()
        differ = [name for name in made if made[name] != self.made[name]]
        if run.out != self.undisturbed.out:
            differ.append(OUTPUT)
        # A task that tells what it finds on the disk tells of the disturbance there; of one that ends with another
        # status than 0 anyway, that status may also stand for the disturbance.
        may_differ = run.status != ALL_DONE or all(name in self.task.observes for name in differ)
        if differ and not may_differ:
            raise Fault(f"status 0 with other results: {differ}; {self.news(run.err, self.undisturbed.err)}")
        if run.status == ALL_DONE and not self.linked() <= self.links:
            raise Fault(f"status 0 with links in place of files: {sorted(self.linked() - self.links)}")
        if (differ or run.status != self.task.fine) and not self.names_it(run):
            raise Fault(f"status {run.status} and nothing is named: {run.err[-300:]!r}")
        self.assert_whole()
        return self.judge_following()

    @staticmethod
    def is_a_librarys_fault(run):
        """libsndfile and libsoxr do not always look whether they got memory, and libgomp, which comes with libsoxr, ends
        the program by itself. What such an end leaves is judged as that of a run that was killed."""
        asked = run.counts.failed.split(" ") if run.counts else []
        of_memory = asked and asked[0] in ("malloc", "calloc", "realloc")
        if run.status == BAD_USAGE:
            return of_memory and asked[1].startswith("libgomp") and "libgomp: Out of memory" in run.err
        return (of_memory and run.status == -signal.SIGSEGV
                and any(name.startswith(LIBRARIES) for name in asked[1:]))

    def assert_whole(self):
        """A target may lack what could not be read; it is whole in itself or away."""
        for name in self.task.whole:
            half = what_is_half(self.folder / "out" / name)
            if half:
                raise Fault(f"{name} is neither whole nor away: {half}")

    @staticmethod
    def news(text, undisturbed):
        """What is told that an undisturbed run does not tell: lines, texts of a page, or objects of JSON."""
        known = set(parts(undisturbed))
        return [part for part in parts(text) if part.strip() and part not in known]

    def names_it(self, run):
        """Something is told that the undisturbed run does not tell, with a path, the end of one, or the cause."""
        words = [os.fspath(self.folder), *CAUSES]
        words += [name.rpartition("/")[2] for name in [*self.before, *self.come] if "." in name]
        news = self.news(run.err, self.undisturbed.err)
        news += self.news(run.out.decode("utf-8", "replace"), self.undisturbed.out.decode("utf-8", "replace"))
        for name in set(self.made) & {*self.task.observes, self.task.into}:
            made = self.results()[name]
            news += self.news((made or b"").decode("utf-8", "replace"), self.made[name].decode("utf-8", "replace"))
        return any(word in part for word in words for part in news)

    def judge_following(self):
        """A normal run after it works and makes the same. If nothing was left it is the undisturbed one."""
        self.remove_results()
        left = [name for name in self.assert_kept() if (self.folder / name).exists()]
        if left:
            following = self.run()
            if following.status != self.task.fine:
                raise Fault(f"after it (left {left}) a run ends with {following.status}: {following.err[-600:]}")
            if not any(self.is_audio_of_the_spot(name) for name in left) and self.results() != self.made:
                raise Fault(f"after it (left {left}) a run makes something else")
        self.restore()

    @staticmethod
    def is_audio_of_the_spot(name):
        """Files of a spot that came out short stay, and the next run picks other names."""
        return name.endswith(".wav") and not LEFT_OVER.fullmatch(name.rpartition("out/")[2])
