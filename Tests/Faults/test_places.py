"""Full disks, folders that take nothing, limits, sources that go away while they are read, and a host that does not do
what it should."""

import os
import resource
import shutil
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path

from faults import Fault, Place, Run, picture
from holding import as_somebody, give_away
from program import ALL_DONE, BAD_USAGE, LEFT_OUT, SANITIZED
from tasks import BY_NAME, OUTPUT
from test_faults import why_not

MAKERS = ["prepare", "prepare-copies", "spot", "spot-prepare", "dawproject", "dawproject-whole", "otio", "bounce",
          "bounce-tracks", "report-alone", "ardour"]


class Places(unittest.TestCase):
    def setUp(self):
        held = tempfile.TemporaryDirectory(prefix="velmora-places-")
        self.addCleanup(held.cleanup)
        self.folder = Path(held.name).resolve()
        os.chmod(self.folder, 0o755)

    def place(self, name):
        folder = self.folder / name
        folder.mkdir(exist_ok=True)
        return Place(BY_NAME[name], folder)

    def assert_holds(self, place, run, what):
        """What every run must hold to; then the place is as it was."""
        try:
            place.judge(run)
        except Fault as fault:
            self.fail(f"{place.task.name}, {what}: {fault}")


class FullDisks(Places):
    ROOM_IN_KIB = (0, 4, 8, 12, 20, 32, 48, 64, 96, 128, 192)

    def mount(self, folder):
        folder.mkdir(parents=True)
        done = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=1m", "tmpfs", folder], capture_output=True, text=True)
        if done.returncode != 0:
            self.skipTest(f"no file system of its own: {done.stderr.strip()}")
        self.addCleanup(subprocess.run, ["umount", folder], check=True)

    def test_targets_on_a_full_disk(self):
        for name in MAKERS:
            self.mount(self.folder / name / "place" / "out")
            place = self.place(name)
            filler = place.folder / "out" / "filler"
            room = shutil.disk_usage(filler.parent).free
            short = 0
            for free in self.ROOM_IN_KIB:
                with self.subTest(name, free=free):
                    filler.write_bytes(bytes(max(room - free * 1024, 0)))
                    run = place.run()
                    filler.unlink()
                    short += run.status != ALL_DONE
                    self.assert_holds(place, run, f"{free} KiB free")
            self.assertGreater(short, 0, name)


class FoldersThatTakeNothing(Places):
    def test_targets_in_a_folder_without_rights(self):
        for name in MAKERS:
            with self.subTest(name):
                place = self.place(name)
                place.program, place.preexec = as_somebody(self.folder / name)
                os.chmod(place.folder / "out", 0o555)
                before = picture(place.folder)
                run = place.run()
                self.assertIn(run.status, (BAD_USAGE, LEFT_OUT), run.err)
                self.assertIn("ermission denied", run.err)
                self.assertEqual(picture(place.folder), before)
                os.chmod(place.folder / "out", 0o755)
                give_away(self.folder / name)
                self.assertEqual(place.run().status, ALL_DONE)


class Limits(Places):
    def limited(self, place, which, limit):
        place.preexec = lambda: resource.setrlimit(which, (limit, limit))
        try:
            return place.run()
        finally:
            place.preexec = None

    def test_files_that_may_not_grow(self):
        """The signal that a write beyond the limit sends is not ignored by whoever starts the program."""
        for name in MAKERS:
            place = self.place(name)
            short = 0
            for limit in (0, 30, 700, 3000, 9000, 20000):
                with self.subTest(name, limit=limit):
                    run = self.limited(place, resource.RLIMIT_FSIZE, limit)
                    short += run.status != ALL_DONE
                    self.assert_holds(place, run, f"files of {limit} bytes")
            self.assertGreater(short, 0, name)

    @unittest.skipIf(SANITIZED, "the sanitizer opens files of its own")
    def test_few_descriptors(self):
        """With three the program cannot even be loaded."""
        for name in [*MAKERS, "check", "check-json", "info"]:
            place = self.place(name)
            for limit in (*range(4, 16), 18, 24):
                with self.subTest(name, limit=limit):
                    self.assert_holds(place, self.limited(place, resource.RLIMIT_NOFILE, limit), f"{limit} descriptors")


class SourcesThatGoAway(Places):
    def setUp(self):
        super().setUp()
        if why_not():
            self.skipTest(why_not())

    def test_a_source_that_shrinks_or_goes_at_each_read(self):
        """What comes of it depends on the moment: it is whole, or told, or what comes of a source that was as short from
        the start. Nothing else is touched."""
        for name, sources in (("spot", ("take.wav", "other.wav")), ("prepare", ("stereo.wav", "rate.wav")),
                              ("bounce", ("take.wav",)), ("check", ("one.wav",))):
            place = self.place(name)
            calls = place.calls()["read"]
            for source in sources:
                path = place.folder / "in" / source
                held, facts = path.read_bytes(), path.stat()

                def put_back():
                    path.write_bytes(held)
                    os.utime(path, ns=(facts.st_atime_ns, facts.st_mtime_ns))

                os.truncate(path, 60)  # as the library does it
                place.run()
                fine = [place.made, place.results()]
                put_back()
                place.restore()
                for how in ("shrink", "remove"):
                    for call in range(1, calls + 1, max(calls // 40, 1)):
                        with self.subTest(name, source=source, how=how, call=call):
                            run = place.disturbed("read", call, f"{how} {path}")
                            put_back()
                            self.assertIn(run.status, place.task.statuses, run.err)
                            if run.status == ALL_DONE and place.results() not in fine:
                                self.assertTrue(place.news(run.err, place.undisturbed.err) or (
                                    OUTPUT in place.task.observes and run.out != place.undisturbed.out), "not told")
                            place.assert_whole()
                            place.restore()


class Hosts(Places):
    def spot(self, place, fault):
        process = subprocess.run([place.program, *place.arguments], stdin=subprocess.DEVNULL, capture_output=True,
                                 cwd=place.folder, env=place.environment(STAND_IN=fault), timeout=100)
        return Run(process.returncode, process.stdout, process.stderr.decode("utf-8", "replace"))

    def test_a_host_that_refuses_dies_or_floods(self):
        """One that never answers is ended after 60 s: the rooms' own tests do that with another limit."""
        place = self.place("ardour")
        for fault, cause in (("refuses", "exit status 5; it said last: no such thing here"),
                             ("dies", "crashed (signal 11"), ("dies-late", "crashed (signal 9"),
                             ("floods", "exit status 6")):
            with self.subTest(fault):
                run = self.spot(place, fault)
                self.assertEqual(run.status, LEFT_OUT)
                self.assertIn(cause, run.err)
                self.assertIn(str(place.folder / "out" / "made"), run.err)
                self.assertEqual([name for name in place.assert_kept() if not name.startswith("out/copies")], [])
                place.restore()

    def test_a_spot_that_is_killed_takes_the_host_with_it(self):
        place = self.place("ardour")
        process = subprocess.Popen([place.program, *place.arguments], stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, cwd=place.folder,
                                   env=place.environment(STAND_IN="waits"))
        made = place.folder / "out"
        deadline = 2000
        while not list(made.rglob("waits")) and deadline:
            deadline -= 1
            signal.sigtimedwait([], 0.01)
        self.assertTrue(deadline, "the host has not begun")
        number = int(next(made.rglob("waits")).read_text())
        process.send_signal(signal.SIGKILL)
        process.wait(60)
        for _ in range(1000):
            state = Path(f"/proc/{number}/stat")
            if not state.exists() or ") Z " in state.read_text():
                break
            signal.sigtimedwait([], 0.01)
        else:
            self.fail("the host goes on")
        place.remove_results()
        self.assertEqual(place.run().status, ALL_DONE)
        self.assertEqual([name for name in place.assert_kept() if ".part" in name], [])


if __name__ == "__main__":
    unittest.main()
