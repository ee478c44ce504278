"""The cases: functions of a Lab, which return a figure to print. A check() that fails tells what was seen."""

import contextlib
import json
import os
import pathlib
import random
import re
import shutil
import signal
import socket
import struct
import subprocess
import time
import unicodedata
from concurrent.futures import ThreadPoolExecutor

from lab import (HISTORY, LOG, LONGEST_END, MEBIBYTE, PORT, SNAPSHOT, SUPPORT, WIDGET, Skip, answer, check, end,
                 iso, month, peak, record, samples, total, until)

LIMITS = answer({"five_hour": {"utilization": 42, "resets_at": iso(-3600)}})
NEAR_LIMIT = record(rate_limits={"name": "5h", "used_percent": 95, "resets_at": iso(-3600)})
CASES = []


def case(function):
    CASES.append(function)
    return function


def each(attempt, things, at_once=1):
    """Tries each of some things, and fails with all the failures."""
    def outcome(thing):
        try:
            return attempt(thing), None
        except AssertionError as failure:
            return None, f"{thing!r:.90}: {failure}"

    with ThreadPoolExecutor(at_once) as pool:
        outcomes = list(pool.map(outcome, things))
    failures = [failure for _, failure in outcomes if failure]
    check(not failures, "\n  ".join([f"{len(failures)} of {len(outcomes)}", *failures[:20]]))
    return [figure for figure, _ in outcomes]


# Another user of the machine

TOOL = """[ ! -e .claude/settings.json ] || touch "$HOME/attacked"
stat -c '%a %n' "$PWD" >"$HOME/ran"; exit 0"""


@case
def renewal_in_a_folder_of_its_own(lab):
    """A planted project in the shared temporary folder is not obeyed."""
    lab.install_claude(TOOL)
    lab.sign_in(300)
    planted = lab.folder / "tmp/.claude/settings.json"
    planted.parent.mkdir()
    planted.write_text('{"hooks":{"SessionStart":[{"hooks":[{"type":"command","command":"touch ~/attacked"}]}]}}')
    app = lab.start()
    until(lambda: (lab.home / "ran").exists() and (lab.home / "ran").stat().st_size, 20, "the tool is run")
    mode, folder = (lab.home / "ran").read_text().split(maxsplit=1)
    check(not (lab.home / "attacked").exists(), "the planted settings were obeyed")
    check(mode == "700", f"the tool ran in a folder with mode {mode}")
    until(lambda: not os.path.exists(folder.strip()), 5, "its folder is removed")
    end(app)
    return "mode 700, removed"


@case
def no_renewal_without_a_folder(lab):
    lab.install_claude(TOOL)
    lab.sign_in(300)
    app = lab.start(TMPDIR="/dev/null/nowhere", LAB_SPEED=20)
    lab.refreshed(lab.refreshed(), 60)
    check(not (lab.home / "ran").exists(), "the tool ran all the same")
    end(app)


@case
def relative_search_path(lab):
    for name in ("tmp/claude", "tmp/sub/claude"):
        lab.write("../" + name, "#!/bin/sh\ntouch ~/attacked\n", 0o755)
    lab.sign_in(300)
    app = lab.start(cwd=lab.folder / "tmp", PATH=".:sub::/usr/bin:/bin")
    lab.refreshed()
    time.sleep(1)
    check(not (lab.home / "attacked").exists(), "a program was found by a path that is not absolute")
    end(app)


@case
def one_instance(lab):
    """Whatever the environment of the second one, it finds the first."""
    other = lab.folder / "tmp" / f"tallyglass-{os.geteuid()}"
    other.mkdir(mode=0o777)
    other.chmod(0o777)
    for first, second in ((lab.folder / "run", None), (None, lab.folder / "run"), (None, None)):
        app = lab.start(XDG_RUNTIME_DIR=first)
        lab.refreshed(lab.generated())
        later = lab.start(XDG_RUNTIME_DIR=second)
        try:
            check(later.wait(4) == 0, "the second one failed")
        except subprocess.TimeoutExpired:
            raise AssertionError(f"two run, with XDG_RUNTIME_DIR {first} and {second}") from None
        check(app.poll() is None, "the first one has ended")
        end(app)
        time.sleep(1)  # snapshots are dated in seconds


@case
def memory_is_not_for_others(lab):
    """The processes of a user can be read by that user's debuggers, unless they say no."""
    lab.sign_in()
    user = lab.run_as_nobody()
    lab.web.says(LIMITS)
    app = lab.start(user=user)
    until(lab.web.asked, 20, "the endpoint is asked")
    check(pathlib.Path(f"/proc/{app.pid}/mem").stat().st_uid == 0, "a process that holds a token is dumpable")
    end(app)


# Refreshes that stick

def sticks_and_comes_again(lab, seconds=90, **faults):
    """Lets a refresh run into a fault that goes away after a while, and waits for a later one."""
    during = lab.folder / "during"
    app = lab.start(LAB_SPEED=100, LAB_WHILE=during, **faults)
    lab.refreshed()
    during.touch()
    time.sleep(8)  # in which the next one begins
    before = lab.generated()
    during.unlink()
    start = time.monotonic()
    lab.refreshed(before, seconds)
    figure = f"again after {(time.monotonic() - start) * 100 / 60:.0f} minutes"
    end(app)
    return figure


@case
def no_threads_for_a_while(lab):
    return sticks_and_comes_again(lab, LAB_NO_THREADS=1)


@case
def log_that_never_opens(lab):
    return sticks_and_comes_again(lab, LAB_HANG="session.jsonl")


@case
def own_file_that_never_opens(lab):
    return sticks_and_comes_again(lab, LAB_HANG="usage_snapshot.json")


@case
def term_while_something_hangs(lab):
    """A log, an own file, the tool, the endpoint, and buses that say nothing."""
    hanging = {"log": {"LAB_HANG": "session.jsonl"}, "snapshot": {"LAB_HANG": "usage_snapshot"},
               "history": {"LAB_HANG": "usage_history"}, "credentials": {"LAB_HANG": ".credentials"},
               "settings": {"LAB_HANG": "Tallyglass.conf"}, "tool": {}, "endpoint": {},
               "session bus": {"DBUS_SESSION_BUS_ADDRESS": lab.silent_bus()},
               "system bus": {"DBUS_SYSTEM_BUS_ADDRESS": lab.silent_bus()}}

    def attempt(name):
        with lab.another() as one:
            one.write(LOG, NEAR_LIMIT)
            one.write(".config/Tallyglass.conf", "[General]\nalertsEnabled=true\n")
            one.sign_in(300 if name == "tool" else 86400)
            one.install_claude("trap '' TERM HUP INT; while :; do sleep 1; done")
            if name == "endpoint":
                one.web.says(lambda client: time.sleep(30))
            app = one.start(**hanging[name])
            time.sleep(3)
            return end(app)

    return f"{max(each(attempt, hanging)):.1f} s"


@case
def silent_buses(lab):
    """Neither bus answers, on a desktop where there is one: the figures come all the same."""
    display = {}
    if shutil.which("Xvfb"):
        ready, write = os.pipe()
        server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-nolisten", "tcp"], pass_fds=[write],
                                  stderr=subprocess.DEVNULL)
        lab.processes.append(server)
        display["DISPLAY"] = ":" + os.read(ready, 16).decode().strip()
    start = time.monotonic()
    app = lab.start(DBUS_SESSION_BUS_ADDRESS=lab.silent_bus(), DBUS_SYSTEM_BUS_ADDRESS=lab.silent_bus(), **display)
    lab.refreshed()
    took = time.monotonic() - start
    check(took < 10, f"the first figures took {took:.0f} s")
    end(app)
    return f"{took:.1f} s to the first figures{'' if display else ', without a display'}"


@case
def bus_that_ends(lab):
    config = lab.write("bus.conf", f"""<busconfig><type>session</type><listen>unix:path={lab.folder}/run/bus</listen>
        <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
        </busconfig>""")
    if not shutil.which("dbus-daemon"):
        raise Skip("needs dbus-daemon")
    bus = subprocess.Popen(["dbus-daemon", "--nofork", f"--config-file={config}"], stderr=subprocess.DEVNULL)
    lab.processes.append(bus)
    until((lab.folder / "run/bus").exists, 5, "a bus")
    address = f"unix:path={lab.folder}/run/bus"
    app = lab.start(DBUS_SESSION_BUS_ADDRESS=address, DBUS_SYSTEM_BUS_ADDRESS=address)
    lab.refreshed()
    bus.kill()
    time.sleep(1)
    check(app.poll() is None, "the application ended with the bus")
    end(app)


# Answers

@case
def answers_are_read(lab):
    """Their limits get into the snapshot; an interim answer is none."""
    def attempt(before):
        with lab.another() as one:
            one.sign_in()
            one.web.says(before + LIMITS)
            app = one.start()
            until(lambda: '"usedPercent": 0.42' in json.dumps(one.read(SNAPSHOT)), 10, "the limits")
            end(app)

    each(attempt, (b"", b"HTTP/1.1 103 Early Hints\r\nLink: </style.css>\r\n\r\n"))


@case
def one_request(lab):
    """Whatever is answered, the token is sent once and to nowhere else."""
    def reset(client):
        client.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))

    def attempt(content):
        with lab.another() as one:
            one.sign_in()
            one.web.says(content)
            app = one.start()
            until(one.web.asked, 10, "a request")
            time.sleep(0.7)
            check(one.web.asked() == 1, f"{one.web.asked()} requests")
            check(not one.web.asked("/elsewhere"), "followed with the token")
            end(app)

    elsewhere = f"Location: http://127.0.0.1:{PORT}/elsewhere\r\n"
    answers = [b"", reset, b"HTTP/1.1", b"HTTP/1.1 200 OK\r\nContent-Le",
               b"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{", b"\0\1\2 nonsense\r\n\r\n", b"HTTP/9.9 abc\r\n\r\n",
               b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n", b"HTTP/1.1 103 Early Hints\r\n\r\n",
               answer(b"", "401 Unauthorized", "WWW-Authenticate: Basic realm=x\r\n"),
               answer(b"", "407 Proxy Authentication Required", "Proxy-Authenticate: Basic realm=x\r\n"),
               answer(b"", "408 Request Timeout", "Connection: close\r\n"), answer(b"", "429 Too Many Requests"),
               answer(b"", "503 Service Unavailable", "Retry-After: 0\r\n"),
               *(answer(b"", f"{code} Moved", elsewhere) for code in (301, 302, 303, 307, 308))]
    return f"{len(each(attempt, answers))} answers"


@case
def status_by_its_code(lab):
    """Also of those that the network library calls protocol errors."""
    lab.sign_in()
    for code in (400, 404, 418, 429, 500):
        lab.web.says(answer(b"{}", f"{code} Whatever"))
        doctor = lab.start("doctor", "--network")
        output = doctor.communicate(timeout=30)[0].decode()
        if doctor.returncode == 2:
            raise Skip("the programs have no command that tells")
        check(str(code) in output, f"{code} is told as: {output[-200:]}")


@case
def headers_without_end(lab):
    lab.sign_in()

    def flood(client):
        client.sendall(b"HTTP/1.1 200 OK\r\n")
        for _ in range(200):  # 200 MiB
            client.sendall(b"X-Header: filling memory line by line\r\n" * (MEBIBYTE // 39))

    lab.web.says(flood)
    app = lab.start()
    until(lab.web.asked, 10, "a request")
    time.sleep(4)
    memory = peak(app) // MEBIBYTE
    end(app)
    check(memory < 150, f"{memory} MiB")
    return f"{memory} MiB"


# Own files

@case
def history_that_cannot_be_read(lab):
    """It is not replaced by a short one."""
    content = samples(500)
    for place in (HISTORY, WIDGET + "usage_history.json"):
        lab.write(place, content)
    app = lab.start(LAB_EIO="usage_history.json")
    lab.refreshed()
    time.sleep(2)
    kept = len(lab.read(HISTORY))
    check(kept >= 500, f"{kept} of 500 samples are left")
    end(app)


@case
def full_disk(lab):
    content = samples(500)
    lab.write(HISTORY, content)
    app = lab.start(LAB_ENOSPC="Tallyglass/")
    time.sleep(3)
    check((lab.home / HISTORY).read_text() == content, "the history has changed")
    end(app)


@case
def sums_that_overflow(lab):
    """In a stored snapshot they are malformed; in a log they end the program, and the log is named."""
    most = 2**63 - 1
    tokens = {"inputTokens": most, "outputTokens": 1, "cacheCreationTokens": 0, "cacheReadTokens": 0}
    provider = {"provider": "claude", "tokens": tokens, "eventCount": 1, "budgetTokens": 5, "models": []}
    lab.write(SNAPSHOT, json.dumps({"generatedAt": iso(600), "summaries": [
        {"window": "fiveHours", "startDate": iso(6000), "endDate": iso(), "providers": [provider]}]}))
    app = lab.start()
    until(lambda: app.poll() is not None or lab.generated(), 20, "a new snapshot")
    check(app.poll() is None, f"status {app.poll()} at the start")
    end(app)
    lab.write(LOG, record(most) + record(1))
    status, _, errors, _, _ = lab.report()
    check(status == 70, f"status {status} of the report")
    check(errors.count(b"\n") == 1 and b"session.jsonl" in errors, f"the log is not named: {errors}")


def listen_at(path):
    """A socket there, however long the path is."""
    folder = os.open(path.parent, os.O_RDONLY)
    with socket.socket(socket.AF_UNIX) as one:
        one.bind(f"/proc/self/fd/{folder}/{path.name}")
    os.close(folder)


KINDS = {
    "folder": lambda path: path.mkdir(),
    "full folder": lambda path: (path / "in").mkdir(parents=True),
    "pipe": os.mkfifo,
    "link to nothing": lambda path: path.symlink_to("nothing"),
    "link to itself": lambda path: path.symlink_to(path.name),
    "link to a folder": lambda path: path.symlink_to("/usr"),
    "link to a device": lambda path: path.symlink_to("/dev/zero"),
    "socket": listen_at,
    "100 MB": lambda path: (path.touch(), os.truncate(path, 100_000_000)),
    "nonsense": lambda path: path.write_bytes(b"\0\xff[" * 1000),
}
PLACES = [SNAPSHOT, SNAPSHOT + ".unfinished", WIDGET + "usage_snapshot.json", HISTORY, HISTORY + ".unfinished",
          SUPPORT + "budgets.json", SUPPORT + "statusline_rate_limits.json", SUPPORT.rstrip("/"), WIDGET.rstrip("/"),
          ".config/Tallyglass.conf", ".config/Tallyglass.conf.lock", ".claude/.credentials.json",
          ".claude/settings.json", LOG, ".codex/sessions"]


@case
def other_kinds_of_files(lab):
    """In the place of every file of ours and those that are read. Nothing may block or fill the memory."""
    def attempt(pair):
        place, kind = pair
        with lab.another() as one:
            one.write(".codex/sessions/a.jsonl" if place == LOG else LOG, NEAR_LIMIT)
            if place != ".config/Tallyglass.conf":
                one.write(".config/Tallyglass.conf", "[General]\nalertsEnabled=true\n")
            path = one.home / place
            path.unlink(missing_ok=True)
            path.parent.mkdir(parents=True, exist_ok=True)
            KINDS[kind](path)
            app = one.start()
            other = WIDGET + "usage_snapshot.json" if place.startswith(SUPPORT.rstrip("/")) else SNAPSHOT
            until(lambda: app.poll() is not None or one.generated(other), 15, "a snapshot")
            time.sleep(0.5)  # for the steps that follow
            memory = peak(app) // MEBIBYTE
            end(app)
            check(memory < 250, f"{memory} MiB")

    pairs = [(place, kind) for place in PLACES for kind in KINDS]
    return f"{len(each(attempt, pairs, at_once=4))} pairs"


@case
def kills_while_it_writes(lab):
    """No file of ours is ever torn."""
    def attempt(seed):
        with lab.another() as one:
            one.write(HISTORY, samples(4000))
            app = one.start()
            time.sleep(random.Random(seed).uniform(0.1, 1.5))
            app.kill()
            app.wait()
            check(len(one.read(HISTORY)) >= 4000, "samples are lost")
            for file in one.home.glob("Library/**/*.json"):
                json.loads(file.read_bytes())

    return f"{len(each(attempt, range(100), at_once=4))} kills"


# Odd surroundings

@case
def no_home(lab):
    """Without HOME the list of users tells where it is."""
    lab.write(LOG, record(7))
    status, output, errors, _, _ = lab.report("--json", HOME=None, LAB_PASSWD=lab.home)
    check(status == 0 and total(output) == 7, f"status {status}, {errors}")


@case
def nohup(lab):
    app = lab.start(ignore_hup=True)
    lab.refreshed()
    app.send_signal(signal.SIGHUP)
    time.sleep(1)
    check(app.poll() is None, "it ended with the terminal")
    end(app)


@case
def terminal_output(lab):
    """Names in logs are anybody's."""
    nasty = "a\x1b[31m\x07\x85\x9b2J\u2028\u2029\u202e\U000e0041\u200b\x7fz"
    lab.write(LOG, record(model=nasty))
    for words in ([], ["--json"]):
        status, output, errors, _, _ = lab.report(*words)
        check(status == 0, f"status {status}: {errors}")
        bad = {hex(ord(c)) for c in output.decode() if c != "\n"
               and (unicodedata.category(c) in ("Cc", "Cf", "Zl", "Zp") or 0xE0000 <= ord(c) < 0xE0080)}
        check(not bad, f"{' '.join(sorted(bad))} in the output {words}")
    check(month(json.loads(output))["claude"]["models"][0]["model"] == nasty, "the JSON has another name")


@case
def output_that_cannot_be_written(lab):
    for words in ([], ["--json"]):
        with open("/dev/full", "wb") as full:
            process = lab.start("report", *words, output=full)
            errors = process.communicate(timeout=20)[1]
        check(process.returncode == 1 and errors.count(b"\n") == 1, f"status {process.returncode}, errors {errors}")


@case
def closed_descriptors(lab):
    """Started without standard streams, whose numbers files then get: nothing is written into those."""
    app = lab.start(wrapper=["sh", "-c", 'exec "$0" <&- >&- 2>&-'])
    lab.refreshed()
    time.sleep(0.5)
    for file in lab.home.glob("Library/**/*.json"):
        json.loads(file.read_bytes())
    end(app)


@case
def home_without_rights(lab):
    """The figures of what can be read, and nothing written."""
    lab.write(".claude/projects/secret.jsonl", record(5), mode=0o000)
    (lab.home / ".codex/sessions").mkdir(parents=True, mode=0o000)
    user = lab.run_as_nobody()
    lab.home.chmod(0o500)
    status, output, errors, _, _ = lab.report("--json", user=user)
    check(status == 0 and total(output) == 1 and not errors, f"status {status}, {errors}")
    app = lab.start(user=user)
    time.sleep(2)
    check(app.poll() is None, f"it ended with {app.poll()}")
    end(app)
    check(not (lab.home / "Library").exists(), "something is written")


# Amplification and memory

@case
def many_names(lab):
    """600,000 records with a model each, beside an ordinary log of that size."""
    lines = "".join(f'{{"model":"m{i:06}","usage":{{"input_tokens":1}}}}\n' for i in range(600_000))
    path = lab.write(LOG, lines.replace("model", "modem"))
    ordinary = lab.report("--json")[3]
    path.write_text(lines)
    status, output, errors, seconds, memory = lab.report("--json")
    check(status == 0, f"status {status}: {errors}")
    check(total(output) == 600_000, "the total is not exact")
    figure = f"{memory // MEBIBYTE} MiB, {seconds:.1f} s beside {ordinary:.1f} s, {len(output) // MEBIBYTE} MiB written"
    check(memory < 256 * MEBIBYTE and seconds < 5 * max(ordinary, 0.2), figure)
    app = lab.start()
    lab.refreshed(seconds=60)
    time.sleep(1)
    memory = peak(app) // MEBIBYTE
    check(memory < 256, f"{memory} MiB in the application; {figure}")
    end(app)
    return f"{figure}; application {memory} MiB"


@case
def long_name(lab):
    lab.write(LOG, record(model="m" * 8_000_000))
    status, output, _, _, memory = lab.report("--json")
    check(status == 0 and len(output) < MEBIBYTE, f"status {status}, {len(output)} bytes")
    check(memory < 256 * MEBIBYTE, f"{memory // MEBIBYTE} MiB")


@case
def long_line(lab):
    """A line of 31 MiB under a limit of 500 MB: it may be left out, with a word; the others count."""
    lab.write(LOG, record(3))
    lab.write(".claude/projects/p/long.jsonl",
              '{"usage":{"input_tokens":5},"a":[' + '{"input_tokens":0},' * (31 * MEBIBYTE // 19) + "0]}\n")
    status, output, errors, _, memory = lab.report("--json", limit=500_000_000)
    check(status == 0, f"status {status}: {errors[-200:]}")
    tokens = total(output)
    check(tokens == 8 or (tokens == 3 and errors.count(b"\n") == 1), f"{tokens} tokens, {errors}")
    return f"{tokens} tokens, {memory // MEBIBYTE} MiB"


@case
def deep_tree(lab):
    """A log whose path is longer than a path may be."""
    folder = os.open(lab.home / ".claude/projects", os.O_RDONLY)
    for _ in range(30):
        os.mkdir("d" * 200, dir_fd=folder)
        inner = os.open("d" * 200, os.O_RDONLY, dir_fd=folder)
        os.close(folder)
        folder = inner
    with open(os.open("deep.jsonl", os.O_WRONLY | os.O_CREAT, dir_fd=folder), "w", encoding="utf-8") as log:
        log.write(record(2))
    status, output, _, _, _ = lab.report("--json")
    check(status == 0 and total(output) == 3, f"status {status}, {total(output)} of 3 tokens")


# Dates

@case
def dates_at_the_edge(lab):
    """What is written can be read back: a start whose log hangs shows what was stored."""
    for date, zone in (("9999-12-31 23:59:59", "America/Los_Angeles"), ("0001-01-01", "Asia/Tokyo"),
                       ("0000-06-01T00:00:00Z", "UTC"), ("9999-12-31T23:59:59-08:00", "UTC"), (1e300, "UTC")):
        with lab.another() as one:
            one.write(LOG, record(rate_limits={"name": "5h", "used_percent": 50, "resets_at": date}))
            app = one.start(TZ=zone)
            one.refreshed()
            end(app)
            stored = one.read(SNAPSHOT)
            wrong = [found for found in re.findall(r'Date": "([^"]*)"', json.dumps(stored))
                     if not re.fullmatch(r"\d{4}-.*", found) or found.startswith("0000")]
            check(not wrong, f"{date} in {zone} is written as {wrong}")
            (one.home / WIDGET / "usage_snapshot.json").unlink()
            app = one.start(TZ=zone, LAB_HANG="session.jsonl")
            again = until(lambda: one.read(WIDGET + "usage_snapshot.json"), 20, "the stored snapshot")
            check(again == stored, f"{date} in {zone} does not read back")


# For a long time

@case
def quits(lab):
    """At random moments, under an allocator that poisons what is freed."""
    def attempt(seed):
        chance = random.Random(seed)
        with lab.another() as one:
            one.write(LOG, record() * 2000)
            one.write(HISTORY, samples(1000))
            one.sign_in(chance.choice((300, 86400)))  # which has the tool run, or not
            one.install_claude("sleep 1")
            app = one.start(MALLOC_PERTURB_=165, MALLOC_CHECK_=3)
            time.sleep(chance.uniform(0.1, 2))
            number = chance.choice((signal.SIGTERM, signal.SIGINT, signal.SIGHUP))
            app.send_signal(number)
            start = time.monotonic()
            with contextlib.suppress(subprocess.TimeoutExpired):
                app.wait(10)
            took = time.monotonic() - start
            # Before it has come to listen, a signal ends it as it ends every program.
            check(app.returncode in (0, -number) and took <= LONGEST_END, f"status {app.returncode} after {took:.1f} s")

    lab.web.says(lambda client: time.sleep(1))
    return f"{len(each(attempt, range(100), at_once=3))} quits"


@case
def a_day(lab):
    """In little more than a minute: it refreshes every five minutes and keeps its size."""
    lab.write(LOG, record() * 1000)
    lab.sign_in()
    lab.web.says(LIMITS)
    app = lab.start(LAB_SPEED=1200)
    seen, sizes, start = set(), [], time.monotonic()
    while time.monotonic() - start < 72:
        seen.add(lab.generated())
        sizes.append(int(pathlib.Path(f"/proc/{app.pid}/statm").read_text().split()[1]) * 4096)
        time.sleep(0.05)
        check(app.poll() is None, f"it ended with {app.poll()}")
    early, late = (max(part) // MEBIBYTE for part in (sizes[len(sizes) // 6:len(sizes) // 3], sizes[-len(sizes) // 6:]))
    figure = f"{len(seen)} snapshots, {lab.web.asked()} requests, {early} MiB, then {late} MiB"
    check(len(seen) > 200 and late <= early + 3, figure)
    end(app, 5)
    return figure


@case
def valgrind(lab):
    """A report of what the tools have really written."""
    if not shutil.which("valgrind"):
        raise Skip("needs valgrind")
    for folder, name in ((".claude", "claude-code-2.0.65"), (".codex/sessions", "codex-0.107.0"),
                         (".copilot/session-state", "copilot-1.0.27")):
        log = pathlib.Path(__file__).parent.parent / f"tests/data/{name}.jsonl"
        lab.write(f"{folder}/{name}.jsonl", log.read_bytes())
    # Without the newest debug information, which valgrind may not know.
    subprocess.run(["strip", "-g", lab.program, "-o", lab.folder / "stripped"], check=True)
    lab.program = lab.folder / "stripped"
    status, _, errors, _, _ = lab.report(wrapper=["valgrind", "-q", "--error-exitcode=99"])
    check(status == 0 and not errors, f"status {status}: {errors[-600:].decode(errors='replace')}")
