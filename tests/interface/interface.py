"""What programs that were built once rely on: exported functions with their types, callbacks, records with the places of
their fields, values of constants, the members of the raster object in their order. The lists beside this file have them, one
for each kind of system; docs/changing-the-interface.md tells how they change.

    interface.py check  TOP LIST COMPILER    holds the headers, as a C compiler sees them, against a list
    interface.py accept TOP LIST COMPILER    adds what is new to a list; what has changed or gone stays a failure
    interface.py accept-changes TOP LIST COMPILER    writes the list anew
"""

import re
import subprocess
import sys
import tempfile
from pathlib import Path

FUNCTION = re.compile(r"\bZ_API\s+([^;{}()]*?)\bZ_CALL\s+(\w+)\s*\(([^;]*)\)\s*;")
CALLBACK = re.compile(r"\btypedef\s+([^;{}()]*?)\(\s*Z_CALL\s*(\*?)\s*(\w+)\s*\)\s*\(([^;]*?)\)\s*;")
RECORD = re.compile(r"\btypedef\s+struct\s+\w*\s*\{([^{}]*)\}\s*(\w+)\s*;")
ENUMERATION = re.compile(r"\benum\s*\w*\s*\{([^{}]*)\}")
CONSTANT = re.compile(r"^\s*#\s*define\s+(\w+)[ \t]+(\S.*)$", re.M)
NAMED_TYPE = re.compile(r"\btypedef\s+([^;{}()]+?)(\w+)\s*;")
CLASS = re.compile(r"\bstruct\s+(\w+)\s*\{((?:[^{}]|\{\s*\})*\bvirtual\b(?:[^{}]|\{\s*\})*)\}\s*;")
MEMBER = re.compile(r"\bvirtual\s+([^;()]*?)(\w+)\s*\(([^;()]*)\)\s*=\s*0\s*;")


def for_system(text, defined):
    """The lines of a header that a system sees, without comments."""
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
    seen, kept = [True], []
    for line in text.splitlines():
        if found := re.match(r"\s*#\s*if(n?)def\s+(\w+)", line):
            seen.append(seen[-1] and (found[2] in defined) != bool(found[1]))
        elif re.match(r"\s*#\s*else", line):
            seen[-1] = seen[-2] and not seen[-1]
        elif re.match(r"\s*#\s*endif", line):
            seen.pop()
        elif seen[-1]:
            kept.append(line)
    return "\n".join(kept)


def type_of(declaration):
    """A parameter or field without its name; a callback keeps its place in the text."""
    plain = " ".join(declaration.split())
    return re.sub(r"\s*(\*+)\s*", r"\1 ", re.sub(r"(?<=[\w*] |.[*])\b\w+(\[\w*\])?$", r"\1", plain)).strip() or plain


def types_of(parameters):
    return ", ".join(type_of(part) if " " in part.strip() else part.strip() for part in parameters.split(","))


def fields_of(body):
    for declaration in body.split(";"):
        if called := re.search(r"\(\s*Z_CALL\s*\*\s*(\w+)\s*\)", declaration):
            yield called[1], "callback"
        elif found := re.search(r"(\w+)\s*(\[\w+\])?\s*$", declaration):
            yield found[1], " ".join(declaration[:found.start()].split()) + (found[2] or "")


def measured(compiler, top, questions):
    """The values of constant expressions, read from what the compiler makes of them: no program has to run."""
    with tempfile.TemporaryDirectory() as folder:
        source = Path(folder) / "questions.c"
        asks = "\n".join(f'    __asm__ volatile("\\n#> {i} %c0" : : "i"((int)({question})));' for i, question in enumerate(questions))
        source.write_text(f"#include <stddef.h>\n#include <zkr13n.h>\nint main(void) {{\n{asks}\n    return 0;\n}}\n")
        done = subprocess.run([compiler, "-std=gnu11", "-O0", "-S", "-o", "-", f"-I{top / 'include'}", source],
                              capture_output=True, text=True, check=False)
    if done.returncode != 0:
        sys.exit(done.stderr)
    return [int(value) for _, value in sorted((int(i), value) for i, value in re.findall(r"#> (\d+) \$?(-?\d+)", done.stdout))]


def interface(top, system, compiler):
    defined = {"_WIN32"} if system.startswith("windows") else set()
    headers = [top / "include/zkr13n.h", *sorted((top / "include/zkr13n").glob("*.h"))]
    lines, asked = [], []  # what is told at once, and what the compiler is asked for: line, questions
    for header in headers:
        text = for_system(header.read_text(encoding="utf-8"), defined)
        lines += [f"function {name}: {type_of(result + ' x')} ({types_of(parameters)})"
                  for result, name, parameters in FUNCTION.findall(text)]
        lines += [f"callback {name}{' pointer' if star else ''}: {type_of(result + ' x')} ({types_of(parameters)})"
                  for result, star, name, parameters in CALLBACK.findall(text)]
        for body, record in RECORD.findall(text):
            asked.append((f"record {record}: bytes {{}}", f"sizeof({record})"))
            for field, kind in fields_of(body):
                asked.append((f"field {record}.{field}: {kind}, bytes {{}} at {{}}", f"sizeof((({record}*)0)->{field})",
                              f"offsetof({record}, {field})"))
        for body in ENUMERATION.findall(text):
            asked += [(f"value {name}: {{}}", name) for name in re.findall(r"(\w+)\s*(?:=[^,]*)?(?:,|$)", body.strip())]
        asked += [(f"value {name}: {{}}", name) for name, value in CONSTANT.findall(text) if not name.startswith(("Z_API", "Z_CALL"))
                  and re.match(r"[\d(]", value)]
        asked += [(f"type {name}: {type_of(what + ' x')}, bytes {{}}", f"sizeof({name})") for what, name in NAMED_TYPE.findall(text)
                  if "struct" not in what or "*" in what]
        for name, body in CLASS.findall(for_system(header.read_text(encoding="utf-8"), defined | {"__cplusplus"})):
            lines += [f"member {name} {slot:03}: {result.strip()} {member}({types_of(parameters)})"
                      for slot, (result, member, parameters) in enumerate(MEMBER.findall(body))]
    if defined:
        idl = for_system((top / "automation/windows/raster.idl").read_text(encoding="utf-8"), defined)
        for name, body in re.findall(r"\binterface (\w+)\s*:\s*\w+\s*\{([^{}]*)\}", idl):
            lines += [f"member {name} {slot:03}: " + " ".join(member.split())
                      for slot, member in enumerate(part for part in body.split(";") if part.strip())]
        lines += [f"identifier {' '.join(what.split())}: {uuid}"
                  for uuid, what in re.findall(r"uuid\(([\w-]+)\)[^]]*\]\s*(\w+ \w+)", idl)]
    answers = iter(measured(compiler, top, [question for _, *questions in asked for question in questions]))
    return sorted(set(lines) | {line.format(*[next(answers) for _ in questions]) for line, *questions in asked})


def key(line):
    """What a line is about."""
    return line.partition(":")[0]


def main():
    action, top, file, compiler = sys.argv[1], Path(sys.argv[2]), Path(sys.argv[3]), sys.argv[4]
    now = interface(top, file.stem, compiler)
    before = file.read_text(encoding="utf-8").splitlines() if file.exists() else []
    present = {key(line): line for line in now}
    broken = [line for line in before if line not in set(now)]
    new = sorted(set(now) - set(before) - {present.get(key(line)) for line in broken})
    if action == "accept-changes" or (action == "accept" and not broken):
        file.write_text("\n".join(now) + "\n", encoding="utf-8")
        print(f"{file.name}: {len(now)} lines")
        return
    for line in broken:
        print(f"landed:  {line}\n    now: {present.get(key(line), 'nothing')}")
    for line in new:
        print(f"new:     {line}")
    if broken or new:
        sys.exit(f"{file.name}: {len(broken)} lines are broken, {len(new)} are new (see docs/changing-the-interface.md)")
    print(f"{len(now)} lines hold")


main()
