#!/usr/bin/env python3
"""Lists the exports for the tests: list_exports.py OUT

For each function of the library OUT gets a line KIRVO_EXPORT(name, "names of its parameters",
codes...), the codes being those that the documentation of kirvo.h names for its status: in @return and in the
status parameter, "as <function>" included.
"""
import pathlib
import re
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "interface"))
from description import Description
from header import Header

OUT = pathlib.Path(sys.argv[1])

header = Header()
names = [function.name for function in Description().functions if function.home == "Kirvo"]
documentation_of = {
    name: " ".join(re.findall(r"@(?:return|param\[out\] (?:status|error))\b([^@]*)",
                              header.comments[name].raw))
    for name in names}


def codes(documentation, group):
    found = re.findall(r"#(KIRVO_\w+)", documentation)
    found += re.findall(r"(?:^|;)\s*(-\d+) ", documentation)
    for like in re.findall(r"\b(?:as|as for|codes of)\s+(\w+(?:\s+and\s+\w+)*)", documentation):
        for name in re.findall(r"\w+", like):
            if name in documentation_of:
                found += codes(documentation_of[name], group)
    if "see above" in documentation:
        found += codes(group, "")
    return list(dict.fromkeys(found))


lines = []
for name in names:
    group = header.group_comments[header.groups[name]].raw
    parts = [name, '"' + " ".join(header.parameters[name]) + '"',
             *codes(documentation_of[name], group)]
    lines.append(f"KIRVO_EXPORT({', '.join(parts)})\n")
content = "".join(lines)
if not OUT.exists() or OUT.read_text() != content:
    OUT.parent.mkdir(parents=True, exist_ok=True)
    OUT.write_text(content)
