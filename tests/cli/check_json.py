#!/usr/bin/env python3
"""check_json.py KESTREL_CLI SCHEMA: what --json prints, held against the schema."""
import json
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

RUNS = (  # words, exit status, events that must be there
  ("devices --json", 0, {"device"}),
  ("devices -d 24C16 --json", 0, {"device"}),
  ("image info rom.hex --json", 0, {"image"}),
  ("image double -i rom.bin -o two.bin --json", 0, {"image"}),
  ("save-setup 2 name\xff -d 27C64 -i rom.bin --simulate --json", 0, {"start", "result"}),
  ("setups --json", 0, {"setup"}),
  ("detect --simulate --json --model 6", 0, {"start", "log", "result"}),
  ("blank program verify --simulate --json --yes -d 27C64 -i rom.hex --format auto", 0, {"log", "progress", "result"}),
  ("compare --simulate --json -d 27C64 -i rom.bin --chip 27C64", 4, {"differences", "result"}),
  ("program --several --report r.csv --serial at=10 --simulate --json --yes -d 27C64 -i rom.bin", 0, {"chip"}),
  ("read --simulate --json -d 24C16 --fault empty", 1, {"result"}),
  ("read --simulate --json", 2, {"result"}),
)


def main():
  program, schema = sys.argv[1], json.loads(pathlib.Path(sys.argv[2]).read_text(encoding="utf-8"))
  validator = jsonschema.Draft7Validator(schema)
  faults = []
  with tempfile.TemporaryDirectory() as folder:
    work = pathlib.Path(folder)
    (work / "rom.bin").write_bytes(bytes(range(256)) * 32)
    (work / "rom.hex").write_text(":0400300001020304C2\n:02004000AA55BF\n:00000001FF\n", encoding="ascii")
    for words, status, events in RUNS:
      arguments = [word.encode("latin-1") for word in words.split()]
      run = subprocess.run([program, *arguments], cwd=work, input=b"\n\n", capture_output=True, check=False,
                           env={"HOME": folder, "XDG_CONFIG_HOME": folder})
      lines = [json.loads(line) for line in run.stdout.decode("utf-8").splitlines()]
      faults += [f"{words}: {error.message}" for line in lines for error in validator.iter_errors(line)]
      for line in lines:
        if line["event"] == "result" and (line["ending"] == "done") != (line["status"] == 0):
          faults.append(f"{words}: {line['ending']} with status {line['status']}")
      if run.returncode != status or not events <= {line["event"] for line in lines}:
        faults.append(f"{words}: status {run.returncode}, {run.stderr.decode(errors='replace')}")
  print("\n".join(faults))
  return 1 if faults else 0


if __name__ == "__main__":
  sys.exit(main())
