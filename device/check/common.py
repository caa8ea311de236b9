"""What the checks of scripts/check-device share."""

import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PACKAGE = ROOT / "hbbtv" / "1.0"
LIBRARY = PACKAGE / "default"
NAME = "vantorel.hardware.hbbtv@1.0"


class Problem(Exception):
    """A check failed; the message says what and where."""


def run(command, directory=ROOT, text=None):
    """Runs a command and returns its exit code and all output."""
    done = subprocess.run(command, cwd=directory, input=text, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=300, check=False)
    return done.returncode, done.stdout


def must(command, directory=ROOT, text=None):
    """Returns the output of a command that must succeed."""
    code, output = run(command, directory, text)
    if code != 0:
        raise Problem(f"{' '.join(map(str, command))}: exit code {code}\n{output}")
    return output


def must_be_same(what, first, second):
    """Compares two lists, and names what only one of them has."""
    only_first = [item for item in first if item not in second]
    only_second = [item for item in second if item not in first]
    if only_first or only_second or len(first) != len(second):
        raise Problem(f"{what} differ: only the first has {only_first}, only the second has {only_second}")


def interfaces():
    """The interfaces that a service serves: all but the callbacks."""
    return sorted(path.stem for path in PACKAGE.glob("I*.hal") if not path.stem.endswith("Callback"))
