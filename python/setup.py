"""Builds the package with CMake from the project around this folder; pyproject.toml has the rest.

CMAKE_ARGS in the environment is passed on to CMake.
"""

import os
import re
import shlex
import shutil
import subprocess
import sys
from pathlib import Path

import pybind11
from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

PROJECT = Path(__file__).resolve().parent.parent
# Everything that a build makes lies in the project's build folder, not beside the sources. A tree as
# far down as those of other builds, made like them, finds in a compiler cache what they compiled.
BUILD = PROJECT / "build" / "wheel"
TREE = PROJECT / "build" / "wheel-cmake"


class BuildWithCMake(build_ext):
    """Lets CMake build and install the native module into the package."""

    def build_extension(self, extension: Extension) -> None:
        target = Path(self.get_ext_fullpath(extension.name)).resolve().parent.parent
        self._run(
            *("cmake", "-S", PROJECT, "-B", TREE),
            *(("-G", "Ninja") if shutil.which("ninja") else ()),
            *("-DCMAKE_BUILD_TYPE=Release", "-DCONVERTERS_PRECOMPILE_HEADERS=ON"),
            "-DCONVERTERS_BUILD_PYTHON=ON",
            *("-DCONVERTERS_BUILD_TESTS=OFF", "-DCONVERTERS_BUILD_TOOLS=OFF"),
            f"-DPython3_EXECUTABLE={sys.executable}",
            f"-Dpybind11_DIR={pybind11.get_cmake_dir()}",
            *shlex.split(os.environ.get("CMAKE_ARGS", "")),
        )
        # Without a number, make would start all at once, which takes more memory than many have.
        jobs = os.cpu_count() or 1
        self._run("cmake", "--build", TREE, "--parallel", jobs, "--target", "converters_python")
        self._run("cmake", "--install", TREE, "--component", "python", "--prefix", target)

    @staticmethod
    def _run(*command: object) -> None:
        subprocess.run([str(word) for word in command], check=True)


BUILD.mkdir(parents=True, exist_ok=True)
setup(
    version=re.search(r"VERSION (\d+\.\d+\.\d+)", (PROJECT / "CMakeLists.txt").read_text())[1],
    ext_modules=[Extension("converters._native", sources=[])],
    cmdclass={"build_ext": BuildWithCMake},
    options={"build": {"build_base": str(BUILD)}, "egg_info": {"egg_base": str(BUILD)}},
)
