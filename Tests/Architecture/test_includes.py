"""The sources keep the rules of includes.py, and includes.py sees those who do not."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent


def check(root):
    run = subprocess.run([sys.executable, "-B", HERE / "includes.py", root], check=False,
                         capture_output=True, text=True)
    return run.returncode, run.stdout


class OurSources(unittest.TestCase):
    def test_arrows_run_one_way(self):
        self.assertEqual(check(HERE.parent.parent), (0, ""))


class WrongArrows(unittest.TestCase):
    """Small trees in which one include is wrong, or none."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.write("Source/Base/Text.h", "")
        self.write("Source/ADL/Project.h", '#include "Base/Text.h"\n#include <sys/stat.h>\n')
        self.write("Host/Session/Session.h", '#include "Source/ADL/Project.h"\n')

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def assert_fault(self, fault):
        self.assertEqual(check(self.root), (1, fault + "\n"))

    def test_right_arrows_pass(self):
        self.assertEqual(check(self.root), (0, ""))

    def test_arrow_against_the_list(self):
        self.write("Source/Base/Bad.cpp", '\n#include "ADL/Project.h"\n')
        self.assert_fault("Source/Base/Bad.cpp:2: Source/Base may not use Source/ADL: Source/ADL/Project.h")

    def test_source_that_uses_host(self):
        self.write("Source/ADL/Bad.cpp", '#include "Session/Session.h"\n')
        self.assert_fault("Source/ADL/Bad.cpp:1: Source/ADL may not use Host/Session: Host/Session/Session.h")

    def test_room_of_the_desktop_that_uses_a_later_one(self):
        self.write("Host/Desktop/Shell/Window.h", '#include "Desktop/Theme/Palette.h"\n')
        self.write("Host/Desktop/Theme/Palette.h", '#include "Desktop/Shell/Window.h"\n')
        self.assert_fault("Host/Desktop/Theme/Palette.h:1: Host/Desktop/Theme may not use "
                          "Host/Desktop/Shell: Host/Desktop/Shell/Window.h")

    def test_way_round_by_a_relative_path(self):
        self.write("Source/Base/Bad.mm", '#  import "../ADL/Project.h"\n')
        self.assert_fault("Source/Base/Bad.mm:1: Source/Base may not use Source/ADL: Source/ADL/Project.h")

    def test_library_in_the_core(self):
        self.write("Source/Base/Bad.cpp", "#include <nlohmann/json.hpp>\n")
        self.assert_fault("Source/Base/Bad.cpp:1: Source/Base may use the standard libraries only, "
                          "and uses <nlohmann/json.hpp>")

    def test_file_that_is_not_there(self):
        self.write("Host/Session/Bad.cpp", '#include "Source/ADL/Gone.h"\n')
        self.assert_fault('Host/Session/Bad.cpp:1: there is no "Source/ADL/Gone.h"')

    def test_room_that_nobody_listed(self):
        self.write("Host/Attic/Bad.cpp", "#include <string>\n")
        self.assert_fault("Host/Attic/Bad.cpp:1: Host/Attic is not in the list of rooms")

    def test_tree_without_sources(self):
        with tempfile.TemporaryDirectory() as empty:
            self.assertEqual(check(empty)[0], 1)


if __name__ == "__main__":
    unittest.main()
