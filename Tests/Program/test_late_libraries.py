"""Libraries that only some commands need: they are loaded by those commands, and are missed by no other."""

import pathlib
import re
import shutil
import subprocess
import unittest

import material
import prepare_material as m
from program import ALL_DONE, LEFT_OUT, PROGRAM, ProgramTest, environment, run

EXAMPLES = pathlib.Path(__file__).resolve().parents[2] / "Examples"
NAMES = sorted({name.decode() for name in
                re.findall(rb"lib(?:sndfile|soxr|icuuc)\.so\.\d+(?=\0)", pathlib.Path(PROGRAM).read_bytes())})
NEEDED = subprocess.run(["readelf", "-d", PROGRAM], stdout=subprocess.PIPE, check=True, text=True).stdout \
    if shutil.which("readelf") else ""  # fmt: skip


@unittest.skipUnless(len(NAMES) == 3 and "NEEDED" in NEEDED, "all libraries are linked as usual")
class LateLibraries(ProgramTest):
    def setUp(self):
        super().setUp()
        self.broken = self.folder / "broken"
        self.broken.mkdir()
        self.env = environment(LD_LIBRARY_PATH=self.broken)

    def break_libraries(self, *names):
        for name in names:
            (self.broken / name).write_bytes(b"no library at all\n" * 100)

    def test_program_starts_without_them(self):
        for name in NAMES:
            self.assertNotIn(name, NEEDED)
        self.break_libraries(*NAMES)
        for arguments in (["--version"], ["info", EXAMPLES / "Storm.adl"], ["info", "--json", EXAMPLES / "Storm.adl"],
                          ["spot", EXAMPLES / "Storm.adl", "--fades", "--copy-to", self.folder / "Audio", "--quiet"]):
            with self.subTest(arguments):
                without = run(*arguments, env=self.env)
                self.assert_status(without, ALL_DONE)
                self.assertNotEqual(without.out_bytes, b"")
                if arguments[0] != "spot":
                    self.assertEqual(without.out_bytes, run(*arguments).out_bytes)

    def test_missing_library_is_named_where_it_is_needed(self):
        self.break_libraries(*NAMES)
        checked = run("check", EXAMPLES / "Storm.adl", env=self.env)
        self.assert_status(checked, LEFT_OUT)
        self.assertRegex(checked.out, r"libsndfile\.so\.\d+ cannot be loaded")

    def test_missing_resampler_is_named_and_leaves_nothing_half_made(self):
        self.break_libraries(*(name for name in NAMES if "soxr" in name))
        (self.folder / "take.wav").write_bytes(material.wave(88200, rate=44100))
        source = self.folder / "Show.adl"
        source.write_text(m.project(events=m.cut(source_in=4800)))
        prepared = run("prepare", source, "--into", self.folder / "Clean", "--resample", env=self.env)
        self.assert_status(prepared, LEFT_OUT)
        self.assertRegex(prepared.out + prepared.err, r"libsoxr\.so\.\d+ cannot be loaded")


if __name__ == "__main__":
    unittest.main()
