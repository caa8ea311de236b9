"""Runs the console blocks of the documents for other projects, with an installed tree in the place of /opt/hbbtv.

    documents_test.py BUILD CMAKE COMPILER GENERATOR [SANITIZE]

"$ " precedes a command, which may continue on indented lines; its output follows. "..." stands for any lines. Handles, times
and process numbers may differ, and the order of lines, since two families run at once. The output of a command that ends with
"&" follows it or a later command.
"""

import contextlib
import os
import re
import signal
import subprocess

import installed_tree
from installed_tree import PATIENCE, SERVICE, SOURCE, Tree

# What a process in the background prints when others can use it.
READY = {"hbbtv-sim": "ready", "platform.py": "ready", "listen": "listening", SERVICE: "::IVideoBroadcast/default"}


def examples(document):
    """Returns each command with the lines of its output."""
    found = []
    for block in re.findall(r"(?ms)^```console\n(.*?)^```$", (SOURCE / "docs" / document).read_text()):
        for part in re.split(r"(?m)^\$ ", block)[1:]:
            command, output = re.match(r"((?:[^\n]*\\\n)*[^\n]*\n)(.*)", part, re.DOTALL).groups()
            found.append((command.strip(), output.splitlines()))
    return found


def steady(line):
    line = re.sub(r"\d{4}-\d\d-\d\dT[\d:.]+Z  [\d.]+", "TIME", line)
    return re.sub(r"0x[0-9a-f]{4,}", "HANDLE", re.sub(r"\(\d+\)", "(PROCESS)", line)).rstrip()


class Shell:
    """A shell whose background processes write to one file, and each other command to a file of its own."""

    def __init__(self, directory, environment):
        self.directory = directory
        self.background = directory / "background"
        self.background.touch()
        self.commands = 0
        # A process group of its own, so that its background processes end with it.
        self.process = subprocess.Popen(["bash", "--norc"], cwd=directory, env=environment, text=True,
                                        stdin=subprocess.PIPE, start_new_session=True)

    def type(self, command):
        """Starts the command, and returns the files of its output and, at its end, of its exit code."""
        self.commands += 1
        output, code = (self.directory / f"{name}-{self.commands}" for name in ("output", "code"))
        output.touch()
        sink = self.background if command.endswith("&") else output
        self.process.stdin.write(f"{{ {command}\n}} >>'{sink}' 2>&1; echo $? >'{code}.part'; mv '{code}.part' '{code}'\n")
        self.process.stdin.flush()
        return output, code

    def end(self):
        with contextlib.suppress(ProcessLookupError):
            os.killpg(self.process.pid, signal.SIGTERM)
        self.process.stdin.close()
        self.process.wait(PATIENCE)


class Documents(Tree):
    def setUp(self):
        super().setUp()
        self.environment["PATH"] = f"{self.prefix / 'bin'}:{os.environ['PATH']}"
        tool = self.sockets / "home"
        tool.mkdir()
        self.shell = Shell(tool, self.environment)
        self.addCleanup(self.shell.end)

    def real(self, text):
        places = {"/opt/hbbtv": self.prefix, "/tmp/tv": self.sockets, "build/release": installed_tree.build}
        for place, actual in places.items():
            text = text.replace(place, str(actual))
        return text

    def try_example(self, command, expected):
        begin = len(self.shell.background.read_text())
        output, code = self.shell.type(self.real(command))
        self.wait(code.exists)
        self.assertEqual(code.read_text(), "0\n", f"$ {command}\n{output.read_text()}")
        actual = [steady(line) for line in output.read_text().splitlines()]
        missing = []
        for line in [steady(self.real(line)) for line in expected if line != "..."]:
            if line in actual:
                actual.remove(line)
            else:
                missing.append(line)
        if "..." not in expected:
            self.assertEqual(actual, [], f"$ {command}\nprints more than {expected}")
        missing += [READY[name] for name in READY if command.endswith("&") and name in command]
        for line in missing:
            try:
                self.wait(lambda: line in steady(self.shell.background.read_text()[begin:]))
            except AssertionError:
                self.fail(f"$ {command}\ndoes not print: {line}\nbut: {output.read_text()}"
                          f"and in the background: {self.shell.background.read_text()[begin:]}")

    def try_document(self, name, least):
        listed = examples(name)
        self.assertLessEqual(least, len(listed))
        for command, expected in listed:
            self.try_example(command, expected)

    def test_about_installing_shows_what_happens(self):
        self.try_document("installing.md", 8)

    def test_about_clients_shows_what_happens(self):
        with self.platform(), self.service():
            self.try_document("client.md", 4)

    def test_about_platforms_shows_what_happens(self):
        self.try_document("platform.md", 6)


if __name__ == "__main__":
    installed_tree.main()
