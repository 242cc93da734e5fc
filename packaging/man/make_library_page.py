#!/usr/bin/env python3
"""Makes a library's manual page of its C headers, whose comments are the manual.

    make_library_page.py PAGE HEADER...         writes docs/man/PAGE
    make_library_page.py --check PAGE HEADER... fails when docs/man/PAGE is another one
"""

import re
import sys
import textwrap
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
# A comment at the margin, and the declarations up to the next blank line.
PIECE = re.compile(r"^(?:/\*(?P<comment>.*?)\*/\n)?(?P<code>(?:[^\n]+\n)*)", re.S | re.M)
MARKINGS = re.compile(r"\b(?:VORLANE(?:PIC)?|IMGBUF)_(?:API|NOEXCEPT|STDCALL|CDECL|CALL)\b *")
LEFT_OUT = re.compile(r"#(?:if|ifndef|include|endif|else|elif)\b|extern|}$")


def escape(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return re.sub(r"^([.'])", r"\\&\1", text, flags=re.M)


def text_of(comment):
    lines = [re.sub(r"^ ?\*? ?", "", line).rstrip() for line in (comment or "").split("\n")]
    return "\n".join(lines).strip("\n")


def item_lines(paragraph):
    """The (term, text) pairs of an indented list, or None for an example."""
    lines = paragraph.split("\n")
    depth = len(lines[0]) - len(lines[0].lstrip())
    indents = [len(line) - len(line.lstrip()) for line in lines]
    deeper = [indent for indent in indents if indent > depth]
    first = re.match(r" *\S+(?: \S+)*?(  +)\S", lines[0])
    if not first and not deeper:
        return None
    column = min(deeper) if deeper else first.end() - 1
    if column < depth + 4:  # an example's own indentation
        return None
    items = []
    for line, indent in zip(lines, indents):
        if indent > depth:
            items[-1][1] += " " + line.strip()
        elif line[column - 1 : column] == " ":
            items.append([line[:column].strip(), line[column:].strip()])
        else:
            items.append(re.split("  +", line.strip(), maxsplit=1) + [""])
    return [(item[0], item[1]) for item in items]


def paragraph_lines(paragraph):
    if not paragraph.startswith("  "):
        return [".PP", escape(paragraph)]
    items = item_lines(paragraph)
    if items is None:
        return [".PP", ".RS", ".nf", escape(textwrap.dedent(paragraph)), ".fi", ".RE"]
    lines = []
    for term, text in items:
        lines += [".TP", f".I {escape(term)}", escape(text)]
    return lines


def text_lines(text):
    lines = []
    for paragraph in re.split(r"\n\s*\n", text):
        # A list may follow its heading without a blank line.
        heading, listed = re.match(r"((?:(?!  )[^\n]*(?:\n|$))*)(.*)", paragraph, re.S).groups()
        for part in (heading.rstrip("\n"), listed):
            if part:
                lines += paragraph_lines(part)
    return lines


def declarations(code):
    """Functions as (name, prototype), and what else there is, as it stands."""
    code = MARKINGS.sub("", code)
    functions, others = [], []
    is_plain = not re.search(r"^\s*(?:typedef|enum|#)|{", code, re.M)
    for statement in code.split(";") if is_plain else []:
        prototype = " ".join(statement.split())
        name = re.search(r"(\w+) ?\(", prototype)
        if name:
            prototype = re.sub(r" \(", "(", prototype) + ";"
            functions.append((name[1], prototype))
    if not functions and code.strip():
        others = [code.rstrip()]
    return functions, others


def function_lines(functions, comment):
    lines = [f".SS {escape(', '.join(name for name, _ in functions))}", ".nf"]
    for _, prototype in functions:
        wrapped = textwrap.wrap(prototype, 72, subsequent_indent="    ")
        lines += [f'.B "{escape(line)}"' for line in wrapped]
    return [*lines, ".fi", *text_lines(text_of(comment))]


def pieces(header):
    for match in PIECE.finditer(header):
        comment, code = match["comment"], match["code"]
        if code and LEFT_OUT.match(code):
            code = ""
        if comment or code:
            yield comment, code


def heading_of(comment, others):
    """A record's or constant's name, or the first words of what introduces the functions below."""
    declared = re.search(r"(\w+);$", others[0]) if others else None
    if declared:
        return declared[1]
    return re.match(r"[^.:,;\n]*", text_of(comment) or "Constants")[0]


def body_lines(header):
    """What the header is about, its functions' names, and the page's lines for all that it holds."""
    about, names, lines = "", [], []
    for comment, code in pieces(header):
        functions, others = declarations(code)
        names += [name for name, _ in functions]
        if not about:
            about, _, rest = text_of(comment).partition("\n\n")
            lines += text_lines(rest)
        elif functions:
            lines += function_lines(functions, comment)
        else:
            lines += [f".SS {escape(heading_of(comment, others))}", *text_lines(text_of(comment))]
            lines += [line for other in others for line in (".PP", ".nf", escape(other), ".fi")]
    return " ".join(about.split()), names, lines


def page(name, headers):
    names, lines, summary = [name], [], ""
    for header in headers:
        text = (PROJECT / "include" / header).read_text()
        about, functions, body = body_lines(text)
        names += functions
        if summary:
            lines += [f".SH {header.upper()}", escape(about)]
        summary = summary or about.split(": ", 1)[1].rstrip(".")
        lines += body
    other = "vorlane" if name == "vorlanepic" else "vorlanepic"
    made = [
        '.\\" Made of the headers by packaging/man/make_library_page.py; do not edit.',
        f'.TH {name.upper()} 3 "" "VorlanePic" "Library Functions"',
        ".nh",
        ".ad l",
        ".SH NAME",
        escape(", ".join(names)) + " \\- " + escape(summary),
        ".SH SYNOPSIS",
        ".nf",
        *(f".B #include <{header}>" for header in headers),
        ".fi",
        ".PP",
        f"Link with \\fI\\-l{name}\\fP, or as \\fBpkg\\-config {name}\\fP tells.",
        ".SH DESCRIPTION",
        *lines,
        ".SH SEE ALSO",
        ".BR vorlane (1),",
        f".BR {other} (3)",
        "",
    ]
    return "\n".join(made)


EXPORTS = {
    "vorlane/vorlane.h": "vorlane.def",
    "vorlanepic/vorlanepic.h": "vorlanepic.def",
    "vorlanepic/imgbuf.h": "imgbuf/imgbuf.def",
}


def check(path, made, headers):
    if path.read_text() != made:
        sys.exit(f"{path} is not what the headers say: run packaging/man/make_library_page.py")
    for header in headers:
        exported = re.findall(r"^    (\w+) *;", (PROJECT / EXPORTS[header]).read_text(), re.M)
        missing = [name for name in exported if f".SS {name}" not in made and f", {name}" not in made]
        if missing or not exported:
            sys.exit(f"{path} leaves out what {EXPORTS[header]} exports: {missing}")


def main(arguments):
    is_check = arguments[:1] == ["--check"]
    target, *headers = arguments[is_check:]
    made = page(target.split(".")[0], headers)
    path = PROJECT / "docs" / "man" / target
    if is_check:
        check(path, made, headers)
    else:
        path.write_text(made)


if __name__ == "__main__":
    main(sys.argv[1:])
