#!/usr/bin/env python3
"""Several decoders side by side: the same text as one alone, and nothing lost whatever becomes of them."""

import contextlib
import os
import signal
import unittest

from road import ACTIVE, SENTENCES, RoadTest, main, results, several, until

CORES = len(os.sched_getaffinity(0))


def fraction(progress):
    done, whole = map(int, progress.split("/"))
    return done / whole


class DecodersTest(RoadTest):
    def setUp(self):
        self.runtime = self.engine()
        self.path = several(os.path.join(self.runtime.scratch, "long.wav"), *SENTENCES)

    def decoders(self):
        """The processes in which segments are recognised: children of the worker."""
        engine, worker = self.runtime, self.runtime.worker()
        return [p for p in engine.processes() if worker and engine.stat(p)[1:2] == [str(worker)]]

    def decode_with(self, most):
        self.runtime.environment["TUPPI_DECODERS"] = str(most)

    def alone(self):
        self.decode_with(1)
        expected = results(self.runtime.transcribe(self.path))
        self.decode_with(CORES)
        return expected

    def test_same_text_and_progress_never_goes_back(self):
        expected = self.alone()
        engine = self.runtime
        job = engine.process(self.path)
        most, shown = 0, [0.0]

        def ended():
            nonlocal most
            most = max(most, len(self.decoders()))
            latest = engine.status()["latest_job"]
            if latest["status"] == "transcribing" and latest["progress"]:
                shown.append(fraction(latest["progress"]))
            return latest["status"] not in ACTIVE

        until(ended, "the end")
        self.assertEqual(shown, sorted(shown))
        self.assertGreater(len(set(shown)), 3)
        self.assertLessEqual(most, CORES)
        self.assertEqual(results(engine.wait(job, "ready")), expected)

    @unittest.skipIf(CORES < 2, "one core")
    def test_every_core_works(self):
        job = self.runtime.process(self.path)
        found = until(lambda: len(self.decoders()) >= 2 and self.decoders(), "two decoders at once")
        # People come first.
        for process in found:
            with contextlib.suppress(ProcessLookupError):
                self.assertGreaterEqual(os.getpriority(os.PRIO_PROCESS, process), 10)
        self.runtime.wait(job, "ready")

    def test_killed_decoders(self):
        expected = self.alone()
        engine = self.runtime
        job = engine.process(self.path)
        killed = set()
        for _ in range(4):
            for process in until(lambda: set(self.decoders()) - killed, "a decoder"):
                with contextlib.suppress(ProcessLookupError):
                    os.kill(process, signal.SIGKILL)
                    killed.add(process)
        self.assertGreaterEqual(len(killed), 4)
        self.assertEqual(results(engine.wait(job, "ready")), expected)
        self.assertGreater(sum(engine.attempts(job)), len(engine.attempts(job)))

    def test_stopped_and_continued(self):
        expected = self.alone()
        engine = self.runtime
        job = engine.process(self.path)
        until(self.decoders, "a decoder")
        stopped = [engine.worker(), *self.decoders()]
        for process in stopped:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGSTOP)
        # The others can still be asked, and nobody takes the job from a worker that only stands still.
        engine.ask("resume")
        self.assertIn(engine.job(job)["status"], ACTIVE)
        self.assertEqual(engine.worker(), stopped[0])
        for process in stopped:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGCONT)
        self.assertEqual(results(engine.wait(job, "ready")), expected)

    def test_cancelled_while_decoders_stand_still(self):
        engine = self.runtime
        job = engine.process(self.path)
        stopped = until(self.decoders, "a decoder")
        for process in stopped:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGSTOP)
        engine.ask("cancel", job)
        until(lambda: all(engine.state(p) in "ZX" for p in stopped), "the end of decoders of a cancelled job")
        until(lambda: not engine.processes(), "the end of the worker")
        engine.ask("retry", job)
        engine.wait(job, "ready")

    def test_a_killed_worker_leaves_no_decoder(self):
        engine = self.runtime
        job = engine.process(self.path)
        found = until(self.decoders, "a decoder")
        self.assertTrue(engine.kill_worker())
        until(lambda: all(engine.state(p) in "ZX" for p in found), "the end of decoders without a worker")
        engine.ask("resume")
        engine.wait(job, "ready")


if __name__ == "__main__":
    main()
