"""Types command lines into an interactive bash and presses the tabulator: completion_keys_test.py VORLANE."""

import os
import pty
import select
import sys
import time

CASES = (
    # typed, what stands on the line afterwards
    (b"vorlane strai\t", b"vorlane straighten "),
    (b"vorlane straighten --interpol\t", b"vorlane straighten --interpolation "),
    (b"vorlane straighten --interpolation bic\t", b"vorlane straighten --interpolation bicubic "),
    (b"vorlane straighten --interpolation=bic\t", b"vorlane straighten --interpolation=bicubic "),
    (b"vorlane detect some-sc\t", b"vorlane detect some-scan.png "),
)
CLEAR = b"\x15"  # the line is cleared


def read_until(terminal, wanted, seconds=20):
    said = b""
    end = time.monotonic() + seconds
    while wanted not in said:
        ready, _, _ = select.select([terminal], [], [], max(0, end - time.monotonic()))
        if not ready:
            sys.exit(f"completion: {wanted!r} did not come; the terminal shows {said!r}")
        said += os.read(terminal, 4096)


def main(vorlane, folder):
    os.chdir(folder)
    with open("some-scan.png", "wb"):
        pass
    child, terminal = pty.fork()
    if child == 0:
        path = os.path.dirname(os.path.abspath(vorlane)) + ":/usr/bin:/bin"
        os.execve("/bin/bash", ["bash", "--norc", "--noprofile", "-i"],
                  {"PATH": path, "PS1": "ready> ", "TERM": "dumb", "INPUTRC": "/dev/null"})
    os.write(terminal, b"bind 'set enable-bracketed-paste off'; source <(vorlane completion bash); echo lo''aded\n")
    read_until(terminal, b"loaded")
    for typed, wanted in CASES:
        os.write(terminal, CLEAR + typed)
        read_until(terminal, wanted)
    os.write(terminal, CLEAR + b"exit\n")
    os.waitpid(child, 0)


if __name__ == "__main__":
    import tempfile

    here = os.path.abspath(sys.argv[1])
    with tempfile.TemporaryDirectory() as scratch:
        main(here, scratch)
