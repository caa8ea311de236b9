"""Writes the manual page and the completion scripts of hbbtv-sim from its help.

    write_manual.py --program PROGRAM --manuals DIRECTORY --completions DIRECTORY
"""

import argparse
import pathlib
import re
import subprocess

BASH = """# bash completion of hbbtv-sim: source it, or install it for bash-completion.
_hbbtv_sim() {{
    local word=$2
    case $3 in
        {files}) compopt -o default ;;
        {directories}) compopt -o dirnames ;;
        {choices_of}) mapfile -t COMPREPLY < <(compgen -W '{choices}' -- "$word") ;;
        {values}) ;;
        *) mapfile -t COMPREPLY < <(compgen -W '{options}' -- "$word") ;;
    esac
}}
complete -F _hbbtv_sim hbbtv-sim
"""


def parse(text):
    """Returns the description, the options and what follows them. An option is (names, value, choices, purpose)."""
    head, _, rest = text.partition("\nUsage: ")
    listed, _, footer = rest.partition("\nOptions:\n")[2].partition("\n\n")
    options = []
    # A purpose that does not fit beside its option is on the next line.
    for line in re.sub(r"\n {20,}", "  ", listed).splitlines():
        names, value, purpose = re.match(r"  (-\S+)(?: (\S+(?: \.\.\.)?))? {2,}(.*)", line).groups()
        value, _, default = (value or "").removesuffix(" ...").partition("=")
        value, _, choices = value.partition(":")
        # The default directory is that of the user who reads the page.
        default = "$TMPDIR, or /tmp" if value == "DIR" and default else default
        options.append((names.split(","), value, choices.split("|") if choices else [],
                        purpose + (f" (default: {default})" if default else "")))
    return " ".join(head.split()), options, footer


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("`", "\\(ga")
    return re.sub(r"^([.'])", r"\\&\1", text, flags=re.MULTILINE)


def manual(version, description, options, footer):
    examples, _, codes = footer.partition("\n\nExit codes: ")
    lines = [f'.TH HBBTV\\-SIM 1 "" "{version}" "HbbTV service library"', ".SH NAME",
             "hbbtv\\-sim \\- simulated television platform", ".SH SYNOPSIS", "\\fBhbbtv\\-sim\\fR",
             "[\\fIOPTION\\fR]...", ".SH DESCRIPTION", roff(description), ".SH OPTIONS"]
    for names, value, choices, purpose in options:
        head = ", ".join(f"\\fB{roff(name)}\\fR" for name in names) + (f" \\fI{roff(value)}\\fR" if value else "")
        lines += [".TP", head, roff(purpose + (f": {' or '.join(choices)}" if choices else "")) + "."]
    lines += [".SH EXAMPLES", ".nf", roff(examples.partition("\n")[2]), ".fi", ".SH EXIT STATUS"]
    for code, meaning in re.findall(r"(\d) (.*?)(?:, (?=\d )|\.$)", " ".join(codes.split())):
        lines += [".TP", code, roff(meaning) + "."]
    return "\n".join(lines + [".SH SEE ALSO", "\\fBhbbtvctl\\fR(1)"]) + "\n"


def bash(options):
    def named(*kinds):
        return "|".join(name for names, value, _, _ in options if value in kinds for name in names)
    choosing = [(names, choices) for names, _, choices, _ in options if choices]
    return BASH.format(files=named("FILE"), directories=named("DIR"), choices_of=choosing[0][0][0],
                       choices=" ".join(choosing[0][1]), values=named("TIME", "NUMBER", "FAULT", "COMMAND"),
                       options=" ".join(name for names, _, _, _ in options for name in names))


def zsh(options):
    lines = ["#compdef hbbtv-sim", "# zsh completion of hbbtv-sim: install it as _hbbtv-sim in a directory of $fpath.",
             "_arguments -s \\"]
    for names, value, choices, purpose in options:
        purpose = re.sub(r"([\[\]:\\])", r"\\\1", purpose).replace("'", "'\\''")
        action = "_files" if value == "FILE" else "_files -/" if value == "DIR" else f"({' '.join(choices)})"
        for name in names:
            lines.append(f"    '{name}[{purpose}]{f':{value}:{action}' if value else ''}' \\")
    return "\n".join(lines).removesuffix(" \\") + "\n"


def fish(options):
    lines = ["# fish completion of hbbtv-sim: install it as ~/.config/fish/completions/hbbtv-sim.fish, or source it.",
             "complete -c hbbtv-sim -f"]
    for names, value, choices, purpose in options:
        words = " ".join(f"-l {name[2:]}" if name.startswith("--") else f"-s {name[1:]}" for name in names)
        needs = " -r" if value else ""
        offers = " -F" if value in ("FILE", "DIR") else f" -x -a '{' '.join(choices)}'" if choices else ""
        purpose = purpose.replace("\\", "\\\\").replace("'", "\\'")
        lines.append(f"complete -c hbbtv-sim {words}{needs}{offers} -d '{purpose}'")
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser()
    for name in ("program", "manuals", "completions"):
        parser.add_argument(f"--{name}", type=pathlib.Path, required=True)
    given = parser.parse_args()

    def printed(option):
        return subprocess.run([given.program, option], check=True, capture_output=True, text=True).stdout

    description, options, footer = parse(printed("--help"))
    given.manuals.mkdir(parents=True, exist_ok=True)
    given.completions.mkdir(parents=True, exist_ok=True)
    (given.completions / "hbbtv-sim").write_text(bash(options))
    (given.completions / "_hbbtv-sim").write_text(zsh(options))
    (given.completions / "hbbtv-sim.fish").write_text(fish(options))
    (given.manuals / "hbbtv-sim.1").write_text(manual(printed("--version").strip(), description, options, footer))


if __name__ == "__main__":
    main()
