"""Where targets may go: places that meet, standard output, and what the system itself forbids."""

import os
import resource
import unittest

from material import Adl, one_cut
from program import ALL_DONE, BAD_USAGE, LEFT_OUT, SANITIZED, ProgramTest, run, strict_json

KINDS = {"--dawproject": "dawproject", "--otio": "otio", "--bounce": "bounce", "--bounce-tracks": "bounce-tracks"}


class TargetPlaces(ProgramTest):
    def test_one_place_is_given_twice_whatever_way_leads_there(self):
        adl = one_cut(self.folder)
        (self.folder / "sub").mkdir()
        (self.folder / "link").symlink_to("sub")
        before = self.files()
        for options in (["--bounce", "sub/a", "--otio", "link/a"],
                        ["--bounce", "sub/a", "--otio", "sub/../link/a"],
                        ["--bounce-tracks", "sub/a/", "--otio", "link/a"],
                        ["--host", "embedded:link/a", "--report", "sub/a"],
                        ["--copy-to", "sub/a", "--bounce-tracks", "link/a"],
                        ["--prepare=link/a", "--bounce-tracks", "sub/a"]):
            with self.subTest(" ".join(options)):
                self.assert_bad_usage(run("spot", adl, *options, cwd=self.folder), "given twice")
                self.assertEqual(self.files(), before)

    def test_a_target_may_go_into_the_folder_of_the_copies(self):
        """Also where that folder is new; it stays only where the spot begins."""
        adl = one_cut(self.folder)
        before = self.files()
        refused = run("spot", adl, "--copy-to", "new/copies", "--bounce", "new/copies/a.wav", "--otio", "gone/a.otio", cwd=self.folder)
        self.assert_bad_usage(refused, "gone/a.otio", "No such file or directory")
        self.assertEqual(self.files(), before)
        self.assertFalse((self.folder / "new").exists())
        self.assert_status(run("spot", adl, "--copy-to", "new/copies", "--bounce", "new/copies/a.wav", "--otio", "new/a.otio",
                               cwd=self.folder), ALL_DONE)
        self.assertTrue((self.folder / "new/copies/a.wav").is_file())
        self.assertTrue((self.folder / "new/a.otio").is_file())

    def test_only_a_bounce_goes_to_standard_output(self):
        adl = one_cut(self.folder)
        before = self.files()
        for arguments in (["spot", adl, "--otio", "-"], ["spot", adl, "--dawproject", "-"],
                          ["spot", adl, "--bounce-tracks", "-"], ["spot", adl, "--report", "-"],
                          ["spot", adl, "--host", "ardour:-"], ["report", adl, "-o", "-"]):
            with self.subTest(" ".join(map(str, arguments))):
                self.assert_bad_usage(run(*arguments, cwd=self.folder), "only a bounce", "./-")
                self.assertEqual(self.files(), before)
        self.assert_status(run("spot", adl, "--otio", "./-", cwd=self.folder), ALL_DONE)
        self.assertTrue((self.folder / "-").is_file())

    def test_without_a_cut_each_target_is_told(self):
        adl = Adl().write(self.folder / "p.adl")
        options = [word for option in KINDS for word in (option, self.folder / option)]
        told = run("spot", adl, *options, "--host", f"embedded:{self.folder / 's.json'}",
                   "--report", self.folder / "r.html", "--json")
        self.assert_status(told, LEFT_OUT)
        self.assertEqual([(line["name"], line["status"]) for line in told.of("target")],
                         [(name, 3) for name in KINDS.values()] + [("report", 0)])
        for option in KINDS:
            self.assertIn(f"no region was placed, so {self.folder / option} was not made", told.err)
        self.assertEqual(self.files(), ["p.adl", "r.html"])

    @unittest.skipIf(SANITIZED, "sanitizers write files of their own")
    def test_a_limit_for_files_is_told_as_a_full_disk_is(self):
        """Without a word from its caller about the signal that the system sends there."""
        adl = one_cut(self.folder)
        before = self.files()
        limit = 2000
        for option in ["--bounce", "--bounce-tracks", "--dawproject", "--report"]:
            with self.subTest(option):
                more = ["--embed-media"] if option == "--dawproject" else []
                done = run("spot", adl, option, self.folder / "x", *more,
                           before=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit)))
                self.assert_status(done, LEFT_OUT)
                self.assertIn(f"{self.folder / 'x'} cannot be written: File too large", done.err)
                self.assertEqual(self.files(), before)

    def test_what_is_printed_reaches_no_target_where_standard_output_is_closed(self):
        """The pipe is the first to be opened, and would have the number of standard output."""
        adl = one_cut(self.folder)
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        reader = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, reader)
        done = run("spot", adl, "--host", f"embedded:{pipe}", before=lambda: os.close(1))
        self.assert_status(done, LEFT_OUT)
        self.assertIn("standard output takes no more", done.err)
        self.assertEqual(strict_json(os.read(reader, 65536).decode())["summary"]["regions"], 1)


if __name__ == "__main__":
    unittest.main()
