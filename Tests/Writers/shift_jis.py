"""Shift-JIS as the system reads it: a byte below 0x80 is the ASCII character, backslash and tilde too."""

import re

NAME = "shift_jisx0213"


def encode(text):
    return b"".join(part.encode("ascii" if part.isascii() else NAME) for part in re.findall(r"[\x00-\x7f]+|[^\x00-\x7f]+", text))


def decode(raw, errors="replace"):
    # Only the two bytes differ from ASCII, and nothing else stands for these two characters.
    return raw.decode(NAME, errors).replace("\u00a5", "\\").replace("\u203e", "~")


def decode_as(raw, codec, errors="replace"):
    return decode(raw, errors) if codec == NAME else raw.decode(codec, errors)


def encode_as(text, codec):
    return encode(text) if codec == NAME else text.encode(codec)
