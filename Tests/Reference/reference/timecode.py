"""ADL timestamps, typed timecode and the sample counts that they mean."""

import math
import re
import struct

from .numbers import INT64_MIN, wrap32, wrap64

# Mark at position 2: nominal frames a second, and whether 1000/1001 pulls them down.
FRAME_MARKS = {
    '?': (30, False), '|': (30, False), ':': (30, True),
    '!': (25, False), '.': (25, False), '/': (25, True),
    '=': (24, False), '#': (24, False), '-': (24, True),
}


def _down(rate):
    return rate * 1000.0 / 1001.0


def _up(rate):
    return rate * 1001.0 / 1000.0


# Mark at position 11: the sample rate in hertz.
RATE_MARKS = {
    '(': 30720.0, "'": _down(32000.0), '=': 32000.0, '"': _up(32000.0), ')': 33333.333333333336,
    '[': 42336.0, '~': _down(44100.0), '|': 44100.0, '^': _up(44100.0), ']': 45937.5,
    '<': 46080.0, '-': _down(48000.0), '/': 48000.0, '+': _up(48000.0), '>': 50000.0,
    '`': 84672.0, '?': _down(88200.0), '@': 88200.0, '$': _up(88200.0), '!': 91875.0,
    '{': 92160.0, '&': _down(96000.0), '*': 96000.0, '#': _up(96000.0), '}': 100000.0,
}

CODE_MARKS = '?=.::||-'
CODE_SEPARATORS = '::::;:;:'
CODE_FRAMES = (30, 24, 25, 30, 30, 30, 30, 24)


def _bytes16(text):
    return text[:16].ljust(16, b'\0')


def sample_rate(text):
    return RATE_MARKS.get(chr(_bytes16(text)[11]), 0.0)


def _quotient(dividend, divisor):
    """Integer division as processors do it: toward zero, and the remainder with the dividend's sign."""
    quotient = abs(dividend) // abs(divisor)
    if (dividend < 0) != (divisor < 0):
        quotient = -quotient
    return quotient, dividend - quotient * divisor


def to_samples(text):
    raw = _bytes16(text)
    digit = [value - 48 for value in struct.unpack('16b', raw)]
    hours = 10 * digit[0] + digit[1]
    minutes = 10 * digit[3] + digit[4]
    seconds = 10 * digit[6] + digit[7]
    frames = 10 * digit[9] + digit[10]
    nominal, pulled = FRAME_MARKS.get(chr(raw[2]), (0, False))
    drop = raw[8] in b',;'
    tens, within = _quotient(minutes, 10)
    blocks = tens + 6 * hours
    count = (seconds + 60 * within) * nominal + frames + blocks * (600 * nominal - (18 if drop else 0))
    if drop:
        count -= 2 * within
    count = wrap32(count)
    remainder = 1000 * digit[12] + 100 * digit[13] + 10 * digit[14] + digit[15]
    if nominal == 0:
        # The division by zero frames has no number for a result.
        return wrap64(INT64_MIN + remainder)
    per_second = nominal * 1000.0 / 1001.0 if pulled else float(nominal)
    return wrap64(math.ceil(sample_rate(text) * count / per_second) + remainder)


def difference(first, second):
    return wrap64(to_samples(second) - to_samples(first))


_RUN = re.compile(rb'[0-9]+')


def timecode_to_samples(text, code, rate):
    at = 0

    def blanks():
        nonlocal at
        while text[at:at + 1] == b' ':
            at += 1

    def number():
        nonlocal at
        match = _RUN.match(text, at)
        if not match:
            return 0
        at = match.end()
        return int(match.group())

    def after_separator():
        nonlocal at
        if at >= len(text):
            return 0
        at += 1
        return number()

    blanks()
    sign = 1
    if text[at:at + 1] in (b'+', b'-'):
        sign = -1 if text[at:at + 1] == b'-' else 1
        at += 1
    blanks()
    hours = number() % 100
    blanks()
    minutes = after_separator() % 60
    blanks()
    seconds = after_separator() % 60
    blanks()
    frames = after_separator() % CODE_FRAMES[code]
    stamp = '%02d%c%02d:%02d%c%02d%c0000' % (hours, CODE_MARKS[code], minutes, seconds, CODE_SEPARATORS[code], frames,
                                             '|' if rate == 44100 else '/')
    return wrap64(sign * to_samples(stamp.encode()))


def is_timestamp(text):
    raw = _bytes16(text)

    def within(positions, low, high):
        return all(low <= raw[position] <= high for position in positions)

    return (within((0, 9), 0x30, 0x32) and within((3, 6), 0x30, 0x35)
            and within((1, 4, 7, 10, 12, 13, 14, 15), 0x30, 0x39)
            and chr(raw[11]) in RATE_MARKS and raw[8] in b';,' and chr(raw[2]) in FRAME_MARKS)


def shown(text):
    """What tables show of a timestamp: all before its first slash."""
    return text.split(b'/', 1)[0]


def entered(text, signed):
    """The text that an entry field hands on after the focus has left it: limited, and composed anew."""
    sign = '+'
    if signed:
        sign, text = text[0], text[1:]
    hours, minutes, seconds, frames = (int(part) for part in text.strip().split(':'))
    if signed and hours >= 12:
        hours, minutes, seconds, frames = 12, 0, 0, 0
    else:
        seconds, minutes, hours = (max(0, min(most, value)) for most, value in
                                   ((59, seconds), (59, minutes), (23, hours)))
        frames = max(0, frames)
    frames = min(frames, 29)
    head = (sign if sign in '+-' else '+') if signed else ' '
    return '%s%02d:%02d:%02d:%02d' % (head, hours, minutes, seconds, frames)


def code_of(text):
    """The frame-rate code whose marks a timestamp bears, 0 for none."""
    raw = _bytes16(text)
    for code, (mark, separator) in enumerate(zip(CODE_MARKS, CODE_SEPARATORS)):
        if raw[2] == ord(mark) and raw[8] == ord(separator):
            return code
    return 0
