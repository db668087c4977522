"""Holds the layout of every source file against .clang-format. Usage: format.py TOP CLANG-FORMAT"""

import subprocess
import sys
from pathlib import Path

top = Path(sys.argv[1])
files = [str(path) for path in sorted(top.rglob("*")) if path.suffix in (".h", ".c", ".cpp")
         and path.relative_to(top).parts[0] not in ("build", "out", ".git")]
sys.exit(subprocess.run([sys.argv[2], "--dry-run", "-Werror", "--ferror-limit=3", *files], check=False).returncode)
