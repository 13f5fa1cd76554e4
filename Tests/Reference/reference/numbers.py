"""Numbers of fixed width, and the numbers that texts begin with."""

import re
from array import array

INT32_MIN, INT32_MAX = -(1 << 31), (1 << 31) - 1
INT64_MIN, INT64_MAX = -(1 << 63), (1 << 63) - 1


def wrap16(value):
    return (value + 0x8000 & 0xFFFF) - 0x8000


def wrap32(value):
    return (value + 0x80000000 & 0xFFFFFFFF) - 0x80000000


def wrap64(value):
    return (value + (1 << 63) & (1 << 64) - 1) - (1 << 63)


def float32(value):
    """The 32-bit float nearest to a double; what is too large becomes an infinity."""
    return array('f', (value,))[0]


_INTEGER = re.compile(rb'[ \t\n\v\f\r]*([+-]?)([0-9]+)')
_DECIMAL = re.compile(rb'[ \t\n\v\f\r]*([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?)')
_HEX = re.compile(rb'[ \t\n\v\f\r]*([+-]?0[xX](?:[0-9a-fA-F]+\.?[0-9a-fA-F]*|\.[0-9a-fA-F]+)(?:[pP][+-]?[0-9]+)?)')
_WORD = re.compile(rb'[ \t\n\v\f\r]*([+-]?)(inf|nan)', re.IGNORECASE)


def atoi(text):
    """The number at the head of a text: 0 without one, the nearest 32-bit number if it is beyond them."""
    if text is None:
        return 0
    match = _INTEGER.match(text)
    if not match:
        return 0
    value = int(match.group(2))
    if match.group(1) == b'-':
        value = -value
    return max(INT32_MIN, min(INT32_MAX, value))


def atof(text):
    """The floating-point number at the head of a text, 0.0 without one."""
    if text is None:
        return 0.0
    match = _HEX.match(text)
    if match:
        try:
            return float.fromhex(match.group(1).decode())
        except OverflowError:
            return float('-inf') if match.group(1).startswith(b'-') else float('inf')
    match = _DECIMAL.match(text)
    if match:
        return float(match.group(1))
    match = _WORD.match(text)
    if match:
        return float((match.group(1) + match.group(2)).decode())
    return 0.0
