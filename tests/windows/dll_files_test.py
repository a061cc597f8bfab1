"""The files of the DLLs: what they export and import, how their stubs jump, and that the loader may place them anywhere.

dll_files_test.py BUILD_FOLDER EXPORTS_INC
"""

import functools
import re
import struct
import sys
import unittest
from pathlib import Path

import pefile

build, export_list = Path(sys.argv[1]), Path(sys.argv[2])

LISTED = {
    int(ordinal): name
    for ordinal, name in re.findall(r"^LUM_EXPORT\((\d+), (\w+),", export_list.read_text(), re.MULTILINE)
}
MACHINE_I386 = 0x014C
HIGH_LOW = pefile.RELOCATION_TYPE["IMAGE_REL_BASED_HIGHLOW"]
ABSOLUTE = pefile.RELOCATION_TYPE["IMAGE_REL_BASED_ABSOLUTE"]
# What the shared object takes from the C and maths library; its sincos is two functions here.
RUNTIME = {"memcpy", "memset", "memmove", "atan2", "exp", "sin", "cos"}


@functools.cache
def read(name):
    return pefile.PE(str(build / name))


def exports(dll):
    return {symbol.ordinal: symbol.name.decode() for symbol in dll.DIRECTORY_ENTRY_EXPORT.symbols}


def imports(dll):
    # A DLL has an entry for each import library that names it.
    found = {}
    for entry in getattr(dll, "DIRECTORY_ENTRY_IMPORT", []):
        found.setdefault(entry.dll.decode(), set()).update(symbol.name.decode() for symbol in entry.imports)
    return found


def directory(dll, name):
    return dll.OPTIONAL_HEADER.DATA_DIRECTORY[pefile.DIRECTORY_ENTRY[name]]


def section_at(dll, address):
    return next(section for section in dll.sections if section.contains_rva(address))


def relocated(dll):
    """Addresses of the words that the loader relocates."""
    return {
        entry.rva
        for block in dll.DIRECTORY_ENTRY_BASERELOC
        for entry in block.entries
        if entry.type != ABSOLUTE
    }


def object_sections(data):
    """Names of the sections of an object file. A long name lies in the table after the symbols."""
    _, count, _, symbols, symbol_count, optional_bytes, _ = struct.unpack_from("<HHIIIHH", data)
    strings = symbols + 18 * symbol_count
    for i in range(count):
        name = data[20 + optional_bytes + 40 * i :][:8].rstrip(b"\0")
        if name.startswith(b"/"):
            start = strings + int(name[1:])
            name = data[start : data.index(b"\0", start)]
        yield name.decode()


class Exports(unittest.TestCase):
    def test_names_and_ordinals_are_those_of_the_list(self):
        self.assertEqual(680, len(LISTED))
        self.assertEqual(LISTED, exports(read("lumcv.dll")))

    def test_ordinals_follow_the_byte_order_of_the_names(self):
        names = [name for _, name in sorted(exports(read("lumcv.dll")).items())]
        self.assertEqual(sorted(names, key=str.encode), names)

    def test_the_ordinals_begin_at_one_without_a_gap(self):
        directory_entry = read("lumcv.dll").DIRECTORY_ENTRY_EXPORT.struct
        self.assertEqual(1, directory_entry.Base)
        self.assertEqual(680, directory_entry.NumberOfFunctions)
        self.assertEqual(680, directory_entry.NumberOfNames)

    def test_the_companion_exports_its_one_function(self):
        self.assertEqual({1: "lumGetMaxCacheSizeB"}, exports(read("lumcore.dll")))

    def test_def_files_list_the_same_exports(self):
        for name in ("lumcv", "lumcore"):
            lines = (build / f"{name}.def").read_text().split("\n", 2)
            self.assertEqual([f"LIBRARY {name}.dll", "EXPORTS"], lines[:2])
            listed = {int(ordinal): export for export, ordinal in re.findall(r"(\w+) @(\d+)", lines[2])}
            self.assertEqual(exports(read(f"{name}.dll")), listed)


class Stubs(unittest.TestCase):
    def test_each_is_one_jump_through_its_own_slot_of_a_constant_table(self):
        dll = read("lumcv.dll")
        relocations = relocated(dll)
        base = dll.OPTIONAL_HEADER.ImageBase
        table = None
        for symbol in sorted(dll.DIRECTORY_ENTRY_EXPORT.symbols, key=lambda symbol: symbol.ordinal):
            with self.subTest(symbol.name):
                code = dll.get_data(symbol.address, 6)
                self.assertEqual(b"\xff\x25", code[:2])
                self.assertIn(symbol.address + 2, relocations)
                slot = struct.unpack("<I", code[2:])[0] - base
                table = slot if table is None else table
                self.assertEqual(table + 4 * (symbol.ordinal - 1), slot)
                self.assertFalse(section_at(dll, slot).IMAGE_SCN_MEM_WRITE)
                self.assertIn(slot, relocations)
                implementation = struct.unpack("<I", dll.get_data(slot, 4))[0] - base
                self.assertTrue(section_at(dll, implementation).IMAGE_SCN_MEM_EXECUTE)

    def test_656_implementations_serve_the_names(self):
        dll = read("lumcv.dll")
        base = dll.OPTIONAL_HEADER.ImageBase
        first = dll.DIRECTORY_ENTRY_EXPORT.symbols[0].address
        table = struct.unpack("<I", dll.get_data(first + 2, 4))[0] - base
        self.assertEqual(656, len(set(struct.unpack("<680I", dll.get_data(table, 680 * 4)))))


class Imports(unittest.TestCase):
    def test_the_cache_query_and_the_language_library_only(self):
        found = imports(read("lumcv.dll"))
        self.assertEqual({"lumcore.dll": {"lumGetMaxCacheSizeB"}, "msvcrt.dll": RUNTIME}, found)

    def test_the_companion_needs_nothing(self):
        self.assertEqual({}, imports(read("lumcore.dll")))


class Loading(unittest.TestCase):
    def test_both_are_32_bit_dlls(self):
        for dll in map(read, ("lumcv.dll", "lumcore.dll")):
            self.assertEqual(MACHINE_I386, dll.FILE_HEADER.Machine)
            self.assertTrue(dll.FILE_HEADER.IMAGE_FILE_DLL)

    def test_the_entry_point_returns_true_and_does_nothing_else(self):
        # movl $1, %eax; ret $12
        for dll in map(read, ("lumcv.dll", "lumcore.dll")):
            self.assertEqual(
                b"\xb8\x01\0\0\0\xc2\x0c\0", dll.get_data(dll.OPTIONAL_HEADER.AddressOfEntryPoint, 8)
            )

    def test_no_thread_local_storage(self):
        for dll in map(read, ("lumcv.dll", "lumcore.dll")):
            self.assertEqual(0, directory(dll, "IMAGE_DIRECTORY_ENTRY_TLS").VirtualAddress)

    def test_no_constructors(self):
        objects = list((build / "src").rglob("*.obj"))
        self.assertGreater(len(objects), 100)
        for path in objects:
            for name in object_sections(path.read_bytes()):
                self.assertFalse(name.startswith((".ctors", ".dtors", ".CRT", ".tls")), f"{path} {name}")

    def test_relocatable_to_random_addresses_and_no_data_is_executed(self):
        for dll in map(read, ("lumcv.dll", "lumcore.dll")):
            self.assertTrue(dll.OPTIONAL_HEADER.IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE)
            self.assertTrue(dll.OPTIONAL_HEADER.IMAGE_DLLCHARACTERISTICS_NX_COMPAT)
            self.assertFalse(dll.FILE_HEADER.IMAGE_FILE_RELOCS_STRIPPED)
            self.assertGreater(directory(dll, "IMAGE_DIRECTORY_ENTRY_BASERELOC").Size, 0)
            for block in dll.DIRECTORY_ENTRY_BASERELOC:
                self.assertLessEqual({entry.type for entry in block.entries}, {HIGH_LOW, ABSOLUTE})
            for section in dll.sections:
                self.assertFalse(section.IMAGE_SCN_MEM_WRITE and section.IMAGE_SCN_MEM_EXECUTE, section.Name)

    def test_only_imported_addresses_can_be_written_in_the_library(self):
        for section in read("lumcv.dll").sections:
            if section.IMAGE_SCN_MEM_WRITE:
                self.assertEqual(b".idata", section.Name.rstrip(b"\0"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=1)
