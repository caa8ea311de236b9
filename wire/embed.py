#!/usr/bin/env python3
"""Writes the files of protocol/ as one C++ string literal, one line of JSON per file.

    embed.py OUTPUT FILE...
"""

import json
import pathlib
import sys


def main():
    output, *files = sys.argv[1:]
    text = "".join(json.dumps(json.loads(pathlib.Path(file).read_text()), ensure_ascii=False, separators=(",", ":"))
                   + "\n" for file in files)
    # Compilers limit the length of a literal, so split the text.
    pieces = [text[i:i + 8000] for i in range(0, len(text), 8000)]
    lines = ["// Generated from protocol/.", '#include "wire/protocol.h"', "", "namespace hbbtv {",
             "const char* const kProtocol ="]
    lines += [f'    R"~({piece})~"' for piece in pieces]
    pathlib.Path(output).write_text("\n".join(lines + ["    ;", "}  // namespace hbbtv", ""]))


if __name__ == "__main__":
    main()
