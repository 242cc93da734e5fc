"""What a measurement depends on besides the seed."""
import os
import platform
import subprocess

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def processor():
    with open("/proc/cpuinfo") as info:
        for line in info:
            if line.startswith("model name"):
                return "%s, %d cores" % (line.split(":", 1)[1].strip(), os.cpu_count())
    return platform.processor()


def commit():
    """Short name of the commit that was measured; marked where the sources were changed since."""
    done = subprocess.run(
        ["git", "describe", "--always", "--dirty", "--exclude=*"],
        cwd=ROOT,
        capture_output=True,
        text=True,
    )
    return done.stdout.strip() or "unknown"
