"""Holds the documents against the tree: the README shows the example as it is compiled, and every file and folder
that a document names or links exists. Usage: documents.py TOP"""

import re
import sys
from pathlib import Path

top = Path(sys.argv[1])
documents = [top / "README.md", *sorted((top / "docs").glob("*.md"))]
faults = []
if (top / "examples/gray.c").read_text() not in documents[0].read_text():
    faults.append("README.md does not show examples/gray.c as it is")
for document in documents:
    text = document.read_text()
    links = [(document.parent, link) for link in re.findall(r"\]\(([^)#:]+)\)", text)]
    # Paths in code spans count when they begin with a folder of the tree.
    spans = [(top, span) for span in re.findall(r"`([\w./-]+/[\w./-]*)`", text)
             if (top / span.split("/")[0]).is_dir() and not span.startswith(("build/", "out/", "zkr13n/"))]
    faults += [f"{document.name} names {name}, which does not exist" for folder, name in links + spans
               if not (folder / name).exists()]
print("\n".join(faults) or f"{len(documents)} documents tell the truth about the tree")
sys.exit(bool(faults))
