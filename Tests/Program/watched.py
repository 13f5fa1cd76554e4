"""Runs the program under strace and tells what it asked of the system."""

import os
import pathlib
import re
import subprocess

from program import Run, environment, PROGRAM

# All calls that name a file, those of the network, and those that start programs.
_CALLS = "%file,%network,%process"
_CHANGES = {"creat", "mkdir", "mkdirat", "mknod", "mknodat", "rename", "renameat", "renameat2", "link", "linkat", "symlink",
            "symlinkat", "unlink", "unlinkat", "rmdir", "chmod", "fchmodat", "fchmodat2", "chown", "lchown", "fchownat",
            "truncate", "utime", "utimes", "utimensat", "futimesat", "setxattr", "lsetxattr", "removexattr", "mount",
            "umount2", "pivot_root", "chroot"}
_READS_ONLY = "O_RDONLY"
_LINE = re.compile(r"^\d+ +(\w+)\((.*)\) += (-?\d+)(?:<(.*)>)?")
_TEXT = re.compile(r'(?:(?:AT_FDCWD|\d+)<([^>]*)>, )?"((?:[^"\\]|\\.)*)"')


class Watched(Run):
    """A run with what it did, not with what the system refused: all paths absolute, links followed for `opened`
    alone."""

    def __init__(self, status, out, err, lines, folder):
        super().__init__(status, out, err)
        self.opened = set()    # what was opened for reading alone, files and folders
        self.changed = set()   # what was created, opened for writing, renamed, removed or otherwise changed
        self.started = set()   # programs
        self.sockets = []      # (address family, whether it was given)
        self.folder = folder
        for line in lines:
            self._take(line)

    def _take(self, line):
        found = _LINE.match(line)
        if not found:
            return
        call, arguments, result, resolved = found.groups()
        failed = int(result) < 0
        if call == "socket":
            self.sockets.append((arguments.split(",")[0], not failed))
        elif failed:
            pass
        elif call in ("execve", "execveat"):
            self.started.update(self._paths(arguments)[:1])
        elif call in ("open", "openat", "openat2"):
            if _READS_ONLY in arguments and "O_CREAT" not in arguments and "O_TRUNC" not in arguments:
                self.opened.add(resolved)
            else:
                self.changed.update(self._paths(arguments))
        elif call in _CHANGES:
            # The first text of a symbolic link is what it holds: no path that is touched.
            self.changed.update(self._paths(arguments)[1 if call.startswith("symlink") else 0:])

    def _paths(self, arguments):
        paths = []
        for folder, text in _TEXT.findall(arguments):
            raw = text.encode("latin-1").decode("unicode_escape").encode("latin-1")
            paths.append(os.path.normpath(os.path.join(folder or self.folder, os.fsdecode(raw))))
        return paths


def _whole_lines(text):
    """Lines of strace, those of calls that another thread interrupted put together."""
    waiting = {}
    for line in text.splitlines():
        process = line.split(" ", 1)[0]
        if line.endswith("<unfinished ...>"):
            waiting[process] = line[:-len("<unfinished ...>")]
        elif " resumed>" in line and process in waiting:
            yield waiting.pop(process).rstrip() + line.split(" resumed>", 1)[1]
        else:
            yield line


def run_watched(*arguments, cwd, seconds=60, **variables):
    """The program from start to end; strace writes its list beside `cwd`."""
    listed = pathlib.Path(cwd).with_name("calls")
    command = ["strace", "-f", "-y", "-qq", "-s", "4096", "-e", f"trace={_CALLS}", "-e", "signal=none", "-o", listed, PROGRAM]
    process = subprocess.run([*command, *map(os.fspath, arguments)], cwd=cwd, env=environment(**variables), timeout=seconds,
                             stdin=subprocess.DEVNULL, capture_output=True, check=False)
    lines = list(_whole_lines(listed.read_text(encoding="latin-1")))
    listed.unlink()
    return Watched(process.returncode, process.stdout, process.stderr, lines, str(cwd))
