"""Rows that velmora_bench measures inside one process: growth, edits, messages, names."""

from bench import Limit, Work, absolute, row

FEW = 1000


def per_event(times, name, events):
    return times[f"{name}/{events}"] / events


def growth(title, name, events):
    return Limit(
        f"1,000 events; {title}", 1.3,
        lambda times: per_event(times, name, events) / per_event(times, name, FEW))  # fmt: skip


@row("growth", "time per event, all events")
def grow(bench):
    names = {
        "load": "LoadTree",
        "load, model": "LoadProject",
        "event list": "ListEvents",
        "track box": "EditTrackBox",
        "event box": "EditEventBox",
        "region pass": "PassRegions",
    }
    sizes = f"({FEW}|{bench.events})"
    command = bench.benchmarks(f"({'|'.join(names.values())})/{sizes}$")
    return Work([command], [growth(title, name, bench.events) for title, name in names.items()])


@row("edit", "one box edit in a tenth of the events")
def edit(bench):
    events = max(bench.events // 10, FEW)
    names = {"a track's box": "EditTrackBox", "an event's box": "EditEventBox"}
    command = bench.benchmarks(f"({'|'.join(names.values())})/{events}$")
    return Work(
        [command],
        [
            absolute(title, 1, "ms", lambda times, name=name: times[f"{name}/{events}"])
            for title, name in names.items()
        ],
    )


@row("message", "a region to the embedded host")
def message(bench):
    """Of so few that all is at hand, and of all, for whom the session grows."""
    command = bench.benchmarks(f"PlaceRegions/({FEW}|{bench.events})$")
    return Work(
        [command],
        [
            absolute(title, 1, "us", lambda times, events=events: per_event(times, "PlaceRegions", events))
            for title, events in (("of 1,000", FEW), ("of all", bench.events))
        ],
    )


@row("names", "10,000 names in one folder")
def names(bench):
    """The first name in a folder that holds 10,000 files of earlier runs is found once in a run."""
    command = bench.benchmarks("(CreateEmptyFile|FindNextName|FindFirstName)")
    files = 10000
    return Work(
        [command],
        [
            Limit(
                "as many empty files", 1.0,
                lambda times: times["FindNextName"] / times["CreateEmptyFile"]),
            Limit(
                "the same; folder with as many", 1.0,
                lambda times: times["FindFirstName"] / files / times["CreateEmptyFile"]
                + times["FindNextName"] / times["CreateEmptyFile"]),
        ],
    )  # fmt: skip
