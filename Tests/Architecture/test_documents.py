"""What Docs/Architecture.md names is there: tests, files and folders. What the table of targets has, Docs/Targets.md tells."""

import re
import unittest
from pathlib import Path

import includes

ROOT = Path(__file__).resolve().parent.parent.parent
ARCHITECTURE = (ROOT / "Docs" / "Architecture.md").read_text(encoding="utf-8")


def test_cases():
    """All test cases of the project, as ctest and the test programs name them."""
    names = set()
    for source in (ROOT / "Tests").rglob("*.cpp"):
        for suite, case in re.findall(r"^TEST(?:_F|_P)?\((\w+),\s*(\w+)", source.read_text(encoding="utf-8"), re.M):
            names |= {f"{suite}.{case}", f"{suite}.*"}
    scenarios = (ROOT / "Tests" / "View" / "CMakeLists.txt").read_text(encoding="utf-8")
    names |= {f"view.{name}" for name in re.findall(r"[a-z]+(?:-[a-z]+)*", scenarios)}
    return names


def targets():
    """How each row of the table of targets is asked for, and each host that takes one, from their own rooms."""
    for row in sorted((ROOT / "Host").glob("*/*Kind.cpp")):
        text = row.read_text(encoding="utf-8")
        yield from re.findall(r'^    \.option = "(--[\w-]+)"', text, re.M)
        for host in re.findall(r'^const (?:host::)?HostKind \w+ = \{\n    \.name = "([\w-]+)"', text, re.M):
            yield f"--host {host}"


class Targets(unittest.TestCase):
    def test_every_target_is_told(self):
        told = re.findall(r"^\| `(--(?:host )?[\w-]+)", (ROOT / "Docs" / "Targets.md").read_text(encoding="utf-8"), re.M)
        self.assertIn("--host embedded", told)
        self.assertEqual(sorted(told), sorted(targets()))


class Architecture(unittest.TestCase):
    def test_every_kept_behaviour_has_its_test(self):
        rows = [row for row in re.findall(r"^\|(.*)\|$", ARCHITECTURE, re.M) if row.count("|") == 2]
        named = [re.fullmatch(r" `([\w.*-]+)` ", row.split("|")[2]) for row in rows]
        named = [match.group(1) for match in named if match]
        self.assertGreater(len(named), 30)
        self.assertEqual([name for name in named if name not in test_cases()], [])

    def test_every_room_is_told(self):
        rooms = {room for room in includes.MAY_USE if not room.startswith("Host/Desktop/")} | {"Host/Desktop"}
        told = set(re.findall(r"`((?:Source|Host)/\w+)`", "".join(re.findall(r"^\| `.*?\|", ARCHITECTURE, re.M))))
        self.assertEqual(sorted(rooms - told), [])

    def test_every_place_is_there(self):
        places = re.findall(r"`((?:Source|Host|Tests|Docs)/[\w./-]*)`", ARCHITECTURE)
        self.assertGreater(len(places), 12)
        self.assertEqual([place for place in places if not (ROOT / place).exists()], [])


if __name__ == "__main__":
    unittest.main()
