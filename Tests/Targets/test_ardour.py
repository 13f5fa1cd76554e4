"""An Ardour session read back without Ardour, by its XML, and its audio as the real Ardour plays it."""

import os
import shutil
import subprocess
import unittest

import ardour_reader
import playing
import projects
import waves
from layout import checksums
from program import ALL_DONE, SANITIZED, SLOWNESS, run
from targets import TargetTest

ARDOUR = os.environ.get("ARDOUR_LUA") or next(filter(None, (shutil.which(f"ardour{major}-lua") for major in (9, 8, 7))), None)
QUIET = 10 ** (-120 / 20)

# Writes what each track plays, channel by channel, as floats. Single samples: Ardour stretches a ramp over the block that is read.
READ_BACK = """
local folder, name, into, first, frames, step = arg[1], arg[2], arg[3], tonumber(arg[4]), tonumber(arg[5]), tonumber(arg[6])
AudioEngine:set_backend("None (Dummy)", "", "")
local session = assert(load_session(folder, name), "no session")
local buffer, mix, gain = ARDOUR.DSP.DspShm(step), ARDOUR.DSP.DspShm(step), ARDOUR.DSP.DspShm(step)
local tracks = session:get_tracks()
local count = 0
for _, track in ipairs(tracks:table()) do
  local playlist = track:to_track():playlist():to_audioplaylist()
  for channel = 0, 7 do
    local file = assert(io.open(string.format("%s/%s %d", into, track:name(), channel), "wb"))
    for at = 0, frames - 1, step do
      local part = math.min(step, frames - at)
      playlist:read(buffer:to_float(0), mix:to_float(0), gain:to_float(0), Temporal.timepos_t(first + at),
                    Temporal.timecnt_t(part), channel)
      local values = buffer:to_float(0):array()
      for i = 1, part do file:write(string.pack("<f", values[i])) end
    end
    file:close()
  end
  count = count + 1
end
session:close()
print("read " .. count .. " tracks")
"""


@unittest.skipUnless(ARDOUR, "there is no Ardour")
class ArdourTest(TargetTest):
    def session(self, seed, *way):
        """A random project as an Ardour session, with its Session as JSON."""
        project = projects.make(seed, self.folder / f"project {seed}")
        before = checksums(project.path.parent)
        folder = self.folder / f"session {seed}"
        result = run("spot", project.path, "--quiet", *way, "--host", f"ardour:{folder}", seconds=90)
        self.assertEqual(result.status, ALL_DONE, result.err)
        spot = self.spot(project.path, *way, into=f"out {seed}", targets=("bounce",))
        self.assert_status(spot.run, ALL_DONE)
        after = checksums(project.path.parent)
        self.assertEqual({name: after.get(name) for name in before}, before)
        return project, folder, spot

    def read(self, project, folder, spot):
        """The session's XML, held against the Session of a like spot."""
        document = ardour_reader.read(folder / f"{folder.name}.ardour")
        media = playing.Media()
        playback = playing.play(spot.regions, media, project.rate)
        self.assertEqual((document.rate, document.first, document.end),
                         (project.rate, playback.first, playback.first + playback.frames))
        self.assertEqual([track.name for track in document.tracks], [f"Track {project.lowest_track + track}" for track in playback.tracks])
        return document, playback

    def assert_xml_plays(self, document, playback):
        media = playing.Media()
        for track, channels in zip(document.tracks, playback.tracks.values()):
            heard = [[0] * playback.frames for _ in channels]
            for region in track.regions:
                playing.place(region, region.position - playback.first, heard, media)
            for found, expected in zip(heard, channels):
                # Ardour keeps a gain as a float of 32 bits.
                self.assert_close(found, expected, 1e-6, f"{track.name} by its XML")

    def assert_close(self, found, expected, tolerance, what):
        self.assertEqual(len(found), len(expected))
        worst = max(range(len(found)), key=lambda at: abs(found[at] - expected[at]))
        difference = float(abs(found[worst] - expected[worst])) / waves.FULL_SCALE
        self.assertLessEqual(difference, tolerance, f"{what}: sample {worst} of {len(found)}: {found[worst]}, not {expected[worst]}")

    def played(self, folder, playback, step):
        """What Ardour plays of each track: by name, the channels."""
        into = self.folder / f"played {folder.name}"
        into.mkdir()
        script = self.folder / "read.lua"
        script.write_text(READ_BACK)
        done = subprocess.run([ARDOUR, script, folder, folder.name, into, str(playback.first), str(playback.frames), str(step)],
                              stdin=subprocess.DEVNULL, capture_output=True, timeout=120 * SLOWNESS)
        self.assertIn(f"read {len(playback.tracks)} tracks".encode(), done.stdout, (done.stdout + done.stderr)[-3000:])
        return {path.name: waves.decoded(path.read_bytes(), waves.FLOAT, 32) for path in into.iterdir()}

    def test_nativeShapes(self):
        project, folder, spot = self.session(7, "--native")
        document, playback = self.read(project, folder, spot)
        self.assert_xml_plays(document, playback)
        played = self.played(folder, playback, 1)
        for track, channels in zip(document.tracks, playback.tracks.values()):
            ends = {region.end - 1 - playback.first for region in track.regions}
            for number, expected in enumerate(channels):
                found = played[f"{track.name} {number}"]
                # Read one by one, the last sample of a region is silent.
                kept = [at for at in range(len(expected)) if at not in ends]
                self.assert_close([found[at] for at in kept], [expected[at] for at in kept], QUIET, f"{track.name} in Ardour")

    @unittest.skipIf(SANITIZED, "the optimised build shows it too, in a fraction of the time")
    def test_renderedPieces(self):
        project, folder, spot = self.session(8, "--fades", "--gain")
        document, playback = self.read(project, folder, spot)
        self.assert_xml_plays(document, playback)
        shown = playing.play([region for region in spot.regions if region.length > 1], playing.Media(), project.rate)
        played = self.played(folder, playback, 1024)
        for track, channels in zip(document.tracks, shown.tracks.values()):
            silent = {region.position - playback.first for region in track.regions if region.length == 1}
            for number, expected in enumerate(channels):
                found = played[f"{track.name} {number}"]
                places = [at for at in range(len(expected)) if found[at] != expected[at] and at not in silent]
                self.assertEqual(places, [], f"{track.name} in Ardour")


if __name__ == "__main__":
    unittest.main()
