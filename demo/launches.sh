# Sourced by what tries a rivet outside of its build: a small world, whose game is the program that
# the tests start for one, and the launches that each rivet must manage. Who sources it has the
# functions rivet and run_service, and the folder $work.

world=$work/world

# What the game does; both for the check of the Java and for the game.
export GAME_STEPS='print os.arch|print java.version|args'

# make_small_world <program of the game> [version of the client]: the demo's world with a Java, a
# client and a mod.
make_small_world() {
    local version=${2:-demo} made=$work/made
    local folder=$made/.minecraft/versions/oriel$version
    cp -R demo/data "$world"
    mkdir -p "$world/files" "$folder" "$made/runtime/bin"
    cp "$1" "$made/runtime/bin/javaw.exe"
    [[ $1 != *.exe ]] || scripts/windows-dlls "$made/runtime/bin" "$(scripts/windows-sysroot)/bin"
    sed -i 's/"resources": \[.*\]/"resources": [{"id": 12, "type": 1}]/' "$world/instances.json"
    sed -i "s/\"ver\": \"demo\"/\"ver\": \"$version\"/" "$world"/{clients,instances}.json
    printf -- '-user\n%%UserName%%\n' >"$folder/$version.bat"
    echo mod >"$made/demo-library.jar"
    zip_folder "$world/files/java.zip" "$made" runtime
    zip_folder "$world/files/demo.zip" "$made" .minecraft
    zip_folder "$world/files/library.zip" "$made" demo-library.jar
}

# try_launches [root of $work for rivet]: login, lists, a first launch, a second one, one without the
# service, and one after the log-out.
try_launches() {
    start_service
    rivet settings ChangedDataDir "${1-}$work/data" >/dev/null
    echo 'let me in' | rivet login demo --password-stdin

    launch 'first launch' 0
    check 'the mod is deployed' test -f "$work"/data/instances/Demo*/mods/demo-library.jar
    check 'the game got its arguments' grep -q DemoPlayer "$work"/data/instances/Demo*/game-output.log
    check 'files came' test "$(payload_bytes)" -gt 0
    forget_traffic
    launch 'second launch' 0
    check 'no byte of a file came' test "$(payload_bytes)" -eq 0
    stop_service
    launch 'without the service' 0
    rivet logout
    launch 'logged out' 24
}

launch() { # what, expected exit code
    local status=0
    heading "$1"
    rivet launch Demo >"$work/launcher.log" 2>&1 || status=$?
    sed 's/^/    /' "$work/launcher.log"
    check "exit code $2" test "$status" -eq "$2"
}

# For a trap on EXIT.
end_of_launches() {
    local status=$?
    ((status == 0)) || cat "$work"/*.log || true
    stop_service
    rm -rf "$work"
    exit "$status"
}
