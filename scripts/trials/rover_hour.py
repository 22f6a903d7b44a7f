#!/usr/bin/env python3
"""Runs the sessions of rover_hour.sh: rover_hour.py SECONDS FOLDER

Leaves in FOLDER the job, what each session printed and kept of the stream, what each life of the
receiver sent and got, and hour.json with the times of all of it for rover_hour_check.py.
"""
import fcntl
import json
import os
import random
import re
import select
import shutil
import signal
import socket
import struct
import subprocess
import sys
import termios
import time

import rover_hour_log

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SYSTEM = "UTM/UTM WGS84 Zone 32"
GATE = ["--gate-solution", "fixed", "--gate-hrms", "0.02"]
STAKING = ["--tolerance", "0.06", "--existing", "next"]
REPORTED = re.compile(rb"Point (\S+): N |Stored point (\S+) for ")
GRID = re.compile(r"--GS,PN[^,]*,N ([-\d.]+),E ([-\d.]+),EL")
LIFE_S = 400  # a life of the receiver is never longer
SAMPLE_S = 10


def free_port():
    with socket.socket() as held:
        held.bind(("127.0.0.1", 0))
        return held.getsockname()[1]


class Hour:
    """Folder, log and clock of the trial."""

    def __init__(self, tarvex, seconds, folder):
        self.tarvex, self.seconds, self.folder = tarvex, seconds, os.path.abspath(folder)
        os.makedirs(self.folder, exist_ok=True)
        os.chdir(self.folder)
        self.every = min(120.0, seconds / 8)  # between two kills
        # Behind the stakes of points the precision comes behind the position.
        self.turn = 0.5 * seconds
        self.epochs = [rover_hour_log.epoch(n, n / rover_hour_log.RATE >= self.turn)
                       for n in range(int((seconds + LIFE_S) * rover_hour_log.RATE))]
        with open("rover.log", "w") as out:
            out.write("".join(self.epochs))
        self.environment = dict(os.environ, TARVEX_DATA=os.path.join(self.folder, "data"), TERM="xterm",
                                TARVEX_NTRIP_PASSWORD="pass", TARVEX_CASTER_PASSWORD="pass")
        self.environment.pop("NO_COLOR", None)
        self.began = time.monotonic()
        self.sessions, self.lives, self.casters = [], [], []

    def now(self):
        return time.monotonic() - self.began

    def start(self, words, output):
        with open(output, "wb") as out:
            return subprocess.Popen([self.tarvex] + words, env=self.environment, stdin=subprocess.DEVNULL,
                                    stdout=out, stderr=subprocess.STDOUT)

    def run(self, *words):
        subprocess.run([self.tarvex, *words], env=self.environment, check=True, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL)

    def keep(self):
        with open("hour.json", "w") as out:
            json.dump({"seconds": self.seconds, "sessions": self.sessions, "lives": self.lives,
                       "casters": self.casters}, out, indent=1)


class Receiver:
    """Lives one after the other; each sends the log from where the time is."""

    def __init__(self, hour, link):
        self.hour, self.link, self.process, self.life = hour, link, None, None
        self.port = free_port() if link == "tcp" else 0
        self.device = os.path.join(hour.folder, "receiver")
        self.address = "tcp:127.0.0.1:%d" % self.port if link == "tcp" else "serial:%s@115200" % self.device

    def start(self):
        number = len(self.hour.lives)
        log, output = "life-%d.log" % number, "life-%d.out" % number
        first = int(self.hour.now() * rover_hour_log.RATE) + 1
        with open(log, "w") as out:
            out.write("".join(self.hour.epochs[first:first + LIFE_S * rover_hour_log.RATE]))
        words = ["replay", log, "--to", self.link, "--port", str(self.port), "--keep-input", "life-%d.got" % number]
        self.process = self.hour.start(words, output)
        self.life = {"log": log, "got": "life-%d.got" % number, "session": len(self.hour.sessions),
                     "began": self.hour.now(), "heard": None}
        self.hour.lives.append(self.life)
        for _ in range(100):
            time.sleep(0.02)
            with open(output) as file:
                found = re.search(r"--receiver (?:serial|tcp):(\S+)\n", file.read())
            if found:
                break
        else:
            sys.exit("the receiver does not start: look at " + output)
        if self.link == "pty":
            os.symlink(found[1], self.device)

    def kill(self):
        if self.process is None:
            return
        if self.link == "pty":
            os.remove(self.device)
        self.life["ended"] = self.hour.now()
        self.process.kill()
        self.process.wait()
        self.process = None


class Caster:
    def __init__(self, hour, corrections):
        self.hour, self.corrections, self.process = hour, corrections, None
        self.port = free_port()
        self.address = "ntrip://user@127.0.0.1:%d/TEST" % self.port

    def start(self):
        self.hour.casters.append({"began": self.hour.now()})
        self.process = self.hour.start(
            ["caster", self.corrections, "--mountpoint", "TEST", "--port", str(self.port), "--rate", "700", "--user",
             "user", "--wants-gga"], "caster-%d.out" % (len(self.hour.casters) - 1))

    def kill(self):
        if self.process is None:
            return
        self.hour.casters[-1]["ended"] = self.hour.now()
        self.process.kill()
        self.process.wait()
        self.process = None


class Alternating:
    """Kills and starts again: due says when which is next."""

    def __init__(self, what, first, every, dead):
        self.what, self.every, self.dead, self.at = what, every, dead, first

    def look(self, now):
        if now < self.at:
            return
        if self.what.process is not None:
            self.what.kill()
            self.at = now + self.dead
        else:
            self.what.start()
            self.at = now + self.every - self.dead


class Session:
    """The program in a terminal of 40 lines, or with its output in a file."""

    def __init__(self, hour, name, words, terminal):
        self.hour, self.name, self.output = hour, name, name + ".out"
        self.stream = "stream-%d.log" % len(hour.sessions)
        words = [hour.tarvex] + words + ["--log-stream", self.stream]
        self.out = open(self.output, "wb")
        self.terminal, self.text = None, b""
        if terminal:
            master, slave = os.openpty()
            fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 40, 132, 0, 0))
            self.process = subprocess.Popen(words, env=hour.environment, stdin=slave, stdout=slave, stderr=slave,
                                            start_new_session=True,
                                            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
            os.close(slave)
            self.terminal = master
        else:
            self.process = subprocess.Popen(words, env=hour.environment, stdin=subprocess.DEVNULL, stdout=self.out,
                                            stderr=subprocess.STDOUT)
        self.record = {"name": name, "output": self.output, "stream": self.stream, "began": hour.now(),
                       "samples": [], "keys": 0, "slowest": 0.0}

    def read(self, seconds):
        """What came in the meantime, of a terminal."""
        if self.terminal is None:
            time.sleep(seconds)
            return b""
        if not select.select([self.terminal], [], [], seconds)[0]:
            return b""
        try:
            data = os.read(self.terminal, 65536)
        except OSError:
            data = b""
        self.out.write(data)
        self.out.flush()
        return data

    def sample(self):
        try:
            with open("/proc/%d/stat" % self.process.pid) as file:
                fields = file.read().rsplit(")", 1)[1].split()
            with open("/proc/%d/status" % self.process.pid) as file:
                status = file.read()
        except OSError:
            return
        kilobytes = [int(found[1]) if (found := re.search(name + r":\s+(\d+)", status)) else 0
                     for name in ("VmRSS", "RssAnon")]
        ticks = int(fields[11]) + int(fields[12])
        self.record["samples"].append([self.hour.now(), *kilobytes, ticks / os.sysconf("SC_CLK_TCK")])

    def key(self, letter):
        self.record["keys"] += 1
        os.write(self.terminal, letter)

    def end(self):
        self.sample()
        if self.terminal is None:
            self.process.send_signal(signal.SIGINT)
        else:
            os.write(self.terminal, b"q")
        until = time.monotonic() + 20
        while self.process.poll() is None and time.monotonic() < until:
            self.read(0.05)
        if self.process.poll() is None:
            self.process.kill()
        while self.terminal is not None and self.read(0.2):
            pass
        self.record.update(ended=self.hour.now(), code=self.process.wait())
        self.out.close()
        self.hour.sessions.append(self.record)


class Keys:
    """Enter for each point; when a stake does not come, the target is left out."""

    def __init__(self, session, chance, letter, seconds):
        self.session, self.chance, self.letter, self.seconds = session, chance, letter, seconds
        self.next, self.pending, self.tail = time.monotonic() + seconds[1], None, b""

    def look(self, data):
        now = time.monotonic()
        self.tail += data
        if found := list(REPORTED.finditer(self.tail)):
            self.tail = self.tail[found[-1].end():]
            if self.pending is not None:
                self.session.record["slowest"] = max(self.session.record["slowest"], now - self.pending)
            self.pending, self.next = None, now + self.chance.uniform(*self.seconds)
        if now < self.next:
            return
        # Asked once more: a place that was doubted is stored at the second key.
        self.session.key(self.letter)
        if self.pending is None:
            self.pending = now
        self.next = now + max(5, self.seconds[0] - 3)


def run_session(hour, receiver, kills, session, until, keys):
    sampled = 0.0
    while hour.now() < until and session.process.poll() is None:
        data = session.read(0.05)
        if keys:
            keys.look(data)
        for kill in kills:
            kill.look(hour.now())
        life = receiver.life
        if life["heard"] is None and receiver.process and os.path.exists(session.stream):
            size = os.path.getsize(session.stream)
            if size > life.setdefault("before", size):
                life["heard"] = hour.now()
        if hour.now() - sampled >= SAMPLE_S:
            sampled = hour.now()
            session.sample()
    session.end()
    receiver.kill()
    hour.keep()


def walk():
    """North and east at 0 and their change by each epoch, from what was measured: the way is straight."""
    with open("site.rw5") as file:
        raw = file.read()
    there = [(float(n), float(e)) for n, e in GRID.findall(raw)]
    latitudes = [int(text) for text in re.findall(r"GPS,PN[^,]*,LA47\.17(\d{10})", raw)]
    seconds = [value / 1e8 for value in latitudes]  # of the arc
    first, last = 0, len(there) - 1
    rate = [(there[last][i] - there[first][i]) / (seconds[last] - seconds[first]) for i in (0, 1)]
    step = 0.005 / 111170.0 * 3600

    def at(second):
        of_arc = (47.2852 * 3600) % 60 + second * rover_hour_log.RATE * step
        return [there[first][i] + rate[i] * (of_arc - seconds[first]) for i in (0, 1)]
    return at


def import_targets(hour, begin, end, until):
    """Points each ten seconds on the way to come, and the ends of a line on it."""
    at, pegs = walk(), max(2, int((end - begin) / 10))
    with open("targets.csv", "w") as out:
        for number in range(pegs):
            out.write("T%d,%.4f,%.4f,0,peg\n" % (number, *at(begin + 5 + 10 * number)))
        out.write("LA,%.4f,%.4f,0,end\nLB,%.4f,%.4f,0,end\n" % (*at(end - 20), *at(until + 60)))
    hour.run("import", "site.crd", "targets.csv")
    return "T0..T%d" % (pegs - 1)


def main():
    hour = Hour(os.environ.get("TARVEX", os.path.join(ROOT, "build/release/app/tarvex")), float(sys.argv[1]), sys.argv[2])
    chance = random.Random(1)
    shutil.copy(os.path.join(ROOT, "tests/data/ntrip/rtcm3.bndm.log"), "corrections.rtcm")
    hour.run("new", "site.crd", "--system", SYSTEM)
    caster = Caster(hour, "corrections.rtcm")
    caster.start()
    caster_kills = Alternating(caster, hour.every / 2, hour.every, min(6.0, hour.every / 4))
    first, points, line, last = (share * hour.seconds for share in (0.4, 0.5, 0.6, 1.0))
    plan = [("collect by keys", "pty", first, lambda: ["collect", "site.crd"], b"\r", (0.5, 2.0)),
            ("stake points", "tcp", points, lambda: ["stake", "site.crd", import_targets(hour, first, points, line),
                                                     "--store-on-stake", *STAKING], b"k", (13, 13)),
            ("stake a line", "pty", line, lambda: ["stake", "site.crd", "--line", "LA", "LB", *STAKING], b"\r", (1.0, 4.0)),
            ("collect by time", "tcp", last, lambda: ["collect", "site.crd", "--every", "1"], None, None)]
    try:
        for name, link, until, words, letter, seconds in plan:
            receiver = Receiver(hour, link)
            words = words() + ["--receiver", receiver.address, "--corrections", caster.address] + GATE
            receiver.start()
            print("%7.1f  %s" % (hour.now(), name), flush=True)
            session = Session(hour, name.replace(" ", "-"), words, letter is not None)
            keys = Keys(session, chance, letter, seconds) if letter else None
            killed = Alternating(receiver, hour.now() + 0.75 * hour.every, hour.every, min(5.0, hour.every / 4))
            try:
                run_session(hour, receiver, [killed, caster_kills], session, until, keys)
            finally:
                if session.process.poll() is None:
                    session.process.kill()
                receiver.kill()
    finally:
        caster.kill()
        hour.keep()


if __name__ == "__main__":
    main()
