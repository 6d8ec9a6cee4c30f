#!/usr/bin/env python3
"""The worker is on its own: nothing of the caller's stays open in it, and it outlives the caller's session."""

import fcntl
import os
import select
import signal
import subprocess

from road import PATIENCE, QUICK, SENTENCES, RoadTest, main, several, until


class Detached(RoadTest):
    decoders = 1

    def setUp(self):
        self.larkspire = self.engine()
        self.path = several(os.path.join(self.larkspire.scratch, "long.wav"), *SENTENCES)

    def start(self, **options):
        return subprocess.Popen(
            self.larkspire.command("process", self.path, "--background", "--engine", "auto", "--language", "en", *QUICK),
            env=self.larkspire.environment, **options)

    def end_of(self, descriptor):
        """What comes out of a pipe until all who could write to it are gone."""
        data = b""
        while True:
            ready, _, _ = select.select([descriptor], [], [], PATIENCE)
            self.assertTrue(ready, "the pipe is still held open")
            piece = os.read(descriptor, 65536)
            if not piece:
                return data
            data += piece

    def still_at_work(self):
        entry, = self.larkspire.history()
        self.assertIn(entry["status"], ("queued", "transcribing"), "too early to be over: the test shows nothing")
        return entry["id"]

    def test_holds_nothing_of_the_caller(self):
        engine = self.larkspire
        kept = os.path.join(engine.home, "locked")
        with open(kept, "w", encoding="ascii") as file:
            fcntl.flock(file, fcntl.LOCK_EX)
            extra_read, extra_write = os.pipe()
            process = self.start(stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                 pass_fds=(file.fileno(), extra_write))
            os.close(extra_write)
        self.assertEqual(process.wait(timeout=PATIENCE), 0)
        self.end_of(process.stdout.fileno())
        self.assertEqual(self.end_of(process.stderr.fileno()), b"")
        self.end_of(extra_read)
        os.close(extra_read)
        with open(kept, "w", encoding="ascii") as file:
            fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
        for pipe in (process.stdin, process.stdout, process.stderr):
            pipe.close()
        job = self.still_at_work()
        worker = until(engine.worker, "the worker")
        self.assertEqual(os.getsid(worker), os.getpgid(worker))
        self.assertNotEqual(os.getsid(worker), os.getsid(0))
        # Not in a folder of the caller's either: that could not be unmounted.
        self.assertFalse(os.readlink(f"/proc/{worker}/cwd").startswith(engine.scratch))
        self.still_at_work()
        engine.wait(job, "ready")

    def test_outlives_the_session(self):
        engine = self.larkspire
        process = self.start(stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                             start_new_session=True, cwd=engine.scratch)
        self.assertEqual(self.end_of(process.stderr.fileno()), b"")
        process.stderr.close()
        self.assertEqual(process.wait(timeout=PATIENCE), 0)
        job = self.still_at_work()
        # As when the terminal is closed; the group may be empty already.
        try:
            os.killpg(process.pid, signal.SIGHUP)
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        engine.wait(job, "ready")

    def test_worker_goes_when_there_is_nothing_to_do(self):
        engine = self.larkspire
        job = engine.process(self.recording(engine))
        engine.wait(job, "ready")
        until(lambda: not engine.processes(), "the end of the worker")


if __name__ == "__main__":
    main()
