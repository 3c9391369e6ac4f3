#!/usr/bin/env python3
"""Makes sample-27C256.bin: python3 make_sample.py [FILE]

A 32,768 byte image for trying the program without a file of one's own:

  0000h  text that is readable in the display
  0200h  every byte value in order, FFh included: shows stuck and crossed data lines
  0300h  the address pattern: every 256-byte page differs, so a stuck or swapped address line shows
  6000h  FFh to the end: erased, so programming passes over it quickly
"""

import pathlib
import sys

SIZE = 0x8000
COUNT_START = 0x0200
PATTERN_START = 0x0300
TAIL_START = 0x6000

TEXT = (
  "KESTREL SAMPLE IMAGE FOR A 27C256 EPROM. "
  "32768 BYTES: TEXT FROM 0000H, ALL BYTE VALUES FROM 0200H, ADDRESS PATTERN FROM 0300H, "
  "ERASED FROM 6000H. THE QUICK BROWN FALCON HOVERS OVER THE LAZY DOG. "
)


def image():
  data = bytearray(b"\xff" * SIZE)
  line = TEXT.encode("ascii")
  for address in range(COUNT_START):
    data[address] = line[address % len(line)]
  for value in range(256):
    data[COUNT_START + value] = value
  for address in range(PATTERN_START, TAIL_START):
    data[address] = (address ^ (address >> 8) * 29) & 0xFF
  return bytes(data)


def main():
  target = (
    pathlib.Path(sys.argv[1])
    if len(sys.argv) > 1
    else pathlib.Path(__file__).parent / "sample-27C256.bin"
  )
  target.write_bytes(image())


if __name__ == "__main__":
  main()
