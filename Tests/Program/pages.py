"""The commands of a page in Docs/, as they stand there."""

import os
import pathlib
import re
import subprocess

from program import PROGRAM, environment

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
DOCS = ROOT / "Docs"
EXAMPLES = ROOT / "Examples"


class Page:
    def __init__(self, name):
        self.text = (DOCS / name).read_text(encoding="utf-8")
        self.blocks = re.findall(r"^```sh\n(.*?)^```", self.text, re.MULTILINE | re.DOTALL)

    def block_with(self, words):
        found = [block for block in self.blocks if words in block]
        assert len(found) == 1, f"{words} stands in {len(found)} blocks"
        return found[0]


def bash(script, folder, **variables):
    """Runs a script in a folder, in which `velmora` is the program under test."""
    path = os.path.dirname(PROGRAM) + ":" + os.environ["PATH"]
    return subprocess.run(["bash", "-c", script], cwd=folder, capture_output=True, timeout=300,
                          check=False, env=environment(PATH=path, HOME=folder, **variables))
