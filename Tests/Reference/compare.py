#!/usr/bin/env python3
"""Runs the program on random projects and compares all that it says and makes with the second implementation.

    python3 compare.py --program PATH --seeds 1-500

A mismatch names its seed, the first difference and the folder of the project, which is kept. The last line counts.
Exit status 1 if anything differed.
"""

import argparse
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

import plans
import projects
from reference import spot, timecode
from reference.names import Disk
from reference.project import Project
from reference.view import Model, info, path_text

_FRAME_LIMIT = 25000
_SAMPLE_LIMIT = 400000
_MODES = {'project': spot.FREE, 'offset': spot.WITH_OFFSET, 'start': spot.AT_START, 'first': spot.FROM_FIRST}


class Mismatch(Exception):
    pass


def first_difference(expected, got, where=''):
    """A line that says where two values first differ, or null."""
    if type(expected) is not type(got):
        return '%s: expected %s, got %s' % (where, brief(expected), brief(got))
    if isinstance(expected, dict):
        for key in expected:
            if key not in got:
                return '%s.%s: missing' % (where, key)
            found = first_difference(expected[key], got[key], '%s.%s' % (where, key))
            if found:
                return found
        more = [key for key in got if key not in expected]
        return '%s: unexpected %s' % (where, more) if more else None
    if isinstance(expected, list):
        for number, (left, right) in enumerate(zip(expected, got)):
            found = first_difference(left, right, '%s[%d]' % (where, number))
            if found:
                return found
        if len(expected) != len(got):
            longer = expected if len(expected) > len(got) else got
            return '%s: expected %d items, got %d; the first more: %s' % (
                where, len(expected), len(got), brief(longer[min(len(expected), len(got))]))
        return None
    same = repr(expected) == repr(got) if isinstance(expected, float) else expected == got
    return None if same else '%s: expected %s, got %s' % (where, brief(expected), brief(got))


def brief(value):
    text = repr(value)
    return text if len(text) <= 300 else text[:300] + '...'


def demand_same(expected, got, where):
    found = first_difference(expected, got, where)
    if found:
        raise Mismatch(found)


def decoded(text, where):
    """JSON that is UTF-8 and JSON, and nothing else."""
    try:
        return json.loads(text.decode('utf-8'), parse_constant=lambda name: demand_same(None, name, where))
    except ValueError as error:
        raise Mismatch('%s: %s: %s' % (where, error, brief(text))) from error


class Run:
    """One call of the program, with what it left on its two outputs."""

    def __init__(self, program, arguments):
        self.arguments = [program] + arguments
        done = subprocess.run(self.arguments, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=120, check=False)
        self.status = done.returncode
        self.output = done.stdout
        self.errors = done.stderr

    def demand_reader_lines(self, said):
        """The reader speaks first; after it the program speaks under its own name."""
        expected = b''.join(line + b'\n' for line in said)
        if not self.errors.startswith(expected):
            raise Mismatch('standard error: expected %s, got %s' % (brief(expected), brief(self.errors)))
        self.own_lines = self.errors[len(expected):]
        for line in self.own_lines.split(b'\n')[:-1]:
            if line.startswith((b'Found un', b'Encountered un')):
                raise Mismatch('standard error: one line more: %s' % brief(line))


class Comparison:
    def __init__(self, program, seed, base):
        self.program = program
        self.seed = seed
        self.base = base
        self.command = ''

    def _run(self, *arguments):
        self.command = ' '.join(shlex.quote(part) for part in (self.program,) + arguments)
        return Run(self.program, list(arguments))

    def run(self):
        """Answers how many spots were compared."""
        path, asked = projects.ProjectMaker(self.seed, self.base).make()
        self._compare_info(path)
        return sum(self._compare_spot(path, plan) for plan in asked)

    def _compare_info(self, path):
        project = Project(os.fsencode(path))
        run = self._run('info', '--json', path)
        demand_same(0 if project.failure is None else 2, run.status, 'exit status')
        run.demand_reader_lines(project.said)
        got = decoded(run.output, 'info')
        if got.get('failure'):
            got['failure'].pop('reason', None)
        demand_same(info(Model(project)), got, 'info')

    def _compare_spot(self, path, plan):
        model = Model(Project(os.fsencode(path)))
        self._tame(model, plan)
        disk = None
        options = None
        if model.first_event is not None:
            disk, options = self._prepare(model, plan)
            if self._samples(model, options) > _SAMPLE_LIMIT:
                return 0
        elif plan.copy_to:
            plan.copy_to = None
        run = self._run('spot', '--json', path, *plan.arguments())
        run.demand_reader_lines(model.project.said)
        if not model.ok or model.first_event is None:
            demand_same(3 if model.ok else 2, run.status, 'exit status')
            demand_same('', run.output.decode('utf-8', 'replace'), 'output')
            return 1
        lines = [decoded(line, 'spot line %d' % number) for number, line in enumerate(run.output.split(b'\n')[:-1])]
        self._demand_spot(model, options, disk, run, lines)
        return 1

    def _tame(self, model, plan):
        """Leaves fades out where a damaged length would ask for hours of audio."""
        lengths = [timecode.to_samples(fade['length']) for event in model.project.events
                   for fade in (event.infade, event.outfade) if fade]
        if plan.fades and any(length > _FRAME_LIMIT for length in lengths):
            plan.fades = False

    def _samples(self, model, options):
        """About how many samples a spot converts. Samples of more than 32 bits have no agreed scale: too many, then."""
        total = 0
        for event in model.project.events:
            if event.live and event.source_file and event.source_file.valid:
                if event.source_file.bits > 32:
                    return _SAMPLE_LIMIT + 1
                total += event.source_file.frames * event.source_file.channels * (1 + bool(options.gain))
        return total

    def _prepare(self, model, plan):
        options = spot.Options()
        options.mode = _MODES[plan.mode]
        if plan.offset is not None:
            text = plan.offset if plan.offset[0] in '+-' else '+' + plan.offset
            options.offset_text = timecode.entered(text, True)
        if plan.start is not None:
            options.start_text = timecode.entered(plan.start, False)
        options.bits, options.fades, options.gain = plan.bits, plan.fades, plan.gain
        options.rate = plans.session_rate(plan, model.first_event)
        options.code = plans.session_code(plan, model.first_event)
        if plan.copy_to:
            options.copy_folder = os.fsencode(plan.copy_to)
        for name, (_, pairs) in plan.lists.items():
            self._tick(model, name, pairs)
        disk = Disk([os.fsencode(self.base)])
        folder = os.path.normpath(options.copy_folder) if options.copy_folder else b''
        while folder and folder not in disk.folders:
            disk.folders.add(folder)
            folder = os.path.dirname(folder)
        return disk, options

    def _tick(self, model, name, pairs):
        keep = name.startswith('only')
        for index, event in enumerate(model.project.events):
            if name.endswith('events'):
                event.event_on = int(any(low <= index <= high for low, high in pairs) == keep)
            elif event.is_cut:
                track = event.edit['destChannel']
                event.track_on = int(any(low <= track <= high for low, high in pairs) == keep)

    def _demand_spot(self, model, options, disk, run, lines):
        def answer(number):
            if number < len(lines) and lines[number].get('kind') == 'region':
                return lines[number].get('status')
            return 0

        done = spot.Spot(model, options, disk, answer)
        for line in lines:
            if line.get('kind') == 'region':
                line['message']['parameters'][0].pop('hex', None)
        expected = [self._texts(line) for line in done.lines]
        demand_same(expected, lines, 'spot')
        demand_same(3 if done.left_out else 0, run.status, 'exit status')
        self._demand_left_out(done, run)
        self._demand_files(disk)

    def _texts(self, value):
        if isinstance(value, dict):
            return {key: self._texts(part) for key, part in value.items()}
        if isinstance(value, list):
            return [self._texts(part) for part in value]
        return path_text(value) if isinstance(value, bytes) else value

    def _demand_left_out(self, done, run):
        named = {int(number) for number in re.findall(rb'^velmora: left out: event (\d+)\b', run.own_lines, re.M)}
        demand_same(sorted(done.left_out), sorted(named), 'events named as left out')

    def _demand_files(self, disk):
        found = Disk([os.fsencode(self.base)])
        demand_same(sorted(disk.folders), sorted(found.folders), 'folders')
        demand_same(sorted(disk.files), sorted(found.files), 'files')
        for path, content in disk.written.items():
            with open(path, 'rb') as file:
                got = file.read()
            if got != content:
                raise Mismatch('%s: %s' % (path.decode('utf-8', 'replace'), self._byte_difference(content, got)))

    @staticmethod
    def _byte_difference(content, got):
        at = next((at for at, (left, right) in enumerate(zip(content, got)) if left != right),
                  min(len(content), len(got)))
        return 'byte %d of %d: expected %s, got %s (%d bytes)' % (
            at, len(content), content[at:at + 8].hex(), got[at:at + 8].hex(), len(got))


def compare(program, seed, root):
    """Answers the number of spots, and the mismatch as a text or null."""
    base = os.path.join(root, 'seed-%d' % seed)
    shutil.rmtree(base, ignore_errors=True)
    os.makedirs(base)
    comparison = Comparison(program, seed, base)
    try:
        spots = comparison.run()
    except (Mismatch, subprocess.TimeoutExpired) as error:
        return 0, 'seed %d: %s\n  %s\n  kept in %s' % (seed, error, comparison.command, base)
    shutil.rmtree(base)
    return spots, None


def seeds_of(text):
    first, _, last = text.partition('-')
    return range(int(first), int(last or first) + 1)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split('\n', 1)[0])
    parser.add_argument('--program', required=True, help='the program velmora')
    parser.add_argument('--seeds', type=seeds_of, default=range(1, 101), metavar='FIRST-LAST')
    parser.add_argument('--folder', help='where the projects go; default: a new temporary folder')
    arguments = parser.parse_args()
    root = os.path.realpath(arguments.folder or tempfile.mkdtemp(prefix='velmora-compare-'))
    os.makedirs(root, exist_ok=True)
    spots = mismatches = 0
    for seed in arguments.seeds:
        compared, mismatch = compare(os.path.abspath(arguments.program), seed, root)
        spots += compared
        if mismatch:
            mismatches += 1
            print(mismatch, flush=True)
    if not mismatches and not arguments.folder:
        shutil.rmtree(root)
    print('%d projects, %d spots, %d mismatches' % (len(arguments.seeds), spots, mismatches))
    return 1 if mismatches else 0


if __name__ == '__main__':
    sys.exit(main())
