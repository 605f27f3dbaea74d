#!/usr/bin/env python3
"""Runs import-host where it is hard to run: closed standard streams, readers that go away, too little memory, too few
descriptors, files that must not grow, several imports at once, and imports that are killed. Whatever happens, it ends
by itself, says one line when it fails, and leaves the old state or the new one.

Usage: Scripts/hostile.py BUILD_FOLDER; short, unless IMPORTCOMMON_FULL_TESTS is set.
"""
import itertools
import json
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

root = pathlib.Path(__file__).resolve().parent.parent
build = pathlib.Path(sys.argv[1]).resolve()
host = build / "bin/import-host"
is_full = "IMPORTCOMMON_FULL_TESTS" in os.environ
old_model = root / "Examples/Models/house.ifc"
new_model = root / "Examples/Models/house-revised.ifc"
folder = pathlib.Path(tempfile.mkdtemp(prefix="hostile-"))
state = folder / "state"
report = folder / "report.json"
longest = 120  # seconds after which a run counts as one that hangs
counts = {}


def fail(what, detail=""):
    sys.exit(f"hostile: {what}\n{detail}")


def objects():
    """The state without the line that names model and time."""
    lines = (state / "objects.state").read_bytes().splitlines()
    return b"\n".join(line for line in lines if not line.startswith((b"model\t", b"end ")))


def errors_of(text):
    """Lines on the standard error stream that are neither progress nor a warning."""
    lines = text.decode("utf-8", "replace").splitlines()
    return [line for line in lines if line and not re.match(r" *\d+ % |warning: ", line)]


def run(arguments, prepare=None, **streams):
    command = [host, *arguments]
    streams = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, "stderr": subprocess.PIPE, **streams}
    process = subprocess.Popen(command, cwd=folder, preexec_fn=prepare, **streams)
    try:
        errors = process.communicate(timeout=longest)[1] or b""
    except subprocess.TimeoutExpired:
        process.kill()
        fail("hangs", " ".join(map(str, command)))
    return process.returncode, errors


def imported(model, *options):
    return ["--state", state, *options, model]


def must(result, what):
    if result[0] != 0:
        fail(what, result[1].decode("utf-8", "replace"))


def check(name, result, wanted=(0, 1)):
    """A run that ends with one of the wanted codes, and says one line if it fails; the state is the old or the new one."""
    code, errors = result
    lines = errors_of(errors)
    if code not in wanted:
        fail(f"{name}: ends with {code}", errors.decode("utf-8", "replace"))
    # Behind the line may stand what the plug-in itself had to say.
    if code == 1 and [line.startswith("import-host: ") for line in lines].count(True) != 1:
        fail(f"{name}: not one line", errors.decode("utf-8", "replace"))
    if code == 1 and not lines[0].startswith("import-host: "):
        fail(f"{name}: the line is not the first", errors.decode("utf-8", "replace"))
    if objects() not in states:
        fail(f"{name}: the state is neither the old nor the new one", errors.decode("utf-8", "replace"))
    counts.setdefault(name.split(" ")[0], []).append(code)


def restore():
    """Back to the old state, and nothing left over beside it."""
    must(run(imported(old_model)), "the state can't be used any more")
    left = [entry.name for entry in state.iterdir() if entry.name not in ("objects.state", "output")]
    if left or objects() != states[0]:
        fail("the state is not as it was", str(left))


def closed_streams():
    for closed in itertools.product((False, True), repeat=3):
        def prepare():
            for number, is_closed in enumerate(closed):
                if is_closed:
                    os.close(number)
        name = "closed " + "".join(str(n) for n, is_closed in enumerate(closed) if is_closed)
        for arguments in (imported(new_model, "--report", report), ["--list", state], ["--help"]):
            # Without a pipe: with one, reading would end only with the last process that has it.
            check(name, run(arguments, prepare, stderr=subprocess.DEVNULL), (0,))
        if objects() != states[1]:
            fail(f"{name}: nothing was imported")
        restore()


def readers_that_go_away():
    for stream in ("stdout", "stderr"):
        for arguments in (imported(new_model), imported(new_model, "--report", "-"), ["--list", state]):
            reading, writing = os.pipe()
            os.close(reading)
            check("unread", run(arguments, **{stream: writing}), (0, -signal.SIGPIPE))
            os.close(writing)
        if objects() != states[1]:
            fail("an import depends on who reads its output")
        restore()


def limits():
    def limited(what, value):
        return lambda: resource.setrlimit(what, (value, value))
    steps = {
        "memory": (resource.RLIMIT_AS, [n << 18 for n in range(16, 480, 1 if is_full else 24)]),
        "descriptors": (resource.RLIMIT_NOFILE, range(3, 64, 1 if is_full else 5)),
        "filesize": (resource.RLIMIT_FSIZE, range(0, 120_000, 400 if is_full else 8000)),
    }
    for name, (what, values) in steps.items():
        for value in values:
            result = run(imported(new_model, "--report", report), limited(what, value))
            if result[0] == 127 or (result[0] < 0 and result[1] == b""):
                continue  # the system could not even load the program
            check(f"{name} {value}", result)
            if result[0] == 0:
                restore()


def at_once():
    rounds = 120 if is_full else 6
    for _ in range(rounds):
        processes = [subprocess.Popen([host, *imported(new_model)], cwd=folder, stdout=subprocess.DEVNULL,
                                      stderr=subprocess.PIPE) for _ in range(3)]
        results = [(process.communicate(timeout=longest)[1], process.returncode) for process in processes]
        for errors, code in results:
            check("state", (code, errors))
            if code == 1 and b"another import is running" not in errors:
                fail("three imports of one state", errors.decode("utf-8", "replace"))
        if all(code != 0 for _, code in results):
            fail("none of three imports of one state gets through")
        restore()
    for _ in range(rounds):
        processes = [subprocess.Popen([host, "--state", folder / f"state-{i}", "--report", report, model], cwd=folder,
                                      stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
                     for i, model in enumerate((old_model, new_model))]
        for process in processes:
            errors = process.communicate(timeout=longest)[1]
            check("report", (process.returncode, errors), (0,))
        json.loads(report.read_text())
        if list(folder.glob(".import-host.*")):
            fail("two imports with one report leave files behind")


def kills():
    begin = time.monotonic()
    must(run(imported(new_model)), "import")
    duration = time.monotonic() - begin
    restore()
    numbers = random.Random(4711)
    for _ in range(200 if is_full else 12):
        process = subprocess.Popen([host, *imported(new_model, "--report", report)], cwd=folder,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        time.sleep(numbers.uniform(0.0, duration * 1.1))
        process.kill()
        process.wait()
        if objects() not in states:
            fail("a killed import leaves neither the old nor the new state")
        json.loads(report.read_text())
        # The system may let go of the lock a little after the process is gone.
        for _ in range(1000):
            result = run(imported(old_model))
            if b"another import is running" not in result[1]:
                break
            time.sleep(0.01)
        restore()
        counts.setdefault("kills", []).append(0)


try:
    must(run(imported(new_model)), "import")
    after = objects()
    shutil.rmtree(state)
    must(run(imported(old_model, "--report", report)), "import")
    states = (objects(), after)
    if states[0] == states[1]:
        fail("the revised model is the same")
    for part in (closed_streams, readers_that_go_away, limits, at_once, kills):
        part()
    print("Hostile surroundings: " + ", ".join(f"{name} {len(codes)} ({codes.count(1)} refused)"
                                               for name, codes in counts.items()))
finally:
    shutil.rmtree(folder, ignore_errors=True)
