"""Listens to the two sounds by measure, and holds the files against the script that makes them."""

import filecmp
import os
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
FOLDER = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "resources", "sounds"))
sys.path.insert(0, os.path.join(FOLDER, "..", "..", "scripts"))
from as_module import as_module  # noqa: E402

draw = as_module(os.path.join(FOLDER, "draw"))
dsp = draw.dsp

NAMES = ("cat-purr", "cat-meow")
LOUDNESS_TOLERANCE = 0.1  # LU, between the two
HIGHEST_PEAK = -1.0       # dBFS, which leaves room for what resampling adds
MOST_BYTES = 400_000


def path(name):
    return os.path.join(FOLDER, name + ".wav")


def envelope(samples, step):
    """The level of every stretch of that many samples."""
    return [dsp.rms(samples[at:at + step]) for at in range(0, len(samples) - step + 1, step)]


def pulses_per_second(samples):
    """The rate, between 15 and 40, at which the level comes round again most alike."""
    step = dsp.RATE // 1000
    level = envelope(samples, step)
    mean = sum(level) / len(level)
    level = [value - mean for value in level]

    def likeness(lag):
        return sum(a * b for a, b in zip(level, level[lag:])) / (len(level) - lag)

    best = max(range(25, 67), key=likeness)
    return dsp.RATE / step / best


def pitch(samples):
    """The strongest tone between 300 and 1000 Hz."""
    powers = dsp.spectrum(samples, 2048)
    width = dsp.RATE / 2048
    return max(range(int(300 / width), int(1000 / width)), key=lambda index: powers[index]) * width


class Sounds(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.purr, cls.mew = (dsp.read(path(name)) for name in NAMES)

    def test_the_files_are_what_the_script_makes(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("draw", "dsp.py", "purr.py", "mew.py"):
                shutil.copy(os.path.join(FOLDER, name), folder)
            subprocess.run([sys.executable, os.path.join(folder, "draw")], check=True, stdout=subprocess.DEVNULL)
            for name in NAMES:
                made = os.path.join(folder, name + ".wav")
                self.assertTrue(filecmp.cmp(made, path(name), shallow=False), name)

    def test_size(self):
        for name in NAMES:
            self.assertLessEqual(os.path.getsize(path(name)), MOST_BYTES, name)

    def test_neither_clips(self):
        for name, samples in zip(NAMES, (self.purr, self.mew)):
            self.assertLess(dsp.decibels(max(map(abs, samples))), HIGHEST_PEAK, name)

    def test_both_are_equally_loud(self):
        purr, mew = dsp.loudness(self.purr, loop=True), dsp.loudness(self.mew)
        self.assertAlmostEqual(purr, mew, delta=LOUDNESS_TOLERANCE)
        self.assertAlmostEqual(purr, draw.LOUDNESS, delta=LOUDNESS_TOLERANCE)

    def test_no_constant_part(self):
        for name, samples in zip(NAMES, (self.purr, self.mew)):
            self.assertLess(abs(sum(samples) / len(samples)), 0.0005, name)

    def test_the_purr_has_no_seam(self):
        at_seam, median, _ = draw.seam(self.purr)
        self.assertLess(at_seam, 4 * median)
        # Nor a bend: the slope changes there no more than it does elsewhere.
        bends = sorted(abs(a - 2 * b + c) for a, b, c in zip(self.purr, self.purr[1:], self.purr[2:]))
        around = self.purr[-2:] + self.purr[:2]
        for a, b, c in zip(around, around[1:], around[2:]):
            self.assertLess(abs(a - 2 * b + c), 4 * bends[len(bends) // 2] + 2 / 32767)

    def test_the_purr_goes_on_in_step_over_the_seam(self):
        half = dsp.RATE // 2
        over = self.purr[-half:] + self.purr[:half]
        self.assertTrue(22 <= pulses_per_second(over) <= 29, pulses_per_second(over))
        levels = envelope(over, dsp.RATE // 20)
        middle = len(levels) // 2
        self.assertGreater(min(levels[middle - 2:middle + 2]), 0.15 * max(levels))

    def test_the_purr_breathes(self):
        second = dsp.RATE
        out, breathed_in = self.purr[second // 4:second], self.purr[5 * second // 4:int(1.85 * second)]
        self.assertTrue(23 <= pulses_per_second(out) <= 25, pulses_per_second(out))
        self.assertTrue(26 <= pulses_per_second(breathed_in) <= 28, pulses_per_second(breathed_in))
        self.assertGreater(dsp.decibels(dsp.rms(out) / dsp.rms(breathed_in)), 3)

    def test_a_small_speaker_still_purrs(self):
        powers = dsp.spectrum(self.purr)
        share = dsp.power_between(powers, 300, 5000) / sum(powers)
        self.assertGreater(dsp.decibels(share) / 2, -14)

    def test_the_mew_begins_and_ends_in_silence(self):
        self.assertLess(max(map(abs, self.mew[:8] + self.mew[-8:])), 0.001)

    def test_the_mew_rises_and_falls(self):
        length = len(self.mew)
        start, top, end = (pitch(self.mew[int(at * length):int(at * length) + 4096]) for at in (0.03, 0.29, 0.72))
        self.assertTrue(500 <= start <= 640, start)
        self.assertTrue(730 <= top <= 830, top)
        self.assertTrue(450 <= end <= 600, end)

    def test_the_mouth_opens_and_closes(self):
        def brightness(at):
            start = int(at * len(self.mew))
            powers = dsp.spectrum(self.mew[start:start + 4096], 2048)
            return dsp.power_between(powers, 1100, 5000) / sum(powers)

        self.assertGreater(brightness(0.35), 1.5 * brightness(0.78))


if __name__ == "__main__":
    unittest.main()
