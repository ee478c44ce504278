"""What the cases of the laboratory work with: temporary homes, the programs, an endpoint, silent buses."""

import contextlib
import json
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import socket
import subprocess
import tempfile
import threading
import time
from datetime import datetime, timedelta, timezone

PORT = 18471  # of the endpoint and the feed, which the programs are built for
MEBIBYTE = 1024 * 1024
LONGEST_END = 2.5  # seconds from TERM to the end: the two that are promised, and some for a busy machine
SUPPORT = "Library/Application Support/Tallyglass/"
WIDGET = "Library/Containers/dev.local.Tallyglass.widget/Data/" + SUPPORT
SNAPSHOT = SUPPORT + "usage_snapshot.json"
HISTORY = SUPPORT + "usage_history.json"
LOG = ".claude/projects/p/session.jsonl"
ENDPOINT = "/api/oauth/usage"
NOBODY = 65534


class Skip(Exception):
    """This machine cannot try the case."""


def check(holds, what):
    if not holds:
        raise AssertionError(what)


def until(condition, seconds, what):
    """Waits for a true value of condition() and gives it."""
    end = time.monotonic() + seconds
    while not (value := condition()):
        check(time.monotonic() < end, f"not within {seconds} s: {what}")
        time.sleep(0.02)
    return value


def iso(ago=0):
    return (datetime.now(timezone.utc) - timedelta(seconds=ago)).strftime("%Y-%m-%dT%H:%M:%SZ")


def record(tokens=1, **more):
    return json.dumps({"timestamp": iso(60), "model": "opus", "usage": {"input_tokens": tokens}, **more}) + "\n"


def samples(count, newest=3600):
    """A history whose newest sample is so many seconds old."""
    return json.dumps([{"id": f"00000000-0000-4000-8000-{i:012d}", "date": iso(newest + 600 * (count - i)),
                        "provider": "claude", "fiveHourPercent": 0.5, "weekPercent": 0.25, "totalTokens": i}
                       for i in range(1, count + 1)])


def answer(body, status="200 OK", headers=""):
    body = body if isinstance(body, bytes) else json.dumps(body).encode()
    return f"HTTP/1.1 {status}\r\n{headers}Content-Length: {len(body)}\r\n\r\n".encode() + body


NOTHING = answer(b"", "404 Not Found")


class Web:
    """The endpoint, and a feed that is missing."""

    def __init__(self):
        self.listener = socket.create_server(("127.0.0.1", PORT), backlog=64)
        threading.Thread(target=self.accept, daemon=True).start()
        self.says(NOTHING)

    def says(self, content):
        """What it answers from now on: bytes, or a function of the connection. Earlier requests are forgotten."""
        self.content, self.requests = content, []

    def accept(self):
        while True:
            threading.Thread(target=self.serve, args=(self.listener.accept()[0],), daemon=True).start()

    def serve(self, client):
        with client, contextlib.suppress(OSError, IndexError):
            request = b""
            while b"\r\n\r\n" not in request:
                piece = client.recv(65536)
                if not piece:
                    return
                request += piece
            path = request.split()[1].decode()
            self.requests.append(path)
            content = self.content if path == ENDPOINT else NOTHING
            client.sendall(content) if isinstance(content, bytes) else content(client)

    def asked(self, path=ENDPOINT):
        return self.requests.count(path)


class Lab:
    """What one case works with: a home, the programs, and what it has started, which ends with it."""

    def __init__(self, build, faults, web):
        self.build, self.faults, self.web = build, faults, web
        self.program = build / "src/app/tallyglass"
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tallyglass-lab."))
        self.folder.chmod(0o755)
        self.home = self.folder / "home"
        self.processes = []
        for name in ("home", "tmp", "run"):
            (self.folder / name).mkdir(mode=0o700)
        self.write(LOG, record())

    def another(self):
        return Lab(self.build, self.faults, self.web)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in self.processes:
            if process.poll() is None:
                process.kill()
            process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)
        if self.folder.exists():  # too deep for Python
            subprocess.run(["rm", "-rf", self.folder], check=False)

    def write(self, relative, content="", mode=0o600):
        path = self.home / relative
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        path.chmod(mode)
        return path

    def read(self, relative):
        """What is in a JSON file of the home; nothing while there is none. A torn file fails the case."""
        with contextlib.suppress(FileNotFoundError):
            return json.loads((self.home / relative).read_bytes())

    def sign_in(self, seconds=86400):
        """With a token that is valid for so long."""
        expiry = int((time.time() + seconds) * 1000)
        self.write(".claude/.credentials.json",
                   json.dumps({"claudeAiOauth": {"accessToken": "a-made-up-token", "expiresAt": expiry}}))

    def install_claude(self, script):
        return self.write(".local/bin/claude", "#!/bin/sh\n" + script, 0o755)

    def environment(self, **changes):
        """Of the programs. A keyword that is None takes a variable away."""
        nowhere = f"unix:path={self.folder}/run/nowhere"
        variables = {"HOME": self.home, "TMPDIR": self.folder / "tmp", "XDG_RUNTIME_DIR": self.folder / "run",
                     "PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8", "TZ": "Asia/Tokyo",
                     "DBUS_SESSION_BUS_ADDRESS": nowhere, "DBUS_SYSTEM_BUS_ADDRESS": nowhere}
        if any(name.startswith("LAB_") for name in changes):
            variables |= {"LD_PRELOAD": self.faults, "LAB_REALTIME": int(time.time()),
                          "LAB_MONOTONIC": int(time.monotonic())}
        return {name: str(value) for name, value in (variables | changes).items() if value is not None}

    def start(self, *words, wrapper=(), limit=None, ignore_hup=False, cwd=None, user=None, output=None, **changes):
        def prepare():
            if limit:
                resource.setrlimit(resource.RLIMIT_AS, (limit, limit))
            signal.signal(signal.SIGHUP, signal.SIG_IGN if ignore_hup else signal.SIG_DFL)

        process = subprocess.Popen([*wrapper, self.program, *words], env=self.environment(**changes),
                                   stdin=subprocess.DEVNULL, stdout=output or subprocess.PIPE, stderr=subprocess.PIPE,
                                   preexec_fn=prepare, cwd=cwd or self.folder, user=user, group=user)
        self.processes.append(process)
        return process

    def report(self, *words, seconds=120, **options):
        """Status, output, errors, seconds of processor time and peak memory of a report."""
        process = self.start("report", *words, **options)
        timer = threading.Timer(seconds, process.kill)
        timer.start()
        gathered = {}
        readers = [threading.Thread(target=lambda pipe=pipe, name=name: gathered.update({name: pipe.read()}))
                   for name, pipe in (("output", process.stdout), ("errors", process.stderr))]
        for reader in readers:
            reader.start()
        _, status, usage = os.wait4(process.pid, 0)
        timer.cancel()
        for reader in readers:
            reader.join()
        process.returncode = os.waitstatus_to_exitcode(status)
        return process.returncode, gathered["output"], gathered["errors"], usage.ru_utime + usage.ru_stime, \
            usage.ru_maxrss * 1024

    def generated(self, relative=SNAPSHOT):
        """When a stored snapshot was made; nothing before there is one of logs, for the first is of none."""
        snapshot = self.read(relative)
        return snapshot and any(tool["eventCount"] for tool in month(snapshot).values()) and snapshot["generatedAt"]

    def refreshed(self, before=None, seconds=30):
        """Waits for a snapshot that was made after another one."""
        return until(lambda: (made := self.generated()) != before and made, seconds, "a refresh")

    def silent_bus(self):
        """The address of a bus that takes connections in and says nothing."""
        path = self.folder / f"run/silent{random.randrange(10**9)}"
        listener = socket.socket(socket.AF_UNIX)
        listener.bind(str(path))
        listener.listen(16)
        held = []

        def hold():
            with contextlib.suppress(OSError):
                while True:
                    held.append(listener.accept()[0])

        threading.Thread(target=hold, daemon=True).start()
        return f"unix:path={path}"

    def run_as_nobody(self):
        """Gives all of it to another user, if we may."""
        if os.geteuid() != 0 or subprocess.run([self.program, "--version"], user=NOBODY,
                                               stdout=subprocess.DEVNULL, check=False).returncode != 0:
            raise Skip("needs root, and programs that others can start")
        subprocess.run(["chown", "-R", f"{NOBODY}:{NOBODY}", self.folder], check=True)
        return NOBODY


def end(process, longest=LONGEST_END):
    """Sends TERM and gives the seconds until the process has ended well."""
    start = time.monotonic()
    process.terminate()
    try:
        status = process.wait(10)
    except subprocess.TimeoutExpired:
        raise AssertionError("still running 10 s after TERM") from None
    took = time.monotonic() - start
    check(status == 0, f"status {status} after TERM: {process.stderr.read()[-200:]}")
    check(took <= longest, f"{took:.1f} s from TERM to the end")
    return took


def peak(process):
    """The most memory that a running process has had, in bytes."""
    text = pathlib.Path(f"/proc/{process.pid}/status").read_text()
    return int(re.search(r"VmHWM:\s+(\d+)", text)[1]) * 1024


def month(snapshot):
    """What a snapshot has of each tool in the month."""
    return {tool["provider"]: tool for window in snapshot["summaries"] if window["window"] == "month"
            for tool in window["providers"]}


def total(output):
    return month(json.loads(output))["claude"]["tokens"]["inputTokens"]
