"""Texts of a project: how two of them compare, and how their bytes read as Shift-JIS X0213."""

from functools import lru_cache

_UPPER = bytes(range(65, 91))
_LOWER = bytes(range(97, 123))
_FOLD = bytes.maketrans(_UPPER, _LOWER)


def fold(text):
    """The text in lower case, the letters of ASCII alone."""
    return text.translate(_FOLD)


def same(text, keyword):
    """Whether a text, which may be missing, is the keyword, without regard to case."""
    return text is not None and fold(text) == fold(keyword)


# One-byte codes stand for themselves here, backslash and tilde too, so that their pairs are the wide forms; Python has
# them the other way about. The dash and the double brackets differ between tables in the same manner.
_OTHERWISE = {(0x81, 0x5C): '\u2014', (0x81, 0x5F): '\uff3c', (0x81, 0xB0): '\uff5e', (0x81, 0xD4): '\uff5f',
              (0x81, 0xD5): '\uff60'}


@lru_cache(maxsize=None)
def _pair(lead, trail):
    if (lead, trail) in _OTHERWISE:
        return _OTHERWISE[lead, trail]
    try:
        return bytes((lead, trail)).decode('shift_jis_2004')
    except UnicodeDecodeError:
        return None


def shift_jis_text(data):
    """The bytes as text. A byte that fits nowhere is U+FFFD, and the one after it is looked at afresh."""
    out = []
    at = 0
    while at < len(data):
        byte = data[at]
        if byte < 0x80:
            out.append(chr(byte))
        elif 0xA1 <= byte <= 0xDF:
            out.append(chr(0xFF61 + byte - 0xA1))
        else:
            pair = None
            if at + 1 < len(data) and (0x81 <= byte <= 0x9F or 0xE0 <= byte <= 0xFC):
                pair = _pair(byte, data[at + 1])
            if pair is not None:
                out.append(pair)
                at += 1
            else:
                out.append('\ufffd')
        at += 1
    return ''.join(out)


def shift_jis_to_utf8(data):
    return shift_jis_text(data).encode()
