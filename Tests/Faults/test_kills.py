"""Tasks that are killed at random moments. `campaign --kills 200` does the whole of it."""

import tempfile
import unittest
from pathlib import Path

import killing
from faults import Place
from program import SLOWNESS
from tasks import TASKS

ROUNDS = 12
SCALE = 20  # so that there is something to interrupt


class Kills(unittest.TestCase):
    def test_what_a_killed_run_leaves_is_whole_or_goes_with_the_next(self):
        for number, task in enumerate(TASKS):
            with self.subTest(task.name), tempfile.TemporaryDirectory(prefix="velmora-kills-") as folder:
                place = Place(task, Path(folder).resolve(), SCALE if SLOWNESS == 1 else 1)
                rounds = ROUNDS // (1 if SLOWNESS == 1 else 2)
                ends, _ = killing.storm(place, rounds, seed=number)
                self.assertEqual(sum(ends.values()), rounds)
                self.assertTrue([status for _, status in ends if status not in (0, place.task.fine)], "none was stopped")


if __name__ == "__main__":
    unittest.main()
