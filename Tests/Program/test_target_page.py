"""The commands of Docs/Targets.md, as they stand there, with a project whose sources must stay as they are."""

import hashlib
import json
import shutil
import unittest
import xml.etree.ElementTree as xml

from pages import EXAMPLES, Page, bash
from program import SANITIZED, ProgramTest

PAGE = Page("Targets.md")
block_with = PAGE.block_with

SPAN_SAMPLES = 14 * 48000
START_SAMPLES = 3600 * 48000
FIRST_CUT = START_SAMPLES + 50 * 1600 + 400  # 01|00:01:20/0400


@unittest.skipIf(SANITIZED, "it is about the page: the optimised build runs it")
@unittest.skipUnless(all(map(shutil.which, ("ffmpeg", "ffprobe", "jq", "xmllint", "unzip"))),
                     "ffmpeg, jq, xmllint or unzip is not installed")
class Targets(ProgramTest):
    def setUp(self):
        super().setUp()
        for source in EXAMPLES.glob("*.wav"):
            shutil.copy(source, self.folder)
        shutil.copytree(EXAMPLES / "Radio", self.folder / "Radio")
        shutil.copy(EXAMPLES / "Storm.adl", self.folder / "Radio.adl")
        self.before = self.checksums()
        self.left = list(PAGE.blocks)

    def checksums(self):
        return {path: hashlib.sha256(path.read_bytes()).hexdigest()
                for path in (*self.folder.glob("*.wav"), *self.folder.glob("Radio/*"), self.folder / "Radio.adl")}

    def run_block(self, words):
        """Runs the block of the page that has these words, and gives its standard output."""
        block = block_with(words)
        self.left.remove(block)
        done = bash("set -o pipefail\n" + block, self.folder)
        self.assertEqual(done.returncode, 0, done.stderr.decode())
        return done.stdout.decode()

    def test_every_command_does_what_the_page_says(self):
        self.run_block("--host ardour:Session")
        self.assertEqual(sorted(path.name for path in (self.folder / "Stems").iterdir()),
                         [f"Track {number}.wav" for number in range(1, 5)])
        page = (self.folder / "Radio.html").read_text(encoding="utf-8")

        self.assertEqual(json.loads(self.run_block('select(.kind == "target")')), ["otio", 0, None])
        self.run_block("--embed-media")
        self.assertGreater((self.folder / "Whole.dawproject").stat().st_size, 1_000_000)
        self.assertLess((self.folder / "Radio.dawproject").stat().st_size, 100_000)

        self.assertEqual(self.run_block("ls Session/"), "Session/Session.ardour\n")
        told = dict(line.split("=") for line in self.run_block("ffprobe").split())
        self.assertEqual(told, {"sample_rate": "48000", "channels": "4", "duration_ts": str(SPAN_SAMPLES),
                                "TAG:time_reference": str(START_SAMPLES)})
        self.run_block("Radio.flac")
        self.assertGreater((self.folder / "Radio.flac").stat().st_size, 100_000)

        tracks = self.run_block("xmllint --noout").splitlines()
        self.assertEqual([line.split("\t")[0] for line in tracks], [f"Track {number}" for number in range(1, 5)])
        self.assertEqual(xml.parse(self.folder / "Inside/project.xml").getroot().tag, "Project")
        self.assertEqual(self.run_block("xmllint --html"), f"{FIRST_CUT}\n")

        made = set(self.folder.rglob("*"))
        self.run_block("velmora report")
        self.assertEqual(set(self.folder.rglob("*")) - made, {self.folder / "Plan.html"})
        self.assertNotEqual((self.folder / "Plan.html").read_text(encoding="utf-8"), page)

        self.assertEqual(self.left, [], "blocks of the page that nobody runs")
        self.assertEqual({path: self.checksums()[path] for path in self.before}, self.before)


if __name__ == "__main__":
    unittest.main()
