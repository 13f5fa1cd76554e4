"""Disturbs tasks over every call of a kind, in several processes, and collects what is found."""

import errno
import multiprocessing
import os
import pathlib
import shutil
import signal
import tempfile

import killing
from faults import ERRORS, Fault, Place
from tasks import BY_NAME


def how_text(how):
    return errno.errorcode[how] if isinstance(how, int) else str(how)


class Step:
    """One run that is disturbed: the call of a kind at which something happens, and what."""

    def __init__(self, task, kind, call, how, span):
        self.task, self.kind, self.call, self.how, self.span = task, kind, call, how, span

    def __str__(self):
        on = " and all that follow" if self.span == 0 else ""
        return f"{self.task}: {self.kind} {self.call} of it{on}: {how_text(self.how)}"


def steps_of(task, counts, kinds, stride):
    """Every call of these kinds with every error; of kinds with more calls than `stride` says each so many."""
    steps = []
    for kind in kinds:
        for call in range(1, counts.get(kind, 0) + 1, stride.get(kind, 1)):
            for how in ERRORS[kind]:
                steps.append(Step(task, kind, call, how, 1))
                # A disk stays full and memory stays away.
                if how in (errno.ENOSPC, errno.ENOMEM) and kind != "map":
                    steps.append(Step(task, kind, call, how, 0))
    return steps


def take(place, step):
    """Runs one step; answers what was found, or an empty text."""
    run = None
    try:
        run = place.disturbed(step.kind, step.call, step.how, step.span)
        place.judge(run)
        return ""
    except Fault as fault:
        failed = run.counts.failed if run and run.counts else "?"
        return f"{step} ({failed}): {fault}"


class Work:
    """Places are made anew when a fault has spoilt them."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="velmora-faults-")).resolve()
        self.place, self.count = None, 0

    def place_of(self, task):
        if self.place is None or self.place.task is not task:
            self.forget()
            self.count += 1
            folder = self.folder / str(self.count)
            folder.mkdir()
            self.place = Place(task, folder)
        return self.place

    def forget(self):
        if self.place is not None:
            shutil.rmtree(self.place.folder.parent, ignore_errors=True)
        self.place = None

    def end(self):
        shutil.rmtree(self.folder, ignore_errors=True)


def _work(steps, answers):
    signal.signal(signal.SIGINT, signal.SIG_IGN)
    work = Work()
    try:
        while True:
            chunk = steps.get()
            if chunk is None:
                break
            for step in chunk:
                found = take(work.place_of(BY_NAME[step.task]), step)
                if found:
                    work.forget()
                answers.put((step, found))
    finally:
        work.end()
        answers.put(None)


def run_all(steps, jobs, tell):
    """`tell` is called with each step and what was found."""
    chunks, answers = multiprocessing.Queue(), multiprocessing.Queue()
    size = 50
    for start in range(0, len(steps), size):
        chunks.put(steps[start:start + size])
    for _ in range(jobs):
        chunks.put(None)
    workers = [multiprocessing.Process(target=_work, args=(chunks, answers)) for _ in range(jobs)]
    for worker in workers:
        worker.start()
    left = jobs
    while left:
        answer = answers.get()
        if answer is None:
            left -= 1
        else:
            tell(*answer)
    for worker in workers:
        worker.join()


def counts_of(names):
    work = Work()
    try:
        return {name: work.place_of(BY_NAME[name]).calls() for name in names}
    finally:
        work.end()


def _kill(job):
    name, rounds, scale, seed = job
    folder = pathlib.Path(tempfile.mkdtemp(prefix="velmora-kills-")).resolve()
    try:
        place = Place(BY_NAME[name], folder, scale)
        return (place.seconds, killing.storm(place, 3 * rounds, seed)), name
    except Fault as fault:
        return f"{name}: {fault}", name
    finally:
        shutil.rmtree(folder, ignore_errors=True)


def kill_all(names, rounds, scale, seed, jobs):
    """Kills each task so many times by each signal; yields how the runs ended, or what was found, and the task."""
    with multiprocessing.Pool(jobs) as pool:
        yield from pool.imap(_kill, [(name, rounds, scale, seed) for name in names])
