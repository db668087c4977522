"""Tries what the doors of the project say before they install or build anything. Usage: doors.py TOP"""

import subprocess
import sys
import tempfile
from pathlib import Path

top = Path(sys.argv[1]).resolve()
faults = []


def expect(command, status, words):
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != status or words not in done.stdout + done.stderr:
        faults.append(f"{command} gave {done.returncode}, not {status} and '{words}':\n{done.stdout}{done.stderr}")


with tempfile.TemporaryDirectory() as folder:
    for name in ("run", "test", "bench", "package", "manual"):
        link = Path(folder) / name
        link.symlink_to(top / name)
        expect([link, "--help"], 0, f"./{name} ")
        expect(["sh", top / name, "--help"], 2, "for bash")
expect([top / "test", "windws"], 1, "no set of tests 'windws'")
expect([top / "package", "rpm"], 1, "no package 'rpm'")
print("\n".join(faults) or "the doors tell what they are")
sys.exit(bool(faults))
