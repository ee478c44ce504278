#!/usr/bin/env python3
"""Runs commands in turn and prints, as JSON, what each run took: wall seconds, processor seconds and
peak resident memory in bytes.

    measure.py RUNS < commands.json     [["cat", "a", "b"], ["tallyglass", "report"]]

A program of its own that imports next to nothing: a child's peak memory begins with that of the process
which started it. So figures below this interpreter's own (about 10 MiB) cannot be told.
"""

import json
import os
import sys
import time


def measure(command):
    silence = [(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0)]
    start = time.perf_counter()
    child = os.posix_spawnp(command[0], command, os.environ, file_actions=silence)
    _, status, usage = os.wait4(child, 0)
    wall = time.perf_counter() - start
    if status != 0:
        sys.exit(f"{command[0]} ended with status {status}")
    unit = 1 if sys.platform == "darwin" else 1024
    return {"wall": wall, "processor": usage.ru_utime + usage.ru_stime, "peak": usage.ru_maxrss * unit}


commands = json.load(sys.stdin)
# In turn, so that a disturbance of the machine meets all of them alike.
rounds = [[measure(command) for command in commands] for _ in range(int(sys.argv[1]))]
json.dump(list(zip(*rounds)), sys.stdout)
