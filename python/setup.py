"""Compiles the two modules of the wheel, whose version is that of the installed library."""

import shlex
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

BUILD = Path("..", "build", "wheel").resolve()


def pkg_config(*arguments: str) -> str:
    return subprocess.run(["pkg-config", *arguments], check=True, stdout=subprocess.PIPE, text=True).stdout.strip()


class BuildModule(build_ext):
    def build_extension(self, extension: Extension) -> None:
        name = extension.name.rpartition(".")[2]
        docs = BUILD / f"{name}_docs.cc"
        subprocess.run([sys.executable, "docstrings.py", f"networkgrpc/{name}.pyi", docs], check=True)
        extension.sources.append(str(docs))
        super().build_extension(extension)


def module(name: str) -> Extension:
    return Extension(
        f"networkgrpc.{name}",
        [f"{name}.cc"],
        include_dirs=[".."],
        extra_compile_args=[
            "-std=c++17",
            "-fvisibility=hidden",
            "-g0",
            *shlex.split(pkg_config("--cflags", "NetworkgRPC", "pybind11")),
        ],
        extra_link_args=shlex.split(pkg_config("--libs", "NetworkgRPC")),
    )


BUILD.mkdir(parents=True, exist_ok=True)
setup(
    version=pkg_config("--modversion", "NetworkgRPC"),
    ext_modules=[module("network"), module("dante")],
    cmdclass={"build_ext": BuildModule},
    options={"build": {"build_base": str(BUILD)}, "egg_info": {"egg_base": str(BUILD)}},
)
