"""Runs the program velmora as a person or a script would.

The program's path stands in the environment variable VELMORA.
"""

import json
import os
import pathlib
import resource
import signal
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["VELMORA"]

# A shell lets its background jobs ignore Ctrl-C, and the programs that these start would go on ignoring it.
if signal.getsignal(signal.SIGINT) == signal.SIG_IGN:
    signal.signal(signal.SIGINT, signal.default_int_handler)

ALL_DONE = 0
BAD_USAGE = 1
DOES_NOT_LOAD = 2
LEFT_OUT = 3
INTERRUPTED = 130


def _is_sanitized():
    """Sanitizers reserve terabytes of addresses and start slowly."""
    program = pathlib.Path(PROGRAM).read_bytes()
    return b"__asan_init" in program or b"__tsan_init" in program


SANITIZED = _is_sanitized()
SLOWNESS = 6 if SANITIZED else 1
MEMORY_LIMIT_BYTES = 1 << 30


class Run:
    """One run of the program: its exit status and what it wrote."""

    def __init__(self, status, out, err):
        self.status = status
        self.out_bytes = out
        self.err_bytes = err

    @property
    def out(self):
        return self.out_bytes.decode("utf-8")

    @property
    def err(self):
        # The reader of projects reports labels in the bytes of the file.
        return self.err_bytes.decode("utf-8", "replace")

    @property
    def json(self):
        """Standard output as one JSON object; whatever JSON does not know is refused."""
        return strict_json(self.out)

    @property
    def lines(self):
        """Standard output as JSON Lines."""
        if self.out and not self.out.endswith("\n"):
            raise AssertionError(f"the last line is not ended: {self.out[-80:]!r}")
        return [strict_json(line) for line in self.out.split("\n")[:-1]]

    def of(self, kind):
        return [line for line in self.lines if line["kind"] == kind]


class DuplicateKey(ValueError):
    pass


def strict_json(text):
    def refuse(constant):
        raise ValueError(f"{constant} is no JSON")

    def unique(pairs):
        keys = [key for key, _ in pairs]
        if len(set(keys)) != len(keys):
            raise DuplicateKey(str(keys))
        return dict(pairs)

    return json.loads(text, parse_constant=refuse, object_pairs_hook=unique)


def limit_memory():
    if not SANITIZED:
        resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT_BYTES, MEMORY_LIMIT_BYTES))


def limit_file_size(limit):
    """Files that pass the limit fail to be written, as on a full disk. The signal that comes with it ends a program
    that does not ignore it."""

    def apply():
        signal.signal(signal.SIGXFSZ, signal.SIG_DFL)
        resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))

    return apply


def environment(**changes):
    """The caller's environment less what changes a terminal program's output; None takes a variable away."""
    env = {key: value for key, value in os.environ.items() if key not in ("NO_COLOR", "TERM")}
    env["LC_ALL"] = "C.UTF-8"
    env.update({key: str(value) for key, value in changes.items() if value is not None})
    return env


def start(*arguments, cwd=None, before=None, env=None, stdout=subprocess.PIPE, stderr=subprocess.PIPE):
    return subprocess.Popen(
        [PROGRAM, *[os.fspath(argument) for argument in arguments]],
        stdin=subprocess.DEVNULL, stdout=stdout, stderr=stderr,
        cwd=cwd, env=env or environment(), preexec_fn=before)


def run(*arguments, seconds=20, **how):
    """Runs to the end; a program that hangs is an error."""
    process = start(*arguments, **how)
    try:
        out, err = process.communicate(timeout=seconds * SLOWNESS)
    except subprocess.TimeoutExpired:
        process.kill()
        process.communicate()
        raise AssertionError(f"still running after {seconds * SLOWNESS} s: {arguments}") from None
    return Run(process.returncode, out or b"", err or b"")


class ProgramTest(unittest.TestCase):
    """A test with a folder of its own, which goes when the test ends."""

    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="velmora-test-")
        self.addCleanup(folder.cleanup)
        # Without symbolic links in it, so that paths that the program reports compare equal.
        self.folder = pathlib.Path(folder.name).resolve()

    def assert_status(self, run_of_it, status):
        if run_of_it.status != status:
            self.fail(f"exit status {run_of_it.status}, not {status}\n"
                      f"standard output: {run_of_it.out_bytes[-2000:]!r}\n"
                      f"standard error: {run_of_it.err_bytes[-2000:]!r}")

    def assert_bad_usage(self, run_of_it, *words):
        """Exit status 1, a message with these words that points to the help, no output and no file made."""
        self.assert_status(run_of_it, BAD_USAGE)
        self.assertEqual(run_of_it.out_bytes, b"")
        self.assertRegex(run_of_it.err, r"\Avelmora: ")
        self.assertIn("--help", run_of_it.err)
        for word in words:
            self.assertIn(word, run_of_it.err)

    def files(self):
        return sorted(str(path.relative_to(self.folder)) for path in self.folder.rglob("*"))
