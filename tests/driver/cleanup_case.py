"""A project with a remote on this disk and a worktree of it with work to lose, for the tests of the cleanup."""

import json
import os
import signal
import subprocess
import sys
import time
from pathlib import Path

from driver_case import DriverCase

MESSAGE = "chore(cairnfield): preserve worktree before cleanup"
STAGES = ["preparing", "preflight", "creatingRecoveryBranch", "staging", "committing", "pushing", "verifyingRemote",
          "archivingLocalFiles", "removingWorktree", "verifyingDeletion", "completed"]


class CleanupCase(DriverCase):
    def setUp(self):
        super().setUp()
        self.hub = self.home / "hub" / "robin" / "project.git"
        self.project = self.project_with_remote()

    def project_with_remote(self):
        self.git(self.home, "init", "--quiet", "--bare", str(self.hub))
        project = self.repository()
        (project / ".gitignore").write_text(".env*\n*.key\nnode_modules/\n")
        self.git(project, "add", ".gitignore")
        self.git(project, "commit", "--quiet", "--message", "Ignore")
        self.git(project, "remote", "add", "origin", str(self.hub))
        self.git(project, "push", "--quiet", "--set-upstream", "origin", "main")
        self.git(project, "remote", "set-head", "origin", "--auto")
        return project

    def topic(self, name="topic"):
        """A changed file, a new one and a secret."""
        path = self.worktree(self.project, name)
        (path / "file").write_text("two\n")
        (path / "new").write_text("new\n")
        (path / ".env").write_text(f"SECRET={name}\n")
        self.settle(path)
        return path

    def write_secrets_below_the_top(self, worktree):
        for name, content in (("src/api/.env.local", "API=1\n"), ("src/web/prod.key", "secret\n"),
                              ("node_modules/pkg/test.key", "published\n")):
            (worktree / name).parent.mkdir(parents=True, exist_ok=True)
            (worktree / name).write_text(content)
        self.settle(worktree)

    def preflight(self, worktree, *words, **options):
        return self.drive(*words, "preflight", str(worktree), "--root", str(self.root), **options)

    def clean(self, worktree, *words, **options):
        return self.drive("clean", str(worktree), "--root", str(self.root), *words, **options)

    def receipts(self):
        return self.drive("receipts").result["receipts"]

    def vault(self):
        return self.drive("vault").result["entries"]

    def vault_contents(self):
        return [Path(entry["storedPath"]).read_text() for entry in self.vault()]

    def remote_branches(self):
        return self.git(self.hub, "for-each-ref", "--format=%(refname:short)").decode().split()

    def on_remote(self, branch, path):
        return self.git(self.hub, "show", f"{branch}:{path}").decode()

    def without_program(self, path, *words):
        """The driver's answer while there is no such program on the machine."""
        hidden = ["unshare", "--mount", "sh", "-c", 'mount --bind /dev/null "$0"', path]
        if os.geteuid() != 0 or subprocess.run(hidden, capture_output=True).returncode != 0:
            self.skipTest("no program may be hidden here")
        return self.drive(*words, before=["unshare", "--mount", "sh", "-c", 'mount --bind /dev/null "$0" && exec "$@"', path])

    def with_something_mounted_on(self, folder, *words):
        """The driver's answer while the folder is another file system."""
        mounted = ["unshare", "--mount", "sh", "-c", 'mount -t tmpfs none "$0" && exec "$@"', str(folder)]
        if os.geteuid() != 0 or subprocess.run([*mounted, "true"], capture_output=True).returncode != 0:
            self.skipTest("nothing may be mounted here")
        return self.drive(*words, before=mounted)

    def stop_at(self, worktree, stage, *words):
        """A cleanup that stands still before the work of the stage, and the stages that it has told."""
        process = self.start("clean", str(worktree), "--root", str(self.root), "--pause", stage, *words)
        seen = self.wait_for(process, lambda line: line["event"] == "progress" and line["stage"] == stage)
        state = os.waitid(os.P_PID, process.pid, os.WSTOPPED | os.WEXITED | os.WNOWAIT)
        self.assertEqual((state.si_code, state.si_status), (os.CLD_STOPPED, signal.SIGSTOP))
        return process, [line["stage"] for line in seen if line["event"] == "progress"]

    def resume(self, process):
        """The receipt of a cleanup that stood still."""
        process.send_signal(signal.SIGCONT)
        result = self.wait_for(process, lambda line: line["event"] == "result")[-1]
        self.assertEqual(process.wait(60), 0)
        return result["receipt"]

    @staticmethod
    def wait_for_the_next_second():
        """Names of recovery branches hold the second."""
        now = int(time.time())
        while int(time.time()) == now:
            time.sleep(0.05)


class HostingService:
    """A hosting service of the test's own, for the real gh, with one user. Pushes to it come to the folder "hub" of the
    test's home. See github_stand_in.py for the form of its state."""

    PROGRAM = Path(__file__).resolve().parent.parent / "support" / "github_stand_in.py"
    TOKEN = "made-up-for-a-test"

    def __init__(self, case, state):
        self.folder = case.home / "service"
        (self.folder / "gh").mkdir(parents=True)
        socket, self.state_file = self.folder / "socket", self.folder / "state.json"
        (self.folder / "gh" / "config.yml").write_text(f"http_unix_socket: {socket}\n")
        self.state_file.write_text(json.dumps({"login": "robin", "tokens": [self.TOKEN], **state}))
        case.environment.update(GH_CONFIG_DIR=str(self.folder / "gh"), GH_TOKEN=self.TOKEN)
        ssh = self.folder / "ssh"
        ssh.write_text(f"#!/bin/sh\nfor command; do :; done\ncd '{case.home / 'hub'}' && exec sh -c \"$command\"\n")
        ssh.chmod(0o755)
        case.git(case.home, "config", "--global", "core.sshCommand", str(ssh))
        self.process = subprocess.Popen([sys.executable, self.PROGRAM, socket, self.state_file], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        case.addCleanup(self.end)
        case.assertEqual(self.process.stdout.readline(), b"ready\n")

    def state(self):
        return json.loads(self.state_file.read_text())

    def change(self, deed):
        state = self.state()
        deed(state)
        self.state_file.write_text(json.dumps(state))

    def end(self):
        self.process.communicate()
