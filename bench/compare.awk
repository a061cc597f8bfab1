# Lays the rows of one or several builds beside reference times:
#
#     awk -f compare.awk -v builds="s8 x64-v4" -v picture="built-in scene" -v size="1920 x 1080" [machines.tsv] s8.tsv x64-v4.tsv
#
# All files tell their columns in a first line that begins with "work". The reference has times of several machines, told apart by
# what a plain copy of the 8-bit plane costs there (copy_ms); the one whose copy is nearest, as a ratio, to that of the first build
# counts. A build with the widest vectors of its kind (x64-v4, or x64-v3 where there is no other) is held to widest_ms, every other to
# same_width_ms, as multiples of the copy. Names may end in a remark in brackets, or in a count as in " x1000", which both sides leave
# out when they are compared.
BEGIN {
    FS = "\t"
    buildCount = split(builds, build, " ")
    file = 0
    widest = builds ~ /x64-v4/ ? "x64-v4" : "x64-v3"
}

function plain(name) {
    sub(/ *\(.*\)$/, "", name)
    sub(/ x[0-9]+$/, "", name)
    return name
}

function distance(a, b) { return a > b ? a / b : b / a }

/^#/ { next }

$1 == "work" {
    delete column
    for (i = 1; i <= NF; ++i) column[$i] = i
    isReference = "copy_ms" in column
    if (!isReference) ++file
    next
}

isReference {
    machine = $(column["copy_ms"])
    machines[machine] = 1
    sameWidth[machine, plain($1)] = $(column["same_width_ms"])
    widestOf[machine, plain($1)] = $(column["widest_ms"])
    next
}

file {
    if (!($1 in known)) {
        known[$1] = 1
        order[++rowCount] = $1
    }
    ms[file, $1] = $(column["ms"])
}

END {
    copy = ms[1, "copy"]
    for (machine in machines)
        if (nearest == "" || distance(machine, copy) < distance(nearest, copy)) nearest = machine
    # Columns of the reference only where a row has one.
    referenced = 0
    for (r = 1; r <= rowCount; ++r) referenced += (nearest, plain(order[r])) in sameWidth
    if (!referenced) nearest = ""

    printf "%s, %s, one thread, build %s: the least of several runs, in ms per call; lower is better. copy: %s ms\n", picture, size, \
        builds, copy
    if (nearest != "") {
        printf "Reference: other libraries on a machine whose copy takes %s ms; in brackets our multiple of the copy to theirs.\n", nearest
    }
    printf "%-38s", "work"
    for (b = 1; b <= buildCount; ++b) printf " %18s", build[b]
    if (nearest != "") printf " %10s %10s", "same width", "widest"
    printf "\n"
    for (r = 1; r <= rowCount; ++r) {
        name = order[r]
        printf "%-38s", name
        hasReference = (nearest, plain(name)) in sameWidth
        for (b = 1; b <= buildCount; ++b) {
            if (!((b, name) in ms)) {
                printf " %18s", "-"
                continue
            }
            cell = sprintf("%.3f", ms[b, name])
            if (hasReference) {
                reference = build[b] == widest ? widestOf[nearest, plain(name)] : sameWidth[nearest, plain(name)]
                ratio = (ms[b, name] / ms[b, "copy"]) / (reference / nearest)
                cell = cell sprintf(" (%.2f%s)", ratio, ratio > 1.05 ? "!" : "")
                ++measured[b]
                slower[b] += ratio > 1.05
                logarithms[b] += log(ratio)
            }
            printf " %18s", cell
        }
        if (hasReference) printf " %10s %10s", sameWidth[nearest, plain(name)], widestOf[nearest, plain(name)]
        printf "\n"
    }
    for (b = 1; b <= buildCount; ++b)
        if (measured[b])
            printf "%s: %d rows with a reference, %d of them slower than it, geometric mean of the ratios %.2f\n", build[b], measured[b], slower[b],
                exp(logarithms[b] / measured[b])
}
