"""Timestamps of 25 frames at 48 kHz."""

RATE = 48000


def stamp(samples):
    seconds, rest = divmod(samples, RATE)
    frames, rest = divmod(rest, RATE // 25)
    return f"{seconds // 3600:02}.{seconds // 60 % 60:02}:{seconds % 60:02}:{frames:02}/{rest:04}"


def fade_length(samples):
    """The same with the comma that a fade's length has before its frames."""
    text = stamp(samples)
    return text[:8] + "," + text[9:]
