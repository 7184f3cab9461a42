# Sourced by scripts/demo and others: headings, checks, waiting, and the table at the end.

rows=()

heading() {
    printf '\n=== %s\n' "$1"
}

# check <what is true> <command...>: says so, or ends the demo if the command fails.
check() {
    local text=$1
    shift
    if "$@"; then
        printf '  ok  %s\n' "$text"
    else
        printf '  FAILED  %s\n' "$text"
        exit 1
    fi
}

# wait_until <seconds> <command...>: false if the command does not succeed in that time.
wait_until() {
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < end)) || return 1
        sleep 0.05
    done
}

seconds_since() { # a value of EPOCHREALTIME
    awk -v begin="$1" -v end="$EPOCHREALTIME" 'BEGIN { printf "%.1f", end - begin }'
}

add_row() { # what, seconds, payload bytes, exit code
    rows+=("$(printf '  %-38s %8s %14s %6s' "$@")")
}

show_table() {
    heading 'All steps did what they should'
    printf '  %-38s %8s %14s %6s\n' '' seconds 'payload bytes' exit
    printf '%s\n' "${rows[@]}"
}
