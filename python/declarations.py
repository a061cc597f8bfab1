#!/usr/bin/env python3
"""Makes the generated modules of the package from the public headers.

    declarations.py HEADERS FOLDER

HEADERS is the directory of ``lumcv.h``; FOLDER receives ``_ffi.py``, the declarations as cffi reads them without a
compiler, and ``_messages.py``, what the headers say about statuses and arguments.
"""

import contextlib
import pprint
import re
import sys
from pathlib import Path

import cffi

Messages = dict[str, dict[str, str]]


def headers_in_order(folder: Path) -> list[Path]:
    """The umbrella's headers, each after those that it includes."""
    ordered: list[Path] = []

    def visit(header: Path) -> None:
        for name in re.findall(r'^#include "([^"]+)"', header.read_text(), re.M):
            visit((header.parent / name).resolve())
        if header not in ordered:
            ordered.append(header)

    visit((folder / "lumcv.h").resolve())
    return ordered


def declarations(text: str) -> str:
    """What is left of a header for a C parser: no comments, no directives, no linkage blocks for C++."""
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.S)
    text = re.sub(r"//[^\n]*", "", text)
    text = re.sub(r"^#\s*ifdef __cplusplus.*?^#\s*endif[^\n]*", "", text, flags=re.S | re.M)
    text = re.sub(r"^\s*#(?:[^\n]*\\\n)*[^\n]*", "", text, flags=re.M)
    return text.replace("LUM_API ", "")


def words_of(comment: str) -> str:
    """The words of a comment, without its marks, on one line."""
    text = re.sub(r"^\s*\*? ?", "", comment, flags=re.M)
    return re.sub(r"\s+", " ", text.replace("#", "")).strip()


def statuses(text: str) -> dict[int, tuple[str, str]]:
    """Each status by its number: its name and the sentence of its comment."""
    found = re.findall(r"/\*\*((?:(?!\*/).)*)\*/\s*(lumStatus\w+) = (-?\d+)", text, re.S)
    return {int(number): (name, words_of(comment)) for comment, name, number in found}


def refusals(text: str) -> tuple[dict[str, list[str]], Messages]:
    """The arguments of each function, and what its documentation says about each status that it returns."""
    parameters: dict[str, list[str]] = {}
    messages: Messages = {}
    said: dict[str, str] = {}
    for comment, name, arguments in re.findall(r"/\*\*(.*?)\*/|LUM_API [^;(]*?(\w+)\(([^;]*)\);", text, re.S):
        if name:
            parameters[name] = re.findall(r"(\w+)(?:\[\d\])?\s*(?:,|$)", arguments)
            messages[name] = said
        elif "@retval" in comment or "@return" in comment:
            said = {}
            for names, sentence in re.findall(r"@retval ((?:lumStatus\w+,? )+)(.*?)(?=@|\Z)", comment + "@", re.S):
                for status in re.findall(r"\w+", names):
                    before = said.get(status)
                    said[status] = words_of(sentence) if before is None else before + "; " + words_of(sentence)
    return parameters, messages


def generate(headers: Path, folder: Path) -> None:
    texts = [header.read_text() for header in headers_in_order(headers)]
    ffi = cffi.FFI()
    ffi.cdef("\n".join(declarations(text) for text in texts))
    ffi.set_source("lumcv._ffi", None)
    folder.mkdir(parents=True, exist_ok=True)
    with contextlib.redirect_stdout(None):
        ffi.emit_python_code(str(folder / "_ffi.py"))

    joined = "\n".join(texts)
    parameters, messages = refusals(joined)
    # Members of a family share what is said about them.
    shared: list[dict[str, str]] = []
    for said in messages.values():
        if said not in shared:
            shared.append(said)
    with open(folder / "_messages.py", "w") as file:
        print('"""What the public headers say about statuses and arguments."""\n', file=file)
        for name, kind, value in (
            ("STATUSES", "dict[int, tuple[str, str]]", statuses(joined)),
            ("PARAMETERS", "dict[str, list[str]]", parameters),
            ("REFUSALS", "list[dict[str, str]]", shared),
            ("REFUSALS_OF", "dict[str, int]", {name: shared.index(said) for name, said in messages.items()}),
        ):
            print(f"{name}: {kind} = {pprint.pformat(value, width=118)}\n", file=file)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    generate(Path(sys.argv[1]), Path(sys.argv[2]))
