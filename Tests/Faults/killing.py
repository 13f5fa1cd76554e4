"""Kills tasks at random moments and judges what they leave."""

import random
import signal
import time

from faults import LEFT_OVER, Fault
from program import INTERRUPTED

SIGNALS = (signal.SIGKILL, signal.SIGTERM, signal.SIGINT)


class Killed:
    """What became of one run. `alive` says whether it still was when the signal came."""

    def __init__(self, status, err, signal_number, after, alive):
        self.status, self.err, self.signal_number, self.after, self.alive = status, err, signal_number, after, alive

    def __str__(self):
        return f"{self.signal_number.name} after {self.after * 1000:.1f} ms (status {self.status})"


def kill(place, chance, number):
    """Lets the task run into a signal at a moment of its life."""
    after = chance.uniform(0, place.seconds)
    process = place.start()
    time.sleep(after)
    alive = process.poll() is None
    process.send_signal(number)
    try:
        _, err = process.communicate(timeout=60)
    except Exception as problem:
        process.kill()
        process.communicate()
        raise Fault(f"{number.name} after {after:.4f} s: it goes on for a minute") from problem
    return Killed(process.returncode, err.decode("utf-8", "replace"), number, after, alive)


def judge(place, killed):
    """What every killed run must hold to."""
    # A run that is not ready for the signal yet ends by it; one that was done already has its own status.
    if killed.status not in (-killed.signal_number, INTERRUPTED, place.task.fine):
        raise Fault(f"{killed}: {killed.err[-300:]}")
    come = place.assert_kept()
    place.assert_whole()
    tidies = killed.status >= 0
    if tidies and [name for name in come if LEFT_OVER.search(name.rpartition("/")[2])]:
        raise Fault(f"{killed}: it could tidy up and left {come}")
    judge_following(place, killed)


def judge_following(place, killed):
    """A run after it in the same place works; what stands under final names is moved away, hidden things stay."""
    place.remove_results()
    left = [name for name in place.assert_kept() if (place.folder / name).exists()]
    if left:
        following = place.run()
        if following.status != place.task.fine:
            raise Fault(f"{killed}: after it (left {left}) a run ends with {following.status}: {following.err[-400:]}")
        if not any(name.endswith(".wav") and ".p" not in name for name in left) and place.results() != place.made:
            raise Fault(f"{killed}: after it (left {left}) a run makes something else")
        still = [name for name in left if LEFT_OVER.search(name) and (place.folder / name).exists()]
        if still:
            raise Fault(f"{killed}: the next run leaves {still}")
    place.restore()


def storm(place, rounds, seed):
    """Kills a task so many times while it is alive, by each signal in turn. Returns how these runs ended, and how many
    were done before their signal came: these are drawn again."""
    chance = random.Random(seed)
    ends = {}
    for _ in range(3):  # the first run took the longest
        started = time.monotonic()
        place.run()
        place.seconds = min(place.seconds, time.monotonic() - started)
        place.restore()
    turn = done = 0
    while turn < rounds:
        killed = kill(place, chance, SIGNALS[turn % len(SIGNALS)])
        judge(place, killed)
        if not killed.alive:
            done += 1
            place.seconds *= 0.98  # the machine has become faster since
            if done > 20 * rounds:
                raise Fault(f"{done} of {done + turn} runs were done before their signal")
            continue
        turn += 1
        end = (killed.signal_number.name, killed.status)
        ends[end] = ends.get(end, 0) + 1
    return ends, done


