"""Whole projects in the habits of those who write them: what check finds, what it reads, and what prepare makes of it."""

import subprocess
import unittest

import audio
import further_writers
import writers
from field_tools import FieldTest, brief, harmful
from known import placed
from layout import checksums, lay_out
from meaning import Reading, differences
from program import ALL_DONE, LEFT_OUT


def tool(*arguments):
    subprocess.run([str(argument) for argument in arguments], check=True, capture_output=True)


def made_by_others(folder):
    """Files of sox and ffmpeg, with the sound that they were made from."""
    plain = folder / "plain.wav"
    plain.write_bytes(audio.wave(writers.VOICE))
    rows = []
    for name, code, command in (
            ("sox.flac", "media-kind", ["sox", plain]),
            ("sox24.wav", "media-kind", ["sox", plain, "-b", "24"]),
            ("sox.aiff", "media-kind", ["sox", plain]),
            ("sox.w64", "media-kind", ["sox", plain]),
            ("ffmpeg24.wav", "media-kind", ["ffmpeg", "-v", "error", "-i", plain, "-c:a", "pcm_s24le"]),
            ("ffmpeg.flac", "media-kind", ["ffmpeg", "-v", "error", "-i", plain, "-c:a", "flac"]),
            ("ffmpegfloat.wav", "media-kind", ["ffmpeg", "-v", "error", "-i", plain, "-c:a", "pcm_f32le"]),
            ("ffmpegrf64.wav", "media-kind", ["ffmpeg", "-v", "error", "-i", plain, "-c:a", "pcm_s24le", "-rf64", "always"])):
        tool(*command, folder / name)
        rows.append((name, (folder / name).read_bytes(), writers.VOICE, code))
    return rows


class WriterBase(FieldTest):
    def lay(self, writer):
        return lay_out(self.folder / "source", writer.text, writer.files)

    def options(self, writer):
        media = [part for folder in writer.media for part in ("--media", self.folder / "source" / folder)]
        return [*writer.options, *media]

    def hold(self, writer):
        """All that must be true of one writer's project."""
        project = self.lay(writer)
        before = checksums(self.folder / "source")
        told = self.check(project, *self.options(writer))
        with self.subTest(writer.name, part="check"):
            self.assert_findings(writer, told)
        with self.subTest(writer.name, part="meant"):
            self.assert_meant(writer, project, told)
        with self.subTest(writer.name, part="prepare"):
            self.assert_prepared(writer, project)
        with self.subTest(writer.name, part="originals"):
            self.assertEqual(checksums(self.folder / "source"), before)

    def assert_findings(self, writer, told):
        self.assertEqual(told["encoding"], writer.encoding)
        left = list(harmful(told["findings"]))
        for code, severity, entry, source in writer.findings:
            codes = code if isinstance(code, tuple) else (code,)
            found = [f for f in left if f["code"] in codes and f["severity"] == severity
                     and (entry is None or f["entry"] == entry) and (source is None or f["source"] == source)]
            self.assertTrue(found, f"no {code} ({severity}) of entry {entry}, source {source}:\n{brief(told['findings'])}")
            left = [f for f in left if f not in found]
        self.assertEqual([f for f in left if f["code"] not in writer.whole], [], brief(left))
        if writer.whole:
            self.assertTrue(left, f"none of {writer.whole} is told")
        notes = {f["code"] for f in told["findings"] if f["severity"] == "note"}
        self.assertEqual(writer.notes - notes, set())

    def assert_meant(self, writer, project, told):
        meant = told["meant"]
        self.assertEqual(meant["sampleRate"], writer.rate)
        by_entry = {event["entry"]: event for event in meant["events"]}
        for cut in writer.cuts:
            self.assertIn(cut.entry, by_entry)
            event = dict(by_entry[cut.entry])
            if len(cut.channels) < len(cut.tracks) and event["sourceChannels"] == cut.channels * len(cut.tracks):
                event["sourceChannels"] = cut.channels
            self.assertEqual(differences(cut.told, event, f"entry {cut.entry}"), [])
        trust = "header" if "header" in writer.options else "marks"
        reading = Reading(project, [self.folder / "source" / folder for folder in writer.media], trust)
        mine = sorted(reading.meant["sources"], key=lambda source: source["index"])
        self.assertEqual(differences(mine, sorted(meant["sources"], key=lambda source: source["index"]), "sources"), [])

    def assert_prepared(self, writer, project):
        into = self.folder / "prepared"
        serious = writer.left - {"rate-compensated"}
        told = self.prepare(project, into, *self.options(writer), *writer.prepare_options,
                            status=LEFT_OUT if serious else ALL_DONE)
        self.assertEqual({finding["code"] for finding in harmful(told["left"])} - writer.left, set(), brief(told["left"]))
        self.assertLessEqual(writer.left, {finding["code"] for finding in told["left"]})
        prepared = into / "p.adl"
        again = self.check(prepared)
        self.assertEqual({f["code"] for f in harmful(again["findings"])} - {f["code"] for f in told["left"]}, set(),
                         brief(again["findings"]))
        self.assert_cuts(placed(writer.cuts, writer.sounds), self.prepared_cuts(prepared), writer)
        second = self.prepare(prepared, self.folder / "second", status=LEFT_OUT if harmful(again["findings"])
                              and {f["code"] for f in harmful(again["findings"])} != {"rate-compensated"} else ALL_DONE)
        self.assertEqual((self.folder / "second" / "p.adl").read_bytes(), prepared.read_bytes(), second["changes"])

    def assert_cuts(self, mine, theirs, writer):
        theirs = [cut for cut in theirs if cut.path is not None or any(known.sound is None for known in mine)]
        theirs = theirs[:len(mine)] if "source-missing" in writer.left else theirs
        self.assertEqual([cut.key for cut in mine],
                         [(cut.track, cut.position, cut.end, cut.fade_in, cut.fade_out, cut.gain) for cut in theirs])
        for known, cut in zip(mine, theirs):
            if known.sound is None:
                continue
            rate, sound = cut.sound
            self.assertEqual((rate, len(sound)), (writer.rate, 1), cut.path)
            self.assertEqual(sound[0], known.sound, f"entry {cut.entry}: {cut.path} at {cut.offset}")


class Writers(WriterBase):
    """One test for each writer, named after its habit."""


def _test(writer):
    return lambda self: self.hold(writer)


for _writer in [*writers.ALL, *further_writers.ALL]:
    setattr(Writers, "test_" + "".join(word.capitalize() for word in _writer.name.replace(",", "").split()), _test(_writer))


class FilesOfEveryKind(WriterBase):
    def test_madeHereAndByOtherPrograms(self):
        (self.folder / "made").mkdir()
        self.hold(writers.kinds(made_by_others(self.folder / "made")))


if __name__ == "__main__":
    unittest.main()
