#!/usr/bin/env python3
"""Clean text, summary and title by a text model, and that the job is done without one that fails."""

import json
import os

from road import SENTENCES, RoadTest, main, read, several, technical, transcript, until
from servers import Ollama, as_json

NOTE = "No text model was used"
SUMMARY = {"title": "The new school", "summary": ["A school is being built."], "tasks": ["Build the school."]}


def is_summary(question):
    return question.get("format") == "json"


def said(question):
    return question["messages"][-1]["content"]


def good(question):
    return json.dumps(SUMMARY) if is_summary(question) else said(question).upper()


class Writing(RoadTest):
    def setUp(self):
        self.runtime = self.engine()
        self.ollama = Ollama("small:latest")
        self.addCleanup(self.ollama.close)
        self.runtime.environment["TUPPI_OLLAMA"] = f"127.0.0.1:{self.ollama.port}"
        self.runtime.environment["TUPPI_STALL_SECONDS"] = "2"
        self.runtime.ask("models", "text-model", "--name=small:latest")
        self.path = several(os.path.join(self.runtime.scratch, "call.wav"), *SENTENCES[:2])

    def start(self):
        return self.runtime.process(self.path, quick=False)

    def clean(self, entry):
        return read(technical(entry, "transcript.txt"))

    def summary(self, entry):
        return read(entry["call_dir"], "Summary.md")

    def questions(self):
        return [json.loads(request.body) for request in self.ollama.asked("/api/chat")]

    def assert_by_rules(self, entry):
        self.assertEqual(entry["title"], "call")
        self.assertIn(NOTE, self.summary(entry))
        self.assertRegex(self.clean(entry), r"\A[A-Z].*[a-z]")

    def test_the_model_writes(self):
        self.ollama.chat = good
        entry = self.runtime.wait(self.start(), "ready")
        self.assertEqual(entry["title"], "The new school")
        self.assertTrue(entry["call_dir"].endswith(" call"), entry["call_dir"])
        self.assertEqual(self.clean(entry), self.clean(entry).upper())
        summary = self.summary(entry)
        self.assertNotIn(NOTE, summary)
        self.assertIn("# The new school\n", summary)
        self.assertIn("- A school is being built.\n", summary)
        self.assertIn("- [ ] Build the school.\n", summary)
        self.assertIn("small:latest", summary)
        # The lines stay as they were said.
        self.assertNotEqual(transcript(entry), transcript(entry).upper())
        for question in self.questions():
            self.assertGreater(question["options"]["num_ctx"], len(said(question).encode()) // 2)
        self.assertEqual(self.runtime.query("SELECT count(*) FROM answers"), [(0,)])

    def test_what_the_model_invents_is_not_taken(self):
        self.ollama.chat = lambda question: "{}" if is_summary(question) else "The elephants of Babylon danced."
        entry = self.runtime.wait(self.start(), "ready")
        self.assert_by_rules(entry)
        self.assertNotIn("Babylon", self.clean(entry))
        self.assertIn("The text model “small:latest” gave no answer that could be used.", self.summary(entry))

    def test_a_summary_that_invents_is_not_taken(self):
        invented = {"title": "Boris", "summary": ["The team met Boris Babylon.", "It cost 7123 euros."], "tasks": []}
        self.ollama.chat = lambda question: json.dumps(invented) if is_summary(question) else said(question)
        entry = self.runtime.wait(self.start(), "ready")
        self.assert_by_rules(entry)
        for word in ("Boris", "7123"):
            self.assertNotIn(word, self.summary(entry))
        invented["summary"].append("A school is being built.")
        entry = self.runtime.wait(self.start(), "ready")
        self.assertIn("- A school is being built.\n", self.summary(entry))
        self.assertIn("2 sentences of the text model were left out", self.summary(entry))
        self.assertNotIn("Boris", self.summary(entry))

    def test_answers_that_are_none(self):
        for answer in (as_json({"error": "out of memory"}, 500), as_json(["x"]),
                       Ollama.stream({"message": {"content": "half of"}, "done": False})):
            self.ollama.chat = lambda question, answer=answer: answer
            self.assert_by_rules(self.runtime.wait(self.start(), "ready"))

    def test_gone(self):
        self.ollama.close()
        self.assert_by_rules(self.runtime.wait(self.start(), "ready"))

    def hanging(self):
        """A job whose model has been asked and is silent."""
        def wait(question):
            self.ollama.held.set()
            self.ollama.go.wait()
            return good(question)

        self.ollama.chat = wait
        job = self.start()
        until(self.ollama.held.is_set, "a question to the model")
        return job

    def test_silent(self):
        job = self.hanging()
        self.assert_by_rules(self.runtime.wait(job, "ready"))

    def test_paused_and_cancelled_while_it_writes(self):
        self.runtime.environment["TUPPI_STALL_SECONDS"] = "600"
        job = self.hanging()

        def shown():
            progress = self.runtime.status()["latest_job"]["progress"]
            self.assertRegex(progress, r"\A\d+/\d+\Z")
            return int(progress.split("/")[0])

        before = shown()
        until(lambda: shown() > before, "progress while one answer is awaited")
        for command in ("pause", "cancel"):
            self.runtime.ask(command, job)
            until(lambda: not self.runtime.processes(), "the end of the worker and of what it has asked")
        self.assertEqual(self.runtime.job(job)["status"], "cancelled")
        self.ollama.go.set()
        self.runtime.ask("retry", job)
        self.assertEqual(self.runtime.wait(job, "ready")["title"], "The new school")

    def test_a_killed_worker_goes_on_behind_the_last_answer(self):
        self.runtime.environment["TUPPI_STALL_SECONDS"] = "600"

        def hold_summary(question):
            if is_summary(question):
                self.ollama.held.set()
                self.ollama.go.wait()
            return good(question)

        self.ollama.chat = hold_summary
        job = self.start()
        until(self.ollama.held.is_set, "the question for a summary")
        self.assertTrue(self.runtime.kill_worker())
        until(lambda: not self.runtime.processes(), "the end of what the worker had asked")
        self.ollama.go.set()
        self.runtime.ask("resume")
        entry = self.runtime.wait(job, "ready")
        self.assertEqual(self.clean(entry), self.clean(entry).upper())
        self.assertEqual([is_summary(q) for q in self.questions()], [False, True, True])


if __name__ == "__main__":
    main()
