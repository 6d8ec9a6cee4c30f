#!/usr/bin/env python3
"""The measure that the other tests judge by."""

import os
import subprocess
import tempfile
import unittest

from road import SOURCE, main, wer

CASES = [
    # reference, hypothesis, substitutions, deletions, insertions, words of the reference
    ("good morning to you", "good morning to you", 0, 0, 0, 4),
    ("Good morning, to YOU!", "good morning to you", 0, 0, 0, 4),
    ("good morning to you", "good evening to you", 1, 0, 0, 4),
    ("good morning to you", "good to you", 0, 1, 0, 4),
    ("good morning to you", "good morning then to you", 0, 0, 1, 4),
    ("good morning to you", "", 0, 4, 0, 4),
    ("", "good morning", 0, 0, 2, 0),
    ("", "", 0, 0, 0, 0),
    ("a b c d", "b c d e", 0, 1, 1, 4),
    ("a b c", "a x c c", 1, 0, 1, 3),
    ("Guest: I am here.", "[00:00:03] i am here", 0, 0, 0, 3),
    ("Guest: I am here.", "[00:03] Speaker 2: I am here", 0, 0, 0, 3),
    ("Interviewer: one\nGuest: two", "one two", 0, 0, 0, 2),
    ("he said: go", "he said go", 0, 0, 0, 3),
    ("don\u2019t go", "don't go", 0, 0, 0, 2),
    ("don't go", "dont go", 1, 0, 0, 2),
    ("ill-disposed", "ill disposed", 0, 0, 0, 2),
    ("\u0425\u0442\u043e \u0442\u0443\u0442?", "\u0445\u0442\u043e \u0442\u0443\u0442", 0, 0, 0, 2),
    # What a recogniser writes beside a word is not forgiven.
    ("the end", "the(2) end", 0, 0, 1, 2),
]


class WordErrorRate(unittest.TestCase):
    def test_table(self):
        for reference, hypothesis, *expected in CASES:
            with self.subTest(reference=reference, hypothesis=hypothesis):
                self.assertEqual(list(wer.compare(wer.words(reference), wer.words(hypothesis))), expected)

    def test_rate(self):
        self.assertEqual(wer.rate(wer.Errors(1, 1, 1, 12)), 0.25)
        self.assertEqual(wer.rate(wer.Errors(0, 0, 0, 0)), 0)
        self.assertEqual(wer.rate(wer.Errors(0, 0, 1, 0)), float("inf"))

    def test_command(self):
        with tempfile.TemporaryDirectory() as folder:
            paths = [os.path.join(folder, name) for name in ("reference", "hypothesis")]
            for path, text in zip(paths, ("Guest: one two three four", "[00:00:01] one two three")):
                with open(path, "w", encoding="utf-8") as file:
                    file.write(text)
            command = os.path.join(SOURCE, "scripts", "word-error-rate")
            for limit, status in (([], 0), (["--limit", "0.25"], 0), (["--limit", "0.24"], 1)):
                done = subprocess.run([command, *limit, *paths], capture_output=True, text=True)
                self.assertEqual(done.returncode, status, done)
                self.assertEqual(done.stdout, "WER 0.250 (0 substitutions, 1 deletions, 0 insertions, 4 words)\n")
            self.assertEqual(subprocess.run([command, paths[0], folder], capture_output=True).returncode, 2)


if __name__ == "__main__":
    main()
