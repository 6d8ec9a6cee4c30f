"""The restart that a new interface language asks for, with the real program, its bus name and its windows."""

import json
import os
import stat
import subprocess
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "scripts"))
from xwindow import Screen, until  # noqa: E402

PROGRAM = os.path.abspath(sys.argv.pop(1))


def running():
    """Process ids of the program in this desktop."""
    desktop = b"TUPPI_DESKTOP=" + os.environ["TUPPI_DESKTOP"].encode()
    found = []
    for pid in filter(str.isdigit, os.listdir("/proc")):
        try:
            if os.readlink(f"/proc/{pid}/exe") != os.path.realpath(PROGRAM):
                continue
            with open(f"/proc/{pid}/environ", "rb") as environment:
                if desktop in environment.read().split(b"\0"):
                    found.append(int(pid))
        except OSError:
            continue  # it has ended in the meantime
    return found


class Relaunch(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.TemporaryDirectory()
        self.addCleanup(self.home.cleanup)
        runtime = os.path.join(self.home.name, "Library", "Application Support", "Larkspire", "runtime")
        os.makedirs(runtime)
        self.calls = os.path.join(self.home.name, "calls")
        # An engine with a long command: "process" goes on until the test lets it end.
        with open(os.path.join(runtime, "call"), "w", encoding="utf-8") as engine:
            engine.write('echo "$1" >>"$HOME/calls"\n'
                         'case $1 in\n'
                         'history) echo "[]" ;;\n'
                         'status) echo "{}" ;;\n'
                         'doctor) read -r _ <"$HOME/gate"; echo ended >>"$HOME/calls" ;;\n'
                         'esac\n')
        os.mkfifo(os.path.join(self.home.name, "gate"), stat.S_IRUSR | stat.S_IWUSR)
        self.environment = dict(os.environ, HOME=self.home.name)
        for name in ("XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"):
            self.environment.pop(name, None)
        self.screen = Screen()
        self.addCleanup(self.end)

    def end(self):
        for pid in running():
            os.kill(pid, 15)
        until(lambda: not running(), "the program's end")
        # The server may show its window a moment longer, and the next test would take that for its own.
        until(lambda: not self.screen.windows(1), "an empty screen")

    def focused(self, window):
        """Asks for the keyboard and says whether it is there. A window may take it back at once, as one does that opens
        just now, so nothing may wait here for ever."""
        subprocess.run(["xdotool", "windowfocus", str(window)], stderr=subprocess.DEVNULL, timeout=60, check=False)
        answer = subprocess.run(["xdotool", "getwindowfocus", "-f"], capture_output=True, timeout=60, check=False)
        return answer.stdout.strip() == str(window).encode()

    def key(self, window, *keys):
        until(lambda: self.focused(window), f"the keyboard at window {window}, with {self.screen.windows(1)}")
        subprocess.run(["xdotool", "key", *keys], timeout=60, check=True)

    def other(self, known):
        """A window beside those, painted."""
        def painted():
            box = next((box for box in self.screen.windows(smallest=100) if box.window not in known), None)
            return box.window if box and self.screen.shows(box) else None
        return until(painted, f"a window beside {known} among {self.screen.windows(1)}")

    def choose_spanish_and_restart(self, command):
        first = subprocess.Popen(command, env=self.environment, cwd=self.home.name, stdin=subprocess.DEVNULL)
        main = until(self.screen.painted, "the main window").window
        old = until(running, "the program")
        self.key(main, "ctrl+comma")
        settings = self.other({main})
        # Into the language menu, its fifth choice after the present one, and it is chosen.
        self.key(settings, "Tab", "Down")
        menu = self.other({main, settings})
        subprocess.run(["xdotool", "key", *["Down"] * 5, "Return"], timeout=60, check=True)
        path = os.path.join(self.home.name, ".config", "tuppi-transcriber", "settings.json")

        def stored():
            if not os.path.exists(path):
                return None
            with open(path, encoding="utf-8") as file:
                return json.load(file).get("AppleLanguages")

        self.assertEqual(until(stored, "the stored choice"), ["es"])
        self.key(self.other({main, settings, menu}), "Return")
        self.assertEqual(first.wait(timeout=60), 0)
        return old

    def assert_fresh_instance(self, old):
        fresh = until(lambda: [pid for pid in running() if pid not in old], "the fresh instance")
        self.assertEqual(len(fresh), 1)
        until(self.screen.painted, "its window")
        # It holds the name that makes it the one instance: a further start hands over to it and ends.
        again = subprocess.run([PROGRAM], env=self.environment, timeout=60, check=False)
        self.assertEqual(again.returncode, 0)
        until(lambda: running() == fresh, "the fresh instance alone")  # beside what it is just about to start

    def test_the_program_comes_back_and_the_engine_goes_on(self):
        old = self.choose_spanish_and_restart([PROGRAM])
        self.assert_fresh_instance(old)
        with open(self.calls, encoding="utf-8") as calls:
            self.assertNotIn("ended\n", calls.readlines())
        with open(os.path.join(self.home.name, "gate"), "w", encoding="utf-8") as gate:
            gate.write("go\n")

        def ended():
            with open(self.calls, encoding="utf-8") as calls:
                return "ended\n" in calls.readlines()

        until(ended, "the end of the old instance's command")

    def test_from_a_script_that_becomes_the_program(self):
        name = os.path.relpath(PROGRAM, self.home.name)
        old = self.choose_spanish_and_restart(["/bin/sh", "-c", f'exec "{name}"'])
        self.assert_fresh_instance(old)


if __name__ == "__main__":
    unittest.main()
