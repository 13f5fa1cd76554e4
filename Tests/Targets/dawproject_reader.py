"""A DAWproject read by the format's own rules into the regions that it says are played, with every rule that it breaks told."""

import dataclasses
import math
import xml.etree.ElementTree
import zipfile
from fractions import Fraction

import playing
from rules import require

# Attributes that the lanes and clips of audio may have; another would be one that this reader passes over unheard.
CLIP_ATTRIBUTES = {"time", "duration", "contentTimeUnit", "playStart", "fadeTimeUnit", "fadeInTime", "fadeOutTime", "name", "comment",
                   "color", "enable"}


@dataclasses.dataclass
class Clip:
    name: str
    region: playing.Region
    crossfade: int  # samples before the clip's own time in which it fades in over what is there
    time: int
    duration: int
    file: dict


@dataclasses.dataclass
class Document:
    title: str
    tracks: list  # of (name, channels, clips), in order
    markers: list  # of (sample, name)
    tempo: float
    members: dict  # of the archive, by name: bytes


def samples(text, rate):
    """A time in seconds as whole samples. It is meant to lie on one, but for what a double cannot tell."""
    exact = Fraction(float(text)) * rate
    require(math.isfinite(float(text)), f"time {text}")
    whole = round(exact)
    # Half a unit in the last place of the seconds, and the text's own rounding.
    require(abs(exact - whole) <= Fraction(math.ulp(float(text))) * rate, f"{text} s is no sample at {rate} Hz: {float(exact)}")
    return whole


def read(path, rate):
    with zipfile.ZipFile(path) as archive:
        require(archive.testzip() is None, "a damaged member")
        names = archive.namelist()
        require(len(set(names)) == len(names), f"members of one name: {names}")
        for name in names:
            require(not name.startswith("/") and ".." not in name.split("/") and "\\" not in name, f"a member named {name}")
        members = {name: archive.read(name) for name in names if not name.lower().endswith(".wav")}
        sizes = {info.filename: info.file_size for info in archive.infolist()}
    require("project.xml" in members and "metadata.xml" in members, f"members {names}")
    root = xml.etree.ElementTree.fromstring(members["project.xml"])
    meta = xml.etree.ElementTree.fromstring(members["metadata.xml"])
    require(root.tag == "Project" and root.get("version") == "1.0", "no Project of version 1.0")
    require(meta.tag == "MetaData", "no MetaData")
    check_ids(root)
    tempo = float(root.find("Transport/Tempo").get("value"))
    require(root.find("Transport/Tempo").get("unit") == "bpm" and tempo > 0, "a tempo that is none")
    return Document(meta.findtext("Title"), list(tracks_of(root, rate, sizes)), list(markers_of(root, rate)), tempo, members)


def check_ids(root):
    ids = [element.get("id") for element in root.iter() if element.get("id") is not None]
    require(len(set(ids)) == len(ids), f"ids given twice: {ids}")
    for element in root.iter():
        for attribute in ("track", "destination", "reference", "parameter"):
            if element.get(attribute) is not None:
                require(element.get(attribute) in ids, f"{attribute} {element.get(attribute)} is nowhere")


def markers_of(root, rate):
    for marker in root.findall("Arrangement/Markers/Marker"):
        yield samples(marker.get("time"), rate), marker.get("name")


def tracks_of(root, rate, sizes):
    lanes = root.findall("Arrangement/Lanes")
    require(len(lanes) == 1 and lanes[0].get("timeUnit") == "seconds", "the arrangement has one timeline in seconds")
    by_track = {}
    for lane in lanes[0]:
        clips = [lane] if lane.tag == "Clips" else lane.findall("Clips")
        require(len(clips) == 1 and len(lane.findall("*")) == (len(clips[0]) if lane.tag == "Clips" else 1), "one Clips in a lane")
        track = lane.get("track") or clips[0].get("track")
        require(track and track not in by_track, f"a second lane of {track}")
        require((clips[0].get("timeUnit") or lane.get("timeUnit")) == "seconds", "a lane in other units")
        by_track[track] = clips[0]
    tracks = root.findall("Structure/Track")
    require([track.get("id") for track in tracks] == list(by_track), "lanes in another order than their tracks")
    for number, track in enumerate(tracks):
        require(track.get("contentType") == "audio", "a track of audio")
        width = int(track.find("Channel").get("audioChannels"))
        clips = [clip_of(clip, number, rate, sizes) for clip in by_track[track.get("id")]]
        for before, after in zip(clips, clips[1:]):
            require(before.time + before.duration <= after.time, f"{before.name} and {after.name} overlap on {track.get('name')}")
        for clip in clips:
            require(int(clip.file["channels"]) <= width, f"{clip.name} is wider than its track")
        yield track.get("name"), width, clips


def clip_of(clip, track, rate, sizes):
    require(clip.tag == "Clip" and set(clip.keys()) <= CLIP_ATTRIBUTES, f"{clip.tag} {clip.attrib}")
    require(clip.get("contentTimeUnit") == "seconds" and clip.get("enable", "true") == "true", f"{clip.attrib}")
    audio = clip.findall(".//Audio")
    require(len(audio) == 1, f"{len(audio)} files in one clip")
    time, duration = samples(clip.get("time"), rate), samples(clip.get("duration"), rate)
    fade_in, fade_out = fades_of(clip, rate)
    crossfade = max(0, -fade_in)
    require(duration > 0, f"a clip of {duration} samples")
    require(max(0, fade_in) + fade_out <= duration, f"fades longer than their clip: {clip.attrib}")
    start = samples(clip.get("playStart", "0"), rate)
    file = file_of(audio[0], rate, sizes)
    region = playing.Region(0, track, clip.get("name"), file["path"], time - crossfade, duration + crossfade, start - crossfade,
                            max(fade_in, crossfade), fade_out, factor=gain_of(clip))
    return Clip(clip.get("name"), region, crossfade, time, duration, file)


def fades_of(clip, rate):
    unit = clip.get("fadeTimeUnit")
    fades = [samples(clip.get(name, "0"), rate) for name in ("fadeInTime", "fadeOutTime")]
    require(not any(fades) or unit == "seconds", f"fades in {unit}")
    require(fades[1] >= 0, f"a fade-out of {fades[1]}")
    return fades


def file_of(audio, rate, sizes):
    require(audio.get("timeUnit", "seconds") == "seconds", "a file in other units")
    require(int(audio.get("sampleRate")) == rate, f"a file of {audio.get('sampleRate')} Hz")
    file = audio.findall("File")
    require(len(file) == 1, "an Audio without its File")
    external = file[0].get("external") == "true"
    path = file[0].get("path")
    require(path.startswith("/") if external else path in sizes, f"{path}, external {external}")
    return {"channels": audio.get("channels"), "frames": samples(audio.get("duration"), rate), "path": path, "external": external}


def gain_of(clip):
    """The factor, from one point at the clip's start that holds on."""
    points = clip.findall(".//Points")
    if not points:
        return Fraction(1)
    require(len(points) == 1 and points[0].get("unit") == "linear", "one curve of gain, as a factor")
    target, *values = points[0]
    require(target.tag == "Target" and target.attrib == {"expression": "gain"}, f"{target.attrib}")
    require(values and all(value.get("value") == values[0].get("value") for value in values), "a gain that changes")
    require(float(values[0].get("time")) <= 0, "a gain that begins late")
    return Fraction(float(values[0].get("value")))
