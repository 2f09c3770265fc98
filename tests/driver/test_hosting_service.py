#!/usr/bin/env python3
"""The integrations, looking up pull requests and opening them, with the real gh and a hosting service of the test's own."""

import os
import unittest

from cleanup_case import CleanupCase, HostingService
from driver_case import main

OPEN = {"number": 7, "title": "Draft: topic", "state": "OPEN", "isDraft": True, "url": "https://github.com/robin/project/pull/7",
        "mergedAt": None, "closedAt": None, "headRefName": "topic", "baseRefName": "main"}


@unittest.skipUnless(os.path.exists("/usr/bin/gh"), "there is no gh")
class Hosting(CleanupCase):
    def setUp(self):
        super().setUp()
        self.service = HostingService(self, {"repositories": {
            "robin/project": {"defaultBranch": "main", "pullRequests": [OPEN]}}})
        self.git(self.project, "remote", "set-url", "origin", "git@github.com:robin/project.git")

    def pull_requests(self):
        return self.service.state()["repositories"]["robin/project"]["pullRequests"]

    def test_who_is_signed_in_is_told(self):
        status = self.drive("integrations").result["githubStatus"]
        self.assertTrue(status["version"].startswith("gh version "))
        self.assertEqual(status, {"isInstalled": True, "authenticatedHosts": ["github.com"], "executablePath": "/usr/bin/gh",
                                  "version": status["version"]})

    def test_nobody_signed_in_is_told(self):
        del self.environment["GH_TOKEN"]
        status = self.drive("integrations").result["githubStatus"]
        self.assertEqual((status["isInstalled"], status["authenticatedHosts"]), (True, []))

    def test_without_gh_the_status_says_so(self):
        status = self.without_program("/usr/bin/gh", "integrations").result["githubStatus"]
        self.assertEqual((status["isInstalled"], status["authenticatedHosts"]), (False, []))
        self.assertNotIn("version", status)

    def test_the_pull_request_of_a_branch_is_found(self):
        topic = self.worktree(self.project, "topic")
        self.git(topic, "push", "--quiet", "--set-upstream", "origin", "topic")
        self.worktree(self.project, "other")
        self.settle(topic)
        answer = self.drive("inspect", str(self.root), "--pull-requests").result["worktrees"]
        found = {each.get("branch"): each.get("pullRequest") for each in answer}
        self.assertEqual((found["topic"]["number"], found["topic"]["url"]), (7, OPEN["url"]))
        self.assertEqual((found["other"], found["main"]), (None, None))

    def test_a_draft_is_opened_when_it_is_wanted(self):
        receipt = self.clean(self.topic("work"), "--pull-request").result["receipt"]
        self.assertEqual(receipt["outcome"], "succeeded", receipt)
        made = self.pull_requests()[0]
        self.assertEqual((made["headRefName"], made["baseRefName"], made["isDraft"]), (receipt["recoveryBranch"], "main", True))
        self.assertEqual((receipt["pullRequestNumber"], receipt["pullRequestURL"]), (8, made["url"]))
        self.assertEqual(receipt["remoteHost"], "github.com")
        self.assertEqual(self.on_remote(receipt["recoveryBranch"], "new"), "new\n")

    def test_the_setting_proposes_a_draft_to_who_is_signed_in(self):
        topic = self.topic("work")
        setting = ("--set", "createDraftPullRequests=true")
        self.assertTrue(self.preflight(topic, *setting).result["plan"]["createPullRequest"])
        token = self.environment.pop("GH_TOKEN")
        self.assertFalse(self.preflight(topic, *setting).result["plan"]["createPullRequest"])
        self.environment["GH_TOKEN"] = token
        self.assertIn("pullRequestNumber", self.clean(topic).result["receipt"])

    def test_no_draft_is_opened_unasked(self):
        self.drive("--set", "createDraftPullRequests=false", "folders")
        receipt = self.clean(self.topic("work")).result["receipt"]
        self.assertEqual(receipt["outcome"], "succeeded", receipt)
        self.assertEqual(self.pull_requests(), [OPEN])

    def test_a_draft_that_cannot_be_opened_keeps_the_worktree(self):
        topic = self.topic("work")
        self.service.change(lambda state: state.update(faults={"PullRequestCreate": {"status": 502, "body": "{}"}}))
        receipt = self.clean(topic, "--pull-request").result["receipt"]
        self.assertEqual((receipt["outcome"], receipt["removalSucceeded"]), ("partiallyCompleted", False))
        self.assertEqual((topic / "new").read_text(), "new\n")

    def test_a_stop_before_the_draft_is_before_the_request(self):
        process, told = self.stop_at(self.topic("work"), "creatingPullRequest", "--pull-request")
        self.assertEqual(told[-2:], ["verifyingRemote", "creatingPullRequest"])
        self.assertEqual(self.pull_requests(), [OPEN])
        self.assertEqual(self.resume(process)["pullRequestNumber"], 8)


if __name__ == "__main__":
    main()
