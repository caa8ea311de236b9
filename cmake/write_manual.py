"""Writes the manual page of a program from its help, and the completion scripts of one that has options with values.

    write_manual.py --program PROGRAM --summary TEXT --see-also PAGE [--section N] --manuals DIRECTORY
                    [--completions DIRECTORY]

PROGRAM may have an emulator before it: EMULATOR;PROGRAM. Its help is a description, "Usage:", "Positionals:", "Options:",
and paragraphs: those that begin with "Examples:", "Environment:" and "Exit codes:", and further description.
"""

import argparse
import pathlib
import re
import subprocess

BASH = """# bash completion of {program}: source it, or install it for bash-completion.
_{function}() {{
    local word=$2
    case $3 in
{cases}
        *) mapfile -t COMPREPLY < <(compgen -W '{options}' -- "$word") ;;
    esac
}}
complete -F _{function} {program}
"""


TITLES = ("Environment", "Examples", "Exit codes")


def parse(text):
    """Returns the description, the arguments, the options and the paragraphs that follow them, by their titles. An option
    is (names, value, choices, purpose)."""
    head, _, rest = text.partition("\nUsage: ")
    usage, _, rest = rest.partition("\n")
    listed, _, footer = rest.partition("\nOptions:\n")[2].partition("\n\n")
    options = []
    # A purpose that does not fit beside its option is on the next line.
    for line in re.sub(r"\n {20,}", "  ", listed).splitlines():
        names, value, purpose = re.match(r"  (-\S+)(?: (\S+(?: \.\.\.)?))? {2,}(.*)", line).groups()
        value = (value or "").removesuffix(" ...")
        default = ""
        if "[" not in value:  # as in [URL=]DIR
            value, _, default = value.partition("=")
        value, _, choices = value.partition(":")
        choices = "" if choices == value else choices
        # The default directory is that of the user who reads the page.
        default = "$TMPDIR, or /tmp" if value == "DIR" and default else default
        options.append((names.split(","), value, choices.split("|") if choices else [],
                        purpose + (f" (default: {default})" if default else "")))
    parts = [paragraph.partition(":") for paragraph in footer.split("\n\n")]
    paragraphs = {title: rest for title, _, rest in parts if title in TITLES}
    more = ["".join(part) for part in parts if part[0] not in TITLES]
    return " ".join(" ".join([head, *more]).split()), usage.split()[1:], options, paragraphs


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("`", "\\(ga")
    return re.sub(r"^([.'])", r"\\&\1", text, flags=re.MULTILINE)


def manual(given, version, description, arguments, options, paragraphs):
    name = roff(given.program.name)
    synopsis = ["[\\fIOPTION\\fR]...\\&" if word == "[OPTIONS]" else re.sub(r"(\w+)", r"\\fI\1\\fR", word)
                for word in arguments]
    lines = [f'.TH {name.upper()} {given.section} "" "{version}" "HbbTV service library"', ".SH NAME",
             f"{name} \\- {given.summary}", ".SH SYNOPSIS", f"\\fB{name}\\fR", *synopsis,
             ".SH DESCRIPTION", roff(description), ".SH OPTIONS"]
    for names, value, choices, purpose in options:
        head = ", ".join(f"\\fB{roff(name)}\\fR" for name in names) + (f" \\fI{roff(value)}\\fR" if value else "")
        lines += [".TP", head, roff(purpose + (f": {' or '.join(choices)}" if choices else "")) + "."]
    if "Environment" in paragraphs:
        lines.append(".SH ENVIRONMENT")
        for variable, meaning in re.findall(r"\n  (\w+) +(.*(?:\n {4,}.*)*)", paragraphs["Environment"]):
            lines += [".TP", f"\\fB{variable}\\fR", roff(" ".join(meaning.split())) + "."]
    if "Examples" in paragraphs:
        lines += [".SH EXAMPLES", ".nf", roff(paragraphs["Examples"].lstrip("\n")), ".fi"]
    lines.append(".SH EXIT STATUS")
    # A line for each, or a sentence.
    codes = re.findall(r"^ +(\d+)  (.*)", paragraphs["Exit codes"], re.MULTILINE) or re.findall(
        r"(\d) (.*?)(?:, (?=\d )|\.$)", " ".join(paragraphs["Exit codes"].split()))
    for code, meaning in codes:
        lines += [".TP", code, roff(meaning) + "."]
    page, section = given.see_also.strip(")").split("(")
    return "\n".join(lines + [".SH SEE ALSO", f"\\fB{roff(page)}\\fR({section})"]) + "\n"


def bash(program, options):
    kinds = {"FILE": "compopt -o default", "DIR": "compopt -o dirnames", "[URL=]DIR": "compopt -o dirnames"}
    cases = []
    for names, value, choices, _ in options:
        offer = f"mapfile -t COMPREPLY < <(compgen -W '{' '.join(choices)}' -- \"$word\")" if choices else kinds.get(value)
        if value:
            cases.append(f"        {'|'.join(names)}) {f'{offer} ' if offer else ''};;")
    return BASH.format(program=program, function=program.replace("-", "_"), cases="\n".join(cases),
                       options=" ".join(name for names, _, _, _ in options for name in names))


def zsh(program, options):
    lines = [f"#compdef {program}", f"# zsh completion of {program}: install it as _{program} in a directory of $fpath.",
             "_arguments -s \\"]
    for names, value, choices, purpose in options:
        value = value.replace("[URL=]", "")
        purpose = re.sub(r"([\[\]:\\])", r"\\\1", purpose).replace("'", "'\\''")
        action = "_files" if value == "FILE" else "_files -/" if value.endswith("DIR") else f"({' '.join(choices)})"
        for name in names:
            lines.append(f"    '{name}[{purpose}]{f':{value}:{action}' if value else ''}' \\")
    return "\n".join(lines).removesuffix(" \\") + "\n"


def fish(program, options):
    lines = [f"# fish completion of {program}: install it as ~/.config/fish/completions/{program}.fish, or source it.",
             f"complete -c {program} -f"]
    for names, value, choices, purpose in options:
        words = " ".join(f"-l {name[2:]}" if name.startswith("--") else f"-s {name[1:]}" for name in names)
        needs = " -r" if value else ""
        offers = " -F" if value == "FILE" or value.endswith("DIR") else f" -x -a '{' '.join(choices)}'" if choices else ""
        purpose = purpose.replace("\\", "\\\\").replace("'", "\\'")
        lines.append(f"complete -c {program} {words}{needs}{offers} -d '{purpose}'")
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser()
    for name in ("summary", "see-also"):
        parser.add_argument(f"--{name}", required=True)
    parser.add_argument("--program", type=lambda words: [word for word in words.split(";") if word], required=True)
    parser.add_argument("--section", default="1")
    parser.add_argument("--manuals", type=pathlib.Path, required=True)
    parser.add_argument("--completions", type=pathlib.Path)
    given = parser.parse_args()
    command = given.program
    given.program = pathlib.Path(command[-1])

    def printed(option):
        return subprocess.run([*command, option], check=True, capture_output=True, text=True).stdout

    description, arguments, options, paragraphs = parse(printed("--help"))
    name = given.program.name
    given.manuals.mkdir(parents=True, exist_ok=True)
    (given.manuals / f"{name}.{given.section}").write_text(
        manual(given, printed("--version").strip(), description, arguments, options, paragraphs))
    if given.completions:
        given.completions.mkdir(parents=True, exist_ok=True)
        (given.completions / name).write_text(bash(name, options))
        (given.completions / f"_{name}").write_text(zsh(name, options))
        (given.completions / f"{name}.fish").write_text(fish(name, options))


if __name__ == "__main__":
    main()
