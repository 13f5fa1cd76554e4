"""Texts that nobody would write, wherever a project has one, through every target: what is made parses strictly, and nothing
stands in it raw.

The texts are those of hostile_material.py; what reaches a terminal is tested by test_hostile.py and test_hostile_terminal.py.
"""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unicodedata
import unittest
import xml.etree.ElementTree
import zipfile

from hostile_material import FILE_NAMES, TEXTS
from material import wave
from program import LEFT_OUT, ALL_DONE, SANITIZED, ProgramTest, environment, run, strict_json
from test_hostile import active, strict_targets

# More that a name may be: what ends a folder's name, what is too long for a file's, nothing.
NAMES = TEXTS | {"long": b"n" * 5000, "longUtf8": "\u00e4".encode() * 3000, "slashes": b"a/b//c/", "dot": b".", "twoDots": b"..",
                 "blank": b" ", "percent": b"%n%s%d%", "lua": b"]==] os.exit(7) --[==[", "newlineQuote": b"\"\n')",
                 "commentEnd": b"*/ --> ]]>", "hidden": b".velmora-1-1.part", "star": b"*?[a]{b}~", "option": b"--help"}
_CONTROLS = re.compile("[\x00-\x08\x0b\x0c\x0e-\x1f]")
_FORBIDDEN_IN_XML = re.compile("[\x00-\x08\x0b\x0c\x0e-\x1f\ufffe\uffff]")  # even as references
_LUA = next(filter(None, map(shutil.which, ("ardour9-lua", "ardour8-lua", "ardour7-lua"))), None)


def named_everywhere(text):
    """A project whose project, tracks, sources, cuts, fades and files have that name."""
    quoted = b'"' + text.replace(b'"', b"") + b'"'
    source = b'(Index) 1 (F) "URL:file://localhost/a/t1.wav" QUOTED 00|00:00:00/0000 00|00:00:01/0000 QUOTED N\n'
    cut = b"(Entry) %d (Cut) I 1 1 %d 00|00:00:00/0000 01|00:00:%02d/0000 01|00:00:%02d/0000 QUOTED\n(Rem) NAME QUOTED\n" \
          b"(Infade) 00|00:00;00/0100 QUOTED _ _ _ (Outfade) 00|00:00;00/0100 QUOTED _ _ _ (Gain) _ -6\n"
    cuts = b"".join(cut % (number, number, number * 2, number * 2 + 1) for number in (1, 2, 3))
    return (b"<ADL>\n<PROJECT>\n(PROJ_TITLE) QUOTED\n(PROJ_ORIGINATOR) QUOTED\n(PROJ_NOTES) QUOTED\n</PROJECT>\n"
            b"<TRACK_LIST>\n(Track) 1 QUOTED\n(Track) 2 QUOTED\n(Track) 3 QUOTED\n</TRACK_LIST>\n<SOURCE_INDEX>\n"
            + source + b"</SOURCE_INDEX>\n<EVENT_LIST>\n" + cuts + b"</EVENT_LIST>\n</ADL>\n").replace(b"QUOTED", quoted)


def project_of_files():
    """A project of files with the names of FILE_NAMES, a cut each on four tracks."""
    index, cuts = b"", b""
    for number, name in enumerate(FILE_NAMES, 1):
        index += b'(Index) %d (F) "URL:file://localhost/a/' % number + name + b'" _ 00|00:00:00/0000 00|00:00:01/0000 "n" N\n'
        cuts += b"(Entry) %d (Cut) I %d 1 %d 00|00:00:00/0000 01|00:00:%02d/0000 01|00:00:%02d/0000 _\n" % (
            number, number, number % 4 + 1, number * 2, number * 2 + 1)
    return b"<ADL>\n<SOURCE_INDEX>\n" + index + b"</SOURCE_INDEX>\n<EVENT_LIST>\n" + cuts + b"</EVENT_LIST>\n</ADL>\n"


class TargetsTest(ProgramTest):
    def write(self, text):
        folder = self.folder / "project"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        if text is None:
            for name in FILE_NAMES:
                (folder / os.fsdecode(name)).write_bytes(wave(48000))
            content = project_of_files()
        else:
            (folder / "t1.wav").write_bytes(wave(48000))
            content = named_everywhere(text)
        (folder / "p.adl").write_bytes(content)
        return folder / "p.adl"

    def assert_plain(self, text, what, forbidden=_CONTROLS, references=False, ours=True):
        """No control but those of a text, not even as a reference to one, and no half of a pair. In what we write ourselves
        nothing either that turns directions or that nobody sees, as it is."""
        self.assertIsNone(forbidden.search(text), what)
        if ours:
            self.assertEqual(active(text, "\n\t\r\x7f"), [], what)
        self.assertFalse(any(unicodedata.category(c) == "Cs" for c in text), what)
        if references:
            for number in re.findall(r"&#(x?)([0-9a-fA-F]+);", text):
                code = int(number[1], 16 if number[0] else 10)
                self.assertTrue(code in (9, 10, 13) or code >= 32, f"{what}: &#{''.join(number)};")

    def assert_names(self, folder, before):
        """What was made stands under plain names, and not outside of what was asked for."""
        for path in set(folder.rglob("*")) - before:
            name = os.fsencode(path.name)
            self.assertNotRegex(name, rb"[\x00-\x1f\x7f]", path)
            self.assertLess(len(name), 256)


class Files(TargetsTest):
    def test_everyTextThroughEveryFileTarget(self):
        for name, text in [*NAMES.items(), ("files", None)]:
            with self.subTest(text=name):
                project = self.write(text)
                before = set(self.folder.rglob("*"))
                out = self.folder / "out"
                shutil.rmtree(out, ignore_errors=True)
                out.mkdir()
                kinds = {kind: out / f"made.{kind}" for kind in ("dawproject", "otio", "html", "json", "wav")}
                done = run("spot", project, "--native", "--embed-media", "--dawproject", kinds["dawproject"], "--otio",
                           kinds["otio"], "--report", kinds["html"], "--host", f"embedded:{kinds['json']}", "--bounce",
                           kinds["wav"], "--bounce-tracks", out / "tracks", "--json", seconds=60)
                self.assertIn(done.status, (ALL_DONE, LEFT_OUT), done.err)
                self.assertTrue(done.lines)
                self.assertEqual(strict_targets(self, [kinds[kind] for kind in ("dawproject", "otio", "html", "json")]),
                                 [kinds[kind] for kind in ("dawproject", "otio", "html", "json")])
                self.assert_files(kinds)
                if text is not None:
                    self.assert_names(self.folder, before)
                    self.assertEqual(sorted(path.name for path in (out / "tracks").iterdir()),
                                     ["Track 1.wav", "Track 2.wav", "Track 3.wav"])

    def assert_files(self, kinds):
        with zipfile.ZipFile(kinds["dawproject"]) as archive:
            for entry in archive.namelist():
                self.assertNotIn("..", entry.split("/"))
                self.assertNotRegex(entry, "^/|[\x00-\x1f\x7f]")
            for part in ("project.xml", "metadata.xml"):
                self.assert_plain(archive.read(part).decode("utf-8"), part, _FORBIDDEN_IN_XML, references=True)
                self.witness(["xmllint", "--noout", "--nonet", "-"], archive.read(part))
        page = kinds["html"].read_text("utf-8")
        self.assert_plain(page, "report", references=True)
        self.assertEqual(page.count("<script"), page.count("</script"))
        for kind in ("otio", "json"):
            content = kinds[kind].read_bytes()
            self.assert_plain(content.decode("utf-8"), kind)
            self.witness(["jq", "-e", "."], content)
            for text in _texts(strict_json(content.decode("utf-8"))):
                self.assertFalse(any(unicodedata.category(c) == "Cs" for c in text), text)

    def witness(self, command, content):
        """Another program reads the file too; where it is not installed, Python's readers have been the witness."""
        if shutil.which(command[0]):
            done = subprocess.run(command, input=content, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=60, check=False)
            self.assertEqual(done.returncode, 0, done.stderr[-500:])


def _texts(value):
    """All texts of a JSON value, keys included."""
    if isinstance(value, str):
        yield value
    for child in value if isinstance(value, list) else value.values() if isinstance(value, dict) else ():
        yield from _texts(child)
    if isinstance(value, dict):
        yield from value


@unittest.skipIf(SANITIZED, "the tests in C++ run Ardour in this build")
class Ardour(TargetsTest):
    """A second Ardour loads what the first has made: it counts tracks, regions and what their names are."""

    COUNT = """AudioEngine:set_backend("None (Dummy)", "", "")
local session = load_session(arg[1], arg[2])
if not session then os.exit(1) end
local tracks, regions = 0, 0
local routes = session:get_tracks()
for _, route in ipairs(routes:table()) do
  tracks = tracks + 1
  regions = regions + route:to_track():playlist():region_list():size()
end
print("counted " .. tracks .. " " .. regions)
session:close()
os.exit(0)
"""

    def test_sessionsWithOddNamesLoad(self):
        self.assertIsNotNone(_LUA, "the package ardour is not installed")
        together = b" ".join(TEXTS[name].replace(b"\0", b"").replace(b"\n", b"\x0b") for name in sorted(TEXTS)) + NAMES["lua"]
        # Of the names of files, those that are no Shift-JIS are not found, and those with controls have no place in XML.
        regions_of_files = sum(name.isascii() and not re.search(rb"[\x00-\x1f]", name) for name in FILE_NAMES)
        for name, text, tracks, regions in [("all", together, 3, 3), ("files", None, 4, regions_of_files)]:
            with self.subTest(text=name):
                # The session's own name is odd too, as far as a file's name can be.
                session = self.folder / "s ]]> & <x> 'y'"
                done = run("spot", self.write(text), "--native", "--host", f"ardour:{session}", "--json", seconds=100,
                           env=self.environment())
                target = done.of("target")[0]
                self.assertEqual(target["status"], LEFT_OUT if text is None else ALL_DONE, done.err)
                xml_file = next(session.glob("*.ardour"))
                content = xml_file.read_bytes()
                self.assert_plain(content.decode("utf-8"), "session", _FORBIDDEN_IN_XML, references=True, ours=False)
                xml.etree.ElementTree.fromstring(content)
                script = self.folder / "count.lua"
                script.write_text(self.COUNT)
                loaded = subprocess.run([_LUA, script, session, xml_file.stem], capture_output=True, timeout=100, check=False,
                                        env=self.environment())
                self.assertIn(f"counted {tracks} {regions}", loaded.stdout.decode("utf-8", "replace"),
                              loaded.stderr[-2000:])
                shutil.rmtree(session)

    def environment(self):
        home = pathlib.Path(tempfile.mkdtemp(dir=self.folder))
        return environment(**{name: None for name in os.environ if name.startswith("XDG_")}, HOME=home)


if __name__ == "__main__":
    unittest.main()
