#!/usr/bin/env python3
"""Writes the page of page/ as C++: one document with its style and its scripts, in pieces between which the program puts
what only it knows. The browser runs no script but this one, whose hash is in the document.

    embed_page.py OUTPUT FOLDER
"""

import base64
import hashlib
import pathlib
import re
import sys

# Classes first, then what uses them when it is loaded.
SCRIPTS = ["values", "protocol", "names", "television", "store", "summary", "filter", "source", "view", "rows", "detail",
           "timeline", "ladder", "statistics", "main"]


def literal(text):
    # Compilers limit the length of a literal, so split the text.
    return "\n".join(f'R"page({text[i:i + 4000]})page"' for i in range(0, len(text), 4000))


def digest(text):
    return "'sha256-" + base64.b64encode(hashlib.sha256(text.encode()).digest()).decode() + "'"


def main():
    output, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    found = {path.stem for path in folder.glob("*.js")}
    if found != set(SCRIPTS):
        sys.exit(f"{folder}: the scripts are not those of embed_page.py: {sorted(found ^ set(SCRIPTS))}")
    script = "\n" + "".join((folder / f"{name}.js").read_text() for name in SCRIPTS)
    style = "\n" + (folder / "page.css").read_text()
    policy = (f"default-src 'none'; script-src {digest(script)}; style-src {digest(style)}; img-src data:; "
              "connect-src @CONNECT@; base-uri 'none'; form-action 'none'")
    page = (folder / "index.html").read_text()
    for name, text in {"POLICY": policy, "STYLE": style, "SCRIPT": script}.items():
        page = page.replace(f"@{name}@", text)
    pieces = re.split("@(?:CONNECT|SETTINGS|RECORDS)@", page)
    names = ["kBeforePolicy", "kBeforeSettings", "kBeforeRecords", "kEnd"]
    lines = ["// Generated from traffic/web/page/.", '#include "traffic/web/page_pieces.h"', "", "namespace hbbtv::traffic {", ""]
    lines += [f"const char* const {name} =\n{literal(piece)};\n" for name, piece in zip(names, pieces, strict=True)]
    output.write_text("\n".join(lines + ["}  // namespace hbbtv::traffic", ""]))


if __name__ == "__main__":
    main()
