#!/usr/bin/env python3
"""Reading the volume, the real monitoring with real file events, and the answers to notifications."""

import json
import os
import time

from driver_case import DriverCase, main

HUGE = 1 << 60  # bytes; more than any volume of a test machine holds
SCANNED = {"event": "changed", "field": "folderScanResults"}
STORED = {"event": "changed", "field": "watchedFolders"}


class Storage(DriverCase):
    def test_the_home_volume_is_read_as_the_kernel_tells_it(self):
        told = os.statvfs(self.home)
        result = self.drive("storage").result
        self.assertEqual(result["snapshot"]["totalCapacity"], told.f_blocks * told.f_frsize)
        self.assertAlmostEqual(result["snapshot"]["availableCapacity"] / (told.f_bavail * told.f_frsize), 1, delta=0.05)
        self.assertGreater(result["thresholds"]["warningBytes"], result["thresholds"]["criticalBytes"])
        self.assertEqual(len(result["history"]), 1)

    def test_history_grows_from_run_to_run_only_after_a_minute(self):
        self.drive("storage")
        file = self.home / "data" / "Cairnfield" / "storage-history.json"
        history = json.loads(file.read_text())
        history["samples"][0]["date"] = "2026-01-01T00:00:00Z"
        earlier = time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(time.time() - 120))
        history["samples"].append(dict(history["samples"][0], date=earlier))
        file.write_text(json.dumps(history))
        dates = [sample["date"] for sample in self.drive("storage").result["history"]]
        self.assertEqual(dates[0], earlier)
        self.assertEqual(len(dates), 2)

    def test_low_space_is_told_once(self):
        answer = self.drive("--set", 'thresholdMode="absolute"', "--set", f"warningAbsoluteBytes={HUGE}",
                            "--set", "criticalAbsoluteBytes=0", "--set", "notificationsEnabled=true", "storage")
        told = [line for line in answer.lines if line["event"] == "notification"]
        self.assertEqual([line["identifier"] for line in told], ["storage.warning"])
        self.assertEqual(told[0]["title"], "Storage running low")
        self.assertEqual(answer.result["level"], "warning")


class Monitor(DriverCase):
    def monitor(self, *words, seconds=30):
        return self.start(*words, "monitor", str(self.root), "--seconds", str(seconds))

    def test_a_change_on_disk_leads_to_a_new_scan(self):
        monitor = self.monitor("--set", "rescanIntervalMinutes=0", seconds=100)
        self.wait_for(monitor, lambda line: line == SCANNED)
        time.sleep(1)  # the watch is set up beside the scan; what changes before it stands is the scan's to see
        (self.root / "sub").mkdir()
        (self.root / "sub" / "new").write_bytes(b"x" * 200_000)
        self.wait_for(monitor, lambda line: line == SCANNED)
        self.wait_for(monitor, lambda line: line == STORED)
        self.end(monitor)
        self.assertGreater(self.drive("folders").result["folders"][0]["lastKnownSizeBytes"], 200_000)

    def test_answers_reach_the_incident(self):
        monitor = self.monitor()
        self.wait_for(monitor, lambda line: line == SCANNED)

        def respond(words):
            monitor.stdin.write(f"respond {words}\n")
            monitor.stdin.flush()
            return self.wait_for(monitor, lambda line: line["event"] == "result")

        self.assertIn("snoozedUntil", respond("action.ignore")[-1]["incident"])
        self.assertIn({"event": "activated"}, respond("action.review"))
        self.assertIn({"event": "revealed", "path": str(self.root)}, respond(f"action.openFolder --path {self.root}"))
        self.assertNotIn("revealed", [line["event"] for line in respond("action.openFolder")])
        respond("action.unknown")
        monitor.stdin.write("answer yes\n")
        monitor.stdin.flush()
        self.wait_for(monitor, lambda line: line["event"] == "error")

    def test_ends_by_itself_when_its_time_is_over(self):
        answer = self.drive("monitor", str(self.root), "--seconds", "1")
        self.assertEqual(answer.result["incident"]["activeLevel"], "normal")

    def test_wrong_words_are_refused(self):
        self.drive("monitor", str(self.root), status=2)
        self.drive("monitor", "--seconds", "3", status=2)
        self.drive("monitor", str(self.root), "--seconds", "soon", status=2)


if __name__ == "__main__":
    main()
