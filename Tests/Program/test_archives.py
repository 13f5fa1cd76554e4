"""The commands of Docs/Archives.md, as they stand there, over a small archive."""

import shutil
import unittest

from material import one_cut, stamp
from pages import Page, bash
from program import ProgramTest, strict_json

PAGE = Page("Archives.md")
block_with = PAGE.block_with


@unittest.skipUnless(shutil.which("parallel") and shutil.which("jq"), "parallel or jq is not installed")
class Archives(ProgramTest):
    def setUp(self):
        super().setUp()
        (self.folder / "Takes").mkdir()
        for number in range(450):
            folder = self.folder / "Archive" / f"reel {number % 7}" / f"it's {number}"
            if number % 3 == 0:
                one_cut(folder, frames=4000, length=1)
            elif number % 3 == 1:
                one_cut(folder, frames=4000, length=1, more=f"\n(Infade) {stamp(1)} LIN _ _ _")
            else:
                folder.mkdir(parents=True)
                (folder / "letter.ADL").write_bytes(b"Dear diary")

    def bash(self, script):
        done = bash(script, self.folder, PARALLEL_HOME=self.folder / "home")
        self.assertNotRegex(done.stderr.decode(), "(?i)error|not found|usage")
        return done

    def lines(self, name="findings.jsonl"):
        return (self.folder / name).read_text(encoding="utf-8").splitlines()

    def test_everyCommandDoesWhatThePageSays(self):
        self.assertEqual(self.bash(block_with("velmora check Archive --media Takes")).returncode, 2)
        expected = self.lines()
        self.assertEqual(len(expected), 450)

        counted = self.bash(block_with("jq -r .verdict")).stdout.decode().split()
        self.assertEqual(counted, ["150", "clean", "150", "loses", "150", "unreadable"])
        frequent = self.bash(block_with('select(.severity != "note")')).stdout.decode().split()
        self.assertEqual(frequent, 2 * ["150", "not-an-adl", "150", "fade-separator"])
        self.bash(block_with("broken.txt"))
        self.assertEqual(len(self.lines("broken.txt")), 300)
        self.assertEqual(self.lines("missing.tsv"), [])
        self.bash(block_with("@csv"))
        self.assertEqual(len(self.lines("findings.csv")), 300)

        self.assertEqual(self.bash(block_with("find ")).returncode, 0)
        self.assertEqual(self.lines(), expected)

        # A break: the last pieces are neither in the log nor on the disk.
        log = self.lines("pieces.log")
        for line in log[2:]:
            (self.folder / "pieces" / line.split("\t")[0]).unlink()
        (self.folder / "pieces.log").write_text("\n".join(log[:2]) + "\n", encoding="utf-8")
        self.assertEqual(self.bash(block_with("--resume-failed --null")).returncode, 0)
        self.assertEqual(self.lines(), expected)

        (self.folder / "findings.jsonl").write_text("\n".join(expected[:100]) + "\n", encoding="utf-8")
        self.bash(block_with("comm -23"))
        self.assertEqual(sorted(self.lines()), sorted(expected))

        self.assertEqual(self.bash(block_with("--sshlogin 2/:")).returncode, 0)
        self.assertEqual(self.lines("spread.jsonl"), expected)
        for line in expected:
            strict_json(line)


if __name__ == "__main__":
    unittest.main()
