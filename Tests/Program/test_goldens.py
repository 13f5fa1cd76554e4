"""Whole projects, told as readable text and compared with what was accepted before.

    VELMORA=PROGRAM python3 test_goldens.py --accept

writes all goldens anew, to be read as a diff. Nothing of the machine gets into them: paths are told relative to the
project's folder, and of an alias only its path.
"""

import difflib
import hashlib
import json
import os
import pathlib
import shutil
import sys
import tempfile
import unittest

from material import decoded, wave
from program import run

HERE = pathlib.Path(__file__).resolve().parent
GOLDENS = HERE / "goldens"
PROJECTS = HERE / "projects"
EXAMPLES = HERE.parent.parent / "Examples"

EVERYTHING = ["--fades", "--gain"]

# Golden: the project, the wave files beside it, and the options of its spots, one after the other in one folder.
CASES = {
    "Storm": (EXAMPLES / "Storm.adl",
              {name: EXAMPLES / name for name in ("ada.wav", "Radio/ben.wav", "room.wav", "gale.wav", "chord.wav",
                                                  "foghorn.wav")},
              [EVERYTHING, ["--copy-to", "copies", "--depth", "16", "--position", "first", *EVERYTHING]]),
    "Ferry": (EXAMPLES / "Ferry" / "Ferry.adl",
              {name: EXAMPLES / "Ferry" / name for name in ("announcer.wav", "bell.wav")},
              [[], ["--session-rate", "48000", "--session-frame-rate", "30", "--position", "start", "--start",
                    "00:00:10:00"]]),
    "Field": (PROJECTS / "Field.adl",
              {"海.wav": wave(24000, bits=16), "bird.wav": wave(24000), "broken.wav": b"RIFF\x04\0\0\0WAVE",
               "float.wav": wave(6400, bits=32, format_tag=3)},
              [EVERYTHING, ["--only-tracks", "3-4", "--copy-to", "copies", *EVERYTHING]]),
    "Fades": (PROJECTS / "Fades.adl", {"low.wav": wave(25600), "high.wav": wave(25600, channels=2)},
              [EVERYTHING, ["--skip-events", "1,7", "--fades", "--depth", "16"]]),
    "Pulled": (PROJECTS / "Pulled.adl",
               {"take.one.wav": wave(44100, bits=16, rate=44100), "stereo.wav": wave(44100, rate=44100, channels=2)},
               [EVERYTHING, ["--position", "offset", "--offset=-00:00:01:00", "--session-frame-rate", "25"]]),
    "Broken": (PROJECTS / "Broken.adl", {"low.wav": wave(100)}, [[]]),
    "CutOff": (PROJECTS / "CutOff.adl", {"low.wav": wave(6400)}, [[]]),
}


class Rendering:
    """Writes one project as text, with the folder that it lies in left out."""

    def __init__(self, folder):
        self.folder = str(folder)
        self.lines = []

    def text(self):
        return "\n".join(self.lines) + "\n"

    def heading(self, title):
        self.lines += ["", f"== {title}"]

    def add(self, line):
        self.lines.append(self.relative(line).rstrip())

    def relative(self, text):
        return text.replace(self.folder + "/", "").replace(self.folder, ".")

    def members(self, value, indent="  "):
        for key, member in value.items():
            self.add(f"{indent}{key}: {compact(member)}")

    def project(self, told):
        self.heading("project")
        self.members({key: told[key] for key in ("path", "folder", "ok", "message", "diagnostics", "failure",
                                                 "firstEvent", "lastEvent", "minTrack", "maxTrack", "trackCount", "totalStart",
                                                 "totalEnd")})
        self.heading("constants")
        self.members(told["constants"])
        self.heading("tree")
        self.sections(told["sections"], "  ")
        for number, sections in enumerate(told["refLists"]):
            self.add(f"  reference list {number}")
            self.sections(sections, "    ")
        for comment in told["comments"]:
            self.add(f"  comment {compact(comment)}")
        self.heading("sources")
        for source in told["sources"]:
            self.add(f"  source {source['index']}")
            self.members({key: source[key] for key in ("f", "t", "file")}, "    ")
        self.heading("events")
        for event in told["events"]:
            self.add(f"  event {event['index']}, entry {event['entryNumber']}: {compact(event['label'])}")
            self.members({key: member for key, member in event.items()
                          if key not in ("index", "entryNumber", "label") and member is not None}, "    ")
        for name, rows in told["tables"].items():
            self.heading(f"table {name}")
            for row in rows:
                self.add("  " + "  ".join(compact(cell) for cell in row.values()))

    def sections(self, sections, indent):
        for section in sections:
            self.add(f"{indent}<{section['name']}>")
            for entry in section["entries"]:
                self.add(f"{indent}  ({entry['label']}) {'  '.join(compact(value) for value in entry['values'])}")

    def spot(self, options, result):
        self.heading(" ".join(["spot", *options]))
        self.add(f"  exit status {result.status}")
        for line in result.lines if result.out else []:
            self.line_of_a_spot(line)
        self.complaints(result)

    def line_of_a_spot(self, line):
        kind = line.pop("kind")
        if kind == "start":
            self.add(f"  start, {line['steps']} steps")
            self.members(line["options"], "    ")
        elif kind == "region":
            self.add(f"  region of event {line['event']}, {line['piece']}, attempt {line['attempt']}, "
                     f"status {line['status']}")
            self.message(line["message"])
        else:
            self.add(f"  {kind} " + ", ".join(f"{key} {compact(member)}" for key, member in line.items()))

    def message(self, message):
        head = [str(message[key]) for key in ("class", "id", "target", "returnId", "transactionId", "sendMode",
                                              "timeout")]
        fields = decoded(message)
        fields["Name"] = fields["Name"].decode("utf-8", "replace")
        self.add(f"    {' '.join(head)}: " + ", ".join(f"{key} {compact(field)}" for key, field in fields.items()))

    def complaints(self, result):
        for line in result.err.split("\n"):
            if line:
                self.add(f"  ! {line}")

    def files(self, folder):
        self.heading("files")
        for path in sorted(folder.rglob("*"), key=str):
            if path.is_file():
                content = path.read_bytes()
                self.add(f"  {hashlib.sha256(content).hexdigest()}  {len(content):7}  {path}")


def compact(value):
    return json.dumps(value, ensure_ascii=False)


def render(name):
    project, waves, spots = CASES[name]
    with tempfile.TemporaryDirectory(prefix="velmora-golden-") as made:
        folder = pathlib.Path(made).resolve()
        for wave_name, content in waves.items():
            target = folder / wave_name
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content.read_bytes() if isinstance(content, pathlib.Path) else content)
        shutil.copy(project, folder / project.name)
        rendering = Rendering(folder)
        told = run("info", project.name, "--json", cwd=folder)
        rendering.add(f"{project.name}, exit status {told.status}")
        rendering.project(told.json)
        rendering.complaints(told)
        for options in spots:
            rendering.spot(options, run("spot", project.name, "--json", *options, cwd=folder))
        rendering.files(folder)
        return rendering.text()


class Goldens(unittest.TestCase):
    def compare(self, name):
        accepted = (GOLDENS / f"{name}.txt").read_text("utf-8")
        now = render(name)
        if now != accepted:
            diff = difflib.unified_diff(accepted.split("\n"), now.split("\n"), f"goldens/{name}.txt", "now", lineterm="")
            self.fail(f"{name} is told otherwise than accepted:\n" + "\n".join(diff))

    def test_nothingOfTheMachineIsInThem(self):
        for path in GOLDENS.glob("*.txt"):
            text = path.read_text("utf-8")
            for word in (tempfile.gettempdir() + "/", str(HERE), os.path.expanduser("~") + "/", "velmora-golden"):
                self.assertNotIn(word, text, path.name)

    def test_everyGoldenHasItsCase(self):
        self.assertEqual({path.stem for path in GOLDENS.glob("*.txt")}, set(CASES))


for case in CASES:
    setattr(Goldens, f"test_{case}", lambda self, case=case: self.compare(case))


if __name__ == "__main__":
    if sys.argv[1:] == ["--accept"]:
        GOLDENS.mkdir(exist_ok=True)
        for case in CASES:
            (GOLDENS / f"{case}.txt").write_text(render(case), "utf-8")
    else:
        unittest.main()
