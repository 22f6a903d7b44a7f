#!/usr/bin/env python3
"""Looks at what rover_session.sh left behind in this folder: rover_check.py SECONDS."""
import sys


def data(name):
    with open(name, "rb") as file:
        return file.read()


def pieces(got, sent):
    """How many stretches of the endlessly repeated corrections make up what the receiver got."""
    sent = sent * 3
    count, at = 0, 0
    while at < len(got):
        length = 1
        place = -1
        while at + length <= len(got) and length <= len(sent):
            found = sent.find(got[at:at + length])
            if found < 0:
                break
            place = found
            length = min(length * 2, length + 4096) if length < len(got) - at else length + 1
        if place < 0:
            return -1
        # From there on as far as both agree, over the end of the recording as well.
        low = 0
        while at + low < len(got) and got[at + low] == sent[(place + low) % len(sent)]:
            low += 1
        count, at = count + 1, at + low
    return count


def main():
    expected = int(sys.argv[1])
    raw = data("site.rw5")
    notes = data("site.not")
    got = data("corrections.got")
    results = [
        ("points stored", data("collect.out").count(b"\nPoint ") + data("collect.out").startswith(b"Point "), expected),
        ("GPS records in the raw file", raw.count(b"\nGPS,"), expected),
        ("grid comments in the raw file", raw.count(b"\n--GS,"), expected),
        ("quality comments in the raw file", raw.count(b"\n--HRMS:"), expected),
        ("blocks in the notes", notes.count(b"PT_ID:"), expected),
        ("the stream log is what was sent", data("stream.log") == data("rover.log"), True),
        ("stretches of corrections at the receiver", pieces(got, data("corrections.rtcm")), 3),
    ]
    bad = 0
    for name, value, wanted in results:
        ok = value == wanted
        bad += not ok
        print("%-4s %s: %s (wanted %s)" % ("ok" if ok else "BAD", name, value, wanted))
    print("%d bytes of corrections reached the receiver" % len(got))
    print(data("collect.err").decode())
    sys.exit(1 if bad else 0)


if __name__ == "__main__":
    main()
