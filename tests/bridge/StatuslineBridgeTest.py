#!/usr/bin/env python3
"""Runs the bridge as Claude Code and its users do: real processes, a home folder of its own."""

import ctypes
import fcntl
import json
import os
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


def limit(share, reset=2 * HOUR):
    """A window as Claude Code reports it; the reset counts from now."""
    return {"used_percentage": share, "resets_at": int(time.time()) + reset}


def session(**windows):
    return {
        "session_id": "7b1c",
        "model": {"id": "claude-x", "display_name": "Opus"},
        "workspace": {"current_dir": "/home/ada/shop", "project_dir": "/home/ada/shop"},
        "context_window": {"current_usage": {"input_tokens": 9, "cache_read_input_tokens": 41000}},
        "rate_limits": windows,
    }


def encoded(value):
    return value if isinstance(value, bytes) else json.dumps(value).encode()


def without_override():
    """Takes from root what lets it ignore permissions, so that they count in every test run."""
    if os.geteuid() == 0:
        for capability in (1, 2):  # CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH
            ctypes.CDLL(None).prctl(24, capability, 0, 0, 0)  # PR_CAPBSET_DROP


def full_disk(size):
    return lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))


class BridgeCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = Path(folder.name) / "home of ada"
        self.home.mkdir()
        self.folder = self.home / "Library" / "Application Support" / "Tallyglass"
        self.file = self.folder / "statusline_rate_limits.json"
        self.settings = self.home / ".claude" / "settings.json"
        self.environment = {"PATH": os.environ["PATH"], "HOME": str(self.home)}

    def start(self, given=b"", *arguments, script=SCRIPT, **options):
        # A file, so that none of several waits until the test comes to write its input.
        with tempfile.TemporaryFile() as stdin:
            stdin.write(encoded(given))
            stdin.seek(0)
            process = subprocess.Popen(
                [sys.executable, "-IS", str(script), *arguments],
                stdout=subprocess.PIPE,
                stderr=subprocess.PIPE,
                **{"stdin": stdin, "env": self.environment, **options},
            )
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        with process:
            process.kill()

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

    def reading(self):
        """What the application makes of the file: window minutes -> (fraction, reset)."""
        if not self.file.exists():
            return {}
        document = json.loads(self.file.read_text())
        self.assertEqual(list(document), ["timestamp", "rate_limits"])
        limits = {}
        for found in document["rate_limits"].values():
            share = found["used_percentage"]
            fraction = share if share < 1 else share / 100
            limits[found["window_minutes"]] = (min(fraction, 1.0), found.get("resets_at"))
        return limits

    def share(self, minutes=300):
        return self.reading().get(minutes, (None,))[0]

    def store(self, timestamp_from_now=0, **windows):
        self.folder.mkdir(parents=True, exist_ok=True)
        for name, minutes in (("five_hour", 300), ("seven_day", 10080)):
            if name in windows:
                windows[name] = dict(window=name, window_minutes=minutes, **windows[name])
        timestamp = int(time.time()) + timestamp_from_now
        self.file.write_text(json.dumps({"timestamp": timestamp, "rate_limits": windows}))


class ReadingTest(BridgeCase):
    def test_shares_read_as_meant(self):
        for fault, literal, fraction in (
            ("a sliver is no fraction", "0.4", 0.01),
            ("one is one percent", "1", 0.01),
            ("float noise", "14.000000000000002", 0.14),
            ("decimals stay", "23.5", 0.235),
            ("nothing used", "0", 0),
            ("above full", "105", 1.0),
            ("below zero", "-3", None),
            ("the time as share", "1776950400", None),
            ("a boolean is no number", "true", None),
            ("a string is no number", '"50"', None),
            ("not a number", "NaN", None),
            ("beyond any integer", "9" * 5000, None),
        ):
            with self.subTest(fault):
                shutil.rmtree(self.folder, ignore_errors=True)
                text = json.dumps(session(five_hour=limit("SHARE"))).replace('"SHARE"', literal)
                self.line(text.encode())
                self.assertEqual(self.share(), fraction)

    def test_only_limits_are_written(self):
        five, seven = limit(20, 10**9), limit(40, 50 * HOUR)  # the first reset is absurd
        self.line(session(five_hour=five, seven_day=seven, spend_limit=limit(5)))
        self.assertEqual(self.reading(), {300: (0.2, None), 10080: (0.4, seven["resets_at"])})
        self.assertEqual(self.file.stat().st_mode & 0o777, 0o600)
        self.assertEqual(self.folder.stat().st_mode & 0o777, 0o700)
        self.assertNotIn("tokens", self.file.read_text())

    def test_input_without_limits_leaves_no_file(self):
        for fault, given in (
            ("null", dict(session(), rate_limits=None)),
            ("empty", session()),
            ("an array", dict(session(), rate_limits=[limit(30)])),
            ("a window of another kind", session(five_hour=30)),
            ("a window that is over", session(five_hour=limit(30, -60))),
            ("nothing at all", b""),
            ("half an object", encoded(session(five_hour=limit(30)))[:-9]),
            ("an array around it", [session(five_hour=limit(30))]),
            ("not UTF-8", b'{"cwd":"\xff"}'),
            ("deep nesting", b'{"a":' * 100000),
            ("three megabytes", b'{"a":"' + b"x" * 3000000),
        ):
            with self.subTest(fault):
                self.assertRegex(self.line(given), "^(Opus · shop|Claude Code)\n$")
                self.assertFalse(self.folder.exists())

    def test_which_reading_wins(self):
        for fault, stored, read, share in (
            ("a session repeats a former window", limit(5, 4 * HOUR), limit(90, HOUR), 0.05),
            ("a new window starts low", limit(90, HOUR), limit(5, 4 * HOUR), 0.05),
            ("an idle session repeats a lower share", limit(60), limit(50), 0.6),
            ("more use in the same window", limit(50), limit(60), 0.6),
            ("a rounded reset is no new window", limit(60, 7200), limit(50, 7201), 0.6),
            ("what is over says nothing", limit(90, -5), limit(3), 0.03),
            ("without a reset nothing says it holds", {"used_percentage": 9}, limit(3), 0.03),
            ("an unused window beside a running one", limit(30), {"used_percentage": 0}, 0.3),
            ("a stored absurd reset would stay for ever", limit(30, 10**7), limit(3), 0.03),
            ("a stored absurd share would stay for ever", limit(10**6), limit(3), 0.03),
        ):
            with self.subTest(fault):
                self.store(-5, five_hour=stored)
                self.line(session(five_hour=read))
                self.assertEqual(self.share(), share)

    def test_a_window_that_is_not_reported(self):
        for fault, stored, share in (
            ("stays while it runs", limit(40, 50 * HOUR), 0.4),
            ("goes when it is over", limit(40, -5), None),
            ("goes when its end is unknown", {"used_percentage": 40}, None),
        ):
            with self.subTest(fault):
                self.store(-5, five_hour=limit(10), seven_day=stored)
                self.line(session(five_hour=limit(20)))
                self.assertEqual((self.share(300), self.share(10080)), (0.2, share))

    def test_when_the_time_is_renewed(self):
        for fault, age, share, renewed in (
            ("not at every render", -100, 50, False),
            ("before the application would lose it", -400, 50, True),
            ("a clock that was set back", 400, 50, True),
            ("an older reading confirms nothing", -400, 40, False),
        ):
            with self.subTest(fault):
                stored = limit(50)
                self.store(age, five_hour=stored)
                before = self.file.read_bytes()
                self.line(session(five_hour=dict(stored, used_percentage=share)))
                self.assertEqual(self.file.read_bytes() != before, renewed)
                if renewed:
                    written = json.loads(self.file.read_text())["timestamp"]
                    self.assertLess(abs(time.time() - written), 15)


class FileTest(BridgeCase):
    def test_hostile_stored_files(self):
        def text(content):
            return lambda: self.file.write_text(content)

        for fault, place in (
            ("no JSON", text("{")),
            ("wrong types", text('{"timestamp":[],"rate_limits":{"five_hour":[],"seven_day":7}}')),
            ("deep nesting", text("[" * 100000)),
            ("huge", text('{"a":"' + "x" * 2000000 + '"}')),
            ("a FIFO without a writer", lambda: os.mkfifo(self.file)),
            ("rests of a killed run", lambda: Path(str(self.file) + ".new").write_text("{")),
        ):
            with self.subTest(fault):
                self.empty(self.folder)
                place()
                self.line(session(five_hour=limit(30)))
                self.assertEqual(self.share(), 0.3)
                self.assertEqual(os.listdir(self.folder), [self.file.name])

    def test_where_nothing_can_be_written_the_line_still_comes(self):
        def read_only():
            self.store(five_hour=limit(10))
            self.folder.chmod(0o500)
            self.addCleanup(self.folder.chmod, 0o700)

        for fault, prepare, hinder in (
            ("a folder in its place", self.file.mkdir, None),
            ("a full disk", lambda: self.store(five_hour=limit(10)), full_disk(20)),
            ("no permission", read_only, without_override),
        ):
            with self.subTest(fault):
                self.empty(self.folder)
                prepare()
                before = self.file.is_file() and self.file.read_bytes()
                line = self.line(session(five_hour=limit(30)), preexec_fn=hinder)
                self.assertRegex(line, "^Opus · shop · 5h 30% [12]h..m\n$")
                self.assertEqual(self.file.is_file() and self.file.read_bytes(), before)
                self.assertEqual(os.listdir(self.folder), [self.file.name])

    def test_fifty_at_once(self):
        readings = [limit(share) for share in range(1, 41)]
        readings += [limit(90, HOUR) for _ in range(10)]
        starts = readings[20:] + readings[:20]
        processes = [self.start(session(five_hour=reading)) for reading in starts]
        while any(process.poll() is None for process in processes):
            self.reading()  # fails on half a file
        self.assertTrue(all(process.returncode == 0 for process in processes))
        self.assertEqual(self.share(), 0.4)
        self.assertEqual(os.listdir(self.folder), [self.file.name])

    def test_a_lock_that_is_never_given_back(self):
        self.store(five_hour=limit(10))
        holder = os.open(self.folder, os.O_RDONLY)
        self.addCleanup(os.close, holder)
        fcntl.flock(holder, fcntl.LOCK_EX)
        begun = time.monotonic()
        self.line(session(five_hour=limit(30)))
        self.assertGreater(time.monotonic() - begun, 1.0)  # it was waited for, but not for ever
        self.assertEqual(self.share(), 0.3)
        self.assertEqual(os.listdir(self.folder), [self.file.name])


class LineTest(BridgeCase):
    def test_lines(self):
        hostile = {"model": {"display_name": "Op\x1b[31mus\x9b\r\n"}, "cwd": "/a/\x07b\u202ec/"}
        for fault, given, line in (
            ("both windows",
             session(five_hour=limit(23.2, 7830), seven_day=limit(41.00000000000001, 280000)),
             "Opus · shop · 5h 24% 2h10m · 7d 41% 3d\n"),
            ("the last minute", session(five_hour=limit(100, 30)), "Opus · shop · 5h 100% 1m\n"),
            ("no reset", session(five_hour={"used_percentage": 0}), "Opus · shop · 5h 0%\n"),
            ("escape sequences", hostile, "Op[31mus · bc\n"),
            ("half a character", b'{"model":{"id":"a\\ud800b"}}', "ab\n"),
            ("long names", {"model": {"id": "m" * 300}, "cwd": "/" + "é" * 300},
             "m" * 19 + "… · " + "é" * 19 + "…\n"),
            ("wrong types", {"model": [], "workspace": 3, "cwd": {}}, "Claude Code\n"),
        ):
            with self.subTest(fault):
                shutil.rmtree(self.folder, ignore_errors=True)
                self.assertEqual(self.line(given), line)

    def test_what_other_sessions_know_is_shown(self):
        self.store(five_hour=limit(60))
        self.assertIn("5h 60%", self.line(session()))
        self.assertIn("5h 60%", self.line(session(five_hour=limit(50))))

    def test_odd_surroundings(self):
        # No limits in these, since without HOME the file is in the real home folder; and none
        # must come from the folder in which the bridge happens to be started.
        self.store(five_hour=limit(999))
        for fault, home in (("unset", {}), ("relative", {"HOME": "."})):
            with self.subTest(fault):
                line = self.line(b"{}", env=dict(home, PATH=os.environ["PATH"]), cwd=self.home)
                self.assertRegex(line, "^Claude Code")
                self.assertNotIn("999%", line)
        self.file.unlink()
        self.assertEqual(self.line(b"", preexec_fn=lambda: os.close(0)), "Claude Code\n")
        reader_gone = self.start(session())
        reader_gone.stdout.close()
        self.assertEqual((reader_gone.wait(15), reader_gone.stderr.read()), (0, b""))

    def test_input_that_never_ends(self):
        process = self.start(stdin=subprocess.PIPE)
        process.stdin.write(encoded(session(five_hour=limit(30))))
        process.stdin.flush()
        self.assertEqual(process.wait(15), 0)
        self.assertIn(b"5h 30%", process.stdout.read())


class ChainTest(BridgeCase):
    def setUp(self):
        super().setUp()
        # A hanging command whose processes hold a pipe, so that the end of them all can be seen.
        pipe = self.home / "pipe"
        os.mkfifo(pipe)
        self.pipe = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, self.pipe)
        self.hanging = "exec 3>'%s'; echo up >&3; sleep 60 & sleep 60" % pipe

    def read_pipe(self):
        self.assertTrue(select.select([self.pipe], [], [], 10)[0], "something still runs")
        return os.read(self.pipe, 100)

    def test_outputs(self):
        own = "Opus · shop · 5h 30% 1h5.m\n"
        given = encoded(session(five_hour=limit(30, 2 * HOUR - 20)))
        given += b" " * 300000  # more than a pipe holds
        rows = (
            ("hangs", self.hanging, own),
            ("hangs after its line", "echo mine; sleep 60", "mine\n"),
            ("never stops printing", "yes", "y\n" * (1 << 19)),
            ("a helper holds its output", "sleep 60 & echo mine", "mine\n"),
            ("the same input", "cat", given.decode()),
            ("quotes and variables", "a=\"it's\"; printf \"$a\" '$a'", "it's"),
            ("input that it does not read", "echo mine", "mine\n"),
            ("printed nothing on purpose", "cat > /dev/null", ""),
            ("failed without a word", "exit 3", own),
            ("failed after its line", "echo mine; exit 3", "mine\n"),
            ("can still be told to end", "kill -TERM $$; echo late", own),
            ("only blanks", "  ", own),
        )
        processes = [self.start(given, "--chain", command) for _, command, _ in rows]
        self.assertEqual(self.read_pipe(), b"up\n")
        for (fault, _, output), process in zip(rows, processes):
            with self.subTest(fault):
                line = self.line_of(process)
                if output is own:
                    self.assertRegex(line, "^" + own + "$")
                else:
                    self.assertEqual(line, output)
        self.assertEqual(self.read_pipe(), b"")
        self.assertEqual(self.share(), 0.3)

    def test_an_overtaken_render_ends_its_command(self):
        process = self.start(b"", "--chain", self.hanging)
        self.assertEqual(self.read_pipe(), b"up\n")
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(15), 0)
        self.assertEqual(self.read_pipe(), b"")


class SettingsTest(BridgeCase):
    MINE = b'{"statusLine": {"type": "command", "command": "echo mine"}}'

    def setUp(self):
        super().setUp()
        self.settings.parent.mkdir()

    def command(self):
        return json.loads(self.settings.read_text())["statusLine"]["command"]

    def rendered(self):
        """The line that Claude Code gets from the command in the settings."""
        result = subprocess.run(
            self.command(), shell=True, input=encoded(session(five_hour=limit(30))),
            env=self.environment, stdout=subprocess.PIPE, timeout=15, check=True,
        )
        return result.stdout.decode()

    def listing(self):
        return sorted(path.name for path in self.settings.parent.iterdir())

    def refused(self, **options):
        code, output, errors = self.run_action("--install", **options)
        self.assertEqual((code, output), (1, ""))
        self.assertRegex(errors, r"^~/\.claude/settings\.json is left as it is: [^\n]+\n$")
        self.assertEqual(self.listing(), ["settings.json"])

    def test_there_and_back(self):
        status_line = '"statusLine": {"padding": 0, "type": "command", "command": "%s"}'
        for fault, text in (
            ("two blanks", '{\n  "model": "opus",\n  "env": {"A": "1"}\n}\n'),
            ("Windows line ends", '{\r\n    "z": 1,\r\n    "a": 2\r\n}\r\n'),
            ("one line", '{"z":1, "a":{}}'),
            ("no members", "{}"),
            ("what parsing would lose", '{"n": 123456789012345678.90, "m": 1e400, "a": 1, "a": 2}'),
            ("other letters", '{\n  "言語": "日本語 é"\n}\n'),
            ("escaped letters", '{\n  "a": "\\u65e5\\u672c \\ud83d\\ude00 \\/"\n}\n'),
            ("a statusLine inside another object", '{"x": {"statusLine": {"command": "echo"}}}'),
            ("a command", '{\n "a": 1, ' + status_line % "echo 'it is' mine" + ',\n "b": 2 }'),
            ("a quoting command", "{" + status_line % 'echo \\"mine\\" | sed s/x/\'$y\'/' + "}"),
            ("a command in escapes", "{" + status_line % "echo mine # \\u65e5" + "}"),
            ("a command of lines", "{" + status_line % "echo mine\\nexit 0" + "}"),
            ("an empty command", "{" + status_line % "" + "}"),
        ):
            with self.subTest(fault):
                self.empty(self.settings.parent)
                original = text.encode()
                self.settings.write_bytes(original)
                self.settings.chmod(0o640)
                before = json.loads(text)

                self.assertEqual(self.run_action("--install")[0], 0)
                installed = self.settings.read_bytes()
                after = json.loads(installed)
                after.setdefault("statusLine", None)
                self.assertEqual(list(after), list({**before, "statusLine": None}))
                for name in set(before) - {"statusLine"}:
                    self.assertEqual(repr(after[name]), repr(before[name]))
                self.assertEqual(installed.isascii(), original.isascii())
                self.assertIn(installed.count(b"\r\n"), (0, installed.count(b"\n")))
                shows_theirs = before.get("statusLine", {}).get("command")
                self.assertIn("mine" if shows_theirs else "Opus · shop · 5h", self.rendered())
                backup = self.listing()[1]
                self.assertRegex(backup, r"^settings\.json\.before-tallyglass-20\d{6}-\d{6}$")
                self.assertEqual((self.settings.parent / backup).read_bytes(), original)

                code, output, _ = self.run_action("--install")
                self.assertEqual((code, output), (0, "Already installed; nothing changed.\n"))
                self.assertEqual(self.settings.read_bytes(), installed)
                self.assertEqual(self.listing(), ["settings.json", backup])

                self.assertEqual(self.run_action("--uninstall")[0], 0)
                self.assertEqual(self.settings.read_bytes(), original)
                self.assertEqual(self.settings.stat().st_mode & 0o777, 0o640)

    def test_files_that_are_refused(self):
        for fault, content in (
            ("comments", b'{\n  // mine\n  "a": 1\n}'),
            ("an array", b'[{"a": 1}]'),
            ("nothing", b""),
            ("two objects", b"{} {}"),
            ("no JSON number", b'{"a": NaN}'),
            ("not UTF-8", b'{"a": "\xe9"}'),
            ("deep nesting", b'{"a":' + b"[" * 100000 + b"]" * 100000 + b"}"),
            ("two statusLines", self.MINE[:-1] + b", " + self.MINE[1:]),
            ("statusLine is null", b'{"statusLine": null}'),
            ("statusLine without a command", b'{"statusLine": {"type": "command"}}'),
            ("a command of another type", b'{"statusLine": {"command": ["echo"]}}'),
            ("half a character in a command", b'{"statusLine": {"command": "\\ud800"}}'),
        ):
            with self.subTest(fault):
                self.settings.write_bytes(content)
                self.refused()
                self.assertEqual(self.settings.read_bytes(), content)

    def test_files_that_cannot_be_replaced(self):
        content = b'{"a": "' + b"x" * 500 + b'"}'
        for fault, mode, folder_mode, hinder in (
            ("no right to read", 0, 0o700, without_override),
            ("no right to write", 0o400, 0o700, without_override),
            ("no right to write the folder", 0o600, 0o500, without_override),
            ("a full disk", 0o600, 0o700, full_disk(520)),
        ):
            with self.subTest(fault):
                self.settings.write_bytes(content)
                self.settings.chmod(mode)
                self.settings.parent.chmod(folder_mode)
                self.refused(preexec_fn=hinder)
                self.settings.parent.chmod(0o700)
                self.assertEqual(self.settings.read_bytes(), content)
                self.settings.unlink()
        os.mkfifo(self.settings)  # that never gets a writer
        self.refused()

    def test_links_stay_links(self):
        for fault, content in (("to a file", b'{"a": 1}'), ("to nothing yet", None)):
            with self.subTest(fault):
                self.empty(self.settings.parent)
                target = self.home / (fault + ".json")
                if content:
                    target.write_bytes(content)
                self.settings.symlink_to(Path("..") / target.name)
                self.assertEqual(self.run_action("--install")[0], 0)
                self.assertTrue(self.settings.is_symlink())
                self.assertIn("Opus", self.rendered())
                self.assertEqual(self.run_action("--uninstall")[0], 0)
                self.assertEqual(target.read_bytes(), content or b"{}\n")

    def test_no_settings_yet(self):
        self.settings.parent.rmdir()
        self.assertEqual(self.run_action("--status")[1], "Not installed\n")
        self.assertEqual(self.run_action("--uninstall")[0], 0)
        self.assertFalse(self.settings.parent.exists())
        self.assertEqual(self.run_action("--install")[0], 0)
        self.assertEqual(self.run_action("--status"), (0, "Installed\n", ""))
        self.assertIn("Opus", self.rendered())

    def test_uninstall_keeps_what_the_user_did_meanwhile(self):
        self.settings.write_bytes(self.MINE)
        self.run_action("--install")
        shown = 'Installed, showing the output of "echo mine"\n'
        self.assertEqual(self.run_action("--status"), (0, shown, ""))
        changed = json.loads(self.settings.read_text())
        changed["statusLine"]["padding"] = 2
        changed["model"] = "opus"
        self.settings.write_bytes(encoded(changed))
        self.assertEqual(self.run_action("--uninstall")[0], 0)
        changed["statusLine"]["command"] = "echo mine"
        self.assertEqual(json.loads(self.settings.read_text()), changed)

    def test_an_entry_that_moved_to_the_front_is_removed(self):
        self.settings.write_bytes(b'{"a": 1}')
        self.run_action("--install")
        moved = {"statusLine": json.loads(self.settings.read_text())["statusLine"], "a": 1}
        self.settings.write_bytes(encoded(moved))
        self.assertEqual(self.run_action("--uninstall")[0], 0)
        self.assertEqual(self.settings.read_bytes(), b'{"a": 1}')

    def test_entries_that_are_not_ours_to_remove(self):
        self.run_action("--install")
        ours = self.command()
        for fault, command, code in (
            ("another command", "echo other", 0),
            ("a pipe behind ours", ours + " | cat", 1),
            ("ours within quotes", "sh -c " + json.dumps(ours), 1),
            ("a variable within ours", ours.replace(str(SCRIPT), '"$APPS"/' + SCRIPT.name), 1),
            ("unbalanced quotes", ours + " '", 1),
        ):
            with self.subTest(fault):
                content = encoded({"statusLine": {"type": "command", "command": command}})
                self.settings.write_bytes(content)
                self.assertEqual(self.run_action("--uninstall")[0], code)
                self.assertEqual(self.settings.read_bytes(), content)
                if code:
                    self.assertEqual(self.run_action("--install")[0], 0)
                    self.assertEqual(self.settings.read_bytes(), content)

    def test_a_script_that_moves_keeps_the_chain(self):
        self.settings.write_bytes(self.MINE)
        self.run_action("--install")
        moved = self.home / "Ada's \"new\" $apps" / SCRIPT.name
        moved.parent.mkdir()
        shutil.copy(SCRIPT, moved)
        self.assertIn("another place", self.run_action("--status", script=moved)[1])
        self.assertEqual(self.run_action("--install", script=moved)[0], 0)
        self.assertIn("new", self.command())
        self.assertEqual(self.rendered(), "mine\n")
        self.assertEqual(self.run_action("--uninstall", script=moved)[0], 0)
        self.assertEqual(self.settings.read_bytes(), self.MINE)

        renamed = moved.rename(self.home / "bridge.py")  # which the application would not know
        self.assertEqual(self.run_action("--install", script=renamed)[0], 1)
        self.assertEqual(self.settings.read_bytes(), self.MINE)

    def test_misuse(self):
        self.assertTrue(os.access(SCRIPT, os.X_OK))
        code, output, errors = self.run_action("--instal")
        self.assertEqual((code, output), (2, ""))
        self.assertIn("usage:", errors)


if __name__ == "__main__":
    unittest.main()
