"""From files to transcripts with the built program and the real local engine."""

import json
import os
import random
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from scripted_engine import Home, wait_until  # noqa: E402

BUILD = os.environ["TUPPI_BUILD"]
SOURCE = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))
PROGRAM = os.path.join(BUILD, "tuppi-transcriber")
PATIENCE = 300
SEED = int(os.environ.get("TUPPI_ROAD_SEED", "20250314"))
SENTENCES = {
    "first": "Good morning and thank you for coming in today",
    "second": "There are about twenty people on the team",
    "third": "We hope to open the doors in September",
    "fourth": "My brother will look after the water and the lights",
    "fifth": "We need to send the report to the city by Friday",
}


class Road(unittest.TestCase):
    def setUp(self):
        self.home = Home()
        self.addCleanup(self.home.remove)
        subprocess.run([os.path.join(SOURCE, "runtime/install-engine"), BUILD], env=self.home.environment, check=True,
                       stdout=subprocess.DEVNULL)

    def speak(self, *titles):
        paths = []
        for title in titles:
            paths.append(os.path.join(self.home.home, title + ".wav"))
            subprocess.run(["flite", "-voice", "slt", "-t", SENTENCES[title], "-o", paths[-1]], check=True)
        return paths

    def start(self, *arguments):
        process = subprocess.Popen([PROGRAM, "--transcribe", *arguments], env=self.home.environment, text=True,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(self.stop, process)
        return process

    @staticmethod
    def stop(process):
        if process.poll() is None:
            process.kill()
            process.communicate()

    def run_to_end(self, *arguments):
        process = self.start(*arguments)
        out, err = process.communicate(timeout=PATIENCE)
        return process.returncode, out, err

    def history(self):
        reply = subprocess.run(["/bin/bash", self.home.engine_path, "history", "--json"], env=self.home.environment,
                               capture_output=True, check=True)
        return json.loads(reply.stdout)

    def assert_transcribed(self, job):
        self.assertEqual(job["status"], "ready", job)
        with open(os.path.join(job["call_dir"], "Transcript.txt"), encoding="utf-8") as file:
            self.assertTrue(file.read().strip(), job["title"])

    def ready_titles(self):
        return sorted(job["title"] for job in self.history() if job["status"] == "ready")


class KilledAtRandom(Road):
    """Two kills for each file: one about when it is handed over, one somewhere in the work."""

    def left_the_queue(self):
        return len(SENTENCES) - len(self.home.waiting())

    def kill(self, process, file, delay):
        """False when the process came to its end before."""
        wait_until(lambda: process.poll() is not None or self.left_the_queue() >= file, f"the start of file {file}")
        try:
            process.communicate(timeout=delay)
            return False
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            return True

    def state(self):
        settings = self.home.settings()
        flight = "one" if "startInFlight" in settings else "none"
        return f"{len(settings['waitingQueue'])} waiting, {flight} in flight, {len(self.history())} jobs"

    def test_every_file_is_transcribed_exactly_once(self):
        moments = random.Random(SEED)
        process = self.start(*self.speak(*SENTENCES))
        wait_until(lambda: os.path.exists(self.home.settings_path), "the stored queue")
        kills = 0
        for file in range(1, len(SENTENCES) + 1):
            for latest in (0.12, 1):
                kills += self.kill(process, file, moments.uniform(0.001, latest))
                print(f"killed {kills} times: {self.state()}", flush=True)
                process = self.start()
        out, err = process.communicate(timeout=PATIENCE)
        self.assertEqual(process.returncode, 0, out + err)
        self.assertEqual(self.home.settings()["waitingQueue"], [])
        self.assertNotIn("startInFlight", self.home.settings())
        jobs = self.history()
        self.assertEqual(sorted(job["title"] for job in jobs), sorted(SENTENCES))
        for job in jobs:
            self.assert_transcribed(job)
        self.assertGreaterEqual(kills, len(SENTENCES), "the kills came too late to show anything")


class Trouble(Road):
    def test_file_that_vanishes_while_it_waits(self):
        first, second, third = self.speak("first", "second", "third")
        process = self.start(first, second, third)
        line = process.stdout.readline()
        while "first: Starting…" not in line and "first: Listening" not in line and line:
            line = process.stdout.readline()
        os.remove(second)
        out, err = process.communicate(timeout=PATIENCE)
        self.assertEqual(process.returncode, 1, out + err)
        self.assertIn("Could not start “second.wav”: ", err)
        self.assertEqual(self.ready_titles(), ["first", "third"])
        self.assertEqual(self.home.waiting(), [])
        print(err, end="")

    def test_bad_files_among_good_ones(self):
        first, second = self.speak("first", "second")
        text = os.path.join(self.home.home, "notes.mp3")
        with open(text, "w", encoding="utf-8") as file:
            file.write("These are notes, not sounds.\n" * 100)
        empty = self.home.recording("empty.m4a")
        status, out, err = self.run_to_end(first, text, empty, second)
        self.assertEqual(status, 1, out + err)
        self.assertEqual(self.ready_titles(), ["first", "second"])
        for name in ("notes", "empty"):
            lines = [line for line in err.splitlines() if name in line]
            self.assertEqual(len(lines), 1, err)
            self.assertGreater(len(lines[0].split(": ", 1)[1]), 10, err)
        for title in ("first", "second"):
            self.assertIn(f"{title}: {self.home.home}/", out)
        print(err, end="")

    def test_file_that_vanished_between_two_runs_is_dropped(self):
        first, second = self.speak("first", "second")
        entries = [{"path": path} for path in (first, second)]
        self.home.write_settings({"waitingQueue": entries})
        os.remove(first)
        status, out, err = self.run_to_end()
        self.assertEqual((status, err), (0, ""), out)
        self.assertEqual(self.ready_titles(), ["second"])


if __name__ == "__main__":
    unittest.main(verbosity=2)
