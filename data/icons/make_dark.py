#!/usr/bin/env python3
"""Makes dark/ from light/: the same drawings with the colours for a dark window.

Draw and change an icon in light/ only: 24 x 24, strokes of 1.5, round caps and joins, the ink and
at most one of the other colours. Then run this script and commit both folders.
"""

import pathlib
import re
import sys

FOR_DARK = {
  "#33404d": "#dfe5ea",  # ink
  "#1769aa": "#6cb6f2",  # what the action moves or looks at
  "#a85a06": "#f0b35a",  # programming voltage
  "#c62828": "#ff8a80",  # takes something away
}


def main():
  here = pathlib.Path(__file__).parent
  for source in sorted((here / "light").glob("*.svg")):
    text = source.read_text(encoding="utf-8")
    unknown = set(re.findall(r"#[0-9a-f]{6}", text)) - set(FOR_DARK)
    if unknown:
      sys.exit(f"{source.name}: colour without a counterpart: {', '.join(sorted(unknown))}")
    for light, dark in FOR_DARK.items():
      text = text.replace(light, dark)
    (here / "dark" / source.name).write_text(text, encoding="utf-8")


if __name__ == "__main__":
  main()
