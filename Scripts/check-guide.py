#!/usr/bin/env python3
"""Checks that a guide and the files that it teaches to write are the same. With an empty folder as argument it also
follows the guide there: writes the files, compiles what there is after every step, runs the commands, and compares
what they print. That needs an installed library.

Usage: Scripts/check-guide.py GUIDE.md EXAMPLE_FOLDER [EMPTY_FOLDER [PREFIX]]

PREFIX is where the library is installed if not in /usr; pkg-config and CMake find it by themselves then.

A comment in front of a block says what it is: "file NAME" the next piece of a file, "run" a command, "output" lines of
what the commands before it print.
"""
import pathlib
import re
import subprocess
import sys

root = pathlib.Path(__file__).resolve().parent.parent
if len(sys.argv) not in (3, 4, 5):
    sys.exit("usage: Scripts/check-guide.py GUIDE.md EXAMPLE_FOLDER [EMPTY_FOLDER [PREFIX]]")
guide_name = sys.argv[1]
guide = (root / guide_name).read_text(encoding="utf-8")
examples = root / sys.argv[2]
folder = pathlib.Path(sys.argv[3]) if len(sys.argv) > 3 else None
prefix = sys.argv[4] if len(sys.argv) > 4 else "/usr"
blocks = re.findall(r"^<!-- (file|run|output) ?(\S*) -->\n+```[a-z]*\n(.*?)^```$", guide, re.MULTILINE | re.DOTALL)


def run(command):
    result = subprocess.run(command, shell=True, cwd=folder, text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, executable="/bin/bash")
    if result.returncode != 0:
        sys.exit(f"{result.stdout}\ncheck-guide: failed: {command}")
    return result.stdout


def compile_alone(name):
    run(f"c++ -std=c++17 -fsyntax-only $(pkg-config --cflags import-common) {name}")


def require_lines(expected, printed):
    lines = iter(" ".join(line.split()) for line in printed.splitlines())
    for line in expected.splitlines():
        if line.strip() and " ".join(line.split()) not in lines:
            sys.exit(f"{printed}\ncheck-guide: not printed: {line}")


if folder:
    folder.mkdir(parents=True, exist_ok=True)
    if any(folder.iterdir()):
        sys.exit(f"check-guide: {folder} is not empty")

files = {}
printed = ""
for kind, name, text in blocks:
    if kind == "file":
        files[name] = files[name] + "\n" + text if name in files else text
        if folder:
            (folder / name).write_text(files[name], encoding="utf-8")
            if name.endswith(".cpp"):
                compile_alone(name)
    elif kind == "run" and folder:
        printed += run("set -e\n" + text.replace("/usr/share/", prefix + "/share/"))
    elif kind == "output" and folder:
        require_lines(text, printed)
        printed = ""

different = [name for name, text in files.items()
             if not (examples / name).exists() or text != (examples / name).read_text(encoding="utf-8")]
if different:
    sys.exit(f"check-guide: {guide_name} and {examples.name} differ: {' '.join(different)}")
print(f"{guide_name}: {len(blocks)} steps" + (" followed" if folder else ", the same as the files"))
