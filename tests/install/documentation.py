"""Every family of exports is on the page that leads from a task to a function, or on the one about sizes and objects; every status is
on its page; and the part of a program that the guide shows is that of the example.

    documentation.py TREE
"""
import re
import sys

tree = sys.argv[1]


def read(name):
    with open(f"{tree}/{name}", encoding="utf-8") as file:
        return file.read()


exports = re.findall(r"^LUM_EXPORT\(\d+, (\w+)", read("src/entry/exports.inc"), re.MULTILINE)
pages = read("docs/functions.md") + read("docs/objects.md")
# Members with and without a border are one family, and so are a function and its query.
stems = {re.sub(r"(Get(Buffer|Spec)?Size|Border)$", "", name.removeprefix("lumi").split("_")[0]) for name in exports}
missing = sorted(stem for stem in stems if not re.search(rf"\b{stem}(\b|_|Border|Get)", pages))
if len(exports) != 680 or missing:
    sys.exit(f"{len(exports)} exports; not on a page: {', '.join(missing)}")

statuses = dict(re.findall(r"(lumStatus\w+) = (-?\d+)", read("include/lumcv/status.h")))
listed = {name: value for value, name in re.findall(r"^\| (-?\d+) \| `(lumStatus\w+)` \|", read("docs/statuses.md"), re.MULTILINE)}
if listed != statuses:
    sys.exit(f"the page of statuses differs in {set(statuses.items()) ^ set(listed.items())}")

shown = re.search(r"## A whole program\n.*?```c\n(.*?)```", read("docs/guide.md"), re.DOTALL).group(1)
example = read("examples/local_contrast.c")
for line in filter(str.strip, shown.splitlines()):
    if line not in example:
        sys.exit(f"the guide shows what the example does not have: {line}")
