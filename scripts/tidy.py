#!/usr/bin/env python3
"""Runs clang-tidy over the files of a build folder's compile_commands.json that lie below the given folders, on all
cores. What was found clean is remembered by the hash of its preprocessed source and the rules, and not looked at again.
"""
import concurrent.futures
import hashlib
import json
import os
import shlex
import subprocess
import sys


def preprocessed(command, folder):
    words = [word for word in shlex.split(command) if os.path.basename(word) != "ccache"]
    cut = words.index("-o")
    words = words[:cut] + words[cut + 2:]
    return subprocess.run(words + ["-E", "-P", "-C"], cwd=folder, capture_output=True, check=True).stdout


def check(entry, build, rules, stamps):
    source = os.path.normpath(os.path.join(entry["directory"], entry["file"]))
    name = hashlib.sha256(rules + source.encode() + preprocessed(entry["command"], entry["directory"])).hexdigest()
    stamp = os.path.join(stamps, name)
    if os.path.exists(stamp):
        return True, ""
    run = subprocess.run(["clang-tidy", "-quiet", "-p", build, "--extra-arg=-Wno-unknown-warning-option", source], capture_output=True, text=True, check=False)
    if run.returncode != 0:
        return False, run.stdout or run.stderr
    open(stamp, "w").close()
    return True, ""


def main():
    build, folders = sys.argv[1], [os.path.abspath(folder) + os.sep for folder in sys.argv[2:]]
    stamps = os.path.join(build, "tidy")
    os.makedirs(stamps, exist_ok=True)
    with open(".clang-tidy", "rb") as file:
        rules = file.read()
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        entries = {os.path.normpath(os.path.join(e["directory"], e["file"])): e for e in json.load(file)}
    chosen = [entry for source, entry in sorted(entries.items()) if source.startswith(tuple(folders))]
    clean = True
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for good, text in pool.map(lambda entry: check(entry, build, rules, stamps), chosen):
            clean = clean and good
            sys.stdout.write(text)
            sys.stdout.flush()
    print(f"clang-tidy: {len(chosen)} files, {'clean' if clean else 'not clean'}")
    return 0 if clean else 1


if __name__ == "__main__":
    sys.exit(main())
