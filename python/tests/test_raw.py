"""The raw layer: its declarations are those of the headers, and its names the exports."""

import re
import subprocess
import threading
import time

import pytest
from conftest import ROOT

from lumcv import _library, raw


def exports():
    return re.findall(r"^LUM_EXPORT\(\d+, (\w+),", (ROOT / "src/entry/exports.inc").read_text(), re.M)


def test_every_export_is_declared_and_nothing_else():
    assert sorted(raw.names) == sorted(exports())
    assert len(raw.names) == 680


def test_every_export_is_callable():
    for name in raw.names:
        assert raw.ffi.typeof(getattr(raw, name)).kind == "function"


def declared():
    """Prototypes as a compiler's preprocessor leaves them, by name."""
    command = ["cc", "-E", "-P", "-DLUM_API=", "-I", str(ROOT / "include"), str(ROOT / "include/lumcv.h")]
    text = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    found = {}
    for result, name, arguments in re.findall(r"([\w\s*]+?)\b(lum\w+)\(([^;{}]*)\);", text):
        found[name] = len(arguments.split(",")) if arguments.strip() != "void" else 0
    return found


def test_prototypes_have_the_arguments_of_the_headers():
    headers = declared()
    for name in raw.names:
        assert len(raw.ffi.typeof(getattr(raw, name)).args) == headers[name], name


def test_records_have_the_layout_of_a_compiler(tmp_path):
    records = ["LumSize", "LumPoint", "LumPoint32f", "LumRect", "LumSizeL", "LumFillRegion", "LumFastNCorner"]
    records += ["LumFGMMParams", "LumPyramid", "LumLibraryVersion"]
    lines = ['#include "lumcv.h"', "#include <stdio.h>", "#include <stddef.h>", "int main(void) {"]
    for record in records:
        lines.append(f'printf("%zu", sizeof({record}));')
        for field, _ in raw.ffi.typeof(record).fields:
            lines.append(f'printf(" %zu", offsetof({record}, {field}));')
        lines.append('puts("");')
    (tmp_path / "sizes.c").write_text("\n".join([*lines, "return 0; }"]))
    program = str(tmp_path / "sizes")
    subprocess.run(["cc", "-I", str(ROOT / "include"), str(tmp_path / "sizes.c"), "-o", program], check=True)
    printed = subprocess.run([program], capture_output=True, text=True, check=True).stdout.splitlines()
    for record, line in zip(records, printed):
        kind = raw.ffi.typeof(record)
        assert line.split() == [str(raw.ffi.sizeof(kind)), *(str(field.offset) for _, field in kind.fields)]


def test_constants_have_the_values_of_the_headers():
    assert (raw.lumStatusSizeError, raw.lumBorderInMemory, raw.lumMask5x5, raw.lumType64f) == (-6, 0xF0, 55, 19)


def test_the_library_tells_its_version():
    version = raw.lumcvGetLibVersion()
    assert raw.ffi.string(version.name).startswith(b"lumCV")


@pytest.mark.parametrize(
    "features, levels",
    [
        ({"ssse3"}, ["x86-64"]),
        ({"ssse3", "avx2", "bmi1", "bmi2", "fma", "f16c", "movbe"}, ["x86-64-v3", "x86-64"]),
        (set().union(*_library.LEVELS.values()), ["x86-64-v4", "x86-64-v3", "x86-64"]),
        ({"ssse3", "avx512f", "avx512bw", "avx512cd", "avx512dq", "avx512vl"}, ["x86-64"]),
        (set(), []),
    ],
)
def test_builds_are_those_that_the_processor_runs(features, levels):
    assert _library.levels_of(features) == levels


def test_the_best_build_is_loaded():
    best = _library.levels_of(_library.processor_features())[0]
    assert f"/{best}/" in raw.path


def test_an_installed_package_looks_below_its_own_prefix(monkeypatch, tmp_path):
    module = tmp_path / "usr/lib/python3/dist-packages/lumcv/_library.py"
    monkeypatch.setattr(_library, "__file__", str(module))
    monkeypatch.setattr(_library, "processor_features", lambda: _library.LEVELS["x86-64-v3"] | {"ssse3"})
    folders = [str(folder.relative_to(tmp_path / "usr")) for folder in _library._folders()]
    assert folders[:2] == [f"lib/python3/dist-packages/lumcv/native/{level}" for level in ("x86-64-v3", "x86-64")]
    assert folders[2:4] == ["lib/x86_64-linux-gnu/glibc-hwcaps/x86-64-v3", "lib/x86_64-linux-gnu"]
    assert folders[-1] == "lib"


def test_a_library_may_be_named(monkeypatch):
    monkeypatch.setenv("LUMCV_LIBRARY", "/nowhere/liblumcv.so")
    assert list(_library._paths()) == ["/nowhere/liblumcv.so"]
    with pytest.raises(ImportError, match="/nowhere/liblumcv.so"):
        _library.load()


def test_a_call_lets_other_threads_run():
    # One long call: a large distance transform. Another thread counts in the meantime.
    size = raw.ffi.new("LumSize*", (3000, 3000))[0]
    image = raw.ffi.new("Lum8u[]", b"\x01" * 9_000_000)
    distances = raw.ffi.new("Lum32f[]", 9_000_000)
    bytes_ = raw.ffi.new("Lum32s*")
    raw.lumiTrueDistanceTransformGetBufferSize_8u32f_C1R(size, bytes_)
    buffer = raw.ffi.new("Lum8u[]", bytes_[0])
    ticks = []
    running = threading.Event()
    stop = threading.Event()

    def count():
        running.set()
        while not stop.is_set():
            ticks.append(time.perf_counter())
            time.sleep(0.001)

    other = threading.Thread(target=count)
    other.start()
    running.wait()
    begin = time.perf_counter()
    status = raw.lumiTrueDistanceTransform_8u32f_C1R(image, 3000, distances, 12000, size, buffer)
    end = time.perf_counter()
    stop.set()
    other.join()
    assert status == 0
    assert sum(begin < tick < end for tick in ticks) >= 3
