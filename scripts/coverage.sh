#!/usr/bin/env bash
# Measures which lines and branches of the library its tests run, and prints them for each folder of src/.
set -euo pipefail

usage="usage: scripts/coverage.sh [--report]

Builds the 32-bit library so that it counts what runs (s8-coverage), runs its tests, those of s8 with this library, and prints lines
and branches of each folder of src/, then every line and every branch that no test runs. A line or a branch of a template has run when
any instance has run it.
build/s8-coverage/report/index.html shows the same in the sources.

  --report  prints what the counts of the last run say, also after single tests that were run since, and builds nothing
  --help    this text"
report=false
for argument in "$@"; do
    case "$argument" in
    --report) report=true ;;
    -h | --help)
        echo "$usage"
        exit 0
        ;;
    *)
        echo "coverage.sh: unknown option $argument" >&2
        echo "$usage" >&2
        exit 2
        ;;
    esac
done

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=scripts/packages.sh
. "$root/scripts/packages.sh"
need_packages "${build_packages[@]}" gcovr

tree=$root/build/s8-coverage
failed=false
if ! $report; then
    # The programs of the tests are those of s8, which is built first where it is not.
    build_preset s8
    configure_preset s8-coverage -DLUMCV_TEST_PROGRAMS="$root/build/s8"
    build_tree s8-coverage
    find "$tree" -name '*.gcda' -delete
    (cd "$root" && ctest --preset s8-coverage) || failed=true
fi

# Nothing throws in the library, so there are no branches to a handler; those that the compiler makes where a line has no code,
# such as at the end of a function, are not in the source.
gcovr --root "$root" --filter "$root/src/" --object-directory "$tree/src" -j 2 --exclude-throw-branches --exclude-unreachable-branches \
    --json "$tree/coverage.json" "$tree/src"
counts=(gcovr --root "$root" --add-tracefile "$tree/coverage.json")

# Of gcovr's list of files, which long names break, those with something missing.
missing_of() {
    awk '/^src\// { name = $1; sub(/^[^ ]+ */, "") } name != "" && NF >= 3 {
        if ($1 > 0 && $3 != "100%") printf "%-44s %s\n", name, $4
        name = ""
    }'
}

echo
"${counts[@]}" --csv | awk -f "$root/scripts/coverage_folders.awk"
echo
echo "Lines that no test runs"
"${counts[@]}" --txt | missing_of
echo
echo "Lines with branches that no test takes"
"${counts[@]}" --txt --branches | missing_of
mkdir -p "$tree/report"
"${counts[@]}" --html-details "$tree/report/index.html" --html-title "lumCV: what its tests run"

if $failed; then
    echo "coverage.sh: tests failed" >&2
    exit 1
fi
