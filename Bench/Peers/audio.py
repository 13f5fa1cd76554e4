"""Rows about audio files: depth, gain, copies, fades."""

import filecmp
import os
import struct
import subprocess

from bench import Command, Disagreement, Limit, Work, against, against_fastest, row
from stamps import RATE, fade_length, stamp

PEERS = ["sox -D", "sndfile-convert", "ffmpeg"]
NOISE_BYTES = 1 << 20


def write_wave(path, bits, megabytes, channels=2):
    """A wave file of noise. Answers its frames."""
    frame_bytes = bits // 8 * channels
    frames = megabytes * 1000000 // frame_bytes
    size = frames * frame_bytes
    fields = (16, 1, channels, RATE, RATE * frame_bytes, frame_bytes, bits)
    if not os.path.exists(path):
        noise = os.urandom(NOISE_BYTES)
        with open(path, "wb") as file:
            file.write(b"RIFF" + struct.pack("<I", 36 + size) + b"WAVE")
            file.write(b"fmt " + struct.pack("<IHHIIHH", *fields))
            file.write(b"data" + struct.pack("<I", size))
            for at in range(0, size, NOISE_BYTES):
                file.write(noise[: size - at])
    return frames


def write_project(path, source, frames, events):
    """An ADL on one source; `events` are texts of what follows an entry's number."""
    with open(path, "w", encoding="ascii") as file:
        file.write("<ADL>\n<SOURCE_INDEX>\n")
        file.write(f'(Index) 1 (F) "URL:file://localhost/{os.path.basename(source)}" _ ')
        file.write(f'{stamp(0)} {stamp(frames)} "_" _\n</SOURCE_INDEX>\n<EVENT_LIST>\n')
        for number, event in enumerate(events, 1):
            file.write(f"(Entry) {number}\n{event}")
        file.write("</EVENT_LIST>\n</ADL>\n")
    return path


def cut(source_in, destination, length):
    return (
        f"(Cut) I 1 1~2 1~2 {stamp(source_in)} {stamp(destination)} "
        f"{stamp(destination + length)} _\n"
    )


class Source:
    """A source of one depth with a project of one cut, or several, that take it whole."""

    def __init__(self, bench, bits, megabytes=None, cuts=1, after=""):
        self.megabytes = megabytes or bench.megabytes
        name = f"noise{bits}-{self.megabytes}"
        self.path = bench.path(name + ".wav")
        self.frames = write_wave(self.path, bits, self.megabytes)
        kind = f"-{cuts}" + ("-gain" if after else "")
        events = [cut(0, i * self.frames, self.frames) + after for i in range(cuts)]
        self.project = write_project(bench.path(name + kind + ".adl"), self.path, self.frames, events)


def expect_alike(ours, theirs, bits, apart):
    """No two samples further apart than so many steps of the depth. Programs round in ways of their
    own; that ours are exact is shown by the tests. sox makes the difference, magnified."""
    times = 1 << (bits - 8)
    told = subprocess.run(
        ["sox", "-D", "-m", "-v", "1", ours, "-v", "-1", theirs, "-n", "vol", str(times), "stat"],
        check=True, capture_output=True, text=True).stderr  # fmt: skip
    facts = dict(line.rsplit(":", 1) for line in told.splitlines() if ":" in line)
    largest = max(abs(float(facts[f"{end} amplitude"])) for end in ("Maximum", "Minimum"))
    if largest / times > (apart + 0.5) / (1 << (bits - 1)):
        raise Disagreement(f"{ours} and {theirs} are further apart than {apart} steps")
    lengths = {subprocess.check_output(["soxi", "-s", file]) for file in (ours, theirs)}
    if len(lengths) != 1:
        raise Disagreement(f"{ours} and {theirs} have different lengths")


def expect_equal(ours, theirs):
    if not filecmp.cmp(ours, theirs, shallow=False):
        raise Disagreement(f"{ours} and {theirs} differ")


def peers_of(bench, source, bits, sox_effects=(), ffmpeg_filter=()):
    made = {name: bench.path(f"peer-{i}.wav") for i, name in enumerate(PEERS)}
    sox, sndfile, ffmpeg = (made[name] for name in PEERS)
    commands = {
        "sox -D": ["sox", "-D", source, "-b", str(bits), sox, *sox_effects],
        "sndfile-convert": ["sndfile-convert", f"-pcm{bits}", source, sndfile],
        "ffmpeg": ["ffmpeg", "-v", "error", "-y", "-i", source, *ffmpeg_filter, "-c:a",
                   f"pcm_s{bits}le", ffmpeg],
    }  # fmt: skip
    return [Command(name, argv, makes=[made[name]]) for name, argv in commands.items()]


def copy_of(bench, source, name="cp"):
    target = bench.path("cp.wav")
    return Command(name, ["cp", source, target], makes=[target])


def depth_work(bench, source_bits, bits, most_of_copy):
    source = Source(bench, source_bits)
    folder = bench.path("made")
    ours = os.path.join(folder, os.path.basename(source.path))
    spot = bench.spot(source.project, "--depth", str(bits), "--copy-to", folder, folders=[folder])
    peers = peers_of(bench, source.path, bits)
    # cp of the larger of the two files.
    largest = source.path
    if bits > source_bits:
        largest = bench.path(f"noise{bits}-{bench.megabytes * bits // source_bits}.wav")
        write_wave(largest, bits, bench.megabytes * bits // source_bits)

    def agree():
        for peer in peers:
            expect_alike(ours, peer.makes[0], bits, 2)

    limits = [against_fastest(PEERS, 0.5), against("cp", most_of_copy)]
    return Work([spot, *peers, copy_of(bench, largest)], limits, agree)


@row("depth-24-16", "24 to 16 bits")
def depth_down(bench):
    return depth_work(bench, 24, 16, 1.5)


@row("depth-16-24", "16 to 24 bits; cp of the output's size")
def depth_up(bench):
    return depth_work(bench, 16, 24, 1.3)


def gain_work(bench, bits):
    source = Source(bench, bits, after="(Gain) _ -6.00\n")
    ours = source.path[: -len(".wav")] + "_Gain.wav"
    spot = bench.spot(source.project, "--depth", str(bits), "--gain", makes=[ours])
    factor = repr(10 ** (-6 / 20))
    volume = ("-af", f"volume={factor}:precision=double")
    peers = peers_of(bench, source.path, bits, ("vol", factor), volume)
    peers = [peer for peer in peers if peer.name != "sndfile-convert"]  # it knows no gain

    def agree():
        for peer in peers:
            expect_alike(ours, peer.makes[0], bits, 2)

    limits = [against_fastest([peer.name for peer in peers], 0.3), against("cp", 1.5)]
    return Work([spot, *peers, copy_of(bench, source.path)], limits, agree)


@row("gain-24", "gain at 24 bits")
def gain_24(bench):
    return gain_work(bench, 24)


@row("gain-16", "gain at 16 bits")
def gain_16(bench):
    return gain_work(bench, 16)


@row("both", "24 to 16 bits and gain in one spot")
def depth_and_gain(bench):
    """Two files: the source at 16 bits, and the gain at the source's own depth."""
    source = Source(bench, 24, after="(Gain) _ -6.00\n")
    stem = source.path[: -len(".wav")]
    ours = [stem + "_16bit.wav", stem + "_Gain.wav"]
    spot = bench.spot(source.project, "--depth", "16", "--gain", makes=ours)
    theirs = [[bench.path(f"{peer}-{name}.wav") for name in ("depth", "gain")] for peer in ("sox", "ffmpeg")]
    factor = repr(10 ** (-6 / 20))
    sox = ["sh", "-c", f"sox -D '{source.path}' -b 16 '{theirs[0][0]}' && "
           f"sox -D '{source.path}' -b 24 '{theirs[0][1]}' vol {factor}"]  # fmt: skip
    ffmpeg = ["ffmpeg", "-v", "error", "-y", "-i", source.path, "-c:a", "pcm_s16le", theirs[1][0],
              "-af", f"volume={factor}:precision=double", "-c:a", "pcm_s24le", theirs[1][1]]  # fmt: skip
    peers = [Command("sox -D", sox, makes=theirs[0]), Command("ffmpeg", ffmpeg, makes=theirs[1])]
    small = bench.path(f"noise16-{bench.megabytes * 2 // 3}.wav")
    write_wave(small, 16, bench.megabytes * 2 // 3)
    targets = [bench.path("cp-depth.wav"), bench.path("cp-gain.wav")]
    copies = f"cp '{small}' '{targets[0]}'; cp '{source.path}' '{targets[1]}'"
    copy = Command("cp", ["sh", "-c", copies], makes=targets)

    def agree():
        for files in theirs:
            for our, their, bits in zip(ours, files, (16, 24)):
                expect_alike(our, their, bits, 2)

    limits = [against_fastest([peer.name for peer in peers], 0.5), against("cp", 1.5)]
    return Work([spot, *peers, copy], limits, agree)


@row("copy", "copy at the same depth, 3 times the size")
def same_depth(bench):
    source = Source(bench, 24, 3 * bench.megabytes)
    folder = bench.path("made")
    spot = bench.spot(source.project, "--depth", "24", "--copy-to", folder, folders=[folder])
    copy = copy_of(bench, source.path)

    def agree():
        expect_equal(os.path.join(folder, os.path.basename(source.path)), copy.makes[0])

    return Work([spot, copy], [against("cp", 1.02)], agree)


@row("again", "each further event that needs the same file")
def same_file_again(bench):
    """What 4 cuts on one source take more than one cut, beside copies of the first file."""
    megabytes = max(bench.megabytes // 2, 8)
    alone = Source(bench, 24, megabytes)
    four = Source(bench, 24, megabytes, cuts=4)
    folders = [bench.path("one"), bench.path("four")]
    stem = os.path.basename(alone.path)[: -len(".wav")]
    options = ("--depth", "16", "--copy-to")
    one_spot = bench.spot(alone.project, *options, folders[0], name="one", folders=[folders[0]])
    four_spot = bench.spot(four.project, *options, folders[1], name="four", folders=[folders[1]])
    # A file of the size that is copied.
    sample = bench.path(f"noise16-{megabytes * 2 // 3}.wav")
    write_wave(sample, 16, megabytes * 2 // 3)
    targets = [bench.path(f"again-{i}.wav") for i in range(3)]
    copies = "; ".join(f"cp '{sample}' '{target}'" for target in targets)
    copy = Command("cp", ["sh", "-c", copies], makes=targets)

    def agree():
        for number in ("", ".1", ".2", ".3"):
            made = os.path.join(folders[1], f"{stem}{number}.wav")
            expect_equal(made, os.path.join(folders[0], stem + ".wav"))

    limit = Limit("cp", 1.0, lambda times: (times["four"] - times["one"]) / times["cp"])
    return Work([one_spot, four_spot, copy], [limit], agree)


@row("pieces", "fade pieces of 10 ms")
def small_pieces(bench):
    """Half as many cuts as pieces, each with a fade at both ends, their pieces in one folder."""
    length, fade = 2400, 480
    source = bench.path("small.wav")
    frames = write_wave(source, 24, 6)
    fades = f"(Infade) {fade_length(fade)} LIN _ _ _\n(Outfade) {fade_length(fade)} LIN _ _ _\n"
    events = [
        cut(i * 97 % (frames - length), i * length, length) + fades for i in range(bench.count // 2)
    ]
    project = write_project(bench.path("small.adl"), source, frames, events)
    folder = bench.path("small")

    def fill():
        for file in (source, project):
            os.link(file, os.path.join(folder, os.path.basename(file)))

    spot = bench.spot(
        os.path.join(folder, "small.adl"), "--depth", "24", "--fades", folders=[folder], fill=fill,
        many=True
    )  # fmt: skip
    plain = bench.path("plain")
    size = 668 + fade * 6
    reference = Command(
        "as many files", [bench.helper, plain, str(2 * len(events)), str(size)], folders=[plain], many=True
    )

    def agree():
        pieces = [entry for entry in os.scandir(folder) if "_Fade" in entry.name]
        if len(pieces) != 2 * len(events) or any(p.stat().st_size != size for p in pieces):
            raise Disagreement("the pieces are not as many and as large as the files beside them")

    return Work([spot, reference], [against("as many files", 2.0)], agree)


@row("fade-long", "a fade of 10 minutes, 24 bits, stereo")
def long_fade(bench):
    minutes = 10 if bench.megabytes >= 180 else 1
    length = minutes * 60 * RATE
    megabytes = length * 6 // 1000000 + 2
    path = bench.path(f"noise24-{megabytes}.wav")
    frames = write_wave(path, 24, megabytes)
    event = cut(100, 0, length) + f"(Infade) {fade_length(length)} LIN _ _ _\n"
    project = write_project(bench.path("fade.adl"), path, frames, [event])
    piece = path[: -len(".wav")] + "_FadeIn.wav"
    spot = bench.spot(project, "--depth", "24", "--fades", makes=[piece])
    copy = copy_of(bench, path)

    def agree():
        # The comma makes it drop-frame: a few frames less.
        if not 0.99 * length < (os.path.getsize(piece) - 668) // 6 <= length:
            raise Disagreement("the piece has another length")

    return Work([spot, copy], [against("cp", 3.0)], agree)
