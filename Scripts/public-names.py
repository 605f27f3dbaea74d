#!/usr/bin/env python3
"""Prints the names that the shared library has to export, derived from its public headers: every function that is
declared public or protected, has no body there, and is marked for export itself or through its class.

Usage: Scripts/public-names.py [CLANG++] >ImportSDK/ImportCommon/PublicNames.txt
"""
import json
import pathlib
import subprocess
import sys

root = pathlib.Path(__file__).resolve().parent.parent
includes = [root / "ImportSDK/ImportCommon/Include", root / "DbFast/Include"]
compiler = sys.argv[1] if len(sys.argv) > 1 else "clang++"
functions = {"FunctionDecl", "CXXMethodDecl", "CXXConstructorDecl", "CXXDestructorDecl", "CXXConversionDecl"}
records = {"CXXRecordDecl"}


def is_exported(node):
    return any(part.get("kind") == "VisibilityAttr" for part in node.get("inner", []))


def walk(node, exported, names):
    access = "private" if node.get("tagUsed") == "class" else "public"
    for child in node.get("inner", []):
        kind = child.get("kind")
        if kind == "AccessSpecDecl":
            access = child["access"]
        if access == "private" or child.get("isImplicit"):
            continue
        if kind in ("NamespaceDecl", "LinkageSpecDecl"):
            walk(child, False, names)
        elif kind in records:
            walk(child, is_exported(child), names)
        elif kind in functions and (exported or is_exported(child)):
            has_body = any(part.get("kind") == "CompoundStmt" for part in child.get("inner", []))
            if has_body or child.get("inline") or child.get("explicitlyDeleted") or child.get("explicitlyDefaulted"):
                continue
            name = child["mangledName"]
            names.add(name)
            # Constructors and destructors exist for complete objects and for bases.
            if kind in ("CXXConstructorDecl", "CXXDestructorDecl"):
                letter = "C" if kind == "CXXConstructorDecl" else "D"
                for a, b in ((1, 2), (2, 1)):
                    head, found, tail = name.partition(f"{letter}{a}E")
                    if found:
                        names.add(f"{head}{letter}{b}E{tail}")


def syntax_trees():
    command = [compiler, "-std=c++17", "-fsyntax-only", "-x", "c++", "-Xclang", "-ast-dump=json", "-"]
    command[1:1] = [f"-I{folder}" for folder in includes]
    for pattern in ("ImportCommon", "ForeignObject", "foreignobject", "dbf_"):
        source = "#include <ImportCommon/ImportCommon.h>\n"
        run = subprocess.run(command + ["-Xclang", f"-ast-dump-filter={pattern}"], input=source, text=True,
                             stdout=subprocess.PIPE, check=True)
        # One tree per matching declaration, each behind a line that names it.
        decoder, text, position = json.JSONDecoder(), run.stdout, 0
        while (position := text.find("{", position)) >= 0:
            tree, position = decoder.raw_decode(text, position)
            yield tree


names = set()
for tree in syntax_trees():
    walk({"inner": [tree]}, False, names)
if not names:
    sys.exit("public-names: no names found")
ordered = sorted(names)
plain = subprocess.run(["c++filt"], input="\n".join(ordered), text=True, stdout=subprocess.PIPE, check=True)
print("# What the shared library exports; made from the public headers by Scripts/public-names.py.")
for name, readable in sorted(zip(ordered, plain.stdout.splitlines()), key=lambda pair: (pair[1], pair[0])):
    print(name if name == readable else f"{name} {readable}")
