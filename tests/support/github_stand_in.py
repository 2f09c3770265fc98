#!/usr/bin/env python3
"""Stands in for the hosting service that gh talks to, on a Unix socket.

    github_stand_in.py SOCKET STATE

gh sends its requests there when its configuration says `http_unix_socket: SOCKET`; they are then plain HTTP, whatever the
host. STATE is a JSON file, read anew for every request, so that a test can change the world between two commands:

    {
      "login": "robin",
      "tokens": ["..."],
      "repositories": {"robin/project": {"defaultBranch": "main", "pullRequests": [{"number": 1, ...}]}},
      "faults": {"PullRequestList": {"status": 502, "body": "..."}}
    }

A fault answers requests by the operation's name ("scopes" for the question about the token) in place of what would have come;
with "hang" the answer never comes. Creating a pull request adds it to STATE. Every request goes as one line of JSON to
STATE + ".requests", without the token. The program prints "ready" when it listens and ends when its standard input does.
"""

import http.server
import json
import os
import re
import socketserver
import sys
import threading
from pathlib import Path

SOCKET, STATE = sys.argv[1], Path(sys.argv[2])
REQUESTS = Path(sys.argv[2] + ".requests")
LOCK = threading.Lock()
PULL_REQUEST_KEYS = ("number", "title", "state", "isDraft", "url", "mergedAt", "closedAt", "headRefName", "baseRefName")
MISSING = {"errors": [{"type": "NOT_FOUND", "path": ["repository"], "message": "Could not resolve to a Repository."}]}


def repository_answer(state, variables):
    name = f"{variables['owner']}/{variables.get('repo') or variables.get('name')}"
    repository = state["repositories"].get(name)
    if repository is None:
        return None, None
    branch = repository.get("defaultBranch")
    answer = {
        "id": f"R_{name}",
        "name": name.split("/")[1],
        "owner": {"login": variables["owner"]},
        "hasIssuesEnabled": True,
        "description": "",
        "hasWikiEnabled": False,
        "viewerPermission": "ADMIN",
        "defaultBranchRef": {"name": branch} if branch else None,
        "parent": None,
    }
    return repository, answer


def pull_requests(state, variables):
    repository, answer = repository_answer(state, variables)
    if repository is None:
        return MISSING
    head = variables.get("headBranch") or variables.get("headRefName")
    states = variables.get("state") or variables.get("states") or ["OPEN"]
    nodes = [
        {"id": f"PR_{p['number']}", **{key: p.get(key) for key in PULL_REQUEST_KEYS}}
        for p in repository.get("pullRequests", [])
        if p["headRefName"] == head and p["state"] in states
    ]
    page = {"hasNextPage": False, "endCursor": ""}
    answer["pullRequests"] = {"totalCount": len(nodes), "nodes": nodes[: variables.get("limit", 30)], "pageInfo": page}
    return {"data": {"repository": answer}}


def create(state, variables, host):
    given = variables["input"]
    name = given["repositoryId"].removeprefix("R_")
    pulls = state["repositories"][name].setdefault("pullRequests", [])
    number = 1 + max((p["number"] for p in pulls), default=0)
    made = {
        "number": number,
        "title": given["title"],
        "body": given["body"],
        "state": "OPEN",
        "isDraft": given["draft"],
        "url": f"https://{host}/{name}/pull/{number}",
        "mergedAt": None,
        "closedAt": None,
        "headRefName": given["headRefName"],
        "baseRefName": given["baseRefName"],
    }
    pulls.insert(0, made)
    STATE.write_text(json.dumps(state))
    return {"data": {"createPullRequest": {"pullRequest": {"id": f"PR_{number}", "url": made["url"]}}}}


def answer_to(operation, variables, state, host):
    if operation == "UserCurrent":
        return {"data": {"viewer": {"login": state["login"]}}}
    if operation in ("PullRequestList", "PullRequestForBranch"):
        return pull_requests(state, variables)
    if operation.startswith("Repository"):
        _, answer = repository_answer(state, variables)
        return {"data": {"repository": answer}} if answer else MISSING
    if operation == "PullRequestCreate":
        return create(state, variables, host)
    return {"errors": [{"message": f"the stand-in knows no {operation}"}]}


class Handler(http.server.BaseHTTPRequestHandler):
    def address_string(self):
        return "unix"

    def log_message(self, *_):
        pass

    def handle_request(self):
        length = int(self.headers.get("Content-Length") or 0)
        body = json.loads(self.rfile.read(length) or b"{}")
        match = re.search(r"\b(?:query|mutation) (\w+)", body.get("query", ""))
        operation = match[1] if match else "scopes"
        with LOCK:
            state = json.loads(STATE.read_text())
            token = (self.headers.get("Authorization") or "").split(" ")[-1]
            host = self.headers["Host"].removeprefix("api.")
            known = token in state["tokens"]
            line = {"host": host, "operation": operation, "signedIn": known, "variables": body.get("variables")}
            with REQUESTS.open("a") as log:
                log.write(json.dumps(line) + "\n")
            fault = state.get("faults", {}).get(operation)
            if fault is None and known:
                answer = {} if operation == "scopes" else answer_to(operation, body.get("variables") or {}, state, host)
                fault = {"status": 200, "body": json.dumps(answer)}
        if fault is None:
            fault = {"status": 401, "body": json.dumps({"message": "Bad credentials"})}
        if fault.get("hang"):
            threading.Event().wait()
        self.reply(fault["status"], fault["body"].encode())

    def reply(self, status, content):
        self.send_response(status)
        self.send_header("Content-Type", "application/json; charset=utf-8")
        self.send_header("X-Oauth-Scopes", "repo, read:org, gist")
        self.send_header("Content-Length", str(len(content)))
        self.end_headers()
        self.wfile.write(content)

    do_GET = do_POST = handle_request


class Server(socketserver.ThreadingMixIn, socketserver.UnixStreamServer):
    daemon_threads = True


def main():
    server = Server(SOCKET, Handler)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    print("ready", flush=True)
    sys.stdin.read()
    os.unlink(SOCKET)


main()
