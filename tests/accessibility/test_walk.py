#!/usr/bin/python3
"""Goes through the whole real application from outside, as a screen reader does: every window, pane, sheet and menu, and
the transcript page. Nothing may lack a name, a role, a state or an action (see scripts/accessibility-walk). One start
per language; the engine is scripted, so that every state of a row stands still to be looked at."""

import json
import os
import pathlib
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
SOURCE = pathlib.Path(__file__).resolve().parents[2]
BUILD = os.environ["TUPPI_BUILD"]
PROGRAM = os.path.join(BUILD, "tuppi-transcriber")
sys.path[:0] = [str(SOURCE / "tests/support"), str(SOURCE / "runtime/page/tests"), str(SOURCE / "scripts")]

import page  # noqa: E402
from as_module import as_module  # noqa: E402
from scripted_engine import ScriptedEngine  # noqa: E402
from xwindow import until  # noqa: E402

accessibility_walk = as_module(SOURCE / "scripts/accessibility-walk")
from gi.repository import Atspi, GLib  # noqa: E402

MODELS = {"custom": [{"id": "ada", "name": "Ada", "kind": "parakeet", "repo": "ada/p"}], "text_model": "qwen3:8b",
          "ollama_models": ["gemma", "llama"]}
CHECKS = [{"check": "Engine", "ok": True}, {"check": "Ollama", "ok": False, "optional": True},
          {"check": "FFmpeg", "ok": False, "detail": "not found"}]
LIST_HEIGHT = 1180  # twelve rows
PAUSE = 0.1  # a look at the whole tree costs both sides


class Outside:
    """The application as its accessibility tree shows it."""

    def __init__(self, environment):
        self.environment = environment
        self.process = subprocess.Popen([PROGRAM], env=environment, stdin=subprocess.DEVNULL)
        self.tree = accessibility_walk.wait_for_application("tuppi-transcriber", self.process.pid, 60)

    def end(self):
        self.process.kill()
        self.process.wait()

    def hand_over(self, *files):
        """As a file manager does: a second start gives the files to the one that runs."""
        subprocess.run([PROGRAM, *files], env=self.environment, check=True, timeout=60, stdin=subprocess.DEVNULL)

    @staticmethod
    def children(node):
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child is not None:
                yield child

    def below(self, node):
        """Every node there, as far as it answers: some may go in the meantime."""
        yield node
        try:
            children = list(self.children(node))
        except GLib.Error:
            return
        for child in children:
            yield from self.below(child)

    @staticmethod
    def shows(node):
        return node.get_state_set().contains(Atspi.StateType.SHOWING)

    def windows(self):
        try:
            return [window for window in self.children(self.tree) if self.shows(window)]
        except GLib.Error:
            return []

    def look(self, name, role=None, within=None):
        """What of this name is shown, or None."""
        for window in [within] if within else self.windows():
            for node in self.below(window):
                try:
                    if node.get_name() == name and (role is None or node.get_role_name() == role) and self.shows(node):
                        return node
                except GLib.Error:
                    continue
        return None

    def find(self, name, role=None, within=None):
        return until(lambda: self.look(name, role, within), f"{role or 'anything'} named {name!r}", pause=PAUSE)

    def window(self, name):
        return until(lambda: next((window for window in self.windows() if window.get_name() == name), None),
                          f"the window {name!r}", pause=PAUSE)

    def gone(self, name):
        until(lambda: all(window.get_name() != name for window in self.windows()), f"the end of {name!r}", pause=PAUSE)

    def act(self, node, wanted):
        action = node.get_action_iface()
        names = [action.get_action_name(index) for index in range(action.get_n_actions())] if action else []
        if wanted not in names:
            raise AssertionError(f"{node.get_role_name()} {node.get_name()!r} does not offer {wanted}, only {names}")
        action.do_action(names.index(wanted))

    def focus(self, node):
        """Not to be followed by a key before it is there."""
        self.act(node, "SetFocus")
        self.await_focus(node)

    @staticmethod
    def await_focus(node):
        until(lambda: node.get_state_set().contains(Atspi.StateType.FOCUSED), "the focus")

    def press(self, name, role=None, within=None):
        self.act(self.find(name, role, within), "Press")

    def choose(self, name):
        """From the main menu, whose items answer without being shown."""
        for node in self.below(self.tree.get_child_at_index(0)):
            if node.get_name() == name and node.get_role_name() == "menu item":
                return self.act(node, "Press")
        raise AssertionError(f"no menu item {name!r}")

    def hear_of_focus(self, key, role, repeat=False):
        """What of that role has the keyboard after the key, as the application says by itself."""
        heard = []

        def hear(event):
            if event.detail1 and event.source.get_role_name() == role:
                heard.append(event.source)

        def told():
            while GLib.MainContext.default().iteration(False):
                pass
            if repeat and not heard:
                self.keys(key)
            return heard

        listener = Atspi.EventListener.new(hear)
        listener.register("object:state-changed:focused")
        self.keys(key)
        until(told, f"word of the focus on a {role}", pause=0.3 if repeat else 0.02)
        listener.deregister("object:state-changed:focused")
        return heard[0]

    def menu(self):
        """The context menu that is open. It hangs on no window: the application tells of it when an item is lit."""
        return self.hear_of_focus("Down", "menu item", repeat=True).get_parent()

    def focused(self):
        """Name of what has the keyboard, the innermost of those that say so."""
        names = [node.get_name() for window in self.windows() for node in self.below(window)
                 if node.get_state_set().contains(Atspi.StateType.FOCUSED)]
        return names[-1] if names else None

    @staticmethod
    def keys(*keys, window=None):
        """To the X window of that title, else to the one that has the keyboard."""
        focus = ["search", "--onlyvisible", "--name", f"^{window}$", "windowfocus", "--sync"] if window else []
        subprocess.run(["xdotool", *focus, "key", *keys], check=True, timeout=60)


class Walk(unittest.TestCase):
    language = "en"
    another = "End"  # the key to it in the list of languages

    def setUp(self):
        self.engine = ScriptedEngine()
        self.addCleanup(self.engine.remove)
        table = SOURCE / f"resources/localization/{self.language}.json"
        self.texts = json.loads(table.read_text(encoding="utf-8")) if self.language != "en" else {}
        if self.language != "en":
            self.engine.write_settings({"AppleLanguages": [self.language]})
        self.engine.answer("models", json.dumps(MODELS))
        self.engine.answer("doctor", json.dumps(CHECKS))
        self.engine.answer("process", before="wait_for taken")
        self.engine.answer("pause", err="Error: the engine is busy\n", status=1)
        environment = dict(self.engine.environment, XDG_RUNTIME_DIR=os.environ["XDG_RUNTIME_DIR"],
                           QTWEBENGINE_DISABLE_SANDBOX="1", QT_ACCESSIBILITY="1")
        Atspi.init()
        Atspi.set_timeout(5000, 10000)
        self.it = Outside(environment)
        self.addCleanup(self.it.end)

    def L(self, text, *values):
        text = self.texts.get(text, text)
        for value in values:
            text = text.replace("%lu" if "%lu" in text else "%@", value, 1)
        return text

    def button(self, title, row):
        return f"{self.L(title)} — {row}"

    def check(self, what, node, *expected):
        """Nothing there lacks anything, and the texts are there."""
        print(f"---- {self.language}: {what}", flush=True)
        walk = accessibility_walk.Walk(False, False)
        walk.visit(node, at_top=node.get_parent() is not None and node.get_parent().get_role_name() == "application")
        lacks = [f"lacks {missing}: {' > '.join(path)}" for path, missing in walk.complaints]
        print("\n".join(lacks) or f"{walk.controls} controls lack nothing", flush=True)
        names = {child.get_name() for child in self.it.below(node)}
        with self.subTest(what):
            self.assertEqual(lacks, [])
            for text in expected:
                self.assertIn(text, names)

    def check_sheet(self, what, message, answer, *expected):
        """A sheet with that message, which the answer closes."""
        sheet = self.it.window(message)
        self.check(what, sheet, answer, *expected)
        self.it.press(answer, "push button", sheet)
        self.it.gone(message)

    # The states of the list

    def jobs(self):
        def call(name, **files):
            folder = pathlib.Path(self.engine.root) / "made" / name
            folder.mkdir(parents=True, exist_ok=True)
            for file, text in files.items():
                (folder / f"{file}.md").write_text(text, encoding="utf-8")
            return str(folder)

        def job(title, status, call_dir=None, **more):
            return {"id": title, "title": title, "status": status, "paused": False,
                    "call_dir": call_dir or call(title), "duration_seconds": 85, "language": "en", **more}

        read = call("Page")
        page.write(pathlib.Path(read), page.sample())
        return [job("Listening", "transcribing"), job("Paused", "transcribing", paused=True), job("Queued", "queued"),
                job("Analysed", "analyzing"), job("Cleaned", "cleaning"), job("Page", "ready", read),
                job("Plain", "ready", call("Plain", call="# Talk\n\nA summary.\n")), job("Failed", "failed", error="No sound"),
                job("Cancelled", "cancelled"), job("Russian", "ready", language="ru")]

    def show_jobs(self):
        self.engine.answer("status", json.dumps({"latest_job": {"id": "Listening", "progress": "40%"}, "library": None}))
        self.engine.answer("history", json.dumps(self.jobs()))
        self.engine.touch_state()
        self.it.keys(window=self.L("Tuppi Transcriber"), *["Home"])
        subprocess.run(["xdotool", "search", "--onlyvisible", "--name", f"^{self.L('Tuppi Transcriber')}$", "windowsize",
                        "780", str(LIST_HEIGHT)], check=True, timeout=60)

    # The walk, in the order in which a person would come by

    def test_everything(self):
        self.main = self.it.window(self.L("Tuppi Transcriber"))
        self.empty_window()
        self.panel()
        self.rows()
        self.row_keys()
        self.row_sheets()
        self.side_windows()
        self.settings()
        self.text_window()
        self.viewer()
        self.check("all of it", self.it.tree)

    def empty_window(self):
        self.it.find(self.L("Drop an audio file for Tuppi"))
        self.check("main window without transcripts", self.main, self.L("Add audio file"), self.L("Settings…"),
                   self.L("Close Window"), self.L("Select All"))

    def panel(self):
        title = self.L("New Transcription")
        self.it.hand_over(self.engine.recording("one.wav"))
        panel = self.it.window(title)
        self.check("panel with a file", panel, "one.wav", self.L("Start Transcription"), self.L("Add More…"))
        self.it.hand_over(*(self.engine.recording(f"file {number}.wav") for number in range(8)))
        start = self.L("Start Transcription (%lu files)", "9")
        self.it.find(start, within=panel)
        self.check("panel with nine files", panel, start)
        self.it.act(self.it.find(self.L("Separate speakers"), "check box", panel), "Toggle")
        self.it.act(self.it.find(self.L("Parakeet v3 — fastest"), within=panel), "Press")
        self.check("panel with other choices", panel)
        self.it.press(self.L("Cancel"), "push button", panel)
        self.it.gone(title)
        self.it.hand_over(self.engine.recording("one.wav"), self.engine.recording("two.wav"))
        self.it.press(self.L("Start Transcription (%lu files)", "2"))
        self.it.gone(title)
        until(lambda: self.engine.calls("process"), "the start")

    def rows(self):
        self.it.find(self.button("Remove", "two"))
        self.show_jobs()
        for button, row in (("Pause", "Listening"), ("Resume", "Paused"), ("Pause", "Analysed"), ("Open", "Page"),
                            ("Summary", "Plain"), ("Try Again", "Failed"), ("Start Again", "Cancelled"), ("Open", "Russian")):
            self.it.find(self.button(button, row))
        self.check("rows in every state", self.main, *(self.button(button, row) for button, row in (
            ("Cancel", "Queued"), ("Cancel", "Cleaned"), ("Copy Text", "Page"), ("Show in Finder", "Page"), ("Remove…", "Failed"))))

    def row(self, title):
        return until(lambda: next((node for node in self.it.below(self.main)
                                        if node.get_role_name() == "panel" and node.get_name().startswith(title + ". ")
                                        and self.it.shows(node)), None), f"the row {title}")

    def row_keys(self):
        """Arrow keys move what is focused from row to row, and the row offers its menu."""
        self.it.act(self.row("Page"), "SetFocus")
        until(lambda: (self.it.focused() or "").startswith("Page. "), "the focus on the row")
        told = self.it.hear_of_focus("Down", "panel").get_name()
        self.assertTrue(told.startswith("Plain. "), told)
        until(lambda: (self.it.focused() or "").startswith("Plain. "), "the focus on the next row")
        self.it.act(self.row("Page"), "ShowMenu")
        menu = self.it.menu()
        self.check("row menu", menu, self.L("Open Transcript"), self.L("Try Again"), self.L("Remove…"))
        self.it.act(self.it.find(self.L("Rename…"), "menu item", menu), "Press")
        self.check_sheet("rename", self.L("Rename transcript"), self.L("Cancel"), self.L("Rename"))

    def row_sheets(self):
        cancel = self.L("Cancel")
        self.it.press(self.button("Remove…", "Page"))
        self.check_sheet("remove", self.L("Remove “%@”?", "Page"), cancel, self.L("Move to Trash"))
        self.it.press(self.button("Cancel", "Listening"))
        self.check_sheet("cancel", self.L("Cancel “%@”?", "Listening"), self.L("Keep Going"))
        self.it.press(self.button("Pause", "Listening"))
        self.check_sheet("failure", self.L("Could not pause"), self.L("OK"))
        self.it.press(self.L("Clear the list…"))
        self.check_sheet("clear", self.L("Clear all %lu finished transcripts from the list?", "5"), cancel)

    def side_windows(self):
        self.it.choose(self.L("About Tuppi Transcriber"))
        about = self.it.window(self.L("About Tuppi Transcriber"))
        self.check("about", about, self.L("Tuppi Transcriber"))
        self.it.choose(self.L("Acknowledgements…"))
        self.check("acknowledgements", self.it.window(self.L("Acknowledgements")))

    def settings(self):
        title = self.L("Settings")
        self.it.choose(self.L("Settings…"))
        window = self.it.window(title)
        for tab, text in (("General", "Purr while working, mew when done"), ("Transcription", "Speed:"),
                          ("Storage", "Transcripts folder:"), ("Models", "Add Model…"), ("Engine", "Check Again")):
            self.it.press(self.L(tab), "page tab", window)
            self.it.find(self.L(text), within=window)
            self.check(f"settings, {tab}", window, self.L(text))
        self.it.press(self.L("Models"), "page tab", window)
        self.it.press(f"{self.L('Remove…')} — Ada")
        self.check_sheet("remove a model", self.L("Remove “%@” from Tuppi?", "Ada"), self.L("Cancel"), self.L("Remove"))
        self.it.press(self.L("Add Model…"))
        self.check_sheet("add a model", self.L("Add a speech model"), self.L("Cancel"), self.L("Download and Add"))
        self.it.press(self.L("Download and Use"))
        self.choose_language(window, title)

    def choose_language(self, window, title):
        """The list of a pop-up button, and the sheet that asks for a restart."""
        self.it.press(self.L("General"), "page tab", window)
        box = next(node for node in self.it.below(window) if node.get_role_name() == "combo box" and self.it.shows(node))
        self.it.act(box, "Press") if "Press" in self.actions(box) else self.it.act(box, "ShowMenu")
        self.it.find("Español", "list item")
        self.it.keys(self.another, "Return")
        self.check_sheet("restart", self.L("Restart Tuppi Transcriber to switch the language?"), self.L("Later"),
                         self.L("Restart Now"))

    @staticmethod
    def actions(node):
        action = node.get_action_iface()
        return [action.get_action_name(index) for index in range(action.get_n_actions())]

    def text_window(self):
        self.it.press(self.button("Summary", "Plain"))
        title = self.L("%@ — Summary and Text", "Plain")
        window = self.it.window(title)
        self.check("plain text window", window, self.L("Save as .txt…"), self.L("Share"))

    def viewer(self):
        self.it.press(self.button("Open", "Page"))
        window = self.it.window("Page")
        self.it.find(self.L("Edit this line"), within=window)
        self.check("viewer, transcript", window, self.L("Speaker: %@", "Guest"), self.L("Play"), self.L("Search in the text"))
        line = self.it.find("Good morning. I am happy to be here.", within=window).get_parent().get_parent()
        self.it.focus(line)
        until(lambda: line.get_name().startswith("Guest, 0:05, Good"), "the name of the line")
        self.it.focus(self.it.find(self.L("Edit this line"), within=window))
        self.it.keys("Return", window="Page")
        self.it.find(self.L("Split here"), within=window)
        self.check("viewer, editor", window, self.L("Text of the line"), self.L("Done"))
        self.it.keys("Escape", window="Page")
        self.it.await_focus(line)
        self.it.focus(self.it.find(self.L("Speaker: %@", "Interviewer"), within=window))
        self.it.keys("Return", window="Page")
        self.it.find(self.L("New name"), within=window)
        self.check("viewer, speaker menu", window, self.L("This line only"), self.L("Save"))
        self.it.keys("Escape", window="Page")
        self.it.press(self.button("Summary", "Page"))
        self.it.find(self.L("Tasks"), "heading", window)
        self.check("viewer, summary", window, "I have to call the bank next week.")


class WalkRightToLeft(Walk):
    language = "ar"
    another = "Home"


if __name__ == "__main__":
    unittest.main()
