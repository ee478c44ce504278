#!/usr/bin/env python3
"""Runs the bridge as Claude Code and its users do: real processes, a home folder of its own."""

import ctypes
import fcntl
import json
import os
import re
import resource
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "bridge" / "tallyglass-statusline-bridge.py"
HOUR = 3600
MINE = b'{"statusLine": {"type": "command", "command": "echo mine"}}'


def limit(share, reset=2 * HOUR):
    """A window as Claude Code reports it; the reset counts from now."""
    return {"used_percentage": share, "resets_at": int(time.time()) + reset}


def session(**windows):
    return {"model": {"id": "claude-x", "display_name": "Opus"}, "rate_limits": windows,
            "workspace": {"current_dir": "/home/ada/shop", "project_dir": "/home/ada/shop"},
            "context_window": {"current_usage": {"input_tokens": 9, "cache_read_input_tokens": 41000}}}


def encoded(value):
    return value if isinstance(value, bytes) else json.dumps(value).encode()


def without_override():
    """Takes from root what lets it ignore permissions, so that they count in every test run."""
    for capability in (1, 2) if os.geteuid() == 0 else ():  # CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH
        ctypes.CDLL(None).prctl(24, capability, 0, 0, 0)  # PR_CAPBSET_DROP


def full_disk(size):
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


class BridgeCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = Path(folder.name) / "home of ada"
        self.folder = self.home / "Library" / "Application Support" / "Tallyglass"
        self.file = self.folder / "statusline_rate_limits.json"
        self.settings = self.home / ".claude" / "settings.json"
        self.settings.parent.mkdir(parents=True)
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(self.home)}

    def start(self, given=b"", *arguments, script=SCRIPT, **options):
        with tempfile.TemporaryFile() as stdin:  # so that none of several waits for its input
            stdin.write(encoded(given))
            stdin.seek(0)
            process = subprocess.Popen(
                [sys.executable, "-IS", str(script), *arguments], stdout=subprocess.PIPE,
                stderr=subprocess.PIPE, **{"stdin": stdin, "env": self.environment, **options})
        self.addCleanup(lambda: (process.kill(), process.__exit__(None, None, None)))
        return process

    def line_of(self, process):
        """The output of one render, which must be quiet and end well."""
        output, errors = process.communicate(timeout=15)
        self.assertEqual((process.returncode, errors), (0, b""))
        return output.decode()

    def line(self, given, **options):
        return self.line_of(self.start(given, **options))

    def run_action(self, action, **options):
        process = self.start(b"", action, **options)
        output, errors = process.communicate(timeout=15)
        return process.returncode, output.decode(), errors.decode()

    def empty(self, folder):
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir(parents=True)

    def shares(self):
        """What the application reads for the five hours and the seven days."""
        limits = json.loads(self.file.read_text())["rate_limits"]
        by_minutes = {found.get("window_minutes", 300): found["used_percentage"] for found in limits.values()}
        return [by_minutes.get(minutes) for minutes in (300, 10080)]

    def store(self, age=5, **windows):
        self.folder.mkdir(parents=True, exist_ok=True)
        self.file.write_text(json.dumps({"timestamp": int(time.time()) - age, "rate_limits": windows}))


class RenderTest(BridgeCase):
    def test_one_render(self):
        hostile = {"model": {"display_name": "Op\x1b[31mus\x9b\r\n"}, "cwd": "/a/\x07b\u202ec/"}
        both = session(five_hour=limit(23.2, 7830), seven_day=limit(41.00000000000001, 280000))
        nothing = "Opus · shop\n|Claude Code\n"
        rows = [
            ("both windows", both, "Opus · shop · 5h 24% 2h10m · 7d 41% 3d\n", [23.2, 41]),
            ("the last minute", session(five_hour=limit(100, 30)), "Opus · shop · 5h 100% 1m\n", [100, None]),
            ("no reset", session(five_hour={"used_percentage": 0}), "Opus · shop · 5h 0%\n", [0, None]),
            ("an absurd reset", session(five_hour=limit(20, 10**9)), "Opus · shop · 5h 20%\n", [20, None]),
            ("escape sequences", hostile, r"Op\[31mus · bc\n", None),
            ("half a character", b'{"model":{"id":"a\\ud800b"}}', "ab\n", None),
            ("long names", {"model": {"id": "m" * 300}, "cwd": "/" + "é" * 300}, "m{19}… · é{19}…\n", None),
            ("wrong types", {"model": [], "workspace": 3, "cwd": {}}, "Claude Code\n", None),
            ("a window of another kind", session(five_hour=30), nothing, None),
            ("a window that is over", session(five_hour=limit(30, -60)), nothing, None),
            ("half an object", encoded(session(five_hour=limit(30)))[:-9], nothing, None),
            ("deep nesting", b'{"a":' * 100000, nothing, None),
            ("three megabytes", b'{"a":"' + b"x" * 3000000, nothing, None),
        ]
        for literal, share in (("0.4", 1), ("1", 1), ("14.000000000000002", 14), ("105", 105), ("-3", None),
                               ("1776950400", None), ("true", None), ('"50"', None), ("NaN", None), ("9" * 5000, None)):
            given = json.dumps(session(five_hour=limit("SHARE"))).replace('"SHARE"', literal).encode()
            rows.append((literal[:20], given, ".*\n", [share, None] if share else None))
        for fault, given, line, shares in rows:
            with self.subTest(fault):
                shutil.rmtree(self.folder, ignore_errors=True)
                self.assertRegex(self.line(given), "^(%s)$" % line)
                self.assertEqual(self.shares() if self.folder.exists() else None, shares)
        self.line(dict(both, rate_limits=dict(both["rate_limits"], spend_limit=limit(5))))
        written = json.loads(self.file.read_text())["rate_limits"]
        self.assertEqual([(name, found["resets_at"]) for name, found in written.items()],
                         [(name, found["resets_at"]) for name, found in both["rate_limits"].items()])
        self.assertEqual([path.stat().st_mode & 0o777 for path in (self.file, self.folder)], [0o600, 0o700])
        self.assertNotIn("tokens", self.file.read_text())

    def test_what_is_known_afterwards(self):
        five = limit(50)
        for fault, age, stored, read, shares, renewed in (
            ("a session repeats a former window", 5, [limit(5, 4 * HOUR)], [limit(90, HOUR)], [5, None], False),
            ("a new window starts low", 5, [limit(90, HOUR)], [limit(5, 4 * HOUR)], [5, None], True),
            ("an idle session's lower share", 400, [five], [dict(five, used_percentage=40)], [50, None], False),
            ("more use in the same window", 5, [limit(50)], [limit(60)], [60, None], True),
            ("a rounded reset is no new window", 5, [limit(60, 7200)], [limit(50, 7201)], [60, None], False),
            ("without a reset nothing says it holds", 5, [{"used_percentage": 9}], [limit(3)], [3, None], True),
            ("an unused window beside a running one", 5, [limit(30)], [{"used_percentage": 0}], [30, None], False),
            ("a stored absurd reset would stay for ever", 5, [limit(30, 10**7)], [limit(3)], [3, None], True),
            ("a stored absurd share would stay for ever", 5, [limit(10**6)], [limit(3)], [3, None], True),
            ("an unreported window stays", 5, [limit(10), limit(40, 50 * HOUR)], [limit(20)], [20, 40], True),
            ("and goes when its end is unknown", 5, [limit(10), {"used_percentage": 4}], [limit(20)], [20, None], True),
            ("and when it is over", 5, [limit(10), limit(40, -5)], [limit(20)], [20, None], True),
            ("the time is not renewed at every render", 100, [five], [five], [50, None], False),
            ("but before the application would lose it", 400, [five], [five], [50, None], True),
            ("a clock that was set back", -400, [five], [five], [50, None], True),
        ):
            with self.subTest(fault):
                names = ("five_hour", "seven_day")
                self.store(age, **{name: dict(known, window=name, window_minutes=minutes)
                                   for name, known, minutes in zip(names, stored, (300, 10080))})
                before = self.file.read_bytes()
                line = self.line(session(**dict(zip(names, read))))
                after = json.loads(self.file.read_text())
                self.assertEqual(self.file.read_bytes() != before, renewed)
                self.assertTrue(not renewed or abs(time.time() - after["timestamp"]) < 15)
                self.assertEqual(self.shares(), shares)
                self.assertIn("5h %d%%" % shares[0], line)  # what other sessions know is shown

    def test_odd_stored_files(self):
        def text(content):
            return lambda: self.file.write_text(content)

        self.addCleanup(lambda: self.folder.chmod(0o700))
        for fault, prepare, hinder, share in (
            ("no JSON", text("{"), None, 30),
            ("wrong types", text('{"timestamp":[],"rate_limits":{"five_hour":[],"seven_day":7}}'), None, 30),
            ("deep nesting", text("[" * 100000), None, 30),
            ("huge", text('{"a":"' + "x" * 2000000 + '"}'), None, 30),
            ("a FIFO without a writer", lambda: os.mkfifo(self.file), None, 30),
            ("rests of a killed run", lambda: Path(str(self.file) + ".new").write_text("{"), None, 30),
            ("a folder in its place", self.file.mkdir, None, None),
            ("a full disk", lambda: self.store(five_hour=limit(7)), full_disk(20), 7),
            ("no permission", lambda: (text('{"rate_limits":{}}')(), self.folder.chmod(0o500)), without_override, None),
        ):
            with self.subTest(fault):
                self.empty(self.folder)
                prepare()
                line = self.line(session(five_hour=limit(30)), preexec_fn=hinder)
                self.assertRegex(line, "^Opus · shop · 5h 30% [12]h..m\n$")
                self.assertEqual(self.shares()[0] if self.file.is_file() else None, share)
                self.assertEqual(os.listdir(self.folder), [self.file.name])

    def test_forty_at_once(self):
        starts = [limit(share) for share in range(20, 31)] + [limit(90, HOUR)] * 9
        starts += [limit(share) for share in range(1, 20)]
        processes = [self.start(session(five_hour=reading)) for reading in starts]
        while any(process.poll() is None for process in processes):
            self.file.exists() and self.shares()  # fails on half a file
        self.assertTrue(all(process.returncode == 0 for process in processes))
        self.assertEqual((self.shares()[0], os.listdir(self.folder)), (30, [self.file.name]))

    def test_a_lock_that_is_never_given_back(self):
        self.folder.mkdir(parents=True)
        holder = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, holder)
        fcntl.flock(holder, fcntl.LOCK_EX)
        begun = time.monotonic()
        self.line(session(five_hour=limit(30)))
        self.assertGreater(time.monotonic() - begun, 1.0)  # it was waited for, but not for ever
        self.assertEqual((self.shares()[0], os.listdir(self.folder)), (30, [self.file.name]))

    def test_odd_surroundings(self):
        # No limits in these, since without HOME the file is in the real home folder; and none
        # must come from the folder in which the bridge happens to be started.
        self.store(five_hour=limit(999))
        for home in ({}, {"HOME": "."}):
            line = self.line(b"{}", env=dict(home, PATH=os.environ["PATH"]), cwd=self.home)
            self.assertRegex(line, "^Claude Code(?!.*999%)")
        self.assertEqual(self.line(b"", preexec_fn=lambda: os.close(0), env={}), line)
        reader_gone = self.start(session())
        reader_gone.stdout.close()
        self.assertEqual((reader_gone.wait(15), reader_gone.stderr.read()), (0, b""))
        endless = self.start(stdin=subprocess.PIPE)
        endless.stdin.write(encoded(session(five_hour=limit(30))))
        endless.stdin.flush()
        self.assertEqual((endless.wait(15), b"shop" in endless.stdout.read()), (0, True))

    def test_chained_commands(self):
        # A hanging command whose processes hold a pipe, so that the end of them all can be seen.
        def hanging(name):
            os.mkfifo(self.home / name)
            pipes.append(os.open(self.home / name, os.O_RDONLY | os.O_NONBLOCK))
            self.addCleanup(os.close, pipes[-1])
            return "exec 3>'%s'; echo up >&3; sleep 60 & sleep 60" % (self.home / name)

        def read_pipe(pipe):
            self.assertTrue(select.select([pipe], [], [], 10)[0], "something still runs")
            return os.read(pipe, 100)

        pipes = []
        overtaken = self.start(b"", "--chain", hanging("first"))
        self.assertEqual(read_pipe(pipes[0]), b"up\n")
        overtaken.send_signal(signal.SIGTERM)
        self.assertEqual((overtaken.wait(15), read_pipe(pipes[0])), (0, b""))

        own = "Opus · shop · 5h 30% 1h5.m\n"
        given = encoded(session(five_hour=limit(30, 2 * HOUR - 20))) + b" " * 300000  # more than a pipe holds
        rows = (
            ("hangs", hanging("second"), own),
            ("never stops printing", "yes", "y\n" * (1 << 19)),
            ("a helper holds its output", "sleep 60 & echo mine", "mine\n"),
            ("the same input", "cat", given.decode()),
            ("quotes and variables", "a=\"it's\"; printf \"$a\" '$a'", "it's"),
            ("printed nothing on purpose", "cat > /dev/null", ""),
            ("failed without a word", "exit 3", own),
            ("failed after its line", "echo mine; exit 3", "mine\n"),
            ("can still be told to end", "kill -TERM $$; echo late", own),
            ("only blanks", "  ", own),
        )
        processes = [self.start(given, "--chain", command) for _, command, _ in rows]
        self.assertEqual(read_pipe(pipes[1]), b"up\n")
        for (fault, _, output), process in zip(rows, processes):
            line = self.line_of(process)
            self.assertTrue(re.fullmatch(own, line) if output is own else line == output, fault)
        self.assertEqual((read_pipe(pipes[1]), self.shares()[0]), (b"", 30))


class SettingsTest(BridgeCase):
    def command(self):
        return json.loads(self.settings.read_text("utf-8-sig"))["statusLine"]["command"]

    def rendered(self):
        """The line that Claude Code gets from the command in the settings."""
        return subprocess.run(
            self.command(), shell=True, input=encoded(session(five_hour=limit(30))),
            env=self.environment, stdout=subprocess.PIPE, timeout=15, check=True).stdout.decode()

    def listing(self):
        return sorted(path.name for path in self.settings.parent.iterdir())

    def refused(self, action="--install", **options):
        code, output, errors = self.run_action(action, **options)
        self.assertEqual((code, output), (1, ""))
        self.assertRegex(errors, r"^~/\.claude/settings\.json is left as it is: [^\n]+\n$")

    def test_there_and_back(self):
        def mine(command):
            return '"statusLine": {"padding": 0, "type": "command", "command": "%s"}' % command

        def others(content):
            """All but the statusLine, with numbers as they are written; and its command."""
            members = json.loads(content.decode("utf-8-sig"), parse_float=str, parse_int=str)
            return members, members.pop("statusLine", {}).get("command")

        for text in (
            '{\n  "model": "opus",\n  "env": {"A": "1"}\n}\n',
            '{\r\n    "z": 1,\r\n    "a": 2\r\n}\r\n',
            '\ufeff{\n  "a": 1\n}\n',
            '{"z":1, "a":{}}', "{}",
            '{"n": 123456789012345678.90, "m": 1e400, "a": 1, "a": 2}',
            '{\n  "言語": "日本語 é"\n}\n',
            '{\n  "a": "\\u65e5\\u672c \\ud83d\\ude00 \\/"\n}\n',
            '{"x": {"statusLine": {"command": "echo"}}}',
            '{\n "a": 1, ' + mine("echo 'it is' mine") + ',\n "b": 2 }',
            "{" + mine('echo \\"mine\\" | sed s/x/\'$y\'/') + "}",
            "{" + mine("echo mine # \\u65e5") + "}", "{" + mine("echo mine\\nexit 0") + "}", "{" + mine("") + "}",
        ):
            with self.subTest(text):
                self.empty(self.settings.parent)
                original = text.encode()
                self.settings.write_bytes(original)
                self.settings.chmod(0o640)
                before, theirs = others(original)
                self.assertEqual(self.run_action("--install")[0], 0)
                installed = self.settings.read_bytes()
                self.assertEqual(others(installed)[0], before)
                self.assertEqual(installed.isascii(), original.isascii())
                self.assertIn(installed.count(b"\r\n"), (0, installed.count(b"\n")))
                self.assertIn("mine" if theirs else "Opus · shop · 5h", self.rendered())
                backup = self.listing()[1]
                self.assertRegex(backup, r"^settings\.json\.before-tallyglass-20\d{6}-\d{6}$")
                self.assertEqual((self.settings.parent / backup).read_bytes(), original)

                again = self.run_action("--install")
                self.assertEqual(again, (0, "Already installed; nothing changed.\n", ""))
                shown = "" if theirs is None else ", showing the output of .*"
                self.assertRegex(self.run_action("--status")[1], "^Installed%s\n$" % shown)
                self.assertEqual((self.settings.read_bytes(), self.listing()), (installed, ["settings.json", backup]))
                self.assertEqual(self.run_action("--uninstall")[0], 0)
                self.assertEqual(self.settings.read_bytes(), original)
                self.assertEqual(self.settings.stat().st_mode & 0o777, 0o640)

    def test_files_that_are_refused(self):
        plain = b'{"a": "' + b"x" * 500 + b'"}'
        contents = (
            b'{\n  // mine\n  "a": 1\n}', b'[{"a": 1}]', b"{} {}", b'{"a": NaN}', b'{"a": "\xe9"}',
            b'{"a":' + b"[" * 100000 + b"]" * 100000 + b"}", MINE[:-1] + b", " + MINE[1:],
            b'{"statusLine": null}', b'{"statusLine": {"type": "command"}}',
            b'{"statusLine": {"command": ["echo"]}}', b'{"statusLine": {"command": "\\ud800"}}',
        )
        for content, mode, folder_mode, hinder in [(content, 0o600, 0o700, None) for content in contents] + [
            (plain, 0, 0o700, without_override), (plain, 0o400, 0o700, without_override),
            (plain, 0o600, 0o500, without_override), (plain, 0o600, 0o700, full_disk(520)),
        ]:
            with self.subTest(content[:40], mode=mode, folder_mode=folder_mode):
                self.settings.write_bytes(content)
                self.settings.chmod(mode)
                self.settings.parent.chmod(folder_mode)
                self.refused(preexec_fn=hinder)
                self.settings.parent.chmod(0o700)
                self.settings.chmod(0o600)  # for us, who may be no more than the bridge is
                self.assertEqual((self.settings.read_bytes(), self.listing()), (content, ["settings.json"]))
        self.settings.unlink()
        os.mkfifo(self.settings)  # that never gets a writer
        self.refused()

    def test_links_and_blank_files(self):
        for fault, content, rest in (
            ("a link to a file", b'{"a": 1}', b'{"a": 1}'), ("a link to nothing yet", None, b"{}\n"),
            ("no bytes", b"", b"{}\n"), ("a mark alone", b"\xef\xbb\xbf\n", b"\xef\xbb\xbf{}\n"),
        ):
            with self.subTest(fault):
                self.empty(self.settings.parent)
                target = self.home / (fault + ".json")
                if content is not None:
                    target.write_bytes(content)
                self.settings.symlink_to(Path("..") / target.name)
                self.assertEqual(self.run_action("--status")[:2], (0, "Not installed\n"))
                self.assertEqual(self.run_action("--install")[0], 0)
                self.assertTrue(self.settings.is_symlink() and "Opus" in self.rendered())
                self.assertEqual(self.run_action("--uninstall")[0], 0)
                self.assertEqual(target.read_bytes(), rest)
        shutil.rmtree(self.settings.parent)
        self.assertEqual(self.run_action("--uninstall")[0], 0)
        self.assertFalse(self.settings.parent.exists())
        self.assertEqual(self.run_action("--install")[0], 0)
        self.assertIn("Opus", self.rendered())

    def test_uninstall_keeps_what_the_user_did_meanwhile(self):
        self.settings.write_bytes(MINE)
        self.run_action("--install")
        changed = json.loads(self.settings.read_text())
        changed["statusLine"]["padding"] = 2
        changed["model"] = "opus"
        self.settings.write_bytes(encoded(changed))
        self.assertEqual(self.run_action("--uninstall")[0], 0)
        changed["statusLine"]["command"] = "echo mine"
        self.assertEqual(json.loads(self.settings.read_text()), changed)

        self.settings.write_bytes(b'{"a": 1}')
        self.run_action("--install")
        moved = {"statusLine": json.loads(self.settings.read_text())["statusLine"], "a": 1}
        self.settings.write_bytes(encoded(moved))
        self.assertEqual(self.run_action("--uninstall")[0], 0)
        self.assertEqual(self.settings.read_bytes(), b'{"a": 1}')

    def test_entries_that_are_not_ours_to_remove(self):
        self.run_action("--install")
        ours = self.command()
        for command, is_ours in (
            ("echo other", False), (ours + " | cat", True), ("sh -c " + json.dumps(ours), True),
            (ours.replace(str(SCRIPT), '"$APPS"/' + SCRIPT.name), True), (ours + " '", True),
        ):
            with self.subTest(command):
                content = encoded({"statusLine": {"type": "command", "command": command}})
                self.settings.write_bytes(content)
                self.assertEqual(self.run_action("--uninstall")[0], is_ours)
                self.assertTrue(not is_ours or self.run_action("--install")[0] == 0)
                self.assertEqual(self.settings.read_bytes(), content)
        code, output, errors = self.run_action("--instal")
        self.assertEqual((code, output, "usage:" in errors), (2, "", True))

    def test_a_script_that_moves_keeps_the_chain(self):
        self.settings.write_bytes(MINE)
        self.run_action("--install")
        moved = self.home / "Ada's \"new\" $apps" / SCRIPT.name
        moved.parent.mkdir()
        shutil.copy(SCRIPT, moved)
        self.assertIn("another place", self.run_action("--status", script=moved)[1])
        self.assertEqual(self.run_action("--install", script=moved)[0], 0)
        self.assertIn("new", self.command())
        self.assertEqual(self.rendered(), "mine\n")
        renamed = shutil.copy(moved, self.home / "bridge.py")  # which the application would not know
        self.refused(script=renamed)
        self.assertEqual(self.run_action("--uninstall", script=moved)[0], 0)
        self.assertEqual((self.settings.read_bytes(), os.access(SCRIPT, os.X_OK)), (MINE, True))


if __name__ == "__main__":
    unittest.main()
