"""What both parts of the torture share: recordings with the transcripts that they have undisturbed, the count of faults,
and what must hold of an engine whatever was done to it."""

import collections
import contextlib
import os
import re
import shutil
import sys
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "..", "runtime", "tests", "road"))
from faults import Faults  # noqa: E402
from road import ACTIVE, ENDED, PATIENCE, Engine, read, several, technical, until  # noqa: E402
from seeded import assert_agreement, seed, some_correction, stored, view  # noqa: E402

OPTIONS = ("--background", "--engine", "auto", "--language", "en", "--no-speakers")
BASES = (("Good morning.", "We need to send the report to the city by Friday."),
         ("Thank you very much.",),
         ("We hope to open the doors in September.",),
         ("There are about twenty people on the team.",))
TITLE = re.compile(rb"take [0-9]+")


class Lost(AssertionError):
    """Something did not stand up to a fault."""


def require(holds, what):
    if not holds:
        raise Lost(what() if callable(what) else what)


def contents(entry):
    """Every file that the engine has written for a transcript; the title, which differs, is made the same."""
    names = [os.path.join(entry["call_dir"], name) for name in ("Summary.md", "Transcript.txt")]
    names += [technical(entry, name)
              for name in ("transcript.txt", "segments.json", "subtitles.srt", "subtitles.vtt", "viewer.html")]
    found = {}
    for name in names:
        require(os.path.isfile(name), f"a ready transcript without {name}")
        with open(name, "rb") as file:
            found[os.path.basename(name)] = TITLE.sub(b"take", file.read())
    return found


def moment(chance, longest):
    time.sleep(chance.uniform(0, longest))


def faults_in(engine, library):
    """The whole home can fail, but for the programs: bash says in its own words that it cannot read its script."""
    return Faults(library, os.path.join(engine.home, "faults"), engine.home + os.sep, os.path.dirname(engine.path))


class Recordings:
    """As many short recordings as asked for, of a few kinds."""

    def __init__(self, folder):
        self.folder = folder
        self._expected = []
        engine = Engine()
        try:
            for number, texts in enumerate(BASES):
                base = several(os.path.join(folder, f"base {number}.wav"), *texts)
                path = os.path.join(engine.scratch, "take 0.wav")
                shutil.copy2(base, path)
                engine.ask("process", path, *OPTIONS)
                entry = engine.wait(engine.history()[0]["id"], "ready")
                self._expected.append(contents(entry))
        finally:
            engine.close()

    def give(self, number, folder):
        path = os.path.join(folder, f"take {number}.wav")
        if not os.path.exists(path):
            shutil.copy2(os.path.join(self.folder, f"base {number % len(BASES)}.wav"), path)
        return path

    def check(self, entry):
        """The transcript of one of them is the one that nothing disturbed, byte for byte."""
        expected = self._expected[int(entry["title"].split()[-1]) % len(BASES)]
        found = contents(entry)
        wrong = [name for name, text in expected.items() if found[name] != text]
        require(not wrong, lambda: f"{entry['call_dir']}: {', '.join(wrong)} differ from the undisturbed transcript")


class Tally:
    """Counts faults, and keeps the story of the last ones for whoever must find out."""

    def __init__(self):
        self.faults = collections.Counter()
        self.parts = collections.Counter()
        self.part = ""  # whom the faults strike now
        self.sentences = collections.Counter()
        self.checks = 0
        self.jobs = 0
        self.disk_calls = 0
        self.story = collections.deque(maxlen=40)

    def total(self):
        return sum(self.faults.values())

    def count(self, kind):
        self.faults[kind] += 1
        self.parts[self.part] += 1
        self.note(kind)
        if self.total() % 100 == 0:
            print(f"{self.total()} faults", flush=True)

    def note(self, text):
        self.story.append(text)

    def report(self):
        for kind, count in sorted(self.faults.items()):
            print(f"  {count:6} {kind}")
        for part, count in sorted(self.parts.items()):
            print(f"{part}: {count} faults, {100 * count / self.total():.0f} per cent")
        print(f"{self.total()} faults ({self.disk_calls} calls to the disk refused), {self.jobs} jobs, "
              f"{self.checks} integrity checks")
        for sentence, count in self.sentences.most_common():
            print(f"  {count:6} × “{sentence}”")


def check_store(engine, tally):
    """The store is whole, whatever was done just now."""
    if not os.path.exists(engine.store) or os.path.getsize(engine.store) == 0:
        return
    found = engine.query("PRAGMA integrity_check") + engine.query("PRAGMA foreign_key_check")
    require(found == [("ok",)], lambda: f"the store is damaged: {found}")
    tally.checks += 1


def sentence_of(text):
    """Failed jobs of one kind have one sentence."""
    return re.sub(r"“[^”]*”", "“…”", text)


def all_ended(engine):
    """Has every job go on until none is unfinished."""
    def ended():
        engine.ask("resume")
        return all(entry["status"] in ENDED for entry in engine.history())

    unfinished = [entry for entry in engine.history() if entry["status"] in ACTIVE]
    for entry in unfinished:
        if entry["paused"]:
            engine.ask("continue", entry["id"])
    until(ended, "the end of all jobs", patience=3600)


def agreed(engine, entry):
    """The store and every file of a corrected transcript say the same; gives back what."""
    return assert_agreement(unittest.TestCase(), engine, entry)


def settle(engine, recordings, tally, corrected=()):
    """Once nothing is disturbed any more: what failed has said why, and succeeds; all transcripts are as they should be."""
    all_ended(engine)
    for entry in engine.history():
        if entry["status"] == "failed":
            require(re.fullmatch(r"[^\n]*\w[^\n]*", entry["error"] or ""), f"failed without a sentence: {entry}")
            tally.sentences[sentence_of(entry["error"])] += 1
        if entry["status"] != "ready":
            engine.ask("retry", entry["id"])
    all_ended(engine)
    entries = engine.history()
    for entry in entries:
        require(entry["status"] == "ready", f"not ready in the end: {entry}")
        if entry["id"] in corrected:
            agreed(engine, entry)
        else:
            recordings.check(entry)
    check_store(engine, tally)
    tally.jobs += len(entries)
    return entries


def library_holds_only(engine, entries):
    """No folder of a recording without a job, nothing half made."""
    expected = {os.path.basename(entry["call_dir"]) for entry in entries}
    found = set(os.listdir(engine.library))
    require(found == expected, lambda: f"in the library, but not in the list: {sorted(found - expected)}; "
                                       f"in the list, but not in the library: {sorted(expected - found)}")


@contextlib.contextmanager
def kept_when_lost(engine, tally):
    """The home stays when something was lost, and is told with the last faults."""
    try:
        yield
    except BaseException:
        engine.own = False
        print("The last faults: " + "; ".join(tally.story))
        print(f"Kept for a look: {engine.home}")
        raise
    finally:
        engine.close()


__all__ = ["ACTIVE", "OPTIONS", "PATIENCE", "Engine", "Lost", "Recordings", "Tally", "agreed", "all_ended",
           "check_store", "faults_in", "kept_when_lost", "library_holds_only", "moment", "read", "require", "seed", "settle",
           "some_correction", "stored", "until", "view"]
