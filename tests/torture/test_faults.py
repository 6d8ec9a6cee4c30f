#!/usr/bin/env python3
"""That the faults of the torture are faults: each is felt, told in a sentence, and leaves nothing behind."""

import os
import unittest

from faults import DISK, SHARE
from soak import OPTIONS, faults_in
from road import RoadTest, transcript

LIBRARY = os.path.join(os.environ["ENGINE_BUILD"], "tests", "torture", "tuppi-faults.so")
FOR_EVER = 1_000_000
YEAR = 365 * 24 * 3600


class FaultsAreFelt(RoadTest):
    def setUp(self):
        self.runtime = self.engine()
        self.faults = faults_in(self.runtime, LIBRARY)
        self.runtime.environment |= self.faults.environment
        self.path = self.recording(self.runtime)
        self.entry = self.runtime.transcribe(self.path)

    def test_every_kind_of_disk(self):
        listing, history = self.runtime.listing(), self.runtime.history()
        for kind in DISK:
            with self.subTest(kind):
                self.faults.break_disk(kind, 0, FOR_EVER)
                reply = self.runtime.call("process", self.path, *OPTIONS)
                self.assertGreater(self.faults.mend_disk(), 0, "nothing has failed")
                if kind == "half of it written":  # which is no fault: the rest can be written after it
                    self.assertEqual((reply.status, reply.err), (0, ""))
                    continue
                self.assert_one_line(reply, 1)
                self.assertIn("disk", reply.err)
                print(f"{kind}: {reply.err.strip()}")
                self.assertEqual(self.runtime.history()[-1:], history)
                self.assertEqual([path for path in self.runtime.listing() if path in listing], listing)

    def test_a_list_that_cannot_be_read_for_a_while(self):
        """The one thing to do about it at first is nothing."""
        before = self.runtime.history()
        self.faults.break_disk("disk error on reading", 0, FOR_EVER)
        reply = self.runtime.call("history", "--json")
        self.faults.mend_disk()
        self.assert_one_line(reply, 1)
        self.assertRegex(reply.err, "disk (fails|reported an error)")
        self.assertNotRegex(reply.err, r"\A(?!.*[Tt]ry again).*[Mm]ove that file")
        self.assertEqual(self.runtime.history(), before)

    def test_a_text_on_a_failing_disk_is_not_taken_for_none(self):
        self.runtime.environment["TUPPI_FAULTS_UNDER"] = self.runtime.library + os.sep
        path = os.path.join(self.entry["call_dir"], "Transcript.txt")
        notes = "A note of mine.\n" * 10_000
        with open(path, "a", encoding="utf-8") as file:
            file.write(notes)
        refused = 0
        for spared in range(8):
            self.faults.break_disk("disk error on reading", spared, 1)
            reply = self.runtime.call("speaker", self.entry["id"], "0", "--json", f"--name=Anna {spared}")
            self.faults.mend_disk()
            if reply.status != 0:
                self.assert_one_line(reply, 1)
                self.assertIn("could not be read: the disk reported an error", reply.err)
                refused += 1
            self.assertTrue(transcript(self.entry).endswith(notes), spared)
        self.assertGreater(refused, 1)

    def test_a_recording_on_a_failing_disk_is_not_called_damaged(self):
        self.runtime.environment["TUPPI_FAULTS_UNDER"] = self.runtime.library + os.sep
        self.faults.break_disk("disk error on reading", 0, FOR_EVER)
        number = self.runtime.process(self.path)
        failed = self.runtime.wait(number, "failed")
        self.faults.mend_disk()
        self.assertIn("the disk reported an error", failed["error"])
        self.runtime.ask("retry", number)
        self.assertEqual(transcript(self.runtime.wait(number, "ready")), transcript(self.entry))

    def test_a_recording_on_a_share_that_goes_away_is_not_cut_there(self):
        self.runtime.environment["TUPPI_FAULTS_UNDER"] = self.runtime.library + os.sep
        for kind in SHARE:
            for spared in range(6):  # from opening it to its last part
                with self.subTest(kind, spared=spared):
                    self.faults.break_disk(kind, spared, FOR_EVER)
                    number = self.runtime.process(self.path)
                    entry = self.runtime.wait(number, "failed", "ready")
                    self.assertGreater(self.faults.mend_disk(), 0, "nothing has failed")
                    self.assertIn(f"could not be read: {kind}.", entry["error"] or entry["status"])

    def test_clock(self):
        self.faults.shift_clock(-10 * YEAR)
        entry = self.runtime.transcribe(self.path)
        self.assertEqual(int(entry["completed_at"][:4]), int(self.entry["completed_at"][:4]) - 10)
        self.assertEqual(transcript(entry), transcript(self.entry))
        self.assertEqual([e["id"] for e in self.runtime.history()], [entry["id"], self.entry["id"]])


if __name__ == "__main__":
    unittest.main(verbosity=2)
