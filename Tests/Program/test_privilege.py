"""What the program opens, writes and starts for a project, which can name any path.

The promises stand in Docs/Reliability.md. strace tells what was asked of the system."""

import os
import re
import shutil
import socket
import subprocess
import unittest

from material import Adl, fade, wave
from program import ALL_DONE, LEFT_OUT, ProgramTest
from watched import run_watched

# What every program on the system reads: libraries, their tables, how many processors there are.
SYSTEM = ("/lib/", "/lib64/", "/usr/lib/", "/usr/share/", "/usr/local/lib/", "/etc/ld.so.cache", "/proc/", "/sys/devices/system/",
          "/dev/null", "/dev/urandom")
SECRET = b"the bytes of somebody else's file"


def can_watch():
    """Whether strace is there and allowed to watch: not every container lets it."""
    return subprocess.run(["strace", "-qq", "-o", "/dev/null", "true"], capture_output=True, check=False).returncode == 0


def below(path, folder):
    return path == str(folder) or path.startswith(f"{folder}/")


@unittest.skipUnless(shutil.which("strace") and can_watch(), "strace cannot watch here")
class Privilege(ProgramTest):
    """A project in `project`, with sources in it, and things all around it that it names or does not name."""

    def setUp(self):
        super().setUp()
        self.project = self.folder / "project"
        self.outside = self.folder / "outside"
        self.home = self.folder / "home"
        self.work = self.folder / "work"
        for folder in (self.project, self.outside, self.home / ".config", self.work):
            folder.mkdir(parents=True)
        (self.project / "take.wav").write_bytes(wave(9000, bits=16))
        (self.project / "deep").mkdir()
        (self.project / "deep" / "below.wav").write_bytes(wave(9000, bits=16))
        (self.outside / "named.wav").write_bytes(wave(9000, bits=16))
        (self.outside / "secret").write_bytes(SECRET)
        (self.outside / "neighbour.wav").write_bytes(wave(9000, bits=16))
        (self.home / ".config" / "private").write_bytes(SECRET)
        self._name_what_is_no_file()
        self.adl = self._write_project()

    def _name_what_is_no_file(self):
        os.mkfifo(self.outside / "fifo.wav")
        (self.outside / "itself.wav").symlink_to("itself.wav")
        (self.outside / "device.wav").symlink_to("/dev/zero")
        (self.outside / "folder.wav").mkdir()
        bound = socket.socket(socket.AF_UNIX)
        self.addCleanup(bound.close)
        bound.bind(str(self.outside / "socket.wav"))

    def _write_project(self):
        # The system looks below the project's folder alone; dots lead out of it.
        kinds = ("fifo", "itself", "device", "folder", "socket")
        names = [self.project / "take.wav", *(f"/project/../outside/{name}" for name in (
            "named.wav", "secret", *(f"{kind}.wav" for kind in kinds))), "/dev/zero", "/nowhere/below.wav"]
        adl = Adl()
        for index, name in enumerate(names, 1):
            adl.source(index, f"URL:file://localhost{name}")
            fades = f"(Infade) {fade(1)} LIN 0 0 0 (Outfade) {fade(1)} LIN 0 0 0 (Gain) 1 -6"
            adl.cut(index, source=index, dest_in=108000 + 10 * index, length=3, more=fades)
        return adl.write(self.project / "p.adl")

    def watched(self, *arguments, status):
        run = run_watched(*arguments, cwd=self.work, HOME=self.home, TMPDIR=self.folder / "tmp")
        self.assert_status(run, status)
        return run

    def assert_kept(self, run, may_change=(), may_list=()):
        """That the run read only what it may, and changed nothing but `may_change`: patterns of whole paths. Folders
        that it `may_list` are those in which something is made whole: a killed run may have left something there."""
        made = re.compile("|".join(may_change) or "(?!)")
        for path in run.opened:
            if path.startswith(SYSTEM) or made.fullmatch(path) or path in may_list:
                continue
            self.assertTrue(below(path, self.project) or path in (f"{self.outside}/named.wav", f"{self.outside}/secret"),
                            f"opened: {path}")
        for path in run.changed:
            self.assertTrue(made.fullmatch(path), f"changed: {path}")
        # strace itself starts the program.
        self.assertEqual(run.started, {os.path.realpath(os.environ["VELMORA"])})
        self.assertEqual([family for family, given in run.sockets if given and family != "AF_UNIX"], [])
        self.assertNotIn(SECRET, run.out_bytes + run.err_bytes)

    def no_file_made_holds_the_secret(self):
        for path in self.folder.rglob("*"):
            if path.is_file() and not path.is_symlink() and path not in (self.outside / "secret", self.home / ".config" / "private"):
                self.assertNotIn(SECRET, path.read_bytes(), path)

    def test_looking_changes_nothing(self):
        for arguments, status in ((("info",), ALL_DONE), (("info", "--json"), ALL_DONE), (("info", "--summary"), ALL_DONE),
                                  (("check",), LEFT_OUT), (("check", "--json"), LEFT_OUT)):
            with self.subTest(arguments=arguments):
                self.assert_kept(self.watched(*arguments, self.adl, status=status))

    def test_a_search_for_media_stays_in_its_folders(self):
        media = self.folder / "media"
        media.mkdir()
        (media / "below.wav").write_bytes(wave(9000, bits=16))
        (media / "pipe.wav").symlink_to(self.outside / "fifo.wav")
        run = self.watched("check", self.adl, "--media", media, status=LEFT_OUT)
        self.assertIn(str(media), run.opened)
        run.opened = {path for path in run.opened if not below(path, media)}
        self.assert_kept(run)

    def test_a_spot_writes_beside_its_sources(self):
        run = self.watched("spot", self.adl, "--fades", "--gain", "--json", status=LEFT_OUT)
        piece = r"_(24bit|Gain|FadeIn|FadeOut|XFade)(\.\d+)?\.wav"
        self.assert_kept(run, (f"{self.project}/take{piece}", f"{self.outside}/named{piece}"))
        self.assertTrue((self.outside / "named_FadeIn.wav").exists())
        self.no_file_made_holds_the_secret()

    def test_a_spot_that_copies_writes_in_the_folder_alone(self):
        run = self.watched("spot", self.adl, "--fades", "--gain", "--copy-to", self.folder / "copies", status=LEFT_OUT)
        self.assert_kept(run, (f"{self.folder}/copies(/.*)?",))
        self.assertTrue((self.folder / "copies" / "named_FadeIn.wav").exists())
        self.no_file_made_holds_the_secret()

    def test_prepare_writes_its_folder_alone(self):
        run = self.watched("prepare", self.adl, "--into", self.folder / "ready", "--copy-media", status=LEFT_OUT)
        self.assert_kept(run, (f"{self.folder}/ready(/.*)?", rf"{self.folder}/\.velmora-\d+-\d+\.part(/.*)?"),
                         may_list=(str(self.folder),))
        self.no_file_made_holds_the_secret()

    def test_targets_write_what_they_are_named(self):
        staged = rf"{self.folder}/\.velmora-[^/]*(/.*)?"
        piece = f"({self.project}/take|{self.outside}/named)" + r"_24bit(\.\d+)?\.wav"
        for option, name in (("--bounce", "b.wav"), ("--bounce-tracks", "tracks"), ("--dawproject", "d.dawproject"),
                             ("--otio", "o.otio"), ("--report", "r.html")):
            with self.subTest(option=option):
                run = self.watched("spot", self.adl, option, self.folder / name, status=LEFT_OUT)
                self.assert_kept(run, (f"{self.folder}/{re.escape(name)}(/.*)?", staged, piece), may_list=(str(self.folder),))
                self.assertTrue((self.folder / name).exists())
        self.no_file_made_holds_the_secret()

    @unittest.skipUnless(any(shutil.which(f"ardour{n}-lua") for n in range(6, 10)), "there is no Ardour")
    def test_ardour_has_a_home_of_its_own_and_no_network(self):
        session = self.folder / "session"
        run = self.watched("spot", self.adl, "--host", f"ardour:{session}", status=LEFT_OUT)
        self.assertTrue(session.is_dir())
        outer = [path for path in run.changed
                 if not re.fullmatch(rf"{self.folder}/(\.velmora-[^/]*|session)(/.*)?|/dev/(null|shm/.*)", path)
                 and not re.fullmatch(f"({self.project}/take|{self.outside}/named)" + r"_24bit(\.\d+)?\.wav", path)]
        self.assertEqual(outer, [])
        self.assertFalse([path for path in run.opened if below(path, self.home)])
        self.assertEqual([family for family, given in run.sockets if given and family not in ("AF_UNIX", "AF_NETLINK")], [])


if __name__ == "__main__":
    unittest.main()
