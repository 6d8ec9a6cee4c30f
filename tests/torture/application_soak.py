"""The application without a window, on an engine whose replies are spoilt, both killed and stopped at random."""

import contextlib
import os
import shutil
import signal
import sqlite3
import subprocess
import tempfile

from soak import HERE, Engine, check_store, faults_in, kept_when_lost, moment, require, settle, until

QUERIES = ("history", "status", "models", "resume")
SPOILT_QUERY = ("empty", "noise", "type", "unicode", "deep", "half", "twice", "refused", "flood", "missing", "killed",
                "hang")
SPOILT_HANDING_OVER = ("refused", "flood", "killed", "done-and-killed")
KINDS = {"application_killed": 4, "application_stopped": 2, "worker_killed": 2, "queries_spoilt": 8,
         "handing_over_spoilt": 2, "clock_jumps": 1, "settings_littered": 1}
BATCH = 3  # files given to the application at once


class ApplicationSoak:
    def __init__(self, chance, recordings, tally, library, program, files, faults):
        self.chance = chance
        self.recordings = recordings
        self.tally = tally
        self.program = program
        self.wanted_faults = faults
        self.engine = Engine()
        self.faults = faults_in(self.engine, library)
        self.engine.environment |= self.faults.environment | {"LC_ALL": "C.UTF-8", "LANG": "C.UTF-8"}
        self.wanted_files = files
        self.files = []  # handed over so far
        self.plan = os.path.join(os.path.dirname(self.engine.path), "plan")
        os.mkdir(self.plan)
        os.rename(self.engine.path, self.engine.path + "-itself")
        shutil.copyfile(os.path.join(HERE, "reply.bash"), self.engine.path)
        self.output = tempfile.TemporaryFile()
        self.process = None

    def run(self, over):
        with kept_when_lost(self.engine, self.tally):
            before = self.tally.total()
            self.start_with_files(BATCH)
            while (done := self.tally.total() - before) < self.wanted_faults and not over():
                if self.process.poll() is not None:
                    self.ended()
                    if self.waiting():
                        self.start()
                    else:
                        due = self.wanted_files * done // self.wanted_faults
                        self.start_with_files(max(BATCH, due - len(self.files)))
                self.strike()
                check_store(self.engine, self.tally)
            return self.end()

    # The application

    def start(self, *files):
        self.process = subprocess.Popen(
            [self.program, "--transcribe", "--language", "en", "--no-speakers", *files], env=self.engine.environment,
            stdin=subprocess.DEVNULL, stdout=self.output, stderr=subprocess.STDOUT)

    def start_with_files(self, count):
        first = len(self.files) + 1
        files = [self.recordings.give(number, self.engine.scratch) for number in range(first, first + count)]
        self.files += files
        self.start(*files)
        # Only what the application has stored can survive it.
        until(lambda: self.process.poll() is not None or all(map(self.known, files)), "a stored queue")

    def known(self, path):
        """To the application, or to the engine already."""
        if b"/" + os.path.basename(path).encode() in self.settings():
            return True
        title = os.path.splitext(os.path.basename(path))[0]
        with contextlib.suppress(sqlite3.OperationalError):  # not made yet
            return self.engine.query("SELECT count(*) FROM jobs WHERE title = ?", title) != [(0,)]
        return False

    def ended(self):
        """It may say that something went wrong; it may not crash."""
        require(self.process.returncode in (0, 1, -signal.SIGKILL), f"ended with {self.process.returncode}")

    def settings(self):
        with contextlib.suppress(FileNotFoundError):
            with open(os.path.join(self.engine.home, ".config/tuppi-transcriber/settings.json"), "rb") as file:
                return file.read()
        return b""

    def waiting(self):
        """Files that it still knows of without having seen their job."""
        return b"take " in self.settings()

    def told(self):
        self.output.seek(0)
        return self.output.read().decode("utf-8", "replace")

    def end(self):
        """A last run without faults brings everything to its end."""
        self.faults.shift_clock(0)
        for name in os.listdir(self.plan):
            with contextlib.suppress(FileNotFoundError):  # a command was faster
                os.remove(os.path.join(self.plan, name))
        self.free_what_hangs()
        for _ in range(2):  # a run whose last poll was spoilt may have left some
            if self.process.poll() is None or self.waiting():
                if self.process.poll() is not None:
                    self.start()
                self.process.wait(3600)
            self.ended()
        require(not self.waiting(), "the queue is not empty in the end")
        entries = settle(self.engine, self.recordings, self.tally)
        titles = [entry["title"] for entry in entries]
        require(len(titles) == len(set(titles)), lambda: f"handed over twice: {sorted(titles)}")
        told = self.told()
        require("QThread" not in told and "ASSERT" not in told, told)
        for path in self.files:
            name = os.path.basename(path)
            require(os.path.splitext(name)[0] in titles or f"“{name}”" in told, f"lost without a word: {name}")
        return entries

    # Faults

    def strike(self):
        kind = self.chance.choices(list(KINDS), KINDS.values())[0]
        getattr(self, kind)()

    def application_killed(self):
        moment(self.chance, 1)
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
            self.tally.count("application killed")
            self.free_what_hangs()

    def application_stopped(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGSTOP)
            moment(self.chance, 1)
            self.process.send_signal(signal.SIGCONT)
            self.tally.count("application stopped")

    def worker_killed(self):
        moment(self.chance, 1)
        if self.engine.kill_worker():
            self.tally.count("worker killed")

    def queries_spoilt(self):
        """One, or several that follow one another."""
        subcommands = self.chance.sample(QUERIES, self.chance.randint(1, len(QUERIES)))
        self.spoil({subcommand: self.chance.choice(SPOILT_QUERY) for subcommand in subcommands})

    def handing_over_spoilt(self):
        self.spoil({"process": self.chance.choice(SPOILT_HANDING_OVER)})

    def spoil(self, plan):
        for subcommand, how in plan.items():
            part = os.path.join(self.plan, ".part")
            with open(part, "w", encoding="ascii") as file:
                file.write(how + "\n")
            os.rename(part, os.path.join(self.plan, subcommand))
        moment(self.chance, 2.5)
        self.count_spoilt()
        if "hang" in plan.values() and self.chance.random() < 0.9:
            self.free_what_hangs()

    def count_spoilt(self):
        """Counts the replies that were spoilt since the last time; a plan may wait for its command."""
        with contextlib.suppress(FileNotFoundError):
            told = os.path.join(self.plan, ".told")
            os.rename(told, told + ".read")
            with open(told + ".read", encoding="ascii") as file:
                for line in file.read().splitlines():
                    self.tally.count("reply spoilt: " + line)

    def free_what_hangs(self):
        for process in self.engine.processes():
            if self.engine.program(process) == "tail":
                with contextlib.suppress(ProcessLookupError):
                    os.kill(process, signal.SIGKILL)

    def clock_jumps(self):
        before = self.faults.clock_reads
        self.faults.shift_clock(self.chance.choice((-24 * 3600, -2, 2, 24 * 3600)))
        moment(self.chance, 1)
        if self.faults.clock_reads > before:
            self.tally.count("clock jumps")

    def settings_littered(self):
        """What a killed application may leave beside its settings."""
        folder = os.path.join(self.engine.home, ".config/tuppi-transcriber")
        if os.path.isdir(folder):
            with open(os.path.join(folder, "settings.json.AbCdEf"), "wb") as file:
                file.write(self.chance.randbytes(300))
            self.tally.count("garbage beside the settings")
