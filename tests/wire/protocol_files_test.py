"""Whether the files of protocol/ have only the attributes that protocol/README.md explains, and say what tools need.

    protocol_files_test.py ROOT

A tool that asks a platform relies on `effect`, and on `handle`: for each kind of handle that a request needs, there is a
reply that contains one.
"""

import json
import pathlib
import re
import sys

OPERATION = {"name", "method", "code", "form", "effect", "doc", "note", "request", "reply"}
MEMBER = {"key", "type", "doc", "out", "repeat", "key_length", "max", "size", "fields", "when", "optional", "items",
          "handle", "shared", "clock", "example"}
QUESTION = re.compile(r"(\w+_)?[Gg]et[A-Z]\w*|Item|HasCapability")


def members_of(operation):
    return operation["request"] + operation["reply"]


def findings_of(name, operation):
    """Yields what is wrong with an operation."""
    for attribute in sorted(set(operation) - OPERATION):
        yield f"{name}: unknown attribute {attribute}"
    if operation.get("effect") not in (None, "none", "release"):
        yield f"{name}: unknown effect {operation['effect']}"
    if operation.get("effect") == "none" and re.search(r"(^|_)(Set|Release|Destroy|Register)", operation["name"]):
        yield f"{name}: it changes something, but its effect is none"
    if QUESTION.fullmatch(operation["name"]) and operation["reply"] and "effect" not in operation:
        yield f"{name}: a question without an effect"
    for member in members_of(operation):
        for attribute in sorted(set(member) - MEMBER):
            yield f"{name}: member {member['key']}: unknown attribute {attribute}"
        handle = member["type"] == "pointer" and member["key"] != "context"
        if handle != ("handle" in member):
            yield f"{name}: member {member['key']}: a handle and its kind do not go together"


def main():
    root = pathlib.Path(sys.argv[1])
    readme = (root / "protocol" / "README.md").read_text()
    findings = [f"README.md does not explain {word}" for word in sorted(OPERATION | MEMBER) if f"`{word}`" not in readme]
    needed = {}
    given = set()
    for path in sorted((root / "protocol").glob("*.json")):
        family = json.loads(path.read_text())
        shared = [family["envelope"]["object"]] if "object" in family["envelope"] else []
        for operation in family["operations"]:
            name = f"{path.name}: {operation['name']}"
            operation["request"] = shared + operation["request"]
            findings += findings_of(name, operation)
            needed.update({member["handle"]: name for member in operation["request"] if "handle" in member})
            given |= {member["handle"] for member in operation["reply"] if "handle" in member}
    findings += [f"{name}: no reply contains a handle of the kind {kind}" for kind, name in sorted(needed.items())
                 if kind not in given]
    print("\n".join(findings))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
