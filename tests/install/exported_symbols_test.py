"""Whether the implementation exports the function that creates each interface's service, and nothing else.

    exported_symbols_test.py NM LIBRARY DIRECTORY_OF_THE_INTERFACES
"""

import pathlib
import subprocess
import sys


def main():
    nm, library, interfaces = sys.argv[1:]
    listed = subprocess.run([nm, "--dynamic", "--defined-only", "--format=posix", library], check=True,
                            capture_output=True, text=True).stdout
    exported = {line.split()[0] for line in listed.splitlines()}
    served = {path.stem for path in pathlib.Path(interfaces).glob("I*.hal") if not path.stem.endswith("Callback")}
    wanted = {f"HIDL_FETCH_{name}" for name in served}
    for name in sorted(wanted - exported):
        print(f"not exported: {name}")
    for name in sorted(exported - wanted):
        print(f"exported: {name}")
    print(f"{len(exported)} names are exported, {len(wanted)} interfaces are served")
    return 0 if exported == wanted and len(served) == 18 else 1


if __name__ == "__main__":
    sys.exit(main())
