"""Tables and shares in Markdown."""


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|---|" + "--:|" * (len(head) - 1)]
    lines += ["| " + " | ".join(str(cell) for cell in row) + " |" for row in rows]
    return "\n".join(lines) + "\n"


def share(part, whole):
    return "–" if whole == 0 else "%.1f %%" % (100.0 * part / whole)


def listed(words):
    """One, two and three."""
    return words[0] if len(words) == 1 else ", ".join(words[:-1]) + " and " + words[-1]
