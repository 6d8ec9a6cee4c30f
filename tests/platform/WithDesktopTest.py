#!/usr/bin/python3
"""Runs commands in desktops of their own. Argument: the script."""

import os
import re
import signal
import subprocess
import sys
import unittest

SCRIPT = sys.argv[1]


def run(*arguments, **options):
    return subprocess.run([SCRIPT, *arguments], capture_output=True, text=True, timeout=120, **options)


def is_running(pid):
    """Zombies have ended: whoever started them has only not asked yet."""
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as stat:
            return stat.read().rpartition(")")[2].split()[0] != "Z"
    except FileNotFoundError:
        return False


def processes(desktop):
    """The running processes that carry the desktop's mark."""
    found = []
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            with open(f"/proc/{pid}/environ", "rb") as environment:
                if f"TUPPI_DESKTOP={desktop}".encode() in environment.read().split(b"\0") and is_running(pid):
                    found.append(pid)
        except (FileNotFoundError, ProcessLookupError, PermissionError):
            pass
    return found


class WithDesktopTest(unittest.TestCase):
    def assert_nothing_left(self, desktop):
        self.assertTrue(desktop)
        self.assertEqual(processes(desktop), [])
        self.assertFalse(os.path.exists(desktop))

    def test_the_commands_own_status(self):
        for status in (0, 1, 7, 125):
            self.assertEqual(run("--no-accessibility", "sh", "-c", f"exit {status}").returncode, status)
        self.assertEqual(run("--no-accessibility", "no-such-command").returncode, 127)

    def test_input_and_arguments_pass(self):
        result = run("--no-accessibility", "--", "sh", "-c", 'cat; printf "%s|" "$@"', "sh", "a b", "*", "", input="in\n")
        self.assertEqual(result.stdout, "in\na b|*||")
        self.assertEqual(result.stderr, "")

    def test_a_desktop_of_its_own(self):
        environment = dict(os.environ, WAYLAND_DISPLAY="wayland-7", DISPLAY=":7", DBUS_SESSION_BUS_ADDRESS="unix:path=/outside")
        result = run("sh", "-c", """
            echo "$TUPPI_DESKTOP"; echo "${WAYLAND_DISPLAY-none}"; echo "$XDG_RUNTIME_DIR"; stat -c %a "$XDG_RUNTIME_DIR"
            echo "$DBUS_SESSION_BUS_ADDRESS"; echo "$DISPLAY"; xauth list "$DISPLAY" | wc -l
            dbus-send --session --print-reply=literal --dest=org.a11y.Bus /org/a11y/bus org.freedesktop.DBus.Properties.Get \
                string:org.a11y.Status string:IsEnabled
            dbus-send --system --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.ListNames 2>/dev/null || echo no system bus
            """, env=environment)
        lines = result.stdout.splitlines()
        desktop = lines[0]
        self.assertEqual(lines[1:4], ["none", desktop + "/run", "700"])
        self.assertTrue(lines[4].startswith(f"unix:path={desktop}/run/bus"))
        self.assertRegex(lines[5], r"^:\d+$")
        self.assertNotEqual(lines[5], ":7")
        self.assertEqual(lines[6], "1")
        self.assertIn("boolean true", lines[7])
        self.assertEqual(lines[8:], ["no system bus"])
        self.assert_nothing_left(desktop)

    def test_size_and_scale(self):
        result = run("--no-accessibility", "--size", "801x603", "--scale", "1.25", "sh", "-c", "xdpyinfo; echo scale $QT_SCALE_FACTOR")
        self.assertTrue(re.search(r"dimensions: +801x603 pixels", result.stdout), result.stdout + result.stderr)
        self.assertIn("scale 1.25", result.stdout)

    def test_two_at_once(self):
        first = subprocess.Popen([SCRIPT, "--no-accessibility", "sh", "-c", "echo $DISPLAY; cat"], stdin=subprocess.PIPE,
                                 stdout=subprocess.PIPE, text=True)
        with first:
            display = first.stdout.readline()
            self.assertNotEqual(run("--no-accessibility", "sh", "-c", "echo $DISPLAY").stdout, display)
            first.stdin.close()

    def test_nothing_is_left_whatever_the_command_leaves(self):
        result = run("sh", "-c", """
            echo $TUPPI_DESKTOP
            setsid sleep 1000 >/dev/null 2>&1 &
            setsid sh -c 'trap "" TERM HUP INT; while :; do sleep 1000; done' >/dev/null 2>&1 &
            sleep 1000 >/dev/null 2>&1 & kill -STOP $!
            exit 3""")
        self.assertEqual(result.returncode, 3)
        self.assert_nothing_left(result.stdout.strip())

    def test_a_signal_ends_it_all(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            with subprocess.Popen([SCRIPT, "sh", "-c", "echo $TUPPI_DESKTOP; exec sleep 1000"], stdout=subprocess.PIPE,
                                  text=True) as process:
                desktop = process.stdout.readline().strip()
                process.send_signal(number)
                self.assertEqual(process.wait(60), 128 + number)
            self.assert_nothing_left(desktop)

    def test_wrong_use(self):
        for arguments in ([], ["--size"], ["--size", "big", "true"], ["--scale", "-1", "true"], ["--no-such-option", "true"]):
            result = run(*arguments)
            self.assertEqual(result.returncode, 125, arguments)
            self.assertTrue(result.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
