"""What makes a fault in the programs hard to use for somebody: read from the programs as they are built."""

import os
import re
import subprocess
import unittest

PROGRAMS = [os.environ[name] for name in ("VELMORA", "VELMORA_DESKTOP") if name in os.environ]
SEGMENT = re.compile(r"^  (\w+) +0x\S+ 0x\S+ 0x\S+ 0x\S+ 0x\S+ ([R ][W ][E ])", re.MULTILINE)


def readelf(program, *options):
    return subprocess.run(["readelf", "-W", *options, program], capture_output=True, text=True, check=True).stdout


class Hardening(unittest.TestCase):
    def assert_each(self, holds):
        for program in PROGRAMS:
            with self.subTest(program=os.path.basename(program)):
                self.assertTrue(holds(program))

    def test_it_lies_at_another_address_each_time(self):
        self.assert_each(lambda program: re.search(r"Type:\s+DYN", readelf(program, "-h"))
                         and re.search(r"\(FLAGS_1\).*\bPIE\b", readelf(program, "-d")))

    def test_addresses_of_library_functions_cannot_be_written(self):
        self.assert_each(lambda program: "GNU_RELRO" in readelf(program, "-l")
                         and re.search(r"\(FLAGS_1\).*\bNOW\b", readelf(program, "-d")))

    def test_no_memory_is_both_written_and_run(self):
        def holds(program):
            segments = SEGMENT.findall(readelf(program, "-l"))
            return "GNU_STACK" in dict(segments) and not any("W" in how and "E" in how for _, how in segments)

        self.assert_each(holds)

    def test_overruns_of_the_stack_and_of_copied_blocks_end_the_program(self):
        def holds(program):
            called = set(re.findall(r" UND (__\w+_chk)\w*\b", readelf(program, "--dyn-syms")))
            return "__stack_chk_fail" in readelf(program, "--dyn-syms") and called

        self.assert_each(holds)

    def test_libraries_are_looked_for_in_the_systems_places_alone(self):
        self.assert_each(lambda program: not re.search(r"\((RPATH|RUNPATH)\)", readelf(program, "-d")))


if __name__ == "__main__":
    unittest.main()
