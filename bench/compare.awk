# Lays the benchmark's rows beside reference times: awk -f compare.awk [reference.tsv] rows.tsv
#
# Both files tell their columns in a first line that begins with "work". Names may end in a remark in brackets, or in a
# count as in " x1000", which both sides leave out when they are compared. Without a reference its columns stay empty.
BEGIN { FS = "\t" }

function plain(name) {
    sub(/ *\(.*\)$/, "", name)
    sub(/ x[0-9]+$/, "", name)
    return name
}

/^#/ { next }

$1 == "work" {
    delete column
    for (i = 1; i <= NF; ++i) column[$i] = i
    isReference = "same_width_x" in column
    isRows = "x" in column
    if (isRows) printf "%-40s %8s %10s %10s %7s\n", "work", "ms", "multiple", "reference", "ratio"
    next
}

isReference { reference[plain($1)] = $(column["same_width_x"]) }

isRows {
    name = plain($1)
    multiple = $(column["x"])
    printf "%-40s %8.3f %10.2f", $1, $(column["ms"]), multiple
    if (name in reference) {
        measured += !(name in seen)
        seen[name] = 1
        ratio = multiple / reference[name]
        isSlower = ratio > 1
        slower += isSlower
        printf " %10.2f %7.2f%s", reference[name], ratio, isSlower ? "  slower" : ""
    }
    printf "\n"
}

!isReference && !isRows { print }

END {
    if (measured) printf "\n%d rows beside a reference, %d of them slower than it\n", measured, slower
}
