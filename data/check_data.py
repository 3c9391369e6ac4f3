#!/usr/bin/env python3
"""Checks the files beside the programs: python3 data/check_data.py

Finds what no compiler sees: a help page that is not listed, a link into nowhere, an icon without its
dark twin, a sound that grew too long, generated files that do not match their script. Prints each
fault and returns 1 if there is one. Needs the standard library alone.
"""

import pathlib
import subprocess
import sys
import tempfile
import wave
import xml.etree.ElementTree as xml

DATA = pathlib.Path(__file__).parent
SOUNDS = ("done", "error", "init", "ok", "slide")
ICONS = (
  "blank-check", "display", "erase-buffer", "erase-chip", "help", "open-code", "open-data",
  "program", "read", "save-code", "save-data", "stop", "test-hardware", "verify",
)
# What a text browser without script and network can show.
TAGS = set("a b body br code h1 h2 head html i li meta ol p pre table td th title tr ul".split())


def help_index():
  """Page, title and keywords of each line of the help file."""
  for line in (DATA / "help/kestrel5.hlp").read_text(encoding="utf-8").splitlines():
    if line and not line.startswith("#"):
      yield line.split("\t")


def help_page_faults(path, title):
  try:
    root = xml.parse(path).getroot()
  except (OSError, xml.ParseError) as error:
    yield f"{path.name}: {error}"
    return
  if root.findtext("head/title") != title or root.findtext("body/h1") != title:
    yield f"{path.name}: title and heading are not '{title}'"
  for tag in {element.tag for element in root.iter()} - TAGS:
    yield f"{path.name}: <{tag}> is not in the subset"
  for link in root.iter("a"):
    target, _, anchor = link.get("href", "").partition("#")
    page = path.parent / target if target else path
    if not page.is_file():
      yield f"{path.name}: link to {target}"
    elif anchor and all(e.get("id") != anchor for e in xml.parse(page).getroot().iter()):
      yield f"{path.name}: no #{anchor} in {page.name}"


def help_faults():
  entries = list(help_index())
  for entry in entries:
    if len(entry) != 3 or not all(entry):
      yield f"kestrel5.hlp: not page, title, keywords: {entry}"
    else:
      yield from help_page_faults(DATA / "help" / entry[0], entry[1])
  listed = [entry[0] for entry in entries]
  present = sorted(path.name for path in (DATA / "help").glob("*.html"))
  if sorted(listed) != present:
    yield f"kestrel5.hlp: lists {sorted(listed)}, the folder has {present}"


def icon_faults():
  for theme in ("light", "dark"):
    names = sorted(path.stem for path in (DATA / "icons" / theme).glob("*.svg"))
    if names != sorted(ICONS):
      yield f"icons/{theme}: {names}"
    for name in names:
      root = xml.parse(DATA / "icons" / theme / f"{name}.svg").getroot()
      if root.get("viewBox") != "0 0 24 24" or root.get("stroke-width") != "1.5":
        yield f"icons/{theme}/{name}.svg: not 24 x 24 with strokes of 1.5"


def sound_faults():
  for name in SOUNDS:
    path = DATA / f"sounds/{name}.wav"
    with wave.open(str(path)) as sound:
      form = (sound.getnchannels(), sound.getsampwidth(), sound.getframerate())
    if form != (1, 2, 22050) or path.stat().st_size >= 30 * 1024:
      yield f"{path.name}: {form}, {path.stat().st_size} bytes"


def generated_faults():
  """The committed files are what their scripts make."""
  with tempfile.TemporaryDirectory() as folder:
    made = pathlib.Path(folder)
    sample = made / "sample-27C256.bin"
    subprocess.run([sys.executable, DATA / "sounds/make_sounds.py", made], check=True)
    subprocess.run([sys.executable, DATA / "sample/make_sample.py", sample], check=True)
    for path in sorted(made.iterdir()):
      kept = DATA / ("sample" if path == sample else "sounds") / path.name
      if path.read_bytes() != kept.read_bytes():
        yield f"{path.name}: differs from what its script makes"


def main():
  faults = [*help_faults(), *icon_faults(), *sound_faults(), *generated_faults()]
  for fault in faults:
    print(fault)
  return 1 if faults else 0


if __name__ == "__main__":
  sys.exit(main())
