#!/usr/bin/env python3
"""Compares what the shared library exports with what its public headers declare: every public or protected function
that is marked for export, itself or through its class, and has no body there.

Usage: Scripts/check-exports.py LIBRARY [CLANG++]
"""
import json
import pathlib
import subprocess
import sys

root = pathlib.Path(__file__).resolve().parent.parent
includes = [root / "ImportSDK/ImportCommon/Include", root / "DbFast/Include"]
library = sys.argv[1]
compiler = sys.argv[2] if len(sys.argv) > 2 else "clang++"
functions = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl", "CXXConversionDecl"}


def is_exported(node):
    return any(part.get("kind") == "VisibilityAttr" for part in node.get("inner", []))


def variants(name, kind):
    """Constructors and destructors exist for complete objects and for bases."""
    letter = {"CXXConstructorDecl": "C", "CXXDestructorDecl": "D"}.get(kind)
    yield name
    for a, b in (("1", "2"), ("2", "1")):
        if letter and f"{letter}{a}E" in name:
            yield name.replace(f"{letter}{a}E", f"{letter}{b}E", 1)


def walk(node, exported, names):
    """Adds the names of a declaration's functions."""
    access = "private" if node.get("tagUsed") == "class" else "public"
    for child in node.get("inner", []):
        kind = child.get("kind")
        if kind == "AccessSpecDecl":
            access = child["access"]
        if access == "private" or child.get("isImplicit"):
            continue
        if kind in ("NamespaceDecl", "LinkageSpecDecl"):
            walk(child, False, names)
        elif kind == "CXXRecordDecl":
            walk(child, is_exported(child), names)
        elif kind in functions and (exported or is_exported(child)):
            has_body = any(part.get("kind") == "CompoundStmt" for part in child.get("inner", []))
            if not (has_body or child.get("inline") or child.get("explicitlyDeleted")
                    or child.get("explicitlyDefaulted")):
                names.update(variants(child["mangledName"], kind))


def declarations():
    """One syntax tree per declaration of the library's."""
    command = [compiler, "-std=c++17", "-fsyntax-only", "-x", "c++", "-Xclang", "-ast-dump=json", "-"]
    command[1:1] = [f"-I{folder}" for folder in includes]
    for pattern in ("ImportCommon", "ForeignObject", "foreignobject", "dbf_"):
        source = "#include <ImportCommon/ImportCommon.h>\n"
        run = subprocess.run(command + ["-Xclang", f"-ast-dump-filter={pattern}"], input=source, text=True,
                             stdout=subprocess.PIPE, check=True)
        # Each tree stands behind a line that names it.
        decoder, text, position = json.JSONDecoder(), run.stdout, 0
        while (position := text.find("{", position)) >= 0:
            tree, position = decoder.raw_decode(text, position)
            yield tree


declared = set()
for tree in declarations():
    walk({"inner": [tree]}, False, declared)
listing = subprocess.run(["nm", "-D", "--defined-only", library], text=True, stdout=subprocess.PIPE, check=True).stdout
found = {line.split()[-1] for line in listing.splitlines()}
if not declared or not found:
    sys.exit("check-exports: no names found in the " + ("library" if declared else "headers"))

faults = [f"declared, not exported: {name}" for name in declared - found]
faults += [f"exported, not declared: {name}" for name in found - declared]
if faults:
    plain = subprocess.run(["c++filt"], input="\n".join(sorted(faults)), text=True, stdout=subprocess.PIPE, check=True)
    sys.exit(plain.stdout)
print(f"{len(declared)} declared names are exported, and nothing else")
