"""Other projects use the core: installed and moved, or as a part of themselves."""

import os
import shutil

from stranger import BUILD, EXAMPLES, SOURCE, VERSION, StrangerTest, run

PROJECT = SOURCE / "Tests/Packaging/Stranger"


class CorePackage(StrangerTest):

    def setUp(self):
        super().setUp()
        # Nothing of this checkout is near the stranger's own sources.
        self.project = self.folder / "stranger"
        shutil.copytree(PROJECT, self.project)

    def configure(self, *options):
        command = ["cmake", "-G", "Ninja", "-S", self.project, "-B", self.folder / "build",
                   "-DCMAKE_CXX_COMPILER=" + os.environ["CXX"], *options]
        return run(*command)

    def install(self):
        """The prefix, moved after the install to another place, with a blank in its name."""
        first, moved = self.folder / "first", self.folder / "moved here"
        self.succeed("cmake", "--install", BUILD, "--component", "development", "--prefix", first)
        first.rename(moved)
        return moved

    def build_and_use(self):
        self.succeed("cmake", "--build", self.folder / "build", timeout=500)
        out = self.succeed(self.folder / "build/stranger", EXAMPLES / "Storm.adl", EXAMPLES / "ada.wav")
        self.assertEqual(out.splitlines(),
                         ["loaded 1, events 11", "source valid", "frame at 1600", "name ラジオ"])

    def test_isFoundAfterAMove(self):
        prefix = self.install()
        result = self.configure(f"-DCMAKE_PREFIX_PATH={prefix}", "-DVELMORA_WANTED=" + VERSION,
                                "-DCMAKE_BUILD_TYPE=Release")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.build_and_use()

    def test_isNotFoundInAnotherVersion(self):
        prefix = self.install()
        major, minor, _ = map(int, VERSION.split("."))
        for wanted in (f"{major}.{minor + 1}", f"{major + 1}.0"):
            result = self.configure(f"-DCMAKE_PREFIX_PATH={prefix}", "-DVELMORA_WANTED=" + wanted)
            self.assertNotEqual(result.returncode, 0, wanted)
            self.assertIn("version: " + VERSION, result.stderr)

    def test_isAPartOfAnotherProject(self):
        result = self.configure(f"-DVELMORA_SOURCE={SOURCE}", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.build_and_use()
        # Its programs, tests and install rules are its own.
        built = {path.name for path in (self.folder / "build/velmora").iterdir() if path.is_dir()}
        self.assertEqual(built - {"CMakeFiles"}, {"Source"})
        self.succeed("cmake", "--install", self.folder / "build", "--prefix", self.folder / "first")
        self.assertFalse((self.folder / "first").exists())
