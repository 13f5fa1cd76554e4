"""What a spot places, worked out from the cuts: the main regions in order, then the pieces of their fades."""

import dataclasses

from stamps import compensation


@dataclasses.dataclass(frozen=True)
class Placed:
    event: int
    entry: int
    source: int
    piece: str
    track: int  # of the session, from 0
    position: int
    length: int
    start: int  # inside the file
    fade_in: int = 0
    fade_out: int = 0
    gain_db: float = 0.0


def placed(project, *way):
    """The regions of a spot with these options, at the project's own position."""
    cuts = project.cuts
    moved = compensation(project.clock.time(min(cut.position for cut in cuts)))
    lowest = project.lowest_track
    native = "--native" in way
    regions = [Placed(event, cut.entry, cut.source, "main", cut.track - lowest, cut.position + moved, cut.length,
                      cut.start, *((cut.fade_in, cut.fade_out, float(cut.gain_db or 0)) if native else ()))
               for event, cut in enumerate(cuts)]
    if "--fades" in way:
        regions += [dataclasses.replace(piece, track=piece.track - lowest, position=piece.position + moved)
                    for piece in pieces(cuts)]
    return regions


def pieces(cuts):
    """Those of each cut in order. A cut knows only the one before it in the list."""
    before = None
    for event, cut in enumerate(cuts):
        def piece(kind, position, length):
            return Placed(event, cut.entry, cut.source, kind, cut.track, position, length, 0)
        if continues(before, cut):
            yield piece("crossfade", cut.position, cut.fade_in)
        elif cut.fade_in:
            yield piece("infade", cut.position, cut.fade_in)
        if cut.fade_out:
            yield piece("outfade", cut.position + cut.length - cut.fade_out, cut.fade_out)
        before = cut


def continues(before, cut):
    """Whether a cut crossfades with the one before it: on one track, over as long as both their fades."""
    return bool(before and before.track == cut.track and cut.fade_in and before.fade_out == cut.fade_in
                and before.position + before.length - cut.position == cut.fade_in)
