"""A command line that the program does not understand: the message names what is wrong, and nothing is made."""

import unittest

from material import one_cut
from program import BAD_USAGE, ProgramTest, run

# arguments; words of which the message has each
ROWS = [
    (["frob"], ["frob"]),
    (["frob", "p.adl"], ["frob"]),
    (["--frob"], ["--frob"]),
    (["-x"], ["-x"]),
    (["p.adl"], ["p.adl"]),
    (["INFO", "p.adl"], ["INFO"]),
    (["infos", "p.adl"], ["infos"]),
    (["frob", "info", "p.adl"], ["frob"]),
    (["--frob", "info", "p.adl"], ["--frob"]),
    ([""], []),
    ([], []),
    (["info"], ["project"]),
    (["info", "--json"], ["project"]),
    (["info", "p.adl", "q.adl"], ["q.adl"]),
    (["info", "p.adl", "--frob"], ["--frob"]),
    (["info", "p.adl", "--fades"], ["--fades"]),
    (["spot"], ["project"]),
    (["spot", "p.adl", "q.adl"], ["q.adl"]),
    (["spot", "p.adl", "--host", "frob"], ["--host", "frob", "embedded"]),
    (["spot", "p.adl", "--host", "frob:s.json"], ["--host", "frob", "embedded"]),
    (["spot", "p.adl", "--host", ""], ["--host"]),
    (["spot", "p.adl", "--host", "embedded:"], ["--host", "embedded:"]),
    (["spot", "p.adl", "--host", "embedded:no/such/folder/s.json"], ["no/such/folder"]),
    (["spot", "p.adl", "--host"], ["--host"]),
    (["spot", "p.adl", "--position", "frob"], ["--position", "frob", "project", "first"]),
    (["spot", "p.adl", "--depth", "17"], ["--depth", "17", "16", "24"]),
    (["spot", "p.adl", "--depth"], ["--depth"]),
    (["spot", "p.adl", "--offset", "frob"], ["--offset", "frob"]),
    (["spot", "p.adl", "--start", "1:2"], ["--start", "1:2"]),
    (["spot", "p.adl", "--session-rate", "fast"], ["--session-rate", "fast"]),
    (["spot", "p.adl", "--session-rate", "nan"], ["--session-rate", "nan"]),
    (["spot", "p.adl", "--session-frame-rate", "26"], ["--session-frame-rate", "26"]),
    (["check", "p.adl", "--encoding", "Klingon"], ["--encoding", "Klingon"]),
    (["check", "p.adl", "--encoding", ""], ["--encoding"]),
    (["spot", "p.adl", "--skip-tracks", "3-1"], ["--skip-tracks", "3-1"]),
    (["spot", "p.adl", "--only-events", "x"], ["--only-events", "x"]),
    (["spot", "p.adl", "--skip-events", "1", "--only-events", "2"], ["--skip-events", "--only-events"]),
    (["spot", "p.adl", "--skip-tracks", "1", "--only-tracks", "2"], ["--skip-tracks", "--only-tracks"]),
    (["spot", "p.adl", "--copy-to", "p.adl"], ["p.adl"]),
    (["spot", "p.adl", "--copy-to", "p.adl/below"], ["p.adl"]),
    (["spot", "p.adl", "--copy-to"], ["--copy-to"]),
    (["spot", "p.adl", "--copy-to", "new", "--host", "frob"], ["frob"]),
    (["spot", "p.adl", "--copy-to", "new", "--depth", "17"], ["17"]),
    (["spot", "p.adl", "--copy-to", "new", "--host", "embedded:take.wav"], ["take.wav"]),
    (["spot", "p.adl", "--frob"], ["--frob"]),
]


class UsageErrors(ProgramTest):
    def test_the_message_names_what_is_wrong(self):
        one_cut(self.folder)
        before = {path: path.read_bytes() for path in self.folder.iterdir()}
        for arguments, words in ROWS:
            with self.subTest(" ".join(arguments)):
                self.assert_bad_usage(run(*arguments, cwd=self.folder), *words)
                self.assertEqual({path: path.read_bytes() for path in self.folder.iterdir()}, before)


if __name__ == "__main__":
    unittest.main()
