"""Timestamps made from sample counts, and read back exactly.

A timestamp is HHiMMiSSiFFissss. The mark at position 2 is the frame rate, the one at 8 says drop or non-drop, the one at 11
the sample rate; the last four digits are samples.
"""

import fractions
import math

from reference.timecode import CODE_MARKS, CODE_SEPARATORS, FRAME_MARKS, RATE_MARKS, code_of, timecode_to_samples, to_samples

DROP = ";,"


def exact_rate(mark):
    """Samples a second as a ratio: the marks of pulled rates stand for 1000/1001 and 1001/1000 of a whole one."""
    value = RATE_MARKS[mark]
    for factor in (fractions.Fraction(1), fractions.Fraction(1001, 1000), fractions.Fraction(1000, 1001)):
        whole = fractions.Fraction(value) * factor
        if abs(whole - round(whole)) < fractions.Fraction(1, 10 ** 6):
            return fractions.Fraction(round(whole)) / factor
    return fractions.Fraction(value).limit_denominator(1000)


def frames_per_second(mark):
    nominal, pulled = FRAME_MARKS[mark]
    return fractions.Fraction(nominal * 1000, 1001) if pulled else fractions.Fraction(nominal)


def frame_count(hours, minutes, seconds, frames, nominal, drop):
    """Frames since zero: drop-frame counting leaves two numbers out in each minute but every tenth."""
    total_minutes = 60 * hours + minutes
    count = (60 * total_minutes + seconds) * nominal + frames
    return count - 2 * (total_minutes - total_minutes // 10) if drop else count


def exact_samples(text):
    """What a full stamp means, in whole numbers and ratios alone: frames to samples, rounded up, and the remainder."""
    nominal = FRAME_MARKS[text[2]][0]
    numbers = [int(text[at:at + 2]) for at in (0, 3, 6, 9)]
    frames = frame_count(*numbers, nominal, text[8] in DROP)
    return math.ceil(frames * exact_rate(text[11]) / frames_per_second(text[2])) + int(text[12:16])


def samples(text):
    """By the system's own rule, in doubles."""
    return to_samples(text.encode("ascii"))


def stamp(count, mark=".", separator=":", rate="/", blank=":"):
    """The stamp of so many samples. `blank` stands between minutes and seconds, where nothing reads it."""
    nominal = FRAME_MARKS[mark][0]
    frame = math.floor(count * frames_per_second(mark) / exact_rate(rate))
    while frame >= 0:
        text = _stamp_of_frame(frame, nominal, mark, separator, rate, blank)
        remainder = count - samples(text)
        if remainder >= 0:
            if remainder > 9999:
                raise ValueError(f"no remainder is that long: {remainder}")
            return f"{text[:12]}{remainder:04d}"
        frame -= 1
    raise ValueError(f"{count} samples have no stamp")


def _stamp_of_frame(frame, nominal, mark, separator, rate, blank):
    if separator in DROP:
        blocks, within = divmod(frame, 600 * nominal - 18)
        frame += 18 * blocks + 2 * max(0, (within - 2) // (60 * nominal - 2))
    seconds, frames = divmod(frame, nominal)
    minutes, seconds = divmod(seconds, 60)
    hours, minutes = divmod(minutes, 60)
    return f"{hours:02d}{mark}{minutes:02d}{blank}{seconds:02d}{separator}{frames:02d}{rate}0000"


def compensation(first, session_rate=None, code=None):
    """By how many samples a spot moves everything: the session's reading of the first stamp less the project's."""
    text = first.encode("ascii")
    if code is None:
        code = code_of(text)
    if session_rate is None:
        session_rate = int(RATE_MARKS.get(first[11], 48000))
    return timecode_to_samples(text, code, session_rate) - to_samples(text)


TABLE_MARKS = tuple(zip(CODE_MARKS, CODE_SEPARATORS))
