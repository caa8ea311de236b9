"""Whether the scripts install what they need, and nothing else. The package manager is played by this test."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
FOR_TESTS_ONLY = {"fish", "man-db", "python3-jsonschema", "tmux", "zsh"}

# Knows the packages of the file "installed", in lines of name and architecture.
DPKG_QUERY = """#!/bin/sh
for package; do :; done
awk -v package="$package" '$1 == package { print "installed " $2; found = 1 } END { exit !found }' "$STATE/installed"
"""
APT_GET = """#!/bin/sh
echo "$*" >>"$STATE/calls"
for failing in $FAILING; do [ "$1" != "$failing" ] || { echo "E: no route to the archive" >&2; exit 100; }; done
"""
PASS_ON = '#!/bin/sh\nexec "$@"\n'


class Machine(unittest.TestCase):
    def setUp(self):
        state = tempfile.TemporaryDirectory()
        self.addCleanup(state.cleanup)
        self.state = pathlib.Path(state.name)
        for name, text in (("dpkg-query", DPKG_QUERY), ("apt-get", APT_GET), ("sudo", PASS_ON),
                           ("dpkg", "#!/bin/sh\necho amd64\n")):
            program = self.state / name
            program.write_text(text)
            program.chmod(0o755)
        self.install([])

    def install(self, lines):
        (self.state / "installed").write_text("".join(line + "\n" for line in lines))

    def run_script(self, *command, failing=""):
        environment = {**os.environ, "PATH": f"{self.state}:{os.environ['PATH']}", "STATE": str(self.state),
                       "FAILING": failing}
        return subprocess.run(command, env=environment, capture_output=True, text=True, timeout=60)

    def setup_for(self, *purposes, failing=""):
        return self.run_script(str(ROOT / "scripts/setup"), *purposes, failing=failing)

    def calls(self):
        calls = self.state / "calls"
        return calls.read_text().splitlines() if calls.exists() else []

    def wanted(self):
        """The packages that were installed, without the options of apt-get."""
        install = [call.split()[1:] for call in self.calls() if call.startswith("install ")]
        return {word for words in install for word in words if not word.startswith("-")}


class Setup(Machine):
    def test_installs_missing_packages_after_an_update(self):
        self.assertEqual(self.setup_for("clang").returncode, 0)
        self.assertEqual([call.split()[0] for call in self.calls()], ["update", "install"])
        self.assertEqual(self.wanted(), {"clang"})

    def test_calls_nothing_when_all_is_there(self):
        self.setup_for("test")
        self.install([f"{package} amd64" for package in sorted(self.wanted())])
        (self.state / "calls").unlink()
        self.assertEqual(self.setup_for("test").returncode, 0)
        self.assertEqual(self.calls(), [])

    def test_a_package_installed_for_several_architectures_is_installed(self):
        self.install(["clang amd64", "clang armhf"])
        self.assertEqual(self.setup_for("clang").returncode, 0)
        self.assertEqual(self.calls(), [])

    def test_a_package_for_all_architectures_is_installed(self):
        self.install(["clang all"])
        self.setup_for("clang")
        self.assertEqual(self.calls(), [])

    def test_a_package_installed_for_another_architecture_only_is_missing(self):
        self.install(["clang armhf"])
        self.setup_for("clang")
        self.assertEqual(self.wanted(), {"clang"})

    def test_a_failing_update_does_not_end_it(self):
        run = self.setup_for("clang", failing="update")
        self.assertEqual(run.returncode, 0)
        self.assertIn("setup: apt-get update failed; installing from", run.stderr)
        self.assertEqual(self.wanted(), {"clang"})

    def test_a_failing_installation_is_reported_with_the_packages(self):
        run = self.setup_for("clang", failing="install")
        self.assertEqual(run.returncode, 1)
        self.assertIn("setup: cannot install clang: ", run.stderr)
        self.assertIn("no route to the archive", run.stderr)

    def test_installs_packages_by_their_name(self):
        self.assertEqual(self.setup_for("clang", "debhelper").returncode, 0)
        self.assertEqual(self.wanted(), {"clang", "debhelper"})

    def test_without_arguments_installs_for_all_purposes(self):
        self.setup_for()
        self.assertLess(FOR_TESTS_ONLY | {"clang", "clang-format", "cmake", "hidl-gen"}, self.wanted())

    def test_a_build_does_not_need_what_only_tests_need(self):
        self.setup_for("build")
        self.assertIn("libjsoncpp-dev", self.wanted())
        self.assertEqual(self.wanted() & FOR_TESTS_ONLY, set())


class Scripts(Machine):
    """Each script in a copy whose `setup` records its arguments and fails."""

    def setUp(self):
        super().setUp()
        scripts = self.state / "scripts"
        scripts.mkdir()
        for script in (ROOT / "scripts").iterdir():
            (scripts / script.name).symlink_to(script)
        (scripts / "setup").unlink()
        (scripts / "setup").write_text('#!/bin/sh\necho "$*" >>"$STATE/purposes"\nexit 1\n')
        (scripts / "setup").chmod(0o755)

    def purposes(self, *command):
        # By the path of the copy: the scripts go to the directory above them.
        run = self.run_script("bash", str(self.state / "scripts" / command[0]), *command[1:])
        self.assertEqual(run.returncode, 1, run.stderr)
        return (self.state / "purposes").read_text().split("\n")[:-1]

    def test_the_demo_asks_for_the_build_only(self):
        self.assertEqual(self.purposes("demo"), ["build"])

    def test_the_benchmark_asks_for_the_build_only(self):
        self.assertEqual(self.purposes("bench"), ["build"])

    def test_the_formatter_asks_for_the_formatter_only(self):
        self.assertEqual(self.purposes("format", "--check"), ["format"])

    def test_the_tests_ask_for_what_only_tests_need(self):
        self.assertEqual(self.purposes("test"), ["test"])


if __name__ == "__main__":
    sys.exit(unittest.main(verbosity=2))
