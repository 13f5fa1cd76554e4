"""Rows about projects of many cuts: what `velmora info` prints, and how soon."""

import itertools
import os
import struct
import subprocess
import sys

from bench import ROOT, Command, Disagreement, Limit, Work, absolute, against, memory_against, row
from stamps import RATE, fade_length, stamp

SOURCES = 300
SOURCE_FRAMES = 30 * 60 * RATE
TRACKS = 24
MOST_JSON_ROWS = 100000


def write_sources(folder):
    """Wave files of half an hour that take no room: holes in place of audio."""
    os.makedirs(folder, exist_ok=True)
    size = SOURCE_FRAMES * 2
    fields = (16, 1, 1, RATE, RATE * 2, 2, 16)
    head = b"RIFF" + struct.pack("<I", 36 + size) + b"WAVE"
    head += b"fmt " + struct.pack("<IHHIIHH", *fields) + b"data" + struct.pack("<I", size)
    for number in range(1, SOURCES + 1):
        with open(os.path.join(folder, f"Take{number:04}.wav"), "wb") as file:
            file.write(head)
            file.truncate(len(head) + size)


def cut_text(number):
    """Cuts in turn on all tracks, each after the one before it on its track; one in four with fades, one
    in two with a name."""
    length = 1920 * (5 + number % 40) + 48 * (number % 7)
    place = number // TRACKS * 1920 * 46 + number % TRACKS * 960
    source_in = number * 4801 % (SOURCE_FRAMES - length)
    text = (
        f"(Entry) {number + 1:06}\n"
        f" (Cut) I {number % SOURCES + 1:04} 1 {number % TRACKS + 1} {stamp(source_in)} {stamp(place)} "
        f"{stamp(place + length)} R\n"
    )
    if number % 4 == 0:
        text += f" (Infade) {fade_length(480)} LIN _ _ _\n (Outfade) {fade_length(960)} LIN _ _ _\n"
    if number % 2 == 0:
        text += f' (Rem) NAME "Scene {number % 90 + 1} Take {number % 7 + 1}"\n'
    return text


def write_project(bench, cuts):
    """Some 130 bytes for each cut, and audio for all, so that nothing is wrong with it."""
    folder = bench.path("project")
    path = os.path.join(folder, f"cuts{cuts}.adl")
    if os.path.exists(path):
        return path
    write_sources(folder)
    with open(path + ".part", "w", encoding="ascii") as file:
        file.write('<ADL>\n<VERSION>\n(ADL_ID) "0001"\n(VER_ADL_VERSION) 01.02\n</VERSION>\n')
        file.write('<PROJECT>\n(PROJ_TITLE) "Many cuts"\n</PROJECT>\n<SEQUENCE>\n(SEQ_SAMPLE_RATE) S48000\n')
        file.write(f"(SEQ_FRAME_RATE) 25\n(SEQ_DEST_START) {stamp(0)}\n</SEQUENCE>\n<SOURCE_INDEX>\n")
        for number in range(1, SOURCES + 1):
            file.write(f'(Index) {number:04}\n(F) "URL:file://localhost/Take{number:04}.wav" _ ')
            file.write(f'{stamp(0)} {stamp(SOURCE_FRAMES)} "Take{number:04}" _\n')
        file.write("</SOURCE_INDEX>\n<EVENT_LIST>\n")
        file.writelines(map(cut_text, range(cuts)))
        file.write("</EVENT_LIST>\n</ADL>\n")
    os.rename(path + ".part", path)
    return path


def expect(what, found, wanted):
    if found != wanted:
        raise Disagreement(f"{what}: {found}, and not {wanted}")


def rows_below(path, title):
    """How many rows a table of `velmora info` has: indented lines below its head."""
    with open(path, encoding="utf-8") as file:
        for line in file:
            if line.startswith(title):
                break
        next(file)
        return sum(1 for _ in itertools.takewhile(lambda line: line.startswith("  "), file))


def counts_in(path):
    """What `velmora info --summary` counts, by title."""
    counts = {}
    with open(path, encoding="utf-8") as file:
        for words in filter(None, map(str.split, file)):
            if len(words) > 1 and words[0] in ("Sources", "Tracks", "Events"):
                counts[words[0]] = int(words[1])
    return counts


def counting_words(project):
    return Command("wc -w", ["wc", "-w", project])


@row("info", "info of all events")
def info(bench):
    """Into a file, since the rows have to arrive somewhere; and to nowhere, for what the printing costs."""
    project = write_project(bench, bench.events)
    printed = bench.path("info.txt")
    argv = [bench.velmora, "info", project]
    rows = Command("velmora", argv, output=printed, makes=[printed])
    nowhere = Command("to nowhere", argv)
    counted = bench.path("summary.txt")
    summary = Command("summary", [*argv, "--summary"], output=counted, makes=[counted])
    words = counting_words(project)

    def agree():
        expect("sources", rows_below(printed, "Sources"), SOURCES)
        expect("tracks", rows_below(printed, "Tracks"), TRACKS)
        expect("events", rows_below(printed, "Events"), bench.events)
        counts = {"Sources": SOURCES, "Tracks": TRACKS, "Events": bench.events}
        expect("the summary", counts_in(counted), counts)

    limits = [
        against("wc -w", 1.5),
        Limit("wc -w; rows to /dev/null", 1.5, lambda times: times[nowhere.name] / times[words.name]),
        Limit("wc -w; --summary", 1.0, lambda times: times[summary.name] / times[words.name]),
        memory_against(project, "memory; the file's size", 4.0),
    ]
    return Work([rows, nowhere, summary, words], limits, agree)


@row("json", "info --json of a tenth of them")
def info_json(bench):
    cuts = max(bench.events // 10, 1)
    project = write_project(bench, cuts)
    printed = bench.path("info.json")
    told = Command(
        "velmora", [bench.velmora, "info", "--json", project], output=printed, makes=[printed])  # fmt: skip

    # Read in a process of its own: one that is started later begins with the memory of whoever starts it,
    # and 500 MB of ours would count as its own.
    lengths = ("import json, sys; f = json.load(open(sys.argv[1], encoding='utf-8'));"
               "print(len(f['events']), len(f['sources']), len(f['tables']['EventListTable']))")  # fmt: skip

    def agree():
        counts = subprocess.run([sys.executable, "-c", lengths, printed], stdout=subprocess.PIPE, check=True).stdout
        for what, count, wanted in zip(("events", "sources", "rows"), counts.split(),
                                       (cuts, SOURCES, min(cuts, MOST_JSON_ROWS))):  # fmt: skip
            expect(what, int(count), wanted)

    limits = [against("wc -w", 2.0), memory_against(project, "memory; the file's size", None)]
    return Work([told, counting_words(project)], limits, agree)


@row("start", "start of info to its first output")
def start(bench):
    starts = 40
    example = os.path.join(ROOT, "Examples", "Storm.adl")
    shown = Command("velmora", [bench.velmora, "info", example], starts=starts)
    nothing = Command("/bin/true", ["/bin/true"], starts=starts)
    limit = absolute("over /bin/true", 2, "ms", lambda times: times[shown.name] - times[nothing.name])
    return Work([shown, nothing], [limit])
