#!/usr/bin/env python3
"""Troubles from outside while there is work: what becomes of the job, and what `doctor` calls the trouble."""

import contextlib
import functools
import os
import shutil
import signal
import sqlite3

from road import ACTIVE, SENTENCES, RoadTest, main, several, steady, transcript, until
from seeded import seed

WORK = "Unfinished transcriptions"
LIST = "List of transcripts"


class Doctor(RoadTest):
    decoders = 1

    def setUp(self):
        self.runtime = self.engine()

    @functools.cached_property
    def long(self):
        # Made once: no two makings are alike, bit for bit.
        return several(os.path.join(self.runtime.scratch, "long.wav"), *SENTENCES)

    def working(self):
        """A job of which something is recognised already and something is not."""
        job = self.runtime.process(self.long)
        until(lambda: self.runtime.kept(job), "the first segment")
        return job

    def store(self):
        return contextlib.closing(sqlite3.connect(self.runtime.store, timeout=30, isolation_level=None))

    def test_folder_moved_away_while_it_waits(self):
        engine = self.runtime
        job = engine.process(self.long)
        engine.ask("pause", job)
        steady(engine.ticks, "processor time of a paused job")
        folder = engine.job(job)["call_dir"]
        self.assertEqual(engine.troubles(), {})
        os.rename(folder, folder + " moved")
        self.assertEqual(set(engine.troubles()), {WORK})
        self.assertIn(f"“{folder}”", engine.troubles()[WORK])
        os.rename(folder + " moved", folder)
        self.assertEqual(engine.troubles(), {})
        engine.ask("continue", job)
        engine.wait(job, "ready")

    def test_folder_moved_away_under_the_worker(self):
        engine = self.runtime
        expected = transcript(engine.transcribe(self.long))
        job = self.working()
        folder = engine.job(job)["call_dir"]
        os.rename(folder, folder + " moved")
        self.assertRegex(engine.wait(job, "failed")["error"], r"\A[^\n]*\w[^\n]*\Z")
        self.assertFalse(os.path.exists(folder), "nothing is made where the folder was")
        kept = engine.kept(job)
        os.rename(folder + " moved", folder)
        engine.ask("retry", job)
        entry = engine.wait(job, "ready")
        self.assertEqual(transcript(entry), expected)
        self.assertEqual(engine.kept(job)[:len(kept)], kept)

    def test_folder_deleted_under_the_worker(self):
        engine = self.runtime
        job = self.working()
        folder = engine.job(job)["call_dir"]
        shutil.rmtree(folder)
        self.assertRegex(engine.wait(job, "failed")["error"], r"\A[^\n]*\w[^\n]*\Z")
        self.assertFalse(os.path.exists(folder))
        # The next one is not held up, and a job that has ended is no trouble any more.
        engine.transcribe(self.recording(engine))
        self.assertEqual(engine.troubles(), {})

    def test_folder_of_a_finished_transcript_that_was_renamed(self):
        engine = self.runtime
        entry = engine.transcribe(self.recording(engine))
        renamed = entry["call_dir"] + " with Ana"
        os.rename(entry["call_dir"], renamed)
        self.assertEqual(engine.history(), [])
        engine.ask("resume")
        self.assertEqual(engine.history(), [{**entry, "call_dir": renamed}])
        engine.ask("edit", entry["id"], "0", "--", "Thanks a lot.")
        self.assertEqual(transcript(engine.job(entry["id"])), "[00:00:00] Thanks a lot.\n")

    def test_worker_that_stands_still(self):
        engine = self.runtime
        job = self.working()
        worker = engine.worker()
        os.kill(worker, signal.SIGSTOP)
        until(lambda: engine.state(worker) == "T", "the worker to stand still")
        self.assertEqual(set(engine.troubles()), {WORK})
        self.assertIn(str(worker), engine.troubles()[WORK])
        os.kill(worker, signal.SIGCONT)
        until(lambda: engine.troubles() == {}, "a worker that is well")
        engine.wait(job, "ready")

    def test_clock_that_was_set_back(self):
        engine = self.runtime
        first = seed(engine)
        engine.ask("history")
        self.assertEqual(engine.troubles(), {})
        with self.store() as store:
            store.execute("UPDATE jobs SET created_at = '2099-01-01T00:00:00Z'")
        self.assertEqual(set(engine.troubles()), {"Date and time"})
        # New ones stand on top all the same, and with them all is well again.
        second = engine.transcribe(self.recording(engine))
        self.assertEqual([entry["id"] for entry in engine.history()], [second["id"], first["id"]])
        self.assertEqual(engine.status()["latest_job"]["id"], second["id"])
        self.assertEqual(engine.troubles(), {})

    def test_store_that_another_program_keeps_to_itself(self):
        engine = self.runtime
        entry = seed(engine)
        engine.ask("history")
        with self.store() as store:
            store.execute("BEGIN IMMEDIATE")
            self.assertEqual(engine.history(), [entry], "it can still be looked at")
            self.assertIn("in use by another program", engine.troubles()[LIST])
            store.execute("ROLLBACK")
        self.assertEqual(engine.troubles(), {})

    def test_worker_older_than_the_store(self):
        """As after an update in the middle of a job: the old worker finishes it, and old commands leave the store."""
        engine = self.runtime
        expected = transcript(engine.transcribe(self.long))
        job = self.working()
        with self.store() as store:
            version, = store.execute("PRAGMA user_version").fetchone()
            store.executescript(f"""BEGIN IMMEDIATE; ALTER TABLE jobs ADD COLUMN news TEXT;
                                    PRAGMA user_version = {version + 1}; COMMIT;""")

        def told():
            return engine.query("SELECT status, call_dir FROM jobs WHERE id = ?", job)[0]

        until(lambda: told()[0] not in ACTIVE, "the end of the job")
        self.assertEqual(told()[0], "ready")
        self.assertEqual(transcript({"call_dir": told()[1]}), expected)
        self.assertIn("newer version", engine.troubles()[LIST])
        self.assert_one_line(engine.call("hide", job), 1)
        with self.store() as store:
            store.execute(f"PRAGMA user_version = {version}")
        self.assertEqual(engine.troubles(), {})


if __name__ == "__main__":
    main()
