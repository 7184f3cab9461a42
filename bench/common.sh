# Shared by the benchmarks in this folder; scripts/bench sources it, then the benchmark, whose name is
# $benchmark, and makes the table from the lines that are recorded in the file $results.
#
# To add a benchmark, write bench/NAME.bench. It opens with a comment that says what its rows mean,
# which docs/performance.md repeats, and finds these set: bin (folder of the programs), work (a folder
# of its own, gone at the end), rounds. It gets its rows by
# - run_contest, which times whole command lines beside each other and notes their peak memory, or
# - measure, which runs a command that prints its own figures: a program with bench/Result.h, or a
#   function with print_result. Lines of the same title and the same rival make one row, with the
#   medians.
# An aim reads "< 20 ms" or "<= 20 ms", in the unit of the figure, or "ratio <= 1.5".
# A program of ours goes into bench/CMakeLists.txt, a package that is needed into need_packages.

rounds=${RIVET_BENCH_ROUNDS:-5}
work=$(mktemp -d "${TMPDIR:-/tmp}/rivet-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT

contenders=()
declare -A command_of prepare_of seconds_of peak_of

# print_result <what> <unit> <figure> [aim [rival figure [peak MiB] [peak MiB of the rival]]]
print_result() {
    printf 'result'
    printf '\t%s' "$@"
    echo
}

# collect <title>: records the result lines among its input; there has to be one.
collect() {
    awk -F'\t' -v OFS='\t' -v title="$benchmark: $1" '
        $1 == "result" { $2 = title ($2 == "" ? "" : ", " $2); sub(/^result\t/, ""); print; n++ }
        END { exit n == 0 }' >>"$results"
}

# measure <title> <command...>: once per round.
measure() {
    local title=$1 round
    shift
    echo "bench: $benchmark: $title" >&2
    for ((round = 0; round < rounds; round++)); do "$@" | collect "$title"; done
}

# contender <name> <preparation that is not timed, may be empty> <command>: ours first.
contender() {
    contenders+=("$1")
    prepare_of[$1]=$2
    command_of[$1]=$3
}

time_once() { # name
    local begin
    [ -z "${prepare_of[$1]}" ] || eval "${prepare_of[$1]}"
    begin=$EPOCHREALTIME
    /usr/bin/time --quiet --format=%M --output="$work/peak" bash -c "exec ${command_of[$1]}" \
        >"$work/out" 2>&1 || { echo "$1 failed:" >&2; cat "$work/out" >&2; return 1; }
    seconds_of[$1]=$(awk -v b="$begin" -v e="$EPOCHREALTIME" 'BEGIN { print e - b }')
    peak_of[$1]=$(awk '{ print $1 / 1024 }' "$work/peak")
}

# Every contender once, so that all see the same machine.
contest_round() { # aim
    local name ours=${contenders[0]}
    for name in "${contenders[@]}"; do time_once "$name"; done
    for name in "${contenders[@]:1}"; do
        print_result "" s "${seconds_of[$ours]}" "$1" "$name" "${seconds_of[$name]}" \
            "${peak_of[$ours]}" "${peak_of[$name]}"
    done
}

# run_contest <title> [aim]: the first contender beside each of the others.
run_contest() {
    measure "$1" contest_round "${2:-}"
    contenders=()
}

# need_packages <package>...: installs those that are missing; the output is for the table.
need_packages() {
    "${BASH_SOURCE[0]%/*}/../scripts/setup" "$@" >&2
}

# nginx_on <port> <locations>: succeeds when it listens there.
nginx_on() {
    cat >"$work/nginx.conf" <<CONF
daemon on;
pid $work/nginx.pid;
error_log $work/error.log;
events { worker_connections 256; }
http {
    access_log off;
    sendfile on;
    server { listen 127.0.0.1:$1; root $work/www; $2 }
}
CONF
    nginx -p "$work" -c "$work/nginx.conf" 2>"$work/nginx.out"
}

# serve_folder [locations]: serves $work/www on loopback until the end; sets url.
serve_folder() {
    local try candidate
    url=
    mkdir -p "$work/www"
    for ((try = 0; try < 20; try++)); do
        candidate=$((32768 + RANDOM % 28000))
        if nginx_on "$candidate" "${1:-}"; then url=http://127.0.0.1:$candidate; break; fi
    done
    [ -n "$url" ] || { cat "$work/nginx.out" >&2; return 1; }
    trap 'kill "$(cat "$work/nginx.pid")"; rm -rf "$work"' EXIT
    chmod 755 "$work"
}
