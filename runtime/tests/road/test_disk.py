#!/usr/bin/env python3
"""Disks that are full or read-only, at every time; and what happens when there is room again.

Runs in a mount namespace of its own, so that the small disks go with the last process that sees them.
"""

import contextlib
import hashlib
import json
import os
import subprocess
import sys
import tempfile
import unittest

from road import ACTIVE, PATIENCE, SENTENCES, SOURCE, RoadTest, main, several, steady, transcript, until
from seeded import assert_agreement, seed
from servers import Hub, model

MARK = "ROAD_MOUNTS"


def enter_namespace():
    """Runs this script again where it may mount; without that right the tests are skipped and say so."""
    if MARK in os.environ:
        return
    unshare = ["unshare", "--mount"] if os.geteuid() == 0 else ["unshare", "--map-root-user", "--mount"]
    probe = subprocess.run([*unshare, "sh", "-c", "mount -t tmpfs -o size=64k tmpfs /mnt"], capture_output=True,
                           text=True)
    os.environ[MARK] = "" if probe.returncode == 0 else probe.stderr.strip() or "unshare failed"
    if probe.returncode == 0:
        os.execvp(unshare[0], [*unshare, sys.executable, *sys.argv])


class Disk(RoadTest):
    def setUp(self):
        if os.environ[MARK]:
            self.skipTest("no small disk can be mounted here: " + os.environ[MARK])

    def mount(self, path, size):
        os.makedirs(path, exist_ok=True)
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={size}", "tmpfs", path], check=True)
        # Cleanups run backwards: the engine, made later, is closed before.
        self.addCleanup(subprocess.run, ["umount", "--lazy", path], check=True)
        return path

    def engine_with_library(self, size):
        disk = self.mount(os.path.join(self.folder(), "disk"), size)
        engine = self.engine()
        engine.library = os.path.join(disk, "calls")
        os.mkdir(engine.library)
        engine.ask("settings", "--library=" + engine.library, "--json")
        return engine, disk

    def folder(self):
        holder = tempfile.TemporaryDirectory(prefix="road-disk-")
        self.addCleanup(holder.cleanup)
        return os.path.realpath(holder.name)

    def fill(self, disk):
        """Leaves not a byte; gives back the file that has taken it."""
        path = os.path.join(disk, "filler")
        with open(path, "ab", buffering=0) as file:
            for size in (1 << 16, 4096, 1):
                with contextlib.suppress(OSError):
                    while True:
                        file.write(b"\0" * size)
        return path

    def long(self, engine):
        return several(os.path.join(engine.scratch, "long.wav"), *SENTENCES[:3])

    def test_no_room_for_the_copy(self):
        engine, disk = self.engine_with_library("128k")
        path = self.long(engine)
        self.assertGreater(os.path.getsize(path), 128 << 10)
        self.print(self.refused(engine, path))
        self.assertEqual(engine.listing(), [])
        subprocess.run(["mount", "-o", "remount,size=8m", disk], check=True)
        engine.transcribe(path)

    def test_no_room_at_all(self):
        engine, disk = self.engine_with_library("4m")
        filler = self.fill(disk)
        self.assertEqual(os.statvfs(disk).f_bavail, 0)
        self.assertLessEqual({"Transcripts folder", "Room on the disk"}, set(engine.troubles()))
        path = self.recording(engine)
        self.print(self.refused(engine, path))
        self.assertEqual(engine.listing(), [])
        os.remove(filler)
        engine.transcribe(path)

    def test_full_before_the_results(self):
        engine, disk = self.engine_with_library("8m")
        path = self.long(engine)
        expected = transcript(engine.transcribe(path))
        job = engine.process(path)
        engine.ask("pause", job)
        steady(engine.ticks, "processor time of a paused job")
        filler = self.fill(disk)
        self.assertEqual(os.statvfs(disk).f_bavail, 0)
        listing = engine.listing()
        engine.ask("continue", job)
        entry = engine.wait(job, "failed")
        self.print(entry["error"])
        self.assertRegex(entry["error"], r"\A[^\n]*\w[^\n]*\Z")
        # No half file, under no name.
        self.assertEqual(engine.listing(), listing)
        with open(path, "rb") as original, open(self.audio(entry), "rb") as kept:
            self.assertEqual(original.read(), kept.read())
        kept, attempts = engine.kept(job), engine.attempts(job)
        self.assertGreater(len(kept), 1)
        os.remove(filler)
        engine.ask("retry", job)
        entry = engine.wait(job, "ready")
        self.assertEqual(transcript(entry), expected)
        self.assertEqual((engine.kept(job), engine.attempts(job)), (kept, attempts), "nothing is recognised again")

    def test_full_everywhere(self):
        """The store too stands on the full disk: the worker cannot even note that it failed."""
        engine = self.engine(home=self.mount(os.path.join(self.folder(), "home"), "96m"))
        path = self.long(engine)
        expected = transcript(engine.transcribe(path))
        job = engine.process(path)
        engine.ask("pause", job)
        steady(engine.ticks, "processor time of a paused job")
        before = engine.kept(job)
        # Continued with room, full a moment later: at whatever the worker is just then.
        engine.ask("continue", job)
        filler = self.fill(engine.home)
        # It comes to rest: failed, or stuck without a worker, but never at full load for ever.
        steady(lambda: (engine.worker(), engine.ticks()), "worker on a full disk", looks=40)
        self.assertLessEqual(len(engine.workers()), 1)
        # Looking needs no room, not even what the worker kept back for this.
        self.fill(engine.home)
        self.assertIn("Room on the disk", engine.troubles())
        entry = engine.job(job)
        self.assertEqual(engine.status()["library"], engine.library)
        self.print(f"{entry['status']}: {entry['error']}")
        self.assertNotEqual(entry["status"], "ready")
        self.assertLessEqual(set(before), set(engine.kept(job)))
        refused = engine.call("process", path, "--background", "--engine", "auto", "--language", "en")
        self.assert_one_line(refused, 1)
        self.assertEqual(len(engine.history()), 2)
        os.remove(filler)
        engine.ask("resume")
        until(lambda: engine.job(job)["status"] not in ACTIVE, "the end of the job")
        if engine.job(job)["status"] == "failed":
            engine.ask("retry", job)
        self.assertEqual(transcript(engine.wait(job, "ready")), expected)
        engine.transcribe(self.recording(engine, name="next.wav"))

    def engine_with_hub(self):
        hub, body = Hub(), model(300_000)
        self.addCleanup(hub.close)
        hub.add("someone/whisper-small", {"ggml-small.bin": body})
        engine = self.engine(home=self.mount(os.path.join(self.folder(), "home"), "96m"))
        engine.environment |= {"TUPPI_HUB": hub.address, "TUPPI_OLLAMA": "127.0.0.1:1", "NO_PROXY": "*"}
        return engine, hub, body

    ADD = ("models", "add", "--name=Mine", "--kind=whisper", "--repo=someone/whisper-small", "--json")

    def test_no_room_for_a_model(self):
        engine, hub, body = self.engine_with_hub()
        hub.add("someone/whisper-small", {"ggml-small.bin": body}, sizes={"ggml-small.bin": 200 << 20})
        reply = engine.call(*self.ADD)
        self.assert_one_line(reply, 1)
        self.assertIn("not enough room for this model: it needs 262.1 MB", reply.err)
        self.print(reply.err.strip())
        self.assertEqual(hub.store.requests, [])

    def test_full_during_a_model(self):
        engine, hub, body = self.engine_with_hub()
        hub.store.hold_after = 120_000
        process = subprocess.Popen(engine.command(*self.ADD), env=engine.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        self.assertTrue(hub.store.held.wait(PATIENCE))
        models = os.path.join(engine.folder, "models")
        until(lambda: [f for f in os.listdir(models) if os.path.getsize(os.path.join(models, f)) == 120_000], "half")
        filler = self.fill(engine.home)
        hub.store.go.set()
        out, err = process.communicate()
        self.assertEqual((process.returncode, out), (1, ""))
        self.assertIn("the disk is full", err)
        self.print(err.strip())
        # What the download had taken is given back: transcripts need it more.
        self.assertEqual({os.path.getsize(os.path.join(models, f)) for f in os.listdir(models)
                          if f.endswith((".part", ".bin"))}, {0})
        self.assertEqual(engine.status()["latest_job"], None)
        os.remove(filler)
        engine.ask(*self.ADD)

    def test_full_while_whisper_writes(self):
        engine, *_ = self.engine_with_hub()
        engine.ask(*self.ADD)
        knobs = self.folder()
        engine.environment |= {"STAND_IN_WHISPER": knobs,
                               "TUPPI_WHISPER_CLI": os.path.join(SOURCE, "runtime/tests/stand-in/whisper-cli")}
        path = self.long(engine)
        for behaviour in ("full", "half-full"):
            with self.subTest(behaviour):
                with open(os.path.join(knobs, "behaviour"), "w", encoding="utf-8") as file:
                    file.write(behaviour)
                self.assertIn("the disk is full", self.refused(engine, path, language="uk"))
                until(lambda: engine.worker() is None, "the end of the worker, which frees what was filled")
        with open(os.path.join(knobs, "runs"), encoding="utf-8") as file:
            self.assertEqual(len(file.readlines()), 2, "one try each")

    def test_full_when_the_model_is_recorded(self):
        engine, hub, body = self.engine_with_hub()
        engine.ask("models", "--json")
        folder = os.path.join(engine.folder, "models")
        os.makedirs(folder)
        with open(os.path.join(folder, hashlib.sha256(body).hexdigest() + ".bin"), "wb") as file:
            file.write(body)
        open(os.path.join(folder, "lock"), "wb").close()
        filler = self.fill(engine.home)
        self.assert_one_line(engine.call(*self.ADD), 1)
        self.assertEqual(json.loads(engine.ask("models", "--json").out)["custom"], [])
        refused = engine.call("models", "text-model", "--name=x", "--json")
        self.assert_one_line(refused, 1)
        os.remove(filler)
        engine.ask(*self.ADD)
        self.assertEqual(hub.store.requests, [])

    def test_library_on_a_disk_that_takes_nothing(self):
        engine, disk = self.engine_with_library("4m")
        chosen = engine.library
        full = self.mount(os.path.join(self.folder(), "full"), "64k")
        self.fill(full)
        for name in ("calls", "some/more/folders"):
            reply = engine.call("settings", "--library=" + os.path.join(full, name), "--json")
            self.assert_one_line(reply, 1)
            self.assertIn("the disk is full", reply.err)
            self.assertEqual(os.listdir(full), ["filler"], "nothing is left behind")
            self.assertEqual(engine.status()["library"], chosen)
        subprocess.run(["mount", "-o", "remount,ro", full], check=True)
        reply = engine.call("settings", "--library=" + full, "--json")
        self.assert_one_line(reply, 1)
        self.assertIn("can only be read", reply.err)
        self.assertEqual(engine.status()["library"], chosen)

    def test_library_on_a_disk_that_is_not_connected(self):
        """Nothing is put where the disk would hide it."""
        engine, disk = self.engine_with_library("8m")
        subprocess.run(["umount", disk], check=True)
        path = self.recording(engine)
        self.assertIn("Connect its disk", self.refused(engine, path))
        self.assertEqual(os.listdir(disk), [])
        self.assertEqual(engine.status()["library"], engine.library)
        subprocess.run(["mount", "-t", "tmpfs", "tmpfs", disk], check=True)
        os.mkdir(engine.library)
        engine.transcribe(path)

    def test_library_that_is_a_disk(self):
        """What stands there while the disk is not mounted is an empty folder of the same name."""
        disk = self.mount(os.path.join(self.folder(), "disk"), "8m")
        engine = self.engine()
        engine.library = disk
        engine.ask("settings", "--library=" + disk, "--json")
        path = self.recording(engine)
        entry = engine.transcribe(path)
        subprocess.run(["umount", disk], check=True)
        self.assertEqual(engine.history(), [entry])
        self.assertIn("Connect its disk", self.refused(engine, path))
        self.assertIn("Connect its disk", engine.troubles()["Transcripts folder"])
        self.assertEqual(os.listdir(disk), [])
        # Somebody uses it as a folder from now on.
        os.mkdir(os.path.join(disk, "theirs"))
        self.assertEqual(engine.history(), [])
        engine.transcribe(self.recording(engine, name="another.wav"))
        subprocess.run(["mount", "-t", "tmpfs", "tmpfs", disk], check=True)

    def test_read_only_library(self):
        engine, disk = self.engine_with_library("8m")
        path = self.recording(engine)
        subprocess.run(["mount", "-o", "remount,ro", disk], check=True)
        self.print(self.refused(engine, path))
        self.assertEqual(engine.listing(), [])
        subprocess.run(["mount", "-o", "remount,rw", disk], check=True)
        engine.transcribe(path)

    def test_read_only_everywhere(self):
        engine = self.engine(home=self.mount(os.path.join(self.folder(), "home"), "96m"))
        path = self.recording(engine)
        engine.transcribe(path)
        until(lambda: not engine.processes(), "the end of the worker")
        history, status = engine.history(), engine.status()
        subprocess.run(["mount", "-o", "remount,ro", engine.home], check=True)
        self.assertEqual((engine.history(), engine.status()), (history, status))
        self.assertLessEqual({"List of transcripts", "Transcripts folder"}, set(engine.troubles()))
        self.assertNotIn("Unfinished transcriptions", engine.troubles())
        reply = engine.call("process", path, "--background", "--engine", "auto", "--language", "en", "--no-speakers")
        self.assert_one_line(reply, 1)
        self.print(reply.err.strip())
        self.assert_one_line(engine.call("retry", history[0]["id"]), 1)
        subprocess.run(["mount", "-o", "remount,rw", engine.home], check=True)
        self.assertEqual(engine.history(), history)
        engine.transcribe(path)

    def test_read_only_before_the_results(self):
        engine, disk = self.engine_with_library("8m")
        path = self.long(engine)
        job = engine.process(path)
        engine.ask("pause", job)
        steady(engine.ticks, "processor time of a paused job")
        subprocess.run(["mount", "-o", "remount,ro", disk], check=True)
        engine.ask("continue", job)
        self.print(engine.wait(job, "failed")["error"])
        subprocess.run(["mount", "-o", "remount,rw", disk], check=True)
        engine.ask("retry", job)
        engine.wait(job, "ready")

    def test_library_that_went_away(self):
        engine, disk = self.engine_with_library("8m")
        path = self.long(engine)
        job = engine.process(path)
        engine.ask("pause", job)
        steady(engine.ticks, "processor time of a paused job")
        # As when a stick is pulled out: something else (nothing) is seen in its place.
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", disk], check=True)
        engine.ask("continue", job)
        self.print(engine.wait(job, "failed")["error"])
        subprocess.run(["umount", disk], check=True)
        engine.ask("retry", job)
        engine.wait(job, "ready")

    def correctable(self, engine):
        """A transcript that has been corrected once, and changes to it."""
        entry = seed(engine)
        engine.ask("speaker", entry["id"], "0", "--json", "--name=Anna")
        job = entry["id"]
        return entry, (("rename", job, "--", "Renamed"), ("edit", job, "0", "--json", "--", "all is new"),
                       ("speaker", job, "1", "--json", "--name=Boris"), ("split", job, "0", "4", "--json"),
                       ("speaker", job, "--rename", "--old=Anna", "--new=Clara", "--json"),
                       ("split", job, "1", "--join", "--json"))

    def nothing_is_changed(self, engine, entry, changes):
        kept, history = assert_agreement(self, engine, entry), engine.history()
        for change in changes:
            with self.subTest(change):
                reply = engine.call(*change)
                self.assert_one_line(reply, 1)
                self.print(reply.err.strip())
                self.assertEqual(assert_agreement(self, engine, entry), kept)
                self.assertEqual(engine.history(), history)

    def all_can_be_changed(self, engine, entry, changes):
        for change in changes:
            engine.ask(*change)
            assert_agreement(self, engine, entry)
        self.assertEqual([n for n in os.listdir(entry["call_dir"]) if n.startswith(".")], [])

    def test_corrections_on_a_full_disk(self):
        engine, disk = self.engine_with_library("8m")
        entry, changes = self.correctable(engine)
        filler = self.fill(disk)
        self.nothing_is_changed(engine, entry, changes)
        os.remove(filler)
        self.all_can_be_changed(engine, entry, changes)

    def test_corrections_with_the_store_on_a_full_disk_too(self):
        engine = self.engine(home=self.mount(os.path.join(self.folder(), "home"), "96m"))
        entry, changes = self.correctable(engine)
        filler = self.fill(engine.home)
        self.nothing_is_changed(engine, entry, changes)
        os.remove(filler)
        self.all_can_be_changed(engine, entry, changes)

    def test_corrections_where_nothing_can_be_written(self):
        engine, disk = self.engine_with_library("8m")
        entry, changes = self.correctable(engine)
        subprocess.run(["mount", "-o", "remount,ro", disk], check=True)
        self.nothing_is_changed(engine, entry, changes)
        subprocess.run(["mount", "-o", "remount,rw", disk], check=True)
        self.all_can_be_changed(engine, entry, changes)

    def test_a_store_of_the_first_version_that_can_only_be_read(self):
        engine = self.engine(home=self.mount(os.path.join(self.folder(), "home"), "96m"))
        entry = seed(engine)
        subprocess.run(["mount", "-o", "remount,ro", engine.home], check=True)
        self.assertEqual(engine.history(), [entry])
        self.assert_one_line(engine.call("edit", entry["id"], "0", "--json", "--", "x"), 1)
        subprocess.run(["mount", "-o", "remount,rw", engine.home], check=True)
        self.assertEqual(engine.history(), [entry])

    def print(self, sentence):
        print(f"{self._testMethodName}: {sentence}")


class Permissions(RoadTest):
    """The same without a mount, for whoever is not root."""

    @unittest.skipIf(os.geteuid() == 0, "root may write everywhere")
    def test_read_only_library(self):
        engine = self.engine()
        os.makedirs(engine.library)
        path = self.recording(engine)
        os.chmod(engine.library, 0o555)
        print(f"read-only: {self.refused(engine, path)}")
        os.chmod(engine.library, 0o755)
        engine.transcribe(path)


if __name__ == "__main__":
    enter_namespace()
    main()
