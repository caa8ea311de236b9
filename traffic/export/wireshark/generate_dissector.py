#!/usr/bin/env python3
"""Writes the Wireshark dissector, from its template and the files of protocol/.

    generate_dissector.py OUTPUT TEMPLATE FILE...
"""

import json
import pathlib
import sys

TYPES = {"pointer": "handle", "int": "integer", "uint": "integer", "int64": "integer", "uint64": "integer",
         "bool": "bool", "double": "double", "string": "string", "array": "string"}


def quoted(text):
    return json.dumps(text)  # names have ASCII characters only


def operations_of(family, events):
    """The names by the key that the template finds them by: the first one if several have the same code."""
    names = {}
    for entry in family.get("events" if events else "operations", []):
        prefix = f"{entry['object']}:" if "object" in entry else ""
        if "code" in entry:
            names.setdefault(f"{prefix}{entry['code']}", entry["name"])
    return names.items()


def variants_of(family):
    """By code: the operations that have it, with the keys of their members, if there are several."""
    variants = {}
    for entry in family["operations"]:
        if "code" in entry:
            keys = [member["key"] for member in entry["request"] if "%" not in member["key"]]
            variants.setdefault(entry["code"], []).append((entry["name"], keys))
    return {code: several for code, several in variants.items() if len(several) > 1}


def variant_lines(family):
    lines = []
    for code, several in variants_of(family).items():
        lines.append(f"            [{code}] = {{")
        for name, keys in several:
            lines.append(f"                {{name = {quoted(name)}, keys = {{{', '.join(map(quoted, keys))}}}}},")
        lines.append("            },")
    return lines


def socket_table(family, kind):
    events = kind == "events"
    envelope = family["event_envelope" if events else "envelope"]
    lines = [f"    [{quoted(family['endpoints'][kind]['socket'])}] = {{",
             f"        family = {quoted(family['family'])}, event = {'true' if events else 'false'},",
             f"        code = {quoted(envelope['code']['key'])},"]
    if events and "type" in envelope and "value" not in envelope["type"]:
        lines.append(f"        object = {quoted(envelope['type']['key'])},")
    lines.append("        operations = {")
    lines += [f"            [{quoted(key)}] = {quoted(name)}," for key, name in operations_of(family, events)]
    lines.append("        },")
    if not events and variants_of(family):
        lines += ["        variants = {", *variant_lines(family), "        },"]
    return "\n".join(lines + ["    },"])


def member_types(family):
    """The types of the members by key. One that has several types is a string."""
    lists = [[member for member in family[envelope].values() if "key" in member]
             for envelope in ("envelope", "event_envelope") if envelope in family]
    for entry in family["operations"] + family.get("events", []):
        lists += [entry.get(part, []) for part in ("request", "reply", "members")]
    types = {}
    for member in (member for members in lists for member in members):
        key = member["key"].replace("%d", "")
        kind = TYPES[member["type"]]
        types[key] = kind if types.get(key, kind) == kind else "string"
    return types


def member_table(family):
    lines = [f"        [{quoted(key)}] = {quoted(kind)}," for key, kind in sorted(member_types(family).items())]
    return "\n".join([f"    [{quoted(family['family'])}] = {{", *lines, "    },"])


def main():
    output, template, *files = sys.argv[1:]
    families = [json.loads(pathlib.Path(path).read_text()) for path in sorted(files)]
    sockets = [socket_table(family, kind) for family in families for kind in family["endpoints"]]
    text = pathlib.Path(template).read_text()
    text = text.replace("@SOCKETS@", "\n".join(sockets))
    text = text.replace("@MEMBERS@", "\n".join(member_table(family) for family in families))
    pathlib.Path(output).write_text(text)


if __name__ == "__main__":
    main()
