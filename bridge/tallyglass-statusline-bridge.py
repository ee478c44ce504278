#!/usr/bin/env python3
"""Status line for Claude Code that also notes its rate limits for Tallyglass.

usage: tallyglass-statusline-bridge.py --install | --uninstall | --status | --help

  --install    make this Claude Code's status line; one that was there before keeps being shown
  --uninstall  put back what was there
  --status     tell in one line whether it is installed

Without these it is the status line: it reads what Claude Code writes to its standard input, notes
the limits and prints one line. With --chain COMMAND it prints what that command prints.
"""

from __future__ import annotations

import os
import sys
import time

# This program runs at every render of every terminal, so a module that a render does not always
# need is imported where it is used.

SCRIPT_NAME = "tallyglass-statusline-bridge.py"  # the application recognises the command by it
DATA_FOLDER = "Library/Application Support/Tallyglass"  # below the home folder, on every system
DATA_FILE = "statusline_rate_limits.json"
WINDOWS = (("five_hour", "5h", 300), ("seven_day", "7d", 10080))  # name, label, minutes

# Claude Code sends a few kilobytes and closes the pipe. Whoever sends more or never ends must
# neither fill the memory nor hold up the render. Files and a chained command's output have the
# same bound.
MOST_BYTES = 1 << 20
INPUT_SECONDS = 2.0
LOCK_SECONDS = 1.0
CHAIN_SECONDS = 4.0

MOST_SHARE = 1000  # percent; Claude Code has been seen to report a Unix time as the share
CLOCK_GRACE = 3600  # by how many seconds this computer's clock may be slow
SAME_RESET = 60  # resets of one window differ by rounding, those of two windows by hours
REFRESH_SECONDS = 300  # the application reads the file this often

LONGEST_NAME = 20  # keeps the whole line within eighty columns
PLAIN_LINE = "Claude Code"


# The reading


def read_bounded(descriptor: int, seconds: float) -> tuple[bytes, bool]:
    """Reads to the end of a pipe; the second value is false when a bound was met before it."""
    import select

    chunks, size = [], 0
    deadline = time.monotonic() + seconds
    while size < MOST_BYTES:
        remaining = max(0.0, deadline - time.monotonic())
        if not select.select([descriptor], [], [], remaining)[0]:
            return b"".join(chunks), False
        chunk = os.read(descriptor, min(65536, MOST_BYTES - size))
        if not chunk:
            return b"".join(chunks), True
        chunks.append(chunk)
        size += len(chunk)
    return b"".join(chunks), False


def parse_object(data: bytes) -> dict:
    """The JSON object in the data; an empty one for anything else."""
    import json

    try:
        value = json.loads(data)
    except (ValueError, RecursionError):
        return {}
    return value if isinstance(value, dict) else {}


def finite_number(value: object) -> int | float | None:
    # bool is a kind of int in Python but no number in JSON; no comparison is true of NaN.
    if isinstance(value, (int, float)) and not isinstance(value, bool):
        return value if -1e15 < value < 1e15 else None
    return None


def percentage(value: object) -> int | float | None:
    """A used share in percent, such that the application reads it as the same percent."""
    share = finite_number(value)
    if share is None:
        return None
    # 14 % arrives as 14.000000000000002, which would be rounded up to 15 for display.
    share = round(share, 3)
    if not 0 <= share <= MOST_SHARE:
        return None
    # The application takes a value below 1 for a fraction, so 0.4 would be 40 %. It rounds up for
    # display, where every sliver is 1 % anyway.
    if 0 < share < 1:
        return 1
    return int(share) if share == int(share) else share


def limits_in(container: object, now: int) -> dict[str, dict]:
    """The limits, by window, of a rate_limits object that still say something at this moment.

    Reads Claude Code's input and our own file alike. Other windows, among them spend_limit, have
    no length by which the application could place them.
    """
    limits: dict[str, dict] = {}
    if not isinstance(container, dict):
        return limits
    for name, _, minutes in WINDOWS:
        found = container.get(name)
        share = percentage(found.get("used_percentage")) if isinstance(found, dict) else None
        if share is None:
            continue
        limit = {"window": name, "window_minutes": minutes, "used_percentage": share}
        reset = int(finite_number(found.get("resets_at")) or 0)
        # An idle session goes on reporting a window that is over.
        if 0 < reset <= now:
            continue
        # A reset further off than the window is long is an error, and as the latest of all it
        # would keep every true one out. The share may be right all the same.
        if 0 < reset <= now + minutes * 60 + CLOCK_GRACE:
            limit["resets_at"] = reset
        limits[name] = limit
    return limits


def is_older(limit: dict, stored: dict) -> bool:
    """Whether a limit was observed before the stored one of the same window.

    Every session repeats its own last reading, so the order of arrival says nothing. Windows
    follow each other, and within one the share only grows.
    """
    # Without a reset there is nothing to tell that the stored limit still holds.
    if "resets_at" not in stored:
        return False
    if "resets_at" not in limit:
        return True
    later_by = limit["resets_at"] - stored["resets_at"]
    if abs(later_by) >= SAME_RESET:
        return later_by < 0
    return limit["used_percentage"] < stored["used_percentage"]


# Files


def home_folder() -> str:
    home = os.environ.get("HOME", "")
    if not os.path.isabs(home):
        import pwd

        home = pwd.getpwuid(os.getuid()).pw_dir
    return home


def read_file(path: str) -> bytes:
    """Raises OSError also for what is no regular file or too large."""
    import stat

    # Opening a FIFO without this flag would wait for a writer.
    descriptor = os.open(path, os.O_RDONLY | os.O_NONBLOCK)
    try:
        if not stat.S_ISREG(os.fstat(descriptor).st_mode):
            raise OSError("%s is not a regular file" % path)
        data, ended = read_bounded(descriptor, INPUT_SECONDS)
    finally:
        os.close(descriptor)
    if not ended:
        raise OSError("%s is too large" % path)
    return data


def write_new_file(path: str, data: bytes, like: os.stat_result | None = None) -> None:
    """Writes a file that does not exist, with the owner and mode of another if that is given.

    Nothing stays behind when it fails.
    """
    descriptor = os.open(path, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600)
    try:
        with open(descriptor, "wb") as file:
            file.write(data)
            if like:
                created = os.fstat(descriptor)
                if (created.st_uid, created.st_gid) != (like.st_uid, like.st_gid):
                    os.fchown(descriptor, like.st_uid, like.st_gid)
                os.fchmod(descriptor, like.st_mode & 0o7777)
                file.flush()
                os.fsync(descriptor)
    except BaseException:
        os.unlink(path)
        raise


def acquire(descriptor: int) -> bool:
    """Locks an open folder until it is closed. False when others hold it for too long."""
    import fcntl

    deadline = time.monotonic() + LOCK_SECONDS
    while True:
        try:
            fcntl.flock(descriptor, fcntl.LOCK_EX | fcntl.LOCK_NB)
            return True
        except BlockingIOError:
            if time.monotonic() >= deadline:
                return False
            time.sleep(0.002)
        except OSError:  # some network file systems have no locks
            return False


def note_limits(limits: dict[str, dict], now: int) -> dict[str, dict]:
    """Brings the file up to date and returns what is known now from this and other sessions."""
    import json

    folder = os.path.join(home_folder(), DATA_FOLDER)
    if limits:  # users without limits get no folder
        os.makedirs(folder, mode=0o700, exist_ok=True)
    # Locking the folder itself needs no lock file, and the data file is replaced at each writing.
    lock = os.open(folder, os.O_RDONLY)
    try:
        locked = acquire(lock)
        path = os.path.join(folder, DATA_FILE)
        try:
            document = parse_object(read_file(path))
        except OSError:
            document = {}
        stored = limits_in(document.get("rate_limits"), now)
        accepted = {
            name: limit
            for name, limit in limits.items()
            if name not in stored or not is_older(limit, stored[name])
        }
        # The one timestamp in the file will also be that of a window this reading lacks. A limit
        # stays true, as the least that is used, until its reset, and no longer; so one without a
        # reset is not carried along.
        known = {name: limit for name, limit in stored.items() if "resets_at" in limit}
        known.update(accepted)

        # The timestamp decides whether the application still sees the reading in its window, so a
        # repeated reading is worth a new one, but no more often than the application looks. A
        # timestamp in the future, left by a clock that was set back, would hide the reading.
        written = finite_number(document.get("timestamp")) or 0
        is_recent = now - REFRESH_SECONDS < written <= now
        if accepted and not (is_recent and document.get("rate_limits") == known):
            text = json.dumps({"timestamp": now, "rate_limits": known}, indent=1) + "\n"
            # One fixed name, so that killed runs leave at most one such file. Without the lock,
            # which only keeps the order of simultaneous writers, each needs a name of its own.
            temporary = path + (".new" if locked else ".new-%d" % os.getpid())
            if os.path.lexists(temporary):
                os.unlink(temporary)
            write_new_file(temporary, text.encode())
            try:
                os.replace(temporary, path)
            except OSError:
                os.unlink(temporary)
                raise
        return known
    finally:
        os.close(lock)


# The line


def text_in(value: object, *names: str) -> str:
    """The string at the end of this path of members, or an empty one."""
    for name in names:
        value = value.get(name) if isinstance(value, dict) else None
    return value if isinstance(value, str) else ""


def printable(text: str) -> str:
    """One short piece of plain text: a folder's name must not steer the terminal."""
    kept = "".join(character for character in text[:200] if character.isprintable()).strip()
    return kept if len(kept) <= LONGEST_NAME else kept[: LONGEST_NAME - 1] + "…"


def time_left(seconds: int) -> str:
    if seconds >= 86400:
        return "%dd" % (seconds // 86400)
    if seconds >= 3600:
        return "%dh%02dm" % (seconds // 3600, seconds % 3600 // 60)
    return "%dm" % max(1, seconds // 60)


def status_line(session: dict, limits: dict[str, dict], now: int) -> str:
    """For instance "Opus · myproject · 5h 24% 2h10m · 7d 41% 3d"."""
    model = text_in(session, "model", "display_name") or text_in(session, "model", "id")
    folder = text_in(session, "workspace", "current_dir") or text_in(session, "cwd")
    parts = [printable(model) or PLAIN_LINE]
    parts.append(printable(folder.rstrip("/").rpartition("/")[2]))
    for name, label, _ in WINDOWS:
        if name in limits:
            # Rounded up, as in the application's panel.
            text = "%s %d%%" % (label, -(-limits[name]["used_percentage"] // 1))
            if "resets_at" in limits[name]:
                text += " " + time_left(limits[name]["resets_at"] - now)
            parts.append(text)
    return " · ".join(part for part in parts if part)


def run_chained(command: str, data: bytes) -> bytes | None:
    """What the user's own command prints; None when it fails or hangs without printing anything."""
    import signal
    import subprocess
    import threading

    # Claude Code ends a render that a newer one overtakes. Until that can be passed on, it waits.
    endings = (signal.SIGTERM, signal.SIGHUP, signal.SIGINT)
    signal.pthread_sigmask(signal.SIG_BLOCK, endings)

    def begin() -> None:
        # A process group of its own, so that whatever the command starts can be ended with it. Not
        # a session of its own: commands ask /dev/tty how wide the terminal is.
        os.setpgrp()
        signal.pthread_sigmask(signal.SIG_UNBLOCK, endings)

    child = subprocess.Popen(
        command,
        shell=True,
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
        preexec_fn=begin,
    )

    def kill() -> None:
        try:
            os.killpg(child.pid, signal.SIGKILL)
        except OSError:  # gone, or beyond our rights
            pass

    def stop(*_: object) -> None:
        kill()
        os._exit(0)

    for number in endings:
        signal.signal(number, stop)
    signal.pthread_sigmask(signal.SIG_UNBLOCK, endings)

    def feed() -> None:
        try:
            child.stdin.write(data)
            child.stdin.close()
        except OSError:  # it does not want to read, which is its right
            pass

    deadline = time.monotonic() + CHAIN_SECONDS
    # A command may print before it reads, so writing must not wait for reading.
    threading.Thread(target=feed, daemon=True).start()
    output, ended = read_bounded(child.stdout.fileno(), CHAIN_SECONDS)
    try:
        if ended and child.wait(max(0.0, deadline - time.monotonic())) == 0:
            return output
    except subprocess.TimeoutExpired:
        ended = False
    if not ended:
        kill()
    return output or None


def render(chained: str) -> None:
    """Prints the line and ends the program with status 0, whatever happens: it never returns."""
    data, line = b"", PLAIN_LINE.encode() + b"\n"
    try:
        now = int(time.time())
        data, _ = read_bounded(0, INPUT_SECONDS)
        session = parse_object(data)
        limits = limits_in(session.get("rate_limits"), now)
        try:
            limits = note_limits(limits, now)
        except (OSError, KeyError):  # no folder, no place or no home: still show this reading
            pass
        line = status_line(session, limits, now).encode() + b"\n"
    except Exception:
        pass  # a status line has no one to tell
    try:
        # A blank command shows nothing, so there is nothing to keep.
        if chained.strip():
            printed = run_chained(chained, data)
            line = line if printed is None else printed
    except Exception:
        pass
    try:
        sys.stdout.buffer.write(line)
        sys.stdout.buffer.flush()
    except Exception:
        pass
    # Leaving the ordinary way would flush again and complain about a pipe that Claude Code closed.
    os._exit(0)


# Claude Code's settings. They are edited as text, because reading and writing them as JSON would
# lose the user's indentation, escapes and the last digits of numbers.


class Refusal(Exception):
    """Why nothing was changed, in words for the user."""


class Member:
    """Where a member of a JSON object stands in its text."""

    def __init__(self, name: str, start: int, value_start: int, end: int):
        self.name, self.start, self.value_start, self.end = name, start, value_start, end


def members_of(text: str, start: int) -> list[Member]:
    """The members of the object that begins at this place of a valid JSON text."""
    import json
    import re

    blank = re.compile(r"[ \t\r\n]*")
    decoder = json.JSONDecoder(parse_int=str, parse_float=str)
    members: list[Member] = []
    position = blank.match(text, start + 1).end()
    while text[position] != "}":
        if text[position] == ",":
            position = blank.match(text, position + 1).end()
        name, colon = decoder.raw_decode(text, position)
        colon = blank.match(text, colon).end()
        value_start = blank.match(text, colon + 1).end()
        end = decoder.raw_decode(text, value_start)[1]
        members.append(Member(name, position, value_start, end))
        position = blank.match(text, end).end()
    return members


def only_member(members: list[Member], name: str) -> Member | None:
    found = [member for member in members if member.name == name]
    if len(found) > 1:
        raise Refusal('"%s" stands in it twice' % name)
    return found[0] if found else None


class Settings:
    """Claude Code's settings file, and the command in its statusLine."""

    def __init__(self) -> None:
        self.path = os.path.join(home_folder(), ".claude", "settings.json")
        self.target = os.path.realpath(self.path)  # a link stays a link
        self.attributes: os.stat_result | None = None
        self.original = b""
        self.mark = b""  # some editors' byte order mark, which stays
        self.text = "{}\n"
        try:
            self.original = read_file(self.target)
            self.attributes = os.stat(self.target)
        except FileNotFoundError:
            pass
        if self.original.startswith(b"\xef\xbb\xbf"):
            self.mark = self.original[:3]
        if self.original[len(self.mark) :].strip():  # a blank file counts as none
            self.text = self._checked_text()
        self.start = self.text.index("{")
        self.members = members_of(self.text, self.start)
        self.entry = only_member(self.members, "statusLine")
        self.command_member: Member | None = None
        self.command = ""
        if self.entry:
            self._find_command()

    def _checked_text(self) -> str:
        import json

        def refuse(constant: str) -> None:
            raise ValueError("%s is not JSON" % constant)

        try:
            text = self.original[len(self.mark) :].decode()
            value = json.loads(text, parse_int=str, parse_float=str, parse_constant=refuse)
        except (ValueError, RecursionError) as error:
            raise Refusal("it is not valid JSON (%s)" % error)
        if not isinstance(value, dict):
            raise Refusal("it is not a JSON object")
        return text

    def _find_command(self) -> None:
        import json

        if self.text[self.entry.value_start] == "{":
            members = members_of(self.text, self.entry.value_start)
            self.command_member = only_member(members, "command")
        if not self.command_member or self.text[self.command_member.value_start] != '"':
            raise Refusal("its statusLine has no command; remove or complete it first")
        self.command = json.loads(self._literal())

    def _literal(self) -> str:
        return self.text[self.command_member.value_start : self.command_member.end]

    def _quoted(self, text: str) -> str:
        import json

        # A file that keeps to ASCII, as some programs write it, goes on doing so.
        return json.dumps(text, ensure_ascii=self.text.isascii())

    def with_command(self, command: str) -> str:
        """The text with another command in the statusLine it has."""
        place = self.command_member
        return self.text[: place.value_start] + self._quoted(command) + self.text[place.end :]

    def with_entry(self, command: str) -> str:
        """The text with a statusLine added behind its last member."""
        last = self.members[-1].end if self.members else self.start + 1
        gap = self.text[self.start + 1 : self.members[0].start] if self.members else "\n  "
        before, newline, indent = gap.rpartition("\n")
        if newline:
            gap = ("\r\n" if before.endswith("\r") else "\n") + indent
            inner, outer = gap + indent, gap
        else:
            gap, inner, outer = " ", "", ""
        type_and_command = '"type": "command",%s"command": %s' % (
            inner or " ",
            self._quoted(command),
        )
        entry = '"statusLine": {%s%s%s}' % (inner, type_and_command, outer)
        if self.members:
            return self.text[:last] + "," + gap + entry + self.text[last:]
        end = self.text.index("}", last)
        return self.text[:last] + gap + entry + "\n" + self.text[end:]

    def without_entry(self) -> str:
        place = self.members.index(self.entry)
        if place > 0:
            start, end = self.members[place - 1].end, self.entry.end
        elif len(self.members) > 1:
            start, end = self.entry.start, self.members[1].start
        else:
            start, end = self.start + 1, self.text.index("}", self.entry.end)
        return self.text[:start] + self.text[end:]

    def save(self, text: str) -> str:
        """Replaces the file in one step and returns the path of a copy of the old one, if any."""
        # Replacing a file needs no right to write it, but its owner must have meant something.
        if self.attributes and not os.access(self.target, os.W_OK):
            raise Refusal("it is read-only")
        os.makedirs(os.path.dirname(self.target), mode=0o700, exist_ok=True)
        # Not ".json": the application reads every such file in Claude Code's folder.
        temporary = "%s.tallyglass-%d" % (self.target, os.getpid())
        write_new_file(temporary, self.mark + text.encode(), self.attributes)
        try:
            backup = self._back_up() if self.attributes else ""
            os.replace(temporary, self.target)
        except BaseException:
            os.unlink(temporary)
            raise
        return backup

    def _back_up(self) -> str:
        stem = self.path + time.strftime(".before-tallyglass-%Y%m%d-%H%M%S")
        path, count = stem, 1
        while os.path.lexists(path):
            count += 1
            path = "%s-%d" % (stem, count)
        write_new_file(path, self.original)
        return path


def interpreter() -> str:
    """The Python that runs this, by the name that is likeliest to outlast its next upgrade."""
    for path in ("/opt/homebrew/bin/python3", "/usr/local/bin/python3", "/usr/bin/python3"):
        if os.path.realpath(path) == os.path.realpath(sys.executable):
            return path
    return sys.executable


def own_command(chained: str | None) -> str:
    import shlex

    script = os.path.abspath(__file__)
    if os.path.basename(script) != SCRIPT_NAME:
        raise Refusal("the application knows this script only as %s; rename it" % SCRIPT_NAME)
    # Isolated and without site packages: starts in half the time, and no module lying about in the
    # script's folder or in PYTHONPATH takes the place of Python's own.
    words = [interpreter(), "-IS", script]
    if chained is not None:
        words += ["--chain", chained]
    return " ".join(shlex.quote(word) for word in words)


def parse_own_command(command: str) -> tuple[bool, str | None]:
    """Whether a command has the form that own_command gives it, and the command chained in it."""
    import shlex

    try:
        words = shlex.split(command)
    except ValueError:
        return False, None
    if len(words) not in (3, 5) or words[1] != "-IS" or os.path.basename(words[2]) != SCRIPT_NAME:
        return False, None
    if len(words) == 5 and words[3] != "--chain":
        return False, None
    # A redirection or variable that the user added survives the splitting, but not this.
    if " ".join(shlex.quote(word) for word in words) != command:
        return False, None
    return True, words[4] if len(words) == 5 else None


def backup_note(backup: str) -> str:
    return " The former file is %s." % backup if backup else ""


def install() -> str:
    settings = Settings()
    is_ours, chained = parse_own_command(settings.command)
    if SCRIPT_NAME in settings.command and not is_ours:
        return "Already installed, as part of a command of your own; nothing changed."
    if settings.entry and not is_ours:
        chained = settings.command
    command = own_command(chained)
    command.encode()  # fails, before anything is changed, for a path that JSON cannot hold
    if command == settings.command:
        return "Already installed; nothing changed."
    text = settings.with_command(command) if settings.entry else settings.with_entry(command)
    backup = settings.save(text)
    shown = "Your own status line stays." if chained else "Undo it with --uninstall."
    note = "Installed in %s. %s%s" % (settings.path, shown, backup_note(backup))
    if os.environ.get("CLAUDE_CONFIG_DIR"):
        note += "\nCLAUDE_CONFIG_DIR is set: Claude Code reads other settings while it is."
    return note


def uninstall() -> str:
    settings = Settings()
    is_ours, chained = parse_own_command(settings.command)
    if SCRIPT_NAME in settings.command and not is_ours:
        raise Refusal("its statusLine command was changed by hand; edit it there")
    if not is_ours:
        return "Not installed; nothing changed."
    text = settings.without_entry() if chained is None else settings.with_command(chained)
    backup = settings.save(text)
    return "Removed from %s.%s" % (settings.path, backup_note(backup))


def status() -> str:
    import json

    settings = Settings()
    is_ours, chained = parse_own_command(settings.command)
    if is_ours and settings.command != own_command(chained):
        return "Installed from another place; --install renews it"
    if is_ours and chained is not None:
        return "Installed, showing the output of %s" % json.dumps(chained)
    if is_ours:
        return "Installed"
    if SCRIPT_NAME in settings.command:
        return "Installed, as part of a command of your own"
    return "Not installed"


def main() -> None:
    arguments = sys.argv[1:]
    if not arguments:
        render("")
    if len(arguments) == 2 and arguments[0] == "--chain":
        render(arguments[1])
    actions = {"--install": install, "--uninstall": uninstall, "--status": status}
    if arguments == ["--help"]:
        print(__doc__.strip())
    elif len(arguments) == 1 and arguments[0] in actions:
        sys.stdout.reconfigure(errors="backslashreplace")
        try:
            print(actions[arguments[0]]())
        except Refusal as refusal:
            sys.exit("~/.claude/settings.json is left as it is: %s." % refusal)
        except (OSError, KeyError, ValueError) as error:
            sys.exit("~/.claude/settings.json is left as it is: %s" % error)
    else:
        print(__doc__.strip(), file=sys.stderr)
        sys.exit(2)


if __name__ == "__main__":
    main()
