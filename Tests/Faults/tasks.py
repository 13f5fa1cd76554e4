"""What is disturbed: one row for each task of the program, with a small project that makes it do all that it can.

A task runs in a place of its own: `in` has the project and its sources, `out` receives what is made, and holds
files of an earlier time that must stay as they are.
"""

import os
import pathlib
import sys

PROGRAM_FOLDER = pathlib.Path(__file__).resolve().parents[1] / "Program"
sys.path.insert(0, os.fspath(PROGRAM_FOLDER))

import prepare_material  # noqa: E402
from material import Adl, fade, wave, wave_of  # noqa: E402
from program import ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, LEFT_OUT  # noqa: E402


OUTPUT = "standard output"
BESIDE = "../in"  # as a result: all that has come into the folder of the sources


class Task:
    """A command line and what it makes: `results` are names in `out`."""

    def __init__(self, name, words, results=(), material=None, fine=ALL_DONE, observes=(), environment=None, into=None):
        """`fine` is the status of an undisturbed run. What stands in `observes` tells what was found on the disk, so
        it may differ with status 0 where that is named. Standard output goes into the result `into`, if there is one,
        else into a pipe."""
        self.name = name
        self.words = words
        self.results = results
        self.material = material or cuts
        self.fine = fine
        self.observes = observes
        # What the program may end with when something fails; 0 is judged by the results.
        self.statuses = {ALL_DONE, BAD_USAGE, DOES_NOT_LOAD, LEFT_OUT}
        self.into = into
        self.environment = environment or (lambda place: {})

    @property
    def whole(self):
        """Results that are there whole or not at all; the files of a spot may come out short, and so may what is
        printed."""
        return [name for name in self.results if name not in ("copies", BESIDE, self.into)]

    def arguments(self, place):
        return [word.format(place=place) if isinstance(word, str) else word for word in self.words]

    def make(self, place, scale=1):
        (place / "in").mkdir(parents=True, exist_ok=True)
        (place / "out").mkdir(exist_ok=True)
        self.material(place / "in", scale)
        earlier(place)


def earlier(place):
    """Results of another day, under names that this run might like."""
    for folder in ("out", "out/Audio"):
        (place / folder).mkdir(exist_ok=True)
        for name in ("take.wav", "take_FadeIn.wav", "Track 1.wav", "s.json"):
            (place / folder / name).write_bytes(b"earlier")
    (place / "in" / "take_Gain.wav").write_bytes(b"earlier")


def cuts(folder, scale=1):
    """Every kind of file that a spot makes: a copy, a conversion, gain, fades at both ends and a crossfade."""
    (folder / "take.wav").write_bytes(wave(9000 * scale, bits=16))
    (folder / "other.wav").write_bytes(wave(7000 * scale, bits=24, channels=2))
    adl = Adl().source(1, "URL:file://localhost/a/take.wav").source(2, "URL:file://localhost/a/other.wav")
    adl.cut(1, length=3, more=f"(Infade) {fade(1)} LIN 0 0 0 (Outfade) {fade(1)} LIN 0 0 0")
    adl.cut(2, dest_in=108002, length=3,
            more=f"(Infade) {fade(1)} LIN 0 0 0 (Outfade) {fade(1)} LIN 0 0 0 (Gain) 1 -6")
    adl.cut(3, source=2, track=2, length=2, more=f"(Infade) {fade(1)} LIN 0 0 0")
    adl.write(folder / "p.adl")


def clean(folder, scale=1):
    """Nothing for `check` to find."""
    m = prepare_material
    for name in ("one.wav", "two.wav"):
        (folder / name).write_bytes(wave(6000 * scale))
    (folder / "p.adl").write_text(m.project(m.index(1, "one.wav") + m.index(2, "two.wav"),
                                            m.cut(1, 1, length=1920) + m.cut(2, 2, tracks="2", length=1920)))


def two_clean(folder, scale=1):
    for name in ("one", "two"):
        (folder / name).mkdir()
        clean(folder / name, scale)


def foreign(folder, scale=1):
    """What prepare links, copies, splits, converts and resamples, and a text that it writes anew."""
    m = prepare_material
    (folder / "Rolls").mkdir()
    (folder / "mono.wav").write_bytes(wave(6000 * scale))
    (folder / "stereo.wav").write_bytes(wave(6000 * scale, channels=2, chunks=m.bext(0)))
    (folder / "Rolls" / "float.wav").write_bytes(wave_of(bytes(4 * 6000 * scale), bits=32, format_tag=3))
    (folder / "rate.wav").write_bytes(wave(6000 * scale, rate=44100))
    sources = [m.index(1, "mono.wav"), m.index(2, "stereo.wav"), m.index(3, "float.wav"), m.index(4, "rate.wav")]
    events = [m.cut(1, 1, length=1920), m.cut(2, 2, channels="1~2", tracks="2~3", length=1920),
              m.cut(3, 3, tracks="4", length=1920), m.cut(4, 4, tracks="5", length=1920)]
    (folder / "p.adl").write_text(m.project("".join(sources), "stray text\n" + "".join(events)))


PREPARE = ["prepare", "{place}/in/p.adl", "--resample"]
SPOT = ["spot", "{place}/in/p.adl"]


def _target(name, *words, results, observes=()):
    return Task(name, [*SPOT, "--native", "--copy-to", "{place}/out/copies", *words], [*results, "copies"],
                observes=observes)


TASKS = [
    Task("info", ["info", "{place}/in/p.adl"], observes=[OUTPUT]),
    Task("info-json", ["info", "{place}/in/p.adl", "--json"], observes=[OUTPUT]),
    Task("check", ["check", "{place}/in/p.adl", "--jobs", "1"], material=clean),
    Task("check-json", ["check", "{place}/in", "--json", "--jobs", "2"], ["new.jsonl"], foreign, fine=LEFT_OUT,
         observes=["new.jsonl"], into="new.jsonl"),
    Task("check-folder", ["check", "{place}/in", "--json", "--jobs", "2"], ["new.jsonl"], two_clean, into="new.jsonl"),
    Task("prepare", [*PREPARE, "--into", "{place}/out/new"], ["new"], foreign, observes=[OUTPUT]),
    Task("prepare-copies", [*PREPARE, "--copy-media", "--into", "{place}/out/deep/new"], ["deep"], foreign,
         observes=[OUTPUT]),
    Task("spot", [*SPOT, "--fades", "--gain", "--copy-to", "{place}/out/copies", "--host", "embedded:{place}/out/new.json"],
         ["copies", "new.json"]),
    # It tells of every attempt; a host that cannot look at a file refuses its region once.
    Task("spot-json", [*SPOT, "--fades", "--gain", "--json", "--copy-to", "{place}/out/copies"], ["copies", "new.jsonl"],
         observes=["new.jsonl"], into="new.jsonl"),
    Task("spot-beside", [*SPOT, "--fades", "--gain", "--depth", "16"], [BESIDE]),
    Task("spot-prepare", [*SPOT, "--resample", "--prepare={place}/out/clean", "--copy-to", "{place}/out/copies"],
         ["clean", "copies"], foreign),
    _target("dawproject", "--dawproject", "{place}/out/new.dawproject", results=["new.dawproject"]),
    _target("dawproject-whole", "--dawproject", "{place}/out/new.dawproject", "--embed-media",
            results=["new.dawproject"]),
    _target("otio", "--otio", "{place}/out/new.otio", results=["new.otio"]),
    _target("bounce", "--bounce", "{place}/out/new.wav", results=["new.wav"]),
    _target("bounce-tracks", "--bounce-tracks", "{place}/out/tracks", results=["tracks"]),
    _target("report", "--report", "{place}/out/new.html", results=["new.html"], observes=["new.html"]),
    Task("report-alone", ["report", "{place}/in/p.adl", "--native", "-o", "{place}/out/new.html"], ["new.html"],
         observes=[OUTPUT, "new.html"]),
    Task("ardour", [*SPOT, "--native", "--only-tracks", "2", "--skip-events", "0,1", "--copy-to", "{place}/out/copies",
                    "--host", "ardour:{place}/out/made"], ["made", "copies"],
         environment=lambda place: {"ARDOUR_LUA": stand_in(place)}),
]
BY_NAME = {task.name: task for task in TASKS}


def stand_in(place):
    """A program in the place of Ardour's that makes a session of one region, as asked."""
    program = pathlib.Path(__file__).resolve().parent / "stand-in-ardour"
    return os.fspath(program)
