#!/usr/bin/env python3
"""Checks the files beside the programs: python3 data/check_data.py [--cli PROGRAM] [--window PROGRAM]

Finds what no compiler sees: a help page that is not listed, a link into nowhere, an icon without its
dark twin, a sound that grew too long, generated files that do not match their script, a message of
the program that the manual does not explain. With the programs built, also: a device or an option
that manual, man pages or completion leave out, or still have. Prints each fault and returns 1 if
there is one. Needs the standard library alone.
"""

import argparse
import html
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import wave
import xml.etree.ElementTree as xml

DATA = pathlib.Path(__file__).resolve().parent
SOURCE = DATA.parent / "src"
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


# Where no text is a message of the program at its log or in a box.
NO_MESSAGES = (
  "app/launch/",  # wrong options: told at once, with what would be right
  "app/work/",  # the same
  "cli/",  # the same
  "simulator/",  # findings, explained by their panel
  "waveform/",  # the words of a wave file
  "app/state/controls",  # captions: the pages of the window
  "devices/",  # names
  "guard/",  # refuses a start by hand
  "images/",  # what is wrong with a file or a change: told with its remedy
  "link/",  # the line to an adapter, which no option offers yet: docs/link.md
  "display/exports.cpp",  # the heads of two files: formats.html
  "hardware/hardware_config.cpp",  # the text of a file: formats.html
  "app/form/series_report.cpp",  # what is wrong with a file: told with its remedy
  "setups/project_file.cpp",  # the same, with the line
  "hardware/ports/lpt_filter.cpp",  # a fault of the program itself
  "hardware/ports/port_choice.cpp",  # the option --port
)
# The reason of an ending is a sentence that needs no other.
REASON = r"noteEnding\([^;]*;|Outcome::(?:refused|failed)\([^;]*;|\.reason = [^,}]*"
LITERAL = r'"(?:[^"\\\n]|\\.)*"'


def plain(text):
  """With single blanks, and what C++ or HTML writes for a character as that character."""
  text = html.unescape(text).replace("\\n", " ").replace("\\r", " ").replace('\\"', '"')
  return " ".join(text.replace("\u00a0", " ").split())


def literals(code):
  """The texts of a C++ file, neighbours joined as the compiler joins them."""
  code = re.sub(r"^\s*#.*$|//.*$", "", code, flags=re.MULTILINE)
  for run in re.findall(rf"{LITERAL}(?:\s*{LITERAL})*", code):
    yield plain("".join(part[1:-1] for part in re.findall(LITERAL, run)))


def messages():
  """File and text of each literal of two words or more that the program may log or show."""
  for path in sorted([*SOURCE.rglob("*.cpp"), *SOURCE.rglob("*.h")]):
    name = path.relative_to(SOURCE).as_posix()
    if name.startswith(NO_MESSAGES):
      continue
    code = path.read_text(encoding="utf-8")
    if name.startswith("app/window/"):  # full of captions: its boxes alone
      code = "\n".join(re.findall(r"QMessageBox::[a-z]+\([^;]*;", code))
    for text in literals(re.sub(REASON, "", code)):
      if re.search(r"[A-Za-z]{2}\S* (?:\S* )*\S*[A-Za-z]{2}", text):
        yield name, text


def message_faults():
  page = (DATA / "help/messages.html").read_text(encoding="utf-8")
  known = plain(re.sub(r"<[^>]*>", " ", page))
  found = list(messages())
  if len(found) < 100:
    yield f"only {len(found)} messages found in {SOURCE}: look at how they are searched for"
  for name, text in found:
    # Where a value is put in, the words on both sides count; where a filter is given, its name.
    for part in re.split(r"%\d|\|\*", text):
      if part.strip() not in known:
        yield f"messages.html: lacks '{text}' of src/{name}"


def printed(program, *words):
  environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen"}
  return subprocess.run([program, *words], check=True, capture_output=True, text=True,
                        env=environment).stdout


def options_of(program):
  """Those that --help lists, such as -d or --vpp."""
  rows = re.findall(r"^  (-[^\s,]+(?:, ?-[^\s,]+)?)", printed(program, "--help"), flags=re.MULTILINE)
  return {name for row in rows for name in re.split(r", ?", row)}


def differences(where, present, wanted):
  for name in sorted(set(wanted) - set(present)):
    yield f"{where}: lacks {name}"
  for name in sorted(set(present) - set(wanted)):
    yield f"{where}: has {name}, which the program has not"


def man_faults(program, page):
  text = (DATA / "man" / page).read_text(encoding="utf-8")
  items = re.findall(r"^\.It (Fl .*)$", text, flags=re.MULTILINE)
  names = {"-" + name for item in items for name in re.findall(r"\bFl (-?[a-z-]+)", item)}
  yield from differences(page, names, options_of(program))


def device_faults(program):
  """devices.html names each device with its size and voltages, or as not available."""
  page = xml.parse(DATA / "help/devices.html").getroot()
  told = set()
  for row in page.iter("tr"):
    names, size, voltages = (["|".join(cell.itertext()) for cell in row] + [""] * 3)[:3]
    told |= {(name.strip(), size, voltages) for name in names.split("|")}
  told |= {("N/A - " + item.text, "", "") for item in page.iter("li")}
  told.discard(("Device", "Size", "Voltage buttons"))
  listed = set()
  for line in printed(program, "devices").splitlines():
    name, size, voltages = re.fullmatch(r"(.*?) +(\d+) KB +(.*)", line).groups()
    offered = (name, f"{int(size) * 1024:,}", voltages)
    listed.add((name, "", "") if name.startswith("N/A") else offered)
  yield from differences("devices.html", map(" | ".join, told), map(" | ".join, listed))


def command_line_faults(program):
  """Page, man page and completion have the options and commands that the program has."""
  options = options_of(program)
  section = printed(program, "--help").split("\nCommands:\n")[1]
  commands = set(re.findall(r"^  ([a-z-]+)", section, flags=re.MULTILINE))
  page = (DATA / "help/command-line.html").read_text(encoding="utf-8")
  rows = "".join(re.findall(r"<tr><td>.*?</td>", page))
  told = set(re.findall(r"<code>(-[a-z-]+)", rows))
  yield from differences("command-line.html", told, options)
  manual = (DATA / "man/kestrel-cli.1").read_text(encoding="utf-8")
  for command in sorted(commands):
    if f"<td><code>{command}" not in page:
      yield f"command-line.html: lacks {command}"
    if f".It Cm {command}" not in manual:
      yield f"kestrel-cli.1: lacks {command}"
  completion = (DATA / "completion/kestrel-cli.bash").read_text(encoding="utf-8")
  words = {name: set(re.search(rf'{name}="([^"]*)"', completion)[1].split())
           for name in ("options", "commands")}
  yield from differences("kestrel-cli.bash", words["options"], options)
  yield from differences("kestrel-cli.bash", words["commands"], commands)


def main():
  parser = argparse.ArgumentParser()
  parser.add_argument("--cli", help="kestrel-cli as built")
  parser.add_argument("--window", help="kestrel as built")
  programs = parser.parse_args()
  faults = [*help_faults(), *icon_faults(), *sound_faults(), *generated_faults(), *message_faults()]
  if programs.cli:
    faults += [*man_faults(programs.cli, "kestrel-cli.1"), *device_faults(programs.cli),
               *command_line_faults(programs.cli)]
  if programs.window:
    faults += man_faults(programs.window, "kestrel.1")
  for fault in faults:
    print(fault)
  return 1 if faults else 0


if __name__ == "__main__":
  sys.exit(main())
