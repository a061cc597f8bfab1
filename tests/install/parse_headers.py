"""The preprocessed headers, read by a C parser of another language: every export is a function declaration in them.

    parse_headers.py COMPILER TREE
"""
import re
import subprocess
import sys

from pycparser import c_ast, c_parser

compiler, tree = sys.argv[1:]
# What a compiler adds to the language in the system's own headers is no C to a parser.
extensions = ["-D__attribute__(x)=", "-D__extension__=", "-D__inline=inline", "-DLUM_API="]
source = '#include "lumcv.h"\n#include "lumcore.h"\n#include "lumcv_status.h"\n'
text = subprocess.run(
    [compiler, "-E", "-P", "-std=c99", *extensions, "-I", f"{tree}/include", "-x", "c", "-"],
    input=source, capture_output=True, text=True, check=True).stdout

declared = set()
for node in c_parser.CParser().parse(text).ext:
    if isinstance(node, c_ast.Decl) and isinstance(node.type, c_ast.FuncDecl):
        declared.add(node.name)

with open(f"{tree}/src/entry/exports.inc", encoding="ascii") as exports:
    listed = set(re.findall(r"^LUM_EXPORT\(\d+, (\w+)", exports.read(), re.MULTILINE))
expected = listed | {"lumGetMaxCacheSizeB"}
if len(listed) != 680 or declared != expected:
    sys.exit(f"{len(listed)} exports; not declared: {expected - declared}; too many: {declared - expected}")
