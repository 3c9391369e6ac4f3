#!/usr/bin/env python3
"""Makes the five sounds of the program: python3 make_sounds.py [FOLDER]

Every tone is computed, nothing is recorded and nothing is random: the same script gives the same
files, byte for byte. Mono, 16 bit, 22.05 kHz; each file stays below 30 KB, so that it starts at
once and is over before the next command.
"""

import array
import math
import pathlib
import sys
import wave

RATE = 22050
PEAK = 0.55  # of full scale: clearly heard, and no sound startles


def tone(hertz, seconds, overtones, decay):
  """One struck note: a sine with overtones (relative strengths), dying away `decay` times a second."""
  samples = []
  for n in range(round(seconds * RATE)):
    t = n / RATE
    wave_sum = sum(
      strength * math.sin(2 * math.pi * hertz * (k + 1) * t) for k, strength in enumerate(overtones)
    )
    attack = min(1.0, t / 0.006)  # 6 ms: a note that starts at once would click
    release = min(1.0, (seconds - t) / 0.012)
    samples.append(wave_sum * attack * release * math.exp(-decay * t))
  return samples


def mix(length_seconds, *notes):
  """Lays notes, given as (start in seconds, samples), over each other."""
  total = [0.0] * round(length_seconds * RATE)
  for start, samples in notes:
    first = round(start * RATE)
    for n, value in enumerate(samples):
      if first + n < len(total):
        total[first + n] += value
  return total


BELL = (1.0, 0.28, 0.10, 0.04)
REED = (1.0, 0.0, 0.55, 0.0, 0.35, 0.0, 0.2)  # odd overtones only: a rasping voice

C5, E5, G5, A5, C6, E6 = 523.25, 659.26, 783.99, 880.0, 1046.50, 1318.51


def sounds():
  """File name and samples of each sound. Rising means well, falling and rasping means trouble."""
  return {
    "init.wav": mix(
      0.66,
      (0.00, tone(C5, 0.40, BELL, 6)),
      (0.09, tone(E5, 0.40, BELL, 6)),
      (0.18, tone(G5, 0.40, BELL, 6)),
      (0.27, tone(C6, 0.39, BELL, 6)),
    ),
    "ok.wav": mix(0.45, (0.00, tone(G5, 0.20, BELL, 9)), (0.11, tone(E6, 0.34, BELL, 9))),
    "done.wav": mix(0.30, (0.00, tone(A5, 0.30, BELL, 13))),
    "slide.wav": mix(0.05, (0.00, tone(C6, 0.05, (1.0, 0.3), 60))),
    "error.wav": mix(
      0.62,
      (0.00, tone(233.08, 0.20, REED, 2)),
      (0.24, tone(155.56, 0.38, REED, 3)),
    ),
  }


def write_wav(path, samples):
  loudest = max(abs(value) for value in samples)
  scaled = array.array("h", (round(value / loudest * PEAK * 32767) for value in samples))
  if sys.byteorder == "big":
    scaled.byteswap()
  with wave.open(str(path), "wb") as out:
    out.setnchannels(1)
    out.setsampwidth(2)
    out.setframerate(RATE)
    out.writeframes(scaled.tobytes())


def main():
  folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parent
  for name, samples in sounds().items():
    write_wav(folder / name, samples)


if __name__ == "__main__":
  main()
