#!/usr/bin/env python3
"""Writes files that pages need as C++ string literals: those of page/ as one function of JavaScript, in the order of their
names, and the page of the television.

    embed.py OUTPUT TELEVISION DIRECTORY FILE...
"""

import pathlib
import sys


def literal(text):
    # Compilers limit the length of a literal, so split the text.
    return "\n".join(f'    R"~({text[i:i + 8000]})~"' for i in range(0, len(text), 8000))


def main():
    output, television, directory, *files = sys.argv[1:]
    script = "(() => {\n\"use strict\";\n"
    for path in sorted(map(pathlib.Path, files), key=lambda path: path.relative_to(directory).parts):
        script += f"\n// {path.relative_to(directory)}\n{path.read_text()}"
    script += "})();\n//# sourceURL=hbbtv-browser.js\n"
    lines = ["// Generated from tools/browser/.", '#include "page_script.h"', "", "namespace hbbtv::browser {",
             "const char* const kPageScript =", literal(script) + ";", "const char* const kTelevision =",
             literal(pathlib.Path(television).read_text()) + ";", "}  // namespace hbbtv::browser", ""]
    pathlib.Path(output).write_text("\n".join(lines))


if __name__ == "__main__":
    main()
