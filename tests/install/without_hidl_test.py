"""hbbtvctl of a build without HIDL: what it has, and what it says about the rest.

    without_hidl_test.py CMAKE COMPILER
"""

import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
CMAKE, COMPILER = sys.argv[1:]


def run(*command, **options):
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, timeout=600, **options)


class WithoutHidl(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.top = pathlib.Path(tempfile.mkdtemp(prefix="hbbtv-without-hidl-"))
        cls.addClassCleanup(shutil.rmtree, cls.top)
        built = cls.top / "build"
        for command in ((CMAKE, "-G", "Ninja", "-S", SOURCE, "-B", built, "-DHBBTV_HIDL=OFF", "-DCMAKE_BUILD_TYPE=Debug",
                         f"-DCMAKE_CXX_COMPILER={COMPILER}"),
                        (CMAKE, "--build", built, "--target", "hbbtvctl")):
            done = run(*command)
            if done.returncode != 0:
                raise AssertionError(done.stdout + done.stderr)
        cls.program = built / "bin/hbbtvctl"

    def ctl(self, *arguments):
        return run(self.program, "--directory", self.top, *arguments)

    def test_it_needs_no_library_of_android_or_hidl(self):
        needed = run("readelf", "--dynamic", self.program).stdout
        self.assertIn("libjsoncpp", needed)
        for library in ("libhidlhost", "vantorel.hardware", "libutils", "liblog"):
            self.assertNotIn(library, needed)

    def test_commands_that_call_the_service_are_refused_and_not_in_the_help(self):
        help = self.ctl("--help").stdout
        for command in ("list", "describe", "send", "emit", "check", "doctor"):
            self.assertIn(f"\n  {command} ", help)
        for command, *arguments in (("call", "IChannel.GetName", "channel=1", "--json"), ("listen", "--for", "1s"),
                                    ("play", "x.play"), ("bench",), ("status",), ("log", "debug")):
            refused = self.ctl(command, *arguments)
            self.assertEqual((refused.returncode, refused.stdout), (2, ""))
            self.assertIn(f"hbbtvctl: {command} requires HIDL", refused.stderr)
            self.assertNotIn(f"\n  {command} ", help)

    def test_list_has_the_sockets_only(self):
        listed = json.loads(self.ctl("list", "--json").stdout)
        self.assertEqual(set(listed), {"package", "directory", "endpoints"})
        self.assertLess(18, len(listed["endpoints"]))

    def test_doctor_says_that_it_did_not_check_the_service(self):
        checked = self.ctl("doctor", "--json")
        self.assertEqual(checked.returncode, 3)
        checks = {check["check"]: check for check in json.loads(checked.stdout)["checks"]}
        self.assertEqual(checks["platform"]["level"], "problem")
        self.assertEqual(checks["service"]["level"], "warning")
        self.assertIn("no HIDL", checks["service"]["finding"])

    def test_describe_knows_the_interfaces(self):
        self.assertIn("SetChannel", self.ctl("describe", "IVideoBroadcast").stdout)


if __name__ == "__main__":
    sys.exit(unittest.main(argv=sys.argv[:1], verbosity=2))
