"""The Debian package as its user meets it: installed, used from /usr/bin, opened from a file manager, removed.

Installing takes root, and a machine that does not have the package already. Elsewhere the package is unpacked into a
folder and used from there; the first line of the output says which.
"""

import contextlib
import os
import pathlib
import shutil
import signal
import socket
import sys
import time
import unittest

from pictures import Picture
from stranger import BUILD, EXAMPLES, PROGRAMS, UNDER_XVFB, VERSION, StrangerTest, run

PACKAGE = "velmora"
PATIENCE_SECONDS = 120  # for others that install something on this machine

# What the package is for; the pictures of bundle and theme are not told one by one.
EXPECTED_FILES = """
    usr/bin/velmora usr/bin/velmora-desktop
    usr/lib/velmora/Velmora.bundle/Velmora usr/lib/velmora/Velmora.bundle/Resources/Velmora_View.xib
    usr/lib/velmora/VelmoraDesktop.theme/Resources/Info-gnustep.plist
    usr/share/applications/velmora.desktop usr/share/mime/packages/velmora.xml
    usr/share/icons/hicolor/scalable/apps/velmora.svg usr/share/icons/hicolor/48x48/apps/velmora.png
    usr/share/man/man1/velmora.1.gz usr/share/man/man1/velmora-desktop.1.gz
    usr/share/bash-completion/completions/velmora usr/share/bash-completion/completions/velmora-desktop
    usr/share/zsh/vendor-completions/_velmora usr/share/zsh/vendor-completions/_velmora-desktop
    usr/share/fish/vendor_completions.d/velmora.fish usr/share/fish/vendor_completions.d/velmora-desktop.fish
    usr/share/doc/velmora/README.md usr/share/doc/velmora/CHANGELOG.md.gz usr/share/doc/velmora/copyright
    usr/share/doc/velmora/Docs/Archives.md usr/share/doc/velmora/Docs/Targets.md
""".split()


def is_installed():
    return run("dpkg-query", "-W", "-f", "${db:Status-Status}", PACKAGE).stdout not in ("", "not-installed")


@contextlib.contextmanager
def uninterrupted():
    """What is interrupted in here is so at its end: a dpkg that is stopped leaves other packages half configured."""
    asked = []
    usual = {number: signal.signal(number, lambda *_: asked.append(True)) for number in (signal.SIGINT, signal.SIGTERM)}
    try:
        yield
    finally:
        for number, handler in usual.items():
            signal.signal(number, handler)
    if asked:
        raise KeyboardInterrupt


def dpkg(*words):
    """dpkg does not wait for others that hold its lock, so this does."""
    end = time.monotonic() + PATIENCE_SECONDS
    while True:
        with uninterrupted():
            # A session of its own: Ctrl-C in the terminal does not reach it either.
            result = run("dpkg", *words, start_new_session=True, env={**os.environ, "DEBIAN_FRONTEND": "noninteractive"})
        if result.returncode == 0 or "lock" not in result.stderr or time.monotonic() > end:
            return result
        time.sleep(1)


def names_on_this_machine():
    """All that has the name of the program or of its file type where packages put things, caches included."""
    return set(run("find", "/usr", "/etc", "/opt", "/var/lib", "/var/cache", "-xdev",
                   "(", "-iname", "*velmora*", "-o", "-iname", "*aes31*", ")", "-print").stdout.splitlines())


@contextlib.contextmanager
def only_one_at_a_time():
    """Two of these tests on one machine take turns. The name is free again as soon as its process has ended."""
    with socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as turn:
        end = time.monotonic() + PATIENCE_SECONDS
        while True:
            try:
                turn.bind("\0velmora-package-test")
                break
            except OSError:
                if time.monotonic() > end:
                    raise
                time.sleep(0.2)
        yield


@unittest.skipUnless(shutil.which("dpkg-deb"), "no Debian system")
class DebianPackage(StrangerTest):

    def make(self):
        """Packs what is built, away from the build folder."""
        out = self.folder / "out"
        self.succeed("cpack", "-G", "DEB", "--config", BUILD / "CPackConfig.cmake", "-B", out, cwd=BUILD)
        packages = list(out.glob("*.deb"))
        self.assertEqual(len(packages), 1, packages)
        return packages[0]

    def contents(self, package):
        """The paths in the package, folders with a slash at their end."""
        paths = []
        for line in self.succeed("dpkg-deb", "-c", package).splitlines():
            mode, owner, _, _, _, path = line.split(None, 5)
            self.assertEqual(owner, "root/root", line)
            self.assertIn(mode, ("drwxr-xr-x", "-rw-r--r--", "-rwxr-xr-x"), line)
            paths.append(path.removeprefix("./"))
        return paths

    def bring(self, package, end):
        """Installs or unpacks it; gives the path of the file system's root, which takes a slash after it."""
        if os.geteuid() == 0 and not is_installed():
            print("The package is installed by dpkg.", flush=True)
            end.callback(lambda: is_installed() and dpkg("--purge", PACKAGE))
            # Some machines are set up to leave man pages and documents out.
            result = dpkg("--path-include=/usr/*", "--install", package)
            self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
            return ""
        print("The package is unpacked into a folder: " +
              ("it is installed on this machine." if is_installed() else "installing takes root."), flush=True)
        root = self.folder / "root"
        self.succeed("dpkg-deb", "-x", package, root)
        # Here no trigger of dpkg does it.
        self.succeed("update-mime-database", root / "usr/share/mime")
        self.succeed("update-desktop-database", root / "usr/share/applications")
        return str(root)

    def test_isInstalledUsedAndRemoved(self):
        # SIGTERM ends the test as Ctrl-C does: what is installed then is removed first.
        signal.signal(signal.SIGTERM, signal.default_int_handler)
        with contextlib.ExitStack() as end:
            end.enter_context(only_one_at_a_time())
            self.install_use_and_remove(end)

    def install_use_and_remove(self, end):
        package = self.make()
        contents = self.contents(package)
        with self.subTest("contents"):
            self.check_contents(package, contents)
        with self.subTest("lintian"):
            self.check_lintian(package)
        paths_before = {path: os.path.lexists("/" + path) for path in contents}
        names_before = names_on_this_machine()
        self.root = self.bring(package, end)
        self.environment = {
            "PATH": f"{self.root}/usr/bin:/usr/bin:/bin", "HOME": str(self.folder), "LC_ALL": "C.UTF-8",
            "XDG_DATA_DIRS": f"{self.root}/usr/share:/usr/share"}
        shutil.copytree(EXAMPLES, self.folder / "projects")
        for use in (self.use_info, self.use_spot, self.use_targets, self.use_window, self.use_man_pages, self.use_completions,
                    self.use_file_type, self.use_file_manager):
            with self.subTest(use.__name__):
                use()
        if not self.root:
            result = dpkg("--purge", PACKAGE)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertFalse(is_installed())
        self.assertEqual({path: os.path.lexists("/" + path) for path in contents}, paths_before)
        self.assertEqual(names_on_this_machine() - names_before, set())

    def check_contents(self, package, contents):
        self.assertEqual([path for path in EXPECTED_FILES if path not in contents], [])
        self.assertEqual([path for path in contents if "include" in path or path.endswith((".a", ".cmake"))], [])
        fields = [self.succeed("dpkg-deb", "-f", package, name).strip()
                  for name in ("Package", "Version", "Maintainer", "Depends", "Suggests")]
        self.assertEqual(fields[:3], [PACKAGE, VERSION, "Velmora <velmora@localhost>"])
        for needed in ("libc6 ", "libstdc++6 ", "libgnustep-gui", "gnustep-back", "fonts-dejavu-core",
                       "libsndfile1", "libsoxr0", "libicu"):  # the last three are loaded when needed
            self.assertIn(needed, fields[3])
        # Small libraries are a part of the programs.
        for needless in ("libpugixml", "libminizip", "libnettle"):
            self.assertNotIn(needless, fields[3])
        self.assertEqual(fields[4], "ardour")

    def check_lintian(self, package):
        if shutil.which("lintian"):
            result = run("lintian", "--allow-root", "--fail-on", "error,warning", package)
            self.assertEqual(result.returncode, 0, result.stdout + result.stderr)

    def use(self, *command, **options):
        return self.succeed(*command, cwd=self.folder / "projects", env=self.environment, **options)

    def use_info(self):
        self.assertEqual(shutil.which("velmora", path=self.environment["PATH"]), f"{self.root}/usr/bin/velmora")
        self.assertEqual(self.use("velmora", "--version"), f"velmora {VERSION}\n")
        self.assertIn("ada.wav", self.use("velmora", "info", "Storm.adl"))

    def use_spot(self):
        out = self.use("velmora", "spot", "Storm.adl", "--fades", "--gain", "--copy-to", "Audio")
        self.assertIn("23 regions placed on 4 tracks, 24 files made.", out)
        self.assertEqual(len(list((self.folder / "projects/Audio").iterdir())), 24)

    def use_targets(self):
        """Each of them is made, also where nothing of the sources is."""
        targets = {"--dawproject": "Storm.dawproject", "--otio": "Storm.otio", "--bounce": "Storm.wav",
                   "--bounce-tracks": "Stems", "--report": "Storm.html"}
        if shutil.which("ardour7-lua") or shutil.which("ardour8-lua") or shutil.which("ardour9-lua"):
            targets["--host"] = "ardour:Session"
        self.use("velmora", "spot", "Storm.adl", "--native", "--copy-to", "Native",
                 *(word for option in targets.items() for word in option))
        for target in targets.values():
            self.assertTrue((self.folder / "projects" / target.removeprefix("ardour:")).exists(), target)

    def under_xvfb(self, *command):
        return self.use(sys.executable, "-B", UNDER_XVFB, "--timeout", "60", *command)

    def use_window(self):
        """View and theme are found: there is a window, and its ticks are the theme's."""
        drawn = self.folder / "window.png"
        self.under_xvfb("velmora-desktop", "Storm.adl", "--snapshot", drawn)
        window = Picture(drawn, most_rows=300)
        tick = Picture(pathlib.Path(f"{self.root}/usr/lib/velmora/VelmoraDesktop.theme/Resources/ThemeImages/common_SwitchOn.png"))
        self.assertGreater(min(window.width, window.height), 600)
        self.assertTrue(window.shows(tick.cut(3, 3, 10, 10)), "no tick of the theme in the window")

    def use_man_pages(self):
        for name in PROGRAMS:
            page = f"{self.root}/usr/share/man/man1/{name}.1.gz"
            result = run("man", "--warnings", "-E", "UTF-8", "-l", page, env=self.environment)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            if not self.root:
                self.assertEqual(self.use("man", "-w", name).strip(), page)

    def use_completions(self):
        for name in PROGRAMS:
            file = f"{self.root}/usr/share/bash-completion/completions/{name}"
            self.assertIn(name, self.use("bash", "--norc", "-c", f"source {file} && complete -p {name}"))
        if shutil.which("zsh") and not self.root:
            script = "autoload -Uz compinit; compinit -D; print $_comps[velmora] $_comps[velmora-desktop]"
            self.assertEqual(self.use("zsh", "-f", "-c", script), "_velmora _velmora-desktop\n")

    def use_file_type(self):
        projects = self.folder / "projects"
        shutil.copy(projects / "Storm.adl", projects / "known-by-its-first-bytes")
        for name in ("Storm.adl", "known-by-its-first-bytes"):
            self.assertEqual(self.use("xdg-mime", "query", "filetype", name), "application/x-aes31-adl\n")
        self.assertEqual(self.use("xdg-mime", "query", "default", "application/x-aes31-adl"), "velmora.desktop\n")

    def use_file_manager(self):
        """What a double click does."""
        self.under_xvfb("bash", "-c", """
            xdg-open Storm.adl &
            for ((tries = 0; tries < 300; ++tries)); do
              xdotool search --name '^Storm.adl .* Velmora$' 2>/dev/null && exit
              sleep 0.1
            done
            exit 1
        """)


if __name__ == "__main__":
    unittest.main()
