"""The window, on a display that nobody sees. It is measured inside, by a scenario of the view's tests."""

import json
import os
import sys

from bench import ROOT, Command, Used, Work, absolute, build, row


def figures_of(output):
    """The last line is JSON: seconds by the clock, and as ..._processor those of the processor."""
    with open(output, encoding="utf-8") as file:
        told = json.loads(file.read().splitlines()[-1])
    return {
        name: Used(wall, told[name + "_processor"])
        for name, wall in told.items()
        if not name.endswith("_processor")
    }


@row("window", "the window", asked=True)
def window(bench):
    tests = build("view_tests", "Tests/View/view_tests", preset="view")
    amounts = {"CUTS": bench.events // 10, "REGIONS": bench.count, "FRAMES": 200, "STARTS": 8}
    scenario = Command(
        "scenario",
        [sys.executable, "-B", os.path.join(ROOT, "Tests/View/under-xvfb"), "--timeout", "600", tests,
         "measures-window"],
        output=bench.path("window.txt"), parts=figures_of,
        environment={f"VELMORA_SPEED_{name}": str(max(1, amount)) for name, amount in amounts.items()},
    )  # fmt: skip
    rows = [
        ("up", "up", 250),
        ("a tenth of the events loaded", "load", 300),
        ("a frame of the events", "events_frame", 4),
        ("a frame of the events, by jumps", "events_jump", 4),
        ("a frame of the timeline, all of it", "timeline_all", 4),
        ("the slowest answer", "slowest_answer", 16),
    ]
    return Work(
        [scenario],
        [
            absolute(title, most, "ms", lambda times, name=name: times[name])
            for title, name, most in rows
        ],
    )
