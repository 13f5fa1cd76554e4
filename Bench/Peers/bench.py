"""Rows, and how they are measured."""

import dataclasses
import json
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from typing import Callable, Optional

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
PACKAGES = ["sox", "ffmpeg", "sndfile-programs"]
ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8"}  # what wc takes for a word costs by the locale
ENOUGH_SECONDS = 5  # of a row's rounds
MAXRSS_BYTES = 1 if sys.platform == "darwin" else 1024


class Disagreement(Exception):
    """Two programs made different things: their times are not worth comparing."""


@dataclasses.dataclass
class Used:
    """What one run took: seconds by the clock, seconds of processor time, bytes of memory at the most."""

    wall: float
    cpu: float
    memory: int = 0


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
    environment: dict = dataclasses.field(default_factory=dict)  # beside that of all
    parts: Optional[Callable] = None  # of its output's path: parts that it timed itself, by name
    starts: int = 0  # so often only up to the first output, the median counting as one run


@dataclasses.dataclass
class Limit:
    """What a row is to keep: a function of the times of one round, by command, or of other facts of
    Used. A ratio, or an absolute figure if it has a unit."""

    of: str
    most: Optional[float]  # none if the figure is only to be seen
    figure: Callable
    unit: str = ""
    facts: tuple = ("wall", "cpu")


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
    asked: bool


@dataclasses.dataclass
class Result:
    """For each fact of a limit: the figure in each round."""

    limit: Limit
    figures: list


_rows = []


def row(name, title, asked=False):
    """Makes a function of a Bench that answers a Work a row of the table; `asked`: only when named."""

    def add(prepare):
        _rows.append(Row(name, title, prepare, asked))
        return prepare

    return add


def select(beginnings):
    if not beginnings:
        return [r for r in _rows if not r.asked]
    return [r for r in _rows if any(r.name.startswith(b) for b in beginnings)]


def against(name, most, ours="velmora"):
    """At most so many times the time of another command."""
    return Limit(name, most, lambda times: times[ours] / times[name])


def against_fastest(names, most, ours="velmora"):
    """At most so many times the time of the fastest of some commands."""
    title = names[0] if len(names) == 1 else "the fastest peer"
    return Limit(title, most, lambda times: times[ours] / min(times[n] for n in names))


def absolute(of, most, unit, figure):
    """A time that is to stay below so many "ms" or "us"; `figure` answers seconds."""
    scale = {"ms": 1e3, "us": 1e6}[unit]
    return Limit(of, most, lambda times: figure(times) * scale, unit)


def memory_against(file, of, most, ours="velmora"):
    """At most so many times the size of a file, in memory at any time."""
    size = os.path.getsize(file)
    return Limit(of, most, lambda memory: memory[ours] / size, facts=("memory",))


def benchmark_times(output):
    """The times of an iteration, by name and argument, as in "LoadTree/1000"."""
    with open(output, encoding="utf-8") as file:
        text = file.read()
    if not text:
        raise Disagreement("velmora_bench knows no such benchmark")
    told = json.loads(text)["benchmarks"]
    scale = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}
    times = {}
    for one in told:
        name = re.sub(r"/(real_time|process_time|iterations:\d+)", "", one["name"])
        unit = scale[one["time_unit"]]
        times[name] = Used(one["real_time"] * unit, one["cpu_time"] * unit)
    return times


class Bench:
    """The inputs, the programs, and one folder for it all."""

    def __init__(self, arguments):
        self.rounds = arguments.rounds
        self.megabytes = arguments.megabytes
        self.count = arguments.count
        self.events = arguments.events
        self._made = None
        self._cleared = 0
        self._folder = arguments.folder
        install_peers()
        self.velmora = arguments.velmora or build("velmora", "Host/Program/velmora")
        self.helper = arguments.helper or build("velmora_make_files", "Bench/velmora_make_files")
        self.parts = arguments.parts or build("velmora_bench", "Bench/velmora_bench")

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

    def benchmark(self, name, **more):
        """One of velmora_bench in a process of its own: memory that another has left behind may make it
        faster or slower. The inputs stay for the next one."""
        return Command(
            name,
            [self.parts, f"--benchmark_filter=^{name}(/real_time|/iterations:.*)*$",
             "--benchmark_format=json", "--benchmark_min_time=0.05"],
            output=self.path("benchmark.json"), parts=benchmark_times,
            environment={"VELMORA_BENCH_EVENTS": str(self.events),
                         "VELMORA_BENCH_FOLDER": self.path("benchmarks")} | more.pop("environment", {}),
            **more)  # fmt: skip

    def measure(self, row):
        work = row.prepare(self)
        try:
            for command in work.commands:
                if command.parts is None:  # once before it counts: inputs come into memory
                    self._run(command)
            work.agree()
            rounds = self._all_rounds(work)
        finally:
            for command in work.commands:
                self._clear(command)
            shutil.rmtree(self.path("trash"), ignore_errors=True)

        def figures(limit, fact):
            return [limit.figure({n: getattr(u, fact) for n, u in used.items()}) for used in rounds]

        return [
            Result(limit, [figures(limit, fact) for fact in limit.facts]) for limit in work.limits
        ]

    def _all_rounds(self, work):
        """More of them for short work: what disturbs it is as long as the work itself."""
        os.sync()  # what earlier rows have written is none of this one's work
        most = 1 + 6 * (self.rounds - 1)
        begin = time.perf_counter()
        rounds = []
        while len(rounds) < self.rounds or (
            len(rounds) < most and time.perf_counter() - begin < ENOUGH_SECONDS
        ):
            rounds.append(self._round(work.commands))
        return rounds

    def _round(self, commands):
        used = {}
        for command in commands:
            used[command.name] = self._start(command) if command.starts else self._run(command)
            if command.parts:
                used.update(command.parts(command.output))
        return used

    def _run(self, command):
        self._clear(command)
        for folder in command.folders:
            os.makedirs(folder)
        command.fill()
        with open(command.output or os.devnull, "wb") as output, open(os.devnull, "rb") as nothing:
            errors = tempfile.TemporaryFile()
            begin = time.perf_counter()
            process = subprocess.Popen(
                command.argv, stdin=nothing, stdout=output, stderr=errors,
                env=ENVIRONMENT | command.environment)  # fmt: skip
            _, status, used = os.wait4(process.pid, 0)
            wall = time.perf_counter() - begin
        process.returncode = os.waitstatus_to_exitcode(status)
        if process.returncode != 0:
            errors.seek(0)
            sys.exit(f"{' '.join(command.argv)} failed:\n{errors.read().decode(errors='replace')}")
        return Used(wall, used.ru_utime + used.ru_stime, used.ru_maxrss * MAXRSS_BYTES)

    @staticmethod
    def _start(command):
        """From the start to the first output, or to the end if there is none."""
        runs = []
        for _ in range(command.starts):
            begin = time.perf_counter()
            process = subprocess.Popen(
                command.argv, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                stderr=subprocess.DEVNULL, env=ENVIRONMENT)  # fmt: skip
            process.stdout.read1(1)
            wall = time.perf_counter() - begin
            process.stdout.read()
            process.stdout.close()
            _, _, used = os.wait4(process.pid, 0)
            process.returncode = 0
            runs.append(Used(wall, used.ru_utime + used.ru_stime))
        return Used(*(statistics.median(getattr(r, fact) for r in runs) for fact in ("wall", "cpu")))

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


def build(target, place, preset="release"):
    packages = 'install_packages "${view_packages[@]}" && ' if preset == "view" else ""
    shell = f'source "{ROOT}/Tools/build.sh" && {packages}build {preset} {target}'
    subprocess.run(["bash", "-c", shell], check=True, stdout=sys.stderr)
    return os.path.join(ROOT, "build/release", place)


def middle_half(values):
    """The median and the two quartiles."""
    if len(values) < 2:
        return values[0], values[0], values[0]
    low, middle, high = statistics.quantiles(values, n=4, method="inclusive")
    return middle, low, high
