"""The table, one line for each limit of a row."""

import datetime
import os
import platform

from bench import middle_half

_FORM = "{:<44} {:<26} {:>7} {:>15} {:>7} {:>15} {:>7}  {}"


def _processor():
    try:
        with open("/proc/cpuinfo", encoding="utf-8") as facts:
            names = [line.split(":", 1)[1].strip() for line in facts if line.startswith("model name")]
        return names[0] if names else platform.processor()
    except OSError:
        return platform.processor()


def head(bench):
    return "\n".join(
        [
            f"{datetime.date.today()}, {_processor()}, {os.cpu_count()} processors, "
            f"{platform.system()} {platform.release()}; load {os.getloadavg()[0]:.1f}; "
            f"median of {bench.rounds} rounds",
            "",
            _FORM.format("work", "beside", "ratio", "middle half", "cpu", "middle half", "target", ""),
        ]
    )


def _spread(values):
    median, low, high = middle_half(values)
    return f"{median:.2f}", f"{low:.2f} to {high:.2f}"


def lines_of(row, results):
    for i, result in enumerate(results):
        wall, wall_spread = _spread(result.wall)
        cpu, cpu_spread = _spread(result.cpu)
        most = result.limit.most
        kept = middle_half(result.wall)[0] <= most
        word = "" if kept else "missed" if middle_half(result.cpu)[0] > most else "kept in cpu time"
        title = row.title if i == 0 else ""
        yield _FORM.format(
            title, result.limit.of, wall, wall_spread, cpu, cpu_spread, f"{most:g}", word
        ).rstrip()
