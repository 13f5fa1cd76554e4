"""The pieces that a spot makes: gain, fade and crossfade files, copies and conversions.

Each gives the bytes of the new file; the caller looks after names and places.
"""

import math
from array import array

from .numbers import wrap32
from .wave import encode, header


def gain_factor(decibels):
    try:
        return math.pow(10.0, decibels / 20.0)
    except OverflowError:
        return math.inf


def gain_file(source, decibels):
    return header(source.rate, source.channels, source.bits, source.frames) + source.converted(
        source.bits, gain_factor(decibels))


def _written(values, bits):
    return encode(values, bits, (bits - 1) // 8 + 1) if bits else b''


def fade_file(source, length, rising, first):
    values = []
    if length > 0:
        step = 1.0 / length
        for i in range(length):
            factor = i * step if rising else (length - i) * step
            frame = wrap32(first + i)
            values += [source.sample_at(frame, channel) * factor for channel in range(source.channels)]
    source.close()
    return header(source.rate, source.channels, source.bits, wrap32(length)) + _narrowed(values, source.bits)


def crossfade_file(outgoing, incoming, first_outgoing, first_incoming, length):
    values = []
    if length > 0:
        step = 1.0 / length
        for i in range(length):
            falling, rising = (length - i) * step, i * step
            for channel in range(outgoing.channels):
                values.append(outgoing.sample_at(wrap32(first_outgoing + i), channel) * falling
                              + incoming.sample_at(wrap32(first_incoming + i), channel) * rising)
    outgoing.close()
    incoming.close()
    return header(outgoing.rate, outgoing.channels, outgoing.bits, wrap32(length)) + _narrowed(values, outgoing.bits)


def _narrowed(values, bits):
    return _written(array('f', values), bits)


def copied(source, bits):
    """What a copy at a depth comes to: its status and the bytes that stay."""
    if not source.valid:
        return 3, None
    if bits == source.bits:
        if source.riff_end < 0:
            return 2, b''
        return 0, source.content[:source.riff_end]
    return 0, header(source.rate, source.channels, bits, source.frames) + source.converted(bits)
