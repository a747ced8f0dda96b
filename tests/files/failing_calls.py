#!/usr/bin/env python3
"""Saves everything that can be saved, over and over, with another call going wrong each time.

failing_calls.py TAVORA SAVE_ONCE PRELOADED SCENE

Whatever goes wrong, the folder afterwards holds what it held before or what a good run leaves,
and nothing else; the exit status and one line say what became of it.
"""
import errno
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

TAVORA, SAVE_ONCE, PRELOADED, SCENE = (os.path.realpath(path) for path in sys.argv[1:5])
RENDER = ["render", SCENE, "-r", "16x9", "-s", "1", "-t", "1", "--no-shader", "-o"]
# The command, and what stands there before; s.gltf is the scene.
SAVES = {
    "new picture": ([TAVORA, *RENDER, "a.png"], []),
    "picture": ([TAVORA, *RENDER, "a.exr"], ["a.exr"]),
    "settings": ([TAVORA, "settings", SCENE, "--look", "noir", "-o", "a.gltf"], []),
    "settings in place": ([TAVORA, "settings", "s.gltf", "--look", "noir", "-o", "s.gltf"],
                          ["s.gltf"]),
    "scene of the window": ([SAVE_ONCE, "scene", "s.gltf", ""], ["s.gltf"]),
    "look": ([SAVE_ONCE, "look", SCENE, "a.json"], ["a.json"]),
    "new defaults": ([SAVE_ONCE, "defaults", SCENE, "new/tavo.default"], []),
    "defaults": ([SAVE_ONCE, "defaults", SCENE, "tavo.default"], ["tavo.default"]),
    "recovery": ([SAVE_ONCE, "recovery", SCENE, ""], []),
}
# How a file comes to its name: on disk before it has it, compared, its folder on disk after.
ORDER = re.compile("create flock (fchmod )?(write )+fsync (pread )+close rename open fsync ")
SIGNALS = [signal.SIGTERM, signal.SIGINT, signal.SIGQUIT, signal.SIGHUP]


def start(command, folder, **settings):
    environment = os.environ | {"LD_PRELOAD": PRELOADED, "XDG_STATE_HOME": str(folder),
                                "TAVORA_DEFAULTS": "/nowhere"}
    environment |= {f"FAILING_CALLS_{key}": str(value) for key, value in settings.items()}
    return subprocess.run(command, cwd=folder, env=environment, timeout=100, check=False, text=True,
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)


def contents(folder):
    """By name, but for the time of writing; locks tell nothing about what was saved."""
    return {str(file.relative_to(folder)): re.sub(rb'"time": "[^"]*"', b"", file.read_bytes())
            for file in folder.rglob("*") if file.is_file() and file.suffix != ".lock"}


class Save:
    def __init__(self, name, top):
        self.name, self.top = name, top
        self.command, self.there = SAVES[name]
        folder = self.prepare()
        log = top / f"{name}.log"
        self.before = contents(folder)
        ended = start(self.command, folder, BELOW=folder, LOG=log)
        self.after = contents(folder)
        self.calls = log.read_text().replace(str(folder), "").splitlines()
        order = "".join(call.split(" ")[0] + " " for call in self.calls)
        if ended.returncode != 0 or self.after == self.before or not ORDER.search(order):
            raise SystemExit(f"{name}: is not saved, or not in order: {ended} {self.calls}")

    def prepare(self):
        folder = Path(tempfile.mkdtemp(dir=self.top))
        for name in self.there:
            shutil.copy(SCENE, folder / name)
        return folder

    def faults(self):
        """Which call goes wrong in what way, and the exit status and contents that may follow."""
        renamed = 1 + max(i for i, call in enumerate(self.calls) if call.startswith("rename"))
        for at, call in enumerate(self.calls, 1):
            name, _, file = call.partition(" ")
            if ".lock" in file:
                continue
            is_put = self.after if at > renamed else self.before
            # Nobody loses anything where a lock is refused, or when closing fails that was only
            # read or is in place already.
            harmless = name == "flock" or name == "close" and not file.endswith(".tmp")
            refused = (0, [self.after]) if harmless else (4, [is_put])
            if name in ("open", "pread") and file == "/s.gltf":
                refused = (3, [is_put])
            yield at, errno.ENOSPC if name == "write" else errno.EIO, *refused
            if name != "rename":
                yield at, errno.EINTR, 0, [self.after]
            if name in ("write", "pread"):
                yield at, "short", 0, [self.after]
            if name == "pread" and file.endswith(".tmp"):
                yield at, "other", 4, [self.before]
            yield at, -signal.SIGKILL, -signal.SIGKILL, [is_put]
            if self.command[0] == TAVORA:
                sent = SIGNALS[at % len(SIGNALS)]
                yield at, -sent, 128 + sent, [is_put]

    def check(self, at, how, status, allowed):
        """What is wrong after this fault, or None."""
        folder = self.prepare()
        ended = start(self.command, folder, BELOW=folder, AT=at, HOW=how)
        left = contents(folder)
        killed = how == -signal.SIGKILL
        if killed:
            left = {name: text for name, text in left.items() if not name.endswith(".tmp")}
            start(self.command, folder)
        good = (ended.returncode == status and left in allowed and
                ended.stderr.count("\n") == (0 if status == 0 or killed else 1) and
                ("nothing was written" not in ended.stderr or left == self.before) and
                not list(folder.rglob("*.tmp")) and
                (not killed or contents(folder) | self.after == contents(folder)))
        found = sorted(contents(folder))
        shutil.rmtree(folder)
        if good:
            return None
        return (f"{self.name}: {how} at call {at} ({self.calls[at - 1]}): status "
                f"{ended.returncode}, not {status}; {found}; {ended.stderr}")


def refusals():
    """What is wrong where the machine gives no more threads, or little memory."""
    render = [TAVORA, "render", SCENE, "-r", "64x36", "-s", "1", "-t", "4", "-o", "-"]
    sanitized = b"__asan_init" in Path(TAVORA).read_bytes()
    runs = [(f"thread {at}", "no thread", start(render, "/", THREAD=at))
            for at in range(1, 5)]
    for megabytes in [] if sanitized else range(60, 240, 9):
        limited = ["prlimit", f"--as={megabytes}000000", *render]
        runs.append((f"{megabytes} MB", "memory|thread", start(limited, "/")))
    failed = [run for run in runs if run[2].returncode != 0]
    if len(failed) < (3 if sanitized else 8):
        return [f"only {len(failed)} runs failed for want of threads or memory"]
    return [f"{what}: status {ended.returncode}: {ended.stderr}" for what, text, ended in failed
            if not (ended.returncode == 1 and re.fullmatch(f"tavora: .*({text}).*\n",
                                                           ended.stderr)
                    or "loading shared libraries" in ended.stderr)]


def main():
    with tempfile.TemporaryDirectory() as top, ThreadPoolExecutor() as pool:
        saves = [Save(name, Path(os.path.realpath(top))) for name in SAVES]
        runs = [pool.submit(save.check, *fault) for save in saves for fault in save.faults()]
        wrong = refusals() + [run.result() for run in runs if run.result() is not None]
    print("\n".join(wrong))
    print(f"{len(runs)} runs, {len(wrong)} of them wrong")
    return 1 if wrong else 0


sys.exit(main())
