#!/usr/bin/env python3
"""Prints what a receiver sends in so many seconds: rover_log.py SECONDS."""
import math
import sys


def sentence(body):
    total = 0
    for character in body.encode():
        total ^= character
    return "$%s*%02X\r\n" % (body, total)


def angle(degrees, digits):
    whole = int(degrees)
    return "%0*d%011.8f" % (digits, whole, (degrees - whole) * 60)


def main():
    for second in range(int(sys.argv[1])):
        clock = "%02d%02d%02d.00" % (8 + second // 3600, second // 60 % 60, second % 60)
        latitude = 47.2852 + 0.00001 * math.sin(second / 20)
        longitude = 8.2652 + 0.00001 * math.cos(second / 20)
        out = sys.stdout.write
        out(sentence("GNGST,%s,0.9,,,,0.008,0.009,0.015" % clock))
        out(sentence("GNGSA,A,3,02,05,07,13,16,21,26,29,,,,,1.5,0.8,1.2,1"))
        out(sentence("GPGSV,1,1,04,02,45,120,44,05,30,200,40,07,70,010,48,13,15,300,35,1"))
        out(sentence("GNGGA,%s,%s,N,%s,E,4,12,0.8,%.3f,M,48.000,M,1.0,0001"
                     % (clock, angle(latitude, 2), angle(longitude, 3), 499.6 + second % 7 / 1000)))


if __name__ == "__main__":
    main()
