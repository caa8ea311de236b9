#!/usr/bin/env python3
"""Writes the files of protocol/ as C++ string literals, each with the name of its family.

    embed.py OUTPUT FILE...
"""

import json
import pathlib
import sys


def literal(text):
    # Compilers limit the length of a literal, so split the text.
    return "\n".join(f'     R"~({text[i:i + 8000]})~"' for i in range(0, len(text), 8000))


def main():
    output, *files = sys.argv[1:]
    lines = ["// Generated from protocol/.", '#include "wire/protocol_files.h"', "", "namespace hbbtv {",
             "const std::vector<ProtocolFile>& ProtocolFiles() {", "    static const std::vector<ProtocolFile> files{"]
    for path in map(pathlib.Path, files):
        text = json.dumps(json.loads(path.read_text()), ensure_ascii=False, separators=(",", ":"))
        lines.append(f'    {{"{path.stem}",\n{literal(text)}}},')
    pathlib.Path(output).write_text("\n".join(lines + ["    };", "    return files;", "}", "}  // namespace hbbtv", ""]))


if __name__ == "__main__":
    main()
