#!/usr/bin/env python3
"""Pause, continue, cancel and retry, and what stays of the work each time."""

import os

from road import QUICK, SENTENCES, WORKER, RoadTest, main, results, several, steady, transcript, until
from seeded import seed


class Pause(RoadTest):
    decoders = 1

    def paused_and_idle(self, engine, job):
        """Paused, and no processor time spent: the worker may stay or go, but it does nothing."""
        steady(engine.ticks, "processor time of a paused job")
        kept = engine.kept(job)
        entry = engine.job(job)
        self.assertIs(entry["paused"], True)
        before = engine.ticks()
        steady(lambda: len(engine.kept(job)), "segments of a paused job")
        for process, used in engine.ticks().items():
            self.assertEqual(used, before.get(process))
        self.assertEqual(engine.kept(job), kept)

    def test_the_whole_way(self):
        engine = self.engine()
        job = engine.process(several(os.path.join(engine.scratch, "long.wav"), *SENTENCES))
        until(lambda: engine.kept(job), "a kept segment")
        engine.ask("pause", job)
        self.paused_and_idle(engine, job)
        first = engine.kept(job)
        self.assertGreaterEqual(len(first), 1)
        # The worker of a paused job may already have gone by itself.
        engine.kill_worker()
        engine.ask("resume")
        self.paused_and_idle(engine, job)
        self.assertEqual(engine.kept(job), first)

        engine.ask("continue", job)
        self.assertIs(engine.job(job)["paused"], False)
        until(lambda: len(engine.kept(job)) > len(first), "one more segment")
        self.assertLessEqual(set(first), set(engine.kept(job)))

        engine.ask("cancel", job)
        self.assertEqual(engine.job(job)["status"], "cancelled")
        steady(engine.ticks, "processor time after cancel")
        cancelled = engine.kept(job)
        self.assertGreater(len(cancelled), len(first))
        engine.ask("resume")
        steady(engine.ticks, "processor time after cancel and resume")
        self.assertEqual(engine.job(job)["status"], "cancelled")
        self.assertEqual(engine.kept(job), cancelled)
        attempted = engine.attempts(job)

        engine.ask("retry", job)
        entry = engine.wait(job, "ready")
        kept = engine.kept(job)
        self.assertLessEqual(set(cancelled), set(kept))
        self.assertGreater(len(kept), len(cancelled))
        # What was kept was not recognised again.
        for number, *_ in cancelled:
            self.assertEqual(engine.attempts(job)[number], attempted[number])
        self.assertEqual(len(transcript(entry).splitlines()), len(engine.spoken(job)))
        self.assertEqual(len(engine.history()), 1)

    def test_continued_while_another_is_worked_on(self):
        engine = self.engine()
        long = several(os.path.join(engine.scratch, "long.wav"), *SENTENCES)
        first = engine.process(long)
        until(lambda: engine.kept(first), "a kept segment")
        engine.ask("pause", first)
        second = engine.process(long)
        until(lambda: engine.kept(second), "a kept segment of the other")
        engine.ask("continue", first)
        self.assertEqual(engine.status()["latest_job"]["id"], second)
        self.assertEqual(engine.job(second)["status"], "transcribing", "too late: the test shows nothing")
        engine.wait(second, "ready")
        until(lambda: engine.status()["latest_job"]["id"] == first, "the first one's turn")
        engine.wait(first, "ready")

    def test_paused_while_it_waits(self):
        engine = self.engine()
        long = several(os.path.join(engine.scratch, "long.wav"), *SENTENCES[:3])
        first = engine.process(long)
        second = engine.process(self.recording(engine))
        engine.ask("pause", second)
        engine.wait(first, "ready")
        self.paused_and_idle(engine, second)
        self.assertEqual(engine.kept(second), [])
        engine.ask("continue", second)
        self.assertIn("much", transcript(engine.wait(second, "ready")))

    def test_cancelled_while_it_waits(self):
        engine = self.engine()
        long = several(os.path.join(engine.scratch, "long.wav"), *SENTENCES[:3])
        first = engine.process(long)
        second = engine.process(self.recording(engine))
        engine.ask("cancel", second)
        engine.wait(first, "ready")
        steady(engine.ticks, "processor time when all is done")
        self.assertEqual(engine.job(second)["status"], "cancelled")
        self.assertEqual(engine.kept(second), [])
        engine.ask("retry", second)
        self.assertIn("much", transcript(engine.wait(second, "ready")))

    def test_cancelled_while_paused(self):
        engine = self.engine()
        job = engine.process(several(os.path.join(engine.scratch, "long.wav"), *SENTENCES[:3]))
        engine.ask("pause", job)
        engine.ask("cancel", job)
        entry = engine.job(job)
        self.assertEqual((entry["status"], entry["paused"]), ("cancelled", False))
        # Another one is not held up by it.
        engine.transcribe(self.recording(engine))
        engine.ask("retry", job)
        engine.wait(job, "ready")

    def test_same_text_after_pause(self):
        engine = self.engine()
        path = several(os.path.join(engine.scratch, "long.wav"), *SENTENCES[:4])
        expected = results(engine.transcribe(path))
        job = engine.process(path, *QUICK)
        for kept in (1, 2):
            until(lambda: len(engine.kept(job)) >= kept, f"{kept} kept segments")
            engine.ask("pause", job)
            steady(engine.ticks, "processor time of a paused job")
            engine.ask("continue", job)
        self.assertEqual(results(engine.wait(job, "ready")), expected)

    def test_without_a_worker_nothing_changes(self):
        engine = self.engine()
        paused, cancelled = (seed(engine, title=status, status=status)["id"] for status in ("queued", "cancelled"))
        engine.ask("pause", paused)
        before = engine.history()
        program = os.path.join(engine.folder, "runtime", "bin", WORKER)
        os.rename(program, program + " aside")
        for command in (("continue", paused), ("retry", cancelled)):
            reply = engine.call(*command)
            self.assert_one_line(reply, 1)
            self.assertIn("The engine is not complete", reply.err)
            self.assertEqual(engine.history(), before)

    def test_a_worker_that_cannot_be_started_now_is_left_to_resume(self):
        engine = self.engine()
        paused, cancelled = (seed(engine, title=status, status=status)["id"] for status in ("queued", "cancelled"))
        engine.ask("pause", paused)
        program = os.path.join(engine.folder, "runtime", "bin", WORKER)
        os.rename(program, program + " aside")
        with open(program, "wb") as file:
            file.write(b"no program")
        os.chmod(program, 0o755)
        engine.ask("continue", paused)
        engine.ask("retry", cancelled)
        self.assertEqual([(e["status"], e["paused"]) for e in engine.history()], [("queued", False)] * 2)
        reply = engine.call("resume")
        self.assert_one_line(reply, 1)
        self.assertIn("could not be started", reply.err)

    def test_ended_jobs_stay_as_they_are(self):
        engine = self.engine()
        entry = engine.transcribe(self.recording(engine))
        for command in ("pause", "continue", "cancel"):
            reply = engine.call(command, entry["id"])
            self.assertIn(reply.status, (0, 1), reply)
            self.assertEqual(engine.job(entry["id"]), entry, command)


if __name__ == "__main__":
    main()
