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
        "model": "FillModel",
        "load, model": "LoadProject",
        "event list": "ListEvents",
        "track box": "EditTrackBox",
        "event box": "EditEventBox",
        "region pass": "PassRegions",
    }
    commands = [bench.benchmark(f"{name}/{n}") for name in names.values() for n in (FEW, bench.events)]
    return Work(commands, [growth(title, name, bench.events) for title, name in names.items()])


@row("edit", "one box edit in a tenth of the events")
def edit(bench):
    events = max(bench.events // 10, FEW)
    names = {"a track's box": "EditTrackBox", "an event's box": "EditEventBox"}
    return Work(
        [bench.benchmark(f"{name}/{events}") for name in names.values()],
        [
            absolute(title, 1, "ms", lambda times, name=name: times[f"{name}/{events}"])
            for title, name in names.items()
        ],
    )


@row("message", "a region to the embedded host")
def message(bench):
    """Of so few that all is at hand, and of all, for whom the session grows. In a folder of its own: other
    benchmarks give the file further names, and the alias of such a file has to be made for each region."""
    own = {"VELMORA_BENCH_FOLDER": bench.path("message")}
    return Work(
        [bench.benchmark(f"PlaceRegions/{regions}", environment=own) for regions in (FEW, bench.events)],
        [
            absolute(title, 1, "us", lambda times, events=events: per_event(times, "PlaceRegions", events))
            for title, events in (("of 1,000", FEW), ("of all", bench.events))
        ],
    )


@row("names", "10,000 names in one folder")
def names(bench):
    """The first name in a folder that holds 10,000 files of earlier runs is found once in a run."""
    files = 10000
    commands = [
        bench.benchmark(name, folders=[bench.path(name)], many=True,
                        environment={"VELMORA_BENCH_FOLDER": bench.path(name)})
        for name in ("CreateEmptyFile", "FindNextName", "FindFirstName")
    ]  # fmt: skip

    def next_name(times):
        return times["FindNextName"] / times["CreateEmptyFile"]

    def first_name(times):
        return times["FindFirstName"] / files / times["CreateEmptyFile"]

    return Work(
        commands,
        [
            Limit("as many empty files", 1.0, next_name),
            Limit("the same; folder with as many", 1.0, lambda times: first_name(times) + next_name(times)),
        ],
    )
