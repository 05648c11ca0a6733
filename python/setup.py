"""Gives the package the project's version, which stands in CMakeLists.txt alone."""

import re
from pathlib import Path

from setuptools import setup

project = (Path(__file__).resolve().parent.parent / "CMakeLists.txt").read_text(encoding="utf-8")
setup(version=re.search(r"^project\(\S+ VERSION (\S+)", project, re.MULTILINE)[1])
