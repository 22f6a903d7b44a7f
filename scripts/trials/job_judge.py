#!/usr/bin/env python3
"""Holds the three files of a job against each other, without the program: job_judge.py JOB.crd

Every point of the job was stored by the program itself, so that the raw file tells the whole story:
what it says of a point last is what the coordinate file and the notes must say too.
"""
import re
import struct
import sys

HEADER, RECORD = 104, 66
TYPED = re.compile(r"SP,PN([^,]*),N ([-\d.]+),E ([-\d.]+),EL([-\d.]+),--")
GRID = re.compile(r"--GS,PN([^,]*),N ([-\d.]+),E ([-\d.]+),EL([-\d.]+),--")
MEASURED = re.compile(r"GPS,PN([^,]*),LA")
DELETED = re.compile(r"--(?:Deleted|Taken back) point:SP,PN([^,]*),")


class Job:
    """What the files hold: coordinates by id, the last raw word on each id, notes by id."""

    def __init__(self, path):
        self.faults = []
        base = path[: -len(".crd")]
        self.points = self._coordinates(self._bytes(path))
        self.raw_text = self._bytes(base + ".rw5").decode()
        self.raw = self._raw_story(self.raw_text.split("\n"))
        self.notes = self._notes(self._bytes(base + ".not").decode())
        self._compare()

    @staticmethod
    def _bytes(path):
        try:
            with open(path, "rb") as file:
                return file.read()
        except FileNotFoundError:
            return b""

    def _coordinates(self, data):
        points, before = {}, None
        if len(data) < HEADER or (len(data) - HEADER) % RECORD:
            self.faults.append("the coordinate file has %d bytes: not whole records" % len(data))
        for at in range(HEADER, len(data) - RECORD + 1, RECORD):
            record = data[at:at + RECORD]
            name = record[56:].split(b"\0")[0].decode()
            if name in points:
                self.faults.append("two coordinate records of point " + name)
            # Numbers alone are compared here; the program's own check knows the whole order.
            if name.isdigit() and before is not None and int(name) <= before:
                self.faults.append("point %s is behind %d" % (name, before))
            before = int(name) if name.isdigit() else None
            points[name] = struct.unpack("<3d", record[:24])
        return points

    def _raw_story(self, lines):
        story = {}
        for number, line in enumerate(lines):
            if found := MEASURED.match(line):
                grid = GRID.match(lines[number + 1]) if number + 1 < len(lines) else None
                if not grid or grid[1] != found[1]:
                    self.faults.append("GPS record of point %s without its grid record" % found[1])
            elif found := GRID.match(line):
                before = MEASURED.match(lines[number - 1]) if number else None
                if not before or before[1] != found[1]:
                    self.faults.append("grid record of point %s without its GPS record" % found[1])
                story[found[1]] = ("measured", [float(x) for x in found.groups()[1:]])
            elif found := TYPED.match(line):
                story[found[1]] = ("typed", [float(x) for x in found.groups()[1:]])
            elif found := DELETED.match(line):
                story.pop(found[1], None)
        return story

    def _notes(self, text):
        notes = {}
        for block in re.split(r"^PT_ID:", text, flags=re.M)[1:]:
            name = block.split("\n")[0]
            if name in notes:
                self.faults.append("two notes of point " + name)
            measured = "\nSTATUS," in block
            if measured and not ("\nHRMS," in block and re.search(r"\nTIME,\d\d:\d\d:\d\d\n", block)):
                self.faults.append("the note of point %s is not whole" % name)
            notes[name] = measured
        return notes

    def _compare(self):
        for name in sorted(set(self.points) - set(self.raw)):
            self.faults.append("point %s is in the coordinate file alone" % name)
        for name in sorted(set(self.raw) - set(self.points)):
            self.faults.append("point %s is in the raw file alone" % name)
        for name in sorted(set(self.raw) & set(self.points)):
            kind, at = self.raw[name]
            if any(abs(a - b) > 0.00006 for a, b in zip(at, self.points[name])):
                self.faults.append("point %s: raw file %s, coordinate file %s" % (name, at, self.points[name]))
            if (kind == "measured") != self.notes.get(name, False):
                self.faults.append("point %s is %s, its note says otherwise" % (name, kind))
        for name, measured in self.notes.items():
            if measured and name not in self.raw:
                self.faults.append("a measured note of point %s, which there is not" % name)


if __name__ == "__main__":
    job = Job(sys.argv[1])
    print("\n".join(job.faults) or "%d points, all whole" % len(job.points))
    sys.exit(1 if job.faults else 0)
