"""unpaper's search for the sheet's edges, over +-15 degrees; its cleaning filters are off, which
take the page for dirt where the surround is dark."""
import math
import os
import re
import subprocess
import tempfile

from ..answer import Answer

NAME = "unpaper"
_OPTIONS = [
    "-vv",
    "--overwrite",
    "--deskew-scan-range",
    "15",
    "--no-grayfilter",
    "--no-blurfilter",
    "--no-noisefilter",
]
_ROTATION = re.compile(r"^rotate \([-\d]+,[-\d]+\): (-?[\d.]+)", re.MULTILINE)


def version():
    done = subprocess.run(["unpaper", "--version"], capture_output=True, text=True, check=True)
    return "unpaper " + done.stdout.strip()


def detect(path):
    """A turn of 0 is what it says where it finds nothing: no answer."""
    with tempfile.TemporaryDirectory() as folder:
        done = subprocess.run(
            ["unpaper"] + _OPTIONS + [path, os.path.join(folder, "out.pnm")],
            capture_output=True,
            text=True,
        )
    found = _ROTATION.search(done.stdout + done.stderr)
    if found is None or float(found.group(1)) == 0:
        return Answer()
    return Answer(math.degrees(float(found.group(1))), "likely")
