"""The scripted engine for tests of the built programs; see call.bash for what it does and where it looks."""

import fcntl
import json
import os
import shutil
import tempfile
import threading

CALL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "call.bash")
DEADLINE = 60


def wait_until(condition, what="the condition"):
    """Returns what the condition gives as soon as it is true; fails when it never is."""
    pause = threading.Event()
    for _ in range(DEADLINE * 100):
        result = condition()
        if result:
            return result
        pause.wait(0.01)
    raise AssertionError(f"{what} did not come about")


class Home:
    """A temporary folder with an empty home in it, and the environment that goes with it."""

    def __init__(self):
        self.root = tempfile.mkdtemp(prefix="tuppi-home-")
        self.home = os.path.join(self.root, "home")
        os.mkdir(self.home)
        self.environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        self.environment.update(HOME=self.home, LC_ALL="C.UTF-8", LANG="C.UTF-8")
        self.state_folder = os.path.join(self.home, "Library/Application Support/Larkspire")
        self.engine_path = os.path.join(self.state_folder, "runtime/call")
        self.settings_path = os.path.join(self.home, ".config/tuppi-transcriber/settings.json")

    def remove(self):
        def removed():
            shutil.rmtree(self.root, ignore_errors=True)
            return not os.path.exists(self.root)

        wait_until(removed, "the removal of the home")

    def settings(self):
        with open(self.settings_path, encoding="utf-8") as file:
            return json.load(file)

    def write_settings(self, settings):
        os.makedirs(os.path.dirname(self.settings_path), exist_ok=True)
        with open(self.settings_path, "w", encoding="utf-8") as file:
            file.write(settings if isinstance(settings, str) else json.dumps(settings))

    def waiting(self):
        return [os.path.basename(entry["path"]) for entry in self.settings().get("waitingQueue", [])]

    def recording(self, name):
        path = os.path.join(self.home, name)
        open(path, "wb").close()
        return path


def subcommands():
    """What call.bash knows."""
    with open(CALL, encoding="utf-8") as file:
        return file.read().split("\ncommands='")[1].split("'")[0].split()


class ScriptedEngine(Home):
    def __init__(self):
        super().__init__()
        for folder in ("calls", "answers", "gates", "book"):
            os.mkdir(os.path.join(self.root, folder))
        os.mkfifo(os.path.join(self.root, "never"))
        self._answers = 0
        self._touches = 0
        self.install()
        self.answer("history", "[]")
        self.answer("status", '{"latest_job":null,"library":null}')
        self.answer("models", '{"custom":[]}')

    def install(self):
        os.makedirs(os.path.dirname(self.engine_path), exist_ok=True)
        shutil.copyfile(CALL, self.engine_path)

    def uninstall(self):
        os.remove(self.engine_path)

    def _write(self, path, data):
        with open(os.path.join(self.root, path), "wb") as file:
            file.write(data if isinstance(data, bytes) else data.encode())

    def answer(self, subcommand, out="", err="", status=0, before="", after="", nth=None):
        """Answers every later call of the subcommand so, or only its n-th (from 1)."""
        if subcommand not in subcommands():
            raise ValueError(f"the engine has no subcommand “{subcommand}” to answer")
        self._answers += 1
        folder = f"answers/set.{self._answers}"
        os.mkdir(os.path.join(self.root, folder))
        for name, data in (("out", out), ("err", err), ("before", before + "\n"), ("after", after + "\n"),
                           ("status", f"{status}\n")):
            self._write(f"{folder}/{name}", data)
        target = f"answers/{subcommand}" + (f".{nth}" if nth else "")
        self._write(target + ".new", os.path.basename(folder) + "\n")
        os.replace(os.path.join(self.root, target + ".new"), os.path.join(self.root, target))

    def open_gate(self, gate):
        self._write(f"gates/{gate}", b"")

    def keep_book(self, first_status):
        self._write("book/first-status", first_status + "\n")
        self.answer("process", before='locked book_add "$2"')
        self.answer("history", before="locked book_list")

    def set_job(self, number, **job):
        with open(os.path.join(self.root, "lock"), "a", encoding="utf-8") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            self._write(f"book/{number:08}.job", json.dumps({"id": f"job-{number}", **job}))

    def jobs(self):
        return len([name for name in os.listdir(os.path.join(self.root, "book")) if name.endswith(".job")])

    def calls(self, subcommand=None):
        calls = []
        with open(os.path.join(self.root, "lock"), "a", encoding="utf-8") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            folder = os.path.join(self.root, "calls")
            for name in sorted(os.listdir(folder)):
                with open(os.path.join(folder, name), "rb") as file:
                    words = file.read().decode().split("\0")
                calls.append(words[1:1 + int(words[0])])
        return [call for call in calls if subcommand is None or call[:1] == [subcommand]]

    def touch_state(self):
        """Changes the folder that the application watches, as the engine does after a commit."""
        self._touches += 1
        open(os.path.join(self.state_folder, f"change-{self._touches}"), "wb").close()
