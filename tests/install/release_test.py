"""Whether the tree can be released: one version, a licence for each file.

    release_test.py VERSION PROGRAM...
"""

import pathlib
import re
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
VERSION, *PROGRAMS = sys.argv[1:]


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, timeout=120, cwd=ROOT)


class Release(unittest.TestCase):
    def test_the_changes_begin_with_the_version(self):
        versions = re.findall(r"(?m)^## (.*)$", (ROOT / "CHANGELOG.md").read_text())
        self.assertEqual(versions[0], VERSION)

    def test_programs_print_the_version(self):
        self.assertLessEqual(3, len(PROGRAMS))
        for program in PROGRAMS:
            printed = run(program, "--version")
            self.assertEqual((printed.returncode, printed.stdout), (0, f"{pathlib.Path(program).name} {VERSION}\n"))

    def test_only_the_files_of_the_two_build_systems_state_the_version(self):
        found = run("git", "grep", "-lF", VERSION, "--", ":!tests", ":!*.md", ":!*.json", ":!*.ndjson").stdout.split()
        self.assertEqual(found, ["CMakeLists.txt", "hbbtv/1.0/default/Android.bp"])

    def test_each_file_has_a_licence(self):
        lint = run("reuse", "lint")
        self.assertEqual(lint.returncode, 0, lint.stdout + lint.stderr)


if __name__ == "__main__":
    sys.exit(unittest.main(argv=sys.argv[:1], verbosity=2))
