#!/usr/bin/python3
"""Walks windows with one fault each. Arguments: the script, the program with the windows."""

import subprocess
import sys
import unittest

WALK, PROGRAM = sys.argv[1:3]
NAME = "accessible-program"


def walk(fault, *options):
    with subprocess.Popen([PROGRAM, fault]) as program:
        try:
            return subprocess.run([WALK, "--pid", str(program.pid), *options, NAME], capture_output=True, text=True, timeout=120)
        finally:
            program.kill()


class AccessibilityWalkTest(unittest.TestCase):
    maxDiff = None

    def test_nothing_is_missing(self):
        result = walk("good")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        lines = result.stdout.splitlines()
        self.assertEqual(lines[-1], "8 controls, 0 complaints")
        for line in ('  frame "Accessible" [enabled]',
                     '      menu item "File" [enabled] {ShowMenu}',
                     '          menu item "Open…" [enabled] {Press}',
                     '          push button "Start" [focusable enabled] {Press, SetFocus}',
                     '          push button "Not now" [focusable]',
                     '          label "A text with\\ntwo lines" [enabled read_only]'):
            self.assertIn(line.strip(), [shown.strip() for shown in lines])
        self.assertFalse(any(shown.strip().startswith("filler") for shown in lines))

    def test_decoration_on_demand(self):
        result = walk("good", "--all")
        self.assertEqual(result.returncode, 0)
        self.assertTrue(any(line.strip().startswith("filler") for line in result.stdout.splitlines()))

    def test_one_fault_each(self):
        faults = {
            "nameless-window": ['lacks a name: application "accessible-program" > frame ""'],
            "nameless-menu-item": ['lacks a name: %s > menu item "File" > menu item ""'],
            "nameless-button": ['lacks a name: %s > push button ""'],
            "nameless-entry": ['lacks a name: %s > text ""'],
            "unlabelled-box": ['lacks a label: %s > combo box "Finnish"'],
            "dead-button": ['lacks the action of a click: %s > push button "Dead"'],
            "no-role": ['lacks a role: %s > filler "Plain"'],
            "unfocusable-button": ['lacks the state focusable: %s > push button "Start"'],
            "twins": ['lacks a name of its own: %s > push button "Start"'],
            "plain-window": ['lacks a role: application "accessible-program" > filler "Plain"'],
            "neither": ['lacks a role: %s > filler ""', 'lacks a name: %s > filler ""'],
        }
        window = 'application "accessible-program" > frame "Accessible"'
        for fault, complaints in faults.items():
            with self.subTest(fault):
                result = walk(fault, "--quiet")
                self.assertEqual((result.returncode, result.stderr), (1, ""))
                expected = [line.replace("%s", window) for line in complaints]
                self.assertEqual(result.stdout.splitlines()[:-1], expected)

    def test_no_such_application(self):
        result = subprocess.run([WALK, "--wait", "0", "no such application"], capture_output=True, text=True, timeout=120)
        self.assertEqual(result.returncode, 2)
        self.assertIn("no application", result.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
