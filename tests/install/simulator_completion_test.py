"""Whether the completion scripts of hbbtv-sim have every option, and are accepted by their shells.

    simulator_completion_test.py PROGRAM COMPLETIONS
"""

import pathlib
import re
import subprocess
import sys
import unittest

PROGRAM, COMPLETIONS = (pathlib.Path(argument) for argument in sys.argv[1:])


def run(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, timeout=60, **options)


def options():
    return re.findall(r"^  (?:-h,)?--([a-z-]+)", run(PROGRAM, "--help").stdout, re.MULTILINE)


class Completion(unittest.TestCase):
    def completed(self, *words):
        script = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); compopt() { echo "option $2"; }; '
                  '_hbbtv_sim hbbtv-sim "${@: -1}" "${@: -2:1}"; printf "%s\\n" "${COMPREPLY[@]}"')
        return run("bash", "-c", script, "bash", COMPLETIONS / "hbbtv-sim", "hbbtv-sim", *words).stdout.split()

    def test_bash_completes_options_and_values(self):
        self.assertEqual({word for word in self.completed("--") if word != "-h"}, {f"--{name}" for name in options()})
        self.assertEqual(self.completed("--line"), ["--line-up"])
        self.assertEqual(self.completed("--permanent-error", "channel-c"), ["channel-changed"])
        self.assertEqual(self.completed("--line-up", ""), ["option", "default"])
        self.assertEqual(self.completed("--seed", ""), [])

    def test_fish_completes_options_and_values(self):
        def completed(line):
            return [answer.split("\t")[0] for answer in run(
                "fish", "-c", f"source {COMPLETIONS / 'hbbtv-sim.fish'}; complete -C '{line}'",
                env={"PATH": "/usr/bin:/bin", "HOME": "/nonexistent"}).stdout.splitlines()]
        self.assertEqual({word for word in completed("hbbtv-sim --")}, {f"--{name}" for name in options()})
        self.assertEqual(completed("hbbtv-sim --permanent-error channel-c"), ["channel-changed"])

    def test_zsh_reads_the_script_and_it_has_every_option(self):
        script = COMPLETIONS / "_hbbtv-sim"
        self.assertEqual(run("zsh", "-n", script).stderr, "")
        self.assertEqual(set(re.findall(r"(?m)^    '--([a-z-]+)\[", script.read_text())), set(options()))


if __name__ == "__main__":
    sys.exit(unittest.main(argv=sys.argv[:1], verbosity=2))
