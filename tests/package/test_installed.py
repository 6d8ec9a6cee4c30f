"""The installed program: an empty home, the engine set up by the first start, a recording, an upgrade, a removal."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

BUILD = os.environ["TUPPI_BUILD"]
SOURCE = pathlib.Path(os.environ["TUPPI_SOURCE"])
sys.path.insert(0, str(SOURCE / "runtime/tests/road"))
from road import QUICK, say, until  # noqa: E402

PROGRAMS = ("tuppi-engine", "tuppi-engine-models", "tuppi-engine-worker")


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.root = pathlib.Path(tempfile.mkdtemp())
        cls.addClassCleanup(shutil.rmtree, cls.root)
        cls.prefix = cls.root / "usr"
        subprocess.run([os.environ["CMAKE"], "--install", BUILD, "--prefix", cls.prefix],
                       check=True, stdout=subprocess.DEVNULL)
        cls.engine = cls.prefix / "lib/tuppi-transcriber/engine"

    def setUp(self):
        self.home = pathlib.Path(tempfile.mkdtemp(dir=self.root))
        self.runtime = self.home / "Library/Application Support/Larkspire/runtime"
        self.log = self.home / "Library/Logs/TuppiTranscriberInstall.log"

    def run_program(self, *command):
        environment = {"HOME": str(self.home), "PATH": os.environ["PATH"], "LANG": "C.UTF-8"}
        return subprocess.run(command, env=environment, capture_output=True, text=True, timeout=300)

    def transcribe(self, *files):
        return self.run_program(self.prefix / "bin/tuppi-transcriber", "--transcribe", *files)

    def engine_says(self, *arguments):
        done = self.run_program("/bin/bash", self.runtime / "call", *arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def statuses(self):
        return [entry["status"] for entry in json.loads(self.engine_says("history", "--json"))]

    def link(self):
        return self.run_program("/bin/bash", self.engine / "install-engine", "--link")

    def assert_linked(self):
        self.assertEqual(os.readlink(self.runtime / "call"), str(self.engine / "call"))
        for program in PROGRAMS:
            self.assertEqual(os.readlink(self.runtime / "bin" / program), str(self.engine / program))

    def test_everything_is_in_its_place(self):
        places = ["bin/tuppi-transcriber", "share/applications/org.tuppi.Transcriber.desktop",
                  "share/mime/packages/org.tuppi.Transcriber.xml",
                  "share/metainfo/org.tuppi.Transcriber.metainfo.xml",
                  "share/icons/hicolor/scalable/apps/tuppi-transcriber.svg",
                  "share/man/man1/tuppi-transcriber.1.gz", "share/man/man1/tuppi-engine.1.gz",
                  "share/doc/tuppi-transcriber/copyright", "share/doc/tuppi-transcriber/changelog.Debian.gz"]
        places += [f"lib/tuppi-transcriber/{module}.so"
                   for module in ("tuppi-media-length", "tuppi-sounds", "tuppi-viewer")]
        places += [f"lib/tuppi-transcriber/engine/{file}" for file in PROGRAMS + ("call", "install-engine")]
        self.assertEqual([place for place in places if not (self.prefix / place).is_file()], [])

    def test_the_description_for_software_centres_is_valid(self):
        checked = self.run_program("appstreamcli", "validate", "--no-net",
                                   self.prefix / "share/metainfo/org.tuppi.Transcriber.metainfo.xml")
        self.assertEqual(checked.returncode, 0, checked.stdout)

    def test_the_first_start_transcribes_and_the_removal_leaves_the_transcript(self):
        done = self.transcribe(SOURCE / "samples/interview.m4a")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assert_linked()
        folder, = (self.home / "Documents/CallsRawFiles").glob("*interview")
        text = (folder / "Transcript.txt").read_text()
        self.assertIn("[00:00:", text)

        away = self.root / "away"
        self.prefix.rename(away)
        try:
            self.assertFalse((self.runtime / "call").exists())
            self.assertEqual((folder / "Transcript.txt").read_text(), text)
        finally:
            away.rename(self.prefix)
        history = self.run_program("/bin/bash", self.runtime / "call", "history", "--json")
        self.assertIn('"ready"', history.stdout)

    def test_copies_of_an_earlier_engine_give_way_to_links(self):
        (self.runtime / "bin").mkdir(parents=True)
        (self.runtime / "call").write_text("#!/bin/bash\n# tuppi-local-engine\nexit 1\n")
        (self.runtime / "bin/tuppi-engine").write_text("old")
        self.assertEqual(self.link().returncode, 0)
        self.assert_linked()
        self.assertEqual(self.link().stdout, "")
        self.assertEqual(sorted(path.name for path in (self.runtime / "bin").iterdir()), sorted(PROGRAMS))

    def test_an_earlier_engine_gives_way_without_touching_its_jobs(self):
        subprocess.run([SOURCE / "runtime/install-engine", BUILD], env=dict(os.environ, HOME=str(self.home)),
                       stdout=subprocess.DEVNULL, check=True)
        for program in PROGRAMS:
            with open(self.runtime / "bin" / program, "ab") as file:
                file.write(b"of an earlier day")
        short = say(str(self.home / "short.wav"), "Thank you very much.")
        self.engine_says("process", short, *QUICK)
        folder = self.engine_says("process", SOURCE / "samples/interview.m4a", "--background", *QUICK).strip()
        job = until(self.job_half_done, "a part of the recording")
        self.engine_says("cancel", job)
        until(lambda: not self.at_work(), "the worker's end")
        self.assertEqual(self.statuses(), ["cancelled", "ready"])
        history, files = self.engine_says("history", "--json"), self.contents()

        self.assertEqual(self.transcribe().returncode, 0)
        self.assert_linked()
        self.assertEqual(self.engine_says("history", "--json"), history)
        self.assertEqual(self.contents(), files)

        self.engine_says("retry", job)
        until(lambda: self.statuses() == ["ready"] * 2, self.statuses)
        self.assertIn("[00:00:", (pathlib.Path(folder) / "Transcript.txt").read_text())

    def job_half_done(self):
        latest = json.loads(self.engine_says("status", "--json"))["latest_job"]
        return latest["id"] if latest["progress"] and int(latest["progress"].split("/")[0]) > 0 else None

    def at_work(self):
        """Whether some process has this home's worker lock."""
        lock = self.home / "Library/Application Support/Larkspire/store/worker.lock"
        return subprocess.run(["flock", "--nonblock", lock, "true"]).returncode != 0

    def contents(self):
        return {path: path.read_bytes() for path in (self.home / "Documents").rglob("*") if path.is_file()}

    def test_links_to_a_place_that_is_gone_are_replaced(self):
        self.runtime.mkdir(parents=True)
        (self.runtime / "call").symlink_to("/gone/lib/tuppi-transcriber/engine/call")
        self.assertEqual(self.link().returncode, 0)
        self.assert_linked()

    def test_an_engine_that_a_power_cut_left_empty_is_replaced(self):
        (self.runtime / "bin").mkdir(parents=True)
        for name in ("call", *(f"bin/{program}" for program in PROGRAMS)):
            (self.runtime / name).touch()
        done = self.run_program("/bin/bash", SOURCE / "runtime/install-engine", BUILD)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(self.statuses(), [])
        (self.runtime / "call").write_text("")
        self.assertEqual(self.link().returncode, 0)
        self.assert_linked()

    def test_another_engine_is_left_alone_and_used(self):
        self.runtime.mkdir(parents=True)
        other = "#!/bin/bash\necho 'Error: The other engine.' >&2\nexit 1\n"
        (self.runtime / "call").write_text(other)
        self.assertEqual(self.link().returncode, 3)
        self.assertEqual((self.runtime / "call").read_text(), other)
        self.assertFalse((self.runtime / "bin").exists())
        self.assertTrue(self.log.read_text().endswith("it was left as it is.\n"))

    def test_another_engines_link_that_leads_nowhere_is_left_alone(self):
        self.runtime.mkdir(parents=True)
        (self.runtime / "call").symlink_to("/unplugged/engine/call")
        self.assertEqual(self.link().returncode, 3)
        self.assertTrue((self.runtime / "call").is_symlink())

    def test_the_log_tells_what_was_put_where_and_by_which_version(self):
        self.assertEqual(self.link().returncode, 0)
        log = self.log.read_text()
        head, *done, ready = log.splitlines()
        version = self.engine_says("--version").strip()
        self.assertRegex(head, r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \+0000 " + re.escape(f"{version} from {self.engine}") + "$")
        self.assertCountEqual(done, [f"Put in place: {self.runtime / file}"
                                     for file in ("call", *(f"bin/{program}" for program in PROGRAMS))])
        self.assertEqual(ready, f"The engine is installed in {self.runtime}")
        self.assertEqual(self.link().returncode, 0)
        self.assertEqual(self.log.read_text(), log, "a start that changes nothing adds nothing")

    def test_the_log_tells_of_a_failure_and_of_what_followed(self):
        self.runtime.parent.mkdir(parents=True)
        self.runtime.write_text("a file where the folder should be")
        self.assertEqual(self.link().returncode, 1)
        self.assertRegex(self.log.read_text(), r"\nError: .* could not be written\.\n$")
        self.runtime.unlink()
        self.assertEqual(self.link().returncode, 0)
        self.assertTrue(self.log.read_text().endswith(f"\nThe engine is installed in {self.runtime}\n"))

    def test_the_log_starts_over_before_it_grows_large(self):
        self.log.parent.mkdir(parents=True)
        self.log.write_text("of an earlier day\n" * 4000)
        self.assertEqual(self.link().returncode, 0)
        self.assertNotIn("of an earlier day", self.log.read_text())

    def test_a_log_that_cannot_be_written_stops_nothing(self):
        self.log.parent.parent.mkdir()
        for stand_in_the_way in (lambda: self.log.parent.write_text("a file"),
                                 lambda: self.log.mkdir(parents=True),
                                 lambda: (self.log.parent.mkdir(), os.mkfifo(self.log))):
            stand_in_the_way()
            done = self.link()
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assert_linked()
            shutil.rmtree(self.runtime)
            if self.log.parent.is_dir():
                shutil.rmtree(self.log.parent)
            else:
                self.log.parent.unlink()

    def test_a_failure_is_one_sentence_on_the_terminal(self):
        self.runtime.parent.mkdir(parents=True)
        self.runtime.write_text("a file where the folder should be")
        done = self.transcribe(SOURCE / "samples/interview.m4a")
        self.assertEqual(done.returncode, 1)
        self.assertIn("The engine could not be set up: ", done.stderr)
        self.assertIn("could not be written.", done.stderr)


if __name__ == "__main__":
    unittest.main()
