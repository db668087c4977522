"""Counts the exported functions in the manual: functions.py EXPORTS.LIST TAGFILE. The tag file has what Doxygen has documented."""

import re
import sys
from pathlib import Path

listed, tags = (Path(name).read_text(encoding="utf-8") for name in sys.argv[1:])
exported = {line.split()[0] for line in listed.splitlines() if line.strip() and not line.startswith("#")}
told = set(re.findall(r'<member kind="function">\s*<type>[^<]*</type>\s*<name>(\w+)</name>', tags))
missing = sorted(exported - told)
if missing:
    sys.exit(f"the manual lacks {', '.join(missing)}")
print(f"the manual has all {len(exported)} exported functions")
