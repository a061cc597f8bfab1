# Lines and branches of each folder of src/, from gcovr's list of files.
function row(name, lines, ran, branches, taken) {
    printf "%-12s %6d lines, %6d not run  %6.2f %%   %6d branches, %5d not taken  %6.2f %%\n", name,
        lines, lines - ran, lines ? 100 * ran / lines : 100, branches, branches - taken, branches ? 100 * taken / branches : 100
}
BEGIN { FS = "," }
NR == 1 {
    for (i = 1; i <= NF; i++) column[$i] = i
    next
}
{
    split($(column["filename"]), path, "/")
    folder = path[2]
    if (!(folder in lines)) order[++folders] = folder
    lines[folder] += $(column["line_total"])
    ran[folder] += $(column["line_covered"])
    branches[folder] += $(column["branch_total"])
    taken[folder] += $(column["branch_covered"])
}
END {
    for (i = 1; i <= folders; i++) {
        folder = order[i]
        row(folder, lines[folder], ran[folder], branches[folder], taken[folder])
        all_lines += lines[folder]
        all_ran += ran[folder]
        all_branches += branches[folder]
        all_taken += taken[folder]
    }
    row("src", all_lines, all_ran, all_branches, all_taken)
}
