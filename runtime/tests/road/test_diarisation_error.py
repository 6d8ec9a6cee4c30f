#!/usr/bin/env python3
"""The count of diarisation errors itself."""

import unittest

from road import main, script

der = script("diarisation-error")


def turns(*items):
    return [der.Turn(*item) for item in items]


TRUTH = turns((0, 10, "ann"), (10, 20, "bob"))


class DiarisationError(unittest.TestCase):
    def rate(self, found, reference=TRUTH, collar=0.0):
        return der.rate(der.compare(reference, found, collar))

    def test_table(self):
        for found, expected in (
                (TRUTH, 0), (turns((0, 10, "2"), (10, 20, "1")), 0),  # names do not matter
                ([], 1), (turns((0, 20, "1")), 0.5),                  # nobody; one for two
                (turns((0, 10, "1"), (10, 15, "2"), (15, 20, "3")), 0.25),
                (turns((0, 11, "1"), (11, 20, "2")), 0.05),           # a second confused
                (turns((0, 9, "1"), (10, 20, "2")), 0.05),            # a second missed
                (turns((0, 10, "1"), (10, 22, "2")), 0.1),            # two false
                (turns((0, 10, "1"), (0, 20, "2")), 0.5)):            # two at once
            self.assertAlmostEqual(self.rate(found), expected, msg=found)

    def test_mapping_is_the_best_of_all(self):
        reference = turns((0, 10, "a"), (10, 16, "b"))
        found = turns((0, 4, "x"), (4, 10, "y"), (10, 16, "x"))
        # x shares 4 s with a and 6 s with b, y 6 s with a.
        self.assertAlmostEqual(self.rate(found, reference), 4 / 16)

    def test_collar(self):
        found = turns((0.2, 10.2, "1"), (10.2, 20.2, "2"))
        self.assertEqual(self.rate(found, collar=0.25), 0)
        self.assertGreater(self.rate(found, collar=0.1), 0)
        self.assertAlmostEqual(der.compare(TRUTH, found, 0.25).speech, 19)

    def test_nobody(self):
        self.assertEqual(self.rate([], []), 0)
        self.assertEqual(self.rate(TRUTH, []), float("inf"))

    def test_file(self):
        self.assertEqual(der.read_turns("0 1.5 ann lee\n\n1.5 2 bob\n"), turns((0, 1.5, "ann lee"), (1.5, 2, "bob")))


if __name__ == "__main__":
    main()
