# Shared by the benchmarks in this folder: times contenders side by side and prints a table.
# A benchmark declares contenders, each a command line with an optional preparation that is not
# timed, then calls run_contest.

rounds=${RIVET_BENCH_ROUNDS:-5}
work=$(mktemp -d "${TMPDIR:-/tmp}/rivet-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT

contenders=()
declare -A command_of prepare_of

# contender <name> <preparation, may be empty> <command>
contender() {
    contenders+=("$1")
    prepare_of[$1]=$2
    command_of[$1]=$3
}

# One timed run: seconds and peak kilobytes go to the contender's file.
time_once() {
    local name=$1 begin end
    [ -z "${prepare_of[$name]}" ] || eval "${prepare_of[$name]}"
    begin=$EPOCHREALTIME
    /usr/bin/time --quiet --format=%M --output="$work/peak" bash -c "exec ${command_of[$name]}" \
        >"$work/out" 2>&1 || { echo "$name failed:" >&2; cat "$work/out" >&2; return 1; }
    end=$EPOCHREALTIME
    awk -v b="$begin" -v e="$end" -v p="$(cat "$work/peak")" 'BEGIN { print e - b, p }' \
        >>"$work/times.${name//[^A-Za-z0-9]/_}"
}

median() {
    sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'
}

# run_contest <title>: every contender once per round, so that all see the same machine; then the
# medians, each with its ratio to the others' times and its greatest peak memory.
run_contest() {
    local round name file ours
    for ((round = 0; round < rounds; round++)); do
        for name in "${contenders[@]}"; do time_once "$name"; done
    done
    printf '\n%s (median of %d)\n' "$1" "$rounds"
    printf '  %-28s %10s %12s %14s\n' "" seconds "peak MiB" "rivet/this"
    for name in "${contenders[@]}"; do
        file="$work/times.${name//[^A-Za-z0-9]/_}"
        ours="$work/times.${contenders[0]//[^A-Za-z0-9]/_}"
        printf '  %-28s %10.3f %12.1f %14.2f\n' "$name" "$(cut -d' ' -f1 "$file" | median)" \
            "$(cut -d' ' -f2 "$file" | sort -n | awk 'END { print $1 / 1024 }')" \
            "$(awk -v a="$(cut -d' ' -f1 "$ours" | median)" \
                   -v b="$(cut -d' ' -f1 "$file" | median)" 'BEGIN { print a / b }')"
    done
    contenders=()
}

# need_packages <package>...: installs those that are missing, without starting their services.
need_packages() {
    local package status missing=() as_root=() policy
    for package; do
        status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
        [ "$status" = installed ] || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    echo "bench: installing ${missing[*]}"
    # The name of this file is what dpkg's service helper asks; an existing answer stays.
    policy=/usr/sbin/policy-rc.d
    if [ -e "$policy" ]; then
        policy=
    else
        printf '#!/bin/sh\nexit 101\n' | "${as_root[@]}" tee "$policy" >/dev/null
        "${as_root[@]}" chmod 755 "$policy"
    fi
    "${as_root[@]}" apt-get update --quiet=2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install --quiet=2 --yes --no-install-recommends "${missing[@]}" </dev/null
    [ -z "$policy" ] || "${as_root[@]}" rm "$policy"
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
