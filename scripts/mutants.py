#!/usr/bin/env python3
"""Puts one fault after another into a copy of the tree and says whether the tests find it.

  scripts/mutants.py [--folder FOLDER] [--only TEXT] [--jobs N]

The faults are in scripts/mutants.txt. Each is built into the test programs named with it, which are
run until one fails. The copy is of HEAD, in FOLDER (default: build/mutants), so that a second run
builds little. Exits 1 when more than one fault in ten is not found, or one no longer fits the code.
"""
import argparse
import io
import pathlib
import subprocess
import sys
import tarfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
LONGEST_RUN_S = 300


def read_mutants(text):
    mutants = []
    for block in text.split("\n\n"):
        lines = [line for line in block.splitlines() if line and not line.startswith("#")]
        if not lines:
            continue
        name, tests = (part.strip() for part in lines[0].split("|"))
        before = "\n".join(line[2:] for line in lines if line.startswith("- "))
        after = "\n".join(line[2:] for line in lines if line.startswith("+ "))
        mutants.append((name, tests.split(), before, after))
    return mutants


def copy_tree(folder):
    """Only what changed is written, so that a second run builds only that."""
    tree = folder / "tree"
    archive = subprocess.run(["git", "archive", "HEAD"], cwd=ROOT, check=True, capture_output=True).stdout
    with tarfile.open(fileobj=io.BytesIO(archive)) as files:
        members = [member for member in files if member.isfile()]
        for member in members:
            path = tree / member.name
            data = files.extractfile(member).read()
            if path.exists() and path.read_bytes() == data:
                continue
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(data)
            path.chmod(member.mode)
    kept = {tree / member.name for member in members} | {tree / "build"}
    for path in tree.rglob("*"):
        if path.is_file() and path not in kept and "build" not in path.relative_to(tree).parts:
            path.unlink()
    return tree


def build(tree, targets, jobs):
    run = subprocess.run(["ninja", "-C", "build/dev", f"-j{jobs}", *targets], cwd=tree, capture_output=True, text=True)
    return run.returncode == 0, run.stdout


def fails(tree, test):
    program = next(iter((tree / "build/dev/tests").rglob(test)))
    try:
        run = subprocess.run([str(program), "--gtest_brief=1"], cwd=program.parent, capture_output=True,
                             text=True, timeout=LONGEST_RUN_S, errors="replace")
    except subprocess.TimeoutExpired:
        return "ran out of time"
    if run.returncode == 0:
        return None
    failed = [line.split("]")[1].split(",")[0].split("(")[0].strip()
              for line in run.stdout.splitlines() if line.startswith("[  FAILED  ]")]
    return failed[0] if failed else f"ended with {run.returncode}"


def try_mutant(tree, mutant, jobs):
    name, tests, before, after = mutant
    paths = [p for p in tree.rglob(name) if "build" not in p.relative_to(tree).parts]
    if len(paths) != 1:
        return "does not fit", f"{len(paths)} files of this name"
    original = paths[0].read_text()
    if original.count(before) != 1:
        return "does not fit", f"{original.count(before)} places"
    paths[0].write_text(original.replace(before, after))
    try:
        for test in tests:
            built, output = build(tree, [test], jobs)
            if not built:
                errors = [line for line in output.splitlines() if "error:" in line]
                return "does not fit", errors[0] if errors else "it does not build"
            if found := fails(tree, test):
                return "found", found
    finally:
        paths[0].write_text(original)
    return "NOT FOUND", ""


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--folder", default=str(ROOT / "build/mutants"))
    parser.add_argument("--only", default="", help="only faults whose file or text holds this")
    parser.add_argument("--jobs", type=int, default=2)
    arguments = parser.parse_args()
    mutants = [m for m in read_mutants((ROOT / "scripts/mutants.txt").read_text())
               if any(arguments.only in part for part in (m[0], m[2], m[3]))]
    tree = copy_tree(pathlib.Path(arguments.folder))
    if not (tree / "build/dev/build.ninja").exists():
        subprocess.run(["cmake", "--preset", "dev"], cwd=tree, check=True, stdout=subprocess.DEVNULL)
    targets = sorted({test for m in mutants for test in m[1]})
    built, output = build(tree, targets, arguments.jobs)
    if not built:
        sys.exit(output)
    for test in targets:
        if failed := fails(tree, test):
            sys.exit(f"{test} fails without a fault: {failed}")
    counts = {}
    for mutant in mutants:
        result, why = try_mutant(tree, mutant, arguments.jobs)
        counts[result] = counts.get(result, 0) + 1
        print(f"{result:12} {mutant[0]:26} {mutant[2][:60]:60} {why}", flush=True)
    print(", ".join(f"{count} {result}" for result, count in sorted(counts.items())))
    missed = counts.get("NOT FOUND", 0)
    return 1 if missed * 10 > len(mutants) or counts.get("does not fit") else 0


if __name__ == "__main__":
    sys.exit(main())
