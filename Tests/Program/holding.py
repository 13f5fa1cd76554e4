"""A project whose spot makes every kind of file, and ways to hold the names that the files would have."""

import hashlib
import os
import shutil
import socket
import stat
from collections import Counter

from material import Adl, fade, wave
from program import ALL_DONE, PROGRAM, ProgramTest, run

NOBODY = 65534


def project(folder):
    """Two cuts on one 16-bit source that cross over, with fades at both ends and a gain: each kind of file that a
    spot makes. Its path."""
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "take.wav").write_bytes(wave(9000, bits=16))
    adl = Adl().source(1, "URL:file://localhost/a/take.wav")
    adl.cut(1, length=3, more=f"(Infade) {fade(1)} LIN 0 0 0 (Outfade) {fade(1)} LIN 0 0 0")
    adl.cut(2, dest_in=108002, length=3,
            more=f"(Infade) {fade(1)} LIN 0 0 0 (Outfade) {fade(1)} LIN 0 0 0 (Gain) 1 -6")
    return adl.write(folder / "p.adl")


# What one run makes: by stem, in the order of the numbers.
COPIED = ["take.wav", "take.1.wav", "take_Gain.wav", "take_FadeIn.wav", "take_FadeOut.wav", "take_FadeOut.1.wav",
          "take_XFade.wav"]
BESIDE = ["take_24bit.wav", "take_24bit.1.wav", *COPIED[2:]]
MADE = len(COPIED)


def picture(folder):
    """Every name below a folder with what it holds."""
    held = {}
    for path in folder.rglob("*"):
        mode = path.lstat().st_mode
        if stat.S_ISLNK(mode):
            what = os.readlink(path)
        elif stat.S_ISREG(mode):
            what = hashlib.sha256(path.read_bytes()).hexdigest()
        else:
            what = ""
        held[str(path.relative_to(folder))] = (stat.S_IFMT(mode), stat.S_IMODE(mode), what)
    return held


def kinds_of_holders(outside):
    """By name: a function that holds a path in that way. What lies at `outside` must not change either."""

    def write_only(path):
        path.write_bytes(b"write-only")
        path.chmod(0o222)

    def no_rights(path):
        path.write_bytes(b"locked")
        path.chmod(0)

    def bound(path):
        server = socket.socket(socket.AF_UNIX)
        # A socket's path is short; the folder's descriptor stands for the folder.
        descriptor = os.open(path.parent, os.O_RDONLY)
        server.bind(f"/proc/self/fd/{descriptor}/{path.name}")
        os.close(descriptor)
        server.close()

    return {
        "a file": lambda path: path.write_bytes(b"precious"),
        "an empty file": lambda path: path.write_bytes(b""),
        "a write-only file": write_only,
        "a file without rights": no_rights,
        "a link to a file": lambda path: path.symlink_to(outside),
        "a dangling link": lambda path: path.symlink_to(outside.with_name("nowhere")),
        "a link to itself": lambda path: path.symlink_to(path.name),
        "a link to a folder": lambda path: path.symlink_to(outside.parent),
        "a folder": lambda path: path.mkdir(),
        "a pipe": lambda path: os.mkfifo(path),
        "a socket": bound,
    }


def remove(path):
    if path.is_dir() and not path.is_symlink():
        path.rmdir()
    else:
        path.unlink()


def give_away(folder):
    """Lets somebody who is not root own everything below a folder."""
    if os.geteuid() == 0:
        for path in [folder, *folder.rglob("*")]:
            os.chown(path, NOBODY, NOBODY, follow_symlinks=False)


def as_somebody(folder):
    """A program, and what to call before it, such that the rights of files count: for root they do not."""
    if os.geteuid() != 0:
        return PROGRAM, None

    def drop_root():
        os.setgroups([])
        os.setgid(NOBODY)
        os.setuid(NOBODY)

    reachable = shutil.copy(PROGRAM, folder / "velmora")
    give_away(folder)
    return reachable, drop_root


class Spot(ProgramTest):
    def setUp(self):
        super().setUp()
        self.adl = project(self.folder / "project")
        self.outside = self.folder / "elsewhere" / "outside.wav"
        self.outside.parent.mkdir()
        self.outside.write_bytes(b"outside")
        self.audio = self.folder / "audio"
        self.audio.mkdir()

    def spot(self, *more, into="audio", **how):
        arguments = ["spot", self.adl, "--fades", "--gain", "--json", *more]
        if into:
            arguments += ["--copy-to", self.folder / into]
        return run(*arguments, **how)

    def sounds(self, names, folder="audio"):
        """What files hold, whatever their numbers."""
        return Counter(hashlib.sha256((self.folder / folder / name).read_bytes()).hexdigest() for name in names)

    def assert_kept(self, before, why):
        after = picture(self.folder)
        for name, held in before.items():
            self.assertEqual(after.get(name), held, f"{why}: {name}")
        return sorted(set(after) - set(before))

    def undisturbed(self):
        """The files of a run into a folder of its own, and its regions."""
        done = self.spot(into="quiet")
        self.assert_status(done, ALL_DONE)
        names = sorted(path.name for path in (self.folder / "quiet").iterdir())
        self.assertEqual(names, sorted(COPIED))
        return self.sounds(names, "quiet"), placed(done)


def placed(done):
    """The regions that arrived, but for the names of their files."""
    return [(line["event"], line["piece"],
             [(part["key"], part["hex"]) for part in line["message"]["parameters"][1:] + line["message"]["region"][:2]])
            for line in done.of("region") if line["status"] == 0]
