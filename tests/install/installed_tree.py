"""An installed tree that was moved after its installation, and what the tests do with it."""

import contextlib
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
SERVICE = "vantorel.hardware.hbbtv@1.0-service"
PATIENCE = 120  # seconds: the machine may be busy, and a sanitizer slow

# Set by main().
build = cmake = compiler = generator = None
sanitize = ""


def run(*command, **options):
    """Runs a command to its end. Its output is in the message of a failed check."""
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, timeout=PATIENCE * 4, **options)


def main():
    """Runs the tests of a program whose arguments are the build tree, cmake, the compiler, the generator, and the
    sanitizers of the build, if any."""
    global build, cmake, compiler, generator, sanitize
    build, cmake, compiler, generator, sanitize = (sys.argv[1:] + [""])[:5]
    sys.exit(unittest.main(module="__main__", argv=sys.argv[:1], verbosity=2))


class Tree(unittest.TestCase):
    """The tree of the whole class is in cls.prefix; each test has a directory of its own for sockets, self.sockets."""

    @classmethod
    def setUpClass(cls):
        directory = tempfile.mkdtemp(prefix="hbbtv-installed-")
        cls.addClassCleanup(shutil.rmtree, directory)
        cls.top = pathlib.Path(directory)
        cls.first, cls.prefix = cls.top / "first", cls.top / "second"
        installed = run(cmake, "--install", build, "--prefix", cls.first)
        if installed.returncode != 0:
            raise AssertionError(installed.stdout + installed.stderr)
        cls.first.rename(cls.prefix)
        cls.libraries = next(cls.prefix.rglob("libhidlhost.so")).parent

    def setUp(self):
        self.sockets = pathlib.Path(tempfile.mkdtemp(dir=self.top))
        variables = ("HIDL_HOST_DIR", "HIDL_HOST_PASSTHROUGH_PATH", "LD_LIBRARY_PATH", "PKG_CONFIG_PATH")
        self.environment = {name: value for name, value in os.environ.items() if name not in variables}
        self.environment |= {"TMPDIR": str(self.sockets), "CXX": compiler, "CC": compiler, "CMAKE_GENERATOR": generator}
        if sanitize:
            self.environment["CXXFLAGS"] = self.environment["LDFLAGS"] = f"-fsanitize={sanitize}"

    def check(self, *command, **options):
        """Returns the output of a command that has to succeed."""
        finished = run(*command, env=self.environment, **options)
        self.assertEqual(finished.returncode, 0, f"{command}\n{finished.stdout}{finished.stderr}")
        return finished.stdout

    def program(self, name):
        return self.prefix / "bin" / name

    @contextlib.contextmanager
    def running(self, *command, until):
        """A process that has printed the line `until`."""
        log = self.sockets / f"{pathlib.Path(command[0]).name}.log"
        with log.open("w") as output, subprocess.Popen([str(word) for word in command], env=self.environment,
                                                       stdout=output, stderr=output) as process:
            try:
                self.wait(lambda: until in log.read_text() or process.poll() is not None)
                self.assertIn(until, log.read_text())
                yield process
            finally:
                process.terminate()
                try:
                    process.wait(PATIENCE)
                except subprocess.TimeoutExpired:
                    process.kill()

    def wait(self, condition):
        deadline = time.monotonic() + PATIENCE
        while not condition():
            self.assertLess(time.monotonic(), deadline, "not in time")
            time.sleep(0.02)

    def service(self):
        return self.running(self.program(SERVICE), until="serving vantorel.hardware.hbbtv@1.0::IVideoBroadcast")

    def platform(self):
        return self.running(self.program("hbbtv-sim"), until="ready")
