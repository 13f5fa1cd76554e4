"""The text of an ADL from its lines, and folders that hold a project with its media."""

import hashlib
import pathlib

# Where sources say that they were, in the form that the system searches by: the last part is tried in the ADL's folder.
PLACE = "URL:file://localhost/proj/"


def adl(sources, events, *, rate="48000", frame_rate="25", sections="", after="", end="\n"):
    """The lines of a whole project as bytes. `sections` stand before the source index, `after` behind the events."""
    lines = ["<ADL>",
             "<VERSION>", '(ADL_ID) "06,64,43,52,01,01,01,04,01,02,03,04"', "(VER_ADL_VERSION) 01.01", "</VERSION>",
             "<PROJECT>", '(PROJ_TITLE) "Reel one"', "</PROJECT>",
             "<SEQUENCE>", f"(SEQ_SAMPLE_RATE) {rate}", f"(SEQ_FRAME_RATE) {frame_rate}", "</SEQUENCE>",
             *([sections] if sections else []),
             "<SOURCE_INDEX>", *sources, "</SOURCE_INDEX>",
             "<EVENT_LIST>", *events, "</EVENT_LIST>",
             *([after] if after else []),
             "</ADL>", ""]
    return "\n".join(lines).replace("\n", end).encode("utf-8")


def source(index, name, start="00.00:00:00/0000", length="00.00:00:12/0960", reference="_", place=PLACE):
    return f'(Index) {index} (F) "{place}{name}" {reference} {start} {length} "_" N'


def cut(entry, source_index, track, source_in, dest_in, dest_out, status="_", channels="1"):
    return f"(Entry) {entry}\n(Cut) I {source_index} {channels} {track} {source_in} {dest_in} {dest_out} {status}"


def lay_out(folder, text, files, name="p.adl"):
    """Writes the ADL and its files, which are named by paths relative to it. The ADL's path."""
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    for path, content in files.items():
        target = folder / path
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(content)
    project = folder / name
    project.write_bytes(text)
    return project


def checksums(folder):
    """Of every file below a folder, its times with it: what must stay as it was."""
    return {str(path.relative_to(folder)): (hashlib.sha256(path.read_bytes()).hexdigest(), path.stat().st_mtime_ns)
            for path in sorted(pathlib.Path(folder).rglob("*")) if path.is_file()}
