"""Rows, and how they are measured."""

import dataclasses
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from typing import Callable, Optional

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
PACKAGES = ["sox", "ffmpeg", "sndfile-programs"]


class Disagreement(Exception):
    """Two programs made different things: their times are not worth comparing."""


@dataclasses.dataclass
class Command:
    """One process. `makes` are the files and folders that go before each run."""

    name: str
    argv: list
    makes: list = dataclasses.field(default_factory=list)
    folders: list = dataclasses.field(default_factory=list)  # empty ones, made before each run
    output: Optional[str] = None  # where standard output goes; nowhere unless told
    fill: Callable = lambda: None  # puts into the folders what has to be there, before each run
    many: bool = False  # the folders get many small files


@dataclasses.dataclass
class Limit:
    """A ratio of times that a row is to keep: a function of the times of one round, by command."""

    of: str
    most: float
    ratio: Callable


@dataclasses.dataclass
class Work:
    """What a row comes to on this machine."""

    commands: list
    limits: list
    # Raises Disagreement, after all commands have run once.
    agree: Callable = lambda: None


@dataclasses.dataclass
class Row:
    name: str
    title: str
    prepare: Callable  # of a Bench; answers a Work


@dataclasses.dataclass
class Result:
    """For each limit: the ratio in each round, by the clock and in processor time."""

    limit: Limit
    wall: list
    cpu: list


_rows = []


def row(name, title):
    """Makes a function of a Bench that answers a Work a row of the table."""

    def add(prepare):
        _rows.append(Row(name, title, prepare))
        return prepare

    return add


def select(beginnings):
    return [r for r in _rows if not beginnings or any(r.name.startswith(b) for b in beginnings)]


def against(name, most, ours="velmora"):
    """At most so many times the time of another command."""
    return Limit(name, most, lambda times: times[ours] / times[name])


def against_fastest(names, most, ours="velmora"):
    """At most so many times the time of the fastest of some commands."""
    title = names[0] if len(names) == 1 else "the fastest peer"
    return Limit(title, most, lambda times: times[ours] / min(times[n] for n in names))


class Bench:
    """The inputs, the programs, and one folder for it all."""

    def __init__(self, arguments):
        self.rounds = arguments.rounds
        self.megabytes = arguments.megabytes
        self.count = arguments.count
        self._made = None
        self._cleared = 0
        self._folder = arguments.folder
        install_peers()
        self.velmora = arguments.velmora or build("velmora", "Host/Program/velmora")
        self.helper = arguments.helper or build("velmora_make_files", "Bench/velmora_make_files")

    def __enter__(self):
        if self._folder:
            os.makedirs(self._folder, exist_ok=True)
        else:
            self._made = self._folder = tempfile.mkdtemp(prefix="velmora-peers-")
        self._folder = os.path.realpath(self._folder)
        return self

    def __exit__(self, *_):
        if self._made:
            shutil.rmtree(self._made, ignore_errors=True)

    def path(self, *names):
        return os.path.join(self._folder, *names)

    def spot(self, project, *options, name="velmora", **more):
        """A spot, told to nobody."""
        return Command(name, [self.velmora, "spot", project, "--quiet", *options], **more)

    def measure(self, row):
        work = row.prepare(self)
        try:
            for command in work.commands:  # once before it counts: inputs come into memory
                self._run(command)
            work.agree()
            walls, cpus = [], []
            for _ in range(self.rounds):
                times = {command.name: self._run(command) for command in work.commands}
                walls.append({name: wall for name, (wall, _) in times.items()})
                cpus.append({name: cpu for name, (_, cpu) in times.items()})
        finally:
            for command in work.commands:
                self._clear(command)
            shutil.rmtree(self.path("trash"), ignore_errors=True)
        return [
            Result(limit, [limit.ratio(t) for t in walls], [limit.ratio(t) for t in cpus])
            for limit in work.limits
        ]

    def _run(self, command):
        """Seconds by the clock and of processor time."""
        self._clear(command)
        for folder in command.folders:
            os.makedirs(folder)
        command.fill()
        with open(command.output or os.devnull, "wb") as output, open(os.devnull, "rb") as nothing:
            errors = tempfile.TemporaryFile()
            begin = time.perf_counter()
            process = subprocess.Popen(command.argv, stdin=nothing, stdout=output, stderr=errors)
            _, status, used = os.wait4(process.pid, 0)
            wall = time.perf_counter() - begin
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            errors.seek(0)
            sys.exit(f"{' '.join(command.argv)} failed:\n{errors.read().decode(errors='replace')}")
        return wall, used.ru_utime + used.ru_stime

    def _clear(self, command):
        """Takes away what a run has made. Large files go at once, so that memory that is in use already
        takes the next ones; fresh memory costs a virtual machine much more. Many small ones go when the
        row is done: for some seconds after that, ext4 takes many times as long to create others."""
        for made in command.makes:
            if os.path.lexists(made):
                os.remove(made)
        for folder in filter(os.path.isdir, command.folders):
            if command.many:
                os.makedirs(self.path("trash"), exist_ok=True)
                os.rename(folder, self.path("trash", str(self._cleared)))
                self._cleared += 1
            else:
                shutil.rmtree(folder)


def install_peers():
    shell = f'source "{ROOT}/Tools/build.sh" && install_packages {" ".join(PACKAGES)}'
    subprocess.run(["bash", "-c", shell], check=True, stdout=sys.stderr)


def build(target, place):
    shell = f'source "{ROOT}/Tools/build.sh" && build release {target}'
    subprocess.run(["bash", "-c", shell], check=True, stdout=sys.stderr)
    return os.path.join(ROOT, "build/release", place)


def middle_half(values):
    """The median and the two quartiles."""
    if len(values) < 2:
        return values[0], values[0], values[0]
    low, middle, high = statistics.quantiles(values, n=4, method="inclusive")
    return middle, low, high
