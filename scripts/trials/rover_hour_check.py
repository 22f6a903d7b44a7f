#!/usr/bin/env python3
"""Looks at what rover_hour.py left behind: rover_hour_check.py FOLDER

Each point that was reported is in all three files of the job and no other is; each was measured at one
epoch of the log, bears its height and its precision and kept the limits there; `tarvex check` is content;
what was kept of the stream is what the receiver sent while it lived; what the receiver got is stretches
of the corrections; memory grows by less than 1 MB after the first five minutes; the program takes
less than 3 % of one core.
"""
import bisect
import json
import os
import re
import subprocess
import sys

from job_judge import Job
from rover_check import pieces
from rover_hour import REPORTED, ROOT
from rover_hour_log import RATE

MEASURED = re.compile(r"GPS,PN([^,]*),LA([\d.]+),LN([\d.]+),EL([-\d.]+),--.*\n--GS,.*\n"
                      r"--HRMS:([\d.]+), VRMS:([\d.]+), STATUS:(\w+)")
JOB_FILES = {"site.crd", "site.rw5", "site.not", "site.job"}
HRMS_LIMIT = 0.02
SAME_PLACE = 1e-10  # degrees; the epochs are 450 times as far from each other
SETTLED_S, GROWTH_KB, SHARE = 300, 1024, 0.03
LATE_EPOCHS = 5  # what was on its way when the receiver died
BACK_S = 10.0  # dead for 5 s; tried again after 1, 2 and 4 s


def data(name):
    try:
        with open(name, "rb") as file:
            return file.read()
    except FileNotFoundError:
        return b""


def degrees_of_nmea(text):
    point = text.index(".") - 2
    return int(text[:point]) + float(text[point:]) / 60


def degrees_of_raw(text):
    whole, rest = text.split(".")
    return int(whole) + int(rest[:2]) / 60 + float(rest[2:4] + "." + rest[4:]) / 3600


def epochs_of_log():
    """Clock, latitude, longitude, height, quality and HRMS of each epoch, by its own sentences."""
    found = {}
    for line in data("rover.log").decode().split("\r\n"):
        fields = line.split("*")[0].split(",")
        if fields[0] == "$GNGGA":
            one = found.setdefault(fields[1], {})
            one["quality"] = int(fields[6])
            if fields[2]:
                one["at"] = (degrees_of_nmea(fields[2]), degrees_of_nmea(fields[4]), float(fields[9]) + float(fields[11]))
        elif fields[0] == "$GNGST" and fields[6]:
            one = found.setdefault(fields[1], {})
            one["hrms"] = (float(fields[6]) ** 2 + float(fields[7]) ** 2) ** 0.5
            one["vrms"] = float(fields[8])
    return found


class Judge:
    def __init__(self, hour):
        self.hour, self.bad = hour, 0
        self.job = Job("site.crd")

    def say(self, ok, text):
        self.bad += not ok
        print("%-4s %s" % ("ok" if ok else "BAD", text))

    def points(self):
        reported = []
        for session in self.hour["sessions"]:
            names = [(a or b).decode() for a, b in REPORTED.findall(data(session["output"]))]
            reported += names
            # A receiver or caster that is dead at the end of a session is told, and makes the exit code 1.
            end = data(session["output"])[-1000:]
            dead = b"Stopped while the receiver was lost" in end or b"broke off: The caster has disconnected" in end
            self.say(len(names) > 0 and session["code"] == (1 if dead else 0),
                     "%s: %d points, exit code %d, %d keys, slowest answer %.1f s"
                     % (session["name"], len(names), session["code"], session["keys"], session["slowest"]))
        measured = {name for name, (kind, _) in self.job.raw.items() if kind == "measured"}
        self.say(not self.job.faults,
                 "the three files say the same of %d points %s" % (len(self.job.points), self.job.faults[:5]))
        self.say(len(reported) == len(set(reported)), "no point was reported twice")
        self.say(set(reported) <= measured,
                 "%d points reported, missing: %s" % (len(reported), sorted(set(reported) - measured)[:10]))
        self.say(measured <= set(reported), "stored and not reported: %s" % sorted(measured - set(reported))[:10])
        tarvex = os.environ.get("TARVEX", os.path.join(ROOT, "build/release/app/tarvex"))
        check = subprocess.run([tarvex, "check", "site.crd"], capture_output=True, text=True)
        self.say(check.returncode == 0, "check: " + (check.stdout + check.stderr).strip().replace("\n", " | ")[:400])
        left = sorted(n for n in os.listdir(".") if n.startswith("site.") and n not in JOB_FILES)
        self.say(not left, "left beside the files: %s" % left)

    def gate(self):
        log = epochs_of_log()
        walked = sorted((one["at"][0], clock) for clock, one in log.items() if "at" in one)
        faults, points = [], MEASURED.findall(self.job.raw_text)
        used = set()
        for name, latitude, longitude, height, hrms, vrms, status in points:
            place = degrees_of_raw(latitude)
            at = min(bisect.bisect(walked, (place - SAME_PLACE, "")), len(walked) - 1)
            there, clock = walked[at]
            if abs(there - place) > SAME_PLACE:
                faults.append("%s is at no epoch of the log" % name)
                continue
            if clock in used:
                faults.append("%s is at an epoch that was stored before" % name)
            used.add(clock)
            one = log[clock]
            wrong = abs(degrees_of_raw(longitude) - one["at"][1]) > 1e-10 or abs(float(height) - one["at"][2]) > 5e-7
            if wrong:
                faults.append("%s is mixed of several epochs" % name)
            if one["quality"] != 4 or one.get("hrms", 9) > HRMS_LIMIT or status != "FIXED":
                faults.append("%s does not keep the limits: %s" % (name, one))
            if abs(float(hrms) - one.get("hrms", 9)) > 0.00051 or abs(float(vrms) - one.get("vrms", 9)) > 0.00051:
                faults.append("%s bears the precision of another epoch: %s, %s" % (name, (hrms, vrms), one))
        good = sum(one["quality"] == 4 and one.get("hrms", 9) <= HRMS_LIMIT for one in log.values())
        self.say(len(points) == sum(kind == "measured" for kind, _ in self.job.raw.values()) and not faults,
                 "%d points kept the limits at their own epoch (%d %% of the epochs do): %s"
                 % (len(points), 100 * good / len(log), faults[:5]))

    def streams(self):
        shortest, slowest, sent = 0.0, 0.0, 0
        for number, session in enumerate(self.hour["sessions"]):
            lives = [life for life in self.hour["lives"] if life["session"] == number]
            got, at = data(session["stream"]), 0
            logs = [data(life["log"]) for life in lives]
            for index, (life, log) in enumerate(zip(lives, logs)):
                length = common(got[at:], log)
                behind = next((one[:80] for one in logs[index + 1:] if one), b"")
                if at + length < len(got):
                    # The line that broke off may go on as the next one begins.
                    while length > 0 and not got[at + length:].startswith(behind[:80]):
                        length -= 1
                at += length
                lasted = life["ended"] - life["heard"] if life["heard"] else 0
                whole = log[:length].count(b"GGA,")
                wanted = lasted * RATE * 0.98 - LATE_EPOCHS
                shortest = max(shortest, lasted * RATE - whole)
                sent += length
                if life["heard"] is None and life["ended"] - life["began"] > BACK_S:
                    self.say(False, "%s: life %d of the receiver was never heard" % (session["name"], index))
                elif whole < wanted:
                    self.say(False, "%s: life %d of the receiver: %d of %.0f epochs" % (session["name"], index, whole, wanted))
                elif life["heard"]:
                    slowest = max(slowest, life["heard"] - life["began"])
            self.say(at == len(got), "%s: the stream kept is %d lives of the receiver (%d of %d bytes)"
                     % (session["name"], len(lives), at, len(got)))
        self.say(True, "%d bytes kept; at most %.0f epochs fewer than 10 a second in a life" % (sent, shortest))
        self.say(slowest <= BACK_S, "the receiver was heard %.1f s after its start at the latest" % slowest)

    def corrections(self):
        sent, total, worst = data("corrections.rtcm"), 0, 0
        for life in self.hour["lives"]:
            if not os.path.exists(life["got"]):
                continue
            got = data(life["got"])
            total += len(got)
            casters = sum(c["began"] < life["ended"] and c.get("ended", 1e9) > life["began"] for c in self.hour["casters"])
            count = pieces(got, sent)
            worst = max(worst, count)
            if count < 0 or count > casters + 1:
                self.say(False, "%s: %d stretches of the corrections from %d casters" % (life["got"], count, casters))
            if not got and life["ended"] - life["began"] > 30:
                self.say(False, "%s: no corrections in %.0f s" % (life["got"], life["ended"] - life["began"]))
        self.say(total > 0, "%d bytes of corrections reached the receiver; %d stretches in a life at most" % (total, worst))

    def load(self):
        for session in self.hour["sessions"]:
            samples = session["samples"]
            settled = [s for s in samples if s[0] - samples[0][0] >= SETTLED_S]
            seconds = samples[-1][0] - samples[0][0]
            share = (samples[-1][3] - samples[0][3]) / max(1, seconds)
            growth = max(s[1] for s in settled) - settled[0][1] if settled else 0
            anonymous = max(s[2] for s in settled) - settled[0][2] if settled else 0
            self.say(growth < GROWTH_KB,
                     "%s: memory %d kB at first, %d at last (its own %d, %d); after five minutes it grew by %d (%d)"
                     % (session["name"], samples[0][1], samples[-1][1], samples[0][2], samples[-1][2], growth, anonymous))
            self.say(share < SHARE, "%s: %.2f %% of one core in %.0f s" % (session["name"], 100 * share, seconds))


def common(a, b):
    low, high = 0, min(len(a), len(b))
    while low < high:
        middle = (low + high + 1) // 2
        if a[:middle] == b[:middle]:
            low = middle
        else:
            high = middle - 1
    return low


def main():
    os.chdir(sys.argv[1])
    with open("hour.json") as file:
        judge = Judge(json.load(file))
    judge.points()
    judge.gate()
    judge.streams()
    judge.corrections()
    judge.load()
    print("receiver killed %d times, caster %d times; %d faults"
          % (len(judge.hour["lives"]) - len(judge.hour["sessions"]), len(judge.hour["casters"]) - 1, judge.bad))
    return 1 if judge.bad else 0


if __name__ == "__main__":
    sys.exit(main())
