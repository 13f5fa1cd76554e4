"""Runs the program with its streams on pseudo terminals."""

import os
import pty
import select

from program import SLOWNESS, environment, start


def on_terminal(*arguments, out=True, err=True, before_end=None, before=None, **variables):
    """Runs with the streams named on pseudo terminals. Exit status, and what each stream got."""
    streams, masters, slaves = {}, {}, []
    for name, is_terminal in (("stdout", out), ("stderr", err)):
        if is_terminal:
            master, slave = pty.openpty()
        else:
            master, slave = os.pipe()
        masters[master] = bytearray()
        streams[name] = (master, slave)
        slaves.append(slave)
    variables.setdefault("TERM", "xterm-256color")
    process = start(*arguments, env=environment(**variables), before=before,
                    stdout=streams["stdout"][1], stderr=streams["stderr"][1])
    for slave in slaves:
        os.close(slave)
    _drain(masters, process, before_end)
    status = process.wait(timeout=20 * SLOWNESS)
    for master in masters:
        os.close(master)
    return status, bytes(masters[streams["stdout"][0]]), bytes(masters[streams["stderr"][0]])


def _drain(masters, process, before_end):
    still_open = set(masters)
    while still_open:
        ready, _, _ = select.select(list(still_open), [], [], 30 * SLOWNESS)
        if not ready:
            process.kill()
            raise AssertionError("nothing more comes, and the program does not end")
        for master in ready:
            try:
                data = os.read(master, 65536)
            except OSError:  # a terminal whose other side is closed
                data = b""
            if not data:
                still_open.remove(master)
            masters[master] += data
            if before_end is not None:
                before_end(process, masters)
