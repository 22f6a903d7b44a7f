#!/usr/bin/env python3
"""Kills the program (kill -9) while it works on a job, and looks at the job's files each time.

  kills.py moments [--kills 500] [--seed N]   at random moments of collect, import, stake, store, delete
  kills.py calls                              at every system call that changes a file (needs strace)

After each kill the job is opened again; then every point that was reported is in all three files, no
point is there in part (job_judge.py), an import is there as a whole or not at all, `tarvex points`
and `tarvex check` are content, and nothing is left beside the files.
"""
import argparse
import collections
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time

from job_judge import Job

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SYSTEM = "UTM/UTM WGS84 Zone 32"
CALLS = ["openat", "pwrite64", "fdatasync", "fsync", "ftruncate", "rename", "renameat2", "unlink", "chmod"]
REPORTED = re.compile(r"^(?:Point |Stored point )([A-Z0-9_]+)[:.]", re.M)


class Site:
    """A folder with a job, a recording and the files of a road."""

    def __init__(self, tarvex, folder):
        self.tarvex, self.folder = tarvex, folder
        os.makedirs(folder, exist_ok=True)
        self.crd = os.path.join(folder, "site.crd")
        self.recording = os.path.join(folder, "rover.log")
        self.environment = dict(os.environ, TARVEX_DATA=os.path.join(folder, "data"))
        with open(self.recording, "wb") as out:
            log = os.path.join(ROOT, "scripts/trials/rover_log.py")
            subprocess.run([sys.executable, log, "3000"], stdout=out, check=True)
        self.new_job()

    def new_job(self):
        for name in os.listdir(self.folder):
            if name.startswith("site."):
                os.remove(os.path.join(self.folder, name))
        self.run(["new", self.crd, "--system", SYSTEM], check=True)
        self.reported, self.batches = set(), {}

    def run(self, words, check=False):
        return subprocess.run([self.tarvex] + words, env=self.environment, check=check,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True)

    def start(self, words, before=()):
        out = open(os.path.join(self.folder, "out.txt"), "w")
        return subprocess.Popen([*before, self.tarvex] + words, env=self.environment,
                                stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT)

    def output(self):
        with open(os.path.join(self.folder, "out.txt"), errors="replace") as file:
            text = file.read()
        return text[: text.rfind("\n") + 1]  # a line that was cut reports nothing

    def left_over(self):
        allowed = {"site.crd", "site.rw5", "site.not", "site.job"}
        return sorted(n for n in os.listdir(self.folder) if n.startswith("site.") and n not in allowed)

    def take_report(self, words):
        """Notes what the program said before it died."""
        text = self.output()
        self.reported.update(REPORTED.findall(text))
        if words[0] == "import" and re.search(r"^Stored \d+ points", text, re.M):
            self.reported.update(self.batches[words[2]][0])

    def faults(self, words, deletes=()):
        """What is wrong with the job, which is opened here first."""
        faults = []
        for command in ("points", "check"):
            result = self.run([command, self.crd])
            if result.returncode != 0:
                faults.append("`tarvex %s` ends with %d: %s" % (command, result.returncode, (result.stdout + result.stderr)[:2000]))
        job = Job(self.crd)
        faults += job.faults
        self.take_report(words)
        if words[0] == "delete":
            for name in deletes:
                if name not in job.points:
                    self.reported.discard(name)
        faults += ["point %s was reported and is not there" % n for n in sorted(self.reported - set(job.points))]
        if words[0] == "import":
            names, mark = self.batches[words[2]]
            there = len(re.findall(r"^SP,.*,--%s$" % mark, job.raw_text, re.M))
            if there not in (0, len(names)):
                faults.append("%d of %d points of an import" % (there, len(names)))
        if self.left_over():
            faults.append("left beside the files: " + ", ".join(self.left_over()))
        return faults, job


class Work:
    """The commands that are killed, with ids of their own."""

    def __init__(self, site, chance):
        self.site, self.chance, self.number = site, chance, 0

    def collect(self, count=0):
        return ["collect", self.site.crd, "--receiver", "file:" + self.site.recording, "--count", str(count)]

    def stake(self):
        road = os.path.join(ROOT, "docs/roads/")
        self.number += 1
        return ["road", "stake", road + "site.cl", "1+210", "-3.6", "--profile", road + "site.xml",
                "--template", road + "site.tpl", "--job", self.site.crd, "--receiver",
                "file:" + road + "rover.nmea", "--store", "K%d" % self.number, "--store-on-stake"]

    def file(self, points):
        """A text of points in any order; ids before and behind those of the job, some of it."""
        self.number += 1
        mark = "batch%d" % self.number
        names = ["%s%d" % (self.chance.choice(["", "A", "Z"]), n) for n in self.chance.sample(range(100000, 999999), points)]
        path = os.path.join(self.site.folder, mark + ".csv")
        with open(path, "w") as out:
            for name in names:
                out.write("%s,%.4f,%.4f,%.4f,%s\n" % (name, 5237000 + self.chance.random(), 444400 + self.chance.random(), 500.0, mark))
        self.site.batches[path] = (names, mark)
        return ["import", self.site.crd, path, "--existing", "overwrite"]

    def store(self, name):
        return ["store", self.site.crd, name, "5237000.5", "444400.5", "501", "typed", "--existing", "overwrite"]


class Device:
    """The recording sent over a pseudo-terminal."""

    def __init__(self, site, speed):
        path = os.path.join(site.folder, "replay.txt")
        with open(path, "w") as out:
            self.process = subprocess.Popen([site.tarvex, "replay", site.recording, "--to", "pty", "--speed", str(speed)],
                                            env=site.environment, stdout=out, stderr=subprocess.DEVNULL)
        self.name = None
        for _ in range(200):
            with open(path) as file:
                found = re.search(r"serial:(\S+)", file.read())
            if found:
                self.name = found[1]
                return
            time.sleep(0.05)

    def end(self):
        self.process.kill()
        self.process.wait()


def measured_points(site):
    job = Job(site.crd)
    return [name for name, (kind, _) in job.raw.items() if kind == "measured"]


def choose(site, work, chance, kind):
    """The words of one command, and what it deletes."""
    if kind.startswith("collect"):
        return work.collect(), ()
    if kind == "import large":
        return work.file(20000), ()
    if kind == "import small":
        return work.file(chance.randint(1, 40)), ()
    if kind == "stake":
        return work.stake(), ()
    there = measured_points(site) or ["1"]
    if kind == "store":
        return work.store(chance.choice(there)), ()
    names = chance.sample(there, min(len(there), 3))
    return ["delete", site.crd] + names, names


def kill_within(process, seconds):
    """False when it was over before."""
    try:
        process.wait(timeout=seconds)
        return False
    except subprocess.TimeoutExpired:
        process.send_signal(signal.SIGKILL)
        process.wait()
        return True


def at_moments(site, kills, seed):
    chance = random.Random(seed)
    work = Work(site, chance)
    kinds = ["collect file", "collect pty", "import large"] * 3 + ["import small", "stake", "store", "delete"] * 2
    longest = collections.defaultdict(lambda: 0.2, {"collect file": 1.5, "collect pty": 1.5})
    counts, bad, done = collections.Counter(), 0, 0
    while done < kills:
        if done % 25 == 0:
            site.new_job()
        kind = chance.choice(kinds)
        words, deletes = choose(site, work, chance, kind)
        device = Device(site, chance.choice([20, 200, 2000])) if kind == "collect pty" else None
        if device:
            words[3] = "serial:%s@115200" % device.name
        began = time.monotonic()
        if kill_within(site.start(words), chance.random() * longest[kind]):
            done += 1
            counts[kind] += 1
            counts["  with work left that is not finished"] += any(n.startswith("site.crd.") for n in site.left_over())
            counts["  and what finishes it was killed too"] += kill_finishing(site, chance)
        else:
            # The next ones of this kind die before they are over.
            longest[kind] = 1.05 * (time.monotonic() - began)
        if device:
            device.end()
        bad += judge(site, words, deletes, "seed %d, kill %d, %s" % (seed, done, kind))
    report(counts)
    print("%d kills, %d with faults" % (done, bad))
    return bad


def kill_finishing(site, chance):
    """Three times of ten the program that opens the job next is killed as well."""
    if chance.random() > 0.3:
        return False
    again = subprocess.Popen([site.tarvex, "points", site.crd], env=site.environment,
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return kill_within(again, chance.random() * 0.02)


def judge(site, words, deletes, where):
    faults, _ = site.faults(words, deletes)
    if not faults:
        return 0
    print("FAULT  %s" % where)
    for fault in faults[:10]:
        print("       " + fault)
    kept = os.path.join(os.path.dirname(site.folder), "fault-%d" % int(time.time() * 1000))
    shutil.copytree(site.folder, kept)
    print("       kept in %s" % kept, flush=True)
    site.new_job()
    return 1


def report(counts):
    for name, count in sorted(counts.items()):
        print("%6d  %s" % (count, name))
    sys.stdout.flush()


def save(site):
    shutil.rmtree(site.folder + ".saved", ignore_errors=True)
    shutil.copytree(site.folder, site.folder + ".saved")
    return set(site.reported)


def restore(site, reported):
    for name in os.listdir(site.folder):
        if name.startswith("site."):
            os.remove(os.path.join(site.folder, name))
    for name in os.listdir(site.folder + ".saved"):
        if name.startswith("site."):
            shutil.copy2(os.path.join(site.folder + ".saved", name), site.folder)
    site.reported = set(reported)


def count_calls(site, words):
    log = os.path.join(site.folder, "calls.txt")
    process = site.start(words, ["strace", "-f", "-qq", "-o", log, "-e", "trace=" + ",".join(CALLS)])
    if process.wait() != 0:
        sys.exit("%s fails: %s" % (" ".join(words), site.output()))
    with open(log) as file:
        return collections.Counter(re.findall(r"^\d+ +(\w+)\(", file.read(), re.M))


def at_calls(site):
    """The n-th call of each kind is the last one, for every n."""
    chance = random.Random(1)
    work = Work(site, chance)
    site.run(work.collect(3), check=True)
    site.reported.update(["1", "2", "3"])
    pieces = [("collect of two points", work.collect(2), ()),
              ("stake", work.stake(), ()),
              ("import, appended and inserted", work.file(30), ()),
              ("import that replaces the file", work.file(6000), ()),
              ("delete", ["delete", site.crd, "2"], ["2"]),
              ("store over a measured point", work.store("2"), ())]
    before, bad, counts = save(site), 0, collections.Counter()
    for name, words, deletes in pieces:
        restore(site, before)
        calls = count_calls(site, words)
        for call, most in calls.items():
            for n in range(1, most + 1):
                restore(site, before)
                inject = "inject=%s:signal=SIGKILL:when=%d" % (call, n)
                process = site.start(words, ["strace", "-f", "-qq", "-o", "/dev/null", "-e", "trace=" + call, "-e", inject])
                killed = process.wait() != 0
                counts["%s: %s" % (name, call if killed else "not reached")] += 1
                bad += judge(site, words, deletes, "%s, %s %d of %d" % (name, call, n, most))
    report(counts)
    print("%d runs, %d with faults" % (sum(counts.values()), bad))
    return bad


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("what", choices=["moments", "calls"])
    parser.add_argument("--kills", type=int, default=500)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(10**6))
    parser.add_argument("--tarvex", default=os.environ.get("TARVEX", os.path.join(ROOT, "build/release/app/tarvex")))
    parser.add_argument("--folder", required=True)
    options = parser.parse_args()
    site = Site(options.tarvex, os.path.join(os.path.abspath(options.folder), "job"))
    if options.what == "calls":
        return 1 if at_calls(site) else 0
    print("seed %d" % options.seed, flush=True)
    return 1 if at_moments(site, options.kills, options.seed) else 0


if __name__ == "__main__":
    sys.exit(main())
