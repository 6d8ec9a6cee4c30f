#!/usr/bin/python3
"""Walks the accessibility tree of the real application with the real engine: nothing may lack a role, a name or the
action of a click."""

import os
import subprocess
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.normpath(os.path.join(HERE, "..", ".."))
BUILD = os.environ["TUPPI_BUILD"]
PROGRAM = os.path.join(BUILD, "tuppi-transcriber")
sys.path[:0] = [os.path.join(SOURCE, "runtime", "tests", "road"), os.path.join(SOURCE, "scripts")]

import gi  # noqa: E402
from road import SENTENCES, Engine, ffmpeg, several, until  # noqa: E402

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402


def nodes(accessible):
    """Every node below, as a screen reader would meet it; what goes in the meantime is left out."""
    try:
        yield accessible
        for index in range(accessible.get_child_count()):
            child = accessible.get_child_at_index(index)
            if child is not None:
                yield from nodes(child)
    except GLib.Error:
        return


class Walk(unittest.TestCase):
    def setUp(self):
        self.engine = Engine(build=BUILD)
        self.addCleanup(self.engine.close)
        self.environment = dict(self.engine.environment, XDG_RUNTIME_DIR=os.environ["XDG_RUNTIME_DIR"])
        Atspi.init()

    def start(self, *files):
        process = subprocess.Popen([PROGRAM, *files], env=self.environment, stdin=subprocess.DEVNULL)
        self.addCleanup(self.end, process)
        self.process = process

    @staticmethod
    def end(process):
        process.kill()
        process.wait()

    def application(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            child = desktop.get_child_at_index(index)
            if child is not None and child.get_process_id() == self.process.pid:
                child.set_cache_mask(Atspi.Cache.NONE)
                return child
        return None

    def find(self, name, role=None):
        """The first node of this name that is shown, or None."""
        try:
            application = self.application()
            for node in nodes(application) if application else ():
                if node.get_name() == name and (role is None or node.get_role_name() == role):
                    if node.get_state_set().contains(Atspi.StateType.SHOWING):
                        return node
        except GLib.Error:
            pass
        return None

    def wait_for(self, name, role=None):
        return until(lambda: self.find(name, role), f"{role or 'anything'} named {name!r}", 60)

    def press(self, node):
        self.assertTrue(node.get_action_iface().do_action(0))

    def walk(self, *expected):
        """Walks until the tree stands still: a row that changes while it is read is met on the next walk."""
        script = os.path.join(SOURCE, "scripts", "accessibility-walk")
        done = subprocess.run(["/usr/bin/python3", script, "--pid", str(self.process.pid), "tuppi-transcriber"],
                              capture_output=True, text=True, timeout=300)
        print(done.stdout, flush=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.stdout)
        for text in expected:
            self.assertIn(text, done.stdout)

    def fill_list(self):
        """One ready, one failed, one cancelled and one paused recording."""
        engine, scratch = self.engine, self.engine.scratch
        engine.wait(engine.process(several(os.path.join(scratch, "Ready.wav"), SENTENCES[0])), "ready")
        silent = os.path.join(scratch, "Silent.wav")
        ffmpeg("-f", "lavfi", "-i", "anullsrc=r=16000:cl=mono", "-t", "3", silent)
        engine.wait(engine.process(silent), "failed")
        for title, command in (("Cancelled", "cancel"), ("Paused", "pause")):
            job = engine.process(several(os.path.join(scratch, title + ".wav"), *SENTENCES))
            until(lambda: engine.job(job)["status"] == "transcribing", f"work on {title}")
            engine.ask(command, job)
        until(lambda: engine.job(job)["paused"], "the pause")

    def test_empty_window(self):
        self.start()
        self.wait_for("Drop an audio file for Tuppi")
        self.walk("Drop an audio file for Tuppi")

    def test_list_panel_and_sheet(self):
        self.fill_list()
        self.start()
        self.wait_for("Cancel — Paused")
        with self.subTest("rows"):
            self.walk("Open — Ready", "Try Again — Silent", "Start Again — Cancelled", "Resume — Paused")
        with self.subTest("sheet"):
            self.press(self.wait_for("Cancel — Paused"))
            until(lambda: any(node.get_role_name() == "dialog" for node in nodes(self.application())), "the sheet", 60)
            self.walk("dialog")
            self.end(self.process)
        with self.subTest("panel"):
            self.start(os.path.join(self.engine.scratch, "Ready.wav"))
            self.wait_for("Start Transcription")
            self.walk("Start Transcription")


if __name__ == "__main__":
    unittest.main()
