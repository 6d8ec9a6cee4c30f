#!/usr/bin/env python3
"""Every address that the road of a recording touches, from the built program without a window to the transcript and its
corrections: none but this computer's own, and that only where Ollama is asked.

Runs where there is no network but loopback, with every system call about sockets traced.
"""

import collections
import os
import subprocess
import sys
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [os.path.join(HERE, "..", "..", "runtime", "tests", "road"), os.path.join(HERE, "..", "support")]
import strace  # noqa: E402
from road import SENTENCES, RoadTest, main, read, technical  # noqa: E402
from servers import Ollama  # noqa: E402

MARK = "PRIVACY_NAMESPACE"
PROGRAM = os.path.join(os.environ["ENGINE_BUILD"], "tuppi-transcriber")
TRACE = ("strace", "-f", "--seccomp-bpf", "-s", "300", "-e", "trace=" + strace.CALLS,
         "-e", "signal=none", "-o")
MODELS = "tuppi-engine-models"


def enter_namespace():
    """Runs this script again where loopback is the only network; without that right the tests are skipped."""
    if MARK in os.environ:
        return
    unshare = ["unshare", "--net"] if os.geteuid() == 0 else ["unshare", "--map-root-user", "--net"]
    probe = subprocess.run([*unshare, "sh", "-c", "ip link set lo up && strace -f --seccomp-bpf -o /dev/null true"],
                           capture_output=True, text=True)
    os.environ[MARK] = "" if probe.returncode == 0 else probe.stderr.strip() or "unshare failed"
    if probe.returncode == 0:
        os.execvp(unshare[0], [*unshare, "sh", "-c", 'ip link set lo up && exec "$@"', "sh", sys.executable, "-B",
                               *sys.argv])


class Addresses(RoadTest):
    def setUp(self):
        if os.environ[MARK]:
            self.skipTest("no network of its own, or no trace, is to be had here: " + os.environ[MARK])
        self.runtime = self.engine()
        for name in ("TUPPI_OLLAMA", "OLLAMA_HOST"):
            self.runtime.environment.pop(name, None)
        self.runtime.environment |= {"LC_ALL": "C.UTF-8", "LANG": "C.UTF-8"}
        self.port = 11434  # Ollama's own
        self.traces = 0
        self.found = collections.Counter()

    def traced(self, *command, status=0):
        self.traces += 1
        path = os.path.join(self.runtime.home, f"trace {self.traces}")
        # strace ends with the last of the processes: the worker, which outlives the command, is traced to its end.
        done = subprocess.run([*TRACE, path, *command], env=self.runtime.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=600)
        self.assertEqual(done.returncode, status, done)
        found = strace.touched(read(path).splitlines())
        self.found += found
        return found

    def road(self):
        """File to transcript, corrections, and every question that the application asks."""
        path = self.recording(self.runtime, SENTENCES[0] + " " + SENTENCES[4], "call.wav")
        self.traced(PROGRAM, "--transcribe", "--language", "en", path)
        entry, = self.runtime.history()
        self.assertEqual(entry["status"], "ready", entry)
        for command in (["history", "--json"], ["status", "--json"], ["models", "--json"], ["settings", "--json"],
                        ["doctor", "--json"], ["resume"], ["speaker", entry["id"], "0", "--name=Anna", "--json"],
                        ["edit", entry["id"], "0", "--json", "--", "Good evening."], ["rename", entry["id"], "--", "Talk"]):
            self.traced(*self.runtime.command(*command))
        self.assertIn("Good evening", read(technical(self.runtime.job(entry["id"]), "transcript.txt")))
        return entry

    def tell(self):
        print(f"{self._testMethodName}: every address touched")
        strace.tell(self.found)

    def check(self):
        self.tell()
        self.assertEqual([one for one in self.found if not strace.is_here(one)], [])
        internet = [one for one in self.found if one.family in ("AF_INET", "AF_INET6")]
        for one in internet:
            self.assertEqual(one.program, MODELS, one)
            if one.call != "getsockname":  # their own end, of any port
                self.assertEqual((one.address, one.port), ("127.0.0.1", self.port), one)
        return internet

    def test_without_ollama(self):
        self.road()
        self.check()

    def test_with_ollama(self):
        ollama = Ollama("small:latest")
        self.addCleanup(ollama.close)
        ollama.chat = lambda question: question["messages"][-1]["content"]
        self.port = ollama.port
        self.runtime.environment["TUPPI_OLLAMA"] = f"127.0.0.1:{ollama.port}"
        self.traced(*self.runtime.command("models", "text-model", "--name=small:latest", "--json"))
        self.road()
        self.assertTrue(self.check(), "Ollama was not asked: the list shows nothing")
        self.assertTrue(ollama.asked("/api/chat"))

    def test_one_that_leaves_would_be_seen(self):
        """The one command that uses the internet, to show what the others would look like."""
        self.runtime.environment["TUPPI_HUB"] = "https://192.0.2.1"
        found = self.traced(*self.runtime.command("models", "add", "--name=Mine", "--kind=whisper",
                                                  "--repo=someone/whisper-small", "--json"), status=1)
        self.tell()
        self.assertIn(("192.0.2.1", 443), {(one.address, one.port) for one in found if not strace.is_here(one)})


if __name__ == "__main__":
    enter_namespace()
    main()
