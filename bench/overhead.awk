# Lays what calls cost on 8 x 8 pixels in one or several builds beside each other, in nanoseconds:
#
#     awk -f overhead.awk -v builds="s8 x64-v4" s8.tsv x64-v4.tsv
#
# All files tell their columns in a first line that begins with "work". Calls above 60 ns are marked.
BEGIN {
    FS = "\t"
    buildCount = split(builds, build, " ")
    most = 60
}

$1 == "work" {
    ++file
    next
}

{
    if (!($1 in known)) {
        known[$1] = 1
        order[++rowCount] = $1
    }
    ns[file, $1] = $2
}

END {
    printf "one thread, 8 x 8 pixels: the least of several runs, in ns per call\n%-30s", "work"
    for (b = 1; b <= buildCount; ++b) printf " %10s", build[b]
    printf "\n"
    for (r = 1; r <= rowCount; ++r) {
        printf "%-30s", order[r]
        for (b = 1; b <= buildCount; ++b) {
            cost = ns[b, order[r]]
            printf " %10s", cost == "" ? "-" : sprintf("%.1f%s", cost, cost > most ? "!" : "")
        }
        printf "\n"
    }
}
