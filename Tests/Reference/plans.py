"""What is asked of the program: the options of one spot, and what its session answers."""

import os

from reference import timecode
from reference.numbers import float32


class SpotPlan:
    """The arguments of one spot, in the program's words."""

    def __init__(self):
        self.mode = 'project'
        self.offset = None
        self.start = None
        self.bits = 24
        self.fades = False
        self.gain = False
        self.copy_to = None
        self.rate = None
        self.code = None
        self.lists = {}

    def arguments(self):
        out = ['--position', self.mode] if self.mode != 'project' else []
        for name, value in (('--offset', self.offset), ('--start', self.start)):
            if value is not None:
                out.append('%s=%s' % (name, value))
        if self.bits != 24:
            out += ['--depth', str(self.bits)]
        out += ['--fades'] * self.fades + ['--gain'] * self.gain
        for name, value in (('--copy-to', self.copy_to), ('--session-rate', self.rate),
                            ('--session-frame-rate', self.code)):
            if value is not None:
                out += [name, str(value)]
        for name, (text, _) in sorted(self.lists.items()):
            out.append('--%s=%s' % (name, text))
        return out


class PlanMaker:
    """Random options for projects below one folder."""

    def __init__(self, rng, base):
        self.rng = rng
        self.base = base

    def chance(self, likelihood):
        return self.rng.random() < likelihood

    def make(self):
        rng = self.rng
        plan = SpotPlan()
        plan.mode = rng.choice(('project', 'project', 'offset', 'start', 'first'))
        if plan.mode == 'offset' or self.chance(0.1):
            plan.offset = rng.choice(('', '+', '-')) + self._typed()
        if plan.mode == 'start' or self.chance(0.1):
            plan.start = self._typed()
        plan.bits = rng.choice((16, 24, 24))
        plan.fades = self.chance(0.6)
        plan.gain = self.chance(0.5)
        if self.chance(0.3):
            folder = rng.choice(('out', 'proj', 'proj/Audio', 'out/deep/er', 'o.ut', 'out/'))
            plan.copy_to = os.path.join(self.base, folder)
        if self.chance(0.3):
            plan.rate = rng.choice(('44100', '48000', '96000', '88200', '47952.047', '48000.5', '44056', '8000'))
        if self.chance(0.3):
            plan.code = rng.choice(tuple('01234567') + ('24', '25', '29.97', '29.97df', '30', '30df', '23.976'))
        if self.chance(0.15):
            plan.lists[rng.choice(('skip-tracks', 'only-tracks'))] = self._list((1, 2, 3, 4, 6, 40000))
        if self.chance(0.15):
            plan.lists[rng.choice(('skip-events', 'only-events'))] = self._list((0, 1, 2, 3, 5, 8, 13))
        return plan

    def _typed(self):
        rng = self.rng
        if self.chance(0.6):
            return '%02d:%02d:%02d:%02d' % (rng.randrange(24), rng.randrange(60), rng.randrange(60), rng.randrange(30))
        return ':'.join('%02d' % rng.choice((0, 0, 1, 11, 12, 23, 24, 29, 30, 59, 60, 99)) for _ in range(4))

    def _list(self, numbers):
        """A list as it is typed, and the numbers that it holds, as pairs of first and last."""
        rng = self.rng
        pairs = []
        for _ in range(rng.randrange(1, 4)):
            low = rng.choice(numbers)
            pairs.append((low, low + rng.choice((0, 0, 1, 3))))
        return ','.join('%d' % low if low == high else '%d-%d' % (low, high) for low, high in pairs), pairs


def session_rate(plan, first_event):
    """The 32-bit float that the host answers."""
    if plan.rate is not None:
        return float32(float(plan.rate))
    return float32(timecode.sample_rate(first_event)) or 48000.0


_NAMED_CODES = {'24': 1, '25': 2, '29.97': 3, '29.97df': 4, '30': 5, '30df': 6, '23.976': 7}


def session_code(plan, first_event):
    if plan.code is None:
        return timecode.code_of(first_event)
    return _NAMED_CODES[plan.code] if plan.code in _NAMED_CODES else int(plan.code)
