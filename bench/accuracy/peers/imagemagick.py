"""ImageMagick's -deskew at the threshold that its manual recommends."""
import os
import subprocess

from ..answer import Answer

NAME = "ImageMagick -deskew"


def version():
    first = subprocess.run(
        ["convert", "-version"], capture_output=True, text=True, check=True
    ).stdout.split()
    return " ".join(first[1:3])


def detect(path):
    done = subprocess.run(
        ["convert", path, "-deskew", "40%", "-format", "%[deskew:angle]", "info:"],
        capture_output=True,
        text=True,
        check=True,
        env=dict(os.environ, MAGICK_THREAD_LIMIT="1"),  # pages are looked at side by side already
    )
    return Answer(-float(done.stdout), "likely")
