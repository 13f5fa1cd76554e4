"""An Ardour session read without Ardour: its XML, by the unit that it states itself."""

import dataclasses
import math
import re
import xml.etree.ElementTree
from fractions import Fraction

import playing
from rules import require


@dataclasses.dataclass
class Track:
    name: str
    regions: list  # playing.Region, the undermost first


@dataclasses.dataclass
class Document:
    rate: int
    tracks: list
    first: int  # of the session's range, in samples
    end: int
    origins: set


class Reader:
    def __init__(self, root):
        self.rate = int(root.get("sample-rate"))
        self.per_second = int(root.find(".//TempoMap").get("superclocks-per-second"))
        self.sources = {source.get("id"): source for source in root.findall("Sources/Source")}

    def samples(self, text):
        found = re.fullmatch(r"a(-?\d+)", text)
        require(found, f"{text} is no time of audio")
        exact = Fraction(int(found[1]), self.per_second) * self.rate
        # Ardour itself rounds a sample's time down to its unit, which is finer than a sample.
        return math.ceil(exact) if exact.denominator != 1 else int(exact)

    def track(self, route, playlists):
        playlist = playlists[route.get("audio-playlist")]
        regions = sorted(playlist.findall("Region"), key=lambda region: int(region.get("layering-index")))
        layers = [region.get("layering-index") for region in regions]
        require(len(set(layers)) == len(layers), f"two regions on one layer: {layers}")
        return Track(route.get("name"), [self.region(region) for region in regions])

    def region(self, region):
        require(region.get("opaque") == "1" and region.get("muted") == "0" and region.get("envelope-active") == "0", f"{region.attrib}")
        length, position = (self.samples(part if part.startswith("a") else f"a{part}") for part in region.get("length").split("@"))
        origin, channels = None, int(region.get("channels"))
        for channel in range(channels):
            source = self.sources[region.get(f"source-{channel}")]
            require(source.get("channel") == str(channel) and origin in (None, source.get("origin")), f"{region.attrib}")
            origin = source.get("origin")
        return playing.Region(0, 0, region.get("name"), origin, position, length, self.samples(region.get("start")),
                              self.fade(region, "fade-in-active", "FadeIn", rising=True),
                              self.fade(region, "fade-out-active", "FadeOut", rising=False),
                              factor=Fraction(float(region.get("scale-amplitude"))))

    def fade(self, region, active, name, rising):
        if region.get(active) == "0":
            return 0
        length = self.line(region, name, rising)
        require(self.line(region, f"Inverse{name}", not rising) == length, f"{name} and its inverse differ")
        return length

    def line(self, region, name, rising):
        """The length of a straight line between nothing and all."""
        line = region.find(f"{name}/AutomationList")
        require(line.get("interpolation-style") == "Linear", f"{name} {line.attrib}")
        points = [point.split() for point in line.findtext("events").strip().splitlines()]
        require([float(value) for _, value in points] == ([0, 1] if rising else [1, 0]), f"{name} {points}")
        require(self.samples(points[0][0]) == 0, f"{name} begins late")
        return self.samples(points[1][0])


def read(path):
    root = xml.etree.ElementTree.parse(path).getroot()
    reader = Reader(root)
    ids = [element.get("id") for element in root.iter() if element.get("id")]
    require(int(root.get("id-counter")) > max(int(number) for number in ids if number.isdigit()), "the counter of ids is too low")
    for source in reader.sources.values():
        require(source.get("origin").startswith("/"), f"{source.get('origin')} is no absolute origin")
        # Any other flag lets Ardour write to the file, rename or remove it.
        require(source.get("flags") in ("", "Broadcast"), f"a source with flags {source.get('flags')}")
    playlists = {playlist.get("id"): playlist for playlist in root.findall("Playlists/Playlist")}
    ranges = [place for place in root.findall("Locations/Location") if "IsSessionRange" in place.get("flags")]
    require(len(ranges) == 1, f"{len(ranges)} ranges of the session")
    require(root.find("EngineHints") is None, "hints of an engine")
    tracks = [reader.track(route, playlists) for route in root.findall("Routes/Route") if route.get("audio-playlist")]
    return Document(reader.rate, tracks, reader.samples(ranges[0].get("start")), reader.samples(ranges[0].get("end")),
                    {source.get("origin") for source in reader.sources.values()})
