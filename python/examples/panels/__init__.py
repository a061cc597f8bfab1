"""The panels of the gallery, in the sections of the program's page."""

import importlib

from panels.panel import Section

NAMES = """frame statistics integrals cascades filters fixed_filters morphology corners lines pyramids motion distances
    segmentation geometry"""

SECTIONS: list[Section] = [importlib.import_module(f"panels.{name}").section for name in NAMES.split()]
