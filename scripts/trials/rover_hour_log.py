#!/usr/bin/env python3
"""Prints what a receiver sends in so many seconds at 10 Hz: rover_hour_log.py SECONDS [BEHIND]

The rover walks north at 5 cm a second. Each half minute its fix is lost in several ways, and each ten
minutes for a whole minute: float, autonomous, no position, fixed but coarse, without precision, and one
good and one bad epoch in turn. From second BEHIND on the precision comes behind the position.
"""
import math
import sys

from rover_log import angle, sentence

RATE = 10
CYCLE_S = 31  # no divisor of the two minutes between kills


def fix(n):
    """Quality of the GGA and standard deviation of each axis of epoch n; None: none is told."""
    fine = 0.008 + n % 6 / 1000  # HRMS 0.0113 to 0.0184
    coarse = 0.0155 + n % 3 / 1000  # HRMS 0.0219 to 0.0247
    second = n / RATE
    if 240 <= second % 600 < 300:
        return 5, 0.25
    second %= CYCLE_S
    if second < 19:
        return 4, fine
    for until, quality, deviation in ((22, 5, 0.15), (25, 4, coarse), (26, 1, 1.5), (27, 0, None), (28, 4, None)):
        if second < until:
            return quality, deviation
    if second < 29.5:
        return (4, fine) if n % 2 else (5, 0.15)
    return (4, fine) if n % 3 else (4, coarse)


def epoch(n, behind):
    tenths = n % RATE
    seconds = n // RATE
    clock = "%02d%02d%02d.%d0" % (8 + seconds // 3600, seconds // 60 % 60, seconds % 60, tenths)
    quality, deviation = fix(n)
    latitude = 47.2852 + n * 0.005 / 111170.0
    longitude = 8.2652 + 2e-8 * math.sin(n / 7)
    place = "%s,N,%s,E" % (angle(latitude, 2), angle(longitude, 3)) if quality else ",,,"
    height = "%.3f,M,48.000,M" % (499.6 + n % 97 / 1000) if quality else ",M,,M"
    gga = sentence("GNGGA,%s,%s,%d,%02d,0.8,%s,1.0,0001" % (clock, place, quality, 12 if quality else 0, height))
    told = ("", "", "") if deviation is None else ("%.4f" % deviation, "%.4f" % deviation, "%.4f" % (1.5 * deviation))
    gst = sentence("GNGST,%s,0.9,,,,%s,%s,%s" % (clock, *told))
    others = ""
    if tenths == 0:
        others = sentence("GNGSA,A,3,02,05,07,13,16,21,26,29,,,,,1.5,0.8,1.2,1")
        others += sentence("GPGSV,1,1,04,02,45,120,44,05,30,200,40,07,70,010,48,13,15,300,35,1")
    return gga + gst + others if behind else gst + others + gga


if __name__ == "__main__":
    turn = float(sys.argv[2]) if len(sys.argv) > 2 else math.inf
    for number in range(int(sys.argv[1]) * RATE):
        sys.stdout.write(epoch(number, number / RATE >= turn))
