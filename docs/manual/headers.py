"""What Doxygen reads in place of a public header: the same declarations, with each comment in Doxygen's form. Lines stay where they
are, for the most part. Of a page: the page, with its names of functions as links. Usage: headers.py FILE (Doxygen's filter)"""

import re
import sys
from pathlib import Path

COMMENT = re.compile(r"/\*(.*?)\*/", re.S)
ENTRY = re.compile(r"^(?P<names>\w+(?:(?:, | \.\.\. )\w+)*)(?: {2,}(?P<text>\S.*)|(?P<direction> {4}(?:in|out)\b.*))?$")
TABLE = re.compile(r"^(?P<word>\S(?:.*?\S)?) {2,}(?P<text>\S.*)$")


EXPORTS = Path(__file__).resolve().parents[2] / "include/zkr13n/exports.list"
FUNCTIONS = {line.split()[0] for line in EXPORTS.read_text(encoding="utf-8").splitlines() if line.startswith("Z_")}


def linked(text):
    return re.sub(r"(?<![\w`])Z_\w+", lambda found: f'@ref {found[0]} "{found[0]}"' if found[0] in FUNCTIONS else found[0], text)


def escaped(text):
    return linked(re.sub(r"([\\@<>&#%~])", r"\\\1", text))


def parameters_of(declaration):
    inside = declaration[declaration.find("(") + 1:]
    return {found[1] for part in inside.split(",") if (found := re.search(r"(\w+)\W*$", part))}


def marked(lines, parameters):
    """Lines of a comment with its tables: of parameters as such, of other words as lists."""
    inside, seen, wide = None, set(), False
    for number, line in enumerate(lines):
        indent = len(line) - len(line.lstrip())
        text = line.strip()
        found = TABLE.match(text)
        if wide:  # a table of several columns stays as it is
            wide = number + 1 < len(lines) and bool(lines[number + 1].strip())
            yield line + ("" if wide else "\n@endverbatim")
        elif indent >= 2 and not text.startswith("-") and re.search(r"\S {3,}\S.* {3,}\S", text) and not lines[number - 1].strip():
            wide = True
            yield "@verbatim\n " + line
        elif not text:
            inside = None
            yield ""
        elif inside is not None and indent > inside:
            yield escaped(text)
        elif found and indent < 12 and not text.startswith(("-", "*")):
            names = [name.strip() for name in re.split(r",| \.\.\. ", found["word"])]
            inside = indent
            if indent == 0 and set(names) <= parameters - seen and names != [""]:
                seen |= set(names)
                yield f"@param {','.join(names)} {escaped(found['text'])}"
            else:
                yield f"- `{found['word']}`: {escaped(found['text'])}"
        else:
            inside = None if indent == 0 else inside
            yield ("  " * (indent >= 2) + escaped(text)) if text.startswith("- ") else escaped(text)


def block(comment, declaration, also):
    body = [re.sub(r"^ ?\* ?", "", line).rstrip() for line in comment.split("\n")]
    lines = list(marked([line[1:] if i == 0 and line.startswith(" ") else line for i, line in enumerate(body)],
                        parameters_of(declaration)))
    first = next((i for i, line in enumerate(lines) if line), 0)
    lines[first] = also + lines[first]
    return "/**" + "\n".join(" " + line if line else "" for line in lines) + " */"


def main():
    file = Path(sys.argv[1])
    text = file.read_text(encoding="utf-8")
    if file.suffix == ".md":
        code = re.split(r"(^```.*?^```$|`[^`\n]+`)", text, flags=re.M | re.S)
        sys.stdout.write("".join(part if number % 2 else linked(part) for number, part in enumerate(code)))
        return
    if file.name == "raster_component.h":  # of Windows alone, where nobody else declares what is in it
        text = text.replace("#ifdef _WIN32", "#if 1")
    parts, last = [], 0
    for number, found in enumerate(COMMENT.finditer(text)):
        parts.append(text[last:found.start()])
        last = found.end()
        line = text[:found.start()].rpartition("\n")[2]
        rest = text[last:]
        if number == 0:
            parts.append(block(found[1], "", f"@file {file.name}\n "))
        elif line.strip() and not line.strip().endswith("{"):
            parts.append("/**<" + escaped(" ".join(re.sub(r"\n\s*\*? ?", " ", found[1]).split())).join("  ") + "*/" + "\n" * found[1].count("\n"))
        else:
            # One comment stands for all declarations up to the next empty line.
            declared = re.match(r"\s*((?:[^;{}]*;[ \t]*\n)+)", rest.split("\n\n")[0] + "\n")
            several = re.findall(r"(?:Z_API|virtual|typedef)[^;]*;[ \t]*\n?", declared[1]) if declared else []
            parts.append(block(found[1], several[0] if several else rest.partition(";")[0], ""))
            if len(several) > 1:
                parts.append("\n" + several[0].rstrip("\n"))
                for one in several[1:]:
                    parts.append("\n" + block(found[1], one, "").replace("\n", " \n") + "\n" + one.rstrip("\n"))
                last += declared.end() - 1
    sys.stdout.write("".join(parts) + text[last:])


main()
