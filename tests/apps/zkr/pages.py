"""Holds what `zkr --print` makes against what help tells: every verb and option is on the man page and in each completion, the
shells take the completions, and that of bash completes. Usage: pages.py ZKR"""

import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

zkr = Path(sys.argv[1]).resolve()
faults = []


def output(*command, **settings):
    return subprocess.run(command, check=True, capture_output=True, text=True, **settings).stdout


def expect(true, words):
    if not true:
        faults.append(words)


pages = {kind: output(zkr, "--print", kind) for kind in ("man", "bash", "zsh", "fish")}
verbs = re.findall(r"^  (\w+)  ", output(zkr, "--help").partition("\nVerbs:\n")[2], re.M)
expect(len(verbs) > 20, f"help lists {verbs}")
told = {
    "man": lambda verb, name: name.replace("-", r"\-") in pages["man"].partition(f"\n.SS {verb}\n")[2].partition("\n.SS ")[0],
    "bash": lambda verb, name: re.search(rf"^ +{verb}\) words='.*{name}\b", pages["bash"], re.M),
    "zsh": lambda verb, name: f"'{name}[" in pages["zsh"].partition(f"\n    {verb})\n")[2].partition(";;")[0],
    "fish": lambda verb, name: re.search(rf"from {verb}'.* -l {name[2:]}\b", pages["fish"]),
}
for verb in verbs:
    for name in re.findall(r"^  (?:-\w,)?(--[\w-]+)", output(zkr, verb, "--help"), re.M):
        for kind, tells in told.items():
            expect((kind == "man" and name == "--help") or tells(verb, name), f"{kind} does not tell of {verb} {name}")
expect(subprocess.run([zkr, "--print", "html"], capture_output=True, check=False).returncode == 1, "--print html is no failure")

COMPLETE = '. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zkr; printf "%s\\n" "${COMPREPLY[@]}"'
CASES = [  # words of a command line, and what the last of them may become
    (["zkr", "gr"], {"gray"}),
    (["zkr", "gray", "--bits", "1"], {"12", "16"}),
    (["zkr", "gray", "a.png", "--b"], {"--bits"}),
    (["zkr", "colors", "--palette", ""], {"optimized", "fixed", "cube", "a picture.png", "folder"}),
    (["zkr", "colors", "--dither", "st"], {"stucki", "stevenson-arce"}),
    (["zkr", "play", "--out", ""], {"folder"}),
    (["zkr", "info", "a p"], {"a picture.png"}),
    (["zkr", "crop", "--left", ""], {""}),
]
with tempfile.TemporaryDirectory() as folder, tempfile.TemporaryDirectory() as apart:
    (Path(folder) / "a picture.png").touch()
    (Path(folder) / "folder").mkdir()
    file = Path(apart) / "page"
    for words, becomes in CASES:
        file.write_text(pages["bash"])
        found = set(output("bash", "-c", COMPLETE, "bash", file, *words, cwd=folder).rstrip("\n").split("\n"))
        expect(found == becomes, f"bash completes {words} to {found}, not {becomes}")
    for kind, command in {"man": ["man", "--warnings", "-Tutf8", "-l"], "zsh": ["zsh", "-n"], "fish": ["fish", "-n"]}.items():
        if shutil.which(command[0]):
            file.write_text(pages[kind])
            done = subprocess.run([*command, file], capture_output=True, text=True, check=False, env={"PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8"})
            expect(done.returncode == 0 and not done.stderr, f"{command[0]} says of its page: {done.stderr}")
print("\n".join(faults) or f"the pages tell of {len(verbs)} verbs")
sys.exit(bool(faults))
