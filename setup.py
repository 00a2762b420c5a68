"""Builds the wheel of the Python package: the extension module comes from CMake, all else from pyproject.toml.

With NVXPROFILE_BUILD_FOLDER set to a folder that CMake has configured with NVXPROFILE_BUILD_PYTHON and this
interpreter, the module is built there, so that what is built already is not built again.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent


class BuildByCMake(build_ext):
    def build_extension(self, extension: Extension) -> None:
        given = os.environ.get("NVXPROFILE_BUILD_FOLDER")
        folder = pathlib.Path(given or self.build_temp).resolve()
        if not given:
            options = ["BUILD_PYTHON=ON", "BUILD_TOOLS=OFF", "BUILD_TESTS=OFF", "WERROR=OFF"]
            configure = ["cmake", "-S", str(ROOT), "-B", str(folder), "-DCMAKE_BUILD_TYPE=Release"]
            configure += [f"-DNVXPROFILE_{option}" for option in options]
            subprocess.run([*configure, f"-DPython_EXECUTABLE={sys.executable}"], check=True)
        subprocess.run(["cmake", "--build", str(folder), "--target", "nvxprofile_python", "--parallel"], check=True)
        name = os.path.basename(self.get_ext_filename(extension.name))
        target = pathlib.Path(self.get_ext_fullpath(extension.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(folder / "python" / "nvxprofile" / name, target)


header = (ROOT / "include" / "nvxprofile" / "version.h").read_text()
version = ".".join(re.findall(r"#define NVXPROFILE_VERSION_\w+ (\d+)", header))
# What it leaves behind lies beside what CMake does.
(ROOT / "build").mkdir(exist_ok=True)
setup(
    version=version,
    ext_modules=[Extension("nvxprofile._core", [])],
    cmdclass={"build_ext": BuildByCMake},
    options={"build": {"build_base": "build/wheel"}, "egg_info": {"egg_base": "build"}},
)
