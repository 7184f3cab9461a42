# The table of scripts/bench in Markdown, from the lines that collect of common.sh has recorded:
# what, unit, figure, aim, rival, the rival's figure, peak MiB, the rival's peak MiB.

function median(values, key, n,    i, j, v, sorted) {
    for (i = 1; i <= n; i++) {
        v = values[key, i]
        for (j = i - 1; j > 0 && sorted[j] > v; j--) sorted[j + 1] = sorted[j]
        sorted[j + 1] = v
    }
    return sorted[int((n + 1) / 2)]
}

function short(value) {
    return sprintf(value < 0.1 ? "%.3f" : value < 10 ? "%.2f" : value < 100 ? "%.1f" : "%.0f", value)
}

function cell(value, unit, peak) {
    return short(value) " " unit (peak > 0 ? " (" short(peak) " MiB)" : "")
}

# "< 20 ms" is about the figure, "ratio <= 1.5" about the ratio.
function is_met(aim, figure, ratio,    part) {
    if (sub(/^ratio /, "", aim)) figure = ratio
    split(aim, part, " ")
    return part[1] == "<" ? figure < part[2] + 0 : figure <= part[2] + 0
}

BEGIN { FS = "\t" }

{
    key = $1 FS $5
    if (!runs[key]++) keys[++rows] = key
    unit[key] = $2
    figures[key, runs[key]] = $3 + 0
    aim[key] = $4
    rival_figures[key, runs[key]] = $6 + 0
    if ($7 + 0 > peak[key]) peak[key] = $7 + 0
    if ($8 + 0 > rival_peak[key]) rival_peak[key] = $8 + 0
}

END {
    print "| what is measured | Rivet core | beside it | ratio | aim | met | runs |"
    print "|---|--:|--:|--:|---|---|--:|"
    for (row = 1; row <= rows; row++) {
        key = keys[row]
        split(key, name, FS)
        figure = median(figures, key, runs[key])
        rival = median(rival_figures, key, runs[key])
        ratio = rival > 0 ? figure / rival : 0
        printf "| %s | %s | %s | %s | %s | %s | %d |\n", name[1],
            cell(figure, unit[key], peak[key]),
            (name[2] == "" ? "" : name[2] " " cell(rival, unit[key], rival_peak[key])),
            (ratio > 0 ? sprintf("%.2f", ratio) : ""), aim[key],
            (aim[key] == "" ? "" : is_met(aim[key], figure, ratio) ? "yes" : "**no**"), runs[key]
    }
}
