"""Whether docs/operations.md has a row for every operation, and every family its tests in wire/ and service/.

    operations_table_test.py HIDL_GEN ROOT

hidl-gen counts the methods of each interface. What only the adaptors have is counted here: the playback and recording
operations of video/broadcast, the recorder's and the texts' preferences, and what is within the library.
"""

import collections
import pathlib
import re
import subprocess
import sys

ADAPTOR_ONLY = {"application_manager": 3, "configuration": 17, "video_broadcast": 19}


def main():
    hidl_gen, root = sys.argv[1:]
    counted = subprocess.run(
        [hidl_gen, "-p", root, "-R", "-r", f"vantorel.hardware:{root}", "-r", f"android.hidl:{root}/host/hal", "-L",
         "function-count", "vantorel.hardware.hbbtv@1.0"], check=True, capture_output=True, text=True).stdout
    expected = {name: int(count) for name, count in re.findall(r"::(I\w+) (\d+)", counted)
                if not name.endswith("Callback")}
    with open(f"{root}/docs/operations.md", encoding="utf-8") as document:
        rows = [line.split("|")[1].strip(" `") for line in document if line.startswith("| `")]
    found = collections.Counter(rows)
    wanted = {**expected, **ADAPTOR_ONLY}
    for name in sorted(set(found) | set(wanted)):
        if found[name] != wanted.get(name, 0):
            print(f"{name}: {found[name]} rows, {wanted.get(name, 0)} operations")
    print(f"{sum(found.values())} rows, {len(expected)} interfaces with {sum(expected.values())} methods")
    families = {path.stem for path in pathlib.Path(root, "protocol").glob("*.json")}
    untested = False
    for folder, function in ("wire", "add_family_wire_test"), ("service", "add_service_test"):
        lists = pathlib.Path(root, "tests", folder, "CMakeLists.txt").read_text(encoding="utf-8")
        for family in sorted(families - set(re.findall(function + r"\((\w+)", lists))):
            print(f"tests/{folder}/CMakeLists.txt: no {function}({family} ...)")
            untested = True
    return 0 if not untested and found == wanted and len(expected) == 18 else 1


if __name__ == "__main__":
    sys.exit(main())
