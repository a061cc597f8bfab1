"""Packs what `stage.py` has laid out beside this file: a wheel for one kind of machine, and for any Python."""

from pathlib import Path

from setuptools import setup
from setuptools.dist import Distribution
from wheel.bdist_wheel import bdist_wheel


class NativeDistribution(Distribution):
    def has_ext_modules(self) -> bool:
        return True


class AnyPython(bdist_wheel):
    def get_tag(self) -> tuple[str, str, str]:
        _, _, platform = super().get_tag()
        return "py3", "none", platform


folder = Path(__file__).resolve().parent
setup(
    version=(folder / "VERSION").read_text().strip(),
    packages=["lumcv", "lumcv.families"],
    package_data={"lumcv": ["py.typed", "native/*/*.so.*"]},
    distclass=NativeDistribution,
    cmdclass={"bdist_wheel": AnyPython},
)
