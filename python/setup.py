"""Builds the package by the project's own CMake files; the rest stands in pyproject.toml."""

import os
import re
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

PROJECT = Path(__file__).resolve().parent.parent


class CMakeBuild(build_ext):
    def build_extension(self, extension):
        build = Path(self.build_temp).resolve()
        wheel = Path(self.build_lib).resolve()
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "Python_EXECUTABLE": sys.executable,
            "VORLANEPIC_BUILD_PYTHON": "ON",
            "VORLANEPIC_PYTHON_WHEEL": "ON",
            "VORLANEPIC_BUILD_COMMAND": "OFF",
            "VORLANEPIC_BUILD_TESTS": "OFF",
        }
        settings = [f"-D{name}={value}" for name, value in options.items()]
        subprocess.run(["cmake", "-S", PROJECT, "-B", build, *settings], check=True)
        jobs = str(os.cpu_count() or 1)
        subprocess.run(
            ["cmake", "--build", build, "--parallel", jobs, "--target", "vorlane_python"], check=True
        )
        subprocess.run(
            ["cmake", "--install", build, "--component", "python", "--prefix", wheel, "--strip"],
            check=True,
        )


def version():
    header = (PROJECT / "include/vorlane/vorlane.h").read_text()
    return re.search(r'VORLANE_VERSION_STRING "([^"]+)"', header)[1]


setup(
    version=version(),
    packages=[],  # what CMake installs is all there is
    ext_modules=[Extension("vorlane._core", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
)
