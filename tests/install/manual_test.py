"""Whether the manual page of a program has what its help has, and is accepted by its readers.

    manual_test.py PROGRAM PAGE CODES

CODES are the digits of its exit codes.
"""

import pathlib
import re
import subprocess
import sys
import unittest

PROGRAM, PAGE, CODES = sys.argv[1:]


def run(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, timeout=60, **options)


class Manual(unittest.TestCase):
    help = run(PROGRAM, "--help").stdout
    shown = run("man", "-l", PAGE, env={"PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8", "MANWIDTH": "80"}).stdout

    def test_begins_with_name_and_arguments(self):
        name = pathlib.Path(PROGRAM).name
        self.assertIn(f"NAME\n       {name} - ", self.shown)
        arguments = re.search(rf"(?m)^Usage: {re.escape(name)} (.*)$", self.help).group(1)
        self.assertIn(f"SYNOPSIS\n       {name} {arguments.replace('[OPTIONS]', '[OPTION]...')}\n", self.shown)

    def test_explains_every_option_and_exit_code(self):
        options = re.findall(r"(?m)^  (?:-h,)?--([a-z-]+)", self.help)
        self.assertLess(1, len(options))
        for option in options:
            self.assertRegex(self.shown, rf"(?m)^       (-h, )?--{option}\b")
        codes = set(re.findall(r"\b(\d) {1,2}[a-z-]", self.help.partition("Exit codes:")[2]))
        self.assertEqual(set(re.findall(r"(?m)^       (\d) ", self.shown.partition("EXIT STATUS")[2])), codes)
        self.assertEqual(codes, set(CODES))

    def test_explains_every_variable(self):
        variables = re.findall(r"(?m)^  ([A-Z_]{2,}) ", self.help.partition("\nEnvironment:\n")[2])
        shown = self.shown.partition("\nENVIRONMENT\n")[2].partition("\nEXIT STATUS\n")[0]
        self.assertEqual(re.findall(r"(?m)^       ([A-Z_]{2,})\b", shown), variables)

    def test_has_no_warnings_of_groff(self):
        self.assertEqual(run("groff", "-ww", "-man", "-Tutf8", PAGE).stderr, "")


if __name__ == "__main__":
    sys.exit(unittest.main(argv=sys.argv[:1], verbosity=2))
