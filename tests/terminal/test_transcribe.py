"""The built program without a window, against the scripted engine."""

import fcntl
import json
import os
import pty
import signal
import struct
import subprocess
import sys
import termios
import threading
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from scripted_engine import DEADLINE, ScriptedEngine, wait_until  # noqa: E402

PROGRAM = os.environ["TUPPI_PROGRAM"]
NOT_SAVED = "The waiting list could not be saved. It is kept until the app quits.\n"
ENGINE_MISSING = "Tuppi's engine could not be found — please run the installer again.\n"
KEPT = "Still waiting for the next start of Tuppi Transcriber: "
NOT_KEPT = "Not transcribed, and not kept: "


class Running:
    """A program at work whose output is read as it comes."""

    def __init__(self, engine, arguments, stdout=subprocess.PIPE, **options):
        self.process = subprocess.Popen([PROGRAM, *arguments], env=engine.environment, stdin=subprocess.DEVNULL,
                                        stdout=stdout, stderr=subprocess.PIPE, start_new_session=True, **options)
        self._texts = {"out": b"", "err": b""}
        self._threads = [threading.Thread(target=self._read, args=("err", self.process.stderr.fileno()))]
        if self.process.stdout:
            self._threads.append(threading.Thread(target=self._read, args=("out", self.process.stdout.fileno())))
        for thread in self._threads:
            thread.start()

    def _read(self, name, descriptor):
        while True:
            try:
                data = os.read(descriptor, 65536)
            except OSError:
                data = b""
            if not data:
                return
            self._texts[name] += data

    def read_terminal(self, descriptor):
        thread = threading.Thread(target=self._read, args=("out", descriptor))
        self._threads.append(thread)
        thread.start()

    @property
    def out(self):
        return self._texts["out"].decode()

    @property
    def err(self):
        return self._texts["err"].decode()

    def wait_for(self, text):
        wait_until(lambda: text in self.out or text in self.err, f"“{text}”")

    def end(self):
        status = self.process.wait(DEADLINE)
        for thread in self._threads:
            thread.join(DEADLINE)
        for stream in (self.process.stdout, self.process.stderr):
            if stream:
                stream.close()
        return status

    def stop(self):
        if self.process.poll() is None:
            self.process.kill()
            self.end()


class TranscribeTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.engine = ScriptedEngine()
        self.addCleanup(self.engine.remove)
        self.one = self.engine.recording("one.m4a")
        self.two = self.engine.recording("two.wav")

    def start(self, *arguments, **options):
        running = Running(self.engine, ["--transcribe", *arguments], **options)
        self.addCleanup(running.stop)
        return running

    def run_to_end(self, *arguments, **options):
        running = self.start(*arguments, **options)
        running.status = running.end()
        return running

    def started_files(self):
        return [os.path.basename(call[1]) for call in self.engine.calls("process")]


class Outcomes(TranscribeTest):
    def test_what_the_starter_ignores_does_not_hide_how_a_command_ended(self):
        self.engine.keep_book("ready")
        run = self.run_to_end(self.one, preexec_fn=lambda: signal.signal(signal.SIGCHLD, signal.SIG_IGN))
        self.assertEqual((run.status, run.err), (0, ""))

    def test_all_ready_is_0_with_a_line_per_step_and_the_call_dirs_at_the_end(self):
        self.engine.keep_book("ready")
        run = self.run_to_end(self.one, self.two)
        self.assertEqual(run.err, "")
        self.assertEqual(run.out.splitlines(), [
            "one: Waiting in line…", "two: Waiting in line…",
            "one: Copying the file…", "one: Done ·  · 1 min",
            "two: Copying the file…", "two: Done ·  · 1 min",
            "one: /calls/one", "two: /calls/two"])
        self.assertEqual(run.status, 0)
        self.assertEqual(self.engine.waiting(), [])
        self.assertNotIn("startInFlight", self.engine.settings())

    def test_every_stage_is_a_line_and_no_terminal_means_no_escapes(self):
        self.engine.keep_book("queued")
        run = self.start(self.one)
        run.wait_for("one: Starting…")
        self.engine.answer("status", '{"latest_job":{"id":"job-1","progress":"10%"}}')
        for status, text in (("transcribing", "Listening and writing down… 10%"), ("analyzing", "Writing the summary… 10%"),
                             ("cleaning", "Polishing the text… 10%"),
                             ("ready", "Done · 2025-03-14 10:22 · 42 min · Whisper Turbo")):
            self.engine.set_job(1, title="one", status=status, call_dir="/calls/one", engine="whisper",
                                recorded_at="2025-03-14T10:22:33", duration_seconds=2520)
            self.engine.touch_state()
            run.wait_for("one: " + text)
        self.assertEqual(run.end(), 0)
        self.assertEqual(run.out.splitlines(), [
            "one: Waiting in line…", "one: Copying the file…", "one: Starting…", "one: Listening and writing down… 10%",
            "one: Writing the summary… 10%", "one: Polishing the text… 10%",
            "one: Done · 2025-03-14 10:22 · 42 min · Whisper Turbo", "one: /calls/one"])

    def test_failed_job_is_1_with_its_reason_on_stderr(self):
        self.engine.keep_book("queued")
        run = self.start(self.one, self.two)
        run.wait_for("one: Starting…")
        self.engine.set_job(1, title="one", status="failed", error="Запис містить тишу", call_dir="/calls/one")
        self.engine.touch_state()
        run.wait_for("two: Starting…")
        self.engine.set_job(2, title="two", status="ready", call_dir="/calls/two")
        self.engine.touch_state()
        self.assertEqual(run.end(), 1)
        self.assertEqual(run.err, "one: Failed — No speech found in this recording\n")
        self.assertEqual(run.out.splitlines()[-1], "two: /calls/two")
        self.assertNotIn("/calls/one", run.out)

    def test_cancelled_job_is_1(self):
        self.engine.keep_book("cancelled")
        run = self.run_to_end(self.one)
        self.assertEqual(run.status, 1)
        self.assertIn("one: Cancelled — ", run.err)

    def test_refused_file_is_1_and_the_others_go_on(self):
        self.engine.keep_book("ready")
        self.engine.answer("process", err="details\nError: no space left on the disk\n", status=1, nth=1)
        run = self.run_to_end(self.one, self.two)
        self.assertEqual(run.status, 1)
        self.assertEqual(run.err, "Could not start “one.m4a”: no space left on the disk\n")
        self.assertEqual(run.out.splitlines()[-1], "two: /calls/two")
        self.assertEqual(self.started_files(), ["one.m4a", "two.wav"])

    def test_refusal_without_a_text_names_the_file(self):
        self.engine.answer("process", status=1)
        run = self.run_to_end(self.one)
        self.assertEqual(run.status, 1)
        self.assertEqual(run.err, "Could not start “one.m4a”\n")

    def test_file_taken_without_a_job_is_1(self):
        run = self.run_to_end(self.one)
        self.assertEqual(run.status, 1)
        self.assertEqual(run.err, "one: The engine took the file but lists no job for it.\n")

    def test_job_that_the_engine_no_longer_lists_is_1(self):
        self.engine.keep_book("queued")
        run = self.start(self.one)
        run.wait_for("one: Starting…")
        self.engine.answer("history", "[]")
        self.engine.touch_state()
        self.assertEqual(run.end(), 1)
        self.assertEqual(run.err, "one: The engine no longer lists its job.\n")

    def test_missing_engine_is_1_and_the_files_keep_waiting(self):
        self.engine.uninstall()
        run = self.run_to_end(self.one, self.two)
        self.assertEqual(run.status, 1)
        self.assertEqual(run.err, ENGINE_MISSING + KEPT + "one.m4a, two.wav\n")
        self.assertEqual(self.engine.waiting(), ["one.m4a", "two.wav"])
        self.engine.install()
        self.engine.keep_book("ready")
        run = self.run_to_end()
        self.assertEqual(run.status, 0)
        self.assertEqual(run.out.splitlines()[-2:], ["one: /calls/one", "two: /calls/two"])

    def test_engine_that_goes_missing_is_1_and_what_waits_keeps_waiting(self):
        self.engine.keep_book("queued")
        run = self.start(self.one, self.two)
        run.wait_for("one: Starting…")
        self.engine.uninstall()
        self.assertEqual(run.end(), 1)
        self.assertEqual(run.err, ENGINE_MISSING + KEPT + "two.wav\n")
        self.assertEqual(self.engine.waiting(), ["two.wav"])
        self.engine.install()
        self.engine.keep_book("ready")
        self.engine.set_job(1, title="one", status="ready", call_dir="/calls/one")
        self.assertEqual(self.run_to_end().status, 0)
        self.assertEqual(self.started_files(), ["one.m4a", "two.wav"])

    def test_nothing_waiting_is_0_and_says_so(self):
        run = self.run_to_end()
        self.assertEqual((run.status, run.out, run.err), (0, "Nothing is waiting.\n", ""))

    def test_garbage_from_the_engine_is_outlived(self):
        self.engine.keep_book("ready")
        self.engine.answer("history", out=b"\xff garbage", nth=1)
        run = self.run_to_end(self.one)
        self.assertEqual(run.status, 0)
        self.assertEqual(run.out.splitlines()[-1], "one: /calls/one")

    def test_job_already_under_way_is_awaited_before_the_file_is_started(self):
        self.engine.keep_book("ready")
        self.engine.set_job(1, title="earlier", status="transcribing", call_dir="/calls/earlier")
        run = self.start(self.one)
        run.wait_for("earlier: Listening and writing down…")
        self.assertEqual(self.started_files(), [])
        self.engine.set_job(1, title="earlier", status="ready", call_dir="/calls/earlier")
        self.engine.touch_state()
        self.assertEqual(run.end(), 0)
        self.assertEqual(run.out.splitlines()[-2:], ["one: /calls/one", "earlier: /calls/earlier"])

    def test_garbled_settings_are_set_aside(self):
        self.engine.keep_book("ready")
        self.engine.write_settings("{ garbled")
        run = self.run_to_end(self.one)
        self.assertEqual(run.status, 0)
        self.assertIn("Your settings could not be read: Tuppi starts with the usual ones", run.err)
        folder = os.path.dirname(self.engine.settings_path)
        asides = [name for name in os.listdir(folder) if ".garbled-" in name]
        self.assertEqual(len(asides), 1)
        with open(os.path.join(folder, asides[0]), encoding="utf-8") as file:
            self.assertEqual(file.read(), "{ garbled")
        with open(os.path.join(self.engine.home, "Library/Logs/TuppiTranscriber.log"), encoding="utf-8") as log:
            self.assertIn("could not be read; set aside", log.read())


class CommandLine(TranscribeTest):
    def command(self, *arguments):
        done = subprocess.run([PROGRAM, *arguments], env=self.engine.environment, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=DEADLINE, check=False)
        return done.returncode, done.stdout.decode(), done.stderr.decode()

    def assert_usage_error(self, text, *arguments):
        status, out, err = self.command(*arguments)
        self.assertEqual((status, out), (2, ""))
        self.assertIn(text, err)
        self.assertEqual(self.engine.calls(), [])
        self.assertFalse(os.path.exists(self.engine.settings_path))

    def test_usage_errors_are_2_and_start_nothing(self):
        self.assert_usage_error("nonsense", "--transcribe", "--nonsense", self.one)
        self.assert_usage_error("model", "--transcribe", "--model")
        self.assert_usage_error("The option “--language” goes with --transcribe.\n", "--language", "uk", self.one)

    def test_missing_file_is_2_and_starts_none_of_the_others(self):
        gone = os.path.join(self.engine.home, "gone.m4a")
        self.assert_usage_error(f"There is no file “{gone}”.\n", "--transcribe", self.one, gone)

    def test_file_of_another_kind_and_folder_are_2(self):
        notes = self.engine.recording("notes.txt")
        self.assert_usage_error(f"“{notes}” is not a recording of a kind that Tuppi knows (m4a, mp3,", "--transcribe", notes)
        self.assert_usage_error(f"“{self.engine.home}” is not a file.", "--transcribe", self.engine.home)

    def test_help_and_version_are_0(self):
        status, out, err = self.command("--help")
        self.assertEqual((status, err), (0, ""))
        self.assertIn("--transcribe", out)
        status, out, err = self.command("--version")
        self.assertEqual((status, err), (0, ""))
        self.assertRegex(out, r"^Tuppi Transcriber \d+\.\d+\.\d+\n$")
        self.assertEqual(self.engine.calls(), [])

    def process_call(self, *arguments):
        self.engine.keep_book("ready")
        self.assertEqual(self.run_to_end(self.one, *arguments).status, 0)
        return self.engine.calls("process")[-1][2:]

    def test_starting_choices_are_the_defaults(self):
        self.assertEqual(self.process_call(),
                         ["--background", "--engine", "auto", "--language", "en", "--speakers"])

    def test_options_reach_the_engine(self):
        self.assertEqual(self.process_call("--model", "whisper-large", "--language", "auto", "--no-speakers", "--text-only"),
                         ["--background", "--engine", "whisper-large", "--language", "auto", "--no-clean", "--no-analyze",
                          "--no-speakers"])

    def test_stored_choices_hold_where_no_option_is_given(self):
        self.engine.write_settings({"engine": "parakeet", "language": "uk", "speakers": False, "quickMode": True})
        self.assertEqual(self.process_call("--language", "es"),
                         ["--background", "--engine", "parakeet", "--language", "es", "--no-clean", "--no-analyze",
                          "--no-speakers"])

    def test_options_of_one_run_are_not_remembered(self):
        self.process_call("--model", "whisper", "--language", "ru", "--no-speakers", "--text-only")
        self.assertEqual(set(self.engine.settings()), {"waitingQueue"})

    def test_file_named_in_full_and_relatively_is_queued_once(self):
        self.engine.keep_book("ready")
        relative = os.path.relpath(self.one)
        self.assertEqual(self.run_to_end(self.one, relative, self.one).status, 0)
        self.assertEqual(self.engine.calls("process")[0][1], self.one)
        self.assertEqual(len(self.engine.calls("process")), 1)


class Interruption(TranscribeTest):
    def interrupt_while_one_is_under_way(self, number):
        self.engine.keep_book("queued")
        run = self.start(self.one, self.two)
        run.wait_for("one: Starting…")
        os.killpg(run.process.pid, number)
        self.assertEqual(run.end(), 1)
        self.assertEqual(run.err, "The engine goes on with “one”.\n" + KEPT + "two.wav\n")
        self.assertEqual(self.engine.waiting(), ["two.wav"])

    def test_interrupted_it_says_what_goes_on_and_what_waits_and_the_next_run_goes_on(self):
        self.interrupt_while_one_is_under_way(signal.SIGINT)
        self.engine.set_job(1, title="one", status="ready", call_dir="/calls/one")
        self.engine.keep_book("ready")
        run = self.run_to_end()
        self.assertEqual(run.status, 0)
        self.assertEqual(run.out.splitlines()[-1], "two: /calls/two")
        self.assertEqual(self.started_files(), ["one.m4a", "two.wav"])

    def test_terminated_it_says_the_same(self):
        self.interrupt_while_one_is_under_way(signal.SIGTERM)

    def test_interrupt_of_the_whole_group_does_not_reach_the_command_in_flight(self):
        self.engine.keep_book("queued")
        self.engine.answer("process", before='wait_for process\nlocked book_add "$2"', nth=1)
        run = self.start(self.one)
        wait_until(lambda: self.started_files() == ["one.m4a"])
        os.killpg(run.process.pid, signal.SIGINT)
        self.assertEqual(run.end(), 1)
        self.assertEqual(run.err, "The engine goes on with “one”.\n")
        self.engine.open_gate("process")
        wait_until(lambda: self.engine.jobs() == 1)
        self.engine.set_job(1, title="one", status="ready", call_dir="/calls/one")
        self.assertEqual(self.run_to_end().status, 0)
        self.assertEqual(self.started_files(), ["one.m4a"])

    def test_interrupted_before_the_engine_has_answered_everything_waits(self):
        self.engine.answer("history", out="[]", before="wait_for history")
        run = self.start(self.one, self.two)
        run.wait_for("two: Waiting in line…")
        os.killpg(run.process.pid, signal.SIGINT)
        self.assertEqual(run.end(), 1)
        self.assertEqual(run.err, KEPT + "one.m4a, two.wav\n")
        self.assertEqual(self.engine.waiting(), ["one.m4a", "two.wav"])

    def test_list_that_cannot_be_saved_is_told_and_not_called_kept(self):
        self.engine.recording(".config")  # a file where the folder should be
        self.engine.keep_book("queued")
        run = self.start(self.one, self.two)
        run.wait_for("one: Starting…")
        run.wait_for(NOT_SAVED)
        os.killpg(run.process.pid, signal.SIGINT)
        self.assertEqual(run.end(), 1)
        self.assertEqual(run.err, NOT_SAVED + "The engine goes on with “one”.\n" + NOT_KEPT + "two.wav\n")

    def test_killed_while_a_start_is_in_flight_every_file_is_started_once(self):
        self.engine.keep_book("ready")
        self.engine.answer("process", before='wait_for process\nlocked book_add "$2"', nth=1)
        run = self.start(self.one, self.two)
        wait_until(lambda: self.started_files() == ["one.m4a"])
        run.process.kill()
        run.end()
        self.assertEqual(self.engine.waiting(), ["two.wav"])
        self.assertEqual(self.engine.settings()["startInFlight"]["path"], self.one)

        run = self.start()
        run.wait_for("two: Waiting in line…")
        self.engine.open_gate("process")
        self.assertEqual(run.end(), 0)
        self.assertEqual(self.started_files(), ["one.m4a", "two.wav"])
        self.assertEqual(self.engine.waiting(), [])

    def test_start_that_a_kill_interrupted_is_awaited_and_its_job_followed(self):
        self.engine.keep_book("queued")
        self.engine.answer("process", before='wait_for process\nlocked book_add "$2"', nth=1)
        run = self.start(self.one)
        wait_until(lambda: self.started_files() == ["one.m4a"])
        run.process.kill()
        run.end()

        run = self.start()
        asked = len(self.engine.calls("history"))
        wait_until(lambda: len(self.engine.calls("history")) >= asked + 2)
        self.engine.open_gate("process")
        run.wait_for("one: Starting…")
        self.engine.set_job(1, title="one", status="ready", call_dir="/calls/one")
        self.engine.touch_state()
        self.assertEqual(run.end(), 0)
        self.assertEqual(run.out.splitlines()[-1], "one: /calls/one")
        self.assertEqual(self.started_files(), ["one.m4a"])

    def test_file_added_to_what_was_waiting_comes_last(self):
        self.engine.keep_book("ready")
        self.engine.write_settings({"waitingQueue": [{"path": self.two}]})
        self.assertEqual(self.run_to_end(self.one).status, 0)
        self.assertEqual(self.started_files(), ["two.wav", "one.m4a"])


class TwoProcesses(TranscribeTest):
    NOTICE = "Another Tuppi is running. The list here is kept only until the app quits.\n"

    def start_first(self):
        self.engine.keep_book("queued")
        first = self.start(self.one)
        first.wait_for("one: Starting…")
        return first

    def finish_first(self, first):
        self.engine.set_job(1, title="one", status="ready", call_dir="/calls/one")
        self.engine.touch_state()
        self.assertEqual(first.end(), 0)

    def test_second_says_so_and_transcribes_its_own(self):
        first = self.start_first()
        second = self.start(self.two)
        second.wait_for("two: Waiting in line…")
        second.wait_for("one: Starting…")
        self.assertEqual(second.err, self.NOTICE)
        self.assertEqual(self.engine.waiting(), [])
        self.engine.keep_book("ready")
        self.finish_first(first)
        self.assertEqual(second.end(), 0)
        self.assertEqual(second.out.splitlines()[-2:], ["two: /calls/two", "one: /calls/one"])
        self.assertEqual(self.started_files(), ["one.m4a", "two.wav"])

    def test_second_interrupted_says_that_its_files_are_not_kept(self):
        first = self.start_first()
        second = self.start(self.two)
        second.wait_for("two: Waiting in line…")
        second.wait_for("one: Starting…")
        second.process.send_signal(signal.SIGINT)
        self.assertEqual(second.end(), 1)
        self.assertEqual(second.err, self.NOTICE + "The engine goes on with “one”.\n" + NOT_KEPT + "two.wav\n")
        self.finish_first(first)
        self.assertEqual(self.started_files(), ["one.m4a"])

    def test_second_without_an_engine_says_that_its_files_are_not_kept(self):
        first = self.start_first()
        second = self.start(self.two)
        second.wait_for("two: Waiting in line…")
        second.wait_for("one: Starting…")
        self.engine.uninstall()
        self.assertEqual(second.end(), 1)
        self.assertEqual(second.err, self.NOTICE + ENGINE_MISSING + NOT_KEPT + "two.wav\n")
        self.assertEqual(first.end(), 1)
        self.assertEqual(first.err, ENGINE_MISSING)
        self.assertEqual(self.engine.waiting(), [])


    def test_job_of_somebody_else_that_appears_during_a_start_is_left_to_them(self):
        self.engine.keep_book("ready")
        self.engine.answer("process", before='wait_for process\nlocked book_add "$2"', nth=1)
        run = self.start(self.one)
        run.wait_for("one: Copying the file…")
        self.engine.set_job(1, title="other", status="ready", call_dir="/calls/other")
        asked = len(self.engine.calls("history"))
        self.engine.touch_state()
        # The second one is asked for when the first, which has the other's job, has been read.
        wait_until(lambda: len(self.engine.calls("history")) >= asked + 2)
        self.engine.open_gate("process")
        self.assertEqual(run.end(), 0)
        self.assertEqual(run.out.splitlines()[-1], "one: /calls/one")


class OnATerminal(TranscribeTest):
    TEXT = ": Listening and writing down… "

    def start_on_terminal(self, file, columns=0):
        self.engine.keep_book("transcribing")
        self.engine.answer("status", '{"latest_job":{"id":"job-1","progress":"10%"}}')
        master, slave = pty.openpty()
        self.addCleanup(os.close, master)
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        run = self.start(file, stdout=slave)
        os.close(slave)
        run.read_terminal(master)
        return run

    @staticmethod
    def in_one_row(line):
        """The line between the codes that keep it in one row."""
        return f"\x1b[?7l{line}\x1b[?7h"

    def test_progress_is_rewritten_in_place(self):
        run = self.start_on_terminal(self.one)
        for percent in ("20%", "30%"):
            run.wait_for(f"{int(percent[:-1]) - 10}%")
            self.engine.answer("status", json.dumps({"latest_job": {"id": "job-1", "progress": percent}}))
            self.engine.touch_state()
        run.wait_for("30%")
        self.engine.set_job(1, title="one", status="ready", call_dir="/calls/one")
        self.engine.touch_state()
        self.assertEqual(run.end(), 0)
        lines = [self.in_one_row("one" + self.TEXT + percent) for percent in ("10%", "20%", "30%")]
        self.assertIn("\r\n" + "\r\x1b[K".join(lines) + "\r\n", run.out)
        self.assertTrue(run.out.endswith(self.in_one_row("one: Done ·  · 1 min") + "\r\none: /calls/one\r\n"), repr(run.out))
        self.assertEqual(run.err, "")

    def test_title_gives_way_to_the_progress(self):
        run = self.start_on_terminal(self.engine.recording("a very long name of a talk.m4a"), columns=50)
        line = "a very long name…" + self.TEXT + "10%"
        run.wait_for(self.in_one_row(line))
        self.assertEqual(len(line), 50)

    def test_name_with_control_characters_is_one_line_of_text(self):
        run = self.start_on_terminal(self.engine.recording("one\x1b[2J\rtwo\n.m4a"))
        run.wait_for(self.in_one_row("one [2J two: Waiting in line…"))


if __name__ == "__main__":
    unittest.main(verbosity=2)
