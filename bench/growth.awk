# Lays the rows of one build on pictures of several sizes beside each other, in nanoseconds a pixel:
#
#     awk -f growth.awk -v build=s8 -v picture="built-in scene" -v sizes="320x240 640x480 1920x1080 3840x2160" FILE...
#
# with a file a size, in that order, whose columns are told in a first line that begins with "work". Rows whose pixels cost more in
# the last size than in the second by over a quarter are marked: their cost grows faster than their picture.
BEGIN {
    FS = "\t"
    sizeCount = split(sizes, size, " ")
    file = 0
    most = 1.25
}

$1 == "work" {
    delete column
    for (i = 1; i <= NF; ++i) column[$i] = i
    ++file
    next
}

file {
    if (!($1 in known)) {
        known[$1] = 1
        order[++rowCount] = $1
    }
    cost[file, $1] = $(column["ns_px"])
}

END {
    printf "%s, one thread, build %s: the least of several runs, in ns per pixel; growth: from %s to %s\n", picture, build, size[2], \
        size[sizeCount]
    printf "%-44s", "work"
    for (s = 1; s <= sizeCount; ++s) printf " %10s", size[s]
    printf " %8s\n", "growth"
    for (r = 1; r <= rowCount; ++r) {
        name = order[r]
        printf "%-44s", name
        for (s = 1; s <= sizeCount; ++s) printf " %10s", (s, name) in cost ? cost[s, name] : "-"
        if ((2, name) in cost && (sizeCount, name) in cost && cost[2, name] > 0) {
            growth = cost[sizeCount, name] / cost[2, name]
            ++compared
            rising += growth > most
            printf " %8s", sprintf("%.2f%s", growth, growth > most ? "!" : "")
        }
        printf "\n"
    }
    printf "%s: %d rows, %d of them rise by more than a quarter\n", build, compared, rising
}
