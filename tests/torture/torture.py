#!/usr/bin/env python3
"""Faults at random over many jobs, for as long as asked, and a check that nothing was lost.

A hundred jobs get a thousand faults: two thirds go to the engine, one third to the application on it. What is done is
drawn by lot from a seed; at which step of a program it strikes depends on the machine as well.
"""

import argparse
import os
import random
import sys
import tempfile
import time

from application_soak import ApplicationSoak
from engine_soak import EngineSoak
from soak import Recordings, Tally

BUILD = os.environ["ENGINE_BUILD"]
LIBRARY = os.path.join(BUILD, "tests", "torture", "tuppi-faults.so")
PROGRAM = os.path.join(BUILD, "tuppi-transcriber")


def arguments():
    parser = argparse.ArgumentParser(prog="torture", description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32),
                        help="repeats the choices of an earlier run")
    parser.add_argument("--minutes", type=float, help="round after round until then, instead of one round")
    parser.add_argument("--jobs", type=int, default=100, help="in a round (100)")
    parser.add_argument("--faults", type=int, default=10, help="for each job (10)")
    parser.add_argument("--part", choices=("engine", "application"), help="only that one")
    return parser.parse_args()


class Clock:
    """When it is over: never, where no time is set."""

    def __init__(self, minutes):
        self.end = None if minutes is None else time.monotonic() + minutes * 60

    def over(self):
        return self.end is not None and time.monotonic() > self.end

    def share(self, part):
        """The same for a part of what is left."""
        left = None if self.end is None else max(0, self.end - time.monotonic())
        return Clock(None if left is None else left * part / 60)


def one_round(asked, chance, recordings, tally, clock):
    both = asked.part is None
    files = max(1, asked.jobs // 3) if both else asked.jobs
    if asked.part != "engine":
        tally.part = "application"
        over = clock.share(0.4 if both else 1).over
        ApplicationSoak(chance, recordings, tally, LIBRARY, PROGRAM, files, files * asked.faults).run(over)
        print(f"application: {tally.total()} faults so far", flush=True)
    if asked.part != "application":
        tally.part = "engine"
        # Its end, with all its jobs, takes the longest.
        EngineSoak(chance, recordings, tally, LIBRARY, asked.jobs - (files if both else 0), asked.faults).run(clock.over)
        print(f"engine: {tally.total()} faults so far", flush=True)


def main():
    sys.stdout.reconfigure(line_buffering=True)
    asked = arguments()
    print(f"seed {asked.seed}")
    chance = random.Random(asked.seed)
    tally = Tally()
    with tempfile.TemporaryDirectory(prefix="torture-") as folder:
        recordings = Recordings(folder)
        clock = Clock(asked.minutes)
        try:
            while True:
                one_round(asked, chance, recordings, tally, clock)
                if asked.minutes is None or clock.over():
                    break
        finally:
            tally.report()
    print("Nothing was lost.")


if __name__ == "__main__":
    main()
