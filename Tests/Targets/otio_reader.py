"""An OpenTimelineIO file read by the format's own rules into the regions that it says are played, with every rule that it breaks
told."""

import dataclasses
import urllib.parse

import playing
from program import strict_json
from rules import require


# By schema, the fields that an object must have, and no others.
COMPOSED = {"OTIO_SCHEMA", "name", "metadata", "source_range", "effects", "markers", "enabled"}
FIELDS = {
    "Timeline.1": {"OTIO_SCHEMA", "name", "metadata", "global_start_time", "tracks"},
    "Stack.1": COMPOSED | {"children"},
    "Track.1": COMPOSED | {"children", "kind"},
    "Gap.1": COMPOSED,
    "Clip.2": COMPOSED | {"media_references", "active_media_reference_key"},
    "Transition.1": {"OTIO_SCHEMA", "name", "metadata", "in_offset", "out_offset", "transition_type"},
    "ExternalReference.1": {"OTIO_SCHEMA", "name", "metadata", "available_range", "available_image_bounds", "target_url"},
    "MissingReference.1": {"OTIO_SCHEMA", "name", "metadata", "available_range", "available_image_bounds"},
    "Marker.2": {"OTIO_SCHEMA", "name", "metadata", "marked_range", "color"},
    "TimeRange.1": {"OTIO_SCHEMA", "start_time", "duration"},
    "RationalTime.1": {"OTIO_SCHEMA", "rate", "value"},
}
# Fields that came to a schema without a new version.
LATER = {"Marker.2": {"comment"}}
COLORS = {"PINK", "RED", "ORANGE", "YELLOW", "GREEN", "CYAN", "BLUE", "PURPLE", "MAGENTA", "BLACK", "WHITE"}


@dataclasses.dataclass
class Clip:
    name: str
    metadata: dict
    time: int
    duration: int
    start: int
    path: str
    available: tuple  # start, end
    before: int = 0  # how far a transition reaches beyond its start
    after: int = 0  # and beyond its end
    fade_in: int = 0
    fade_out: int = 0


@dataclasses.dataclass
class Track:
    name: str
    metadata: dict
    clips: list
    duration: int
    markers: list  # of (time, duration, name)

    def regions(self):
        """What is played, in order: each clip with what its transitions take of its file beyond its own range."""
        return [playing.Region(number, 0, clip.name, clip.path, clip.time - clip.before, clip.before + clip.duration + clip.after,
                               clip.start - clip.before, clip.fade_in, clip.fade_out, clip.metadata["velmora"].get("gainDb") or 0)
                for number, clip in enumerate(self.clips)]


@dataclasses.dataclass
class Document:
    name: str
    metadata: dict
    tracks: list
    markers: list


def read(path, rate):
    root = strict_json(path.read_text("utf-8"))
    check_schemas(root, rate)
    require(root["OTIO_SCHEMA"] == "Timeline.1", "no timeline")
    origin = time_of(root["global_start_time"], rate) if root["global_start_time"] else 0
    stack = root["tracks"]
    require(stack["OTIO_SCHEMA"] == "Stack.1" and stack["source_range"] is None, "no whole stack")
    tracks = [track_of(track, rate, origin) for track in stack["children"]]
    return Document(root["name"], root["metadata"], tracks, markers_of(stack, rate, origin))


def check_schemas(value, rate):
    if isinstance(value, list):
        for item in value:
            check_schemas(item, rate)
        return
    if not isinstance(value, dict):
        return
    if "OTIO_SCHEMA" in value:
        schema = value["OTIO_SCHEMA"]
        require(schema in FIELDS, f"schema {schema}")
        require(set(value) - LATER.get(schema, set()) == FIELDS[schema], f"{schema} has {sorted(set(value) ^ FIELDS[schema])} or lacks it")
        require(value.get("effects", []) == [] and value.get("enabled", True) is True, f"{schema} with effects")
    for key, item in value.items():
        if key != "metadata":
            check_schemas(item, rate)
        else:
            require(isinstance(item, dict), "metadata that are no object")


def time_of(time, rate):
    require(time["OTIO_SCHEMA"] == "RationalTime.1", f"{time}")
    require(time["rate"] == rate, f"a time at rate {time['rate']}, not {rate}")
    require(float(time["value"]).is_integer(), f"a time of {time['value']}")
    return int(time["value"])


def range_of(value, rate):
    require(value["OTIO_SCHEMA"] == "TimeRange.1", f"{value}")
    start, duration = time_of(value["start_time"], rate), time_of(value["duration"], rate)
    require(duration >= 0, f"a range of {duration}")
    return start, duration


def markers_of(item, rate, origin):
    for marker in item["markers"]:
        require(marker["OTIO_SCHEMA"] == "Marker.2" and marker["color"] in COLORS, f"{marker}")
    return [(origin + range_of(marker["marked_range"], rate)[0], range_of(marker["marked_range"], rate)[1], marker["name"])
            for marker in item["markers"]]


def track_of(track, rate, origin):
    require(track["OTIO_SCHEMA"] == "Track.1" and track["kind"] == "Audio" and track["source_range"] is None, "no whole audio track")
    at, clips, previous, pending = origin, [], None, None
    for child in track["children"]:
        if child["OTIO_SCHEMA"] == "Transition.1":
            require(pending is None, "two transitions side by side")
            pending = transition_of(child, rate)
            join(previous, pending, "after")
            continue
        if child["OTIO_SCHEMA"] == "Gap.1":
            item = (None, range_of(child["source_range"], rate)[1])
        else:
            clip = clip_of(child, rate, at)
            clips.append(clip)
            item = (clip, clip.duration)
        if pending:
            join(item, pending, "before")
            if item[0] is None and previous[0]:
                previous[0].fade_out = sum(pending)
        pending, previous, at = None, item, at + item[1]
    require(pending is None, "a transition to nothing at a track's end")
    for clip in clips:
        require(clip.fade_in + clip.fade_out <= clip.before + clip.duration + clip.after, f"the transitions of {clip.name} overlap")
    return Track(track["name"], track["metadata"], clips, at - origin, markers_of(track, rate, origin))


def transition_of(transition, rate):
    require(transition["transition_type"] == "SMPTE_Dissolve", f"a transition {transition['transition_type']}")
    offsets = time_of(transition["in_offset"], rate), time_of(transition["out_offset"], rate)
    require(min(offsets) >= 0 and max(offsets) > 0, f"a transition of {offsets}")
    return offsets


def join(item, offsets, side):
    """Gives a neighbour of a transition its part. The later clip fades in over the earlier one, which needs a fade-out of its own
    only where nothing follows."""
    require(item is not None, "a transition from nothing at a track's beginning")
    clip, duration = item
    inside, outside = offsets if side == "after" else offsets[::-1]
    require(inside <= duration, f"a transition takes {inside} of {duration} samples")
    if clip is None:
        return
    if side == "after":
        clip.after = outside
    else:
        clip.before, clip.fade_in = outside, sum(offsets)


def clip_of(clip, rate, at):
    require(clip["OTIO_SCHEMA"] == "Clip.2", clip["OTIO_SCHEMA"])
    start, duration = range_of(clip["source_range"], rate)
    require(duration > 0, f"a clip of {duration}")
    reference = clip["media_references"][clip["active_media_reference_key"]]
    require(reference["OTIO_SCHEMA"] == "ExternalReference.1", reference["OTIO_SCHEMA"])
    available = reference["available_range"]
    if available is not None:
        first, length = range_of(available, rate)
        available = (first, first + length)
    return Clip(clip["name"], clip["metadata"], at, duration, start, path_of(reference["target_url"]), available)


def path_of(url):
    parts = urllib.parse.urlsplit(url)
    require(parts.scheme == "file" and parts.netloc in ("", "localhost"), url)
    require(not parts.query and not parts.fragment, f"{url} has a query or a fragment")
    require(url.isascii() and all(letter.isalnum() or letter in "-._~:/?#[]@!$&'()*+,;=%" for letter in url), f"{url} is no URL")
    return urllib.parse.unquote_to_bytes(parts.path).decode("utf-8", "surrogateescape")
