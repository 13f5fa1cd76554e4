"""The table, one line for each limit of a row."""

import datetime
import os
import platform

from bench import middle_half

_TITLES = ["work", "beside", "ratio", "middle half", "cpu", "middle half", "target", ""]
_FORM = "{:<42} {:<32} {:>8} {:>16} {:>8} {:>16} {:>7}  {}"


def _line(columns, markdown):
    return f"| {' | '.join(columns)} |" if markdown else _FORM.format(*columns).rstrip()


def _processor():
    try:
        with open("/proc/cpuinfo", encoding="utf-8") as facts:
            names = [line.split(":", 1)[1].strip() for line in facts if line.startswith("model name")]
        return names[0] if names else platform.processor()
    except OSError:
        return platform.processor()


def head(bench, markdown):
    rule = ["|" + "---|" * len(_TITLES)] if markdown else []
    return "\n".join(
        [
            f"{datetime.date.today()}, {_processor()}, {os.cpu_count()} processors, "
            f"{platform.system()} {platform.release()}; load {os.getloadavg()[0]:.1f}; "
            f"median of {bench.rounds} rounds or more",
            f"sources of {bench.megabytes} MB, {bench.count} pieces, {bench.events} events",
            "",
            _line(_TITLES, markdown),
            *rule,
        ]
    )


def _spread(values, unit):
    median, low, high = middle_half(values)
    return f"{median:.2f}{unit}", f"{low:.2f} to {high:.2f}"


def lines_of(row, results, markdown):
    for i, result in enumerate(results):
        limit = result.limit
        columns = [text for values in result.figures for text in _spread(values, limit.unit)]
        columns += [""] * (4 - len(columns))
        target, word = "", ""
        if limit.most is not None:
            kept = [middle_half(values)[0] <= limit.most for values in result.figures]
            target = f"{limit.most:g}{limit.unit}"
            word = "" if kept[0] else "kept in cpu time" if any(kept) else "missed"
        title = row.title if i == 0 else ""
        yield _line([title, limit.of, *columns, target, word], markdown)
