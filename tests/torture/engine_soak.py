"""The engine, with faults between any two steps of any of its programs."""

import contextlib
import glob
import json
import os
import re
import shutil
import signal
import sqlite3
import subprocess

from faults import DISK
from soak import (ACTIVE, OPTIONS, PATIENCE, Engine, agreed, check_store, faults_in, kept_when_lost, library_holds_only,
                  moment, read, require, seed, settle, some_correction, stored, until, view)

HOUR = 3600
JUMPS = (-10 * 365 * 24 * HOUR, -24 * HOUR, -HOUR, -2, 0, 2, HOUR, 24 * HOUR, 10 * 365 * 24 * HOUR)
KINDS = {"worker_killed": 6, "recogniser_killed": 2, "command_killed": 6, "everything_killed": 2, "worker_stopped": 3,
         "disk": 8, "corrected": 6, "clock_jumps": 2, "folder_taken_away": 2, "folder_put_back": 2, "folder_littered": 2,
         "engine_littered": 2, "store_locked": 1}


class EngineSoak:
    def __init__(self, chance, recordings, tally, library, jobs, faults_per_job):
        self.chance = chance
        self.recordings = recordings
        self.tally = tally
        self.wanted = jobs
        self.faults_per_job = faults_per_job
        self.engine = Engine()
        self.faults = faults_in(self.engine, library)
        self.engine.environment |= self.faults.environment
        self.accepted = []  # call dirs
        self.numbers = 0  # of recordings
        self.aside = {}
        self.corrections = 0
        # Two that were ready before, so that there is something to correct from the beginning.
        self.corrected_jobs = {seed(self.engine, title=title)["id"] for title in ("Interview", "Conversation")}
        for job in self.corrected_jobs:
            self.engine.ask("speaker", job, "0", "--json", "--name=Anna")

    def run(self, over):
        """Until all is done, or it is over; gives back the jobs."""
        with kept_when_lost(self.engine, self.tally):
            before = self.tally.total()
            while not over():
                due = (self.tally.total() - before) // self.faults_per_job
                if due > self.wanted:
                    break
                if len(self.accepted) < min(self.wanted, due + 1):
                    self.hand_over()
                self.strike()
                self.check()
            return self.end()

    def strike(self):
        kind = self.chance.choices(list(KINDS), KINDS.values())[0]
        getattr(self, kind)()

    def check(self):
        check_store(self.engine, self.tally)
        if self.accepted:
            known = {row[0] for row in self.engine.query("SELECT call_dir FROM jobs")}
            gone = [folder for folder in self.accepted if folder not in known]
            require(not gone, lambda: f"accepted, and lost: {gone}")

    def end(self):
        self.faults.mend_disk()
        self.faults.shift_clock(0)
        for folder in list(self.aside):
            self.put_back(folder)
        require(self.hand_over(), "a recording is refused when all is well again")
        entries = settle(self.engine, self.recordings, self.tally, self.corrected_jobs)
        self.check()
        library_holds_only(self.engine, entries)
        return entries

    # Commands

    def some_job(self, *statuses):
        if not os.path.exists(self.engine.store):
            return None
        try:
            jobs = self.engine.query("SELECT id, status, call_dir FROM jobs ORDER BY seq")
        except sqlite3.OperationalError:
            return None  # not made yet
        jobs = [job for job in jobs if not statuses or job[1] in statuses]
        return self.chance.choice(jobs) if jobs else None

    def some_command(self):
        job = self.some_job()
        number = job[0] if job else "none"
        take = self.next_recording()
        return self.chance.choice([
            ["history", "--json"], ["status", "--json"], ["resume"], ["resume"], ["pause", number], ["continue", number],
            ["continue", number], ["retry", number], ["cancel", number], ["hide", number], ["hide", "--all", "--undo"],
            ["process", take, *OPTIONS], ["process", take, *OPTIONS], ["settings", "--json"]])

    def call(self, arguments):
        """Whatever is wrong, a command ends: well, or with one sentence."""
        reply = self.engine.call(*arguments)
        said = f"{arguments}: {reply}"
        if reply.status == 0:
            require(reply.err == "", said)
            if "--json" in arguments:
                json.loads(reply.out)
        else:
            require(reply.status == 1 and re.fullmatch(r"Error: [^\n]*\w[^\n]*\n", reply.err), said)
            self.tally.note(f"{arguments[0]}: {reply.err.strip()}")
        if arguments[0] == "process" and reply.status == 0:
            self.accepted.append(reply.out.rstrip("\n"))
        return reply

    def hand_over(self):
        return self.call(["process", self.next_recording(), *OPTIONS]).status == 0

    def next_recording(self):
        self.numbers += 1
        return self.recordings.give(self.numbers, self.engine.scratch)

    def working(self):
        """The worker; one is started where none is, if there is work."""
        self.call(["resume"])
        moment(self.chance, 0.5)
        return self.engine.worker()

    # Faults

    def kill(self, process, kind):
        try:
            os.kill(process, signal.SIGKILL)
        except ProcessLookupError:
            return
        self.tally.count(kind)
        until(lambda: self.engine.state(process) in "ZX", f"the end of process {process}")

    def worker_killed(self):
        worker = self.working()
        if worker:
            self.kill(worker, "worker killed")

    def recogniser_killed(self):
        worker = self.working()
        for process in self.engine.processes():
            if worker and self.engine.stat(process)[1:2] == [str(worker)]:
                self.kill(process, "worker's child killed")

    def everything_killed(self):
        self.working()
        if self.engine.kill_all():
            self.tally.count("everything killed at once")
            until(lambda: not self.engine.kill_all(), "the end of everything")

    def command_killed(self):
        command = self.some_command()
        process = subprocess.Popen(self.engine.command(*command), env=self.engine.environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        moment(self.chance, 0.15)
        if process.poll() is None:
            process.kill()
            self.tally.count(f"command killed: {command[0]}")
        process.wait(PATIENCE)

    def worker_stopped(self):
        worker = self.working()
        if not worker:
            return
        with contextlib.suppress(ProcessLookupError):
            os.kill(worker, signal.SIGSTOP)
            self.tally.count("worker stopped")
            for _ in range(self.chance.randint(1, 3)):
                self.call(self.some_command())
            if self.chance.random() < 0.3:
                self.kill(worker, "stopped worker killed")
            os.kill(worker, signal.SIGCONT)

    def disk(self):
        kind = self.chance.choice(list(DISK))
        self.working()
        self.faults.break_disk(kind, self.chance.randint(0, 40), self.chance.choice((1, 3, 20, 500)))
        for _ in range(self.chance.randint(1, 3)):
            self.call(self.some_command())
        moment(self.chance, 0.5)
        self.mend_disk(kind)

    def mend_disk(self, kind):
        failed = self.faults.mend_disk()
        self.tally.disk_calls += failed
        if failed:
            self.tally.count(kind)

    def corrected(self):
        """A correction has happened or has not, and what people have written into the files stays."""
        job = self.some_job("ready")
        if not job or not os.path.isdir(job[2]):
            return
        entry = self.engine.job(job[0])
        before = stored(self.engine, entry)
        self.corrections += 1
        change, title, lines = some_correction(self.chance, entry["id"], before, self.corrections)
        self.corrected_jobs.add(entry["id"])
        note = self.chance.random() < 0.5 and self.write_by_hand(entry)
        kind = self.chance.choice(list(DISK))
        # The store takes most of the calls: half of the times it is the disk of the library alone that fails.
        under, calls = self.chance.choice(((self.engine.home, 60), (self.engine.library, 15)))
        self.engine.environment["TUPPI_FAULTS_UNDER"] = under + os.sep
        self.faults.break_disk(kind, self.chance.randint(0, calls), self.chance.choice((1, 3, 20)))
        reply = self.call(list(change))
        self.mend_disk(f"{kind}, of a correction")
        self.engine.environment["TUPPI_FAULTS_UNDER"] = self.engine.home + os.sep
        self.engine.ask("status", "--json")  # goes on with the files
        if note:
            self.take_out_by_hand(entry, note)
        now = agreed(self.engine, entry)
        allowed = [(title, lines)] + [(before["title"], view(before))] * (reply.status != 0)
        require((now["title"], view(now)) in allowed, lambda: f"{change}: {reply}: {before} has become {now}")

    def files_of_people(self, entry):
        return [os.path.join(entry["call_dir"], name) for name in ("Summary.md", "Transcript.txt")]

    def write_by_hand(self, entry):
        note = f"A note of mine, number {self.corrections}.\n"
        for path in self.files_of_people(entry):
            text = read(path)
            end = text.find("\n## Full text\n") if path.endswith(".md") else len(text)
            with open(path, "w", encoding="utf-8") as file:
                file.write(text[:end] + note + text[end:])
        return note

    def take_out_by_hand(self, entry, note):
        for path in self.files_of_people(entry):
            text = read(path)
            require(text.count(note) == 1, lambda: f"lost from {path}: {note}")
            with open(path, "w", encoding="utf-8") as file:
                file.write(text.replace(note, ""))

    def clock_jumps(self):
        before = self.faults.clock_reads
        self.faults.shift_clock(self.chance.choice(JUMPS))
        self.call(self.some_command())
        if self.faults.clock_reads > before:
            self.tally.count("clock jumps")

    def folder_taken_away(self):
        job = self.some_job(*ACTIVE)
        if job and os.path.isdir(job[2]):
            aside = os.path.join(self.engine.home, f"aside {len(self.aside)} {job[0]}")
            os.rename(job[2], aside)
            self.aside[job[2]] = aside
            self.tally.count("folder taken away")

    def folder_put_back(self):
        if self.aside:
            self.put_back(self.chance.choice(list(self.aside)))

    def put_back(self, folder):
        # Nothing that was gone has been made again.
        require(not os.path.exists(folder), f"made again: {folder}")
        os.rename(self.aside.pop(folder), folder)

    @contextlib.contextmanager
    def worker_held(self):
        worker = self.engine.worker()
        with contextlib.suppress(ProcessLookupError):
            if worker:
                os.kill(worker, signal.SIGSTOP)
        try:
            yield
        finally:
            with contextlib.suppress(ProcessLookupError):
                if worker:
                    os.kill(worker, signal.SIGCONT)

    def folder_littered(self):
        """Files in the places of the engine's own, as a person or another program may leave them. Not over those of a
        job that is finished at that moment: they would be its transcript."""
        with self.worker_held():
            job = self.some_job(*ACTIVE)
            if job and os.path.isdir(job[2]) and not glob.glob(os.path.join(glob.escape(job[2]), ".tuppi-revision-*")):
                self.litter(job)

    def litter(self, job):
        stale = os.path.join(job[2], ".tuppi-revision-1", "Technical files")
        os.makedirs(stale, exist_ok=True)
        for name in ("Transcript.txt", "Summary.md", "Technical files/segments.json", "Technical files/viewer.html",
                     ".tuppi-revision-1/Transcript.txt"):
            if self.chance.random() < 0.6:
                self.garbage(os.path.join(job[2], name))
        self.tally.count("garbage in a call dir")

    def engine_littered(self):
        """Garbage in everything beside the store that the engine could do without."""
        store = os.path.dirname(self.engine.store)
        choice = self.chance.choice(("changed", "worker.lock", "reserve", "work", "files.lock"))
        if choice == "changed":
            self.garbage(os.path.join(self.engine.folder, "changed"))
        elif choice == "work":
            os.makedirs(os.path.join(store, "work"), exist_ok=True)
            self.garbage(os.path.join(store, "work", "sound.wav"))
        elif choice == "reserve":
            with contextlib.suppress(FileNotFoundError):
                os.remove(os.path.join(store, "reserve"))
        else:
            self.garbage(os.path.join(store, choice))
        self.tally.count("garbage beside the store")

    def garbage(self, path):
        with contextlib.suppress(FileNotFoundError, shutil.SameFileError):
            with open(path, "r+b" if os.path.exists(path) else "wb") as file:
                file.write(self.chance.randbytes(self.chance.randint(1, 5000)))

    def store_locked(self):
        """Another program holds the store."""
        if not os.path.exists(self.engine.store):
            return
        with contextlib.closing(sqlite3.connect(self.engine.store, timeout=60, isolation_level=None)) as base:
            base.execute("BEGIN IMMEDIATE")
            self.tally.count("store locked by others")
            moment(self.chance, 0.5)
            self.call(["history", "--json"])
            base.execute("ROLLBACK")
