"""The library Tests/Faults/FailingCalls.cpp, which lets one call of the program fail: how it is asked and what it counts.

Its path stands in the environment variable FAILING_CALLS, where the system is one that it knows.
"""

import os
import struct

SHIM = os.environ.get("FAILING_CALLS")


def variables(kind, call, how, count, **more):
    """Environment variables that let the call of a kind fail: by an errno, or in another way that the library knows."""
    return {"LD_PRELOAD": SHIM, "FAILING_KIND": kind, "FAILING_CALL": call, "FAILING_HOW": how, "FAILING_COUNT": count,
            **more}


class Counts:
    """What the library has counted of each kind, and the call that failed. Reading it removes the file."""

    def __init__(self, path):
        data = path.read_bytes() if path.exists() else b""
        path.unlink(missing_ok=True)
        rows = max(len(data) - 1024, 0) // 24
        self.of = {}
        for row in range(rows):
            name, count = struct.unpack_from("<16sq", data, 24 * row)
            self.of[name.rstrip(b"\0").decode()] = count
        self.failed = data[-1024:].split(b"\0")[0].decode("utf-8", "replace")
