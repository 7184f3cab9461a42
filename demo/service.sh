# Sourced by scripts/demo and others: the local service, which plays the launcher's web services, its
# download server and a game server.

service_process=
service_port=0

# In a process of its own. A script may say it anew.
run_service() {
    exec "$bin/rivet-service" "$@"
}

# Under the port of the first start, for an address is part of what the launcher knows of a file.
start_service() {
    rm -f "$work/service.log" # of the start before, which tells the same
    run_service --port "$service_port" --state "$work/state" "$world" \
        >"$work/service.log" 2>&1 &
    service_process=$!
    wait_until 10 grep -q '^game status on ' "$work/service.log" || {
        cat "$work/service.log" >&2
        return 1
    }
    service_port=$(sed -n 's/^listening on .*://p' "$work/service.log")
    export RIVET_SERVICE_URL=http://127.0.0.1:$service_port
}

stop_service() {
    [ -n "$service_process" ] || return 0
    kill "$service_process" || true
    wait "$service_process" || true
    service_process=
}

# ask_service <path and query>: prints the answer.
ask_service() (
    exec 3<>"/dev/tcp/127.0.0.1/$service_port"
    printf 'GET %s HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n' "$1" >&3
    cat <&3
)

service_is_there() {
    (exec 3<>"/dev/tcp/127.0.0.1/$service_port") 2>/dev/null
}

service_is_gone() {
    ! service_is_there
}

# The bytes of files on the wire since the last forget_traffic; answers of the web services are not
# among them.
payload_bytes() {
    ask_service '/control/stats?path=/files/' | grep -o '"bytes":[0-9]*' | sed -n '1s/.*://p'
}

# Takes back all faults as well.
forget_traffic() {
    ask_service /control/reset >/dev/null
}

have_sent() { # bytes
    [ "$(payload_bytes)" -ge "$1" ]
}
