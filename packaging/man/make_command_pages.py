#!/usr/bin/env python3
"""Makes what the manual pages of the command's own commands take from its help: names, synopses,
options, examples. What stands between DESCRIPTION and the mark is written by hand and kept.

    make_command_pages.py VORLANE           rewrites docs/man/vorlane-COMMAND.1
    make_command_pages.py --check VORLANE   fails when one is missing, too many or another one
"""

import re
import subprocess
import sys
from pathlib import Path

PAGES = Path(__file__).resolve().parents[2] / "docs" / "man"
MARK = '.\\" From here on made of --help by packaging/man/make_command_pages.py.'
KEPT = re.compile(r"^\.SH DESCRIPTION\n(.*?)^" + re.escape(MARK) + "$", re.S | re.M)
OVERVIEW = "vorlane.1"


def help_of(vorlane, *words):
    return subprocess.run([vorlane, *words, "--help"], check=True, capture_output=True, text=True).stdout


def escape(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return re.sub(r"^([.'])", r"\\&\1", text, flags=re.M)


def entries(block):
    """(name, text) of each entry of a two-column list."""
    found = []
    for line in block.split("\n"):
        entry = re.match(r"  (\S.*?)(?:  +(\S.*))?$", line)
        if entry:
            found.append([entry[1], entry[2] or ""])
        elif line.strip() and found:
            found[-1][1] = f"{found[-1][1]} {line.strip()}".strip()
    return found


def sections(text):
    """The help in parts: description, lists by their headings, notes."""
    parts = {"": "", "notes": ""}
    name = ""
    for paragraph in text.rstrip("\n").split("\n\n"):
        heading = re.match(r"(\w+):\n", paragraph)
        if heading:
            parts[heading[1]] = paragraph[heading.end() :]
        elif paragraph.startswith("Usage: "):
            parts["Usage"] = paragraph[len("Usage: ") :]
        else:
            name = "notes" if parts[""] else ""
            parts[name] = f"{parts[name]}\n{paragraph}".strip()
    return parts


def term(name):
    """An option's names bold, its value in italics."""
    options, _, value = name.partition(" ")
    names = ", ".join(f"\\fB{escape(option)}\\fP" for option in options.split(","))
    if not options.startswith("-"):
        return f"\\fI{escape(name)}\\fP"
    return f"{names} \\fI{escape(value)}\\fP" if value else names


def list_lines(block):
    lines = []
    for name, text in entries(block):
        lines += [".TP", term(name), escape(text)]
    return lines


def page(command, parts, kept):
    summary = parts[""]
    lines = [
        f'.TH VORLANE\\-{escape(command).upper()} 1 "" "VorlanePic" "User Commands"',
        ".SH NAME",
        f"vorlane\\-{escape(command)} \\- {escape(summary[0].lower() + summary[1:])}",
        ".SH SYNOPSIS",
        f".B {escape(parts['Usage'])}",
        ".SH DESCRIPTION",
        kept + MARK,
        ".SH OPTIONS",
        *list_lines(parts.get("Arguments", "") + "\n" + parts.get("Options", "")),
    ]
    for group, heading in (("Inputs", "Inputs and outputs"), ("Run", "How the run goes")):
        if group in parts:
            lines += [f".SS {heading}", *list_lines(parts[group])]
    if parts["notes"]:
        lines += [".SH NOTES", escape(parts["notes"])]
    for heading in ("Examples", "Example"):
        if heading in parts:
            examples = re.sub("^  ", "", parts[heading], flags=re.M)
            lines += [".SH EXAMPLES", ".nf", escape(examples), ".fi"]
    lines += [".SH SEE ALSO", ".BR vorlane (1)", ""]
    return "\n".join(lines)


def made_pages(vorlane):
    pages = {}
    commands = [name for name, _ in entries(sections(help_of(vorlane))["Commands"])]
    if not commands:
        sys.exit("the help names no commands")
    for command in commands:
        path = PAGES / f"vorlane-{command}.1"
        parts = sections(help_of(vorlane, command))
        before = KEPT.search(path.read_text()) if path.exists() else None
        kept = before[1] if before else escape(parts[""]) + ".\n"
        pages[path] = page(command, parts, kept)
    return pages


def check(pages):
    overview = (PAGES / OVERVIEW).read_text()
    for path, made in pages.items():
        if not path.exists() or path.read_text() != made:
            sys.exit(f"{path} is not what the help says: run packaging/man/make-pages")
        name = escape(path.stem)
        if f"{name} (1)" not in overview:
            sys.exit(f"{OVERVIEW} does not name {path.stem}")
    for path in set(PAGES.glob("vorlane-*.1")) - set(pages):
        sys.exit(f"{path} is the page of no command")


def main(arguments):
    is_check = arguments[:1] == ["--check"]
    pages = made_pages(arguments[is_check])
    if is_check:
        check(pages)
        return
    for path, made in pages.items():
        path.write_text(made)


if __name__ == "__main__":
    main(sys.argv[1:])
