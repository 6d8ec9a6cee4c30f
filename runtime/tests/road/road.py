"""What the road tests share: a home of their own with the engine in it, speech to feed it, and patience.

The engine is used only as its callers use it: /bin/bash, the path of `call`, arguments. What its replies do not tell is
read from the files it keeps (the store, read only) and from /proc.
"""

import contextlib
import glob
import json
import os
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest
from collections import namedtuple

sys.dont_write_bytecode = True

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.abspath(os.path.join(HERE, "..", "..", ".."))
sys.path.insert(0, os.path.join(SOURCE, "scripts"))
from as_module import as_module  # noqa: E402

SAMPLE = os.path.join(SOURCE, "samples", "interview.m4a")
SAMPLE_TEXT = os.path.join(SOURCE, "samples", "interview.txt")
HUMAN = "/usr/share/pocketsphinx/test/data/librivox"

# Runs a command from a process that is small itself: what a child is charged for begins with the size of its parent.
COST = """
import os, sys
null = os.open(os.devnull, os.O_RDWR)
files = [(os.POSIX_SPAWN_DUP2, null, n) for n in (0, 1, 2)]
status, use = os.wait4(os.posix_spawn(sys.argv[1], sys.argv[1:], os.environ, file_actions=files), 0)[1:]
print(use.ru_utime + use.ru_stime, use.ru_maxrss / 1024, os.waitstatus_to_exitcode(status))
"""

# Nothing here is timed: this is only how long a condition may stay unmet before the test gives up.
PATIENCE = float(os.environ.get("ROAD_PATIENCE", "600"))

ACTIVE = ("queued", "transcribing", "analyzing", "cleaning")
ENDED = ("ready", "failed", "cancelled")
WORKER = "tuppi-engine-worker"
QUICK = ("--no-clean", "--no-analyze", "--no-speakers")

Reply = namedtuple("Reply", "status out err")
Cost = namedtuple("Cost", "seconds megabytes status")


def script(name):
    """One of the commands in scripts/, as a module."""
    return as_module(os.path.join(SOURCE, "scripts", name))


wer = script("word-error-rate")


def until(condition, what, patience=None):
    """The first true value of condition()."""
    deadline = time.monotonic() + (patience or PATIENCE)
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain: {what() if callable(what) else what}")
        time.sleep(0.05)


def steady(value, what, looks=12):
    """Waits until value() was the same at that many looks in a row, and gives it back."""
    seen = []

    def same():
        seen.append(value())
        return len(seen) > looks and all(v == seen[-1] for v in seen[-looks - 1:])

    until(same, lambda: f"{what}: still changing: {seen[-3:]}")
    return seen[-1]


def read(*path):
    with open(os.path.join(*path), encoding="utf-8", newline="") as file:
        return file.read()


def say(path, text, voice="slt"):
    """A small recording in which the text is spoken."""
    subprocess.run(["flite", "-voice", voice, "-t", text, "-o", path], check=True)
    return path


def ffmpeg(*arguments):
    subprocess.run(["ffmpeg", "-nostdin", "-loglevel", "error", "-y", *arguments], check=True)


def silence(path, seconds=2):
    subprocess.run(["sox", "-n", "-r", "16000", "-c", "1", "-b", "16", path, "trim", "0", str(seconds)], check=True)
    return path


def several(path, *texts, pause=0.7):
    """A longer recording: the texts one after another with a pause between them."""
    with tempfile.TemporaryDirectory() as folder:
        parts = []
        for i, text in enumerate(texts):
            parts.append(say(os.path.join(folder, f"{i}.wav"), text, ("slt", "rms")[i % 2]))
            parts.append(silence(os.path.join(folder, f"{i}-pause.wav"), pause))
        subprocess.run(["sox", *parts, path], check=True)
    return path


SENTENCES = (
    "Good morning, and thank you for coming in today.",
    "We have been working on a new school for the children of the city.",
    "There are about twenty people on the team.",
    "We hope to open the doors in September.",
    "We need to send the report to the city by Friday.",
    "My brother will look after the water and the lights.",
)


class Engine:
    """The engine under a home of its own, which goes when the test is over."""

    def __init__(self, home=None, build=None):
        self.build = build or os.environ["ENGINE_BUILD"]
        self.own = home is None
        self.home = os.path.realpath(tempfile.mkdtemp(prefix="road-") if self.own else home)
        self.folder = os.path.join(self.home, "Library", "Application Support", "Larkspire")
        self.path = os.path.join(self.folder, "runtime", "call")
        self.store = os.path.join(self.folder, "store", "jobs.sqlite")
        self.library = os.path.join(self.home, "Documents", "CallsRawFiles")
        self.scratch = os.path.join(self.home, "recordings")
        os.makedirs(self.scratch, exist_ok=True)
        self.environment = {k: v for k, v in os.environ.items() if not k.startswith("XDG_")}
        self.environment["HOME"] = self.home
        self.environment["TUPPI_ROAD_HOME"] = self.home
        # Tests run side by side on a computer where nobody else waits.
        self.environment.setdefault("TUPPI_NICE", "0")
        try:
            subprocess.run([os.path.join(SOURCE, "runtime", "install-engine"), self.build], env=self.environment,
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
        except BaseException:
            self.close()
            raise

    def close(self):
        # Until none is left: one that is killed may just have started another.
        until(lambda: not self.kill_all(), "processes of this home that do not end")
        if self.own:
            shutil.rmtree(self.home, ignore_errors=True)

    # Commands

    def command(self, *arguments):
        return ["/bin/bash", self.path, *arguments]

    def call(self, *arguments, environment=None, cwd=None, patience=None):
        done = subprocess.run(self.command(*arguments), env=environment or self.environment, cwd=cwd,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              timeout=patience or PATIENCE)
        return Reply(done.returncode, done.stdout.decode("utf-8"), done.stderr.decode("utf-8"))

    def cost(self, *arguments):
        """Processor time of a command and of what it waits for, its largest memory, and its exit status."""
        done = subprocess.run([sys.executable, "-S", "-c", COST, *self.command(*arguments)], env=self.environment,
                              stdout=subprocess.PIPE, check=True, timeout=PATIENCE)
        seconds, megabytes, status = done.stdout.split()
        return Cost(float(seconds), float(megabytes), int(status))

    def ask(self, *arguments):
        """A command that must succeed, without a word on standard error."""
        reply = self.call(*arguments)
        if reply.status != 0 or reply.err:
            raise AssertionError(f"{arguments}: exit {reply.status}, standard error: {reply.err!r}")
        return reply

    def history(self):
        return json.loads(self.ask("history", "--json").out)

    def status(self):
        return json.loads(self.ask("status", "--json").out)

    def troubles(self):
        """What `doctor` finds wrong of that which must be right: the sentence by the name of the check."""
        return {check["check"]: check["detail"] for check in json.loads(self.ask("doctor", "--json").out)
                if not check["ok"] and not check["optional"]}

    def job(self, job):
        entries = [e for e in self.history() if e["id"] == job]
        if len(entries) != 1:
            raise AssertionError(f"job {job} stands {len(entries)} times in the history")
        return entries[0]

    def process(self, path, *options, engine="auto", language="en", quick=True):
        """Hands over a recording; gives back the new job's id."""
        before = {e["id"] for e in self.history()}
        options = options or (QUICK if quick else ("--no-speakers",))
        self.ask("process", path, "--background", "--engine", engine, "--language", language, *options)
        new = [e["id"] for e in self.history() if e["id"] not in before]
        if len(new) != 1:
            raise AssertionError(f"{path!r}: one new job was expected, found {new}")
        return new[0]

    def wait(self, job, *statuses):
        """Waits until the job has one of these statuses; an end of another kind is a failure at once."""
        entry = {}

        def there():
            entry.update(self.job(job))
            if entry["status"] in ENDED and entry["status"] not in statuses:
                raise AssertionError(f"job is {entry['status']} instead of {statuses}: {entry.get('error')}")
            return entry["status"] in statuses

        until(there, lambda: f"{statuses}, still {entry}")
        return entry

    def transcribe(self, path, *options, **more):
        return self.wait(self.process(path, *options, **more), "ready")

    # The worker

    def processes(self):
        """Every live process of this home, this one and its like excepted."""
        mark = b"TUPPI_ROAD_HOME=" + os.fsencode(self.home)
        found = []
        for folder in glob.glob("/proc/[0-9]*"):
            with contextlib.suppress(OSError):
                with open(folder + "/environ", "rb") as file:
                    if mark not in file.read().split(b"\0"):
                        continue
                process = int(os.path.basename(folder))
                if self.state(process) not in "ZX":
                    found.append(process)
        return found

    def worker(self):
        """The process that holds the worker's lock, or none."""
        held = os.path.join(self.folder, "store", "worker.lock")
        with contextlib.suppress(OSError):
            inode = str(os.stat(held).st_ino)
            with open("/proc/locks", encoding="ascii") as file:
                for line in file:
                    fields = line.split()
                    if "->" not in fields and fields[5].split(":")[2] == inode and int(fields[4]) in self.processes():
                        return int(fields[4])
        return None

    def workers(self):
        """Every process that does a worker's work: one that was started beside another finds the lock taken and goes."""
        holder = self.worker()
        busy = {process for process, ticks in self.ticks().items()
                if ticks > 10 and self.program(process) == WORKER and self.stat(process)[1:2] != [str(holder)]}
        return busy | {holder} - {None}

    @staticmethod
    def stat(process):
        """What the kernel tells of a process, from its state on; nothing when it is gone."""
        with contextlib.suppress(OSError):
            with open(f"/proc/{process}/stat", encoding="utf-8", errors="replace") as file:
                return file.read().rpartition(") ")[2].split()
        return []

    def state(self, process):
        return (self.stat(process) or "X")[0]

    @staticmethod
    def program(process):
        with contextlib.suppress(OSError):
            return os.path.basename(os.readlink(f"/proc/{process}/exe"))
        return None

    def kill_worker(self):
        """Kills the worker the hard way and waits until it is gone; tells whether there was one."""
        worker = self.worker()
        if worker is None:
            return False
        with contextlib.suppress(ProcessLookupError):
            os.kill(worker, signal.SIGKILL)
        # Its memory, and with it its mark, goes before its files and locks.
        until(lambda: self.state(worker) in "ZX", f"the end of worker {worker}")
        return True

    def kill_all(self):
        found = self.processes()
        for process in found:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)
        return found

    def ticks(self):
        """Processor time used so far by every process of this home, in the kernel's ticks."""
        used = {}
        for process in self.processes():
            with contextlib.suppress(IndexError):
                fields = self.stat(process)
                used[process] = int(fields[11]) + int(fields[12])
        return used

    # Files

    def query(self, statement, *values):
        def answer(mode):
            with contextlib.closing(sqlite3.connect(f"file:{self.store}?{mode}", uri=True, timeout=30)) as base:
                return base.execute(statement, values).fetchall()

        try:
            return answer("mode=ro")
        except sqlite3.OperationalError:
            # Even reading makes files beside a store, unless it is told that nobody writes: a full disk has no room.
            if os.path.exists(self.store + "-wal") and os.path.getsize(self.store + "-wal") > 0:
                raise
            return answer("immutable=1")

    def kept(self, job):
        """The segments of the job that are recognised already, as they stand in the store."""
        return self.query("SELECT number, start_ms, end_ms, words FROM segments JOIN jobs ON jobs.seq = segments.job"
                          " WHERE jobs.id = ? AND words IS NOT NULL ORDER BY number", job)

    def spoken(self, job):
        """Those of them in which something was said."""
        return [segment for segment in self.kept(job) if json.loads(segment[3])]

    def attempts(self, job):
        """How often each segment of the job was begun."""
        return [row[0] for row in self.query(
            "SELECT segments.attempts FROM segments JOIN jobs ON jobs.seq = segments.job WHERE jobs.id = ?"
            " ORDER BY number", job)]

    def listing(self):
        """Everything in the library, by path."""
        return sorted(os.path.relpath(os.path.join(folder, name), self.library)
                      for folder, folders, files in os.walk(self.library) for name in folders + files)


def technical(entry, *name):
    return os.path.join(entry["call_dir"], "Technical files", *name)


def transcript(entry):
    return read(entry["call_dir"], "Transcript.txt")


def results(entry):
    """The files that hold what was said, by name. The summary is left out: it tells when it was made."""
    paths = [os.path.join(entry["call_dir"], "Transcript.txt")]
    paths += [technical(entry, n) for n in ("transcript.txt", "segments.json", "subtitles.srt", "subtitles.vtt")]
    found = {}
    for path in paths:
        with open(path, "rb") as file:
            found[os.path.basename(path)] = file.read()
    return found


class RoadTest(unittest.TestCase):
    maxDiff = None
    decoders = None  # as many as the computer allows; 1 where a test looks at work that is half done

    def engine(self, **options):
        engine = Engine(**options)
        if self.decoders:
            engine.environment["TUPPI_DECODERS"] = str(self.decoders)
        self.addCleanup(engine.close)
        return engine

    def recording(self, engine, text="Thank you very much.", name="thank you.wav"):
        return say(os.path.join(engine.scratch, name), text)

    def assert_one_line(self, reply, status):
        """A refusal: the status asked for, nothing on standard output, one clear line on standard error."""
        self.assertEqual(reply.status, status, reply)
        self.assertEqual(reply.out, "", reply)
        self.assertRegex(reply.err, r"\AError: [^\n]*\w[^\n]*\n\Z", reply)

    def refused(self, engine, path, engine_name="auto", language="en"):
        """Hands over something that cannot be transcribed; gives back the sentence that says why.

        The engine may say so at once, and then keeps nothing, or through a failed job, which keeps what it was given.
        """
        before, listing = engine.history(), engine.listing()
        reply = engine.call("process", path, "--background", "--engine", engine_name, "--language", language, *QUICK)
        if reply.status != 0:
            self.assert_one_line(reply, 1)
            self.assertEqual(engine.history(), before)
            self.assertEqual(engine.listing(), listing)
            return reply.err[len("Error: "):].rstrip("\n")
        self.assertEqual(reply.err, "")
        known = {e["id"] for e in before}
        new = [e["id"] for e in engine.history() if e["id"] not in known]
        self.assertEqual(len(new), 1, new)
        entry = engine.wait(new[0], "failed")
        self.assertRegex(entry["error"], r"\A[^\n]*\w[^\n]*\Z")
        self.assertNotRegex(entry["error"], r"\A(Error|Помилка): ")
        with open(path, "rb") as original, open(self.audio(entry), "rb") as kept:
            self.assertEqual(original.read(), kept.read())
        return entry["error"]

    def audio(self, entry):
        found = [n for n in os.listdir(technical(entry)) if n.startswith("audio.")]
        self.assertEqual(len(found), 1, found)
        return technical(entry, found[0])


def main():
    unittest.main(verbosity=2)
